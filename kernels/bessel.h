// Bessel functions and the exponential integral, which no vector library has: I0, I1, J0, J1, Jn, Y0, Y1, Yn,
// ExpInt1.
//
// One element at a time: doubles in high accuracy through long doubles, all others through doubles. Orders of
// Jn and Yn that are not integers are orders of their own right.
#pragma once

#include "elements.h"
#include "loops.h"
#include "scalar/special.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// What f computes with for an accuracy
template <accuracy A, class R>
using working = std::conditional_t<A == accuracy::high && sizeof(R) == 8, long double, double>;

template <accuracy A, class F, class V>
XKL_HOT V element_by_element(const F &f, V a)
{
    using R = element<V>;
    return by_element([&f](R x) { return static_cast<R>(f(static_cast<working<A, R>>(x))); }, a);
}

/// With doubles these lose more than 4 ULP.
template <class R, int Order>
struct modified_bessel {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        constexpr accuracy used = A == accuracy::low ? accuracy::high : A;
        return element_by_element<used>([](auto x) { return scalar::modified_bessel(Order, x); }, a);
    }
    XKL_HOT auto suspicious(vec<R>, vec<R> y) const { return is_infinite(y); }
    status settle(R a, R &y) const { return overflow_or_nan(y, a); }
};
template <class R>
struct i0_function : modified_bessel<R, 0> {
};
template <class R>
struct i1_function : modified_bessel<R, 1> {
};

/// What an accuracy asks of J or Y
template <accuracy A, class R>
constexpr scalar::effort effort_for = sizeof(R) == 4 || A == accuracy::enhanced_performance
                                          ? scalar::effort::least
                                      : A == accuracy::low ? scalar::effort::less
                                                           : scalar::effort::most;

template <class R>
struct jn_function {
    R order;

    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return by_element(
            [this](R x) { return static_cast<R>(scalar::bessel_j(order, x, effort_for<A, R>)); }, a);
    }
    XKL_HOT auto suspicious(vec<R> a, vec<R> y) const { return is_not_finite(y) | (is_tiny(y) & (a != 0)); }
    status settle(R a, R &y) const
    {
        if (infinite(a))
            return nan(y) && !nan(order) ? domain_error : fine;
        if (infinite(y) && a == 0)
            return singularity;
        return tiny(y) && a != 0 ? underflow : overflow_or_nan(y, a, order);
    }
};
template <class R>
struct j0_function : jn_function<R> {
    j0_function() : jn_function<R>{0} {}
};
template <class R>
struct j1_function : jn_function<R> {
    j1_function() : jn_function<R>{1} {}
};

template <class R>
struct yn_function {
    R order;

    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        return by_element(
            [this](R x) { return static_cast<R>(scalar::bessel_y(order, x, effort_for<A, R>)); }, a);
    }
    XKL_HOT auto suspicious(vec<R>, vec<R> y) const { return is_not_finite(y); }
    status settle(R a, R &y) const
    {
        return infinite(y) && a == 0 ? singularity : overflow_or_nan(y, a, order);
    }
};
template <class R>
struct y0_function : yn_function<R> {
    y0_function() : yn_function<R>{0} {}
};
template <class R>
struct y1_function : yn_function<R> {
    y1_function() : yn_function<R>{1} {}
};

template <class R>
struct expint1_function {
    template <accuracy A>
    XKL_HOT vec<R> value(vec<R> a) const
    {
        if constexpr (A != accuracy::low)
            return element_by_element<A>([](auto x) { return scalar::exponential_integral(x); }, a);
        else // with doubles below 1 more than 4 ULP
            return by_element(
                [](R x) {
                    return static_cast<R>(x < 1 && sizeof(R) == 8
                                              ? scalar::exponential_integral(static_cast<long double>(x))
                                              : scalar::exponential_integral(static_cast<double>(x)));
                },
                a);
    }
    XKL_HOT auto suspicious(vec<R> a, vec<R> y) const
    {
        return is_not_finite(y) | (a > (sizeof(R) == 8 ? R(650) : R(80)));
    }
    status settle(R a, R &y) const
    {
        if (a == 0)
            return singularity;
        if (a > 0) // doubles lose digits before their results become denormal
            y = static_cast<R>(scalar::exponential_integral(static_cast<long double>(a)));
        return tiny(y) && !infinite(a) ? underflow : overflow_or_nan(y, a);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
