// Products with dense operands: mv, dotmv, mm.
#pragma once

#include "plan.h"
#include "row_products.h"

namespace xkl::core {

namespace inspector {

template <class T>
sparse_status_t multiply(const sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr,
                         int64_t columns, T alpha, const dense<const T> &x, T beta, const dense<T> &y)
{
    action how;
    if (const auto status = action_of(a, operation, descr, how))
        return status;
    const int64_t rows = rows_under(a, operation);
    const plan<T> *const prepared = plan_for<T>(a, operation, descr);
    if constexpr (!element<T>::is_complex)
        if (prepared && prepared->slice_count > 0 && alpha != T(0) && x.down == 1 && y.down == 1 &&
            columns == 1) {
            multiply_by_slices(*prepared, alpha, x.first, beta, y.first);
            return SPARSE_STATUS_SUCCESS;
        }
    if (alpha == T(0))
        scale(y, rows, columns, beta);
    else if (prepared && prepared->has_rows())
        prepared->with_rows(
            [&](const auto &view) { multiply_by_rows(view, {}, columns, alpha, x, beta, y); });
    else if (has_stored_rows(a) && !how.transposed && how.of.mirrored == mirror::none)
        multiply_by_rows(stored_rows<T>(a), how, columns, alpha, x, beta, y);
    else if (a.form == storage::bsr && how.of.whole() && !how.transposed)
        multiply_by_blocks(a, columns, alpha, x, beta, y);
    else
        multiply_by_elements(a, how, rows, columns, alpha, x, beta, y);
    return SPARSE_STATUS_SUCCESS;
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_mv(sparse_operation_t operation, inspector::scalar<T> alpha,
                              const sparse_matrix *a, matrix_descr descr, const T *x,
                              inspector::scalar<T> beta, T *y)
{
    using namespace inspector;
    T factor, old;
    const sparse_status_t bad =
        first_failure({usable_as<T>(a), valid(read<T>(alpha, factor)), valid(x != nullptr),
                       valid(read<T>(beta, old)), valid(y != nullptr)});
    if (bad)
        return bad;
    return multiply<T>(*a, operation, descr, 1, factor, dense<const T>(x), old, dense<T>(y));
}

template <class T>
sparse_status_t xkl_sparse_dotmv(sparse_operation_t operation, inspector::scalar<T> alpha,
                                 const sparse_matrix *a, matrix_descr descr, const T *x,
                                 inspector::scalar<T> beta, T *y, T *d)
{
    if (!d)
        return a ? SPARSE_STATUS_INVALID_VALUE : SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto status = xkl_sparse_mv<T>(operation, alpha, a, descr, x, beta, y))
        return status;
    const int64_t length = std::min(a->total_rows(), a->total_cols());
    T sum(0);
    for (int64_t i = 0; i < length; ++i)
        sum += product(conjugate(x[i]), y[i]);
    *d = sum;
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t xkl_sparse_mm(sparse_operation_t operation, inspector::scalar<T> alpha,
                              const sparse_matrix *a, matrix_descr descr, sparse_layout_t layout,
                              const T *x, int64_t columns, int64_t ldx, inspector::scalar<T> beta, T *y,
                              int64_t ldy)
{
    using namespace inspector;
    T factor, old;
    if (const auto bad = first_failure({usable_as<T>(a), valid(is_operation(operation))}))
        return bad;
    const bool good = read<T>(alpha, factor) && read<T>(beta, old) && x && y && columns >= 0 &&
                      fits(layout, cols_under(*a, operation), columns, ldx) &&
                      fits(layout, rows_under(*a, operation), columns, ldy);
    if (!good)
        return SPARSE_STATUS_INVALID_VALUE;
    return multiply<T>(*a, operation, descr, columns, factor, dense<const T>(x, layout, ldx), old,
                       dense<T>(y, layout, ldy));
}

} // namespace xkl::core
