// R250 (Kirkpatrick and Stoll, 1981): x[j+250] = x[j+147] xor x[j], over 32-bit words.
//
// Seeds: 250 words and more are the first 250 elements of the recurrence as they are. Fewer: x[0] is
// the first word (1 for 0), x[j+1] = 69069*x[j]; then of word 7*k + 3, for k from 0 to 31, bit 31 - k
// is set and the bits above it are cleared, which makes the 32 columns of bits linearly independent.
// The first element given out is x[250].
#include "vsl/bit_blocks.h"

#include <cstring>

namespace xkl::vsl {

namespace {

struct r250 {
    static constexpr int32_t size = 250, stride = 1;

    static void seed(uint32_t *x, seed_words seeds) noexcept
    {
        if (seeds.size() >= static_cast<size_t>(size)) {
            std::memcpy(x, seeds.data(), size * sizeof *x);
            return;
        }
        const uint32_t start = seed_word(seeds, 0);
        x[0] = start == 0 ? 1 : start;
        for (int i = 1; i < size; ++i)
            x[i] = 69069 * x[i - 1];
        for (int k = 0; k < 32; ++k) {
            uint32_t &word = x[7 * k + 3];
            word = (word & (0xffffffffu >> k)) | (0x80000000u >> k);
        }
    }

    static const bit_modulus<4> &modulus() noexcept
    {
        static const bit_modulus<4> known([] {
            bit_polynomial<4> p;
            for (const size_t power : {250, 147, 0})
                p.flip(power);
            return p;
        }());
        return known;
    }

    static void refill(uint32_t *x) noexcept { simd().r250_refill(x); }
    static void read(int32_t n, const uint32_t *x, uint32_t *r) noexcept
    {
        std::memcpy(r, x, static_cast<size_t>(n) * sizeof *r);
    }
};

} // namespace

const engine r250_engine = engine_of<bit_blocks<r250>>(
    VSL_BRNG_R250, 250,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
