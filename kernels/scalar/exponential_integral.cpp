#include "special.h"

#include "policy.h"

#include <boost/math/special_functions/expint.hpp>

namespace xkl::kernels::scalar {
namespace {

template <class T>
T e1(T x)
{
    if (!(x > 0))
        return x == 0 ? std::numeric_limits<T>::infinity() : x + std::numeric_limits<T>::quiet_NaN();
    return x > 12000 ? T(0) : boost::math::expint(1U, x, quiet());
}

} // namespace

double exponential_integral(double x)
{
    return e1(x);
}
long double exponential_integral(long double x)
{
    return e1(x);
}

} // namespace xkl::kernels::scalar
