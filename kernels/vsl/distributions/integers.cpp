// Integers of the plainest distributions, one uniform number each: Uniform, Bernoulli, Geometric, and the
// generator's bits as they are.
#include "vsl/distributions/reader.h"
#include "vsl/distributions/transforms.h"

#include <cmath>

using namespace xkl::vsl;

XKL_VSL_KERNEL _vsliRngUniform(int32_t, void *handle, int32_t n, int32_t *r, int32_t a, int32_t b)
{
    return on_stream(handle, [&](stream &s) {
        const double width = static_cast<double>(b) - a;
        return in_blocks(n, [&](int64_t first, int32_t count) {
            double u[block];
            const int32_t status = uniform(s, count, u, 0., width);
            if (status >= 0)
                for (int32_t i = 0; i < count; ++i)
                    r[first + i] = static_cast<int32_t>(a + static_cast<int64_t>(u[i]));
            return status;
        });
    });
}

XKL_VSL_KERNEL _vsliRngBernoulli(int32_t, void *handle, int32_t n, int32_t *r, double p)
{
    return on_stream(handle, [&](stream &s) {
        if (std::isnan(p))
            return int32_t{VSL_ERROR_BADARGS};
        return in_blocks(n, [&](int64_t first, int32_t count) {
            double u[block];
            const int32_t status = uniform(s, count, u, 0., 1.);
            if (status >= 0)
                for (int32_t i = 0; i < count; ++i)
                    r[first + i] = u[i] < p;
            return status;
        });
    });
}

// The integer part of an exponential number
XKL_VSL_KERNEL _vsliRngGeometric(int32_t, void *handle, int32_t n, int32_t *r, double p)
{
    return on_stream(handle, [&](stream &s) {
        if (std::isnan(p))
            return int32_t{VSL_ERROR_BADARGS};
        const double beta = -1 / std::log1p(-p);
        const auto transform = current_transforms<double>().exponential;
        return in_blocks(n, [&](int64_t first, int32_t count) {
            double u[block];
            const int32_t status = open_uniform(s, count, u);
            if (status < 0)
                return status;
            transform(count, u, u, 0, beta);
            for (int32_t i = 0; i < count; ++i)
                r[first + i] = to_integer(u[i]);
            return status;
        });
    });
}

XKL_VSL_KERNEL _vsliRngUniformBits(int32_t, void *handle, int32_t n, uint32_t *r)
{
    return on_stream(handle, [&](stream &s) { return native_bits(s, n, r); });
}
XKL_VSL_KERNEL _vsliRngUniformBits32(int32_t, void *handle, int32_t n, uint32_t *r)
{
    return on_stream(handle, [&](stream &s) { return bits32(s, n, r); });
}
XKL_VSL_KERNEL _vsliRngUniformBits64(int32_t, void *handle, int32_t n, uint64_t *r)
{
    return on_stream(handle, [&](stream &s) { return bits64(s, n, r); });
}
