// Philox4x32-10 (Salmon, Moraes, Dror and Shaw, 2011): counters of 128 bits, a key of 64. Whole blocks
// are made by the loop of this processor, single ones by Random123.
//
// Seeds: the first two words are the key, the next four the counter of the first block, all of them
// lowest first; missing ones are 0.
#include "vsl/counter_based.h"
#include "vsl/loops_of_set.h"

#include <Random123/philox.h>

namespace xkl::vsl {

namespace {

struct philox4x32_10 {
    static constexpr size_t key_words = 2;
    static constexpr int32_t missing = VSL_STATUS_OK; // is never missing
    static bool available() noexcept { return true; }

    static void blocks(uint128 first, const uint32_t *key, int32_t count, uint32_t *r) noexcept
    {
        const auto low = static_cast<uint64_t>(first), high = static_cast<uint64_t>(first >> 64);
        if (count > 1) {
            simd().philox(low, high, static_cast<uint64_t>(key[1]) << 32 | key[0], count, r);
            return;
        }
        const philox4x32_ctr_t counter = {{static_cast<uint32_t>(low), static_cast<uint32_t>(low >> 32),
                                           static_cast<uint32_t>(high), static_cast<uint32_t>(high >> 32)}};
        const philox4x32_key_t keys = {{key[0], key[1]}};
        const philox4x32_ctr_t words = philox4x32_R(10, counter, keys);
        std::memcpy(r, words.v, sizeof words.v);
    }
};

} // namespace

const engine philox_engine = engine_of<counter_based<philox4x32_10>>(
    VSL_BRNG_PHILOX4X32X10, 6,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
