// What complex functions share: their rule, exact products, how a single element is settled.
//
// A complex function is an object Core with
//   value<Accuracy>(complex_vec<double>...)  doubles alone: floats go through the same code, whose products
//                                            are exact then; nothing overflows, and few are rounded wrong
//   rare<R>(pack..., y)                      lanes to settle; y is the result of R
//   exact(wide...), pole(element...)         an element in long double; is it a pole?
//   underflows                               whether a small result is told of
//   exacting                                 whether 4 ULP take the form of high accuracy
//
// What is promised: the error of each part is at most 4 ULP of the larger part of the result, for Mul,
// MulByConj and Abs 2 ULP, for other functions of floats 1 ULP; Arg and CIS are as accurate as Atan2 and
// SinCos. Each part keeps 8 ULP of its own at high accuracy, but in Pow, and, where there is no fused
// multiply-add, in Mul and Div of parts that cancel. Powers: while the parts of b*log(a) stay below a
// thousand. Enhanced performance: half of the digits.
//
// The statuses of an element: a part that is no number though none was, a domain error; an infinite one
// though none was, a singularity at a pole or an overflow; both parts below the smallest normal number, an
// underflow.
#pragma once

#include "elements.h"
#include "loops.h"
#include "scalar/complex_elements.h"
#include "split_number.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Doubles of two registers from one of floats, and back
struct double_halves {
    using half [[gnu::vector_size(register_bytes / 2)]] = float;
    half low, high;
};
XKL_HOT two<vec<double>> widened(vec<float> x)
{
    const auto halves = bits_as<double_halves>(x);
    return {__builtin_convertvector(halves.low, vec<double>),
            __builtin_convertvector(halves.high, vec<double>)};
}
XKL_HOT two<complex_vec<double>> widened(complex_vec<float> x)
{
    const auto re = widened(x.re), im = widened(x.im);
    return {{re.first, im.first}, {re.second, im.second}};
}
XKL_HOT vec<float> narrowed(vec<double> low, vec<double> high)
{
    using half = double_halves::half;
    return bits_as<vec<float>>(
        double_halves{__builtin_convertvector(low, half), __builtin_convertvector(high, half)});
}
XKL_HOT complex_vec<float> narrowed(complex_vec<double> low, complex_vec<double> high)
{
    return {narrowed(low.re, high.re), narrowed(low.im, high.im)};
}

template <class Core, accuracy A, class... P>
XKL_HOT auto computed(const Core &core, complex_vec<double> a, P... others)
{
    return core.template value<A>(a, others...);
}
template <class Core, accuracy, class... P>
XKL_HOT auto computed(const Core &core, complex_vec<float> a, P... others)
{
    return narrowed(core.template value<accuracy::low>(widened(a).first, widened(others).first...),
                    core.template value<accuracy::low>(widened(a).second, widened(others).second...));
}

template <class R>
scalar::wide wide_element(complex<R> a)
{
    return {a.re, a.im};
}
template <class R>
bool nan(complex<R> a)
{
    return nan(a.re) || nan(a.im);
}
template <class R>
bool infinite(complex<R> a)
{
    return infinite(a.re) || infinite(a.im);
}
template <class R>
bool tiny(complex<R> a)
{
    return tiny(a.re) && tiny(a.im);
}
template <class R>
bool zero(complex<R> a)
{
    return a.re == 0 && a.im == 0;
}

/// Rounds an exact result and judges it.
template <class Core, class R, class... As>
status settled(scalar::wide exact, complex<R> &y, As... a)
{
    y = {static_cast<R>(exact.re), static_cast<R>(exact.im)};
    if (!infinite(y) && !nan(y))
        return Core::underflows && tiny(y) && !zero(exact) ? underflow : fine;
    if ((nan(a) || ...))
        return fine;
    if (Core::pole(a...))
        return singularity;
    if (nan(y))
        return domain_error;
    return (infinite(a) || ...) ? fine : overflow;
}

/// Defaults of cores
struct without_poles {
    static constexpr bool underflows = false, exacting = false;
    template <class... As>
    static bool pole(As...)
    {
        return false;
    }
};

/// A complex function of one argument, or of more
template <class R, class Core>
struct complex_function {
    using V = complex_vec<R>;
    template <accuracy A, class... Vs>
    XKL_HOT V value(V a, Vs... others) const
    {
        constexpr accuracy enough =
            Core::exacting && A != accuracy::enhanced_performance ? accuracy::high : accuracy::low;
        return computed < Core, A == accuracy::high ? A : enough > (Core{}, a, others...);
    }
    XKL_HOT auto suspicious(V a, V y) const { return Core::template rare<R>(a, y); }
    XKL_HOT auto suspicious(V a, V b, V y) const { return Core::template rare<R>(a, b, y); }
    status settle(complex<R> a, complex<R> &y) const
    {
        return settled<Core>(Core::exact(wide_element(a)), y, a);
    }
    status settle(complex<R> a, complex<R> b, complex<R> &y) const
    {
        return settled<Core>(Core::exact(wide_element(a), wide_element(b)), y, a, b);
    }
};

/// Magnitudes whose squares neither overflow nor lose digits: all normal floats, most doubles
template <class R>
constexpr R largest_to_square = sizeof(R) == 8 ? R(0x1p500) : limits<R>::largest;
template <class R>
constexpr R smallest_to_square = sizeof(R) == 8 ? R(0x1p-400) : limits<R>::smallest;

template <class R>
XKL_HOT auto too_large_to_square(complex_vec<R> a)
{
    return ~(absolute(a.re) <= largest_to_square<R>) | ~(absolute(a.im) <= largest_to_square<R>);
}
template <class R>
XKL_HOT auto too_small_to_square(complex_vec<R> a)
{
    return (absolute(a.re) < smallest_to_square<R>)&(absolute(a.im) < smallest_to_square<R>);
}
template <class R>
XKL_HOT auto is_zero(complex_vec<R> a)
{
    return (a.re == 0) & (a.im == 0);
}
template <class R>
XKL_HOT auto is_not_finite(complex_vec<R> a)
{
    return is_not_finite(a.re) | is_not_finite(a.im);
}

/// Results that may have overflowed, or be underflowed
template <class R>
XKL_HOT auto is_extreme(complex_vec<R> y)
{
    const auto size = absolute(y.re) + absolute(y.im);
    return ~(size <= limits<R>::largest) | (size < 2 * limits<R>::smallest);
}

/// a*b + c*d; at high accuracy with all of its digits however much cancels, if the processor can multiply and
/// add at once
template <accuracy A, class V>
XKL_HOT V sum_of_products(V a, V b, V c, V d)
{
    if constexpr (A != accuracy::high || !has_fma)
        return multiply_add(a, b, c * d);
    const auto second = exact_product(c, d);
    const auto sum = multiply_add(a, b, second.first);
    return second.second == 0 ? sum : sum + second.second; // so that a negative zero stays one
}

/// x*x + y*y
XKL_HOT split_number square_of_magnitude(vec<double> x, vec<double> y)
{
    const auto p = exact_product(x, x), q = exact_product(y, y), sum = exact_sum(p.first, q.first);
    return {sum.first, sum.second + (p.second + q.second)};
}

template <accuracy A>
XKL_HOT vec<double> magnitude(vec<double> x, vec<double> y)
{
    if constexpr (A != accuracy::high)
        return square_root(multiply_add(x, x, y * y));
    const auto square = square_of_magnitude(x, y);
    const auto root = square_root(square.first), again = -root;
    const auto back = exact_product(root, again);
    const auto corrected =
        root + (((square.first + back.first) + back.second) + square.second) / (root + root);
    return root == 0 ? root : corrected;
}

} // namespace XKL_ISA
} // namespace xkl::kernels
