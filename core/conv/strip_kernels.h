// The sums for any width of registers. Compiled once for each instruction set, under internal names: a
// linker that merged equal names would mix instruction sets. For the same reason nothing of the standard
// library is used that could become a function of its own.
//
// A tile of the result stays in registers while all strips are added to it. Where a tile reaches over an end
// of b, the lanes without an element are masked out: a product with a zero in its place would turn an
// infinity of a into NaN.
#pragma once

#include "conv/direct_kernels.h"

#include <type_traits>

namespace xkl::core::conv {
namespace {

[[gnu::always_inline]] inline int64_t lesser(int64_t p, int64_t q)
{
    return p < q ? p : q;
}
[[gnu::always_inline]] inline int64_t greater(int64_t p, int64_t q)
{
    return p > q ? p : q;
}

template <class R, int bytes>
struct lanes_of {
    using integer = std::conditional_t<sizeof(R) == 4, int32_t, int64_t>;
    typedef R lanes __attribute__((vector_size(bytes)));
    typedef R stored __attribute__((vector_size(bytes), aligned(alignof(R)), may_alias));
    typedef integer integers __attribute__((vector_size(bytes)));
    static constexpr int count = bytes / sizeof(R);

    [[gnu::always_inline]] static lanes load(const R *from)
    {
        return *reinterpret_cast<const stored *>(from);
    }
    /// The compiler would read again what is used twice, and such reads cross cache lines.
    [[gnu::always_inline]] static lanes load_once(const R *from)
    {
        lanes value = load(from);
        asm("" : "+v"(value));
        return value;
    }
    [[gnu::always_inline]] static void store(R *to, lanes value)
    {
        *reinterpret_cast<stored *>(to) = value;
    }
};

/// vectors registers of neighbouring elements of the result, and as many imaginary parts
template <class R, int bytes, int vectors, bool is_complex>
struct tile {
    using unit = lanes_of<R, bytes>;
    using lanes = typename unit::lanes;
    using integers = typename unit::integers;
    static constexpr int width = vectors * unit::count;
    static constexpr int parts = is_complex ? 2 : 1;

    lanes sum[parts][vectors];

    [[gnu::always_inline]] void load(const R *z, int64_t imaginary)
    {
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v)
#pragma GCC unroll 2
            for (int part = 0; part < parts; ++part)
                sum[part][v] = unit::load(z + part * imaginary + v * unit::count);
    }
    [[gnu::always_inline]] void store(R *z, int64_t imaginary) const
    {
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v)
#pragma GCC unroll 2
            for (int part = 0; part < parts; ++part)
                unit::store(z + part * imaginary + v * unit::count, sum[part][v]);
    }

    /// Adds the products of one element of a, where every lane has an element of b.
    [[gnu::always_inline]] void add(const R *a, const R *b, const strip<R> &s)
    {
        const R re = *a;
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v) {
            const lanes x = unit::load_once(b + v * unit::count);
            sum[0][v] += re * x;
            if constexpr (is_complex) {
                const R im = a[s.a_imaginary];
                const lanes y = unit::load_once(b + s.b_imaginary + v * unit::count);
                sum[0][v] -= im * y;
                sum[1][v] += re * y;
                sum[1][v] += im * x;
            }
        }
    }

    /// The same in the lanes from first to last - 1 only.
    [[gnu::always_inline]] void add_some(const R *a, const R *b, const strip<R> &s, int64_t first,
                                         int64_t last)
    {
        using integer = typename unit::integer;
        integers lane{};
        for (int k = 0; k < unit::count; ++k)
            lane[k] = k;
        const R re = *a;
#pragma GCC unroll 8
        for (int v = 0; v < vectors; ++v) {
            const integer here = v * unit::count;
            const integers there =
                (lane >= static_cast<integer>(first) - here) & (lane < static_cast<integer>(last) - here);
            const auto kept = [&](lanes value) __attribute__((always_inline))
            {
                return (lanes)((integers)value & there);
            };
            const lanes x = unit::load(b + v * unit::count);
            if constexpr (is_complex) {
                const R im = a[s.a_imaginary];
                const lanes y = unit::load(b + s.b_imaginary + v * unit::count);
                sum[0][v] += kept(re * x - im * y);
                sum[1][v] += kept(re * y + im * x);
            } else
                sum[0][v] += kept(re * x);
        }
    }

    /// Adds a strip; the tile's first element is the strip's element i.
    [[gnu::always_inline]] void add_strip(const strip<R> &s, int64_t i)
    {
        const int64_t low = s.offset + i, high = low + width - 1, end = s.b_count - 1;
        int64_t q = greater(0, low - end);
        const int64_t all_first = greater(0, high - end), all_last = lesser(s.a_count - 1, low);
        const int64_t last = lesser(s.a_count - 1, high);
        const auto add_until = [&](int64_t stop) __attribute__((always_inline))
        {
            for (; q < stop; ++q)
                add_some(s.a + q, s.b + (low - q), s, lesser(greater(q - low, 0), width),
                         lesser(greater(end + 1 + q - low, 0), width));
        };
        add_until(lesser(all_first, last + 1));
        for (; q <= all_last; ++q)
            add(s.a + q, s.b + (low - q), s);
        add_until(last + 1);
    }
};

template <class R, int bytes, int vectors, bool is_complex>
void sum_tile(const strip<R> *strips, int64_t strip_count, R *z, int64_t imaginary, int64_t i)
{
    tile<R, bytes, vectors, is_complex> here;
    here.load(z + i, imaginary);
    for (const strip<R> *s = strips; s < strips + strip_count; ++s)
        here.add_strip(*s, i);
    here.store(z + i, imaginary);
}

template <class R, int bytes, bool is_complex>
void sum_strips(const strip<R> *strips, int64_t strip_count, R *z, int64_t imaginary, int64_t count)
{
    constexpr int lanes = bytes / sizeof(R), vectors = is_complex ? 4 : 8;
    int64_t i = 0;
    for (; i + (vectors / 2) * lanes < count; i += vectors * lanes)
        sum_tile<R, bytes, vectors, is_complex>(strips, strip_count, z, imaginary, i);
    const int64_t left = count - i;
    if (left > vectors / 4 * lanes)
        sum_tile<R, bytes, vectors / 2, is_complex>(strips, strip_count, z, imaginary, i);
    else if (left > lanes)
        sum_tile<R, bytes, vectors / 4, is_complex>(strips, strip_count, z, imaginary, i);
    else if (left > 0)
        sum_tile<R, bytes, 1, is_complex>(strips, strip_count, z, imaginary, i);
}

template <class R, int bytes>
constexpr strip_sums<R> sums_of = {sum_strips<R, bytes, false>, sum_strips<R, bytes, true>};

template <int bytes>
constexpr direct_kernels kernels_of_width = {sums_of<float, bytes>, sums_of<double, bytes>};

} // namespace
} // namespace xkl::core::conv
