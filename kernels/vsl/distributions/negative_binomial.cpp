// The negative binomial distribution: a Poisson number whose rate has a gamma distribution.
#include "vsl/distributions/gamma.h"
#include "vsl/distributions/poisson.h"

#include <cmath>

using namespace xkl::vsl;

XKL_VSL_KERNEL _vsliRngNegBinomial(int32_t, void *handle, int32_t n, int32_t *r, int32_t successes,
                                   double p)
{
    return on_stream(handle, [&](stream &s) {
        if (std::isnan(p))
            return int32_t{VSL_ERROR_BADARGS};
        const gamma_shape shape(successes);
        const double scale = (1 - p) / p;
        return sample(s, n, r, [&](uniform_reader &u) {
            const double rate = scale * gamma_number(u, shape);
            return poisson_number(u, rate);
        });
    });
}
