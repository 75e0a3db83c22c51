// The kernels that exchange blocks and add, and the tables of all kernels.
#pragma once

#include "matcopy/turning.h"

namespace xkl::core {
namespace {

/// Two squares of registers, or one with itself
template <class T, int bytes, class Map>
[[gnu::always_inline]] inline void exchange_squares(T *p, T *q, size_t ld, const Map &map)
{
    using row = elements_of<T, bytes>;
    constexpr size_t count = row::count;
    row one[count], other[count];
    const auto store = [&](const row *square, T *to) __attribute__((always_inline))
    {
#pragma GCC unroll 16
        for (size_t k = 0; k < count; ++k)
            square[k].store(to + k * ld);
    };
    load_turned(p, ld, one, map);
    if (p == q)
        return store(one, p);
    load_turned(q, ld, other, map);
    store(one, q);
    store(other, p);
}

template <class T, class Map>
[[gnu::always_inline]] inline void exchange_elements(block<T> a, size_t i, size_t j, const Map &map)
{
    T *p = a.first + i * a.ld + j, *q = a.first + j * a.ld + i;
    const T old = *p;
    map.copy(q, p);
    if (p != q)
        map.copy(&old, q);
}

template <class T, int bytes, class Map>
void exchange_mapped(block<T> a, size_t first_i, size_t last_i, size_t first_j, size_t last_j,
                     const Map &map)
{
    constexpr size_t side = elements_of<T, bytes>::count;
    const bool diagonal = first_i == first_j;
    for (size_t i = first_i; i < last_i; i += side)
        for (size_t j = diagonal ? i : first_j; j < last_j; j += side) {
            if (i + side <= last_i && j + side <= last_j) {
                exchange_squares<T, bytes>(a.first + i * a.ld + j, a.first + j * a.ld + i, a.ld, map);
                continue;
            }
            for (size_t u = i; u < i + side && u < last_i; ++u)
                for (size_t v = i == j ? u : j; v < j + side && v < last_j; ++v)
                    exchange_elements(a, u, v, map);
        }
}

template <class T, int bytes>
void exchange(block<T> a, size_t i, size_t last_i, size_t j, size_t last_j, const factor<T> &by)
{
    if (by.keeps)
        exchange_mapped<T, bytes>(a, i, last_i, j, last_j, kept<T>());
    else
        exchange_mapped<T, bytes>(a, i, last_i, j, last_j, scaled<T>(by));
}

/// An operand of a sum, by the places of the result
template <class T, bool turned>
struct operand {
    block<const T> a;
    scaled<T> by;

    [[gnu::always_inline]] const T *at(size_t i, size_t j) const
    {
        return turned ? a.first + j * a.ld + i : a.first + i * a.ld + j;
    }
    template <class Row>
    [[gnu::always_inline]] void load_line(Row &row, size_t i, size_t j) const
    {
        row.load(at(i, j));
        by.apply(row);
    }
    /// A square, a register for each line of the result
    template <int bytes>
    [[gnu::always_inline]] void load(elements_of<T, bytes> *square, size_t i, size_t j) const
    {
        if constexpr (turned)
            return load_turned(at(i, j), a.ld, square, by);
#pragma GCC unroll 16
        for (size_t k = 0; k < elements_of<T, bytes>::count; ++k)
            load_line(square[k], i + k, j);
    }
};

/// The result may be an operand that is not turned.
template <class T, int bytes, bool a_turned, bool b_turned>
void sum(block<const T> a, const factor<T> &alpha, block<const T> b, const factor<T> &beta, block<T> c,
         size_t lines, size_t length)
{
    using row = elements_of<T, bytes>;
    constexpr size_t count = row::count;
    const operand<T, a_turned> left{a, scaled<T>(alpha)};
    const operand<T, b_turned> right{b, scaled<T>(beta)};
    const auto add_elements = [&](size_t i, size_t last_i, size_t j, size_t last_j) {
        for (; i < last_i; ++i)
            for (size_t v = j; v < last_j; ++v) {
                elements_of<T, sizeof(T)> one, other; // an element is a register of one
                left.by.copy(left.at(i, v), reinterpret_cast<T *>(&one));
                right.by.copy(right.at(i, v), reinterpret_cast<T *>(&other));
                one.value += other.value;
                one.store(c.first + i * c.ld + v);
            }
    };
    const size_t whole_lines = lines / count * count, whole_length = length / count * count;
    if constexpr (!a_turned && !b_turned) {
        for (size_t i = 0; i < lines; ++i)
            for (size_t j = 0; j < whole_length; j += count) {
                row one, other;
                left.load_line(one, i, j);
                right.load_line(other, i, j);
                one.value += other.value;
                one.store(c.first + i * c.ld + j);
            }
        return add_elements(0, lines, whole_length, length);
    }
    for (size_t i = 0; i < whole_lines; i += count)
        for (size_t j = 0; j < whole_length; j += count) {
            row one[count], other[count];
            left.template load<bytes>(one, i, j);
            right.template load<bytes>(other, i, j);
#pragma GCC unroll 16
            for (size_t k = 0; k < count; ++k) {
                one[k].value += other[k].value;
                one[k].store(c.first + (i + k) * c.ld + j);
            }
        }
    add_elements(0, whole_lines, whole_length, length);
    add_elements(whole_lines, lines, 0, length);
}

template <class T, int bytes>
constexpr copy_routines<T> routines = {move<T, bytes>,
                                       turn<T, bytes>,
                                       exchange<T, bytes>,
                                       {{sum<T, bytes, false, false>, sum<T, bytes, false, true>},
                                        {sum<T, bytes, true, false>, sum<T, bytes, true, true>}}};

template <int bytes>
constexpr copy_kernels kernels_of_width = {routines<float, bytes>, routines<double, bytes>,
                                           routines<complex8, bytes>, routines<complex16, bytes>};

} // namespace
} // namespace xkl::core
