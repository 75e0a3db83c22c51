// Tests of the routines that make an orthogonal or unitary matrix from its reflectors, or multiply by it.
#pragma once

#include "lapack/checks_factor.h"

namespace xkl::checks {

/// The first n columns of a product of k reflectors of order m.
struct orgqr {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, integer k, any, integer lda, any,
                                                    any, integer lwork, any)
    {
        if (*m < 0)
            return 1;
        if (*n < 0 || *n > *m)
            return 2;
        if (*k < 0 || *k > *n)
            return 3;
        if (!fits(lda, *m))
            return 5;
        if (!has_room(lwork, *n))
            return 8;
        return 0;
    }
};

using ungqr = orgqr;

/// The orthogonal matrix of GEHRD differs from the identity in ihi - ilo rows.
struct orghr {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, integer ilo, integer ihi, any, integer lda,
                                                    any, any, integer lwork, any)
    {
        if (const int64_t bad = first_bad_of_range(n, ilo, ihi, lda))
            return bad;
        if (!has_room(lwork, std::max(*ihi - *ilo, int64_t{0}))) // 0 - 1 for an empty matrix
            return 8;
        return 0;
    }
};

/// How the k reflectors lie in A: each is a column of A, or a row.
enum class reflectors { columns, rows };

/// C is replaced by a product with Q, or with Q turned by the letter Turned: T for real, C for complex
/// routines. Q is of order m to the left of C and n to its right.
template <char Turned, reflectors Stored>
struct multiply_by_q {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter trans, integer m, integer n,
                                                    integer k, any, integer lda, any, any, integer ldc, any,
                                                    integer lwork, any)
    {
        if (!is_side<Letters>(side))
            return 1;
        if (!one_of<Letters>(trans, 'N', Turned))
            return 2;
        if (*m < 0)
            return 3;
        if (*n < 0)
            return 4;
        const bool left = Letters::is(side, 'L');
        const int64_t order = left ? *m : *n;
        if (*k < 0 || *k > order)
            return 5;
        if (!fits(lda, Stored == reflectors::columns ? order : *k))
            return 7;
        if (!fits(ldc, *m))
            return 10;
        if (!has_room(lwork, left ? *n : *m))
            return 12;
        return 0;
    }
};

using ormqr = multiply_by_q<'T', reflectors::columns>;
using ormql = multiply_by_q<'T', reflectors::columns>;
using ormlq = multiply_by_q<'T', reflectors::rows>;
using ormrq = multiply_by_q<'T', reflectors::rows>;
using unmqr = multiply_by_q<'C', reflectors::columns>;
using unmql = multiply_by_q<'C', reflectors::columns>;
using unmlq = multiply_by_q<'C', reflectors::rows>;
using unmrq = multiply_by_q<'C', reflectors::rows>;

} // namespace xkl::checks
