// Products of sparse matrices with a dense result: spmmd, sp2md, syrkd, syprd.
#pragma once

#include "factors.h"

namespace xkl::core {

namespace inspector {

/// C := beta C + alpha times the terms of its rows; above: of its upper triangle, the rest is not touched
template <class T, class Terms>
void add_to_dense(const dense<T> &c, int64_t rows, int64_t cols, T alpha, T beta, bool above, double work,
                  const Terms &terms)
{
    const double each = work / static_cast<double>(std::max<int64_t>(1, rows)) + static_cast<double>(cols);
    parallel_for(rows, XKL_DOMAIN_SPARSE, each, [&](int64_t i) {
        for (int64_t j = above ? i : 0; j < cols; ++j)
            c(i, j) = beta == T(0) ? T(0) : product(beta, c(i, j));
        if (alpha != T(0))
            terms(i, [&](int64_t j, const T &value) { c(i, j) += product(alpha, value); });
    });
}

template <class T>
sparse_status_t multiply_to_dense(sparse_operation_t op_a, const matrix_descr &descr_a,
                                  const sparse_matrix *a, sparse_operation_t op_b,
                                  const matrix_descr &descr_b, const sparse_matrix *b, T alpha, T beta,
                                  T *c, sparse_layout_t layout, int64_t ldc)
{
    operand<T> left, right;
    if (const auto bad = first_failure({usable_as<T>(a), usable_as<T>(b)}))
        return bad;
    if (const auto bad = left.take(*a, op_a, descr_a))
        return bad;
    if (const auto bad = right.take(*b, op_b, descr_b))
        return bad;
    const int64_t rows = left.rows.rows, cols = right.rows.cols;
    if (left.rows.cols != right.rows.rows || !c || !fits(layout, rows, cols, ldc))
        return SPARSE_STATUS_INVALID_VALUE;
    add_to_dense(dense<T>(c, layout, ldc), rows, cols, alpha, beta, false,
                 work_of_product(left.rows, right.rows), terms_of_product(left.rows, right.rows));
    return SPARSE_STATUS_SUCCESS;
}

/// C := alpha A B A' + beta C, its upper triangle. Each thread has a vector to itself, for a row of A B.
template <class T>
sparse_status_t triple_to_dense(const row_view<T> &a, bool conjugated, const dense<const T> &b, T alpha,
                                T beta, const dense<T> &c)
{
    const int64_t n = a.cols;
    const double work = 2. * static_cast<double>(n) * static_cast<double>(a.places());
    const int64_t pieces =
        work < loop_work_that_pays
            ? 1
            : std::max<int64_t>(1, std::min<int64_t>(threads_for(XKL_DOMAIN_SPARSE), a.rows));
    array<T> space;
    if (!space.make(pieces * n))
        return SPARSE_STATUS_ALLOC_FAILED;
    const auto element_of_b = [&](int64_t i, int64_t j) { // the upper triangle is read
        return i <= j ? b(i, j) : conjugated ? conjugate(b(j, i)) : b(j, i);
    };
    parallel_for(pieces, XKL_DOMAIN_SPARSE, work / static_cast<double>(pieces), [&](int64_t piece) {
        T *const line = space.data() + piece * n; // row i of op(A) B
        for (int64_t i = piece; i < a.rows; i += pieces) {
            for (int64_t j = 0; j < n; ++j) {
                line[j] = T(0);
                for (int64_t k = a.first(i); k < a.last(i); ++k)
                    line[j] += product(a.values[k], element_of_b(a.column(k), j));
            }
            for (int64_t j = i; j < a.rows; ++j) {
                T sum(0);
                for (int64_t k = a.first(j); k < a.last(j); ++k)
                    sum += product(line[a.column(k)], conjugated ? conjugate(a.values[k]) : a.values[k]);
                c(i, j) = beta == T(0) ? product(alpha, sum) : product(alpha, sum) + product(beta, c(i, j));
            }
        }
    });
    return SPARSE_STATUS_SUCCESS;
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_spmmd(sparse_operation_t operation, const sparse_matrix *a,
                                 const sparse_matrix *b, sparse_layout_t layout, T *c, int64_t ldc)
{
    using namespace inspector;
    return multiply_to_dense<T>(operation, general_descr, a, SPARSE_OPERATION_NON_TRANSPOSE, general_descr,
                                b, T(1), T(0), c, layout, ldc);
}

template <class T>
sparse_status_t xkl_sparse_sp2md(sparse_operation_t op_a, matrix_descr descr_a, const sparse_matrix *a,
                                 sparse_operation_t op_b, matrix_descr descr_b, const sparse_matrix *b,
                                 inspector::scalar<T> alpha, inspector::scalar<T> beta, T *c,
                                 sparse_layout_t layout, int64_t ldc)
{
    using namespace inspector;
    T factor, old;
    if (const auto bad = first_failure(
            {usable_as<T>(a), usable_as<T>(b), valid(read<T>(alpha, factor)), valid(read<T>(beta, old))}))
        return bad;
    return multiply_to_dense<T>(op_a, descr_a, a, op_b, descr_b, b, factor, old, c, layout, ldc);
}

template <class T>
sparse_status_t xkl_sparse_syrkd(sparse_operation_t operation, const sparse_matrix *a,
                                 inspector::scalar<T> alpha, inspector::scalar<T> beta, T *c,
                                 sparse_layout_t layout, int64_t ldc)
{
    using namespace inspector;
    T factor, old;
    if (const auto bad =
            first_failure({usable_as<T>(a), valid(is_operation(operation)), valid(read<T>(alpha, factor)),
                           valid(read<T>(beta, old)), valid(c != nullptr)}))
        return bad;
    const int64_t rows = rows_under(*a, operation);
    if (!fits(layout, rows, rows, ldc))
        return SPARSE_STATUS_INVALID_VALUE;
    operand<T> left, right;
    if (const auto bad = left.take(*a, operation, general_descr))
        return bad;
    if (const auto bad = right.take_mirrored(*a, operation))
        return bad;
    add_to_dense(dense<T>(c, layout, ldc), rows, rows, factor, old, true,
                 work_of_product(left.rows, right.rows), terms_of_product(left.rows, right.rows, true));
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t xkl_sparse_syprd(sparse_operation_t operation, const sparse_matrix *a, const T *b,
                                 sparse_layout_t layout_b, int64_t ldb, inspector::scalar<T> alpha,
                                 inspector::scalar<T> beta, T *c, sparse_layout_t layout_c, int64_t ldc)
{
    using namespace inspector;
    T factor, old;
    if (const auto bad =
            first_failure({usable_as<T>(a), valid(is_operation(operation)), valid(read<T>(alpha, factor)),
                           valid(read<T>(beta, old)), valid(b && c)}))
        return bad;
    const int64_t rows = rows_under(*a, operation), inner = cols_under(*a, operation);
    if (!fits(layout_b, inner, inner, ldb) || !fits(layout_c, rows, rows, ldc))
        return SPARSE_STATUS_INVALID_VALUE;
    operand<T> outer;
    if (const auto bad = outer.take(*a, operation, general_descr))
        return bad;
    const bool conjugated = element<T>::is_complex && operation != SPARSE_OPERATION_TRANSPOSE;
    return triple_to_dense<T>(outer.rows, conjugated, dense<const T>(b, layout_b, ldb), factor, old,
                              dense<T>(c, layout_c, ldc));
}

} // namespace xkl::core
