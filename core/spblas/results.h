// Sums and products whose result is sparse: how many elements each row gets, then the elements. Both stages
// walk over what adds to a row and know by a mark for each column what the row has already. Elements that
// cancel stay.
#pragma once

#include "blas/report.h"
#include "spblas/sorting.h"

namespace xkl::core::spblas {

/// What info may say: that memory was short, or else the row from which on there is no room.
inline constexpr int64_t done = 0, out_of_memory = -1;

/// What of the operands is put in order in place, and whether the result is.
struct ordering {
    bool a, b, c;

    explicit ordering(int64_t sort)
        : a(sort == 1 || sort == 3 || sort == 4 || sort == 6),
          b(sort == 2 || sort == 3 || sort == 5 || sort == 6), c(sort < 4 || sort > 7)
    {
    }
};

/// A result in the caller's arrays, indices from 1
template <class T>
struct sparse_result {
    const char *routine;
    int64_t rows, columns, request, room;
    bool sorted;
    T *values;
    int64_t *across, *starts;
    double work;
};

/// Adds to starts[i + 1] how many elements rows first to end have. `marks` holds the last row of each column.
template <class Row>
void count_rows(int64_t first, int64_t end, const Row &row, int64_t *starts, int64_t *marks)
{
    for (int64_t i = first; i < end; ++i) {
        int64_t count = 0;
        row(i, [&](int64_t place, auto) {
            count += marks[place] != i;
            marks[place] = i;
        });
        starts[i + 1] = count;
    }
}

/// `marks` holds where each column's last element is, which is of this row if it isn't before its start.
template <class T, class Row>
void fill_rows(int64_t first, int64_t end, const Row &row, const sparse_result<T> &c, int64_t *marks)
{
    for (int64_t i = first; i < end; ++i) {
        const int64_t start = c.starts[i] - 1;
        int64_t next = start;
        row(i, [&](int64_t place, T v) {
            if (marks[place] >= start) {
                c.values[marks[place]] += v;
                return;
            }
            c.across[next] = place + 1;
            c.values[next] = v;
            marks[place] = next++;
        });
        if (c.sorted)
            line_sorter<T>(next - start, c.across + start, c.values + start);
    }
}

/// stage(first, end, marks) for parts of the rows, each with marks of its own. False without memory for them.
template <class T, class Stage>
bool with_marks(const sparse_result<T> &c, const Stage &stage)
{
    const auto run = [&](int64_t parts) {
        const buffer<int64_t> marks(parts, c.columns);
        if (marks.enough())
            parallel_for(parts, XKL_DOMAIN_SPARSE, c.work / static_cast<double>(parts), [&](int64_t part) {
                int64_t *const own = marks.data() + part * c.columns;
                std::fill(own, own + c.columns, -1);
                stage(start_of(c.rows, part, parts), start_of(c.rows, part + 1, parts), own);
            });
        return marks.enough();
    };
    const int64_t threads = c.work < loop_work_that_pays ? 1 : thread_count();
    return run(threads) || (threads > 1 && run(1));
}

template <class T>
int64_t lacks_memory(const char *routine)
{
    report(routine, letter_of<T>, no_memory);
    return out_of_memory;
}

/// The result whose row i is the sum of what row(i, add) hands to add(column, value). Tells info's value.
template <class T, class Row>
int64_t gather_rows(const sparse_result<T> &c, const Row &row)
{
    if (c.request != 2) {
        if (!with_marks(c, [&](int64_t first, int64_t end, int64_t *marks) {
                count_rows(first, end, row, c.starts, marks);
            }))
            return lacks_memory<T>(c.routine);
        c.starts[0] = 1;
        for (int64_t i = 0; i < c.rows; ++i)
            c.starts[i + 1] += c.starts[i];
    }
    if (c.request == 1)
        return done;
    if (c.request == 0)
        for (int64_t i = 0; i < c.rows; ++i)
            if (c.starts[i + 1] - 1 > c.room)
                return i + 1;
    const bool filled = with_marks(
        c, [&](int64_t first, int64_t end, int64_t *marks) { fill_rows(first, end, row, c, marks); });
    return filled ? done : lacks_memory<T>(c.routine);
}

/// Compressed rows from 1 that stand for op of the caller's, transposed into memory of their own.
template <class T>
class operated {
  public:
    operated(char trans, int64_t m, int64_t n, const T *a, const int64_t *ja, const int64_t *ia)
        : turned_(!is(trans, 'N')), size_(turned_ && m > 0 ? ia[m] - ia[0] : 0),
          starts_(turned_ ? n + 1 : 0), across_(size_), values_(size_),
          rows_(rows_with_starts(m, 1, a, ja, ia))
    {
        if (!turned_ || !enough())
            return;
        sort_by_columns(rows_, n, starts_.data(), [&](int64_t i, int64_t row, int64_t place) {
            across_[place] = row + 1;
            values_[place] = turned(a[i], is(trans, 'C'));
        });
        rows_ = rows_with_starts<T>(n, 1, values_.data(), across_.data(), starts_.data());
    }
    bool enough() const { return starts_.enough() && across_.enough() && values_.enough(); }
    const compressed<T> &rows() const { return rows_; }

  private:
    bool turned_;
    int64_t size_;
    buffer<int64_t> starts_, across_;
    buffer<T> values_;
    compressed<T> rows_;
};

} // namespace xkl::core::spblas
