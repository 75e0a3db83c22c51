// Bounds of leading dimensions and strides. Every test is made so that no value of any argument overflows.
#pragma once

#include "cblas/options.h"

#include <cstdint>

namespace xkl::cblas {

/// ld < max(1, bound), for a bound that is not negative.
[[gnu::always_inline]] inline bool below(int64_t ld, int64_t bound)
{
    return ld < bound || ld == 0;
}

/// The least leading dimension of a stored matrix whose op() is rows by cols.
[[gnu::always_inline]] inline int64_t least_ld(bool row, int trans, int64_t rows, int64_t cols)
{
    return row == (trans == CblasNoTrans) ? cols : rows;
}

/// The length of a stored column, which is a row in row-major storage, of an m by n matrix; and their
/// number.
[[gnu::always_inline]] inline int64_t line_length(bool row, int64_t m, int64_t n)
{
    return row ? n : m;
}
[[gnu::always_inline]] inline int64_t line_count(bool row, int64_t m, int64_t n)
{
    return row ? m : n;
}

/// The order of the special matrix that stands on a side of an m by n matrix.
[[gnu::always_inline]] inline int64_t side_order(int side, int64_t m, int64_t n)
{
    return side == CblasLeft ? m : n;
}

/// lda < kl + ku + 1
[[gnu::always_inline]] inline bool below_band(int64_t lda, int64_t kl, int64_t ku)
{
    return lda <= kl || lda - kl <= ku;
}

/// An increment without its sign.
[[gnu::always_inline]] inline uint64_t magnitude(int64_t inc)
{
    return inc < 0 ? -static_cast<uint64_t>(inc) : static_cast<uint64_t>(inc);
}

/// Strides of results: stride < max(1, ld * lines).
inline bool overlaps_matrix(int64_t stride, int64_t ld, int64_t lines)
{
    int64_t area;
    return stride < 1 || __builtin_mul_overflow(ld, lines, &area) || stride < area;
}

/// stride < max(1, (n - 1) * |inc| + 1)
inline bool overlaps_vector(int64_t stride, int64_t n, int64_t inc)
{
    if (stride < 1 || n <= 1)
        return stride < 1;
    uint64_t last;
    return __builtin_mul_overflow(static_cast<uint64_t>(n) - 1, magnitude(inc), &last) ||
           last >= static_cast<uint64_t>(stride);
}

} // namespace xkl::cblas
