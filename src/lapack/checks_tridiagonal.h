// Tests of the tridiagonal solvers without pivoting.
#pragma once

#include "lapack/checks_workspace.h"

namespace xkl::checks {

/// ldb is compared with n itself: nothing at all is a right-hand side for no equations.
struct dtsvb {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, integer nrhs, any, any, any, any,
                                                    integer ldb, any)
    {
        if (*n < 0)
            return 1;
        if (*nrhs < 0)
            return 2;
        if (*ldb < *n)
            return 7;
        return 0;
    }
};

struct dttrfb {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, any, any, any, any)
    {
        return *n < 0 ? 1 : 0;
    }
};

} // namespace xkl::checks
