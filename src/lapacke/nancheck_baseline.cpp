// NaN checks with the 128-bit registers that every 64-bit processor has.
#include "lapacke/nancheck_kernels.h"

#include <emmintrin.h>

namespace xkl::lapacke {
namespace {

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
    [[gnu::always_inline]] static bool tail(const R *p, int64_t count)
    {
        bool found = false;
        for (int64_t i = 0; i < count; ++i)
            found |= p[i] != p[i];
        return found;
    }
};

} // namespace

const nan_kernels nan_kernels_baseline = kernels_with<lanes_128>;

} // namespace xkl::lapacke
