// The four element types, as the standard library has them, and what tests of all families do with
// elements. The library's headers let a program choose its complex types; that choice must be made ahead
// of the first of them.
#pragma once

#include <complex>

#define XKL_Complex8 std::complex<float>
#define XKL_Complex16 std::complex<double>

#include <cmath>
#include <type_traits>

#include <gtest/gtest.h>

namespace element_types {

using complex8 = std::complex<float>;
using complex16 = std::complex<double>;
using wide = std::complex<long double>; // for reference results

using all_types = ::testing::Types<float, double, complex8, complex16>;
using real_types = ::testing::Types<float, double>;
using complex_types = ::testing::Types<complex8, complex16>;

template <class T>
using real_of = decltype(std::abs(T{}));
template <class T>
constexpr bool is_complex = !std::is_floating_point_v<T>;

/// The one of four that is for elements of type T
template <class T, class S, class D, class C, class Z>
constexpr auto pick(S s, D d, C c, Z z)
{
    if constexpr (std::is_same_v<T, float>)
        return s;
    else if constexpr (std::is_same_v<T, double>)
        return d;
    else if constexpr (std::is_same_v<T, complex8>)
        return c;
    else
        return z;
}

/// A scalar with an imaginary part where there is one
template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return T(static_cast<real_of<T>>(re), static_cast<real_of<T>>(im));
    else
        return static_cast<T>(re);
}

/// A scalar as C interfaces take it: real by value, complex by address
template <class T>
auto pass(const T &value)
{
    if constexpr (is_complex<T>)
        return &value;
    else
        return value;
}

template <class T>
T conjugate(T value)
{
    if constexpr (is_complex<T>)
        return std::conj(value);
    else
        return value;
}

template <class T>
wide widen(const T &value)
{
    return {std::real(value), std::imag(value)};
}

} // namespace element_types
