// Tests of the matrix-matrix routines.
#pragma once

#include "blas/checks_common.h"

namespace xkl::checks {

/// The list that is called for the smallest products of all: an operand that is not turned costs one
/// comparison, and the signs of all sizes another.
struct gemm {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter transa, letter transb, integer m, integer n,
                                                    integer k, any, any, integer lda, any, integer ldb, any,
                                                    any, integer ldc)
    {
        integer rows_of_a = m, rows_of_b = k;
        if (!Letters::is(transa, 'N')) [[unlikely]] {
            if (!one_of<Letters>(transa, 'C', 'T'))
                return 1;
            rows_of_a = k;
        }
        if (!Letters::is(transb, 'N')) [[unlikely]] {
            if (!one_of<Letters>(transb, 'C', 'T'))
                return 2;
            rows_of_b = n;
        }
        if ((*m | *n | *k) < 0)
            return *m < 0 ? 3 : *n < 0 ? 4 : 5;
        if (!fits(lda, *rows_of_a))
            return 8;
        if (!fits(ldb, *rows_of_b))
            return 10;
        if (!fits(ldc, *m))
            return 13;
        return 0;
    }
};

struct gemmt {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter transa, letter transb, integer n,
                                                    integer k, any, any, integer lda, any, integer ldb, any,
                                                    any, integer ldc)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (!is_trans<Letters>(transa))
            return 2;
        if (!is_trans<Letters>(transb))
            return 3;
        if (*n < 0)
            return 4;
        if (*k < 0)
            return 5;
        if (!fits_op<Letters>(lda, transa, n, k))
            return 8;
        if (!fits_op<Letters>(ldb, transb, k, n))
            return 10;
        if (!fits(ldc, *n))
            return 13;
        return 0;
    }
};

/// SYMM, HEMM.
struct symm {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter uplo, integer m, integer n, any,
                                                    any, integer lda, any, integer ldb, any, any,
                                                    integer ldc)
    {
        if (!is_side<Letters>(side))
            return 1;
        if (!is_uplo<Letters>(uplo))
            return 2;
        if (*m < 0)
            return 3;
        if (*n < 0)
            return 4;
        if (!fits_side<Letters>(lda, side, m, n))
            return 7;
        if (!fits(ldb, *m))
            return 9;
        if (!fits(ldc, *m))
            return 12;
        return 0;
    }
};

/// Updates of rank k; `Accepted` are the letters of trans.
template <char... Accepted>
struct rank_k {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, integer n, integer k, any,
                                                    any, integer lda, any, any, integer ldc)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (!one_of<Letters>(trans, Accepted...))
            return 2;
        if (*n < 0)
            return 3;
        if (*k < 0)
            return 4;
        if (!fits_op<Letters>(lda, trans, n, k))
            return 7;
        if (!fits(ldc, *n))
            return 10;
        return 0;
    }
};

/// Updates of rank 2k; `Accepted` are the letters of trans.
template <char... Accepted>
struct rank_2k {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, integer n, integer k, any,
                                                    any, integer lda, any, integer ldb, any, any,
                                                    integer ldc)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (!one_of<Letters>(trans, Accepted...))
            return 2;
        if (*n < 0)
            return 3;
        if (*k < 0)
            return 4;
        if (!fits_op<Letters>(lda, trans, n, k))
            return 7;
        if (!fits_op<Letters>(ldb, trans, n, k))
            return 9;
        if (!fits(ldc, *n))
            return 12;
        return 0;
    }
};

// For real elements C means T. A complex update that is symmetric has no conjugate, one that is Hermitian
// nothing else.
using syrk_real = rank_k<'N', 'T', 'C'>;
using syrk = rank_k<'N', 'T'>;
using herk = rank_k<'N', 'C'>;
using syr2k_real = rank_2k<'N', 'T', 'C'>;
using syr2k = rank_2k<'N', 'T'>;
using her2k = rank_2k<'N', 'C'>;

/// side, uplo, transa, diag, m and n lead the list of every triangular routine of this level.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_of_triangle(letter side, letter uplo, letter transa,
                                                            letter diag, integer m, integer n)
{
    if (!is_side<Letters>(side))
        return 1;
    if (!is_uplo<Letters>(uplo))
        return 2;
    if (!is_trans<Letters>(transa))
        return 3;
    if (!is_diag<Letters>(diag))
        return 4;
    if (*m < 0)
        return 5;
    if (*n < 0)
        return 6;
    return 0;
}

/// TRMM, TRSM.
struct trmm {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter uplo, letter transa, letter diag,
                                                    integer m, integer n, any, any, integer lda, any,
                                                    integer ldb)
    {
        if (const int64_t bad = first_bad_of_triangle<Letters>(side, uplo, transa, diag, m, n))
            return bad;
        if (!fits_side<Letters>(lda, side, m, n))
            return 9;
        if (!fits(ldb, *m))
            return 11;
        return 0;
    }
};

/// TRMM_OOP, TRSM_OOP: the list of TRMM with a result of its own.
struct trmm_oop {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter uplo, letter transa, letter diag,
                                                    integer m, integer n, any alpha, any a, integer lda,
                                                    any b, integer ldb, any, any, integer ldc)
    {
        if (const int64_t bad =
                trmm::first_bad<Letters>(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb))
            return bad;
        if (!fits(ldc, *m))
            return 14;
        return 0;
    }
};

/// PTRMM: a packed triangle has no leading dimension.
struct ptrmm {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter uplo, letter transa, letter diag,
                                                    integer m, integer n, any, any, any, integer ldb)
    {
        if (const int64_t bad = first_bad_of_triangle<Letters>(side, uplo, transa, diag, m, n))
            return bad;
        if (!fits(ldb, *m))
            return 10;
        return 0;
    }
};

} // namespace xkl::checks
