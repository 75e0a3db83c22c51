// The four element types of the dense routines, and the arithmetic on them that the core's own routines
// share. The public headers let a program choose its complex types; the core chooses the standard ones, so
// that one template serves all four types without a cast. That choice must be the first: this header comes
// before any other of the library. Products are spelled out: the standard operator must care for infinities
// inside products of NaNs, which the BLAS does not ask for and which costs a call an element.
#pragma once

#include <complex>
#include <cstdint>

#define XKL_Complex8 std::complex<float>
#define XKL_Complex16 std::complex<double>
#include "core_blas.h"

namespace xkl::core {

using complex8 = std::complex<float>;
using complex16 = std::complex<double>;

template <class T>
struct element {
    using real = T;
    static constexpr bool is_complex = false;
};
template <class R>
struct element<std::complex<R>> {
    using real = R;
    static constexpr bool is_complex = true;
};
template <class T>
using real_of = typename element<T>::real;

/// The element types' letters, as the names of routines have them.
template <class T>
inline constexpr char letter_of = element<T>::is_complex ? (sizeof(real_of<T>) == 4 ? 'C' : 'Z')
                                                         : (sizeof(real_of<T>) == 4 ? 'S' : 'D');

template <class T>
T product(T a, T b)
{
    if constexpr (element<T>::is_complex)
        return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
    else
        return a * b;
}

template <class T>
T conjugate(T a)
{
    if constexpr (element<T>::is_complex)
        return {a.real(), -a.imag()};
    else
        return a;
}

/// Whether an option letter is the given upper-case one, in either case.
inline bool is(char option, char letter)
{
    return (option & ~0x20) == letter;
}

} // namespace xkl::core
