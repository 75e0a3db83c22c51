// Sparse level 1: nz stored elements x with their 1-based places indx in a full vector y. The loops run in
// the order of storage, so that a place that is named twice is served twice.
#include "entries.h"

namespace xkl::core {
namespace {

/// y(indx), its places counted from 1
template <class T>
struct scattered {
    T *y;
    const int64_t *indx;
    T &operator[](int64_t i) const { return y[indx[i] - 1]; }
};

template <class T>
void add_scaled(int64_t nz, T a, const T *x, scattered<T> y)
{
    if (a == T(0))
        return;
    for (int64_t i = 0; i < nz; ++i)
        y[i] += product(a, x[i]);
}

template <bool conjugated, class T>
T dot(int64_t nz, const T *x, scattered<const T> y)
{
    T sum = 0;
    for (int64_t i = 0; i < nz; ++i)
        sum += product(conjugated ? conjugate(x[i]) : x[i], y[i]);
    return sum;
}

template <class T>
void gather(int64_t nz, scattered<const T> y, T *x)
{
    for (int64_t i = 0; i < nz; ++i)
        x[i] = y[i];
}

template <class T>
void gather_and_zero(int64_t nz, scattered<T> y, T *x)
{
    for (int64_t i = 0; i < nz; ++i) {
        x[i] = y[i];
        y[i] = T(0);
    }
}

template <class T>
void scatter(int64_t nz, const T *x, scattered<T> y)
{
    for (int64_t i = 0; i < nz; ++i)
        y[i] = x[i];
}

template <class T>
void rotate(int64_t nz, T *x, scattered<T> y, T c, T s)
{
    for (int64_t i = 0; i < nz; ++i) {
        const T turned = c * x[i] + s * y[i];
        y[i] = c * y[i] - s * x[i];
        x[i] = turned;
    }
}

} // namespace
} // namespace xkl::core

using namespace xkl::core;

#define ENTRIES_OF_ALL_TYPES(T, t)                                                                         \
    extern "C" void xkl_blas_##t##axpyi(const int64_t *nz, const T *a, const T *x, const int64_t *indx,    \
                                        T *y)                                                              \
    {                                                                                                      \
        add_scaled<T>(*nz, *a, x, {y, indx});                                                              \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##gthr(const int64_t *nz, const T *y, T *x, const int64_t *indx)           \
    {                                                                                                      \
        gather<T>(*nz, {y, indx}, x);                                                                      \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##gthrz(const int64_t *nz, T *y, T *x, const int64_t *indx)                \
    {                                                                                                      \
        gather_and_zero<T>(*nz, {y, indx}, x);                                                             \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##sctr(const int64_t *nz, const T *x, const int64_t *indx, T *y)           \
    {                                                                                                      \
        scatter<T>(*nz, x, {y, indx});                                                                     \
    }
XKL_FOR_ALL_TYPES(ENTRIES_OF_ALL_TYPES)

#define ENTRIES_OF_REAL_TYPES(T, t)                                                                        \
    extern "C" T xkl_blas_##t##doti(const int64_t *nz, const T *x, const int64_t *indx, const T *y)        \
    {                                                                                                      \
        return dot<false, T>(*nz, x, {y, indx});                                                           \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##roti(const int64_t *nz, T *x, const int64_t *indx, T *y, const T *c,     \
                                       const T *s)                                                         \
    {                                                                                                      \
        rotate<T>(*nz, x, {y, indx}, *c, *s);                                                              \
    }
XKL_FOR_S_D(ENTRIES_OF_REAL_TYPES)

#define ENTRIES_OF_COMPLEX_TYPES(T, t)                                                                     \
    extern "C" void xkl_blas_##t##dotci(T *result, const int64_t *nz, const T *x, const int64_t *indx,     \
                                        const T *y)                                                        \
    {                                                                                                      \
        *result = dot<true, T>(*nz, x, {y, indx});                                                         \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##dotui(T *result, const int64_t *nz, const T *x, const int64_t *indx,     \
                                        const T *y)                                                        \
    {                                                                                                      \
        *result = dot<false, T>(*nz, x, {y, indx});                                                        \
    }
XKL_FOR_C_Z(ENTRIES_OF_COMPLEX_TYPES)
