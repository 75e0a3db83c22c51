// Options of the C interface: their ranges, and the letters that they become.
//
// A row-major matrix is the transpose of the column-major matrix in the same memory. So a row-major call is
// a column-major call about the transposed problem: triangles and sides change places, operands change
// places or are transposed once more. The letter tables hold both readings, column-major first.
#pragma once

#include "xkl_types.h"

namespace xkl::cblas {

/// How far a value is from the first of its kind: the range test, and then the index of its letter.
/// Unsigned, so that one comparison finds values on either side.
[[gnu::always_inline]] inline unsigned offset(int value, int first)
{
    return static_cast<unsigned>(value) - static_cast<unsigned>(first);
}

[[gnu::always_inline]] inline bool in_range(int value, int first, int last)
{
    return offset(value, first) <= offset(last, first);
}

[[gnu::always_inline]] inline bool is_layout(int value)
{
    return in_range(value, CblasRowMajor, CblasColMajor);
}
[[gnu::always_inline]] inline bool is_trans(int value)
{
    return in_range(value, CblasNoTrans, CblasConjTrans);
}
[[gnu::always_inline]] inline bool is_uplo(int value)
{
    return in_range(value, CblasUpper, CblasLower);
}
[[gnu::always_inline]] inline bool is_diag(int value)
{
    return in_range(value, CblasNonUnit, CblasUnit);
}
[[gnu::always_inline]] inline bool is_side(int value)
{
    return in_range(value, CblasLeft, CblasRight);
}

[[gnu::always_inline]] inline const char *trans_letter(int trans)
{
    return &"NTC"[offset(trans, CblasNoTrans)];
}
[[gnu::always_inline]] inline const char *diag_letter(int diag)
{
    return &"NU"[offset(diag, CblasNonUnit)];
}

/// The triangle and the side that hold in the memory's column-major reading: one letter further for rows.
[[gnu::always_inline]] inline const char *uplo_letter(int uplo, bool row)
{
    return &"ULU"[offset(uplo, CblasUpper) + row];
}
[[gnu::always_inline]] inline const char *side_letter(int side, bool row)
{
    return &"LRL"[offset(side, CblasLeft) + row];
}

/// Letters for routines whose one general operand is transposed by the layout: three for column-major, then
/// three for row-major. Where conjugation would be left over, the caller's data is conjugated besides.
using trans_table = const char *;
inline constexpr char transposed_once[] = "NTCTNN";

/// The symmetric updates of complex matrices have no conjugate form and the Hermitian ones no plain
/// transpose: those letters stay as they are, so that the frame refuses them in either layout.
inline constexpr char transposed_symmetric[] = "NTCTNC";
inline constexpr char transposed_hermitian[] = "NTCCTN";

[[gnu::always_inline]] inline const char *trans_letter(trans_table table, int trans, bool row)
{
    return table + offset(trans, CblasNoTrans) + (row ? 3u : 0u);
}

} // namespace xkl::cblas
