// Slices for 512-bit registers, one a slice.
// The standard headers come first: what they define is shared with files for every processor.
#include "inspector/slices.h"

#include <immintrin.h>

#pragma GCC target("avx512f,avx512vl,avx512dq,avx2,fma")
#include "inspector/slice_kernels.h"

namespace xkl::core::inspector {
namespace {

struct sums_d {
    __m512d all; // cleared by a function: a constructor would be compiled for every processor

    void clear() { all = _mm512_setzero_pd(); }
    void add(const double *values, const int32_t *columns, const double *x)
    {
        const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(columns));
        const __mmask8 there = _mm256_cmpge_epi32_mask(places, _mm256_setzero_si256());
        const __m512d right = _mm512_mask_i32gather_pd(_mm512_setzero_pd(), there, places, x, 8);
        all = _mm512_fmadd_pd(_mm512_loadu_pd(values), right, all);
    }
    void store(double *to) const { _mm512_store_pd(to, all); }
};

struct sums_s {
    __m512 all;

    void clear() { all = _mm512_setzero_ps(); }
    void add(const float *values, const int32_t *columns, const float *x)
    {
        const __m512i places = _mm512_loadu_si512(columns);
        const __mmask16 there = _mm512_cmpge_epi32_mask(places, _mm512_setzero_si512());
        const __m512 right = _mm512_mask_i32gather_ps(_mm512_setzero_ps(), there, places, x, 4);
        all = _mm512_fmadd_ps(_mm512_loadu_ps(values), right, all);
    }
    void store(float *to) const { _mm512_store_ps(to, all); }
};

} // namespace

const slice_kernels slices_avx512 = {multiply_slices<float, sums_s>, multiply_slices<double, sums_d>};

} // namespace xkl::core::inspector
