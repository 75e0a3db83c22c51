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

} // namespace

double modified_bessel(int order, double x)
{
    return i(order, x);
}
long double modified_bessel(int order, long double x)
{
    return i(order, x);
}
double bessel_j(double order, double x)
{
    return j(order, x);
}
long double bessel_j(long double order, long double x)
{
    return j(order, x);
}
double bessel_y(double order, double x)
{
    return y(order, x);
}
long double bessel_y(long double order, long double x)
{
    return y(order, x);
}

} // namespace xkl::kernels::scalar
