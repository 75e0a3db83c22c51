// Compressed rows to dense blocks in compressed rows, and back. Blocks are stored by columns if their indices
// start at 1, by rows if they start at 0. Rows and columns that fill no block get zeros.
#pragma once

#include "blas/report.h"
#include "spblas/conversion.h"

namespace xkl::core {
namespace spblas {

inline constexpr int64_t no_block_order = 1, blocks_overlap = 2, no_memory_for_blocks = -100;
/// Choice 6: count blocks only, or leave out the values
inline constexpr int64_t only_count = -1, only_places = 0;

struct block_shape {
    int64_t order, distance, base;
    int64_t place(int64_t block, int64_t i, int64_t j) const
    {
        return block * distance + (base == 1 ? i + j * order : i * order + j);
    }
};

/// Blocks of each block row into starts[1]..., if there are starts. Tells the sum. `marks` has the last row
/// of each block column.
template <class T>
int64_t count_blocks(const compressed<T> &a, int64_t order, int64_t *marks, int64_t *starts)
{
    int64_t sum = 0;
    for (int64_t first = 0; first < a.count; first += order) {
        int64_t count = 0;
        for (int64_t i = first; i < std::min(first + order, a.count); ++i)
            a.visit(i, [&](int64_t j, T) {
                count += marks[j / order] != first;
                marks[j / order] = first;
            });
        sum += count;
        if (starts)
            starts[first / order + 1] = count;
    }
    return sum;
}

template <class T>
void fill_block_row(const compressed<T> &a, int64_t first, const block_shape &shape, int64_t start,
                    int64_t *marks, bool with_values, T *absr, int64_t *jab)
{
    const int64_t end = std::min(first + shape.order, a.count);
    int64_t next = start;
    for (int64_t i = first; i < end; ++i)
        a.visit(i, [&](int64_t j, T) {
            if (std::exchange(marks[j / shape.order], first) != first)
                jab[next++] = j / shape.order;
        });
    std::sort(jab + start, jab + next);
    for (int64_t block = start; block < next; ++block)
        marks[jab[block]] = block;
    if (with_values) {
        for (int64_t block = start; block < next; ++block)
            std::fill_n(absr + block * shape.distance, shape.order * shape.order, T(0));
        for (int64_t i = first; i < end; ++i)
            a.visit(i, [&](int64_t j, T v) {
                absr[shape.place(marks[j / shape.order], i - first, j % shape.order)] += v;
            });
    }
    for (int64_t block = start; block < next; ++block) {
        marks[jab[block]] = -1;
        jab[block] += shape.base;
    }
}

template <class T>
int64_t rows_to_blocks(const job_list &job, const compressed<T> &a, const block_shape &shape, T *absr,
                       int64_t *jab, int64_t *iab)
{
    if (job(6) < only_count)
        return bad_choice(6);
    const int64_t elements = elements_in(a.count, a.begins);
    const int64_t last = elements > 0 ? *std::max_element(a.across, a.across + elements) - a.base : -1;
    const int64_t block_columns = last / shape.order + 1;
    const buffer<int64_t> marks(block_columns);
    if (!marks.enough()) {
        report("XKL_?CSRBSR", letter_of<T>, no_memory);
        return no_memory_for_blocks;
    }
    std::fill(marks.data(), marks.data() + block_columns, -1);
    const int64_t blocks = count_blocks(a, shape.order, marks.data(), job(6) == only_count ? nullptr : iab);
    if (job(6) == only_count) {
        iab[0] = blocks;
        return converted;
    }
    add_up((a.count + shape.order - 1) / shape.order, shape.base, iab);
    std::fill(marks.data(), marks.data() + block_columns, -1);
    for (int64_t first = 0; first < a.count; first += shape.order)
        fill_block_row(a, first, shape, iab[first / shape.order] - shape.base, marks.data(),
                       job(6) != only_places, absr, jab);
    return converted;
}

/// Every element of a block becomes an element, zeros too, so that the places don't depend on the values.
template <class T>
int64_t blocks_to_rows(const job_list &job, int64_t block_rows, const block_shape &shape, const T *absr,
                       const int64_t *jab, const int64_t *iab, T *acsr, int64_t *ja, int64_t *ia)
{
    int64_t next = 0;
    for (int64_t row = 0; row < block_rows * shape.order; ++row) {
        const int64_t block_row = row / shape.order, i = row % shape.order;
        ia[row] = next + job(2);
        for (int64_t block = iab[block_row] - iab[0]; block < iab[block_row + 1] - iab[0]; ++block)
            for (int64_t j = 0; j < shape.order; ++j, ++next) {
                ja[next] = (jab[block] - shape.base) * shape.order + j + job(2);
                if (job(6) != only_places)
                    acsr[next] = absr[shape.place(block, i, j)];
            }
    }
    ia[block_rows * shape.order] = next + job(2);
    return converted;
}

} // namespace spblas

template <class T>
int64_t xkl_csrbsr(const int64_t *job, const int64_t *m, const int64_t *mblk, const int64_t *ldabsr,
                   T *acsr, int64_t *ja, int64_t *ia, T *absr, int64_t *jab, int64_t *iab, int64_t *info)
{
    const spblas::job_list is{job};
    const spblas::block_shape shape = {*mblk, *ldabsr, is(3)};
    if (*mblk < 1)
        *info = spblas::no_block_order;
    else if (*ldabsr < *mblk * *mblk)
        *info = spblas::blocks_overlap;
    else if (is.backwards())
        *info = spblas::blocks_to_rows(is, *m, shape, absr, jab, iab, acsr, ja, ia);
    else
        *info = spblas::rows_to_blocks(is, spblas::rows_with_starts<T>(*m, is(2), acsr, ja, ia), shape,
                                       absr, jab, iab);
    return 0;
}

} // namespace xkl::core
