// Philox4x32-10, eight counters at a time; each 64-bit lane holds one of a counter's four words.
#pragma once

#include "packs.h"
#include "vsl/simd/integers.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

XKL_HOT void philox_round(words64 x[4], uint32_t key0, uint32_t key1)
{
    constexpr uint64_t low_half = 0xffffffff;
    const words64 product0 = product_of_low(x[0], words64{} + uint64_t{0xd2511f53}),
                  product1 = product_of_low(x[2], words64{} + uint64_t{0xcd9e8d57});
    const words64 y0 = (product1 >> 32) ^ x[1] ^ uint64_t { key0 },
                  y2 = (product0 >> 32) ^ x[3] ^ uint64_t { key1 };
    x[1] = product1 & low_half;
    x[3] = product0 & low_half;
    x[0] = y0;
    x[2] = y2;
}

/// The blocks of counters low + i, for as many as a register has 64-bit lanes
XKL_HOT void philox_register(uint64_t low, uint64_t high, uint64_t key, uint32_t *r)
{
    words64 index;
    for (int i = 0; i < lanes<uint64_t>; ++i)
        index[i] = static_cast<uint64_t>(i);
    const words64 counter = low + index;
    words64 upper = words64{} + high;
    if (low + (lanes<uint64_t> - 1) < low) [[unlikely]]
        upper = counter < low ? upper + 1 : upper;
    words64 x[4] = {counter & 0xffffffff, counter >> 32, upper & 0xffffffff, upper >> 32};
    auto key0 = static_cast<uint32_t>(key), key1 = static_cast<uint32_t>(key >> 32);
    for (int round = 0; round < 10; ++round) {
        philox_round(x, key0, key1);
        key0 += 0x9e3779b9;
        key1 += 0xbb67ae85;
    }
    const words64 first = x[0] | x[1] << 32, second = x[2] | x[3] << 32;
    const auto order = lane_numbers<uint64_t>{};
    stored(reinterpret_cast<uint64_t *>(r), merged<0>(first, second, order));
    stored(reinterpret_cast<uint64_t *>(r) + lanes<uint64_t>, merged<1>(first, second, order));
}

static void philox(uint64_t low, uint64_t high, uint64_t key, int32_t blocks, uint32_t *r)
{
    constexpr int together = lanes<uint64_t>;
    const auto advance = [&](int count) {
        low += static_cast<uint64_t>(count);
        high += low < static_cast<uint64_t>(count);
    };
    for (; blocks >= together; blocks -= together, r += 4 * together, advance(together))
        philox_register(low, high, key, r);
    if (blocks > 0) {
        alignas(64) uint32_t rest[4 * together];
        philox_register(low, high, key, rest);
        __builtin_memcpy(r, rest, static_cast<unsigned>(16 * blocks));
    }
}

} // namespace XKL_ISA
} // namespace xkl::kernels
