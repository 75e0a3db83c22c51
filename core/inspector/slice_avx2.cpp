// Slices for 256-bit registers, two of them a slice.
// The standard headers come first: what they define is shared with files for every processor.
#include "inspector/slices.h"

#include <immintrin.h>

#pragma GCC target("avx2,fma")
#include "inspector/slice_kernels.h"

namespace xkl::core::inspector {
namespace {

struct sums_d {
    __m256d low, high; // cleared by a function: a constructor would be compiled for every processor

    void clear() { low = high = _mm256_setzero_pd(); }
    static __m256d gather(const int32_t *columns, const double *x)
    {
        const __m128i places = _mm_loadu_si128(reinterpret_cast<const __m128i *>(columns));
        const __m256i there =
            _mm256_cvtepi32_epi64(_mm_xor_si128(places, _mm_set1_epi32(-1))); // sign: is one
        return _mm256_mask_i32gather_pd(_mm256_setzero_pd(), x, places, _mm256_castsi256_pd(there), 8);
    }
    void add(const double *values, const int32_t *columns, const double *x)
    {
        low = _mm256_fmadd_pd(_mm256_loadu_pd(values), gather(columns, x), low);
        high = _mm256_fmadd_pd(_mm256_loadu_pd(values + 4), gather(columns + 4, x), high);
    }
    void store(double *to) const
    {
        _mm256_store_pd(to, low);
        _mm256_store_pd(to + 4, high);
    }
};

struct sums_s {
    __m256 low, high;

    void clear() { low = high = _mm256_setzero_ps(); }
    static __m256 gather(const int32_t *columns, const float *x)
    {
        const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(columns));
        const __m256i there = _mm256_xor_si256(places, _mm256_set1_epi32(-1));
        return _mm256_mask_i32gather_ps(_mm256_setzero_ps(), x, places, _mm256_castsi256_ps(there), 4);
    }
    void add(const float *values, const int32_t *columns, const float *x)
    {
        low = _mm256_fmadd_ps(_mm256_loadu_ps(values), gather(columns, x), low);
        high = _mm256_fmadd_ps(_mm256_loadu_ps(values + 8), gather(columns + 8, x), high);
    }
    void store(float *to) const
    {
        _mm256_store_ps(to, low);
        _mm256_store_ps(to + 8, high);
    }
};

} // namespace

const slice_kernels slices_avx2 = {multiply_slices<float, sums_s>, multiply_slices<double, sums_d>};

} // namespace xkl::core::inspector
