// AB := alpha*op(AB). What is neither an element before nor one after stays as it is. Only a matrix that is
// turned and not square asks for memory; when there is none, its elements go one by one round the cycles of
// the permutation, which is slower by far.
#pragma once

#include "blas/workspace.h"
#include "matcopy/strided_copies.h"

#include <cstring>

namespace xkl::core {

/// Lines get another distance. Each goes to where only lines that have left lay: from the first on when
/// they move together, from the last on when they move apart. So they can't go side by side.
template <class T>
void shift_lines(T *ab, size_t lines, size_t length, size_t lda, size_t ldb, const factor<T> &by)
{
    const auto move = copy_kernels_in_force().of<T>().move;
    for (size_t k = 0; k < lines; ++k) {
        const size_t line = ldb < lda ? k : lines - 1 - k;
        T *to = ab + line * ldb;
        std::memmove(static_cast<void *>(to), ab + line * lda, length * sizeof(T));
        if (!by.keeps)
            move({to, ldb}, {to, ldb}, 1, length, by, writing::cached);
    }
}

/// A square, pair by pair of blocks that change places
template <class T>
void turn_square_in_place(block<T> ab, size_t order, const factor<T> &by)
{
    const auto exchange = copy_kernels_in_force().of<T>().exchange;
    const cut side = {order, 1024 / sizeof(T)};
    const size_t blocks = side.count(), pairs = blocks * (blocks + 1) / 2;
    for_blocks({pairs, 1}, {1, 1}, order * order * sizeof(T), [&](size_t pair, size_t, size_t, size_t) {
        size_t i = 0;
        for (; pair >= blocks - i; ++i)
            pair -= blocks - i;
        const size_t j = i + pair;
        exchange(ab, side.begin(i), side.end(i), side.begin(j), side.end(j), by);
    });
}

/// Where elements stand before and after a matrix is turned, without memory to move them through
template <class T>
struct turning_cycles {
    T *ab;
    size_t lines, length, lda, ldb;
    const factor<T> &by;

    bool is_source(size_t at) const { return at / lda < lines && at % lda < length; }
    bool is_target(size_t at) const { return at / ldb < length && at % ldb < lines; }
    size_t source_of(size_t target) const { return target % ldb * lda + target / ldb; }

    /// Fills a hole from its source, then the hole that this leaves, until the next one would be `end` or
    /// is none that has to be filled. Returns the last hole filled.
    size_t fill_from(size_t hole, size_t end) const
    {
        for (;;) {
            const size_t source = source_of(hole);
            if (source == end)
                return hole;
            ab[hole] = multiplied(by, ab[source]);
            if (!is_target(source))
                return hole;
            hole = source;
        }
    }

    /// Whether no place on the cycle of this one comes before it; not so when it is on a path, whose
    /// elements have moved already.
    bool leads_cycle(size_t first) const
    {
        size_t at = first;
        do {
            at = source_of(at);
            if (at < first || !is_target(at))
                return false;
        } while (at != first);
        return true;
    }

    /// Paths begin where nothing stood before; each place of a cycle is both.
    void follow() const
    {
        constexpr size_t nowhere = ~size_t{0};
        for (size_t j = 0; j < length; ++j)
            for (size_t at = j * ldb; at < j * ldb + lines; ++at)
                if (!is_source(at))
                    fill_from(at, nowhere);
        for (size_t j = 0; j < length; ++j)
            for (size_t at = j * ldb; at < j * ldb + lines; ++at)
                if (is_source(at) && leads_cycle(at)) {
                    const T first = ab[at];
                    ab[fill_from(at, at)] = multiplied(by, first);
                }
    }
};

template <class T>
void turn_in_place(T *ab, stored_lines shape, size_t lda, size_t ldb, const factor<T> &by)
{
    if (shape.lines == shape.length) {
        turn_square_in_place<T>({ab, lda}, shape.lines, by);
        if (lda != ldb)
            shift_lines(ab, shape.lines, shape.length, lda, ldb, factor<T>(T(1), false));
        return;
    }
    const auto elements = static_cast<int64_t>(shape.elements());
    workspace<T> turned(1, elements, "XKL_?IMATCOPY ");
    if (turned.width() < elements)
        return turning_cycles<T>{ab, shape.lines, shape.length, lda, ldb, by}.follow();
    turn_lines<T>({ab, lda}, {turned.data(), shape.lines}, shape.lines, shape.length, by);
    shape.turn();
    move_lines<T>({turned.data(), shape.length}, {ab, ldb}, shape.lines, shape.length,
                  factor<T>(T(1), false));
}

template <class T>
void xkl_imatcopy(char ordering, char trans, size_t rows, size_t cols, scalar_argument<T> alpha, T *ab,
                  size_t lda, size_t ldb)
{
    const operation op(trans);
    stored_lines shape(ordering, rows, cols);
    if (shape.empty())
        return;
    if (value_of(alpha) == T(0))
        return copy_many<T>(op, shape, T(0), {ab, lda}, {ab, ldb});
    const factor<T> by(value_of(alpha), element<T>::is_complex && op.conjugated);
    if (op.turned)
        turn_in_place(ab, shape, lda, ldb, by);
    else if (lda != ldb)
        shift_lines(ab, shape.lines, shape.length, lda, ldb, by);
    else if (!by.keeps)
        move_lines<T>({ab, lda}, {ab, ldb}, shape.lines, shape.length, by);
}

} // namespace xkl::core
