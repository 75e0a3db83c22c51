// Solves with block triangular matrices: the blocks of the diagonal are small dense systems, factorized
// with row exchanges at each call.
#pragma once

#include "arguments.h"

#include <cmath>

namespace xkl::core::inspector {

/// Dense factors of a block of order b, by rows, in place. False when it is singular.
template <class T>
bool factorize_block(T *block, int64_t b, int64_t *exchanges)
{
    for (int64_t k = 0; k < b; ++k) {
        int64_t best = k;
        for (int64_t i = k + 1; i < b; ++i)
            if (std::abs(block[i * b + k]) > std::abs(block[best * b + k]))
                best = i;
        exchanges[k] = best;
        if (block[best * b + k] == T(0))
            return false;
        if (best != k)
            std::swap_ranges(block + k * b, block + (k + 1) * b, block + best * b);
        for (int64_t i = k + 1; i < b; ++i) {
            const T factor = block[i * b + k] /= block[k * b + k];
            for (int64_t j = k + 1; j < b; ++j)
                block[i * b + j] -= product(factor, block[k * b + j]);
        }
    }
    return true;
}

/// v becomes the solution for the right-hand side v.
template <class T>
void solve_block(const T *block, int64_t b, const int64_t *exchanges, T *v)
{
    for (int64_t k = 0; k < b; ++k) {
        std::swap(v[k], v[exchanges[k]]);
        for (int64_t i = k + 1; i < b; ++i)
            v[i] -= product(block[i * b + k], v[k]);
    }
    for (int64_t k = b - 1; k >= 0; --k) {
        v[k] /= block[k * b + k];
        for (int64_t i = 0; i < k; ++i)
            v[i] -= product(block[i * b + k], v[k]);
    }
}

template <class T>
sparse_status_t solve_by_blocks(sparse_matrix &a, const action &how, bool lower, int64_t columns, T alpha,
                                const dense<const T> &x, const dense<T> &y)
{
    const int64_t b = a.block, blocks = a.rows;
    written_rows<T> rows;
    array<T> diagonal, part;
    array<int64_t> exchanges;
    if (const auto bad = write_out(a, how, rows))
        return bad;
    if (!diagonal.make(blocks * b * b, T(0)) || !part.make(b) || !exchanges.make(blocks * b))
        return SPARSE_STATUS_ALLOC_FAILED;
    for (int64_t i = 0; i < rows.rows; ++i)
        for (int64_t k = rows.starts[i]; k < rows.starts[i + 1]; ++k)
            if (rows.columns[k] / b == i / b)
                diagonal[i * b + rows.columns[k] % b] += rows.values[k];
    for (int64_t n = 0; n < blocks; ++n)
        if (!factorize_block(diagonal.data() + n * b * b, b, exchanges.data() + n * b))
            return fail_at(a, n * b, SPARSE_STATUS_EXECUTION_FAILED);
    for (int64_t i = 0; i < rows.rows; ++i)
        for (int64_t c = 0; c < columns; ++c)
            y(i, c) = alpha == T(0) ? T(0) : product(alpha, x(i, c));
    for (int64_t c = 0; c < columns; ++c)
        for (int64_t step = 0; step < blocks; ++step) {
            const int64_t n = lower ? step : blocks - 1 - step;
            for (int64_t r = 0; r < b; ++r) {
                part[r] = y(n * b + r, c);
                for (int64_t k = rows.starts[n * b + r]; k < rows.starts[n * b + r + 1]; ++k)
                    if (rows.columns[k] / b != n)
                        part[r] -= product(rows.values[k], y(rows.columns[k], c));
            }
            solve_block(diagonal.data() + n * b * b, b, exchanges.data() + n * b, part.data());
            for (int64_t r = 0; r < b; ++r)
                y(n * b + r, c) = part[r];
        }
    return SPARSE_STATUS_SUCCESS;
}

} // namespace xkl::core::inspector
