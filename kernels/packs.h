// As many elements as a register has lanes: one register for real types, one for each part of complex
// types. How they come from memory and get there, whole or in part.
#pragma once

#include "complex.h"
#include "vector.h"

#include <utility>

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

template <class R>
using lane_numbers = std::make_integer_sequence<int, lanes<R>>;

/// Elements 0, 2, 4... (Odd = 0) or 1, 3, 5... (Odd = 1) of two registers
template <int Odd, class V, int... I>
XKL_HOT V every_other(V low, V high, std::integer_sequence<int, I...>)
{
    return __builtin_shufflevector(low, high, (2 * I + Odd)...);
}

/// The first (Half = 0) or second half of a and b, one element of each in turn
template <int Half, class V, int... I>
XKL_HOT V merged(V a, V b, std::integer_sequence<int, I...>)
{
    constexpr int count = sizeof...(I);
    return __builtin_shufflevector(a, b, (Half * count / 2 + I / 2 + I % 2 * count)...);
}

template <class R>
requires std::is_floating_point_v<R> XKL_HOT vec<R> load(const R *from)
{
    return load_register<vec<R>>(from);
}

template <class R>
XKL_HOT complex_vec<R> load(const complex<R> *from)
{
    const auto low = load_register<vec<R>>(from), high = load_register<vec<R>>(from + lanes<R> / 2);
    return {every_other<0>(low, high, lane_numbers<R>{}), every_other<1>(low, high, lane_numbers<R>{})};
}

template <class R>
XKL_HOT void store(R *to, vec<R> v)
{
    __builtin_memcpy(to, &v, sizeof v);
}

template <class R>
XKL_HOT void store(complex<R> *to, complex_vec<R> v)
{
    const vec<R> low = merged<0>(v.re, v.im, lane_numbers<R>{}),
                 high = merged<1>(v.re, v.im, lane_numbers<R>{});
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
