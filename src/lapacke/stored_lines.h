// How stored elements lie in memory, the same for every storage scheme: in lines, of which a part is stored.
//
// A line is a column if the layout is column-major and a row if it is row-major; of a band array too, whose
// rows are diagonals. Checks and copies walk lines and know nothing of schemes. Where a leading dimension is
// too small for its matrix, lines end with it: the driver has not tested it yet, and what lies behind belongs
// to the next line or to nobody.
#pragma once

#include "lapacke/options.h"

#include <cstdint>

namespace xkl::lapacke {

/// Line k starts at k*step + growth*k*(k-1)/2: packed lines grow or shrink by one element.
struct line_starts {
    int64_t step, growth = 0;

    int64_t operator[](int64_t k) const { return k * step + growth * (k * (k - 1) / 2); }
};

/// Line k holds the positions from first + slope*k to before last + slope*k, those in [low, high).
struct line_parts {
    int64_t count, first, last, slope, low, high;

    int64_t first_of(int64_t k) const
    {
        const int64_t place = first + slope * k;
        return place > low ? place : low;
    }
    int64_t last_of(int64_t k) const
    {
        const int64_t place = last + slope * k;
        return place < high ? place : high;
    }
};

inline int64_t smaller(int64_t a, int64_t b)
{
    return a < b ? a : b;
}
inline int64_t larger(int64_t a, int64_t b)
{
    return a > b ? a : b;
}

/// More than any index, and far from the largest integer, so that sums with it don't overflow.
inline constexpr int64_t unlimited = INT64_MAX / 8;

/// The elements (i,j) with i - j <= below and j - i <= above
struct diagonals {
    int64_t below = unlimited, above = unlimited;
};

/// A triangle, with its diagonal or without. In a trapezoid, `shift` is i - j on that diagonal.
inline diagonals triangle(char uplo, char diag, int64_t shift = 0)
{
    const int64_t skipped = is(diag, 'U') ? 1 : 0;
    return is(uplo, 'L') ? diagonals{unlimited, -shift - skipped} : diagonals{shift - skipped, unlimited};
}

inline line_parts dense_lines(int layout, int64_t m, int64_t n, diagonals part, int64_t ld)
{
    if (layout == CblasColMajor)
        return {n, -part.above, part.below + 1, 1, 0, smaller(m, ld)};
    return {m, -part.below, part.above + 1, 1, 0, smaller(n, ld)};
}

/// A packed triangle; positions are counted from the start of the whole line, so that parts are those of a
/// dense triangle.
inline line_starts packed_starts(int layout, char uplo, int64_t n)
{
    const bool growing = (layout == CblasColMajor) == is(uplo, 'U');
    return growing ? line_starts{1, 1} : line_starts{n - 1, -1};
}

/// Rows of a band array: row r holds the diagonal i - j = r - above. Those before `first_row` and from
/// `last_row` on are left out.
struct band_rows {
    int64_t above, first_row, last_row;
};

inline band_rows general_band(int64_t kl, int64_t ku)
{
    return {ku, 0, kl + ku + 1};
}

/// The diagonal is the last row of an upper band, and the first of a lower one.
inline band_rows triangular_band(char uplo, char diag, int64_t kd)
{
    const int64_t skipped = is(diag, 'U') ? 1 : 0;
    return is(uplo, 'L') ? band_rows{0, skipped, kd + 1} : band_rows{kd, 0, kd + 1 - skipped};
}

/// By rows, only rows that meet the matrix are lines: a wrong band width must not cost a walk of that length.
inline band_rows met_rows(band_rows band, int64_t m, int64_t n)
{
    return {band.above, larger(band.first_row, band.above - n + 1), smaller(band.last_row, band.above + m)};
}

/// By rows, the first line is row `first_row` of the band array.
inline line_parts band_lines(int layout, int64_t m, int64_t n, band_rows band, int64_t ld)
{
    if (layout == CblasColMajor)
        return {n, band.above, m + band.above, -1, band.first_row, smaller(band.last_row, ld)};
    const int64_t first = band.above - band.first_row;
    return {band.last_row - band.first_row, first, first + m, -1, 0, smaller(n, ld)};
}

/// The rectangle of a rectangular full packed triangle as transr N has it, by columns in column-major layout.
/// Transposed, or in the other layout, the same elements lie by rows. Element (i,j) of it is on the
/// triangle's diagonal where i - j is `diagonal` or one more: two triangles meet there.
struct packed_rectangle {
    int layout;
    int64_t rows, columns, diagonal;

    int64_t leading() const { return layout == CblasColMajor ? rows : columns; }
};

inline packed_rectangle rectangle_of(int layout, char transr, char uplo, int64_t n)
{
    const bool even = n % 2 == 0;
    const int64_t upper_diagonal = n / 2, lower_diagonal = even ? 0 : -1;
    return {is(transr, 'N') ? layout : other_layout(layout), even ? n + 1 : n, (n + 1) / 2,
            is(uplo, 'U') ? upper_diagonal : lower_diagonal};
}

} // namespace xkl::lapacke
