// What the tests of all levels share. Bounds are tested so that no value of any argument overflows.
#pragma once

#include "frame/letters.h"

#include <cstdint>

namespace xkl::checks {

using letter = const char *;
using integer = const int64_t *;
using any = const void *; // an argument that no test looks at

/// A leading dimension holds `rows` rows, and at least one. `rows` was tested before: it is not negative.
[[gnu::always_inline]] inline bool fits(integer ld, int64_t rows)
{
    return *ld >= rows + (rows == 0);
}

template <class Letters>
[[gnu::always_inline]] inline bool is_trans(letter given)
{
    return one_of<Letters>(given, 'N', 'C', 'T');
}

template <class Letters>
[[gnu::always_inline]] inline bool is_uplo(letter given)
{
    return one_of<Letters>(given, 'U', 'L');
}

template <class Letters>
[[gnu::always_inline]] inline bool is_diag(letter given)
{
    return one_of<Letters>(given, 'U', 'N');
}

template <class Letters>
[[gnu::always_inline]] inline bool is_side(letter given)
{
    return one_of<Letters>(given, 'L', 'R');
}

/// X holds op(X): it has `plain` rows if trans is N, and `turned` rows otherwise.
template <class Letters>
[[gnu::always_inline]] inline bool fits_op(integer ld, letter trans, integer plain, integer turned)
{
    return fits(ld, Letters::is(trans, 'N') ? *plain : *turned);
}

/// The square operand of a product with an m by n matrix has m rows to its left and n to its right.
template <class Letters>
[[gnu::always_inline]] inline bool fits_side(integer ld, letter side, integer m, integer n)
{
    return fits(ld, Letters::is(side, 'L') ? *m : *n);
}

} // namespace xkl::checks
