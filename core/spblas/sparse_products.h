// C := op(A)*B of matrices in compressed rows, with C in compressed rows or dense.
#pragma once

#include "spblas/results.h"

namespace xkl::core {

template <class T>
int64_t xkl_csrmultcsr(const char *trans, const int64_t *request, const int64_t *sort, const int64_t *m,
                       const int64_t *n, const int64_t *k, T *a, int64_t *ja, int64_t *ia, T *b,
                       int64_t *jb, int64_t *ib, T *c, int64_t *jc, int64_t *ic, const int64_t *nzmax,
                       int64_t *info)
{
    using namespace spblas;
    const bool transposed = !is(*trans, 'N');
    const int64_t rows = transposed ? *n : *m, b_rows = transposed ? *m : *n;
    const ordering in_order(*sort);
    if (*request != 1) {
        if (in_order.a)
            sort_lines(*m, ia, ja, a);
        if (in_order.b)
            sort_lines(b_rows, ib, jb, b);
    }
    const char *const routine = "XKL_?CSRMULTCSR";
    const operated<T> left(*trans, *m, *n, a, ja, ia);
    if (!left.enough()) {
        *info = lacks_memory<T>(routine);
        return 0;
    }
    const compressed<T> right = rows_with_starts<T>(b_rows, 1, b, jb, ib);
    // Every element of op(A) meets a row of B, of unknown length.
    const double work = left.rows().stored() * (1 + right.stored() / static_cast<double>(b_rows + 1));
    const sparse_result<T> result = {routine, rows, *k, *request, *nzmax, in_order.c, c, jc, ic, work};
    *info = gather_rows(result, [&](int64_t i, const auto &add) {
        left.rows().visit(i, [&](int64_t middle, T u) {
            right.visit(middle, [&](int64_t place, T v) { add(place, product(u, v)); });
        });
    });
    return 0;
}

/// C by columns. Rows of A add to rows of C, which threads share; transposed, to any.
template <class T>
int64_t xkl_csrmultd(const char *trans, const int64_t *m, const int64_t *n, const int64_t *k, const T *a,
                     const int64_t *ja, const int64_t *ia, const T *b, const int64_t *jb, const int64_t *ib,
                     T *c, const int64_t *ldc)
{
    using namespace spblas;
    const bool transposed = !is(*trans, 'N'), conjugated = is(*trans, 'C');
    const int64_t rows = transposed ? *n : *m, b_rows = transposed ? *m : *n, distance = *ldc;
    const compressed<T> left = rows_with_starts(*m, 1, a, ja, ia),
                        right = rows_with_starts(b_rows, 1, b, jb, ib);
    for (int64_t j = 0; j < *k; ++j)
        std::fill(c + j * distance, c + j * distance + rows, T(0));
    const double work = left.stored() * (1 + right.stored() / static_cast<double>(b_rows + 1));
    in_parts(transposed ? 1 : parts_of(work), *m, work, [&](int64_t first, int64_t end) {
        for (int64_t i = first; i < end; ++i)
            left.visit(i, [&](int64_t place, T u) {
                T *const target = c + (transposed ? place : i);
                right.visit(transposed ? i : place, [&](int64_t j, T v) {
                    target[j * distance] += product(turned(u, conjugated), v);
                });
            });
    });
    return 0;
}

} // namespace xkl::core
