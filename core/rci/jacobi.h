// Jacobi matrices by central differences: column j of the m by n matrix is (f(x + h e_j) - f(x - h e_j)) /
// 2h with h = eps * max(1, |x_j|) as it comes out between the two rounded points.
#pragma once

#include "blas/elements.h"
#include "incomplete_rows.h"
#include "xkl_solver_types.h"

namespace xkl::core {

/// One coordinate is away from its place while the functions are computed.
template <class T>
struct difference {
    T *coordinate;
    T value, above, below;

    difference(T *at, T eps) : coordinate(at), value(*at)
    {
        const T step = eps * std::max(T(1), std::abs(value));
        above = value + step;
        below = value - step;
    }
    void fill(int64_t m, T *column, const T *f_above, const T *f_below) const
    {
        for (int64_t i = 0; i < m; ++i)
            column[i] = (f_above[i] - f_below[i]) / (above - below);
    }
};

template <class T, class Function>
int64_t jacobi_of(const Function &function, const int64_t *n, const int64_t *m, T *jacobian, T *x, T eps)
{
    if (*n <= 0 || *m <= 0 || !(eps > 0) || !jacobian || !x)
        return XKL_TR_INVALID_OPTION;
    const auto values = iss::space_for<T>(2 * *m);
    if (!values)
        return XKL_TR_OUT_OF_MEMORY;
    for (int64_t j = 0; j < *n; ++j) {
        const difference<T> step(x + j, eps);
        x[j] = step.above;
        function(values.get());
        x[j] = step.below;
        function(values.get() + *m);
        x[j] = step.value;
        step.fill(*m, jacobian + j * *m, values.get(), values.get() + *m);
    }
    return XKL_TR_SUCCESS;
}

template <class T, class Function>
int64_t jacobi(Function function, const int64_t *n, const int64_t *m, T *jacobian, T *x, const T *eps)
{
    if (!function || !n || !m || !eps)
        return XKL_TR_INVALID_OPTION;
    return jacobi_of<T>([&](T *values) { function(m, n, x, values); }, n, m, jacobian, x, *eps);
}

template <class T, class Function>
int64_t jacobix(Function function, const int64_t *n, const int64_t *m, T *jacobian, T *x, const T *eps,
                void *data)
{
    if (!function || !n || !m || !eps)
        return XKL_TR_INVALID_OPTION;
    return jacobi_of<T>([&](T *values) { function(m, n, x, values, data); }, n, m, jacobian, x, *eps);
}

/// What a caller computes before the next step of ?jacobi_solve
enum jacobi_request : int64_t { jacobi_done = 0, jacobi_first = 1, jacobi_second = 2 };

template <class T>
struct jacobi_steps {
    int64_t n, m;
    T *x, *jacobian;
    T eps;
    int64_t column = -1; // -1 before the first step
    bool second = false;
    difference<T> step;

    int64_t advance(const T *f_above, const T *f_below)
    {
        if (column >= 0 && !second) {
            second = true;
            x[column] = step.below;
            return jacobi_second;
        }
        if (column >= 0) {
            x[column] = step.value;
            step.fill(m, jacobian + column * m, f_above, f_below);
        }
        second = false;
        if (++column == n) {
            column = -1;
            return jacobi_done;
        }
        step = difference<T>(x + column, eps);
        x[column] = step.above;
        return jacobi_first;
    }
};

template <class T>
int64_t jacobi_init(void **handle, const int64_t *n, const int64_t *m, T *x, T *jacobian, const T *eps)
{
    if (!handle)
        return XKL_TR_INVALID_OPTION;
    *handle = nullptr;
    if (!n || !m || !x || !jacobian || !eps || *n <= 0 || *m <= 0 || !(*eps > 0))
        return XKL_TR_INVALID_OPTION;
    void *const space = xkl_serv_malloc(sizeof(jacobi_steps<T>), 64);
    if (!space)
        return XKL_TR_OUT_OF_MEMORY;
    *handle = new (space) jacobi_steps<T>{*n, *m, x, jacobian, *eps, -1, false, difference<T>(x, *eps)};
    return XKL_TR_SUCCESS;
}

/// f1 and f2 are the functions' values at the two points, computed when rci_request is 1 and 2.
template <class T>
int64_t jacobi_solve(void **handle, T *f1, T *f2, int64_t *request)
{
    if (!handle || !*handle || !f1 || !f2 || !request)
        return XKL_TR_INVALID_OPTION;
    *request = static_cast<jacobi_steps<T> *>(*handle)->advance(f1, f2);
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t jacobi_delete(void **handle)
{
    if (!handle || !*handle)
        return XKL_TR_INVALID_OPTION;
    xkl_serv_free(*handle);
    *handle = nullptr;
    return XKL_TR_SUCCESS;
}

} // namespace xkl::core
