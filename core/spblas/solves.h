// y := alpha*inv(op(A))*x with a triangular or diagonal matrix in a storage whose items are lines. Rows are
// solved for one after the other from what stands before them; a column, once its unknown is known, is taken
// from what stands after it. A zero on the diagonal, or none, makes infinities.
#pragma once

#include "spblas/products.h"

namespace xkl::core::spblas {

/// The part of op(A) that counts, seen from its lines
struct triangle {
    bool off_diagonal, before, unit, conjugated;
    bool counts(int64_t line, int64_t place) const
    {
        return off_diagonal && place != line && (place < line) == before;
    }
};

/// y(line) less what the row takes from the unknowns that are known
template <class Storage, class T>
T subtract_row(const Storage &storage, const triangle &is, int64_t line, const column<T> &y)
{
    T sum = 0, own = 0;
    storage.visit(line, [&](int64_t place, T v) {
        if (is.counts(line, place))
            sum += product(turned(v, is.conjugated), *y[place]);
        else if (place == line)
            own += v;
    });
    *y[line] -= sum;
    return own;
}

template <class Storage, class T>
T subtract_row(const Storage &storage, const triangle &is, int64_t line, const columns<T> &y)
{
    T own = 0;
    storage.visit(line, [&](int64_t place, T v) {
        if (is.counts(line, place))
            add_multiple(y.width, -turned(v, is.conjugated), y[place], y[line]);
        else if (place == line)
            own += v;
    });
    return own;
}

template <class Storage, class T, class Y>
void subtract_column(const Storage &storage, const triangle &is, int64_t line, const T *unknowns,
                     const Y &y)
{
    storage.visit(line, [&](int64_t place, T v) {
        if (is.counts(line, place))
            add_multiple(y.width, -turned(v, is.conjugated), unknowns, y[place]);
    });
}

template <class T, class Storage>
T diagonal_of(const Storage &storage, int64_t line)
{
    T own = 0;
    storage.visit(line, [&](int64_t place, T v) {
        if (place == line)
            own += v;
    });
    return own;
}

/// y := inv(op(A))*y
template <class Storage, class T, class Y>
void substitute(const matrix<Storage> &a, const triangle &is, const T &one, const Y &y)
{
    const bool forward = a.by_rows == is.before;
    for (int64_t step = 0; step < a.rows; ++step) {
        const int64_t line = forward ? step : a.rows - 1 - step;
        const T own = a.by_rows ? subtract_row(a.storage, is, line, y)
                      : is.unit ? one
                                : diagonal_of<T>(a.storage, line);
        if (!is.unit)
            for (int64_t q = 0; q < y.width; ++q)
                y[line][q] /= turned(own, is.conjugated);
        if (!a.by_rows && is.off_diagonal)
            subtract_column(a.storage, is, line, y[line], y);
    }
}

/// y := alpha*inv(op(A))*x. x may be y.
template <class Storage, class T>
int64_t solve(matrix<Storage> a, char trans, const description &of, T alpha, const panel<const T> &x,
              const panel<T> &y)
{
    const bool transposed = !is(trans, 'N'), upper = of.upper != transposed;
    if (transposed)
        a.transpose();
    const triangle part = {of.kind == 'T', upper != a.by_rows, of.unit, is(trans, 'C')};
    const auto run = [&](const auto &from, const auto &to) {
        for (int64_t i = 0; i < a.rows; ++i)
            for (int64_t q = 0; q < to.width; ++q)
                to[i][q] = alpha == T(0) ? T(0) : product(alpha, from[i][q]);
        if (alpha != T(0))
            substitute(a, part, T(1), to);
    };
    const double work = a.storage.stored() + static_cast<double>(a.rows);
    if (!y.by_rows)
        for_each_column(y.width, work, [&](int64_t q) {
            run(column<const T>{x.data + q * x.distance}, column<T>{y.data + q * y.distance});
        });
    else
        in_parts(std::min(y.width, thread_count()), y.width, work * static_cast<double>(y.width),
                 [&](int64_t first, int64_t end) {
                     run(columns<const T>{x.data + first, end - first, x.distance},
                         columns<T>{y.data + first, end - first, y.distance});
                 });
    return 0;
}

} // namespace xkl::core::spblas
