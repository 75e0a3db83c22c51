// Distributions by the inverse of their distribution function: one uniform number each.
#include "vsl/distributions/draw.h"
#include "vsl/distributions/transforms.h"

#include <cmath>

using namespace xkl::vsl;

namespace {

/// a + (b - a)*u, which the stream itself keeps below b
template <class R>
int32_t uniform_between(void *handle, int32_t n, R *r, R a, R b)
{
    return on_stream(handle, [&](stream &s) {
        return std::isnan(a) || std::isnan(b) ? not_numbers(n, r) : uniform(s, n, r, a, b);
    });
}

} // namespace

XKL_VSL_KERNEL _vsldRngUniform(int32_t, void *handle, int32_t n, double *r, double a, double b)
{
    return uniform_between(handle, n, r, a, b);
}
XKL_VSL_KERNEL _vslsRngUniform(int32_t, void *handle, int32_t n, float *r, float a, float b)
{
    return uniform_between(handle, n, r, a, b);
}

XKL_VSL_KERNEL _vsldRngExponential(int32_t, void *handle, int32_t n, double *r, double a, double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().exponential, a, beta);
}
XKL_VSL_KERNEL _vslsRngExponential(int32_t, void *handle, int32_t n, float *r, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().exponential, a, beta);
}

XKL_VSL_KERNEL _vsldRngLaplace(int32_t, void *handle, int32_t n, double *r, double a, double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().laplace, a, beta);
}
XKL_VSL_KERNEL _vslsRngLaplace(int32_t, void *handle, int32_t n, float *r, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().laplace, a, beta);
}

XKL_VSL_KERNEL _vsldRngCauchy(int32_t, void *handle, int32_t n, double *r, double a, double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().cauchy, a, beta);
}
XKL_VSL_KERNEL _vslsRngCauchy(int32_t, void *handle, int32_t n, float *r, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().cauchy, a, beta);
}

XKL_VSL_KERNEL _vsldRngRayleigh(int32_t, void *handle, int32_t n, double *r, double a, double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().rayleigh, a, beta);
}
XKL_VSL_KERNEL _vslsRngRayleigh(int32_t, void *handle, int32_t n, float *r, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().rayleigh, a, beta);
}

XKL_VSL_KERNEL _vsldRngGumbel(int32_t, void *handle, int32_t n, double *r, double a, double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().gumbel, a, beta);
}
XKL_VSL_KERNEL _vslsRngGumbel(int32_t, void *handle, int32_t n, float *r, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().gumbel, a, beta);
}

XKL_VSL_KERNEL _vsldRngWeibull(int32_t, void *handle, int32_t n, double *r, double alpha, double a,
                               double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().weibull, 1 / alpha, a, beta);
}
XKL_VSL_KERNEL _vslsRngWeibull(int32_t, void *handle, int32_t n, float *r, float alpha, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().weibull, 1 / alpha, a, beta);
}
