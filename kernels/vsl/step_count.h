// How far a stream is moved: a number of any length, in 64-bit words with the lowest first, as callers
// hand it over.
#pragma once

#include <bit>
#include <cstdint>
#include <span>

namespace xkl::vsl {

using step_count = std::span<const uint64_t>;
using uint128 = unsigned __int128;

/// Bits that the number has
constexpr int bit_length(step_count count) noexcept
{
    for (size_t i = count.size(); i-- > 0;)
        if (count[i] != 0)
            return static_cast<int>(64 * i) + std::bit_width(count[i]);
    return 0;
}

constexpr bool bit(step_count count, int i) noexcept
{
    return count[static_cast<size_t>(i / 64)] >> (i % 64) & 1;
}

/// Word i of the number, zero behind its end
constexpr uint64_t word_of(step_count count, size_t i) noexcept
{
    return i < count.size() ? count[i] : 0;
}

/// x^count in a ring, by squarings from the highest bit down
template <class T, class Multiply>
constexpr T power(T x, step_count count, T one, const Multiply &multiply) noexcept
{
    T result = one;
    for (int i = bit_length(count); i-- > 0;) {
        result = multiply(result, result);
        if (bit(count, i))
            result = multiply(result, x);
    }
    return result;
}

} // namespace xkl::vsl
