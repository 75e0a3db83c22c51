// Tests of the eigenvalue drivers and of the reductions that they stand on.
#pragma once

#include "lapack/checks_workspace.h"

namespace xkl::checks {

/// Whether vectors are wanted: N or V.
template <class Letters>
[[gnu::always_inline]] inline bool is_job(letter job)
{
    return one_of<Letters>(job, 'N', 'V');
}

/// Vectors of length n have a place, if they are wanted.
template <class Letters>
[[gnu::always_inline]] inline bool fits_vectors(integer ld, letter job, integer n)
{
    return fits(ld, Letters::is(job, 'V') ? *n : 0);
}

/// What both GEEV lists begin with.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_of_geev(letter jobvl, letter jobvr, integer n, integer lda)
{
    if (!is_job<Letters>(jobvl))
        return 1;
    if (!is_job<Letters>(jobvr))
        return 2;
    if (*n < 0)
        return 3;
    if (!fits(lda, *n))
        return 5;
    return 0;
}

/// Real matrices: eigenvalues come as two arrays, and vectors need more room.
struct geev_real {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter jobvl, letter jobvr, integer n, any, integer lda,
                                                    any, any, any, integer ldvl, any, integer ldvr, any,
                                                    integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_geev<Letters>(jobvl, jobvr, n, lda))
            return bad;
        if (!fits_vectors<Letters>(ldvl, jobvl, n))
            return 9;
        if (!fits_vectors<Letters>(ldvr, jobvr, n))
            return 11;
        const bool vectors = Letters::is(jobvl, 'V') || Letters::is(jobvr, 'V');
        if (!holds(lwork, *n == 0 ? 1 : (vectors ? 4 : 3) * widened(n)) && !is_query(lwork))
            return 13;
        return 0;
    }
};

struct geev_complex {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter jobvl, letter jobvr, integer n, any, integer lda,
                                                    any, any, integer ldvl, any, integer ldvr, any,
                                                    integer lwork, any, any)
    {
        if (const int64_t bad = first_bad_of_geev<Letters>(jobvl, jobvr, n, lda))
            return bad;
        if (!fits_vectors<Letters>(ldvl, jobvl, n))
            return 8;
        if (!fits_vectors<Letters>(ldvr, jobvr, n))
            return 10;
        if (!holds(lwork, *n == 0 ? 1 : 2 * widened(n)) && !is_query(lwork))
            return 12;
        return 0;
    }
};

/// Room for the integers of divide and conquer on a matrix of order n > 1.
[[gnu::always_inline]] inline wide integers_to_conquer(bool vectors, wide n)
{
    return vectors ? 3 + 5 * n : 1;
}

struct syevd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter jobz, letter uplo, integer n, any, integer lda,
                                                    any, any, integer lwork, any, integer liwork, any)
    {
        if (!is_job<Letters>(jobz))
            return 1;
        if (!is_uplo<Letters>(uplo))
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *n))
            return 5;
        if (is_query(lwork) || is_query(liwork)) // either asks for both sizes
            return 0;
        const wide order = widened(n);
        const bool vectors = Letters::is(jobz, 'V');
        if (!holds(lwork, order <= 1 ? 1 : vectors ? 1 + 6 * order + 2 * order * order : 2 * order + 1))
            return 8;
        if (!holds(liwork, order <= 1 ? 1 : integers_to_conquer(vectors, order)))
            return 10;
        return 0;
    }
};

/// The workspaces of HEEVD and HEGVD: 0, or which of them is the first bad one: 1 work, 2 rwork, 3 iwork.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_workspace(letter jobz, integer n, integer lwork,
                                                          integer lrwork, integer liwork)
{
    if (is_query(lwork) || is_query(lrwork) || is_query(liwork)) // each asks for all sizes
        return 0;
    const wide order = widened(n);
    const bool vectors = Letters::is(jobz, 'V');
    if (!holds(lwork, order <= 1 ? 1 : vectors ? 2 * order + order * order : order + 1))
        return 1;
    if (!holds(lrwork, order <= 1 ? 1 : vectors ? 1 + 5 * order + 2 * order * order : order))
        return 2;
    if (!holds(liwork, order <= 1 ? 1 : integers_to_conquer(vectors, order)))
        return 3;
    return 0;
}

struct heevd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter jobz, letter uplo, integer n, any, integer lda,
                                                    any, any, integer lwork, any, integer lrwork, any,
                                                    integer liwork, any)
    {
        if (!is_job<Letters>(jobz))
            return 1;
        if (!is_uplo<Letters>(uplo))
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *n))
            return 5;
        if (const int64_t bad = first_bad_workspace<Letters>(jobz, n, lwork, lrwork, liwork))
            return 6 + 2 * bad;
        return 0;
    }
};

/// Which of A*x = w*B*x, A*B*x = w*x and B*A*x = w*x is meant.
[[gnu::always_inline]] inline bool is_problem(integer itype)
{
    return *itype >= 1 && *itype <= 3;
}

struct hegvd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer itype, letter jobz, letter uplo, integer n, any,
                                                    integer lda, any, integer ldb, any, any, integer lwork,
                                                    any, integer lrwork, any, integer liwork, any)
    {
        if (!is_problem(itype))
            return 1;
        if (!is_job<Letters>(jobz))
            return 2;
        if (!is_uplo<Letters>(uplo))
            return 3;
        if (*n < 0)
            return 4;
        if (!fits(lda, *n))
            return 6;
        if (!fits(ldb, *n))
            return 8;
        if (const int64_t bad = first_bad_workspace<Letters>(jobz, n, lwork, lrwork, liwork))
            return 9 + 2 * bad;
        return 0;
    }
};

struct sygst {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer itype, letter uplo, integer n, any, integer lda,
                                                    any, integer ldb, any)
    {
        if (!is_problem(itype))
            return 1;
        if (!is_uplo<Letters>(uplo))
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *n))
            return 5;
        if (!fits(ldb, *n))
            return 7;
        return 0;
    }
};

using hegst = sygst;

struct sytrd {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any, integer lda, any, any, any,
                                                    any, integer lwork, any)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (!fits(lda, *n))
            return 4;
        if (!has_room(lwork, 1))
            return 9;
        return 0;
    }
};

using hetrd = sytrd;

/// Reduction in two steps, by way of a band with kd diagonals beside the main one.
struct syrdb {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter jobz, letter uplo, integer n, integer kd, any,
                                                    integer lda, any, any, any, any, integer ldz, any,
                                                    integer lwork, any)
    {
        if (!one_of<Letters>(jobz, 'N', 'V', 'U')) // U multiplies the z that is given
            return 1;
        if (!is_uplo<Letters>(uplo))
            return 2;
        if (*n < 0)
            return 3;
        if (*kd < 1)
            return 4;
        if (!fits(lda, *n))
            return 6;
        if (!fits(ldz, Letters::is(jobz, 'N') ? 0 : *n))
            return 11;
        // Columns of the band with room for the bulges that are chased along it, and one reflector.
        const wide columns = (2 * widened(kd) + 1) * widened(n);
        if (!holds(lwork, *n <= 1 ? 1 : columns + widened(kd)) && !is_query(lwork))
            return 13;
        return 0;
    }
};

using herdb = syrdb;

} // namespace xkl::checks
