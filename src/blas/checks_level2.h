// Tests of the matrix-vector routines.
#pragma once

#include "blas/bounds.h"
#include "blas/checks_common.h"

namespace xkl::checks {

struct gemv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter trans, integer m, integer n, any, any,
                                                    integer lda, any, integer incx, any, any, integer incy)
    {
        if (!is_trans<Letters>(trans))
            return 1;
        if (*m < 0)
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *m))
            return 6;
        if (*incx == 0)
            return 8;
        if (*incy == 0)
            return 11;
        return 0;
    }
};

struct gbmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter trans, integer m, integer n, integer kl,
                                                    integer ku, any, any, integer lda, any, integer incx,
                                                    any, any, integer incy)
    {
        if (!is_trans<Letters>(trans))
            return 1;
        if (*m < 0)
            return 2;
        if (*n < 0)
            return 3;
        if (*kl < 0)
            return 4;
        if (*ku < 0)
            return 5;
        if (!holds_band(*lda, *kl, *ku))
            return 8;
        if (*incx == 0)
            return 10;
        if (*incy == 0)
            return 13;
        return 0;
    }
};

/// GER, GERC, GERU.
struct ger {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, any, integer incx, any,
                                                    integer incy, any, integer lda)
    {
        if (*m < 0)
            return 1;
        if (*n < 0)
            return 2;
        if (*incx == 0)
            return 5;
        if (*incy == 0)
            return 7;
        if (!fits(lda, *m))
            return 9;
        return 0;
    }
};

/// SYMV, HEMV.
struct symv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any, any, integer lda, any,
                                                    integer incx, any, any, integer incy)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (!fits(lda, *n))
            return 5;
        if (*incx == 0)
            return 7;
        if (*incy == 0)
            return 10;
        return 0;
    }
};

/// SBMV, HBMV.
struct sbmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, integer k, any, any,
                                                    integer lda, any, integer incx, any, any, integer incy)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (*k < 0)
            return 3;
        if (!holds_band(*lda, *k, 0))
            return 6;
        if (*incx == 0)
            return 8;
        if (*incy == 0)
            return 11;
        return 0;
    }
};

/// SPMV, HPMV.
struct spmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any, any, any, integer incx,
                                                    any, any, integer incy)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (*incx == 0)
            return 6;
        if (*incy == 0)
            return 9;
        return 0;
    }
};

/// SPR, HPR.
struct spr {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any, any, integer incx, any)
    {
        if (!is_uplo<Letters>(uplo))
            return 1;
        if (*n < 0)
            return 2;
        if (*incx == 0)
            return 5;
        return 0;
    }
};

/// SPR2, HPR2: the list of SPR with a second vector.
struct spr2 {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any alpha, any x, integer incx,
                                                    any, integer incy, any ap)
    {
        if (const int64_t bad = spr::first_bad<Letters>(uplo, n, alpha, x, incx, ap))
            return bad;
        if (*incy == 0)
            return 7;
        return 0;
    }
};

/// SYR, HER: the list of SPR with a full matrix.
struct syr {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any alpha, any x, integer incx,
                                                    any a, integer lda)
    {
        if (const int64_t bad = spr::first_bad<Letters>(uplo, n, alpha, x, incx, a))
            return bad;
        if (!fits(lda, *n))
            return 7;
        return 0;
    }
};

/// SYR2, HER2: the list of SPR2 with a full matrix.
struct syr2 {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, integer n, any alpha, any x, integer incx,
                                                    any y, integer incy, any a, integer lda)
    {
        if (const int64_t bad = spr2::first_bad<Letters>(uplo, n, alpha, x, incx, y, incy, a))
            return bad;
        if (!fits(lda, *n))
            return 9;
        return 0;
    }
};

/// uplo, trans, diag and n lead the list of every triangular routine of this level.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_of_triangle(letter uplo, letter trans, letter diag,
                                                            integer n)
{
    if (!is_uplo<Letters>(uplo))
        return 1;
    if (!is_trans<Letters>(trans))
        return 2;
    if (!is_diag<Letters>(diag))
        return 3;
    if (*n < 0)
        return 4;
    return 0;
}

/// TRMV, TRSV.
struct trmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, letter diag, integer n, any,
                                                    integer lda, any, integer incx)
    {
        if (const int64_t bad = first_bad_of_triangle<Letters>(uplo, trans, diag, n))
            return bad;
        if (!fits(lda, *n))
            return 6;
        if (*incx == 0)
            return 8;
        return 0;
    }
};

/// TBMV, TBSV.
struct tbmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, letter diag, integer n,
                                                    integer k, any, integer lda, any, integer incx)
    {
        if (const int64_t bad = first_bad_of_triangle<Letters>(uplo, trans, diag, n))
            return bad;
        if (*k < 0)
            return 5;
        if (!holds_band(*lda, *k, 0))
            return 7;
        if (*incx == 0)
            return 9;
        return 0;
    }
};

/// TPMV, TPSV.
struct tpmv {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, letter diag, integer n, any,
                                                    any, integer incx)
    {
        if (const int64_t bad = first_bad_of_triangle<Letters>(uplo, trans, diag, n))
            return bad;
        if (*incx == 0)
            return 7;
        return 0;
    }
};

/// GEM2VU, GEM2VC: the tests of GEMV, for both pairs of vectors in the order of the list.
struct gem2v {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer m, integer n, any, any, integer lda, any,
                                                    integer incx1, any, integer incx2, any, any,
                                                    integer incy1, any, integer incy2)
    {
        if (*m < 0)
            return 1;
        if (*n < 0)
            return 2;
        if (!fits(lda, *m))
            return 5;
        if (*incx1 == 0)
            return 7;
        if (*incx2 == 0)
            return 9;
        if (*incy1 == 0)
            return 12;
        if (*incy2 == 0)
            return 14;
        return 0;
    }
};

} // namespace xkl::checks
