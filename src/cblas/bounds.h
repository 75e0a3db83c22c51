// Bounds of leading dimensions in either layout.
#pragma once

#include "blas/bounds.h"
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

} // namespace xkl::cblas
