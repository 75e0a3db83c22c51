// Bounds of bands and of strides, which the Fortran interface and the C interface test alike. Every test is made
// so that no value of any argument overflows.
#pragma once

#include <cstdint>

namespace xkl {

/// ld >= kl + ku + 1 for kl, ku >= 0.
[[gnu::always_inline]] inline bool holds_band(int64_t ld, int64_t kl, int64_t ku)
{
    return ld > kl && ld - kl > ku;
}

/// An increment without its sign.
[[gnu::always_inline]] inline uint64_t magnitude(int64_t inc)
{
    return inc < 0 ? -static_cast<uint64_t>(inc) : static_cast<uint64_t>(inc);
}

/// stride >= max(1, (n - 1)*|inc| + 1): the stride of a result passes over a whole vector.
[[gnu::always_inline]] inline bool passes_vector(int64_t stride, int64_t n, int64_t inc)
{
    if (stride < 1 || n <= 1)
        return stride >= 1;
    uint64_t last;
    return !__builtin_mul_overflow(static_cast<uint64_t>(n) - 1, magnitude(inc), &last) &&
           last < static_cast<uint64_t>(stride);
}

/// stride >= max(1, ld*lines): it passes over a whole matrix, for ld and lines that are not negative.
[[gnu::always_inline]] inline bool passes_matrix(int64_t stride, int64_t ld, int64_t lines)
{
    int64_t area;
    return stride >= 1 && !__builtin_mul_overflow(ld, lines, &area) && area <= stride;
}

} // namespace xkl
