// Inverse trigonometric and hyperbolic functions of complex numbers: Acos, Asin, Atan, Acosh, Asinh, Atanh.
//
// All come from the first quadrant, with signs put on afterwards: so both sides of a branch cut are told
// apart by the sign of a zero.
#pragma once

#include "complex_trigonometric.h"
#include "exponential.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// What arc sine and arc cosine are made of, for x, y >= 0. With r and s the distances of x+iy from -1 and 1,
/// and a = (r + s)/2: the angle's sine is x/a, its cosine is to the sine as `adjacent` to x, and cosh(height)
/// = a. Differences that cancel, a - x and a - 1, are put together from terms that are all positive.
struct arc_parts {
    vec<double> x, adjacent, height;
};

template <accuracy A>
XKL_HOT arc_parts parts_of_arc(vec<double> x, vec<double> y)
{
    const auto beyond = x + 1, before = x - 1, square = y * y;
    const auto r = magnitude<accuracy::low>(beyond, y), s = magnitude<accuracy::low>(before, y);
    const auto a = 0.5 * (r + s);
    const auto right_of_one = before > 0;
    const auto far_side = r + beyond, near_side = s + absolute(before);
    const auto from_far = 1 / far_side, from_near = 1 / near_side;
    const auto near_height = right_of_one ? near_side : square * from_near;
    const auto a_above_one =
        0.5 * (square * from_far + (near_side == 0 ? near_side : near_height)); // a - 1; at 1 itself 0/0
    const auto adjacent_square =
        0.5 * (a + x) * (right_of_one ? from_far + from_near : square * from_far + near_side);
    const auto root = square_root(adjacent_square);
    return {x, right_of_one ? y * root : root,
            log1p_function<double>{}.value<A>(a_above_one + square_root(a_above_one * (a + 1)))};
}

template <accuracy A>
XKL_HOT vec<double> angle_of(vec<double> y, vec<double> x)
{
    return atan2_function<double>{}.value<A>(y, x);
}

/// Numbers whose squares lose digits, on their own or next to the branch points; on the axis there are none
/// to lose.
template <class R, class V>
XKL_HOT auto is_hard_inverse(complex_vec<R> a, V across)
{
    return too_large_to_square(a) | ((absolute(across) < smallest_to_square<R>)&(across != 0));
}

struct asin_core : without_poles {
    static constexpr bool exacting = true;
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto arc = parts_of_arc<A>(absolute(a.re), absolute(a.im));
        return {with_sign_of(angle_of<A>(arc.x, arc.adjacent), a.re), with_sign_of(arc.height, a.im)};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_hard_inverse(a, a.im);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::arc_sine(a); }
};

struct acos_core : asin_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto arc = parts_of_arc<A>(absolute(a.re), absolute(a.im));
        return {angle_of<A>(arc.adjacent, a.re), with_sign_of(arc.height, -a.im)};
    }
    static scalar::wide exact(scalar::wide a) { return scalar::arc_cosine(a); }
};

struct acosh_core : asin_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto arc = parts_of_arc<A>(absolute(a.re), absolute(a.im));
        return {arc.height, with_sign_of(angle_of<A>(arc.adjacent, a.re), a.im)};
    }
    static scalar::wide exact(scalar::wide a) { return scalar::area_cosine(a); }
};

/// asinh(a) = -i*asin(i*a)
struct asinh_core : asin_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        return turned_right(asin_core::value<A>(turned_left(a)));
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_hard_inverse(a, a.re);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::area_sine(a); }
};

/// log1p(4*x/((1 - x)**2 + y**2))/4 + i*atan2(2*y, (1 - x)*(1 + x) - y**2)/2
struct atanh_core {
    static constexpr bool underflows = false, exacting = false;
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        const auto x = absolute(a.re), y = absolute(a.im), square = y * y, before = 1 - x;
        const auto ratio = 4 * x / multiply_add(before, before, square);
        const auto angle = angle_of<A>(y + y, before * (1 + x) - square);
        return {with_sign_of(0.25 * log1p_function<double>{}.value<A>(ratio), a.re),
                with_sign_of(0.5 * angle, a.im)};
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R>)
    {
        return is_hard_inverse(a, a.im) | ((a.im == 0) & (absolute(a.re) == 1));
    }
    static scalar::wide exact(scalar::wide a) { return scalar::area_tangent(a); }
    template <class C>
    static bool pole(C a)
    {
        return a.im == 0 && (a.re == 1 || a.re == -1);
    }
};

/// atan(a) = -i*atanh(i*a)
struct atan_core : atanh_core {
    template <accuracy A>
    XKL_HOT complex_vec<double> value(complex_vec<double> a) const
    {
        return turned_right(atanh_core::value<A>(turned_left(a)));
    }
    template <class R>
    XKL_HOT static auto rare(complex_vec<R> a, complex_vec<R> y)
    {
        return atanh_core::rare<R>(complex_vec<R>{a.im, a.re}, y);
    }
    static scalar::wide exact(scalar::wide a) { return scalar::arc_tangent(a); }
    template <class C>
    static bool pole(C a)
    {
        return atanh_core::pole(C{a.im, a.re});
    }
};

template <class R>
struct complex_asin_function : complex_function<R, asin_core> {
};
template <class R>
struct complex_acos_function : complex_function<R, acos_core> {
};
template <class R>
struct complex_atan_function : complex_function<R, atan_core> {
};
template <class R>
struct complex_asinh_function : complex_function<R, asinh_core> {
};
template <class R>
struct complex_acosh_function : complex_function<R, acosh_core> {
};
template <class R>
struct complex_atanh_function : complex_function<R, atanh_core> {
};

} // namespace XKL_ISA
} // namespace xkl::kernels
