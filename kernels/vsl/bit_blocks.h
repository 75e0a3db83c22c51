// Generators over bits that renew a block of their state at a time and give it out word by word.
//
// They are moved by few elements by renewing blocks, by many through the polynomial of their recurrence.
#pragma once

#include "vsl/bit_polynomial.h"
#include "vsl/engine.h"
#include "vsl/loops_of_set.h"

#include <algorithm>
#include <memory>
#include <new>

namespace xkl::vsl {

/// The start of the Mersenne twisters: `size` words from one seed
inline void fill_from_word(uint32_t *x, uint32_t size, uint32_t seed) noexcept
{
    x[0] = seed;
    for (uint32_t i = 1; i < size; ++i)
        x[i] = 1812433253u * (x[i - 1] ^ (x[i - 1] >> 30)) + i;
}

/// `Block` says how a block of Block::size words is seeded, renewed and read; a step of its recurrence is
/// Block::stride words, and Block::modulus() its polynomial.
template <class Block>
struct bit_blocks {
    using word = uint32_t;

    int32_t used; // words of the block that were given out
    uint32_t block[Block::size];

    int32_t seed(seed_words seeds) noexcept
    {
        Block::seed(block, seeds);
        used = Block::size;
        return VSL_STATUS_OK;
    }

    int32_t generate(int32_t n, uint32_t *r) noexcept
    {
        give_out(n, r, Block::read);
        return VSL_STATUS_OK;
    }

    /// The next n words as the recurrence has them
    void copy_raw(int32_t n, uint32_t *r) noexcept
    {
        give_out(n, r, [](int32_t count, const uint32_t *x, uint32_t *to) { std::copy_n(x, count, to); });
    }

    int32_t skip(step_count count) noexcept
    {
        constexpr uint64_t worth_a_jump = 1 << 24; // as many are renewed in some milliseconds
        if (bit_length(count) > 64 || word_of(count, 0) >= worth_a_jump)
            return jump(count);
        auto left = static_cast<int32_t>(word_of(count, 0));
        for (; left > Block::size - used; used = 0) {
            left -= Block::size - used;
            Block::refill(block);
        }
        used += left;
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept { return used >= 0 && used <= Block::size; }

  private:
    /// read(count, x, r) for the next n words, as many of a block at a time as it has left
    template <class Read>
    void give_out(int32_t n, uint32_t *r, const Read &read) noexcept
    {
        while (n > 0) {
            if (used == Block::size) {
                Block::refill(block);
                used = 0;
            }
            const int32_t count = std::min(n, Block::size - used);
            read(count, block + used, r);
            used += count;
            r += count;
            n -= count;
        }
    }

    /// Sums need words that follow the recurrence in all of their bits, as those that are still to come do.
    int32_t jump(step_count count) noexcept
    {
        const auto &modulus = Block::modulus();
        const int32_t within = used % Block::stride;
        used -= within;
        const auto room = static_cast<size_t>(modulus.degree()) * Block::stride + Block::size;
        const std::unique_ptr<uint32_t[]> words(new (std::nothrow) uint32_t[room]);
        if (!words)
            return VSL_ERROR_MEM_FAILURE;
        bit_blocks ahead = *this;
        ahead.copy_raw(static_cast<int32_t>(room), words.get());
        const auto g = modulus.power_of_t(count, std::countr_zero(static_cast<unsigned>(Block::stride)));
        sum_of_shifts<Block::size>(g, Block::stride, words.get(), block);
        used = within + static_cast<int32_t>(word_of(count, 0) % Block::stride);
        return VSL_STATUS_OK;
    }
};

} // namespace xkl::vsl
