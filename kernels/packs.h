// As many elements as a register has lanes: one register for real types, one for each part of complex types. How they
// come from memory and get there, whole or in part.
#pragma once

#include "complex.h"
#include "vector.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// The real type behind an element
template <class T>
struct real_behind {
    using type = T;
};
template <class R>
struct real_behind<complex<R>> {
    using type = R;
};
template <class T>
using real = typename real_behind<T>::type;

/// Registers of complex elements
template <class R>
struct complex_vec {
    vec<R> re, im;
};

template <class T>
struct pack_of {
    using type = vec<T>;
};
template <class R>
struct pack_of<complex<R>> {
    using type = complex_vec<R>;
};
template <class T>
using pack = typename pack_of<T>::type;

/// Two results
template <class P>
struct two {
    P first, second;
};

template <class V, class T>
XKL_HOT V load_register(const T *from)
{
    V v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

#if defined(__AVX512F__)
/// Elements 2i, or 2i + 1, of two registers
template <class R, int Odd>
XKL_HOT vec<R> every_other(vec<R> low, vec<R> high)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(low, high, Odd, 2 + Odd, 4 + Odd, 6 + Odd, 8 + Odd, 10 + Odd,
                                       12 + Odd, 14 + Odd);
    else
        return __builtin_shufflevector(low, high, Odd, 2 + Odd, 4 + Odd, 6 + Odd, 8 + Odd, 10 + Odd,
                                       12 + Odd, 14 + Odd, 16 + Odd, 18 + Odd, 20 + Odd, 22 + Odd, 24 + Odd,
                                       26 + Odd, 28 + Odd, 30 + Odd);
}
template <class R>
XKL_HOT vec<R> merged_low(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
    else
        return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
template <class R>
XKL_HOT vec<R> merged_high(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
    else
        return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}
#elif defined(__AVX2__)
template <class R, int Odd>
XKL_HOT vec<R> every_other(vec<R> low, vec<R> high)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(low, high, Odd, 2 + Odd, 4 + Odd, 6 + Odd);
    else
        return __builtin_shufflevector(low, high, Odd, 2 + Odd, 4 + Odd, 6 + Odd, 8 + Odd, 10 + Odd,
                                       12 + Odd, 14 + Odd);
}
template <class R>
XKL_HOT vec<R> merged_low(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 0, 4, 1, 5);
    else
        return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
}
template <class R>
XKL_HOT vec<R> merged_high(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 2, 6, 3, 7);
    else
        return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
}
#else
template <class R, int Odd>
XKL_HOT vec<R> every_other(vec<R> low, vec<R> high)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(low, high, Odd, 2 + Odd);
    else
        return __builtin_shufflevector(low, high, Odd, 2 + Odd, 4 + Odd, 6 + Odd);
}
template <class R>
XKL_HOT vec<R> merged_low(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 0, 2);
    else
        return __builtin_shufflevector(a, b, 0, 4, 1, 5);
}
template <class R>
XKL_HOT vec<R> merged_high(vec<R> a, vec<R> b)
{
    if constexpr (sizeof(R) == 8)
        return __builtin_shufflevector(a, b, 1, 3);
    else
        return __builtin_shufflevector(a, b, 2, 6, 3, 7);
}
#endif

template <class R>
requires std::is_floating_point_v<R> XKL_HOT vec<R> load(const R *from)
{
    return load_register<vec<R>>(from);
}

template <class R>
XKL_HOT complex_vec<R> load(const complex<R> *from)
{
    const auto low = load_register<vec<R>>(from), high = load_register<vec<R>>(from + lanes<R> / 2);
    return {every_other<R, 0>(low, high), every_other<R, 1>(low, high)};
}

template <class R>
XKL_HOT void store(R *to, vec<R> v)
{
    __builtin_memcpy(to, &v, sizeof v);
}

template <class R>
XKL_HOT void store(complex<R> *to, complex_vec<R> v)
{
    const vec<R> low = merged_low<R>(v.re, v.im), high = merged_high<R>(v.re, v.im);
    __builtin_memcpy(to, &low, sizeof low);
    __builtin_memcpy(to + lanes<R> / 2, &high, sizeof high);
}

#if defined(__AVX512F__)
/// The first `count` elements, less than a register has; the other lanes repeat the first one. So the lanes
/// without an element neither take another road in the base library nor have errors of their own.
XKL_HOT vec<double> load_part(const double *from, int count)
{
    return _mm512_mask_loadu_pd(_mm512_set1_pd(*from), static_cast<__mmask8>((1u << count) - 1), from);
}
XKL_HOT vec<float> load_part(const float *from, int count)
{
    return _mm512_mask_loadu_ps(_mm512_set1_ps(*from), static_cast<__mmask16>((1u << count) - 1), from);
}
XKL_HOT void store_part(double *to, vec<double> v, int count)
{
    _mm512_mask_storeu_pd(to, static_cast<__mmask8>((1u << count) - 1), v);
}
XKL_HOT void store_part(float *to, vec<float> v, int count)
{
    _mm512_mask_storeu_ps(to, static_cast<__mmask16>((1u << count) - 1), v);
}
#else
template <class R>
requires std::is_floating_point_v<R> XKL_HOT vec<R> load_part(const R *from, int count)
{
    vec<R> v = broadcast(*from);
    for (int lane = 1; lane < lanes<R> - 1; ++lane)
        if (lane < count)
            v[lane] = from[lane];
    return v;
}
template <class R>
XKL_HOT void store_part(R *to, vec<R> v, int count)
{
    for (int lane = 0; lane < lanes<R> - 1; ++lane)
        if (lane < count)
            to[lane] = v[lane];
}
#endif

template <class R>
XKL_HOT complex_vec<R> load_part(const complex<R> *from, int count)
{
    complex<R> all[lanes<R>];
    for (int lane = 0; lane < lanes<R>; ++lane)
        all[lane] = from[lane < count ? lane : 0];
    return load(all);
}

template <class R>
XKL_HOT void store_part(complex<R> *to, complex_vec<R> v, int count)
{
    complex<R> all[lanes<R>];
    store(all, v);
    for (int lane = 0; lane < count; ++lane)
        to[lane] = all[lane];
}

/// One element of a pack
template <class V>
XKL_HOT auto lane_of(V v, int lane)
{
    return v[lane];
}
template <class R>
XKL_HOT complex<R> lane_of(const complex_vec<R> &v, int lane)
{
    return {v.re[lane], v.im[lane]};
}
template <class V>
XKL_HOT void set_lane(V &v, int lane, element<V> value)
{
    v[lane] = value;
}
template <class R>
XKL_HOT void set_lane(complex_vec<R> &v, int lane, complex<R> value)
{
    v.re[lane] = value.re;
    v.im[lane] = value.im;
}

} // namespace XKL_ISA
} // namespace xkl::kernels
