// From the arguments of the matrix copies to lines, factors and blocks, and the choice between them: how
// large a block is, how it is written, and whether threads share the work.
#pragma once

#include "matcopy/kernels.h"
#include "service/kernel_threads.h"

#include <algorithm>
#include <type_traits>

namespace xkl::core {

/// Scalars come by value, complex ones by address.
template <class T>
using scalar_argument = std::conditional_t<element<T>::is_complex, const T *, T>;

inline float value_of(float scalar)
{
    return scalar;
}
inline double value_of(double scalar)
{
    return scalar;
}
template <class R>
std::complex<R> value_of(const std::complex<R> *scalar)
{
    return *scalar;
}

/// What an option letter asks for. Calls with unknown letters can arrive: the checks report some and let
/// the call go on. They copy without turning anything.
struct operation {
    bool turned, conjugated;

    explicit operation(char trans)
        : turned(is(trans, 'T') || is(trans, 'C')), conjugated(is(trans, 'C') || is(trans, 'R'))
    {
    }
};

/// A matrix as it is stored: columns, or rows in row-major ordering
struct stored_lines {
    size_t lines, length;

    stored_lines(char ordering, size_t rows, size_t cols)
        : lines(is(ordering, 'R') ? rows : cols), length(is(ordering, 'R') ? cols : rows)
    {
    }
    bool empty() const { return lines == 0 || length == 0; }
    size_t elements() const { return lines * length; }
    void turn() { std::swap(lines, length); }
};

/// Copies of this many bytes are shared between threads: a thread takes some ten microseconds to wake, in
/// which one alone copies half of it.
inline constexpr size_t bytes_for_threads = size_t{1} << 20;

/// Copies of this many bytes are written past the caches: with their source they fill half of a large one,
/// which other threads use, too, and lines that miss it are read from memory before they are written.
inline writing writing_of(size_t bytes)
{
    constexpr size_t bytes_to_stream = size_t{8} << 20;
    return bytes >= bytes_to_stream ? writing::streamed : writing::cached;
}

/// A dimension, cut into pieces of step; the first one is longer by head, so that later ones begin at the
/// start of a cache line.
struct cut {
    size_t total, step, head = 0;

    size_t count() const { return total <= head + step ? 1 : (total - head + step - 1) / step; }
    size_t begin(size_t piece) const { return piece == 0 ? 0 : head + piece * step; }
    size_t end(size_t piece) const { return std::min(total, head + (piece + 1) * step); }
};

/// body(i, last_i, j, last_j) for all blocks of lines i and places j, on several threads when the bytes
/// that are written are worth it.
template <class Body>
void for_blocks(cut lines, cut length, size_t bytes, const Body &body)
{
    const size_t across = length.count(), count = lines.count() * across;
    const auto do_block = [&](size_t index) {
        const size_t i = index / across, j = index % across;
        body(lines.begin(i), lines.end(i), length.begin(j), length.end(j));
    };
    if (count > 1 && bytes >= bytes_for_threads)
        return parallel_for(static_cast<int64_t>(count),
                            [&](int64_t index) { do_block(static_cast<size_t>(index)); });
    for (size_t index = 0; index < count; ++index)
        do_block(index);
}

/// Blocks of lines that stay lines: as much as the nearest caches hold of them.
template <class T, class Body>
void for_line_blocks(size_t lines, size_t length, const Body &body)
{
    constexpr size_t elements = 128 * 1024 / sizeof(T);
    const size_t width = std::min(length, elements);
    for_blocks({lines, elements / width}, {length, elements}, lines * length * sizeof(T), body);
}

/// B := 0
template <class T>
void clear_lines(block<T> b, size_t lines, size_t length)
{
    for_line_blocks<T>(lines, length, [=](size_t i, size_t last_i, size_t j, size_t last_j) {
        for (; i < last_i; ++i)
            std::fill(b.first + i * b.ld + j, b.first + i * b.ld + last_j, T(0));
    });
}

} // namespace xkl::core
