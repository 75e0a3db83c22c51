// Sizes and conditions as the LAPACKE tables write them. Sizes come from callers who may have got them
// wrong, so arithmetic on them saturates instead of overflowing: an absurd size stays absurd, and its
// allocation fails.
#pragma once

#include <concepts>
#include <cstdint>

namespace xkl::lapacke {

/// An integer whose +, - and * stop at the ends of their range.
struct extent {
    int64_t value;

    constexpr explicit extent(int64_t number) : value(number) {}
    /// To int64_t alone: a choice between an extent and an int must not become an int.
    template <std::same_as<int64_t> Integer>
    constexpr operator Integer() const
    {
        return value;
    }

    static constexpr int64_t limit(bool negative) { return negative ? INT64_MIN : INT64_MAX; }

    friend constexpr extent operator+(extent a, extent b)
    {
        int64_t sum = 0;
        return extent(__builtin_add_overflow(a.value, b.value, &sum) ? limit(a.value < 0) : sum);
    }
    friend constexpr extent operator-(extent a, extent b)
    {
        int64_t difference = 0;
        return extent(__builtin_sub_overflow(a.value, b.value, &difference) ? limit(a.value < 0)
                                                                            : difference);
    }
    friend constexpr extent operator*(extent a, extent b)
    {
        int64_t product = 0;
        const bool negative = (a.value < 0) != (b.value < 0);
        return extent(__builtin_mul_overflow(a.value, b.value, &product) ? limit(negative) : product);
    }
    friend constexpr extent operator/(extent a, extent b) { return extent(a.value / b.value); }
};

/// With plain integers to the right; to the left tablegen writes extents.
template <std::integral Integer>
constexpr extent operator+(extent a, Integer b)
{
    return a + extent(b);
}
template <std::integral Integer>
constexpr extent operator-(extent a, Integer b)
{
    return a - extent(b);
}
template <std::integral Integer>
constexpr extent operator*(extent a, Integer b)
{
    return a * extent(b);
}
template <std::integral Integer>
constexpr extent operator/(extent a, Integer b)
{
    return a / extent(b);
}

/// The part of an array behind so many elements.
template <class T>
constexpr T *operator+(T *array, extent elements)
{
    return array + elements.value;
}

constexpr int64_t most(int64_t a, int64_t b)
{
    return a > b ? a : b;
}
constexpr int64_t most(int64_t a, int64_t b, int64_t c)
{
    return most(most(a, b), c);
}
constexpr int64_t least(int64_t a, int64_t b)
{
    return a < b ? a : b;
}

/// Letters compare in either case; digits, which are options too, have none.
constexpr bool is_letter(char given, char letter)
{
    const bool digit = letter >= '0' && letter <= '9';
    return digit ? given == letter : (given & ~0x20) == letter;
}

template <class... Letters>
constexpr bool one_of(char given, Letters... letters)
{
    return (is_letter(given, letters) || ...);
}

template <class Real>
requires std::floating_point<Real>
constexpr bool nonzero(Real value)
{
    return value != 0;
}
template <class Complex>
requires(!std::floating_point<Complex>) constexpr bool nonzero(Complex value)
{
    return value.real != 0 || value.imag != 0;
}

/// The answer to a size query: an integer, or a real that was rounded by whoever answered. What is no size
/// at all asks for more than can be had.
constexpr int64_t queried(int64_t answer)
{
    return answer;
}
template <class Real>
requires std::floating_point<Real>
constexpr int64_t queried(Real answer)
{
    constexpr Real end = 9223372036854775808.0; // 2^63
    return answer >= -end && answer < end ? static_cast<int64_t>(answer) : INT64_MAX;
}
template <class Complex>
requires(!std::floating_point<Complex> && !std::integral<Complex>) constexpr int64_t queried(Complex answer)
{
    return queried(answer.real);
}

/// The rows that ?LASWP touches: up to the last pivot, wherever that points.
inline int64_t rows_exchanged(int64_t k1, int64_t k2, const int64_t *pivots, int64_t incx)
{
    int64_t rows = most(1, k2);
    const int64_t step = incx < 0 ? -incx : incx;
    for (int64_t i = k1; i <= k2; ++i)
        rows = most(rows, pivots[k1 + (i - k1) * step - 1]);
    return rows;
}

} // namespace xkl::lapacke
