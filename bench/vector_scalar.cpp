// Functions that no vector of the compiler's serves: the C library's, or where that has none, Boost.Math's.
#include "vector_loops.h"

#include <boost/math/special_functions/erf.hpp>

#include <math.h>

namespace {

template <class R, R (*Function)(R)>
void unary(int64_t n, const R *a, const R *, R *r)
{
    for (int64_t i = 0; i < n; ++i)
        r[i] = Function(a[i]);
}

template <class R>
R normal_quantile(R p)
{
    return -R(1.41421356237309504880) * boost::math::erfc_inv(2 * p);
}
template <class R>
R erf_inverse(R a)
{
    return boost::math::erf_inv(a);
}

const loops_of loops[] = {
    {"LGamma", unary<double, lgamma>, unary<float, lgammaf>},
    {"TGamma", unary<double, tgamma>, unary<float, tgammaf>},
    {"J0", unary<double, j0>, unary<float, j0f>},
    {"CdfNormInv", unary<double, normal_quantile>, unary<float, normal_quantile>},
    {"ErfInv", unary<double, erf_inverse>, unary<float, erf_inverse>},
};

} // namespace

const loops_of *scalar_loops(const char *function)
{
    return find_loops(loops, function);
}
