#include "special.h"

#include "policy.h"

#include <boost/math/special_functions/bessel.hpp>
#include <cmath>

namespace xkl::kernels::scalar {
namespace {

template <class T>
constexpr T nan = std::numeric_limits<T>::quiet_NaN();
template <class T>
constexpr T infinity = std::numeric_limits<T>::infinity();

/// Boost.Math counts orders in `int`.
template <class T>
bool is_order(T order)
{
    return std::fabs(order) < T(1 << 29);
}

/// It has faster and closer functions for these.
template <class T>
bool is_integer(T order)
{
    return std::trunc(order) == order;
}
template <class T>
bool is_odd(T integer)
{
    return std::fmod(integer, T(2)) != 0;
}

template <class T>
T i(int order, T x)
{
    if (!std::isfinite(x) || (x == 0 && order == 1))
        return order == 0 ? std::fabs(x) : x;
    return boost::math::cyl_bessel_i(order, x, quiet());
}

/// J of a negative order that is no integer, close to 0: the sign of 1/Gamma(1 + order) times infinity
template <class T>
T pole_of_j(T order)
{
    return is_odd(std::floor(-order)) ? -infinity<T> : infinity<T>;
}

template <class T>
T j(T order, T x)
{
    if (std::isnan(x) || !is_order(order) || (x < 0 && !is_integer(order)))
        return nan<T>;
    if (std::isinf(x))
        return 0;
    if (!is_integer(order))
        return x == 0 && order < 0 ? pole_of_j(order) : boost::math::cyl_bessel_j(order, x, quiet());
    if (x == 0 && is_odd(order))
        return order < 0 ? -x : x; // an odd function
    return boost::math::cyl_bessel_j(static_cast<int>(order), x, quiet());
}

/// Y at 0: what the positive order has there, times cos(pi*order)
template <class T>
T pole_of_y(T order)
{
    const T half_turns = std::fabs(std::remainder(order, T(2)));
    if (order < 0 && half_turns == T(.5))
        return 0;
    return order < 0 && half_turns > T(.5) ? infinity<T> : -infinity<T>;
}

template <class T>
T y(T order, T x)
{
    if (std::isnan(x) || !is_order(order) || x < 0)
        return nan<T>;
    if (x == 0)
        return pole_of_y(order);
    if (std::isinf(x))
        return 0;
    if (!is_integer(order))
        return boost::math::cyl_neumann(order, x, quiet());
    T size = boost::math::cyl_neumann(static_cast<int>(std::fabs(order)), x, quiet());
    if (std::isnan(size)) // the difference of two terms that were too large
        size = -infinity<T>;
    return order < 0 && is_odd(order) ? -size : size;
}

/// |y| over the amplitude of the waves, sqrt(2/(pi*|x|)), nearly
double height(double y, double x)
{
    return std::fabs(y) * std::sqrt(std::fabs(x));
}

/// The C library's doubles have 4 ULP beyond the first waves, but near zeros; its long doubles keep their
/// ULPs close to zeros, and take four times as long as Boost.Math's, which are better still up to
/// `own_zeros`: it knows J's first ones. With doubles Boost.Math divides denormal arguments, which have few
/// digits to lose, and multiplies the largest ones.
template <class F, class Low, class High>
double with_effort(const F &boost, const Low &low, const High &high, double order, double x, effort wanted,
                   double own_zeros)
{
    const double size = std::fabs(x);
    if (wanted == effort::least && !(size < std::numeric_limits<double>::min()) && !(size > 0x1p1000))
        return boost(order, x);
    const bool first_two = (order == 0 || order == 1) && std::isfinite(x);
    if (wanted == effort::less && first_two && x > 10)
        if (const double y = low(static_cast<int>(order), x); height(y, x) > .1)
            return y;
    const long double y = boost(static_cast<long double>(order), static_cast<long double>(x));
    if (wanted == effort::most && first_two && std::fabs(x) > own_zeros &&
        height(static_cast<double>(y), x) < .03)
        return static_cast<double>(high(static_cast<int>(order), x));
    return static_cast<double>(y);
}

} // namespace

double modified_bessel(int order, double x)
{
    return i(order, x);
}
long double modified_bessel(int order, long double x)
{
    return i(order, x);
}
double bessel_j(double order, double x, effort wanted)
{
    return with_effort([](auto n, auto a) { return j(n, a); }, [](int n, double a) { return ::jn(n, a); },
                       [](int n, long double a) { return ::jnl(n, a); }, order, x, wanted, 8);
}
double bessel_y(double order, double x, effort wanted)
{
    return with_effort([](auto n, auto a) { return y(n, a); }, [](int n, double a) { return ::yn(n, a); },
                       [](int n, long double a) { return ::ynl(n, a); }, order, x, wanted, .5);
}

} // namespace xkl::kernels::scalar
