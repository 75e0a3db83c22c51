// Gamma, chi-square and beta distributions, by rejection; floats are computed as doubles.
#include "vsl/distributions/gamma.h"

#include "vsl/distributions/transforms.h"

#include <cmath>

using namespace xkl::vsl;

namespace {

/// a + beta*y, shape >= 1
template <class R>
int32_t gamma_from_one(stream &s, int64_t n, R *r, const gamma_shape &shape, double a, double beta)
{
    const auto transform = current_candidates().gamma;
    return by_rejection<2>(
        s, n, [&](int32_t count, const double *u, double *y) { transform(count, u, y, shape.d, shape.c); },
        [&](int64_t i, double y) { r[i] = static_cast<R>(a + beta * y); });
}

/// a + beta*y, shape < 1: a third uniform number for the power
template <class R>
int32_t gamma_below_one(stream &s, int64_t n, R *r, const gamma_shape &shape, double a, double beta)
{
    const auto transform = current_candidates().gamma;
    return by_rejection<3>(
        s, n,
        [&](int32_t count, const double *u, double *y) {
            double pairs[2 * block];
            for (int32_t i = 0; i < count; ++i) {
                pairs[2 * i] = u[3 * i];
                pairs[2 * i + 1] = u[3 * i + 1];
            }
            transform(count, pairs, y, shape.d, shape.c);
            for (int32_t i = 0; i < count; ++i)
                if (y[i] >= 0)
                    y[i] *= shape.power_of(u[3 * i + 2]);
        },
        [&](int64_t i, double y) { r[i] = static_cast<R>(a + beta * y); });
}

template <class R>
int32_t gamma(stream &s, int64_t n, R *r, double alpha, double a, double beta)
{
    if (!std::isfinite(alpha)) // no candidate would ever be accepted
        return not_numbers(n, r);
    const gamma_shape shape(alpha);
    return shape.below_one() ? gamma_below_one(s, n, r, shape, a, beta)
                             : gamma_from_one(s, n, r, shape, a, beta);
}

/// Cheng's BB if both shapes are above 1, else his BC
template <class R>
int32_t beta(stream &s, int64_t n, R *r, double p, double q, double displacement, double scale)
{
    if (!std::isfinite(p) || !std::isfinite(q))
        return not_numbers(n, r);
    // Beyond the largest the distribution is narrower than the last digits of its mean, below the smallest it
    // has the ends alone: which of them, the ratio of the shapes decides.
    constexpr double largest = 1e28, smallest = 1e-300;
    const bool complement = p > q;
    double low = std::min(p, q), high = std::max(p, q);
    if (low > largest) {
        high *= largest / low;
        low = largest;
    }
    if (low < smallest) {
        high = std::min(high * (smallest / low), largest);
        low = smallest;
    }
    double slope = -1 / low, c = 0;
    if (low > 1) { // 1/slope is sqrt((2*low*high - low - high)/(low + high - 2)), for any shapes
        const double sum = low + high,
                     inverse = std::sqrt((low / sum * (high - 1) + high / sum * (low - 1)) /
                                         ((low - 1) / sum + (high - 1) / sum));
        slope = 1 / inverse;
        c = low + inverse;
    }
    const beta_shapes shapes{low, high, std::log(low) - std::log(low + high), slope, c, complement};
    const auto transform = current_candidates().beta;
    return by_rejection<2>(
        s, n, [&](int32_t count, const double *u, double *y) { transform(count, u, y, shapes); },
        [&](int64_t i, double y) { r[i] = static_cast<R>(displacement + scale * y); });
}

} // namespace

XKL_VSL_KERNEL _vsldRngGamma(int32_t, void *handle, int32_t n, double *r, double alpha, double a,
                             double beta)
{
    return on_stream(handle, [&](stream &s) { return gamma(s, n, r, alpha, a, beta); });
}
XKL_VSL_KERNEL _vslsRngGamma(int32_t, void *handle, int32_t n, float *r, float alpha, float a, float beta)
{
    return on_stream(handle, [&](stream &s) { return gamma(s, n, r, alpha, a, beta); });
}

XKL_VSL_KERNEL _vsldRngChiSquare(int32_t, void *handle, int32_t n, double *r, int32_t degrees)
{
    return on_stream(handle, [&](stream &s) { return gamma(s, n, r, .5 * degrees, 0, 2); });
}
XKL_VSL_KERNEL _vslsRngChiSquare(int32_t, void *handle, int32_t n, float *r, int32_t degrees)
{
    return on_stream(handle, [&](stream &s) { return gamma(s, n, r, .5 * degrees, 0, 2); });
}

XKL_VSL_KERNEL _vsldRngBeta(int32_t, void *handle, int32_t n, double *r, double p, double q, double a,
                            double scale)
{
    return on_stream(handle, [&](stream &s) { return beta(s, n, r, p, q, a, scale); });
}
XKL_VSL_KERNEL _vslsRngBeta(int32_t, void *handle, int32_t n, float *r, float p, float q, float a,
                            float scale)
{
    return on_stream(handle, [&](stream &s) { return beta(s, n, r, p, q, a, scale); });
}
