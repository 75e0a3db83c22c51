// Generators that encrypt a counter: block after block of four words, each computed from its number alone.
#pragma once

#include "vsl/engine.h"

#include <cstring>

namespace xkl::vsl {

/// The place of a word in the sequence: a number of 130 bits, in three words of 64.
struct word_place {
    uint64_t part[3];

    static word_place of(uint128 block, uint32_t lane) noexcept
    {
        const auto low = static_cast<uint64_t>(block), high = static_cast<uint64_t>(block >> 64);
        return {{low << 2 | lane, high << 2 | low >> 62, high >> 62}};
    }
    uint128 block() const noexcept
    {
        const uint64_t low = part[0] >> 2 | part[1] << 62, high = part[1] >> 2 | part[2] << 62;
        return static_cast<uint128>(high) << 64 | low;
    }
    uint32_t lane() const noexcept { return part[0] & 3; }

    /// this += count * step; what is above 192 bits is the sequence's period many times over.
    void advance(step_count count, step_count step) noexcept
    {
        for (size_t i = 0; i < 3; ++i)
            for (size_t j = 0; i + j < 3; ++j)
                add(static_cast<uint128>(word_of(count, i)) * word_of(step, j), i + j);
    }

  private:
    void add(uint128 value, size_t at) noexcept
    {
        for (; at < 3; ++at) {
            value += part[at];
            part[at] = static_cast<uint64_t>(value);
            value >>= 64;
        }
    }
};

/// `Cipher` has the number of its key's words and
///     static bool available()
///     static void blocks(uint128 first, const uint32_t *key, int32_t count, uint32_t *r)
template <class Cipher>
struct counter_based {
    using word = uint32_t;

    word_place next;
    word_place stride; // words between elements; 1 but for leapfrog streams
    uint32_t key[Cipher::key_words];

    int32_t seed(seed_words seeds) noexcept
    {
        if (!Cipher::available())
            return Cipher::missing;
        for (size_t i = 0; i < Cipher::key_words; ++i)
            key[i] = seed_word(seeds, i);
        uint128 counter = 0;
        for (size_t i = 4; i-- > 0;)
            counter = counter << 32 | seed_word(seeds, Cipher::key_words + i);
        next = word_place::of(counter, 0);
        stride = {{1, 0, 0}};
        return VSL_STATUS_OK;
    }

    int32_t generate(int32_t n, uint32_t *r) noexcept
    {
        if (!Cipher::available()) // a stream saved by another machine
            return Cipher::missing;
        const uint64_t count = static_cast<uint32_t>(n);
        const word_place start = next;
        next.advance({&count, 1}, stride.part);
        if (stride.part[0] == 1 && (stride.part[1] | stride.part[2]) == 0)
            generate_run(start, n, r);
        else
            generate_strided(start, n, r);
        return VSL_STATUS_OK;
    }

    int32_t skip(step_count count) noexcept
    {
        next.advance(count, stride.part);
        return VSL_STATUS_OK;
    }

    int32_t leapfrog(uint32_t k, uint32_t step) noexcept
    {
        const uint64_t to_first = k, factor = step;
        next.advance({&to_first, 1}, stride.part);
        word_place longer{};
        longer.advance({&factor, 1}, stride.part);
        stride = longer;
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept { return true; }

  private:
    void generate_run(word_place start, int32_t n, uint32_t *r) const noexcept
    {
        uint128 block = start.block();
        uint32_t words[4];
        const auto cut = [&](uint32_t from, int32_t count) {
            Cipher::blocks(block++, key, 1, words);
            std::memcpy(r, words + from, static_cast<size_t>(count) * sizeof *r);
            r += count;
            n -= count;
        };
        if (const auto lane = static_cast<int32_t>(start.lane()); lane != 0)
            cut(start.lane(), n < 4 - lane ? n : 4 - lane);
        if (const int32_t whole = n / 4; whole > 0) {
            Cipher::blocks(block, key, whole, r);
            block += static_cast<uint32_t>(whole);
            r += 4 * static_cast<ptrdiff_t>(whole);
            n -= 4 * whole;
        }
        if (n > 0)
            cut(0, n);
    }

    void generate_strided(word_place at, int32_t n, uint32_t *r) const noexcept
    {
        constexpr uint64_t one = 1;
        for (int32_t i = 0; i < n; ++i) {
            uint32_t words[4];
            Cipher::blocks(at.block(), key, 1, words);
            r[i] = words[at.lane()];
            at.advance({&one, 1}, stride.part);
        }
    }
};

} // namespace xkl::vsl
