// Sums and products with a sparse result: add, spmm, sp2m, syrk, sypr, and the inner routines of sp2m.
// Results are compressed rows in order, counted from where A's indices are.
#pragma once

#include "factors.h"
#include "row_builder.h"

namespace xkl::core {

namespace inspector {

template <class T>
sparse_status_t multiply_sparse(sparse_operation_t op_a, const matrix_descr &descr_a,
                                const sparse_matrix &a, sparse_operation_t op_b,
                                const matrix_descr &descr_b, const sparse_matrix &b,
                                sparse_request_t request, sparse_matrix **c)
{
    operand<T> left, right;
    if (const auto bad = left.take(a, op_a, descr_a))
        return bad;
    if (const auto bad = right.take(b, op_b, descr_b))
        return bad;
    if (left.rows.cols != right.rows.rows)
        return SPARSE_STATUS_INVALID_VALUE;
    return build_result<T>(left.rows.rows, right.rows.cols, a.base, work_of_product(left.rows, right.rows),
                           request, c, terms_of_product(left.rows, right.rows));
}

template <class T>
sparse_status_t square(sparse_operation_t operation, const sparse_matrix &a, sparse_matrix **c)
{
    operand<T> left, right;
    if (const auto bad = left.take(a, operation, general_descr))
        return bad;
    if (const auto bad = right.take_mirrored(a, operation))
        return bad;
    return build_result<T>(left.rows.rows, left.rows.rows, a.base, work_of_product(left.rows, right.rows),
                           SPARSE_STAGE_FULL_MULT, c, terms_of_product(left.rows, right.rows, true));
}

/// op(A) B op(A)', by way of B op(A)'
template <class T>
sparse_status_t triple(sparse_operation_t operation, const sparse_matrix &a, const sparse_matrix &b,
                       const matrix_descr &descr, sparse_matrix **c, sparse_request_t request)
{
    operand<T> outer, middle, mirrored;
    if (const auto bad = outer.take(a, operation, general_descr))
        return bad;
    if (const auto bad = middle.take(b, SPARSE_OPERATION_NON_TRANSPOSE, descr))
        return bad;
    if (const auto bad = mirrored.take_mirrored(a, operation))
        return bad;
    if (outer.rows.cols != middle.rows.rows)
        return SPARSE_STATUS_INVALID_VALUE;
    sparse_matrix *half = nullptr;
    if (const auto bad =
            build_result<T>(middle.rows.rows, mirrored.rows.cols, SPARSE_INDEX_BASE_ZERO,
                            work_of_product(middle.rows, mirrored.rows), SPARSE_STAGE_FULL_MULT, &half,
                            terms_of_product(middle.rows, mirrored.rows)))
        return bad;
    const row_view<T> inner = stored_rows<T>(*half);
    const auto status =
        build_result<T>(outer.rows.rows, outer.rows.rows, a.base, work_of_product(outer.rows, inner),
                        request, c, terms_of_product(outer.rows, inner, true));
    unmake(half);
    return status;
}

template <class T>
sparse_status_t sum(sparse_operation_t operation, const sparse_matrix &a, T alpha, const sparse_matrix &b,
                    sparse_matrix **c)
{
    operand<T> left, right;
    if (const auto bad = left.take(a, operation, general_descr))
        return bad;
    if (const auto bad = right.take(b, SPARSE_OPERATION_NON_TRANSPOSE, general_descr))
        return bad;
    const row_view<T> &x = left.rows, &y = right.rows;
    if (x.rows != y.rows || x.cols != y.cols)
        return SPARSE_STATUS_INVALID_VALUE;
    const double work = static_cast<double>(x.rows + x.places() + y.places());
    return build_result<T>(x.rows, x.cols, a.base, work, SPARSE_STAGE_FULL_MULT, c,
                           [&](int64_t i, const auto &use) {
                               for (int64_t k = x.first(i); k < x.last(i); ++k)
                                   use(x.column(k), product(alpha, x.values[k]));
                               for (int64_t k = y.first(i); k < y.last(i); ++k)
                                   use(y.column(k), y.values[k]);
                           });
}

/// Whether C has the size of op(A) op(B), and the two go together
inline sparse_status_t fit_product(sparse_operation_t op_a, const sparse_matrix *a, sparse_operation_t op_b,
                                   const sparse_matrix *b)
{
    if (!a || !b)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return valid(a->type == b->type && is_operation(op_a) && is_operation(op_b) &&
                 cols_under(*a, op_a) == rows_under(*b, op_b));
}

/// Whether C's arrays, which the caller filled, are good for what a stage leaves.
inline sparse_status_t stage_is_there(const sparse_matrix &c, const stages &of)
{
    if (c.rows > 0 && !c.starts)
        return SPARSE_STATUS_NOT_INITIALIZED;
    for (int64_t i = 0; i < c.rows; ++i)
        if (c.starts[i] < c.base || c.ends[i] < c.starts[i])
            return SPARSE_STATUS_INVALID_VALUE;
    if (c.places() > 0 && ((of.columns && !c.minor) || (of.values && !c.values)))
        return SPARSE_STATUS_NOT_INITIALIZED;
    for (int64_t i = 0; of.columns && i < c.rows; ++i)
        for (int64_t k = c.starts[i] - c.base; k < c.ends[i] - c.base; ++k)
            if (c.minor[k] < c.base || c.minor[k] - c.base >= c.cols)
                return SPARSE_STATUS_INVALID_VALUE;
    return SPARSE_STATUS_SUCCESS;
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_add(sparse_operation_t operation, const sparse_matrix *a,
                               inspector::scalar<T> alpha, const sparse_matrix *b, sparse_matrix **c)
{
    using namespace inspector;
    T factor;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = first_failure({usable_as<T>(a), usable_as<T>(b), valid(read<T>(alpha, factor))}))
        return bad;
    return sum<T>(operation, *a, factor, *b, c);
}

inline sparse_status_t xkl_sparse_sp2m(sparse_operation_t op_a, matrix_descr descr_a,
                                       const sparse_matrix *a, sparse_operation_t op_b,
                                       matrix_descr descr_b, const sparse_matrix *b,
                                       sparse_request_t request, sparse_matrix **c)
{
    using namespace inspector;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = usable_pair(a, b))
        return bad;
    return by_type(*a, [&]<class T>() {
        return multiply_sparse<T>(op_a, descr_a, *a, op_b, descr_b, *b, request, c);
    });
}

inline sparse_status_t xkl_sparse_spmm(sparse_operation_t operation, const sparse_matrix *a,
                                       const sparse_matrix *b, sparse_matrix **c)
{
    return xkl_sparse_sp2m(operation, inspector::general_descr, a, SPARSE_OPERATION_NON_TRANSPOSE,
                           inspector::general_descr, b, SPARSE_STAGE_FULL_MULT, c);
}

inline sparse_status_t xkl_sparse_syrk(sparse_operation_t operation, const sparse_matrix *a,
                                       sparse_matrix **c)
{
    using namespace inspector;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = usable(a))
        return bad;
    return by_type(*a, [&]<class T>() { return square<T>(operation, *a, c); });
}

inline sparse_status_t xkl_sparse_sypr(sparse_operation_t operation, const sparse_matrix *a,
                                       const sparse_matrix *b, matrix_descr descr, sparse_matrix **c,
                                       sparse_request_t request)
{
    using namespace inspector;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = usable_pair(a, b))
        return bad;
    part of;
    if (const auto bad = part_of(*b, descr, of))
        return bad;
    if (of.mirrored == mirror::none)
        return SPARSE_STATUS_NOT_SUPPORTED;
    return by_type(*a, [&]<class T>() { return triple<T>(operation, *a, *b, descr, c, request); });
}

template <class T>
sparse_status_t xkl_sparse_do_sp2m(sparse_operation_t op_a, matrix_descr descr_a, const sparse_matrix *a,
                                   sparse_operation_t op_b, matrix_descr descr_b, const sparse_matrix *b,
                                   sparse_request_t request, sparse_matrix **c)
{
    using namespace inspector;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = first_failure({usable_as<T>(a), usable_as<T>(b)}))
        return bad;
    return multiply_sparse<T>(op_a, descr_a, *a, op_b, descr_b, *b, request, c);
}

template <class T>
sparse_status_t xkl_sparse_do_sp2m_allocate_c_handle(sparse_operation_t op_a, const sparse_matrix *a,
                                                     sparse_operation_t op_b, const sparse_matrix *b,
                                                     sparse_matrix **c)
{
    using namespace inspector;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = fit_product(op_a, a, op_b, b))
        return bad;
    if (a->type != letter_of<T>)
        return SPARSE_STATUS_INVALID_VALUE;
    const int64_t rows = rows_under(*a, op_a);
    array<int64_t> starts;
    sparse_matrix *const made =
        starts.make(rows + 1, a->base) ? empty_result<T>(rows, cols_under(*b, op_b), a->base) : nullptr;
    if (!made)
        return SPARSE_STATUS_ALLOC_FAILED;
    made->starts = starts.release();
    made->ends = made->starts + 1;
    made->owns = true;
    *c = made;
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t xkl_sparse_update_c_handle_data_for_matmat(sparse_operation_t op_a, const sparse_matrix *a,
                                                           sparse_operation_t op_b, const sparse_matrix *b,
                                                           sparse_request_t request, sparse_matrix *c)
{
    using namespace inspector;
    stages of;
    if (!c)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = fit_product(op_a, a, op_b, b))
        return bad;
    if (a->type != letter_of<T> || c->type != letter_of<T> || c->form != storage::csr ||
        !stages_of(request, of) || c->rows != rows_under(*a, op_a) || c->cols != cols_under(*b, op_b))
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto bad = stage_is_there(*c, of))
        return bad;
    c->forget_prepared();
    return make_places<T>(*c, c->places(), {true, true, true});
}

} // namespace xkl::core
