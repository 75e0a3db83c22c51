// Sparse level 1: nz stored elements x with their 1-based places indx in a full vector y. The loops run in
// the order of storage, so that a place that is named twice is served twice.
#pragma once

#include "elements.h"

namespace xkl::core {

/// y(indx), its places counted from 1
template <class T>
struct scattered {
    T *y;
    const int64_t *indx;
    T &operator[](int64_t i) const { return y[indx[i] - 1]; }
};

template <class T>
void axpyi(const int64_t *nz, const T *a, const T *x, const int64_t *indx, T *y)
{
    const scattered<T> places = {y, indx};
    const T factor = *a;
    if (factor == T(0))
        return;
    for (int64_t i = 0, count = *nz; i < count; ++i)
        places[i] += product(factor, x[i]);
}

template <bool conjugated, class T>
T sparse_dot(int64_t nz, const T *x, scattered<const T> y)
{
    T sum = 0;
    for (int64_t i = 0; i < nz; ++i)
        sum += product(conjugated ? conjugate(x[i]) : x[i], y[i]);
    return sum;
}

template <class T>
T doti(const int64_t *nz, const T *x, const int64_t *indx, const T *y)
{
    return sparse_dot<false, T>(*nz, x, {y, indx});
}

template <class T>
void dotci(T *result, const int64_t *nz, const T *x, const int64_t *indx, const T *y)
{
    *result = sparse_dot<true, T>(*nz, x, {y, indx});
}

template <class T>
void dotui(T *result, const int64_t *nz, const T *x, const int64_t *indx, const T *y)
{
    *result = sparse_dot<false, T>(*nz, x, {y, indx});
}

template <class T>
void gthr(const int64_t *nz, const T *y, T *x, const int64_t *indx)
{
    const scattered<const T> places = {y, indx};
    for (int64_t i = 0, count = *nz; i < count; ++i)
        x[i] = places[i];
}

template <class T>
void gthrz(const int64_t *nz, T *y, T *x, const int64_t *indx)
{
    const scattered<T> places = {y, indx};
    for (int64_t i = 0, count = *nz; i < count; ++i) {
        x[i] = places[i];
        places[i] = T(0);
    }
}

template <class T>
void sctr(const int64_t *nz, const T *x, const int64_t *indx, T *y)
{
    const scattered<T> places = {y, indx};
    for (int64_t i = 0, count = *nz; i < count; ++i)
        places[i] = x[i];
}

template <class T>
void roti(const int64_t *nz, T *x, const int64_t *indx, T *y, const T *c, const T *s)
{
    const scattered<T> places = {y, indx};
    const T cosine = *c, sine = *s;
    for (int64_t i = 0, count = *nz; i < count; ++i) {
        const T turned = cosine * x[i] + sine * places[i];
        places[i] = cosine * places[i] - sine * x[i];
        x[i] = turned;
    }
}

} // namespace xkl::core
