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

/// Boost.Math has faster and closer functions for orders that are integers.
template <class T>
bool is_order_of_integer(T order)
{
    return std::fabs(order) < T(1 << 30) && std::trunc(order) == order;
}

template <class T>
T i(int order, T x)
{
    if (!std::isfinite(x) || (x == 0 && order == 1))
        return order == 0 ? std::fabs(x) : x;
    return boost::math::cyl_bessel_i(order, x, quiet());
}

template <class T>
T j(T order, T x)
{
    const bool integer = is_order_of_integer(order);
    if (std::isnan(x) || !std::isfinite(order))
        return x + order + (std::isinf(order) ? nan<T> : T(0));
    if (x < 0 && !integer)
        return nan<T>;
    if (std::isinf(x))
        return 0;
    if (x == 0 && integer && std::fmod(order, T(2)) != 0)
        return order < 0 ? -x : x; // an odd function
    return integer ? boost::math::cyl_bessel_j(static_cast<int>(order), x, quiet())
                   : boost::math::cyl_bessel_j(order, x, quiet());
}

template <class T>
T y(T order, T x)
{
    if (std::isnan(x) || !std::isfinite(order))
        return x + order + (std::isinf(order) ? nan<T> : T(0));
    if (x < 0)
        return nan<T>;
    if (x == 0)
        return -infinity<T>;
    if (std::isinf(x))
        return 0;
    return is_order_of_integer(order) ? boost::math::cyl_neumann(static_cast<int>(order), x, quiet())
                                      : boost::math::cyl_neumann(order, x, quiet());
}

/// |y| over the amplitude of the waves, sqrt(2/(pi*|x|)), nearly
double height(double y, double x)
{
    return std::fabs(y) * std::sqrt(std::fabs(x));
}

/// The C library's doubles have 4 ULP beyond the first waves, but near zeros; its long doubles keep their
/// ULPs close to zeros, and take four times as long as Boost.Math's, which are better still up to
/// `own_zeros`: it knows J's first ones. With doubles Boost.Math divides denormal arguments, which have few
/// digits to lose.
template <class F, class Low, class High>
double with_effort(const F &boost, const Low &low, const High &high, double order, double x, effort wanted,
                   double own_zeros)
{
    if (wanted == effort::least && !(std::fabs(x) < std::numeric_limits<double>::min()))
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
