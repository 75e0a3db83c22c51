// One number of the Poisson distribution.
#pragma once

#include "vsl/distributions/discrete_laws.h"
#include "vsl/distributions/transformed_rejection.h"

namespace xkl::vsl {

// From here on no result that comes out would fit into its type.
constexpr double too_large_mean = 0x1p33;

inline int32_t poisson_number(uniform_reader &u, double mean)
{
    if (mean >= too_large_mean)
        return u.next(), INT32_MAX;
    return mean < small_mean ? add_up(poisson_law{mean}, u.next()) : poisson_rejection(mean)(u);
}

/// The result for one uniform number u, whose normal number is w: what the inverse distribution function
/// gives
int32_t poisson_quantile(double u, double w, double mean);

} // namespace xkl::vsl
