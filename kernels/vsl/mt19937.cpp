// MT19937 (Matsumoto and Nishimura, 1998), with the authors' initialisation of 2002.
//
// Seeds: one word is their init_genrand, two and more their init_by_array with all words.
#include "vsl/bit_blocks.h"

#include <algorithm>

namespace xkl::vsl {

namespace {

struct mt19937 {
    static constexpr int32_t size = 624, stride = 1;

    static void seed(uint32_t *x, seed_words seeds) noexcept
    {
        if (seeds.size() < 2) {
            fill_from_word(x, size, seed_word(seeds, 0));
            return;
        }
        fill_from_word(x, size, 19650218);
        int32_t i = 1;
        const auto mixed = [&](uint32_t factor) { return x[i] ^ ((x[i - 1] ^ (x[i - 1] >> 30)) * factor); };
        const auto next = [&] {
            if (++i == size) {
                x[0] = x[size - 1];
                i = 1;
            }
        };
        size_t j = 0;
        for (size_t k = std::max<size_t>(size, seeds.size()); k > 0; --k) {
            x[i] = mixed(1664525) + seeds[j] + static_cast<uint32_t>(j);
            next();
            j = j + 1 == seeds.size() ? 0 : j + 1;
        }
        for (int32_t k = size - 1; k > 0; --k) {
            x[i] = mixed(1566083941) - static_cast<uint32_t>(i);
            next();
        }
        x[0] = 0x80000000;
    }

    // Of degree 19937 and irreducible: any bit of any sequence tells it. It is found once, when it is
    // needed.
    static const bit_modulus<312> &modulus() noexcept
    {
        static const bit_modulus<312> known([] {
            constexpr int degree = 19937;
            static uint32_t words[2 * degree];
            bit_blocks<mt19937> any;
            any.seed({});
            any.copy_raw(2 * degree, words);
            return shortest_recurrence<312>(2 * degree, [&](int i) { return words[i] & 1; });
        }());
        return known;
    }

    static void refill(uint32_t *x) noexcept { simd().mt19937_refill(x); }
    static void read(int32_t n, const uint32_t *x, uint32_t *r) noexcept { simd().mt19937_temper(n, x, r); }
};

} // namespace

const engine mt19937_engine = engine_of<bit_blocks<mt19937>>(
    VSL_BRNG_MT19937, 624,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
