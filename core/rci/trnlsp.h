// The entries of the trust-region solvers: a handle is a trust_region with its vectors behind it.
#pragma once

#include "trust_region.h"

namespace xkl::core {

template <class T>
struct trust_arguments {
    const int64_t *n, *m;
    const T *lower, *upper, *eps; // lower and upper null without bounds

    /// The sizes, and that no needed array is missing
    bool usable() const
    {
        return n && m && eps && *n > 0 && *m >= *n && (lower == nullptr) == (upper == nullptr);
    }
    bool good_tolerances() const
    {
        return std::all_of(eps, eps + tolerances, [](T e) { return e >= 0; });
    }
    bool good_bounds() const
    {
        for (int64_t j = 0; lower && j < *n; ++j)
            if (!(lower[j] <= upper[j]))
                return false;
        return true;
    }
};

/// A start outside of the bounds is moved to them.
template <class T>
int64_t start_trust_region(void **handle, const trust_arguments<T> &in, T *x, const int64_t *iterations,
                           const int64_t *trials, const T *factor)
{
    if (!handle)
        return XKL_TR_INVALID_OPTION;
    *handle = nullptr;
    if (!in.usable() || !x || !iterations || !trials || !factor || !in.good_tolerances() ||
        !in.good_bounds() || *iterations < 0 || *trials < 0 || !(*factor >= 0))
        return XKL_TR_INVALID_OPTION;
    void *const space = xkl_serv_malloc(trust_region<T>::bytes(*in.n, *in.m), 64);
    if (!space)
        return XKL_TR_OUT_OF_MEMORY;
    for (int64_t j = 0; in.lower && j < *in.n; ++j)
        x[j] = std::clamp(x[j], in.lower[j], in.upper[j]);
    constexpr T usual_factor = 100;
    *handle = new (space) trust_region<T>(*in.n, *in.m, x, in.lower, in.upper, in.eps, *iterations, *trials,
                                          *factor > 0 ? *factor : usual_factor);
    return XKL_TR_SUCCESS;
}

template <class T>
bool all_finite(const T *values, int64_t count)
{
    return std::all_of(values, values + count, [](T value) { return std::isfinite(value); });
}

/// What ?trnlsp_check tells of an array: 0 it is good, 1 it is missing, 2 it holds something that is no
/// finite number, 3 its values are not allowed.
template <class T>
int64_t check_array(const T *values, int64_t count, bool allowed)
{
    return !values ? 1 : !all_finite(values, count) ? 2 : allowed ? 0 : 3;
}

template <class T>
int64_t trnlsp_init(void **handle, const int64_t *n, const int64_t *m, T *x, const T *eps,
                    const int64_t *iterations, const int64_t *trials, const T *factor)
{
    return start_trust_region<T>(handle, {n, m, nullptr, nullptr, eps}, x, iterations, trials, factor);
}

template <class T>
int64_t trnlspbc_init(void **handle, const int64_t *n, const int64_t *m, T *x, const T *lower,
                      const T *upper, const T *eps, const int64_t *iterations, const int64_t *trials,
                      const T *factor)
{
    if (!lower || !upper) {
        if (handle)
            *handle = nullptr;
        return XKL_TR_INVALID_OPTION;
    }
    return start_trust_region<T>(handle, {n, m, lower, upper, eps}, x, iterations, trials, factor);
}

template <class T>
int64_t trnlsp_check(void **handle, const int64_t *n, const int64_t *m, const T *jacobian, const T *f,
                     const T *eps, int64_t *info)
{
    const trust_arguments<T> in{n, m, nullptr, nullptr, eps};
    if (!handle || !*handle || !info || !in.usable())
        return XKL_TR_INVALID_OPTION;
    info[0] = 0; // the handle
    info[1] = check_array(jacobian, *n * *m, true);
    info[2] = check_array(f, *m, true);
    info[3] = check_array(eps, tolerances, in.good_tolerances());
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t trnlspbc_check(void **handle, const int64_t *n, const int64_t *m, const T *jacobian, const T *f,
                       const T *lower, const T *upper, const T *eps, int64_t *info)
{
    const int64_t status = trnlsp_check(handle, n, m, jacobian, f, eps, info);
    if (status != XKL_TR_SUCCESS)
        return status;
    const bool ordered = lower && upper && trust_arguments<T>{n, m, lower, upper, eps}.good_bounds();
    info[4] = check_array(lower, *n, ordered);
    info[5] = check_array(upper, *n, ordered);
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t trnlsp_solve(void **handle, T *f, T *jacobian, int64_t *request)
{
    if (!handle || !*handle || !f || !jacobian || !request)
        return XKL_TR_INVALID_OPTION;
    *request = static_cast<trust_region<T> *>(*handle)->advance(f, jacobian);
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t trnlspbc_solve(void **handle, T *f, T *jacobian, int64_t *request)
{
    return trnlsp_solve(handle, f, jacobian, request);
}

template <class T>
int64_t trnlsp_get(void **handle, int64_t *iterations, int64_t *criterion, T *first, T *last)
{
    if (!handle || !*handle || !iterations || !criterion || !first || !last)
        return XKL_TR_INVALID_OPTION;
    const auto &region = *static_cast<const trust_region<T> *>(*handle);
    *iterations = region.iterations();
    *criterion = region.criterion();
    *first = region.first_norm();
    *last = region.last_norm();
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t trnlspbc_get(void **handle, int64_t *iterations, int64_t *criterion, T *first, T *last)
{
    return trnlsp_get(handle, iterations, criterion, first, last);
}

template <class T>
int64_t trnlsp_delete(void **handle)
{
    if (!handle || !*handle)
        return XKL_TR_INVALID_OPTION;
    xkl_serv_free(*handle);
    *handle = nullptr;
    return XKL_TR_SUCCESS;
}

template <class T>
int64_t trnlspbc_delete(void **handle)
{
    return trnlsp_delete<T>(handle);
}

} // namespace xkl::core
