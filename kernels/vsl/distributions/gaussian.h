// Vectors of normal numbers, which others go on with.
#pragma once

#include "vsl/distributions/draw.h"
#include "vsl/distributions/transforms.h"

namespace xkl::vsl {

/// Two uniform numbers each
template <class R>
int32_t box_muller(stream &s, int64_t n, R *r, R a, R sigma)
{
    const auto transform = current_transforms<R>().box_muller;
    return in_blocks(n, [&](int64_t first, int32_t count) {
        R u[2 * block];
        const int32_t status = open_uniform(s, 2 * count, u);
        if (status >= 0)
            transform(count, u, r + first, a, sigma);
        return status;
    });
}

/// Two uniform numbers a pair; of an odd number of results the last one takes two.
template <class R>
int32_t box_muller2(stream &s, int64_t n, R *r, R a, R sigma)
{
    const auto transform = current_transforms<R>().box_muller2;
    const int64_t even = n - n % 2;
    int32_t status = in_blocks(even, [&](int64_t first, int32_t count) {
        const int32_t drawn = open_uniform(s, count, r + first);
        if (drawn >= 0)
            transform(count / 2, r + first, r + first, a, sigma);
        return drawn;
    });
    if (status >= 0 && even < n) {
        R pair[2];
        status = open_uniform(s, 2, pair);
        if (status >= 0) {
            transform(1, pair, pair, a, sigma);
            r[even] = pair[0];
        }
    }
    return status;
}

/// By the methods of RngGaussian
template <class R>
int32_t gaussian(int32_t method, stream &s, int64_t n, R *r, R a, R sigma)
{
    switch (without_flag(method)) {
    case VSL_RNG_METHOD_GAUSSIAN_BOXMULLER:
        return box_muller(s, n, r, a, sigma);
    case VSL_RNG_METHOD_GAUSSIAN_BOXMULLER2:
        return box_muller2(s, n, r, a, sigma);
    case VSL_RNG_METHOD_GAUSSIAN_ICDF:
        return inverted(s, n, r, current_transforms<R>().normal_inverse, a, sigma);
    default:
        return VSL_ERROR_BADARGS;
    }
}

} // namespace xkl::vsl
