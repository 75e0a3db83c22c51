// Sweeps over the rows of a square matrix: symgs, symgs_mv, sorv, lu_smoother. Each row uses what the rows
// before it just made, so a sweep stays on one thread.
#pragma once

#include "solves.h"

namespace xkl::core {

namespace inspector {

/// Row i of A times x, without the element of the diagonal
template <class T, class I>
[[gnu::always_inline]] inline T beside_diagonal(const row_view<T, I> &a, int64_t i, const T *x)
{
    T sum(0);
    for (int64_t k = a.first(i); k < a.last(i); ++k)
        if (const int64_t j = a.column(k); j != i)
            sum += product(a.values[k], x[j]);
    return sum;
}

/// x_i := (1 - omega) x_i + omega (b_i - the rest of row i) / a_ii, in rising or falling order
template <class T, class I>
void relax(const row_view<T, I> &a, const T *diagonal, bool rising, T omega, T *x, const T *b)
{
    const T kept = T(1) - omega;
    for (int64_t step = 0; step < a.rows; ++step) {
        const int64_t i = rising ? step : a.rows - 1 - step;
        const T made = (b[i] - beside_diagonal(a, i, x)) / diagonal[i];
        x[i] = omega == T(1) ? made : product(kept, x[i]) + product(omega, made);
    }
}

template <class T>
void start_sweep(int64_t rows, T alpha, T *x)
{
    for (int64_t i = 0; i < rows; ++i)
        x[i] = alpha == T(0) ? T(0) : product(alpha, x[i]);
}

template <class T>
sparse_status_t sweep(sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr,
                      sparse_sor_type_t type, T omega, T alpha, T *x, const T *b, T *y)
{
    if (a.total_rows() != a.total_cols())
        return SPARSE_STATUS_INVALID_VALUE;
    return with_rows<T>(a, operation, descr, [&](const auto &view) {
        array<T> diagonal;
        if (const auto bad = find_diagonal(a, view, false, diagonal))
            return bad;
        start_sweep(view.rows, alpha, x);
        if (type != SPARSE_SOR_BACKWARD)
            relax(view, diagonal.data(), true, omega, x, b);
        if (type != SPARSE_SOR_FORWARD)
            relax(view, diagonal.data(), false, omega, x, b);
        if (y)
            multiply_by_rows(view, {}, 1, T(1), dense<const T>(x), T(0), dense<T>(y));
        return SPARSE_STATUS_SUCCESS;
    });
}

/// x := x + inv((L + D) inv(D) (D + U)) (b - A x). What is given of D and its inverse takes the place of
/// A's.
template <class T, class I>
sparse_status_t smooth(sparse_matrix &a, const row_view<T, I> &view, const T *given, const T *given_inverse,
                       T *x, const T *b)
{
    const int64_t n = view.rows;
    array<T> own, rest;
    if (!rest.make(n))
        return SPARSE_STATUS_ALLOC_FAILED;
    if (!given || !given_inverse) {
        if (given && !own.make(n))
            return SPARSE_STATUS_ALLOC_FAILED;
        if (given)
            std::copy_n(given, n, own.data());
        else if (const auto bad = find_diagonal(a, view, false, own))
            return bad;
        for (int64_t i = 0; i < n; ++i)
            if (own[i] == T(0))
                return fail_at(a, i, SPARSE_STATUS_EXECUTION_FAILED);
    }
    const auto over_diagonal = [&](int64_t i, T v) {
        return given_inverse ? product(given_inverse[i], v) : v / own[i];
    };
    for (int64_t i = 0; i < n; ++i) {
        rest[i] = b[i];
        for (int64_t k = view.first(i); k < view.last(i); ++k)
            rest[i] -= product(view.values[k], x[view.column(k)]);
    }
    for (int64_t i = 0; i < n; ++i) { // (L + D) z = rest
        for (int64_t k = view.first(i); k < view.last(i); ++k)
            if (const int64_t j = view.column(k); j < i)
                rest[i] -= product(view.values[k], rest[j]);
        rest[i] = over_diagonal(i, rest[i]);
    }
    for (int64_t i = n - 1; i >= 0; --i) { // (D + U) w = D z
        T sum = product(given ? given[i] : own[i], rest[i]);
        for (int64_t k = view.first(i); k < view.last(i); ++k)
            if (const int64_t j = view.column(k); j > i)
                sum -= product(view.values[k], rest[j]);
        rest[i] = over_diagonal(i, sum);
    }
    for (int64_t i = 0; i < n; ++i)
        x[i] += rest[i];
    return SPARSE_STATUS_SUCCESS;
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_symgs(sparse_operation_t operation, sparse_matrix *a, matrix_descr descr,
                                 inspector::scalar<T> alpha, const T *b, T *x)
{
    using namespace inspector;
    T factor;
    if (const auto bad = first_failure({usable_as<T>(a), valid(read<T>(alpha, factor) && b && x)}))
        return bad;
    return sweep<T>(*a, operation, descr, SPARSE_SOR_SYMMETRIC, T(1), factor, x, b, nullptr);
}

template <class T>
sparse_status_t xkl_sparse_symgs_mv(sparse_operation_t operation, sparse_matrix *a, matrix_descr descr,
                                    inspector::scalar<T> alpha, const T *b, T *x, T *y)
{
    using namespace inspector;
    T factor;
    if (const auto bad = first_failure({usable_as<T>(a), valid(read<T>(alpha, factor) && b && x && y)}))
        return bad;
    return sweep<T>(*a, operation, descr, SPARSE_SOR_SYMMETRIC, T(1), factor, x, b, y);
}

template <class T>
sparse_status_t xkl_sparse_sorv(sparse_sor_type_t type, matrix_descr descr, sparse_matrix *a,
                                inspector::scalar<T> omega, inspector::scalar<T> alpha, T *x, const T *b)
{
    using namespace inspector;
    T relaxation, factor;
    if (const auto bad = first_failure(
            {usable_as<T>(a), valid(type >= SPARSE_SOR_FORWARD && type <= SPARSE_SOR_SYMMETRIC),
             valid(read<T>(omega, relaxation) && read<T>(alpha, factor) && x && b)}))
        return bad;
    return sweep<T>(*a, SPARSE_OPERATION_NON_TRANSPOSE, descr, type, relaxation, factor, x, b, nullptr);
}

template <class T>
sparse_status_t xkl_sparse_lu_smoother(sparse_operation_t operation, sparse_matrix *a, matrix_descr descr,
                                       const T *diagonal, const T *approximate_inverse, T *x, const T *b)
{
    using namespace inspector;
    if (const auto bad =
            first_failure({usable_as<T>(a), valid(x && b && a->total_rows() == a->total_cols())}))
        return bad;
    return with_rows<T>(*a, operation, descr, [&](const auto &view) {
        return smooth(*a, view, diagonal, approximate_inverse, x, b);
    });
}

} // namespace xkl::core
