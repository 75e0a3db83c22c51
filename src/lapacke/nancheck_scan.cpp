// NaN checks: small ones at once, others with the widest registers that the processor and the system have.
#include "lapacke/nancheck_kernels.h"

#include <emmintrin.h>

namespace xkl::lapacke {
namespace {

/// The registers that every 64-bit processor has.
template <class R>
struct lanes_128 {
    static constexpr int64_t width = 16 / sizeof(R);
    using bad = __m128;

    [[gnu::always_inline]] static bad unordered(const double *p, const double *q)
    {
        return _mm_castpd_ps(_mm_cmpunord_pd(_mm_loadu_pd(p), _mm_loadu_pd(q)));
    }
    [[gnu::always_inline]] static bad unordered(const float *p, const float *q)
    {
        return _mm_cmpunord_ps(_mm_loadu_ps(p), _mm_loadu_ps(q));
    }
    [[gnu::always_inline]] static bad either(bad a, bad b) { return _mm_or_ps(a, b); }
    [[gnu::always_inline]] static bool any(bad a) { return _mm_movemask_ps(a) != 0; }
    [[gnu::always_inline]] static bool any(bool a) { return a; }
    [[gnu::always_inline]] static bool tail(const R *p, int64_t count)
    {
        bool found = false;
        for (int64_t i = 0; i < count; ++i)
            found |= p[i] != p[i];
        return found;
    }
};

/// Lines that follow one another without a gap are one line.
inline line_parts joined(const line_starts &starts, const line_parts &parts)
{
    const bool whole = parts.first_of(0) <= parts.low && parts.first_of(parts.count - 1) <= parts.low &&
                       parts.last_of(0) >= parts.high && parts.last_of(parts.count - 1) >= parts.high;
    if (whole && starts.growth == 0 && starts.step == parts.high && parts.low == 0)
        return {1, 0, parts.count * parts.high, 0, 0, parts.count * parts.high};
    return parts;
}

template <class R>
bool search_by_processor(bool (*const nan_kernels::*kernel)(const R *, const line_starts &,
                                                            const line_parts &),
                         const R *a, const line_starts &starts, const line_parts &given)
{
    const line_parts parts = joined(starts, given);
    if (__builtin_cpu_supports("avx512f"))
        return (nan_kernels_avx512.*kernel)(a, starts, parts);
    if (__builtin_cpu_supports("avx2"))
        return (nan_kernels_avx2.*kernel)(a, starts, parts);
    return (kernels_with<lanes_128>.*kernel)(a, starts, parts);
}

} // namespace

bool lines_hold_nan(const float *a, const line_starts &starts, const line_parts &parts)
{
    return search_by_processor(&nan_kernels::of_floats, a, starts, parts);
}
bool lines_hold_nan(const double *a, const line_starts &starts, const line_parts &parts)
{
    return search_by_processor(&nan_kernels::of_doubles, a, starts, parts);
}

} // namespace xkl::lapacke
