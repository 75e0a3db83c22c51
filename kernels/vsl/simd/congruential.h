// Multiplicative congruential generators and MRG32k3a, eight elements at a time: each lane follows the
// recurrence of every eighth element.
#pragma once

#include "vsl/simd/integers.h"
#include "vsl/simd/loops.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// x, less m where that is not negative, for x below 2^63 + m. (SSE2 can't compare numbers of 64 bits.)
XKL_HOT words64 less_modulus(words64 x, uint64_t m)
{
    const words64 difference = x - m;
    return difference + ((words64{} - (difference >> 63)) & m);
}

/// a*b modulo 2^31 - 1, for numbers below that: the product's halves of 31 bits are added, twice.
XKL_HOT words64 times_modulo_mersenne(words64 a, words64 b)
{
    constexpr uint64_t m = 0x7fffffff;
    const words64 product = product_of_low(a, b);
    const words64 sum = (product & m) + (product >> 31);
    return less_modulus((sum & m) + (sum >> 31), m);
}

/// a*b modulo 2^59
XKL_HOT words64 times_modulo_2_59(words64 a, words64 b)
{
    return a * b & ((uint64_t{1} << 59) - 1);
}

/// x*powers[0], x*powers[1]...; the last block may be cut.
template <words64 (*times)(words64, words64), class Word>
XKL_HOT void powers_times(uint64_t x, const uint64_t powers[9], int32_t n, Word *r)
{
    const words64 step = words64{} + powers[8];
    eight now = load_eight(powers);
    for (words64 &part : now.part)
        part = times(part, words64{} + x);
    const auto store = [](Word *to, const eight &v) {
        if constexpr (sizeof(Word) == 4)
            store_low_halves(to, v);
        else
            store_eight(to, v);
    };
    for (; n >= 8; n -= 8, r += 8) {
        store(r, now);
        for (words64 &part : now.part)
            part = times(part, step);
    }
    Word rest[8];
    store(rest, now);
    for (int32_t i = 0; i < n; ++i)
        r[i] = rest[i];
}

static void mcg31(uint64_t x, const uint64_t powers[9], int32_t n, uint32_t *r)
{
    powers_times<times_modulo_mersenne>(x, powers, n, r);
}

static void mcg59(uint64_t x, const uint64_t powers[9], int32_t n, uint64_t *r)
{
    powers_times<times_modulo_2_59>(x, powers, n, r);
}

/// A number of 64 bits modulo 2^32 - d, not reduced fully: what is above 32 bits counts d times.
template <uint64_t D>
XKL_HOT words64 folded(words64 x)
{
    return (x & 0xffffffff) + product_of_low(x >> 32, words64{} + D);
}

/// c2*y2 + c1*y1 + c0*y0 modulo 2^32 - D, for D < 2^15
template <uint64_t D>
XKL_HOT words64 next_of_three(const words64 c[3], words64 y0, words64 y1, words64 y2)
{
    constexpr uint64_t m = (uint64_t{1} << 32) - D;
    const words64 sum = folded<D>(product_of_low(c[0], y0)) + folded<D>(product_of_low(c[1], y1)) +
                        folded<D>(product_of_low(c[2], y2)); // below 2^49
    return less_modulus(folded<D>(folded<D>(sum)), m);       // of a number below 2^32 + D
}

static void mrg32k3a(vsl::mrg_lanes &state, int32_t blocks, uint32_t *r)
{
    constexpr uint64_t d1 = 209, d2 = 22853, m1 = (uint64_t{1} << 32) - d1;
    eight y[2][3];
    words64 c[2][3];
    __builtin_memcpy(y, state.y, sizeof y);
    for (int component = 0; component < 2; ++component)
        for (int j = 0; j < 3; ++j)
            c[component][j] = words64{} + state.c[component][j];
    for (; blocks > 0; --blocks, r += 8) {
        eight z;
        for (int p = 0; p < eight::parts; ++p) {
            const words64 first = y[0][0].part[p], second = y[1][0].part[p];
            z.part[p] = less_modulus(first - second + m1 - 1, m1) + 1;
            const words64 next1 = next_of_three<d1>(c[0], first, y[0][1].part[p], y[0][2].part[p]);
            const words64 next2 = next_of_three<d2>(c[1], second, y[1][1].part[p], y[1][2].part[p]);
            y[0][0].part[p] = y[0][1].part[p];
            y[0][1].part[p] = y[0][2].part[p];
            y[0][2].part[p] = next1;
            y[1][0].part[p] = y[1][1].part[p];
            y[1][1].part[p] = y[1][2].part[p];
            y[1][2].part[p] = next2;
        }
        store_low_halves(r, z);
    }
    __builtin_memcpy(state.y, y, sizeof y);
}

} // namespace XKL_ISA
} // namespace xkl::kernels
