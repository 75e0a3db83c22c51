// NaN checks with 256-bit registers. The shared header comes first: what it defines is compiled for every
// processor.
#include "lapacke/nancheck_scan.h"

#include <immintrin.h>

#pragma GCC target("avx2")
#include "lapacke/nancheck_kernels.h"

namespace xkl::lapacke {
namespace {

template <class R>
struct lanes_256 {
    static constexpr int64_t width = 32 / sizeof(R);
    using bad = __m256;

    [[gnu::always_inline]] static bad unordered(const double *p, const double *q)
    {
        return _mm256_castpd_ps(_mm256_cmp_pd(_mm256_loadu_pd(p), _mm256_loadu_pd(q), _CMP_UNORD_Q));
    }
    [[gnu::always_inline]] static bad unordered(const float *p, const float *q)
    {
        return _mm256_cmp_ps(_mm256_loadu_ps(p), _mm256_loadu_ps(q), _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static bad either(bad a, bad b) { return _mm256_or_ps(a, b); }
    [[gnu::always_inline]] static bool any(bad a) { return _mm256_movemask_ps(a) != 0; }
    [[gnu::always_inline]] static bool tail(const R *p, int64_t count)
    {
        if (count >= width)
            return any(unordered(p, p + count - width));
        bool found = false;
        for (int64_t i = 0; i < count; ++i)
            found |= p[i] != p[i];
        return found;
    }
};

} // namespace

const nan_kernels nan_kernels_avx2 = kernels_with<lanes_256>;

} // namespace xkl::lapacke
