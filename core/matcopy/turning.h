// The kernel that turns a block: every line of the copy runs across the lines of the source. Whole cache
// lines are read and written, each once, wherever the distances between lines allow it.
#pragma once

#include "matcopy/moving.h"

namespace xkl::core {
namespace {

/// Elements one by one
template <class T, class Map>
void turn_elements(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map)
{
    for (size_t j = 0; j < length; ++j)
        for (size_t i = 0; i < lines; ++i)
            map.copy(a.first + i * a.ld + j, b.first + j * b.ld + i);
}

/// A square of side * side elements, in squares of registers; the parts of a cache line of the copy are
/// written at once.
template <class T, int bytes, bool streamed, size_t side, class Map>
[[gnu::always_inline]] inline void turn_square(block<const T> a, block<T> b, const Map &map)
{
    using row = elements_of<T, bytes>;
    constexpr size_t count = row::count;
#pragma GCC unroll 4
    for (size_t j = 0; j < side; j += count)
#pragma GCC unroll 4
        for (size_t i = 0; i < side; i += count) {
            row square[count];
            load_turned(a.first + i * a.ld + j, a.ld, square, map);
#pragma GCC unroll 16
            for (size_t k = 0; k < count; ++k) {
                T *to = b.first + (j + k) * b.ld + i;
                if constexpr (streamed)
                    square[k].stream(to);
                else
                    square[k].store(to);
            }
        }
}

/// Blocks of any size: what is left over by wide registers goes through narrower ones.
template <class T, int bytes, class Map>
void turn_any(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map)
{
    constexpr size_t count = elements_of<T, bytes>::count;
    const size_t whole_lines = lines / count * count, whole_length = length / count * count;
    for (size_t j = 0; j < whole_length; j += count)
        for (size_t i = 0; i < whole_lines; i += count)
            turn_square<T, bytes, false, count>(a.at(i, j), b.at(j, i), map);
    const auto rest = [&](size_t i, size_t j, size_t last_i) {
        if (i == last_i || j == length)
            return;
        if constexpr (bytes > 16)
            turn_any<T, bytes / 2>(a.at(i, j), b.at(j, i), last_i - i, length - j, map);
        else
            turn_elements(a.at(i, j), b.at(j, i), last_i - i, length - j, map);
    };
    rest(0, whole_length, whole_lines);
    rest(whole_lines, 0, lines);
}

/// Whole tiles to memory, two cache lines of each line of the copy together. The source is read in few long
/// streams, a little ahead.
template <class T, int bytes, class Map>
void stream_tiles(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map)
{
    constexpr size_t side = tile<T>, strip = 2 * side, ahead = 2 * side;
    for (size_t i = 0; i < lines; i += strip) {
        const size_t end = i + strip < lines ? i + strip : lines;
        for (size_t j = 0; j < length; j += side)
            for (size_t k = i; k < end; k += side) {
#pragma GCC unroll 16
                for (size_t row = 0; row < side; ++row)
                    __builtin_prefetch(a.first + (k + row) * a.ld + j + ahead);
                turn_square<T, bytes, true, side>(a.at(k, j), b.at(j, k), map);
            }
    }
    _mm_sfence();
}

/// Whole tiles through the caches, on diagonals. The lines of a tile share a few places of the nearest
/// cache when they are a large power of two apart. On a diagonal each tile has other places than the one
/// before, in the source and in the copy; elsewhere it makes no difference.
template <class T, int bytes, class Map>
void turn_tiles(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map)
{
    constexpr size_t side = tile<T>, ahead = 2 * side;
    const auto wrap = [length](size_t place) { return place < length ? place : place % length; };
    for (size_t diagonal = 0; diagonal < length; diagonal += side) {
        size_t j = diagonal;
        for (size_t i = 0; i < lines; i += side) {
            const size_t next = i + ahead < lines ? i + ahead : 0, next_j = wrap(j + ahead);
#pragma GCC unroll 16
            for (size_t row = 0; row < side; ++row)
                __builtin_prefetch(a.first + (next + row) * a.ld + next_j, 0, 2);
            turn_square<T, bytes, false, side>(a.at(i, j), b.at(j, i), map);
            j = wrap(j + side);
        }
    }
}

/// Writes a part of a line past the caches, but for the elements before its first whole cache line. Those
/// behind the last one are counted, and written only if the line ends with them.
template <class T, int bytes>
[[gnu::always_inline]] inline size_t stream_part(const T *from, T *to, size_t count, bool ends)
{
    size_t i = 0;
    for (; i < count && reinterpret_cast<size_t>(to + i) % 64 != 0; ++i)
        to[i] = from[i];
    for (; i + tile<T> <= count; i += tile<T>)
#pragma GCC unroll 4
        for (size_t k = i; k < i + tile<T>; k += elements_of<T, bytes>::count) {
            elements_of<T, bytes> part;
            part.load(from + k);
            part.stream(to + k);
        }
    const size_t left = count - i;
    for (; ends && i < count; ++i)
        to[i] = from[i];
    return left;
}

/// Lines that begin anywhere within cache lines can't be streamed tile by tile. They go through a buffer, a
/// chunk of many lines at a time; what fills no cache line waits in front of the next chunk. That chunk's
/// source is read ahead meanwhile.
template <class T, int bytes, class Map>
void stream_through_buffer(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map)
{
    constexpr size_t chunk = 512 / sizeof(T), width = 128, strip = tile<T>, ld = chunk + 2 * strip;
    alignas(64) unsigned char space[width * ld * sizeof(T)];
    T *const buffer = reinterpret_cast<T *>(space) + strip;
    for (size_t j = 0; j < length; j += width) {
        const size_t count = j + width < length ? width : length - j;
        size_t waiting[width] = {};
        for (size_t i = 0; i < lines; i += chunk) {
            const size_t last = i + chunk < lines ? i + chunk : lines;
            for (size_t k = i; k < last; k += strip) {
                for (size_t row = k + chunk; row < k + chunk + strip && row < lines; ++row)
                    for (size_t place = 0; place < count; place += strip)
                        __builtin_prefetch(a.at(row, j + place).first, 0, 2);
                turn_any<T, bytes>(a.at(k, j), block<T>{buffer + (k - i), ld},
                                   k + strip < last ? strip : last - k, count, map);
            }
            for (size_t k = 0; k < count; ++k) {
                T *const line = buffer + k * ld, *const from = line - waiting[k];
                const size_t part = last - i + waiting[k],
                             left = stream_part<T, bytes>(from, b.at(j + k, i).first - waiting[k], part,
                                                          last == lines);
                for (size_t e = 0; e < left; ++e)
                    line[e - left] = from[part - left + e];
                waiting[k] = left;
            }
        }
    }
    _mm_sfence();
}

template <class T, int bytes, class Map>
void turn_mapped(block<const T> a, block<T> b, size_t lines, size_t length, const Map &map, writing how)
{
    constexpr size_t side = tile<T>;
    const bool aligned = b.ld * sizeof(T) % 64 == 0 && reinterpret_cast<size_t>(b.first) % sizeof(T) == 0;
    if (how == writing::streamed && !aligned)
        return stream_through_buffer<T, bytes>(a, b, lines, length, map);
    const size_t first_i = before_cache_line(b.first, b.ld), first_j = before_cache_line(a.first, a.ld);
    if (lines < first_i + side || length < first_j + side)
        return turn_any<T, bytes>(a, b, lines, length, map);
    const size_t inner_lines = (lines - first_i) / side * side, last_i = first_i + inner_lines;
    const size_t inner_length = (length - first_j) / side * side, last_j = first_j + inner_length;
    const auto edge = [&](size_t i, size_t end_i, size_t j, size_t end_j) {
        turn_any<T, bytes>(a.at(i, j), b.at(j, i), end_i - i, end_j - j, map);
    };
    edge(0, first_i, 0, length);
    edge(first_i, last_i, 0, first_j);
    const auto inner_a = a.at(first_i, first_j);
    const auto inner_b = b.at(first_j, first_i);
    if (how == writing::streamed)
        stream_tiles<T, bytes>(inner_a, inner_b, inner_lines, inner_length, map);
    else
        turn_tiles<T, bytes>(inner_a, inner_b, inner_lines, inner_length, map);
    edge(first_i, last_i, last_j, length);
    edge(last_i, lines, 0, length);
}

template <class T, int bytes>
void turn(block<const T> a, block<T> b, size_t lines, size_t length, const factor<T> &by, writing how)
{
    if (by.keeps)
        turn_mapped<T, bytes>(a, b, lines, length, kept<T>(), how);
    else
        turn_mapped<T, bytes>(a, b, lines, length, scaled<T>(by), how);
}

} // namespace
} // namespace xkl::core
