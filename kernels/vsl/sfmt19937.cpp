// SFMT19937 (Saito and Matsumoto, 2008): a Mersenne twister over words of 128 bits, read as 32-bit words.
//
// Seeds: one word is the authors' init_gen_rand, two and more their init_by_array with all words.
#include "vsl/bit_blocks.h"

#include <algorithm>
#include <cstring>

namespace xkl::vsl {

namespace {

struct sfmt19937 {
    static constexpr int32_t size = 624, stride = 4;

    static void seed_by_array(uint32_t *x, seed_words seeds) noexcept
    {
        constexpr int32_t lag = 11, middle = (size - lag) / 2;
        std::memset(x, 0x8b, size * sizeof *x);
        int32_t i = 0;
        // One step at place i; `fresh` is what it adds (or takes away) beside the place's own number.
        const auto step = [&](bool adding, uint32_t fresh) {
            uint32_t &here = x[i], &near = x[(i + middle) % size], &far = x[(i + middle + lag) % size];
            const uint32_t before = x[(i + size - 1) % size];
            const uint32_t mixed = adding ? here ^ near ^ before : here + near + before;
            uint32_t r = (mixed ^ (mixed >> 27)) * (adding ? 1664525u : 1566083941u);
            near = adding ? near + r : near ^ r;
            r = adding ? r + fresh : r - fresh;
            far = adding ? far + r : far ^ r;
            here = r;
            i = (i + 1) % size;
        };
        const size_t count = std::max<size_t>(seeds.size() + 1, size);
        step(true, static_cast<uint32_t>(seeds.size()));
        for (size_t j = 0; j + 1 < count; ++j)
            step(true, (j < seeds.size() ? seeds[j] : 0) + static_cast<uint32_t>(i));
        for (int32_t j = 0; j < size; ++j)
            step(false, static_cast<uint32_t>(i));
    }

    /// The full period is that of a state which has odd parity under this mask.
    static void certify_period(uint32_t *x) noexcept
    {
        constexpr uint32_t mask[4] = {1, 0, 0, 0x13c9e684};
        uint32_t parity = 0;
        for (int i = 0; i < 4; ++i)
            parity ^= x[i] & mask[i];
        if (__builtin_parity(parity) == 0)
            x[0] ^= 1;
    }

    static void seed(uint32_t *x, seed_words seeds) noexcept
    {
        if (seeds.size() < 2)
            fill_from_word(x, size, seed_word(seeds, 0));
        else
            seed_by_array(x, seeds);
        certify_period(x);
    }

    static bit_polynomial<313> annihilator() noexcept;

    static const bit_modulus<313> &modulus() noexcept
    {
        static const bit_modulus<313> known(annihilator());
        return known;
    }

    static void refill(uint32_t *x) noexcept { simd().sfmt19937_refill(x); }
    static void read(int32_t n, const uint32_t *x, uint32_t *r) noexcept
    {
        std::memcpy(r, x, static_cast<size_t>(n) * sizeof *r);
    }
};

// The recurrence has 19968 bits of state. Their polynomial is one of degree 19937, which any bit tells,
// times small factors, and a bit of one sequence may lack some of these. So what is left of sequences
// under the polynomial so far tells the missing ones, for as many seeds as make it certain.
bit_polynomial<313> sfmt19937::annihilator() noexcept
{
    constexpr int bits_of_state = 19968, steps = 2 * bits_of_state, words_of_step = stride;
    static uint32_t words[steps * words_of_step];
    bit_polynomial<313> p;
    p.flip(0);
    for (uint32_t number = 1; number <= 16; ++number) {
        bit_blocks<sfmt19937> any;
        any.seed({&number, 1});
        any.copy_raw(steps * words_of_step, words);
        if (p.degree() == 0)
            p = shortest_recurrence<313>(steps, [&](int i) { return words[words_of_step * i] & 1; });
        uint32_t left[size];
        for (;;) {
            sum_of_shifts<size>(p, words_of_step, words, left);
            const uint32_t *const some = std::find_if(left, left + size, [](uint32_t w) { return w != 0; });
            if (some == left + size)
                break;
            const int column = static_cast<int>(some - left) % words_of_step, bit = std::countr_zero(*some);
            p = product(p, shortest_recurrence<313>(size / words_of_step, [&](int i) {
                            return left[words_of_step * i + column] >> bit & 1;
                        }));
        }
    }
    return p;
}

} // namespace

const engine sfmt19937_engine = engine_of<bit_blocks<sfmt19937>>(
    VSL_BRNG_SFMT19937, 624,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
