// The kernel that copies lines which stay lines.
#pragma once

#include "matcopy/registers.h"

namespace xkl::core {
namespace {

/// One line. Source and copy may be the same.
template <class T, int bytes, bool streamed, class Map>
[[gnu::always_inline]] inline void move_line(const T *a, T *b, size_t length, const Map &map)
{
    using row = elements_of<T, bytes>;
    constexpr size_t count = row::count, unrolled = 4 * count;
    size_t i = 0;
    if constexpr (streamed)
        for (; i < length && reinterpret_cast<size_t>(b + i) % 64 != 0; ++i)
            map.copy(a + i, b + i);
    const auto step = [&](size_t at) __attribute__((always_inline))
    {
        row part;
        part.load(a + at);
        map.apply(part);
        if constexpr (streamed)
            part.stream(b + at);
        else
            part.store(b + at);
    };
    for (; i + unrolled <= length; i += unrolled)
#pragma GCC unroll 4
        for (size_t k = 0; k < unrolled; k += count)
            step(i + k);
    for (; i + count <= length; i += count)
        step(i);
    for (; i < length; ++i)
        map.copy(a + i, b + i);
}

template <class T, int bytes, class Map>
void move_mapped(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map, writing how)
{
    if (how != writing::streamed || reinterpret_cast<size_t>(b.first) % sizeof(T) != 0) {
        for (size_t i = 0; i < lines; ++i)
            move_line<T, bytes, false>(a.first + i * a.ld, b.first + i * b.ld, length, map);
        return;
    }
    for (size_t i = 0; i < lines; ++i)
        move_line<T, bytes, true>(a.first + i * a.ld, b.first + i * b.ld, length, map);
    _mm_sfence();
}

template <class T, int bytes>
void move(block<const T> a, block<T> b, size_t lines, size_t length, const factor<T> &by, writing how)
{
    if (by.keeps)
        move_mapped<T, bytes>(a, b, lines, length, kept<T>(), how);
    else
        move_mapped<T, bytes>(a, b, lines, length, scaled<T>(by), how);
}

} // namespace
} // namespace xkl::core
