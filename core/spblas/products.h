// y := alpha*op(A)*x + beta*y in every storage, for one column or for several.
//
// An element has two effects at most. Seen from its line l, with its place j on it: it adds to y(l) what it
// makes of x(j) (it gathers), or to y(j) what it makes of x(l) (it scatters). In a row an element of a
// general matrix gathers, in a column it scatters; one of a symmetric matrix stands for its mirror image
// too, and does both. Lines that only gather are shared among threads as they are; for others each thread
// adds to a vector of its own.
#pragma once

#include "spblas/storage.h"

namespace xkl::core::spblas {

/// What the elements of op(A) do, seen from their lines
template <class T>
struct effects {
    bool general;
    bool off_diagonal, before; // whether elements off the diagonal count, and on which side of it
    bool diagonal, real_diagonal, ones;
    bool gathers, scatters;
    bool conjugated, gather_conjugated, scatter_conjugated;
    T alpha, gather_factor, scatter_factor;
    int64_t order; // of the leading square, all that there is of a matrix that is not general

    template <class Storage>
    effects(const matrix<Storage> &a, const description &is, bool upper, bool conjugated, const T &alpha)
        : general(is.kind == 'G'), off_diagonal(is.kind != 'D'), before(upper != a.by_rows),
          diagonal(is.kind != 'A' && !is.unit), real_diagonal(is.kind == 'H'), ones(is.unit),
          conjugated(conjugated), alpha(alpha), order(std::min(a.rows, a.columns))
    {
        const bool mirrored = is.kind == 'S' || is.kind == 'H' || is.kind == 'A', rows = a.by_rows;
        const bool mirror_conjugated = conjugated != (is.kind == 'H');
        const T mirror_factor = is.kind == 'A' ? -alpha : alpha;
        gathers = rows || mirrored || !off_diagonal;
        scatters = off_diagonal && (!rows || mirrored);
        gather_conjugated = rows ? conjugated : mirror_conjugated;
        scatter_conjugated = rows ? mirror_conjugated : conjugated;
        gather_factor = rows ? alpha : mirror_factor;
        scatter_factor = rows ? mirror_factor : alpha;
    }

    [[gnu::always_inline]] bool counts(int64_t line, int64_t place) const
    {
        return off_diagonal && (place < line) == before && place < order;
    }
    T own(T v) const { return turned(real_diagonal ? T(std::real(v)) : v, conjugated); }
};

/// Rows of y multiplied with beta. A beta of zero overwrites: what stood there may be anything.
template <class T, class Y>
void scale(int64_t first, int64_t end, T beta, const Y &y)
{
    if (beta == T(1))
        return;
    for (int64_t i = first; i < end; ++i)
        for (int64_t q = 0; q < y.width; ++q)
            y[i][q] = beta == T(0) ? T(0) : product(beta, y[i][q]);
}

/// The effects of one item on y, of which what the item's line has is multiplied with beta first.
template <bool general, bool gathers, bool scatters, class Storage, class T>
[[gnu::always_inline]] inline void apply(const Storage &storage, const effects<T> &e, int64_t item,
                                         const column<const T> &x, T beta, const column<T> &y)
{
    const int64_t line = storage.line(item);
    if (!general && line >= e.order)
        return;
    const T lent = scatters ? product(e.scatter_factor, *x[line]) : T(0);
    T sum = 0, own = 0;
    storage.visit(item, [&](int64_t place, T v) {
        if (!general && place == line) {
            own += v;
            return;
        }
        if (!general && !e.counts(line, place))
            return;
        if constexpr (gathers)
            sum += product(turned(v, e.gather_conjugated), *x[place]);
        if constexpr (scatters)
            *y[place] += product(turned(v, e.scatter_conjugated), lent);
    });
    sum = product(e.gather_factor, sum);
    if (!general && e.diagonal)
        sum += product(e.alpha, product(e.own(own), *x[line]));
    if constexpr (!general || gathers)
        *y[line] = beta == T(0) ? sum : beta == T(1) ? *y[line] + sum : product(beta, *y[line]) + sum;
}

/// The same for several columns
template <bool general, bool gathers, bool scatters, class Storage, class T>
void apply(const Storage &storage, const effects<T> &e, int64_t item, const columns<const T> &x, T beta,
           const columns<T> &y)
{
    const int64_t line = storage.line(item), width = y.width;
    if (!general && line >= e.order)
        return;
    if constexpr (gathers)
        scale(line, line + 1, beta, y);
    T own = 0;
    storage.visit(item, [&](int64_t place, T v) {
        if (!general && place == line) {
            own += v;
            return;
        }
        if (!general && !e.counts(line, place))
            return;
        if constexpr (gathers)
            add_multiple(width, product(e.gather_factor, turned(v, e.gather_conjugated)), x[place],
                         y[line]);
        if constexpr (scatters)
            add_multiple(width, product(e.scatter_factor, turned(v, e.scatter_conjugated)), x[line],
                         y[place]);
    });
    if (!general && e.diagonal)
        add_multiple(width, product(e.alpha, e.own(own)), x[line], y[line]);
}

/// The items of one of several parts
template <bool general, bool gathers, bool scatters, class Storage, class T, class X, class Y>
void apply_part(const Storage storage, const effects<T> &e, int64_t part, int64_t parts, const X &x, T beta,
                const Y &y)
{
    const int64_t end = storage.cut(part + 1, parts);
    for (int64_t item = storage.cut(part, parts); item < end; ++item)
        apply<general, gathers, scatters>(storage, e, item, x, beta, y);
}

/// What must be done to y before its elements get something from several lines.
template <class T, class X, class Y>
void begin(const effects<T> &e, int64_t rows, const X &x, T beta, const Y &y)
{
    const double work = static_cast<double>(rows * y.width);
    in_parts(parts_of(work), rows, work, [&](int64_t first, int64_t end) {
        scale(first, end, beta, y);
        if (e.ones)
            for (int64_t i = first; i < std::min(end, e.order); ++i)
                add_multiple(y.width, e.alpha, x[i], y[i]);
    });
}

/// Threads that write to the same places: all but the first add to zeros of their own, which are summed up.
template <bool general, bool gathers, bool scatters, class Storage, class T, class X, class Y>
void apply_apart(const Storage &storage, const effects<T> &e, int64_t rows, const X &x, const Y &y)
{
    const double work = storage.stored() * static_cast<double>(y.width);
    const bool worth = work >= loop_work_that_pays && storage.stored() >= 2. * static_cast<double>(rows);
    const int64_t threads = worth ? thread_count() : 1, size = rows * y.width;
    const buffer<T> own(threads - 1, size);
    if (threads == 1 || !own.enough())
        return apply_part<general, gathers, scatters>(storage, e, 0, 1, x, T(1), y);
    parallel_for(threads, XKL_DOMAIN_SPARSE, work / static_cast<double>(threads), [&](int64_t part) {
        if (part == 0)
            return apply_part<general, gathers, scatters>(storage, e, part, threads, x, T(1), y);
        T *const zeros = own.data() + (part - 1) * size;
        std::fill(zeros, zeros + size, T(0));
        const auto target = y.over(zeros);
        apply_part<general, gathers, scatters>(storage, e, part, threads, x, T(1), target);
    });
    const double additions = static_cast<double>(threads * size);
    in_parts(parts_of(additions), rows, additions, [&](int64_t first, int64_t end) {
        for (int64_t part = 1; part < threads; ++part)
            for (int64_t i = first; i < end; ++i)
                add_multiple(y.width, T(1), y.over(own.data() + (part - 1) * size)[i], y[i]);
    });
}

template <bool general, bool gathers, bool scatters, class Storage, class T, class X, class Y>
void apply_all(const matrix<Storage> &a, const effects<T> &e, const X &x, T beta, const Y &y)
{
    if constexpr (scatters || !Storage::own_lines) {
        begin(e, a.rows, x, beta, y);
        apply_apart<general, gathers, scatters>(a.storage, e, a.rows, x, y);
    } else {
        if constexpr (!general) { // has lines without items, beyond the leading square, and ones
            begin(e, a.rows, x, beta, y);
            beta = T(1);
        }
        const double work = a.storage.stored() * static_cast<double>(y.width);
        const int64_t parts = parts_of(work);
        parallel_for(parts, XKL_DOMAIN_SPARSE, work / static_cast<double>(parts), [&](int64_t part) {
            apply_part<general, gathers, scatters>(a.storage, e, part, parts, x, beta, y);
        });
    }
}

/// By what the elements do
template <class Storage, class T, class X, class Y>
void apply_effects(const matrix<Storage> &a, const effects<T> &e, const X &x, T beta, const Y &y)
{
    if (e.general)
        return e.gathers ? apply_all<true, true, false>(a, e, x, beta, y)
                         : apply_all<true, false, true>(a, e, x, beta, y);
    if (e.gathers && e.scatters)
        return apply_all<false, true, true>(a, e, x, beta, y);
    return e.gathers ? apply_all<false, true, false>(a, e, x, beta, y)
                     : apply_all<false, false, true>(a, e, x, beta, y);
}

/// Calls body(q) for each column, on several threads where there are enough columns for each.
template <class Body>
void for_each_column(int64_t width, double work_each, const Body &body)
{
    if (width >= thread_count())
        return parallel_for(width, XKL_DOMAIN_SPARSE, work_each, body);
    for (int64_t q = 0; q < width; ++q)
        body(q);
}

/// y := alpha*op(A)*x + beta*y
template <class Storage, class T>
int64_t multiply(matrix<Storage> a, char trans, const description &is, T alpha, const panel<const T> &x,
                 T beta, const panel<T> &y)
{
    const bool transposed = !core::is(trans, 'N');
    if (transposed)
        a.transpose();
    if (a.rows == 0 || y.width == 0)
        return 0;
    const effects<T> e(a, is, is.upper != transposed, core::is(trans, 'C'), alpha);
    const auto update = [&](const auto &from, const auto &to) {
        if (alpha != T(0))
            return apply_effects(a, e, from, beta, to);
        scale(0, a.rows, beta, to);
    };
    if (y.by_rows)
        update(columns<const T>{x.data, x.width, x.distance}, columns<T>{y.data, y.width, y.distance});
    else
        for_each_column(y.width, a.storage.stored() + static_cast<double>(a.rows), [&](int64_t q) {
            update(column<const T>{x.data + q * x.distance}, column<T>{y.data + q * y.distance});
        });
    return 0;
}

} // namespace xkl::core::spblas
