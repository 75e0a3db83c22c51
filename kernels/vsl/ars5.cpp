// ARS-5 (Salmon, Moraes, Dror and Shaw, 2011): counters and keys of 128 bits, five rounds of AES with a
// simple key schedule, by Random123. A processor without AES instructions gets
// VSL_RNG_ERROR_ARS5_NOT_SUPPORTED.
//
// Seeds: the first four words are the key, the next four the counter of the first block, all of them
// lowest first; missing ones are 0.
#include "vsl/counter_based.h"

// This file alone is compiled with AES instructions; no function of it runs before `available` has looked.
#include <Random123/ars.h>

namespace xkl::vsl {

namespace {

struct ars5 {
    static constexpr size_t key_words = 4;
    static constexpr int32_t missing = VSL_RNG_ERROR_ARS5_NOT_SUPPORTED;
    static bool available() noexcept { return __builtin_cpu_supports("aes") != 0; }

    static void blocks(uint128 first, const uint32_t *key, int32_t count, uint32_t *r) noexcept
    {
        ars1xm128i_key_t keys;
        keys.v[0].m = _mm_loadu_si128(reinterpret_cast<const __m128i *>(key));
        for (int32_t i = 0; i < count; ++i, ++first, r += 4) {
            ars1xm128i_ctr_t counter;
            counter.v[0].m = _mm_set_epi64x(static_cast<long long>(static_cast<uint64_t>(first >> 64)),
                                            static_cast<long long>(static_cast<uint64_t>(first)));
            const __m128i words = ars1xm128i_R(5, counter, keys).v[0].m;
            _mm_storeu_si128(reinterpret_cast<__m128i *>(r), words);
        }
    }
};

} // namespace

const engine ars5_engine = engine_of<counter_based<ars5>>(
    VSL_BRNG_ARS5, 8,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
