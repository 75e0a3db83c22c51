// Matrices by rows as the computing code sees them: the caller's own arrays where they are what is asked
// for, otherwise op(A) written out.
#pragma once

#include "action.h"
#include "service/kernel_threads.h"

#include <algorithm>

namespace xkl::core::inspector {

/// A matrix in compressed rows: places from starts[i] to ends[i] - 1, counted from base as the columns are
template <class T, class I = int64_t>
struct row_view {
    int64_t rows = 0, cols = 0;
    const int64_t *starts = nullptr, *ends = nullptr;
    const I *columns = nullptr;
    const T *values = nullptr;
    int64_t base = 0;

    int64_t first(int64_t i) const { return starts[i] - base; }
    int64_t last(int64_t i) const { return ends[i] - base; }
    int64_t column(int64_t place) const { return columns[place] - base; }
    int64_t places() const { return rows > 0 ? ends[rows - 1] - starts[0] : 0; }
};

/// The stored arrays of compressed rows or columns; columns appear as the rows of the transposed matrix.
template <class T>
row_view<T> stored_rows(const sparse_matrix &a)
{
    const bool turned = a.form == storage::csc;
    return {turned ? a.cols : a.rows,
            turned ? a.rows : a.cols,
            a.starts,
            a.ends,
            a.minor,
            static_cast<const T *>(a.values),
            a.base};
}

inline bool has_stored_rows(const sparse_matrix &a)
{
    return a.form == storage::csr || a.form == storage::csc;
}

/// op(A) as a matrix of its own: compressed rows from 0
template <class T>
struct written_rows {
    int64_t rows = 0, cols = 0;
    array<int64_t> starts, columns;
    array<T> values;

    int64_t places() const { return starts[rows]; }
    row_view<T> view() const
    {
        return {rows, cols, starts.data(), starts.data() + 1, columns.data(), values.data(), 0};
    }
};

/// Where the rows of a matrix are cut for threads: about as many places each.
template <class T, class I>
int64_t cut(const row_view<T, I> &a, int64_t piece, int64_t pieces)
{
    if (piece == pieces || a.rows == 0)
        return piece == 0 ? 0 : a.rows;
    const int64_t *const found = std::lower_bound(
        a.starts, a.starts + a.rows,
        a.starts[0] + static_cast<int64_t>(static_cast<double>(a.places()) * piece / pieces));
    return found - a.starts;
}

/// Ranges of rows for so many threads: a few each, so that a slow one is made up for
constexpr int64_t most_ranges = 256;
inline int64_t range_count(int64_t threads)
{
    return threads == 1 ? 1 : std::min(4 * threads, most_ranges);
}

/// Calls body(first, last) with ranges of rows that together are all of them, on the threads that calls may
/// use.
template <class T, class I, class Body>
void for_row_ranges(const row_view<T, I> &a, double work_each_place, const Body &body)
{
    const double work = work_each_place * static_cast<double>(a.places() + a.rows);
    const int64_t pieces = work < loop_work_that_pays ? 1 : range_count(threads_for(XKL_DOMAIN_SPARSE));
    // The bounds are found once, in order, so that rows whose starts do not rise are still all met once.
    int64_t bounds[most_ranges + 1];
    bounds[0] = 0;
    for (int64_t piece = 1; piece <= pieces; ++piece)
        bounds[piece] = std::max(bounds[piece - 1], cut(a, piece, pieces));
    if (pieces == 1)
        return body(int64_t{0}, a.rows);
    parallel_for(pieces, XKL_DOMAIN_SPARSE, work / static_cast<double>(pieces),
                 [&](int64_t piece) { body(bounds[piece], bounds[piece + 1]); });
}

/// Puts the columns of each row in order, elements of one place as they came.
template <class T>
bool sort_rows(written_rows<T> &a)
{
    struct keyed {
        int64_t column, came;
        T value;
    };
    int64_t longest = 0;
    for (int64_t i = 0; i < a.rows; ++i) {
        const int64_t *const first = a.columns.data() + a.starts[i], *const last =
                                                                         a.columns.data() + a.starts[i + 1];
        if (!std::is_sorted(first, last))
            longest = std::max<int64_t>(longest, last - first);
    }
    array<keyed> row;
    if (longest == 0)
        return true;
    if (!row.make(longest))
        return false;
    for (int64_t i = 0; i < a.rows; ++i) {
        const int64_t first = a.starts[i], count = a.starts[i + 1] - first;
        if (std::is_sorted(a.columns.data() + first, a.columns.data() + first + count))
            continue;
        for (int64_t k = 0; k < count; ++k)
            new (&row[k]) keyed{a.columns[first + k], k, a.values[first + k]};
        std::sort(row.data(), row.data() + count, [](const keyed &x, const keyed &y) {
            return x.column != y.column ? x.column < y.column : x.came < y.came;
        });
        for (int64_t k = 0; k < count; ++k) {
            a.columns[first + k] = row[k].column;
            a.values[first + k] = row[k].value;
        }
    }
    return true;
}

/// Copies whole rows as they stand, without gaps.
template <class T>
sparse_status_t copy_rows(const row_view<T> &from, bool conjugated, written_rows<T> &out)
{
    out.rows = from.rows;
    out.cols = from.cols;
    if (!out.starts.make(out.rows + 1))
        return SPARSE_STATUS_ALLOC_FAILED;
    out.starts[0] = 0;
    for (int64_t i = 0; i < out.rows; ++i)
        out.starts[i + 1] = out.starts[i] + from.last(i) - from.first(i);
    if (!out.columns.make(out.places()) || !out.values.make(out.places()))
        return SPARSE_STATUS_ALLOC_FAILED;
    std::atomic<bool> inside{true};
    for_row_ranges(from, 2., [&](int64_t first, int64_t last) {
        bool good = true;
        for (int64_t i = first; i < last; ++i)
            for (int64_t k = from.first(i), to = out.starts[i]; k < from.last(i); ++k, ++to) {
                const int64_t column = from.column(k);
                good &= column >= 0 && column < from.cols;
                out.columns[to] = column;
                out.values[to] = conjugated ? conjugate(from.values[k]) : from.values[k];
            }
        if (!good)
            inside.store(false, std::memory_order_relaxed);
    });
    return inside.load(std::memory_order_relaxed) ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_INVALID_VALUE;
}

/// Writes out what an action makes of a matrix. Indices outside the matrix are refused.
template <class T>
sparse_status_t write_out(const sparse_matrix &a, const action &how, written_rows<T> &out)
{
    if (has_stored_rows(a) && how.of.whole() && !how.transposed)
        return copy_rows(stored_rows<T>(a), how.conjugated, out);
    const bool turned = a.form == storage::csc;
    const int64_t lines = turned ? a.cols : a.total_rows(), across = turned ? a.rows : a.total_cols();
    out.rows = how.transposed ? across : lines;
    out.cols = how.transposed ? lines : across;
    if (!out.starts.make(out.rows + 1, 0))
        return SPARSE_STATUS_ALLOC_FAILED;
    const int64_t ones = how.of.unit ? std::min(lines, across) : 0;
    bool inside = true;
    int64_t *const counts = out.starts.data() + 1;
    each_stored<T>(a, [&](int64_t i, int64_t j, const T &) {
        if (i < 0 || i >= lines || j < 0 || j >= across)
            inside = false;
        else
            act(how, i, j, T(), [&](int64_t row, int64_t, T) { ++counts[row]; });
    });
    if (!inside)
        return SPARSE_STATUS_INVALID_VALUE;
    for (int64_t i = 0; i < ones; ++i)
        ++counts[i];
    for (int64_t i = 0; i < out.rows; ++i)
        out.starts[i + 1] += out.starts[i];
    array<int64_t> next;
    const int64_t places = out.places();
    if (!out.columns.make(places) || !out.values.make(places) || !next.make(out.rows + 1))
        return SPARSE_STATUS_ALLOC_FAILED;
    std::copy_n(out.starts.data(), out.rows, next.data());
    const auto put = [&](int64_t row, int64_t column, T value) {
        const int64_t place = next[row]++;
        out.columns[place] = column;
        out.values[place] = value;
    };
    each_stored<T>(a, [&](int64_t i, int64_t j, const T &value) { act(how, i, j, value, put); });
    for (int64_t i = 0; i < ones; ++i)
        put(i, i, T(1));
    return SPARSE_STATUS_SUCCESS;
}

/// op(A) by rows from 0 or 1: the matrix' own arrays when these are it, otherwise written out into `space`
template <class T>
sparse_status_t rows_of(const sparse_matrix &a, const action &how, written_rows<T> &space,
                        row_view<T> &view)
{
    if (has_stored_rows(a) && how.of.whole() && !how.transposed && !how.conjugated) {
        view = stored_rows<T>(a);
        for (int64_t i = 0; i < view.rows; ++i)
            for (int64_t k = view.first(i); k < view.last(i); ++k)
                if (view.column(k) < 0 || view.column(k) >= view.cols)
                    return SPARSE_STATUS_INVALID_VALUE;
        return SPARSE_STATUS_SUCCESS;
    }
    const sparse_status_t status = write_out(a, how, space);
    if (status == SPARSE_STATUS_SUCCESS)
        view = space.view();
    return status;
}

} // namespace xkl::core::inspector
