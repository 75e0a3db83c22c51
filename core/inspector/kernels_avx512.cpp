// Products for 512-bit registers, one a slice.
// The standard headers come first: what they define is shared with files for every processor.
#include "inspector/kernels.h"

#include <immintrin.h>

#pragma GCC target("avx512f,avx512vl,avx512dq,avx2,fma")
// The compiler's own headers make registers of unknown contents from themselves.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include "inspector/kernel_loops.h"

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

/// Eight elements of x where the mask has ones, zeros elsewhere
__m512d eight(const int32_t *columns, __mmask8 there, const double *x, int64_t base)
{
    const __m256i places = _mm256_maskz_loadu_epi32(there, columns);
    const __m256i from_0 = _mm256_sub_epi32(places, _mm256_set1_epi32(static_cast<int32_t>(base)));
    return _mm512_mask_i32gather_pd(_mm512_setzero_pd(), there, from_0, x, 8);
}
__m512d eight(const int64_t *columns, __mmask8 there, const double *x, int64_t base)
{
    const __m512i places = _mm512_maskz_loadu_epi64(there, columns);
    return _mm512_mask_i64gather_pd(_mm512_setzero_pd(), there,
                                    _mm512_sub_epi64(places, _mm512_set1_epi64(base)), x, 8);
}
__m256 eight(const int32_t *columns, __mmask8 there, const float *x, int64_t base)
{
    const __m256i places = _mm256_maskz_loadu_epi32(there, columns);
    const __m256i from_0 = _mm256_sub_epi32(places, _mm256_set1_epi32(static_cast<int32_t>(base)));
    return _mm256_mmask_i32gather_ps(_mm256_setzero_ps(), there, from_0, x, 4);
}
__m256 eight(const int64_t *columns, __mmask8 there, const float *x, int64_t base)
{
    const __m512i places = _mm512_maskz_loadu_epi64(there, columns);
    return _mm512_mask_i64gather_ps(_mm256_setzero_ps(), there,
                                    _mm512_sub_epi64(places, _mm512_set1_epi64(base)), x, 4);
}

__mmask8 first_of(int64_t left)
{
    return static_cast<__mmask8>(left >= 8 ? 0xff : (1 << left) - 1);
}

template <class I>
double dot_d(const double *values, const I *columns, int64_t count, const double *x, int64_t base)
{
    __m512d sums = _mm512_setzero_pd();
    for (int64_t k = 0; k < count; k += 8) {
        const __mmask8 there = first_of(count - k);
        sums = _mm512_fmadd_pd(_mm512_maskz_loadu_pd(there, values + k), eight(columns + k, there, x, base),
                               sums);
    }
    return _mm512_reduce_add_pd(sums);
}

template <class I>
float dot_s(const float *values, const I *columns, int64_t count, const float *x, int64_t base)
{
    __m256 sums = _mm256_setzero_ps();
    for (int64_t k = 0; k < count; k += 8) {
        const __mmask8 there = first_of(count - k);
        sums = _mm256_fmadd_ps(_mm256_maskz_loadu_ps(there, values + k), eight(columns + k, there, x, base),
                               sums);
    }
    const __m128 four = _mm_add_ps(_mm256_castps256_ps128(sums), _mm256_extractf128_ps(sums, 1));
    return (four[0] + four[2]) + (four[1] + four[3]);
}

} // namespace

const product_kernels kernels_avx512 = {
    {multiply_slices<float, sums_s>, multiply_rows<float, int32_t, dot_s<int32_t>>,
     multiply_rows<float, int64_t, dot_s<int64_t>>},
    {multiply_slices<double, sums_d>, multiply_rows<double, int32_t, dot_d<int32_t>>,
     multiply_rows<double, int64_t, dot_d<int64_t>>}};

} // namespace xkl::core::inspector
