// Tests of the strided batches. The stride of an input may be 0, one operand for the whole batch, but not
// negative. The stride of an output must pass over one whole result, because results may not overlap: a
// batch is computed in any order.
//
// The matrix forms make the tests of the single routine, each stride directly behind the operand that it
// belongs to, so that places rise from test to test; batch_size comes last. An output matrix is passed over
// column by column (ldc*n), the last one with its unused rows: that is the distance which a caller who
// stores the matrices one behind the other passes. An empty output still asks for a stride of 1, as an
// empty vector does. Nothing is excused for a batch of one or none.
#pragma once

#include "blas/bounds.h"
#include "blas/checks_common.h"

namespace xkl::checks {

/// Neither n nor the increments are tested: ?AXPY takes them as they are. Only what makes the batch is.
struct axpy_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, any, any, integer, integer stridex, any,
                                                    integer incy, integer stridey, integer batch_size)
    {
        if (*stridex < 0)
            return 5;
        if (!passes_vector(*stridey, *n, *incy))
            return 8;
        if (*batch_size < 0)
            return 9;
        return 0;
    }
};

/// The list of axpy_batch_strided without alpha.
struct copy_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(integer n, any, integer, integer stridex, any,
                                                    integer incy, integer stridey, integer batch_size)
    {
        if (*stridex < 0)
            return 4;
        if (!passes_vector(*stridey, *n, *incy))
            return 7;
        if (*batch_size < 0)
            return 8;
        return 0;
    }
};

struct gemm_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter transa, letter transb, integer m, integer n,
                                                    integer k, any, any, integer lda, integer stridea, any,
                                                    integer ldb, integer strideb, any, any, integer ldc,
                                                    integer stridec, integer batch_size)
    {
        if (!is_trans<Letters>(transa))
            return 1;
        if (!is_trans<Letters>(transb))
            return 2;
        if (*m < 0)
            return 3;
        if (*n < 0)
            return 4;
        if (*k < 0)
            return 5;
        if (!fits_op<Letters>(lda, transa, m, k))
            return 8;
        if (*stridea < 0)
            return 9;
        if (!fits_op<Letters>(ldb, transb, k, n))
            return 11;
        if (*strideb < 0)
            return 12;
        if (!fits(ldc, *m))
            return 15;
        if (!passes_matrix(*stridec, *ldc, *n))
            return 16;
        if (*batch_size < 0)
            return 17;
        return 0;
    }
};

struct gemv_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t
    first_bad(letter trans, integer m, integer n, any, any, integer lda, integer stridea, any, integer incx,
              integer stridex, any, any, integer incy, integer stridey, integer batch_size)
    {
        if (!is_trans<Letters>(trans))
            return 1;
        if (*m < 0)
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *m))
            return 6;
        if (*stridea < 0)
            return 7;
        if (*incx == 0)
            return 9;
        if (*stridex < 0)
            return 10;
        if (*incy == 0)
            return 13;
        if (!passes_vector(*stridey, Letters::is(trans, 'N') ? *m : *n, *incy))
            return 14;
        if (*batch_size < 0)
            return 15;
        return 0;
    }
};

/// B is an output as much as an input.
struct trsm_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t
    first_bad(letter side, letter uplo, letter transa, letter diag, integer m, integer n, any, any,
              integer lda, integer stridea, any, integer ldb, integer strideb, integer batch_size)
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
        if (!fits_side<Letters>(lda, side, m, n))
            return 9;
        if (*stridea < 0)
            return 10;
        if (!fits(ldb, *m))
            return 12;
        if (!passes_matrix(*strideb, *ldb, *n))
            return 13;
        if (*batch_size < 0)
            return 14;
        return 0;
    }
};

/// `Accepted` are the letters of trans, as in rank_k.
template <char... Accepted>
struct rank_k_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, integer n, integer k, any,
                                                    any, integer lda, integer stridea, any, any,
                                                    integer ldc, integer stridec, integer batch_size)
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
        if (*stridea < 0)
            return 8;
        if (!fits(ldc, *n))
            return 11;
        if (!passes_matrix(*stridec, *ldc, *n))
            return 12;
        if (*batch_size < 0)
            return 13;
        return 0;
    }
};

using syrk_batch_strided_real = rank_k_batch_strided<'N', 'T', 'C'>;
using syrk_batch_strided = rank_k_batch_strided<'N', 'T'>;

/// An increment of 0 is refused as in the group form.
struct dgmm_batch_strided {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, integer m, integer n, any, integer lda,
                                                    integer stridea, any, integer incx, integer stridex,
                                                    any, integer ldc, integer stridec, integer batch_size)
    {
        if (!is_side<Letters>(side))
            return 1;
        if (*m < 0)
            return 2;
        if (*n < 0)
            return 3;
        if (!fits(lda, *m))
            return 5;
        if (*stridea < 0)
            return 6;
        if (*incx == 0)
            return 8;
        if (*stridex < 0)
            return 9;
        if (!fits(ldc, *m))
            return 11;
        if (!passes_matrix(*stridec, *ldc, *n))
            return 12;
        if (*batch_size < 0)
            return 13;
        return 0;
    }
};

} // namespace xkl::checks
