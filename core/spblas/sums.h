// C := A + beta*op(B) in compressed rows.
#pragma once

#include "spblas/results.h"

namespace xkl::core {

template <class T>
int64_t xkl_csradd(const char *trans, const int64_t *request, const int64_t *sort, const int64_t *m,
                   const int64_t *n, T *a, int64_t *ja, int64_t *ia, const T *beta, T *b, int64_t *jb,
                   int64_t *ib, T *c, int64_t *jc, int64_t *ic, const int64_t *nzmax, int64_t *info)
{
    using namespace spblas;
    const bool transposed = !is(*trans, 'N');
    const int64_t b_rows = transposed ? *n : *m, b_columns = transposed ? *m : *n;
    const ordering in_order(*sort);
    if (*request != 1) {
        if (in_order.a)
            sort_lines(*m, ia, ja, a);
        if (in_order.b)
            sort_lines(b_rows, ib, jb, b);
    }
    const char *const routine = "XKL_?CSRADD";
    const compressed<T> left = rows_with_starts<T>(*m, 1, a, ja, ia);
    const operated<T> right(*trans, b_rows, b_columns, b, jb, ib);
    if (!right.enough()) {
        *info = lacks_memory<T>(routine);
        return 0;
    }
    const T factor = *beta;
    const double work = left.stored() + right.rows().stored();
    const sparse_result<T> result = {routine, *m, *n, *request, *nzmax, in_order.c, c, jc, ic, work};
    *info = gather_rows(result, [&](int64_t i, const auto &add) {
        left.visit(i, add);
        right.rows().visit(i, [&](int64_t place, T v) { add(place, product(factor, v)); });
    });
    return 0;
}

} // namespace xkl::core
