// Roots and their powers: InvSqrt, InvCbrt, Pow2o3, Pow3o2.
//
// Doubles in high accuracy keep the remainder of the root, so that only the last step rounds: 0.51 ULP.
// Floats go through doubles. Numbers at the ends of the range are scaled, where remainders would be denormal.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "extended.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// A number away from the ends of the range, and what takes its function back to the number's own
template <class V>
struct scaled {
    V x, factor;
};
/// x multiplied by 2**-300, 1 or 2**300; the function makes `up` of 2**300
template <class V>
XKL_HOT scaled<V> within_range(V x, element<V> up)
{
    const V magnitude = absolute(x);
    const auto small = magnitude<0x1p-600, large = magnitude> 0x1p600;
    return {small   ? x * 0x1p300
            : large ? x * 0x1p-300
                    : x,
            small   ? broadcast(1 / up)
            : large ? broadcast(up)
                    : broadcast(element<V>(1))};
}

/// The cube root of x, which is neither zero nor at the ends of the range
template <class V>
XKL_HOT extended<V> extended_cube_root(V x)
{
    const V root = glibc::cbrt(x);
    const extended<V> square = exact_product(root, root), cube = exact_product(square.high, root);
    const V rest = ((x - cube.high) - cube.low) - square.low * root;
    return exact_sum_ordered<V>(root, rest / (3 * square.high));
}

template <class R>
struct invsqrt_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (A != accuracy::high)
            return 1 / square_root(a);
        else if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return 1 / square_root(x); }, a);
        else {
            const auto [x, factor] = within_range(a, 0x1p-150);
            return (extended_constant<V>(1, 0) / extended_root(x)).rounded() * factor;
        }
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        return which_are<at_most>(a, R(0)) | which_are_of<infinities>(a);
    }
    status settle(R a, R &y) const
    {
        if (infinite(a) && a > 0) {
            y = 0;
            return fine;
        }
        y = a == 0 ? 1 / a : limits<R>::nan;
        return a == 0 ? singularity : domain_error;
    }
};

template <class R>
struct invcbrt_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return 1 / glibc::cbrt(x); }, a);
        else if constexpr (A != accuracy::high)
            return 1 / sleef::cbrt_u10(a);
        else {
            const auto [x, factor] = within_range(a, 0x1p-100);
            return (extended_constant<V>(1, 0) / extended_cube_root(x)).rounded() * factor;
        }
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        return which_are<equal>(a, R(0)) | which_are_of<infinities>(a);
    }
    status settle(R a, R &y) const
    {
        y = 1 / a;
        return a == 0 ? singularity : fine;
    }
};

template <class R>
struct pow2o3_function {
    using V = vec<R>;
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double(
                [](vec<double> x) {
                    const vec<double> root = glibc::cbrt(x);
                    return root * root;
                },
                a);
        else if constexpr (A != accuracy::high) {
            const V root = sleef::cbrt_u10(a);
            return root * root;
        } else {
            const auto [x, factor] = within_range(a, 0x1p200);
            const extended<V> root = extended_cube_root(x);
            return (root * root).rounded() * factor;
        }
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        return which_are<equal>(a, R(0)) | which_are_of<infinities>(a);
    }
    status settle(R a, R &y) const
    {
        y = a * a; // of zeros and infinities
        return fine;
    }
};

template <class R>
struct pow3o2_function {
    using V = vec<R>;
    static constexpr R largest_root = sizeof(R) == 8 ? R(0x1p682) : R(0x1p85),
                       smallest = sizeof(R) == 8 ? R(0x1p-600) : R(0x1p-83);
    template <accuracy A>
    XKL_HOT V value(V a) const
    {
        if constexpr (sizeof(R) == 4)
            return in_double([](vec<double> x) { return x * square_root(x); }, a);
        else if constexpr (A != accuracy::high)
            return a * square_root(a);
        else
            return (extended_root(a) * a).rounded();
    }
    XKL_HOT unsigned suspicious_arguments(V a) const
    {
        return which_are<below>(a, smallest) | which_are<above>(a, largest_root);
    }
    status settle(R a, R &y) const
    {
        y = a == 0 ? R(0) : a < 0 ? limits<R>::nan : static_cast<R>(a * __builtin_sqrtl(a));
        if (a < 0)
            return domain_error;
        return tiny(y) && a != 0 ? underflow : overflow_or_nan(y, a);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
