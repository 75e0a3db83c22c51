// NaN checks with 512-bit registers. The shared header comes first: what it defines is compiled for every
// processor.
#include "lapacke/nancheck_scan.h"

#include <immintrin.h>

#pragma GCC target("avx512f,avx512dq,bmi2")
#include "lapacke/nancheck_kernels.h"

namespace xkl::lapacke {
namespace {

/// Comparisons give masks, which stay in mask registers: the way to a general register and back takes longer
/// than a load.
template <class R>
struct lanes_512;

template <>
struct lanes_512<double> {
    static constexpr int64_t width = 8;

    [[gnu::always_inline]] static __mmask8 unordered(const double *p, const double *q)
    {
        return _mm512_cmp_pd_mask(_mm512_loadu_pd(p), _mm512_loadu_pd(q), _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static __mmask8 either(__mmask8 a, __mmask8 b) { return _kor_mask8(a, b); }
    [[gnu::always_inline]] static bool any(__mmask8 a) { return !_kortestz_mask8_u8(a, a); }
    /// Elements that the mask leaves out are not read, and count as zeros.
    [[gnu::always_inline]] static bool tail(const double *p, int64_t count)
    {
        const unsigned kept = (1u << count) - 1;
        return any(_mm512_cmp_pd_mask(
            _mm512_maskz_loadu_pd(static_cast<__mmask8>(kept), p),
            _mm512_maskz_loadu_pd(static_cast<__mmask8>(kept >> width), p + width), _CMP_UNORD_Q));
    }
};

template <>
struct lanes_512<float> {
    static constexpr int64_t width = 16;

    [[gnu::always_inline]] static __mmask16 unordered(const float *p, const float *q)
    {
        return _mm512_cmp_ps_mask(_mm512_loadu_ps(p), _mm512_loadu_ps(q), _CMP_UNORD_Q);
    }
    [[gnu::always_inline]] static __mmask16 either(__mmask16 a, __mmask16 b) { return _kor_mask16(a, b); }
    [[gnu::always_inline]] static bool any(__mmask16 a) { return !_kortestz_mask16_u8(a, a); }
    [[gnu::always_inline]] static bool tail(const float *p, int64_t count)
    {
        const unsigned kept = (1u << count) - 1;
        return any(_mm512_cmp_ps_mask(
            _mm512_maskz_loadu_ps(static_cast<__mmask16>(kept), p),
            _mm512_maskz_loadu_ps(static_cast<__mmask16>(kept >> width), p + width), _CMP_UNORD_Q));
    }
};

} // namespace

const nan_kernels nan_kernels_avx512 = kernels_with<lanes_512>;

} // namespace xkl::lapacke
