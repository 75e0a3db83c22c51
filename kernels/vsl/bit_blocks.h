// Generators over bits that renew a block of their state at a time and give it out word by word.
#pragma once

#include "vsl/engine.h"
#include "vsl/loops_of_set.h"

#include <algorithm>

namespace xkl::vsl {

/// `Block` says how a block of Block::size words is seeded, renewed and read.
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
        while (n > 0) {
            if (used == Block::size) {
                Block::refill(block);
                used = 0;
            }
            const int32_t count = std::min(n, Block::size - used);
            Block::read(count, block + used, r);
            used += count;
            r += count;
            n -= count;
        }
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept { return used >= 0 && used <= Block::size; }
};

} // namespace xkl::vsl
