// Integer arithmetic on registers that the compiler's own vector types lack.
#pragma once

#include "vector.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

using words32 = vec<uint32_t>;
using words64 = vec<uint64_t>;

template <class V>
XKL_HOT V loaded(const element<V> *from)
{
    V v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

template <class V>
XKL_HOT void stored(element<V> *to, V v)
{
    __builtin_memcpy(to, &v, sizeof v);
}

/// The products of the lanes' low halves
XKL_HOT words64 product_of_low(words64 a, words64 b)
{
#if defined(__AVX512F__)
    return bits_as<words64>(_mm512_mul_epu32(bits_as<__m512i>(a), bits_as<__m512i>(b)));
#elif defined(__AVX2__)
    return bits_as<words64>(_mm256_mul_epu32(bits_as<__m256i>(a), bits_as<__m256i>(b)));
#else
    return bits_as<words64>(_mm_mul_epu32(bits_as<__m128i>(a), bits_as<__m128i>(b)));
#endif
}

/// Eight 64-bit lanes, in as many registers as that takes
struct eight {
    static constexpr int parts = 8 / lanes<uint64_t>;
    words64 part[parts];
};

XKL_HOT eight load_eight(const uint64_t *from)
{
    eight v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}

XKL_HOT void store_eight(uint64_t *to, const eight &v)
{
    __builtin_memcpy(to, &v, sizeof v);
}

/// The low halves of eight lanes
XKL_HOT void store_low_halves(uint32_t *to, const eight &v)
{
    using half [[gnu::vector_size(register_bytes / 2)]] = uint32_t;
    for (int p = 0; p < eight::parts; ++p) {
        const half low = __builtin_convertvector(v.part[p], half);
        __builtin_memcpy(to + p * lanes<uint64_t>, &low, sizeof low);
    }
}

} // namespace XKL_ISA
} // namespace xkl::kernels
