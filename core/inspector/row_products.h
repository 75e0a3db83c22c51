// Rows of a sparse matrix times columns of a dense one: the inner loops of mv and mm.
#pragma once

#include "arguments.h"
#include "kernels.h"

namespace xkl::core::inspector {

/// y := beta y, which is not read where beta is zero
template <class T>
void scale(const dense<T> &y, int64_t rows, int64_t cols, T beta)
{
    if (beta == T(1))
        return;
    const int64_t lines = y.by_rows() ? rows : cols, length = y.by_rows() ? cols : rows;
    const int64_t step = y.by_rows() ? y.across : y.down, ld = y.by_rows() ? y.down : y.across;
    for (int64_t line = 0; line < lines; ++line)
        for (int64_t i = 0; i < length; ++i) {
            T &element = y.first[line * ld + i * step];
            element = beta == T(0) ? T(0) : product(beta, element);
        }
}

/// y(i, c ...) := alpha * row i of A times x(:, c ...) + beta y(i, c ...), for Count columns at once.
/// Adjacent: the columns follow each other in memory. Whole: all elements count.
template <int Count, bool Adjacent, bool Whole, class T, class I>
[[gnu::always_inline]] inline void row_times(const row_view<T, I> &a, const action &how, int64_t i, T alpha,
                                             const dense<const T> &x, T beta, const dense<T> &y, int64_t c)
{
    const int64_t base = a.base, end = a.last(i), across_x = Adjacent ? 1 : x.across,
                  across_y = Adjacent ? 1 : y.across;
    const T *const right = x.first + c * across_x;
    T sums[Count] = {};
    for (int64_t k = a.first(i); k < end; ++k) {
        const int64_t j = a.columns[k] - base;
        if constexpr (!Whole)
            if (!how.of.has(i, j))
                continue;
        T value = a.values[k];
        if constexpr (element<T>::is_complex)
            if (how.conjugated)
                value = conjugate(value);
        const T *const line = right + j * x.down;
        for (int n = 0; n < Count; ++n)
            sums[n] += product(value, line[n * across_x]);
    }
    if constexpr (!Whole)
        if (how.of.unit && i < a.cols)
            for (int n = 0; n < Count; ++n)
                sums[n] += right[i * x.down + n * across_x];
    T *const out = y.first + i * y.down + c * across_y;
    for (int n = 0; n < Count; ++n) {
        T &element = out[n * across_y];
        element = beta == T(0) ? product(alpha, sums[n]) : product(alpha, sums[n]) + product(beta, element);
    }
}

template <bool Adjacent, bool Whole, class T, class I>
void rows_times(const row_view<T, I> &a, const action &how, int64_t first, int64_t last, int64_t columns,
                T alpha, const dense<const T> &x, T beta, const dense<T> &y)
{
    constexpr int together = Adjacent ? 8 : 4;
    for (int64_t i = first; i < last; ++i) {
        int64_t c = 0;
        for (; c + together <= columns; c += together)
            row_times<together, Adjacent, Whole>(a, how, i, alpha, x, beta, y, c);
        for (; c < columns; ++c)
            row_times<1, Adjacent, Whole>(a, how, i, alpha, x, beta, y, c);
    }
}

/// A vector times all elements of real rows: by the instruction set
template <class T, class I>
void multiply_vector(const row_view<T, I> &a, T alpha, const T *x, T beta, T *y)
{
    const row_product<T, I> by{a.starts, a.ends, a.columns, a.values, a.base, alpha, beta, x, y};
    const auto kernel = [] {
        if constexpr (sizeof(I) == sizeof(int32_t))
            return kernels_in_force().of<T>().narrow;
        else
            return kernels_in_force().of<T>().wide;
    }();
    for_row_ranges(a, 2., [&](int64_t first, int64_t last) { kernel(by, first, last); });
}

/// All rows, on several threads
template <class T, class I>
void multiply_by_rows(const row_view<T, I> &a, const action &how, int64_t columns, T alpha,
                      const dense<const T> &x, T beta, const dense<T> &y)
{
    if constexpr (!element<T>::is_complex)
        if (columns == 1 && how.of.whole() && x.down == 1 && y.down == 1)
            return multiply_vector(a, alpha, x.first, beta, y.first);
    const bool adjacent = x.by_rows() && y.by_rows(), whole = how.of.whole();
    for_row_ranges(a, 2. * static_cast<double>(columns), [&](int64_t first, int64_t last) {
        if (whole)
            adjacent ? rows_times<true, true>(a, how, first, last, columns, alpha, x, beta, y)
                     : rows_times<false, true>(a, how, first, last, columns, alpha, x, beta, y);
        else
            rows_times<false, false>(a, how, first, last, columns, alpha, x, beta, y);
    });
}

/// Blocks in rows, all of whose elements count: one row of blocks at a time, one column of x at a time.
template <class T>
void multiply_by_blocks(const sparse_matrix &a, int64_t columns, T alpha, const dense<const T> &x, T beta,
                        const dense<T> &y)
{
    const int64_t b = a.block, base = a.base;
    const T *const values = static_cast<const T *>(a.values);
    const int64_t down = a.layout == SPARSE_LAYOUT_ROW_MAJOR ? b : 1,
                  across = a.layout == SPARSE_LAYOUT_ROW_MAJOR ? 1 : b;
    const row_view<T> blocks{a.rows, a.cols, a.starts, a.ends, a.minor, values, base};
    for_row_ranges(blocks, 2. * static_cast<double>(b * b * columns), [&](int64_t first, int64_t last) {
        for (int64_t i = first; i < last; ++i)
            for (int64_t c = 0; c < columns; ++c)
                for (int64_t r = 0; r < b; ++r) {
                    T sum(0);
                    for (int64_t k = blocks.first(i); k < blocks.last(i); ++k) {
                        const T *const line = values + k * b * b + r * down;
                        const int64_t j = blocks.column(k) * b;
                        for (int64_t l = 0; l < b; ++l)
                            sum += product(line[l * across], x(j + l, c));
                    }
                    T &element = y(i * b + r, c);
                    element =
                        beta == T(0) ? product(alpha, sum) : product(alpha, sum) + product(beta, element);
                }
    });
}

/// Elements in any order, or a row that adds to many: y is scaled first and then added to, columns shared
/// among threads.
template <class T>
void multiply_by_elements(const sparse_matrix &a, const action &how, int64_t rows, int64_t columns, T alpha,
                          const dense<const T> &x, T beta, const dense<T> &y)
{
    scale(y, rows, columns, beta);
    const int64_t ones = how.of.unit ? std::min(a.total_rows(), a.total_cols()) : 0;
    constexpr int64_t together = 8;
    const int64_t groups = (columns + together - 1) / together;
    const double work =
        2. * static_cast<double>(together) * static_cast<double>(a.places() * a.block * a.block);
    parallel_for(groups, XKL_DOMAIN_SPARSE, work, [&](int64_t group) {
        const int64_t first = group * together, last = std::min(columns, first + together);
        const auto add = [&](int64_t i, int64_t j, T value) {
            const T factor = product(alpha, value);
            for (int64_t c = first; c < last; ++c)
                y(i, c) += product(factor, x(j, c));
        };
        each_stored<T>(a, [&](int64_t i, int64_t j, const T &value) { act(how, i, j, value, add); });
        for (int64_t i = 0; i < ones; ++i)
            add(i, i, T(1));
    });
}

} // namespace xkl::core::inspector
