// B := alpha*op(A). A factor of zero writes zeros, whatever A holds: nothing of it is read.
#pragma once

#include "matcopy/shapes.h"

namespace xkl::core {

template <class T>
void move_lines(block<const T> a, block<T> b, size_t lines, size_t length, const factor<T> &by)
{
    if (a.ld == length && b.ld == length) {
        length *= lines;
        lines = 1;
    }
    const auto move = copy_kernels_in_force().of<T>().move;
    const writing how = writing_of(lines * length * sizeof(T));
    for_line_blocks<T>(lines, length, [&](size_t i, size_t last_i, size_t j, size_t last_j) {
        move(a.at(i, j), b.at(i, j), last_i - i, last_j - j, by, how);
    });
}

/// Every line of the copy runs across the lines of the source. Blocks that are streamed cover whole pages,
/// so that few translations of addresses serve one, and are longer where their lines have ends within cache
/// lines; others fit the second cache with their copy.
template <class T>
void turn_lines(block<const T> a, block<T> b, size_t lines, size_t length, const factor<T> &by)
{
    const size_t bytes = lines * length * sizeof(T);
    const writing how = writing_of(bytes);
    const bool streamed = how == writing::streamed, whole = b.ld * sizeof(T) % 64 == 0;
    const size_t step = (streamed ? 4096 : 1024) / sizeof(T), longer = streamed && !whole ? 4 : 1;
    const auto turn = copy_kernels_in_force().of<T>().turn;
    for_blocks({lines, step * longer, before_cache_line(b.first, b.ld)},
               {length, step / longer, before_cache_line(a.first, a.ld)}, bytes,
               [&](size_t i, size_t last_i, size_t j, size_t last_j) {
                   turn(a.at(i, j), b.at(j, i), last_i - i, last_j - j, by, how);
               });
}

/// Two lines side by side: their elements are neighbours in the copy. Who reads it next mostly reads several
/// at once, and would wait for elements that were written one by one.
template <class T>
[[gnu::always_inline]] inline void turn_two(const T *one, const T *other, block<T> b, size_t length)
{
    using bits = std::conditional_t<sizeof(T) == 8, double, float>; // moved, never computed with
    typedef bits single __attribute__((may_alias));
    typedef bits pair __attribute__((vector_size(2 * sizeof(bits)), aligned(sizeof(bits)), may_alias));
    const single *const first = reinterpret_cast<const single *>(one);
    const single *const second = reinterpret_cast<const single *>(other);
    for (size_t j = 0; j < length; ++j)
        *reinterpret_cast<pair *>(b.first + j * b.ld) = pair{first[j], second[j]};
}

/// So few elements that any choice between kernels would cost more than they do
template <class T>
void copy_few(bool turned, block<const T> a, block<T> b, size_t lines, size_t length)
{
    if constexpr (sizeof(T) <= 8)
        if (turned && lines == 2)
            return turn_two(a.first, a.first + a.ld, b, length);
    const size_t step = turned ? 1 : b.ld, step_in_line = turned ? b.ld : 1;
    for (size_t i = 0; i < lines; ++i)
        for (size_t j = 0; j < length; ++j)
            b.first[i * step + j * step_in_line] = a.first[i * a.ld + j];
}

template <class T>
[[gnu::noinline]] void copy_many(operation op, stored_lines shape, T alpha, block<const T> a, block<T> b)
{
    if (shape.empty())
        return;
    if (alpha == T(0)) {
        if (op.turned)
            shape.turn();
        return clear_lines(b, shape.lines, shape.length);
    }
    const factor<T> by(alpha, element<T>::is_complex && op.conjugated);
    if (op.turned)
        turn_lines(a, b, shape.lines, shape.length, by);
    else
        move_lines(a, b, shape.lines, shape.length, by);
}

template <class T>
void xkl_omatcopy(char ordering, char trans, size_t rows, size_t cols, scalar_argument<T> alpha, const T *a,
                  size_t lda, T *b, size_t ldb)
{
    constexpr size_t few = 48;
    const operation op(trans);
    const stored_lines shape(ordering, rows, cols);
    const bool kept = value_of(alpha) == T(1) && !(element<T>::is_complex && op.conjugated);
    if (rows <= few && cols <= few && rows * cols <= few && kept)
        return copy_few<T>(op.turned, {a, lda}, {b, ldb}, shape.lines, shape.length);
    copy_many<T>(op, shape, value_of(alpha), {a, lda}, {b, ldb});
}

} // namespace xkl::core
