// Elements of a generator as numbers of an interval.
#pragma once

#include "vsl/simd/integers.h"
#include "vsl/simd/loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class R>
XKL_HOT vec<R> least(vec<R> a, R b)
{
    const vec<R> other = broadcast(b);
    return a < other ? a : other;
}

/// Unsigned words as doubles, exactly: as signed ones, 2^31 too small
XKL_HOT vec<double> as_doubles(const uint32_t *words)
{
    using half [[gnu::vector_size(register_bytes / 2)]] = int32_t;
    half w;
    __builtin_memcpy(&w, words, sizeof w);
    return __builtin_convertvector(w ^ INT32_MIN, vec<double>) + 0x1p31;
}

static void doubles(int32_t n, const uint32_t *words, double *r, vsl::mapping<double> how)
{
    int32_t i = 0;
    for (; i + lanes<double> <= n; i += lanes<double>)
        stored(r + i, least(how.a + how.width * (as_doubles(words + i) * how.unit), how.last));
    for (; i < n; ++i) {
        const double x = how.a + how.width * (words[i] * how.unit);
        r[i] = x < how.last ? x : how.last;
    }
}

static void floats(int32_t n, const uint32_t *words, float *r, vsl::mapping<float> how)
{
    int32_t i = 0;
    for (; i + lanes<float> <= n; i += lanes<float>) {
        const auto high = bits_as<vec<int32_t>>(loaded<words32>(words + i) >> how.shift);
        const vec<float> u = __builtin_convertvector(high, vec<float>) * how.unit;
        stored(r + i, least(how.a + how.width * u, how.last));
    }
    for (; i < n; ++i) {
        const float u = static_cast<float>(static_cast<int32_t>(words[i] >> how.shift)) * how.unit;
        const float x = how.a + how.width * u;
        r[i] = x < how.last ? x : how.last;
    }
}

/// Of elements that have more bits than a number; the shift leaves as many as that has.
template <class R>
static void of_long(int32_t n, const uint64_t *words, R *r, vsl::mapping<R> how)
{
    for (int32_t i = 0; i < n; ++i) {
        const R u = static_cast<R>(static_cast<int64_t>(words[i] >> how.shift)) * how.unit;
        const R x = how.a + how.width * u;
        r[i] = x < how.last ? x : how.last;
    }
}

} // namespace XKL_ISA
} // namespace xkl::kernels
