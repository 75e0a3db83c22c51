// Triangular solves: trsv, trsm. Rows depend on each other; columns of the right-hand side do not, nor do
// the rows of one group of a plan.
#pragma once

#include "block_solves.h"
#include "plan.h"
#include "row_products.h"

namespace xkl::core {

namespace inspector {

/// The diagonal of what a view holds; the first missing or zero element fails.
template <class T, class I>
sparse_status_t find_diagonal(sparse_matrix &a, const row_view<T, I> &view, bool conjugated,
                              array<T> &diagonal)
{
    if (!diagonal.make(view.rows, T(0)))
        return SPARSE_STATUS_ALLOC_FAILED;
    for (int64_t i = 0; i < view.rows; ++i) {
        for (int64_t k = view.first(i); k < view.last(i); ++k)
            if (view.column(k) == i)
                diagonal[i] += view.values[k];
        if (diagonal[i] == T(0))
            return fail_at(a, i, SPARSE_STATUS_EXECUTION_FAILED);
        if (conjugated)
            diagonal[i] = conjugate(diagonal[i]);
    }
    return SPARSE_STATUS_SUCCESS;
}

/// One triangle in the rows of a view, and what is made of it
template <class T, class I>
struct triangle {
    row_view<T, I> view;
    action how;
    bool lower;        // of what is solved with: the first row comes first
    const T *diagonal; // null: ones

    /// Row i for Count columns of y: takes the known ones off it and divides (or, transposed, divides and
    /// takes it off the others).
    template <int Count, bool Adjacent>
    [[gnu::always_inline]] void step(int64_t i, const dense<T> &y, int64_t c) const
    {
        const int64_t across = Adjacent ? 1 : y.across;
        T *const column = y.first + c * across, *const own = column + i * y.down;
        T sums[Count];
        for (int n = 0; n < Count; ++n) {
            sums[n] = own[n * across];
            if (how.transposed && diagonal)
                sums[n] /= diagonal[i];
        }
        for (int64_t k = view.first(i); k < view.last(i); ++k) {
            const int64_t j = view.column(k);
            if (j == i || !how.of.has(i, j))
                continue;
            const T value = how.conjugated ? conjugate(view.values[k]) : view.values[k];
            T *const other = column + j * y.down;
            for (int n = 0; n < Count; ++n)
                if (how.transposed)
                    other[n * across] -= product(value, sums[n]);
                else
                    sums[n] -= product(value, other[n * across]);
        }
        for (int n = 0; n < Count; ++n)
            own[n * across] = how.transposed || !diagonal ? sums[n] : sums[n] / diagonal[i];
    }

    template <int Count, bool Adjacent>
    void solve(const dense<T> &y, int64_t c) const
    {
        for (int64_t n = 0; n < view.rows; ++n)
            step<Count, Adjacent>(lower ? n : view.rows - 1 - n, y, c);
    }

    /// Columns first to last - 1
    void solve_columns(const dense<T> &y, int64_t first, int64_t last) const
    {
        constexpr int together = 4;
        for (; first + together <= last; first += together)
            y.by_rows() ? solve<together, true>(y, first) : solve<together, false>(y, first);
        for (; first < last; ++first)
            solve<1, false>(y, first);
    }
};

template <class T, class I>
void solve_by_groups(const triangle<T, I> &of, const plan<T> &by, const dense<T> &y, int64_t columns)
{
    const double work =
        2. * static_cast<double>(columns * of.view.places()) / static_cast<double>(of.view.rows);
    for (int64_t group = 0; group < by.group_count; ++group) {
        const int64_t *const rows = by.order.data() + by.groups[group];
        parallel_for(by.groups[group + 1] - by.groups[group], XKL_DOMAIN_SPARSE, work, [&](int64_t n) {
            for (int64_t c = 0; c < columns; ++c)
                of.template step<1, false>(rows[n], y, c);
        });
    }
}

template <class T, class I>
sparse_status_t solve_rows(sparse_matrix &a, const row_view<T, I> &view, const action &how, bool unit,
                           bool lower, const plan<T> *by, int64_t columns, T alpha, const dense<const T> &x,
                           const dense<T> &y)
{
    array<T> diagonal;
    if (!unit)
        if (const auto bad = find_diagonal(a, view, how.conjugated, diagonal))
            return bad;
    for (int64_t i = 0; i < view.rows; ++i)
        for (int64_t c = 0; c < columns; ++c)
            y(i, c) = alpha == T(0) ? T(0) : product(alpha, x(i, c));
    const triangle<T, I> of{view, how, lower, unit ? nullptr : diagonal.data()};
    constexpr int64_t together = 4;
    const int64_t shares = (columns + together - 1) / together;
    if (by && by->group_count > 0 && shares < threads_for(XKL_DOMAIN_SPARSE))
        solve_by_groups(of, *by, y, columns);
    else
        parallel_for(
            shares, XKL_DOMAIN_SPARSE, 2. * together * static_cast<double>(view.places()),
            [&](int64_t n) { of.solve_columns(y, n * together, std::min(columns, (n + 1) * together)); });
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t solve(sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr,
                      int64_t columns, T alpha, const dense<const T> &x, const dense<T> &y)
{
    action how;
    if (const auto bad = action_of(a, operation, descr, how))
        return bad;
    if (!how.of.triangular())
        return SPARSE_STATUS_NOT_SUPPORTED;
    if (a.total_rows() != a.total_cols())
        return SPARSE_STATUS_INVALID_VALUE;
    const bool lower = how.of.below != how.transposed, unit = how.of.unit;
    if (how.of.block > 1)
        return solve_by_blocks(a, how, lower, columns, alpha, x, y);
    if (const plan<T> *const by = rows_plan_for<T>(a, operation, descr))
        return by->with_rows([&](const auto &view) {
            return solve_rows(a, view, {}, unit, lower, by, columns, alpha, x, y);
        });
    if (has_stored_rows(a))
        return solve_rows<T, int64_t>(a, stored_rows<T>(a), how, unit, lower, nullptr, columns, alpha, x,
                                      y);
    written_rows<T> space;
    if (const auto bad = write_out(a, how, space))
        return bad;
    return solve_rows<T, int64_t>(a, space.view(), {}, unit, lower, nullptr, columns, alpha, x, y);
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_trsv(sparse_operation_t operation, inspector::scalar<T> alpha, sparse_matrix *a,
                                matrix_descr descr, const T *x, T *y)
{
    using namespace inspector;
    T factor;
    if (const auto bad = first_failure({usable_as<T>(a), valid(read<T>(alpha, factor) && x && y)}))
        return bad;
    return solve<T>(*a, operation, descr, 1, factor, dense<const T>(x), dense<T>(y));
}

template <class T>
sparse_status_t xkl_sparse_trsm(sparse_operation_t operation, inspector::scalar<T> alpha, sparse_matrix *a,
                                matrix_descr descr, sparse_layout_t layout, const T *x, int64_t columns,
                                int64_t ldx, T *y, int64_t ldy)
{
    using namespace inspector;
    T factor;
    if (const auto bad = first_failure({usable_as<T>(a), valid(is_operation(operation))}))
        return bad;
    const int64_t rows = a->total_rows();
    if (!read<T>(alpha, factor) || !x || !y || columns < 0 || !fits(layout, rows, columns, ldx) ||
        !fits(layout, rows, columns, ldy))
        return SPARSE_STATUS_INVALID_VALUE;
    return solve<T>(*a, operation, descr, columns, factor, dense<const T>(x, layout, ldx),
                    dense<T>(y, layout, ldy));
}

} // namespace xkl::core
