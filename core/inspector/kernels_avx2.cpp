// Products for 256-bit registers, two of them a slice.
// The standard headers come first: what they define is shared with files for every processor.
#include "inspector/kernels.h"

#include <immintrin.h>

#pragma GCC target("avx2,fma")
// The compiler's own headers make registers of unknown contents from themselves.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include "inspector/kernel_loops.h"

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

/// Four elements of x, in double or single precision
__m256d four(const int32_t *columns, const double *x, int64_t base)
{
    const __m128i places = _mm_loadu_si128(reinterpret_cast<const __m128i *>(columns));
    return _mm256_i32gather_pd(x, _mm_sub_epi32(places, _mm_set1_epi32(static_cast<int32_t>(base))), 8);
}
__m256d four(const int64_t *columns, const double *x, int64_t base)
{
    const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(columns));
    return _mm256_i64gather_pd(x, _mm256_sub_epi64(places, _mm256_set1_epi64x(base)), 8);
}
__m128 four(const int32_t *columns, const float *x, int64_t base)
{
    const __m128i places = _mm_loadu_si128(reinterpret_cast<const __m128i *>(columns));
    return _mm_i32gather_ps(x, _mm_sub_epi32(places, _mm_set1_epi32(static_cast<int32_t>(base))), 4);
}
__m128 four(const int64_t *columns, const float *x, int64_t base)
{
    const __m256i places = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(columns));
    return _mm256_i64gather_ps(x, _mm256_sub_epi64(places, _mm256_set1_epi64x(base)), 4);
}

template <class I>
double dot_d(const double *values, const I *columns, int64_t count, const double *x, int64_t base)
{
    __m256d sums = _mm256_setzero_pd();
    int64_t k = 0;
    for (; k + 4 <= count; k += 4)
        sums = _mm256_fmadd_pd(_mm256_loadu_pd(values + k), four(columns + k, x, base), sums);
    const __m128d pair = _mm_add_pd(_mm256_castpd256_pd128(sums), _mm256_extractf128_pd(sums, 1));
    double sum = pair[0] + pair[1];
    for (; k < count; ++k)
        sum += values[k] * x[columns[k] - base];
    return sum;
}

template <class I>
float dot_s(const float *values, const I *columns, int64_t count, const float *x, int64_t base)
{
    __m128 sums = _mm_setzero_ps();
    int64_t k = 0;
    for (; k + 4 <= count; k += 4)
        sums = _mm_fmadd_ps(_mm_loadu_ps(values + k), four(columns + k, x, base), sums);
    float sum = (sums[0] + sums[2]) + (sums[1] + sums[3]);
    for (; k < count; ++k)
        sum += values[k] * x[columns[k] - base];
    return sum;
}

} // namespace

const product_kernels kernels_avx2 = {
    {multiply_slices<float, sums_s>, multiply_rows<float, int32_t, dot_s<int32_t>>,
     multiply_rows<float, int64_t, dot_s<int64_t>>},
    {multiply_slices<double, sums_d>, multiply_rows<double, int32_t, dot_d<int32_t>>,
     multiply_rows<double, int64_t, dot_d<int64_t>>}};

} // namespace xkl::core::inspector
