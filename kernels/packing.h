// Elements between vectors with gaps and vectors without: PackI, PackV, PackM, UnpackI, UnpackV, UnpackM.
// They only copy, so there is neither mode nor status.
#pragma once

#include "packs.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class T>
void packi(int64_t n, const T *a, int64_t increment, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        y[i] = a[i * increment];
}

template <class T>
void packv(int64_t n, const T *a, const int64_t *index, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        y[i] = a[index[i]];
}

template <class T>
void packm(int64_t n, const T *a, const int64_t *mask, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        if (mask[i])
            *y++ = a[i];
}

template <class T>
void unpacki(int64_t n, const T *a, int64_t increment, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        y[i * increment] = a[i];
}

template <class T>
void unpackv(int64_t n, const T *a, const int64_t *index, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        y[index[i]] = a[i];
}

template <class T>
void unpackm(int64_t n, const T *a, const int64_t *mask, T *y)
{
    for (int64_t i = 0; i < n; ++i)
        if (mask[i])
            y[i] = *a++;
}

} // namespace XKL_ISA
} // namespace xkl::kernels
