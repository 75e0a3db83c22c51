// Tests of workspace sizes. A size of -1 asks for the best one, and no test stands in its way: the core
// answers in the first element of the workspace.
#pragma once

#include "blas/checks_common.h"

namespace xkl::checks {

/// Wide enough for every bound that two sizes and a factor make.
__extension__ using wide = unsigned __int128;

/// A size that was tested before, so that it is not negative.
[[gnu::always_inline]] inline wide widened(integer size)
{
    return static_cast<wide>(*size);
}

[[gnu::always_inline]] inline bool is_query(integer lwork)
{
    return *lwork == -1;
}

/// Room for `least` elements, and for one where that is none.
[[gnu::always_inline]] inline bool has_room(integer lwork, int64_t least)
{
    return fits(lwork, least) || is_query(lwork);
}

/// The same without the query, for bounds that may be larger than any integer.
[[gnu::always_inline]] inline bool holds(integer lwork, wide least)
{
    return *lwork >= 0 && widened(lwork) >= least;
}

} // namespace xkl::checks
