// Generators over bits: a block of their state anew, with as many words at a time as a register has.
#pragma once

#include "vsl/simd/integers.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// r[i] = f(r[i], r[i + near], r[i + far]) for i from `from` up to `to`; the offsets are longer than a
/// register, or ahead of what is written.
template <class F>
XKL_HOT void rewrite(uint32_t *r, int from, int to, int near, int far, const F &f)
{
    int i = from;
    for (; i + lanes<uint32_t> <= to; i += lanes<uint32_t>)
        stored(r + i,
               f(loaded<words32>(r + i), loaded<words32>(r + i + near), loaded<words32>(r + i + far)));
    for (; i < to; ++i)
        r[i] = f(r[i], r[i + near], r[i + far]);
}

/// x[k+624] = x[k+397] ^ twisted(upper bit of x[k], lower bits of x[k+1])
static void mt19937_refill(uint32_t state[624])
{
    const auto twist = [](auto x, auto next, auto far) __attribute__((always_inline))
    {
        const auto y = (x & 0x80000000u) | (next & 0x7fffffffu);
        return far ^ (y >> 1) ^ ((0u - (next & 1)) & 0x9908b0dfu);
    };
    rewrite(state, 0, 227, 1, 397, twist);
    rewrite(state, 227, 623, 1, -227, twist);
    state[623] = twist(state[623], state[0], state[396]);
}

static void mt19937_temper(int32_t n, const uint32_t *state, uint32_t *r)
{
    const auto tempered = [](auto y) __attribute__((always_inline))
    {
        y ^= y >> 11;
        y ^= (y << 7) & 0x9d2c5680u;
        y ^= (y << 15) & 0xefc60000u;
        return y ^ (y >> 18);
    };
    int32_t i = 0;
    for (; i + lanes<uint32_t> <= n; i += lanes<uint32_t>)
        stored(r + i, tempered(loaded<words32>(state + i)));
    for (; i < n; ++i)
        r[i] = tempered(state[i]);
}

/// x[k+250] = x[k+147] ^ x[k]
static void r250_refill(uint32_t state[250])
{
    const auto sum = [](auto x, auto, auto far) __attribute__((always_inline))
    {
        return x ^ far;
    };
    rewrite(state, 0, 103, 0, 147, sum);
    rewrite(state, 103, 250, 0, -103, sum);
}

/// One step of SFMT19937's recursion over words of 128 bits
XKL_HOT __m128i sfmt_next(__m128i a, __m128i b, __m128i c, __m128i d)
{
    const __m128i mask = _mm_set_epi32(static_cast<int>(0xbffffff6), static_cast<int>(0xbffaffff),
                                       static_cast<int>(0xddfecb7f), static_cast<int>(0xdfffffef));
    const __m128i shifted = _mm_xor_si128(_mm_xor_si128(a, _mm_slli_si128(a, 1)), _mm_slli_epi32(d, 18));
    const __m128i masked = _mm_and_si128(_mm_srli_epi32(b, 11), mask);
    return _mm_xor_si128(_mm_xor_si128(shifted, masked), _mm_srli_si128(c, 1));
}

static void sfmt19937_refill(uint32_t state[624])
{
    constexpr int count = 156, middle = 122;
    auto *const w = reinterpret_cast<__m128i *>(state);
    __m128i before = _mm_loadu_si128(w + count - 2), last = _mm_loadu_si128(w + count - 1);
    for (int i = 0; i < count; ++i) {
        const int far = i + middle < count ? i + middle : i + middle - count;
        const __m128i next = sfmt_next(_mm_loadu_si128(w + i), _mm_loadu_si128(w + far), before, last);
        _mm_storeu_si128(w + i, next);
        before = last;
        last = next;
    }
}

} // namespace XKL_ISA
} // namespace xkl::kernels
