// NaN checks with 512-bit registers. The shared header comes first: what it defines is compiled for every processor.
#include "lapacke/nancheck_scan.h"

#include <immintrin.h>

#pragma GCC target("avx512f")
#include "lapacke/nancheck_kernels.h"

namespace xkl::lapacke {
namespace {

template <class R>
struct lanes_512 {
    static constexpr int64_t width = 64 / sizeof(R);
    using bad = unsigned;

    [[gnu::always_inline]] static bad unordered(const double *p, const double *q)
    {
        return _mm512_cmp_pd_mask(_mm512_loadu_pd(p), _mm512_loadu_pd(q), _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static bad unordered(const float *p, const float *q)
    {
        return _mm512_cmp_ps_mask(_mm512_loadu_ps(p), _mm512_loadu_ps(q), _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static bad either(bad a, bad b) { return a | b; }
    [[gnu::always_inline]] static bool any(bad a) { return a != 0; }
    /// Elements that the mask leaves out are not read, and count as zeros.
    [[gnu::always_inline]] static bad tail(const double *p, int64_t count)
    {
        const unsigned kept = (1u << count) - 1;
        return _mm512_cmp_pd_mask(_mm512_maskz_loadu_pd(static_cast<__mmask8>(kept), p),
                                  _mm512_maskz_loadu_pd(static_cast<__mmask8>(kept >> width), p + width),
                                  _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static bad tail(const float *p, int64_t count)
    {
        const unsigned kept = (1u << count) - 1;
        return _mm512_cmp_ps_mask(_mm512_maskz_loadu_ps(static_cast<__mmask16>(kept), p),
                                  _mm512_maskz_loadu_ps(static_cast<__mmask16>(kept >> width), p + width),
                                  _CMP_UNORD_Q);
    }
};

} // namespace

const nan_kernels nan_kernels_avx512 = kernels_with<lanes_512>;

} // namespace xkl::lapacke
