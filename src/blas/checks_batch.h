// Tests of the group batches. Every argument but group_count has an entry for each group; a test is made on
// all groups before the next test starts, so that the place reported does not depend on which group is bad.
// Without groups no array is read: the caller may not have any.
#pragma once

#include "blas/checks_common.h"

namespace xkl::checks {

/// Whether the test `Good` holds for the entries of every group.
template <auto Good, class... Arrays>
[[gnu::always_inline]] inline bool every(int64_t groups, Arrays... entries)
{
    for (int64_t group = 0; group < groups; ++group)
        if (!Good(entries + group...))
            return false;
    return true;
}

[[gnu::always_inline]] inline bool not_negative(integer size)
{
    return *size >= 0;
}
[[gnu::always_inline]] inline bool not_zero(integer increment)
{
    return *increment != 0;
}
[[gnu::always_inline]] inline bool fits_rows(integer ld, integer rows)
{
    return fits(ld, *rows);
}

struct gemm_batch {
    template <class Letters>
    [[gnu::always_inline]] static int64_t
    first_bad(letter transa, letter transb, integer m, integer n, integer k, any, any, integer lda, any,
              integer ldb, any, any, integer ldc, integer group_count, integer group_size)
    {
        const int64_t groups = *group_count;
        if (groups < 0)
            return 14;
        if (!every<is_trans<Letters>>(groups, transa))
            return 1;
        if (!every<is_trans<Letters>>(groups, transb))
            return 2;
        if (!every<not_negative>(groups, m))
            return 3;
        if (!every<not_negative>(groups, n))
            return 4;
        if (!every<not_negative>(groups, k))
            return 5;
        if (!every<fits_op<Letters>>(groups, lda, transa, m, k))
            return 8;
        if (!every<fits_op<Letters>>(groups, ldb, transb, k, n))
            return 10;
        if (!every<fits_rows>(groups, ldc, m))
            return 13;
        if (!every<not_negative>(groups, group_size))
            return 15;
        return 0;
    }
};

struct gemv_batch {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter trans, integer m, integer n, any, any,
                                                    integer lda, any, integer incx, any, any, integer incy,
                                                    integer group_count, integer group_size)
    {
        const int64_t groups = *group_count;
        if (groups < 0)
            return 12;
        if (!every<is_trans<Letters>>(groups, trans))
            return 1;
        if (!every<not_negative>(groups, m))
            return 2;
        if (!every<not_negative>(groups, n))
            return 3;
        if (!every<fits_rows>(groups, lda, m))
            return 6;
        if (!every<not_zero>(groups, incx))
            return 8;
        if (!every<not_zero>(groups, incy))
            return 11;
        if (!every<not_negative>(groups, group_size))
            return 13;
        return 0;
    }
};

struct trsm_batch {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, letter uplo, letter transa, letter diag,
                                                    integer m, integer n, any, any, integer lda, any,
                                                    integer ldb, integer group_count, integer group_size)
    {
        const int64_t groups = *group_count;
        if (groups < 0)
            return 12;
        if (!every<is_side<Letters>>(groups, side))
            return 1;
        if (!every<is_uplo<Letters>>(groups, uplo))
            return 2;
        if (!every<is_trans<Letters>>(groups, transa))
            return 3;
        if (!every<is_diag<Letters>>(groups, diag))
            return 4;
        if (!every<not_negative>(groups, m))
            return 5;
        if (!every<not_negative>(groups, n))
            return 6;
        if (!every<fits_side<Letters>>(groups, lda, side, m, n))
            return 9;
        if (!every<fits_rows>(groups, ldb, m))
            return 11;
        if (!every<not_negative>(groups, group_size))
            return 13;
        return 0;
    }
};

/// `Accepted` are the letters of trans, as in rank_k.
template <char... Accepted>
struct rank_k_batch {
    template <class Letters>
    [[gnu::always_inline]] static bool is_accepted(letter trans)
    {
        return one_of<Letters>(trans, Accepted...);
    }

    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter uplo, letter trans, integer n, integer k, any,
                                                    any, integer lda, any, any, integer ldc,
                                                    integer group_count, integer group_size)
    {
        const int64_t groups = *group_count;
        if (groups < 0)
            return 11;
        if (!every<is_uplo<Letters>>(groups, uplo))
            return 1;
        if (!every<is_accepted<Letters>>(groups, trans))
            return 2;
        if (!every<not_negative>(groups, n))
            return 3;
        if (!every<not_negative>(groups, k))
            return 4;
        if (!every<fits_op<Letters>>(groups, lda, trans, n, k))
            return 7;
        if (!every<fits_rows>(groups, ldc, n))
            return 10;
        if (!every<not_negative>(groups, group_size))
            return 12;
        return 0;
    }
};

using syrk_batch_real = rank_k_batch<'N', 'T', 'C'>;
using syrk_batch = rank_k_batch<'N', 'T'>;

/// There is no single routine to follow: side, sizes and leading dimensions are tested as everywhere, and
/// an increment of 0 is refused as by every matrix-vector routine.
struct dgmm_batch {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter side, integer m, integer n, any, integer lda,
                                                    any, integer incx, any, integer ldc,
                                                    integer group_count, integer group_size)
    {
        const int64_t groups = *group_count;
        if (groups < 0)
            return 10;
        if (!every<is_side<Letters>>(groups, side))
            return 1;
        if (!every<not_negative>(groups, m))
            return 2;
        if (!every<not_negative>(groups, n))
            return 3;
        if (!every<fits_rows>(groups, lda, m))
            return 5;
        if (!every<not_zero>(groups, incx))
            return 7;
        if (!every<fits_rows>(groups, ldc, m))
            return 9;
        if (!every<not_negative>(groups, group_size))
            return 11;
        return 0;
    }
};

} // namespace xkl::checks
