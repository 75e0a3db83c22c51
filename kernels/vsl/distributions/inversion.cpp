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

// Those with a location and a scale differ in their transform alone. A function can't make the names that
// kernels are fetched by.
#define XKL_KERNELS_OF_SCALE(Name, transform)                                                              \
    XKL_VSL_KERNEL _vsldRng##Name(int32_t, void *handle, int32_t n, double *r, double a, double beta)      \
    {                                                                                                      \
        return by_inversion(handle, n, r, current_transforms<double>().transform, a, beta);                \
    }                                                                                                      \
    XKL_VSL_KERNEL _vslsRng##Name(int32_t, void *handle, int32_t n, float *r, float a, float beta)         \
    {                                                                                                      \
        return by_inversion(handle, n, r, current_transforms<float>().transform, a, beta);                 \
    }
XKL_KERNELS_OF_SCALE(Exponential, exponential)
XKL_KERNELS_OF_SCALE(Laplace, laplace)
XKL_KERNELS_OF_SCALE(Cauchy, cauchy)
XKL_KERNELS_OF_SCALE(Rayleigh, rayleigh)
XKL_KERNELS_OF_SCALE(Gumbel, gumbel)
#undef XKL_KERNELS_OF_SCALE

XKL_VSL_KERNEL _vsldRngWeibull(int32_t, void *handle, int32_t n, double *r, double alpha, double a,
                               double beta)
{
    return by_inversion(handle, n, r, current_transforms<double>().weibull, 1 / alpha, a, beta);
}
XKL_VSL_KERNEL _vslsRngWeibull(int32_t, void *handle, int32_t n, float *r, float alpha, float a, float beta)
{
    return by_inversion(handle, n, r, current_transforms<float>().weibull, 1 / alpha, a, beta);
}
