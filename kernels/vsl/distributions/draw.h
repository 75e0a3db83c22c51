// What the distributions share: how a kernel draws its uniform numbers. Everything is done in blocks on the
// stack, and never more numbers are drawn than the results take: so a stream goes on right behind the last
// one used, and two calls for n and m numbers give what one call for n + m gives, but for Box and Muller's
// second rule when n is odd.
#pragma once

#include "vsl/stream.h"
#include "xkl_vsl_types.h"

#include <algorithm>
#include <limits>

/// An entry of the kernel library
#define XKL_VSL_KERNEL extern "C" [[gnu::visibility("default")]] int32_t

namespace xkl::vsl {

constexpr int64_t block = 512; // numbers at a time: even, for those that come in pairs

/// The method itself; the flag that wants results inside of the bounds changes nothing, no rule here leaves
/// them
constexpr int32_t without_flag(int32_t method)
{
    return method & ~VSL_RNG_METHOD_ACCURACY_FLAG;
}

/// body(stream), if there is one and it lives
template <class Body>
int32_t on_stream(void *handle, Body body)
{
    auto *const s = static_cast<stream *>(handle);
    const int32_t status = check(s);
    return status < 0 ? status : body(*s);
}

/// step(first, count) for each block of n numbers, until one fails
template <class Step>
int32_t in_blocks(int64_t n, Step step)
{
    for (int64_t first = 0; first < n; first += block) {
        const int32_t status = step(first, static_cast<int32_t>(std::min(block, n - first)));
        if (status < 0)
            return status;
    }
    return VSL_STATUS_OK;
}

/// transform(count, r, r, parameters...) of uniform numbers in (0, 1), one each
template <class R, class Transform, class... P>
int32_t inverted(stream &s, int64_t n, R *r, Transform transform, P... parameters)
{
    return in_blocks(n, [&](int64_t first, int32_t count) {
        const int32_t status = open_uniform(s, count, r + first);
        if (status >= 0)
            transform(count, r + first, r + first, parameters...);
        return status;
    });
}

/// The same, of a kernel's stream
template <class R, class... Rest>
int32_t by_inversion(void *handle, int64_t n, R *r, Rest... rest)
{
    return on_stream(handle, [&](stream &s) { return inverted(s, n, r, rest...); });
}

/// For parameters that are none
template <class R>
int32_t not_numbers(int64_t n, R *r)
{
    std::fill_n(r, n, std::numeric_limits<R>::quiet_NaN());
    return VSL_STATUS_OK;
}

// As often a number is refused before a call gives up: a stream that repeats itself, or no number of a
// caller's generator being any good, shall not hang it.
constexpr int32_t patience = 100000;

/// Numbers that a rejection method makes. propose(count, u, y) makes of PerCandidate uniform numbers in
/// (0, 1) each candidates, refused ones negative; accept(i, y) stores the others, i = 0, 1, 2...
template <int PerCandidate, class Propose, class Accept>
int32_t by_rejection(stream &s, int64_t n, Propose propose, Accept accept)
{
    double u[PerCandidate * block], y[block];
    int32_t refused = 0;
    for (int64_t done = 0; done < n;) {
        const auto count = static_cast<int32_t>(std::min(block, n - done));
        const int32_t status = open_uniform(s, PerCandidate * count, u);
        if (status < 0)
            return status;
        propose(count, u, y);
        const int64_t before = done;
        for (int32_t i = 0; i < count; ++i)
            if (y[i] >= 0)
                accept(done++, y[i]);
        refused = done == before ? refused + count : 0;
        if (refused > patience)
            return VSL_ERROR_UNKNOWN;
    }
    return VSL_STATUS_OK;
}

} // namespace xkl::vsl
