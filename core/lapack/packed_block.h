// Blocks of packed triangles, copied to and from full arrays. Where a block reaches over the diagonal, what
// lies beyond it isn't in the triangle and is left alone on both sides.
#pragma once

#include "blas/kernels.h"
#include "requirements.h"

#include <algorithm>

namespace xkl::core {

/// The arguments that both routines have: rows by columns elements from (i,j), counted from 1
struct packed_block {
    bool upper;
    char trans;
    int64_t n, i, j, rows, columns;
    int64_t lda;
};

template <class T>
bool accepted(const char *routine, char uplo, const packed_block &block, int64_t *info)
{
    const bool plain = is(block.trans, 'N');
    const int64_t i = block.i, j = block.j, last = least_ld(block.n);
    return accepted<T>(routine, info,
                       {{1, block.upper || is(uplo, 'L')},
                        {2, plain || is(block.trans, 'T') || is(block.trans, 'C')},
                        {3, block.n >= 0},
                        {5, i >= 1 && i <= last},
                        {6, j >= 1 && j <= last && (block.upper ? i <= j : i >= j)},
                        {7, block.rows >= 0 && block.rows <= block.n - i + 1},
                        {8, block.columns >= 0 && block.columns <= block.n - j + 1},
                        {10, block.lda >= least_ld(plain ? block.rows : block.columns)}});
}

/// visit(first of a column's elements in the packed triangle, first of them in the full array, distance
/// there, how many), for each column of the block
template <class Packed, class Full, class Visit>
void visit_columns(const packed_block &block, Packed *ap, Full *a, const Visit &visit)
{
    const bool plain = is(block.trans, 'N');
    const int64_t along = plain ? 1 : block.lda, across = plain ? block.lda : 1;
    for (int64_t v = 0; v < block.columns; ++v) {
        const int64_t column = block.j - 1 + v, row = block.i - 1;
        // The first row of the block that the triangle has in this column, and the one behind the last
        const int64_t first = block.upper ? row : std::max(row, column);
        const int64_t end = block.upper ? std::min(row + block.rows, column + 1) : row + block.rows;
        Packed *start =
            block.upper ? ap + column * (column + 1) / 2 : ap + column * (2 * block.n - column - 1) / 2;
        if (first < end)
            visit(start + first, a + (first - row) * along + v * across, along, end - first);
    }
}

/// Copies op of the elements.
template <class T>
void copy_elements(char trans, int64_t count, const T *from, int64_t from_distance, T *to,
                   int64_t to_distance)
{
    const bool conjugated = is(trans, 'C');
    for (int64_t k = 0; k < count; ++k) {
        const T each = from[k * from_distance];
        to[k * to_distance] = conjugated ? conjugate(each) : each;
    }
}

template <class T>
void xkl_tpunpack(const char *uplo, const char *trans, const int64_t *n, const T *ap, const int64_t *i,
                  const int64_t *j, const int64_t *rows, const int64_t *cols, T *a, const int64_t *lda,
                  int64_t *info)
{
    const packed_block block = {is(*uplo, 'U'), *trans, *n, *i, *j, *rows, *cols, *lda};
    if (accepted<T>("XKL_?TPUNPACK", *uplo, block, info))
        visit_columns(block, ap, a, [&](const T *packed, T *full, int64_t distance, int64_t count) {
            copy_elements(block.trans, count, packed, 1, full, distance);
        });
}

template <class T>
void xkl_tppack(const char *uplo, const char *trans, const int64_t *n, T *ap, const int64_t *i,
                const int64_t *j, const int64_t *rows, const int64_t *cols, const T *a, const int64_t *lda,
                int64_t *info)
{
    const packed_block block = {is(*uplo, 'U'), *trans, *n, *i, *j, *rows, *cols, *lda};
    if (accepted<T>("XKL_?TPPACK", *uplo, block, info))
        visit_columns(block, ap, a, [&](T *packed, const T *full, int64_t distance, int64_t count) {
            copy_elements(block.trans, count, full, distance, packed, 1);
        });
}

} // namespace xkl::core
