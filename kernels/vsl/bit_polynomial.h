// Polynomials over the field of two elements, for moving generators over bits by any number of steps.
//
// Every bit of such a generator's words follows one linear recurrence; let p be its polynomial. If t^n
// modulo p has the coefficients g, the word n steps ahead is the sum (exclusive or) of the words i
// ahead for which g[i] is 1. The sum takes as many words as p's degree, however large n is.
#pragma once

#include "vsl/step_count.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace xkl::vsl {

/// Coefficient i is bit i % 64 of word i / 64.
template <size_t Words>
struct bit_polynomial {
    std::array<uint64_t, Words> word{};

    bool operator[](size_t i) const noexcept { return word[i / 64] >> (i % 64) & 1; }
    void flip(size_t i) noexcept { word[i / 64] ^= uint64_t{1} << (i % 64); }

    /// -1 for the zero polynomial
    int degree() const noexcept { return bit_length(word) - 1; }

    /// this += other * t^shift; what is beyond the words is lost
    void add_shifted(const bit_polynomial &other, size_t shift) noexcept
    {
        const size_t whole = shift / 64, part = shift % 64;
        for (size_t i = Words; i-- > whole;) {
            const uint64_t below = part == 0 || i == whole ? 0 : other.word[i - whole - 1] >> (64 - part);
            word[i] ^= other.word[i - whole] << part | below;
        }
    }
};

template <size_t Words>
bit_polynomial<Words> product(const bit_polynomial<Words> &a, const bit_polynomial<Words> &b) noexcept
{
    bit_polynomial<Words> sum;
    for (int i = b.degree(); i >= 0; --i)
        if (b[static_cast<size_t>(i)])
            sum.add_shifted(a, static_cast<size_t>(i));
    return sum;
}

/// The polynomial of the shortest recurrence that gives `count` bits (Berlekamp and Massey); bits(i) is
/// bit i.
template <size_t Words, class Bits>
bit_polynomial<Words> shortest_recurrence(int count, const Bits &bits) noexcept
{
    bit_polynomial<Words> now, before,
        recent; // connection polynomials; the bits so far, the last one first
    now.flip(0);
    before.flip(0);
    int length = 0;
    size_t gap = 1; // steps since `before` was in use
    for (int n = 0; n < count; ++n, ++gap) {
        uint64_t carry = bits(n), sum = 0;
        for (size_t i = 0; i < Words; ++i) {
            const uint64_t next = recent.word[i] >> 63;
            recent.word[i] = recent.word[i] << 1 | carry;
            carry = next;
            sum ^= recent.word[i] & now.word[i];
        }
        if (std::popcount(sum) % 2 == 0)
            continue;
        const bit_polynomial<Words> last = now;
        now.add_shifted(before, gap);
        if (2 * length <= n) {
            length = n + 1 - length;
            before = last;
            gap = 0;
        }
    }
    bit_polynomial<Words> reversed;
    for (int i = 0; i <= length; ++i)
        if (now[static_cast<size_t>(i)])
            reversed.flip(static_cast<size_t>(length - i));
    return reversed;
}

/// Arithmetic modulo one polynomial, whose multiples by t^0 to t^63 lie ready
template <size_t Words>
class bit_modulus {
  public:
    explicit bit_modulus(const bit_polynomial<Words> &p) noexcept : degree_(p.degree())
    {
        for (size_t shift = 0; shift < 64; ++shift)
            for (size_t i = 0; i <= Words; ++i) {
                const uint64_t low = i < Words ? p.word[i] << shift : 0;
                const uint64_t high = i > 0 && shift > 0 ? p.word[i - 1] >> (64 - shift) : 0;
                shifted_[shift][i] = low | high;
            }
    }

    int degree() const noexcept { return degree_; }

    /// t^(count >> dropped), reduced
    bit_polynomial<Words> power_of_t(step_count count, int dropped) const noexcept
    {
        bit_polynomial<Words> g;
        g.flip(0);
        for (int i = bit_length(count); i-- > dropped;)
            g = squared(g, bit(count, i));
        return g;
    }

  private:
    /// g^2, times t if `times_t`
    bit_polynomial<Words> squared(const bit_polynomial<Words> &g, bool times_t) const noexcept
    {
        std::array<uint64_t, 2 * Words + 1> wide{};
        for (int i = g.degree(); i >= 0; --i)
            if (g[static_cast<size_t>(i)]) {
                const size_t to = 2 * static_cast<size_t>(i) + times_t;
                wide[to / 64] ^= uint64_t{1} << (to % 64);
            }
        for (int i = bit_length(wide) - 1; i >= degree_; --i) {
            if (!(wide[static_cast<size_t>(i) / 64] >> (i % 64) & 1))
                continue;
            const auto by = static_cast<size_t>(i - degree_);
            uint64_t *const to = &wide[by / 64];
            for (size_t w = 0; w <= Words; ++w)
                to[w] ^= shifted_[by % 64][w];
        }
        bit_polynomial<Words> r;
        std::copy_n(wide.begin(), Words, r.word.begin());
        return r;
    }

    int degree_;
    std::array<std::array<uint64_t, Words + 1>, 64> shifted_;
};

/// r[k] = sum of words[i * stride + k] over the coefficients i of g, for k below Count
template <int Count, size_t Words>
void sum_of_shifts(const bit_polynomial<Words> &g, int stride, const uint32_t *words, uint32_t *r) noexcept
{
    std::fill_n(r, Count, 0);
    for (int i = g.degree(); i >= 0; --i)
        if (g[static_cast<size_t>(i)]) {
            const uint32_t *const from = words + static_cast<ptrdiff_t>(i) * stride;
            for (int k = 0; k < Count; ++k)
                r[k] ^= from[k];
        }
}

} // namespace xkl::vsl
