// Tests of the factorizations, the reductions to bidiagonal and Hessenberg form, and the singular values.
#pragma once

#include "lapack/checks_workspace.h"

#include <algorithm>

namespace xkl::checks {

/// The m by n matrix that leads the lists below.
[[gnu::always_inline]] inline int64_t first_bad_of_matrix(integer m, integer n, integer lda)
{
    if (*m < 0)
        return 1;
    if (*n < 0)
        return 2;
    if (!fits(lda, *m))
        return 4;
    return 0;
}

struct getrf {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, integer lda, any, any)
    {
        return first_bad_of_matrix(m, n, lda);
    }
};

using getf2 = getrf;

struct potrf {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any, integer lda, any)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (!fits(lda, *n))
            return 4;
        return 0;
    }
};

/// Factors of columns need room for a row, if there is anything to factor.
struct geqrf {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, integer lda, any, any,
                                                    integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_matrix(m, n, lda))
            return bad;
        if (!has_room(lwork, *m > 0 ? *n : 0))
            return 7;
        return 0;
    }
};

using geqlf = geqrf;

/// Factors of rows need room for a column.
struct gelqf {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, integer lda, any, any,
                                                    integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_matrix(m, n, lda))
            return bad;
        if (!has_room(lwork, *n > 0 ? *m : 0))
            return 7;
        return 0;
    }
};

struct gebrd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, integer lda, any, any, any,
                                                    any, any, integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_matrix(m, n, lda))
            return bad;
        const bool empty = *m == 0 || *n == 0;
        if (!has_room(lwork, empty ? 0 : std::max(*m, *n)))
            return 10;
        return 0;
    }
};

/// Rows and columns ilo to ihi of an n by n matrix, from 1; with n = 0 they are 1 to 0.
[[gnu::always_inline]] inline int64_t first_bad_of_range(integer n, integer ilo, integer ihi, integer lda)
{
    if (*n < 0)
        return 1;
    if (*ilo < 1 || *ilo > *n + (*n == 0))
        return 2;
    if (*ihi < std::min(*ilo, *n) || *ihi > *n)
        return 3;
    if (!fits(lda, *n))
        return 5;
    return 0;
}

struct gehrd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, integer ilo, integer ihi, any, integer lda,
                                                    any, any, integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_range(n, ilo, ihi, lda))
            return bad;
        if (!has_room(lwork, *n))
            return 8;
        return 0;
    }
};

/// The workspace is the core's to test: its bound depends on where the core changes its way.
struct gesvd {
    template <class Letters>
    [[gnu::always_inline]] static bool is_job(letter job)
    {
        return one_of<Letters>(job, 'N', 'A', 'S', 'O');
    }

    template <class Letters, class... Rest>
    [[gnu::always_inline]] static int64_t first_bad(letter jobu, letter jobvt, integer m, integer n, any,
                                                    integer lda, any, any, integer ldu, any, integer ldvt,
                                                    Rest...)
    {
        if (!is_job<Letters>(jobu))
            return 1;
        if (!is_job<Letters>(jobvt) || (Letters::is(jobvt, 'O') && Letters::is(jobu, 'O')))
            return 2; // a has room for the vectors of one side
        if (*m < 0)
            return 3;
        if (*n < 0)
            return 4;
        if (!fits(lda, *m))
            return 6;
        if (!fits(ldu, one_of<Letters>(jobu, 'A', 'S') ? *m : 0))
            return 9;
        if (!fits(ldvt, Letters::is(jobvt, 'A') ? *n : Letters::is(jobvt, 'S') ? std::min(*m, *n) : 0))
            return 11;
        return 0;
    }
};

} // namespace xkl::checks
