// Elements sorted by the line they lie on, which turns elements in any order into compressed rows and rows
// into columns, and sorted along a line.
#pragma once

#include "spblas/storage.h"

namespace xkl::core::spblas {

/// Makes the starts of the lines, from 0, and calls put(element, place) for every element in order;
/// line(element) is its line, from 0. Elements of one line keep their order.
template <class Line, class Put>
void sort_into_lines(int64_t lines, int64_t elements, int64_t *starts, const Line &line, const Put &put)
{
    std::fill(starts, starts + lines + 1, 0);
    for (int64_t i = 0; i < elements; ++i)
        ++starts[line(i) + 1];
    for (int64_t i = 0; i < lines; ++i)
        starts[i + 1] += starts[i];
    for (int64_t i = 0; i < elements; ++i)
        put(i, starts[line(i)]++);
    std::copy_backward(starts, starts + lines, starts + lines + 1); // each is now where the next one starts
    starts[0] = 0;
}

/// Calls put(element, row, place) for every element of compressed rows, its places those by columns.
template <class T, class Put>
void sort_by_columns(const compressed<T> &rows, int64_t columns, int64_t *starts, const Put &put)
{
    const int64_t elements = rows.count > 0 ? rows.begins[rows.count] - rows.begins[0] : 0;
    int64_t row = 0;
    sort_into_lines(
        columns, elements, starts, [&](int64_t i) { return rows.across[i] - rows.base; },
        [&](int64_t i, int64_t place) {
            while (i >= rows.begins[row + 1] - rows.begins[0])
                ++row;
            put(i, row, place);
        });
}

/// Rows with one array of starts
template <class T>
compressed<T> rows_with_starts(int64_t m, int64_t base, const T *a, const int64_t *ja, const int64_t *ia)
{
    return {a, ja, ia, ia + 1, m, base};
}

/// Elements of a line by ascending indices, in place: short lines by insertion, long ones by a heap.
template <class T>
class line_sorter {
  public:
    line_sorter(int64_t count, int64_t *indices, T *values) : indices_(indices), values_(values)
    {
        if (count <= 24)
            insert(count);
        else if (!std::is_sorted(indices, indices + count))
            heap(count);
    }

  private:
    int64_t *indices_;
    T *values_;

    void insert(int64_t count)
    {
        for (int64_t i = 1; i < count; ++i)
            for (int64_t j = i; j > 0 && indices_[j] < indices_[j - 1]; --j)
                exchange(j, j - 1);
    }
    void heap(int64_t count)
    {
        for (int64_t root = count / 2; root-- > 0;)
            sink(root, count);
        for (int64_t last = count - 1; last > 0; --last) {
            exchange(0, last);
            sink(0, last);
        }
    }
    void sink(int64_t root, int64_t count)
    {
        for (int64_t child = 2 * root + 1; child < count; root = child, child = 2 * root + 1) {
            child += child + 1 < count && indices_[child] < indices_[child + 1];
            if (indices_[root] >= indices_[child])
                return;
            exchange(root, child);
        }
    }
    void exchange(int64_t i, int64_t j)
    {
        std::swap(indices_[i], indices_[j]);
        std::swap(values_[i], values_[j]);
    }
};

template <class T>
void sort_lines(int64_t lines, const int64_t *starts, int64_t *indices, T *values)
{
    for (int64_t i = 0; i < lines; ++i) {
        const int64_t first = starts[i] - starts[0];
        line_sorter<T>(starts[i + 1] - starts[i], indices + first, values + first);
    }
}

} // namespace xkl::core::spblas
