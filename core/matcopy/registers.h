// Registers of a given width as the matrix copies use them: elements go in, are scaled, turned and go out.
// Part of the kernels, which are compiled once for each instruction set under internal names: a linker that
// merged equal names would mix instruction sets. For the same reason nothing of the standard library is
// used that could become a function of its own.
#pragma once

#include "matcopy/kernels.h"

#include <immintrin.h>
#include <utility>

namespace xkl::core {
namespace {

/// A register of elements of type T
template <class T, int bytes>
struct elements_of {
    using real = real_of<T>;
    typedef real lanes __attribute__((vector_size(bytes)));
    typedef real stored __attribute__((vector_size(bytes), aligned(alignof(real)), may_alias));
    static constexpr int count = bytes / sizeof(T);

    lanes value;

    [[gnu::always_inline]] void load(const T *from) { value = *reinterpret_cast<const stored *>(from); }
    [[gnu::always_inline]] void store(T *to) const { *reinterpret_cast<stored *>(to) = value; }
    /// The same past the caches, to an address that is a multiple of the width
    [[gnu::always_inline]] void stream(T *to) const
    {
        if constexpr (bytes == 64)
            _mm512_stream_si512(reinterpret_cast<__m512i *>(to), (__m512i)value);
        else if constexpr (bytes == 32)
            _mm256_stream_si256(reinterpret_cast<__m256i *>(to), (__m256i)value);
        else
            _mm_stream_si128(reinterpret_cast<__m128i *>(to), (__m128i)value);
    }
};

template <int bytes, class V, size_t... lane>
[[gnu::always_inline]] inline V swapped_pairs(V v, std::index_sequence<lane...>)
{
    return __builtin_shufflevector(v, v, (lane ^ 1)...);
}

/// Elements as they are
template <class T>
struct kept {
    template <int bytes>
    [[gnu::always_inline]] void apply(elements_of<T, bytes> &) const
    {
    }
    [[gnu::always_inline]] void copy(const T *from, T *to) const { *to = *from; }
};

/// Elements times a factor. A factor that crosses nothing must not look at the other part: infinity times
/// its zero is not a number.
template <class T>
struct scaled {
    using real = real_of<T>;
    const factor<T> &by;

    explicit scaled(const factor<T> &f) : by(f) {}
    template <int bytes>
    [[gnu::always_inline]] void apply(elements_of<T, bytes> &a) const
    {
        using lanes = typename elements_of<T, bytes>::lanes;
        const lanes product = a.value * *reinterpret_cast<const lanes *>(by.straight);
        if constexpr (element<T>::is_complex) {
            if (by.crosses) {
                const lanes other =
                    swapped_pairs<bytes>(a.value, std::make_index_sequence<bytes / sizeof(real)>{});
                a.value = product + other * *reinterpret_cast<const lanes *>(by.crossed);
                return;
            }
        }
        a.value = product;
    }
    [[gnu::always_inline]] void copy(const T *from, T *to) const
    {
        const real *a = reinterpret_cast<const real *>(from);
        real *b = reinterpret_cast<real *>(to);
        if constexpr (element<T>::is_complex) {
            real re = a[0] * by.straight[0], im = a[1] * by.straight[1];
            if (by.crosses) {
                re += a[1] * by.crossed[0];
                im += a[0] * by.crossed[1];
            }
            b[0] = re;
            b[1] = im;
        } else
            *b = *a * by.straight[0];
    }
};

/// Exchanges the second and third quarter of a square of two by two groups of `distance` units each, which
/// lie in two registers.
template <int distance, class V, size_t... lane>
[[gnu::always_inline]] inline void exchange_quarters(V &a, V &b, std::index_sequence<lane...>)
{
    constexpr int lanes = sizeof...(lane);
    const V low = __builtin_shufflevector(a, b, (lane & distance ? lanes + lane - distance : lane)...);
    const V high = __builtin_shufflevector(a, b, (lane & distance ? lanes + lane : lane + distance)...);
    a = low;
    b = high;
}

/// Turns a square that fills as many registers as each has elements: quarters change places, then the
/// quarters of each quarter, and so on. Elements of 16 bytes move as two lanes.
template <class T, int bytes, int distance = elements_of<T, bytes>::count / 2>
[[gnu::always_inline]] inline void turn_registers(elements_of<T, bytes> *square)
{
    if constexpr (distance > 0) {
        constexpr int count = elements_of<T, bytes>::count, unit = sizeof(T) < 8 ? 4 : 8;
        using word = std::conditional_t<unit == 4, float, double>;
        typedef word words __attribute__((vector_size(bytes)));
        using lanes = typename elements_of<T, bytes>::lanes;
#pragma GCC unroll 16
        for (int row = 0; row < count; ++row) {
            if (row & distance)
                continue;
            words a = (words)square[row].value, b = (words)square[row + distance].value;
            exchange_quarters<distance *(sizeof(T) / unit)>(a, b, std::make_index_sequence<bytes / unit>{});
            square[row].value = (lanes)a;
            square[row + distance].value = (lanes)b;
        }
        turn_registers<T, bytes, distance / 2>(square);
    }
}

/// The lines of a square, each in the register of its place in them
template <class T, int bytes, class Map>
[[gnu::always_inline]] inline void load_turned(const T *from, size_t ld, elements_of<T, bytes> *square,
                                               const Map &map)
{
#pragma GCC unroll 16
    for (size_t k = 0; k < elements_of<T, bytes>::count; ++k) {
        square[k].load(from + k * ld);
        map.apply(square[k]);
    }
    turn_registers(square);
}

} // namespace
} // namespace xkl::core
