// Trigonometry: Sin, Cos, Tan, SinCos, Sinpi, Cospi, SinCospi, Asin, Acos, Atan, Atan2.
#pragma once

#include "base_library.h"
#include "elements.h"
#include "loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Infinite angles have no direction.
template <class R>
struct of_angle {
    static constexpr R harmless = limits<R>::largest;
    status settle(R, R &y) const
    {
        y = limits<R>::nan;
        return domain_error;
    }
    status settle(R, R &first, R &second) const
    {
        first = second = limits<R>::nan;
        return domain_error;
    }
};

/// Of the two libraries of 4 ULP the one that is faster: C's for doubles, but not for large angles, which it
/// computes one at a time.
template <class R, class From>
struct circular_function : of_angle<R> {
    static constexpr bool c_is_faster = sizeof(R) == 8;
    static constexpr R quick_up_to = c_is_faster ? R(From::large_for_c) : limits<R>::largest;

    template <accuracy A>
    XKL_HOT vec<R> quick(vec<R> a) const
    {
        if constexpr (A == accuracy::high)
            return From::sleef_1ulp(a);
        else if constexpr (c_is_faster)
            return From::c(a);
        else
            return From::sleef_4ulp(a);
    }
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::high && c_is_faster)
            if (which_are<above>(absolute(a), quick_up_to)) [[unlikely]]
                return From::sleef_4ulp(a);
        return quick<A>(a);
    }
};

struct sine {
    static constexpr double large_for_c = 1e7;
    XKL_HOT static auto sleef_1ulp(auto a) { return sleef::sin_u10(a); }
    XKL_HOT static auto sleef_4ulp(auto a) { return sleef::sin_u35(a); }
    XKL_HOT static auto c(auto a) { return glibc::sin(a); }
};
template <class R>
struct sin_function : circular_function<R, sine> {
};

struct cosine {
    static constexpr double large_for_c = 1e7;
    XKL_HOT static auto sleef_1ulp(auto a) { return sleef::cos_u10(a); }
    XKL_HOT static auto sleef_4ulp(auto a) { return sleef::cos_u35(a); }
    XKL_HOT static auto c(auto a) { return glibc::cos(a); }
};
template <class R>
struct cos_function : circular_function<R, cosine> {
};

struct tangent {
    static constexpr double large_for_c = 1e5;
    XKL_HOT static auto sleef_1ulp(auto a)
    {
        return small_as_they_are(a, [](auto x) { return sleef::tan_u10(x); });
    }
    XKL_HOT static auto sleef_4ulp(auto a) { return sleef::tan_u35(a); }
    XKL_HOT static auto c(auto a) { return glibc::tan(a); }
};
template <class R>
struct tan_function : circular_function<R, tangent> {
};

template <class R>
struct sincos_function : of_angle<R> {
    template <accuracy A>
    XKL_HOT two<vec<R>> value(vec<R> a) const
    {
        const auto y = A == accuracy::high ? sleef::sincos_u10(a) : sleef::sincos_u35(a);
        return {y.x, y.y};
    }
};

/// The angle less a multiple of two half turns: exact, and within the range that the base library serves
template <class V>
XKL_HOT V within_one_turn(V half_turns)
{
    return half_turns - 2 * nearest(half_turns / 2);
}

/// sin(pi*a) of an integer a is a zero with the sign of a, cos(pi*a) of a half is +0.
template <class V>
XKL_HOT V sine_of_half_turns(V y, V a)
{
    return y == 0 ? with_sign_of(y, a) : y;
}
template <class V>
XKL_HOT V cosine_of_half_turns(V y)
{
    return y + 0;
}

template <class R>
struct sinpi_function : of_angle<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        const vec<R> turn = within_one_turn(a);
        if constexpr (A == accuracy::high)
            return sine_of_half_turns(sleef::sinpi_u05(turn), a);
        else
            return sine_of_half_turns<vec<R>>(sleef::sincospi_u35(turn).x, a);
    }
};

template <class R>
struct cospi_function : of_angle<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        const vec<R> turn = within_one_turn(a);
        if constexpr (A == accuracy::high)
            return cosine_of_half_turns(sleef::cospi_u05(turn));
        else
            return cosine_of_half_turns<vec<R>>(sleef::sincospi_u35(turn).y);
    }
};

template <class R>
struct sincospi_function : of_angle<R> {
    template <accuracy A>
    XKL_HOT two<vec<R>> value(vec<R> a) const
    {
        const vec<R> turn = within_one_turn(a);
        const auto y = A == accuracy::high ? sleef::sincospi_u05(turn) : sleef::sincospi_u35(turn);
        return {sine_of_half_turns<vec<R>>(y.x, a), cosine_of_half_turns<vec<R>>(y.y)};
    }
};

/// No angle has a sine or cosine beyond 1.
template <class R>
struct of_sine {
    static constexpr R harmless = 1;
    status settle(R, R &y) const
    {
        y = limits<R>::nan;
        return domain_error;
    }
};

template <class R>
struct asin_function : of_sine<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::asin_u10(a) : sleef::asin_u35(a);
    }
};

template <class R>
struct acos_function : of_sine<R> {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::acos_u10(a) : sleef::acos_u35(a);
    }
};

template <class R>
struct atan_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return A == accuracy::high ? sleef::atan_u10(a) : glibc::atan(a);
    }
};

template <class R>
struct atan2_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a, vec<R> b) const
    {
        return A == accuracy::high ? sleef::atan2_u10(a, b) : sleef::atan2_u35(a, b);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
