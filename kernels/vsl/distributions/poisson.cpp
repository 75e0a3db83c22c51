// Poisson distributions, of one rate or of one rate a number.
#include "vsl/distributions/poisson.h"

#include "scalar/policy.h"
#include "vsl/distributions/transforms.h"

#include <boost/math/special_functions/gamma.hpp>

using namespace xkl::vsl;

namespace xkl::vsl {

namespace {

/// The probability of at most k
double distribution_function(double k, double mean)
{
    return k < 0 ? 0 : boost::math::gamma_q(k + 1, mean, xkl::kernels::scalar::quiet());
}

} // namespace

// A normal number's polynomial approximates the inverse function so well that the exact one is asked only
// near its steps (M. B. Giles, Approximation of the inverse Poisson cumulative distribution function,
// 2016).
int32_t poisson_quantile(double u, double w, double mean)
{
    if (mean >= too_large_mean)
        return INT32_MAX;
    if (mean < small_mean)
        return add_up(poisson_law{mean}, u);
    const double root = std::sqrt(mean), square = w * w;
    const double x = mean + root * w + (1. / 3 + square / 6) - (w / 36 + w * square / 72) / root;
    const double error = (1. / 40 + square / 80 + square * square / 160) / mean;
    double k = std::max(std::floor(x - error), 0.);
    if (std::floor(x + error) == k)
        return to_integer(k);
    while (k > 0 && distribution_function(k - 1, mean) > u)
        --k;
    while (distribution_function(k, mean) <= u)
        ++k;
    return to_integer(k);
}

} // namespace xkl::vsl

namespace {

/// One uniform number each; the rate of result i is rate(i)
template <class Rate>
int32_t by_normal_numbers(stream &s, int64_t n, int32_t *r, Rate rate)
{
    const auto normal = current_transforms<double>().normal_inverse;
    return in_blocks(n, [&](int64_t first, int32_t count) {
        double u[block], w[block];
        const int32_t status = open_uniform(s, count, u);
        if (status < 0)
            return status;
        normal(count, u, w, 0, 1);
        for (int32_t i = 0; i < count; ++i)
            r[first + i] = poisson_quantile(u[i], w[i], rate(first + i));
        return status;
    });
}

int32_t poisson(int32_t method, stream &s, int32_t n, int32_t *r, double rate)
{
    if (!(rate > 0))
        return VSL_ERROR_BADARGS;
    const int32_t plain = without_flag(method);
    if (plain != VSL_RNG_METHOD_POISSON_PTPE && plain != VSL_RNG_METHOD_POISSON_POISNORM)
        return VSL_ERROR_BADARGS;
    if (rate < small_mean) // the inverse function is the fastest of all
        return sample(s, n, r, sums_of_law(poisson_law{rate}));
    if (plain == VSL_RNG_METHOD_POISSON_POISNORM)
        return by_normal_numbers(s, n, r, [rate](int64_t) { return rate; });
    if (rate >= too_large_mean)
        return sample(s, n, r, [rate](uniform_reader &u) { return poisson_number(u, rate); });
    return sample(s, n, r, poisson_rejection(rate));
}

} // namespace

XKL_VSL_KERNEL _vsliRngPoisson(int32_t method, void *handle, int32_t n, int32_t *r, double lambda)
{
    return on_stream(handle, [&](stream &s) { return poisson(method, s, n, r, lambda); });
}

XKL_VSL_KERNEL _vsliRngPoissonV(int32_t, void *handle, int32_t n, int32_t *r, const double *lambda)
{
    return on_stream(handle, [&](stream &s) {
        if (!std::all_of(lambda, lambda + n, [](double rate) { return rate > 0; }))
            return int32_t{VSL_ERROR_BADARGS};
        return by_normal_numbers(s, n, r, [lambda](int64_t i) { return lambda[i]; });
    });
}
