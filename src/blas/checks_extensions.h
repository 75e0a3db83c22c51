// Tests of the packed, low-precision and made-to-shape products. They are the tests of GEMM in the order of
// each list, with those of the list's own arguments between them.
#pragma once

#include "blas/checks_common.h"

namespace xkl::checks {

/// The operand of a product that is to be packed.
template <class Letters>
[[gnu::always_inline]] inline bool is_identifier(letter given)
{
    return one_of<Letters>(given, 'A', 'B');
}

/// What the offset of C is: one number, a column or a row.
template <class Letters>
[[gnu::always_inline]] inline bool is_offset(letter given)
{
    return one_of<Letters>(given, 'F', 'C', 'R');
}

/// An operand of ?_COMPUTE may be packed.
template <class Letters>
[[gnu::always_inline]] inline bool is_trans_or_packed(letter given)
{
    return is_trans<Letters>(given) || Letters::is(given, 'P');
}

/// The leading dimension of a packed operand means nothing.
template <class Letters>
[[gnu::always_inline]] inline bool fits_op_or_packed(integer ld, letter trans, integer plain,
                                                     integer turned)
{
    return Letters::is(trans, 'P') || fits_op<Letters>(ld, trans, plain, turned);
}

/// A jitter is made for sizes and leading dimensions that GEMM would accept: its kernel checks nothing.
/// Without an address for the handle there is nowhere to put it.
struct jit_create {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(any jitter, letter transa, letter transb, integer m,
                                                    integer n, integer k, any, integer lda, integer ldb,
                                                    any, integer ldc)
    {
        if (jitter == nullptr)
            return 1;
        if (!is_trans<Letters>(transa))
            return 2;
        if (!is_trans<Letters>(transb))
            return 3;
        if (*m < 0)
            return 4;
        if (*n < 0)
            return 5;
        if (*k < 0)
            return 6;
        if (!fits_op<Letters>(lda, transa, m, k))
            return 8;
        if (!fits_op<Letters>(ldb, transb, k, n))
            return 9;
        if (!fits(ldc, *m))
            return 11;
        return 0;
    }
};

/// All sizes of the product are tested: how an operand is packed may depend on the one that is not its own.
struct pack_get_size {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter identifier, integer m, integer n, integer k)
    {
        if (!is_identifier<Letters>(identifier))
            return 1;
        if (*m < 0)
            return 2;
        if (*n < 0)
            return 3;
        if (*k < 0)
            return 4;
        return 0;
    }
};

/// identifier, trans, m, n and k lead the list of every packing routine.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_of_pack(letter identifier, letter trans, integer m,
                                                        integer n, integer k)
{
    if (!is_identifier<Letters>(identifier))
        return 1;
    if (!is_trans<Letters>(trans))
        return 2;
    if (*m < 0)
        return 3;
    if (*n < 0)
        return 4;
    if (*k < 0)
        return 5;
    return 0;
}

/// op(A) is m by k, op(B) is k by n.
template <class Letters>
[[gnu::always_inline]] inline bool fits_source(integer ld, letter identifier, letter trans, integer m,
                                               integer n, integer k)
{
    if (Letters::is(identifier, 'A'))
        return fits_op<Letters>(ld, trans, m, k);
    return fits_op<Letters>(ld, trans, k, n);
}

struct pack {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter identifier, letter trans, integer m, integer n,
                                                    integer k, any, integer ld, any)
    {
        if (const int64_t bad = first_bad_of_pack<Letters>(identifier, trans, m, n, k))
            return bad;
        if (!fits_source<Letters>(ld, identifier, trans, m, n, k))
            return 7;
        return 0;
    }
};

/// alpha stands before the source.
struct pack_scaled {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter identifier, letter trans, integer m, integer n,
                                                    integer k, any, any, integer ld, any)
    {
        if (const int64_t bad = first_bad_of_pack<Letters>(identifier, trans, m, n, k))
            return bad;
        if (!fits_source<Letters>(ld, identifier, trans, m, n, k))
            return 8;
        return 0;
    }
};

/// transa, transb, m, n and k lead the list of a product whose operands may be packed.
template <class Letters>
[[gnu::always_inline]] inline int64_t first_bad_of_compute(letter transa, letter transb, integer m,
                                                           integer n, integer k)
{
    if (!is_trans_or_packed<Letters>(transa))
        return 1;
    if (!is_trans_or_packed<Letters>(transb))
        return 2;
    if (*m < 0)
        return 3;
    if (*n < 0)
        return 4;
    if (*k < 0)
        return 5;
    return 0;
}

/// Without alpha, which was folded into a packed operand.
struct compute {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter transa, letter transb, integer m, integer n,
                                                    integer k, any, integer lda, any, integer ldb, any, any,
                                                    integer ldc)
    {
        if (const int64_t bad = first_bad_of_compute<Letters>(transa, transb, m, n, k))
            return bad;
        if (!fits_op_or_packed<Letters>(lda, transa, m, k))
            return 7;
        if (!fits_op_or_packed<Letters>(ldb, transb, k, n))
            return 9;
        if (!fits(ldc, *m))
            return 12;
        return 0;
    }
};

struct compute_scaled {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter transa, letter transb, integer m, integer n,
                                                    integer k, any, any, integer lda, any, integer ldb, any,
                                                    any, integer ldc)
    {
        if (const int64_t bad = first_bad_of_compute<Letters>(transa, transb, m, n, k))
            return bad;
        if (!fits_op_or_packed<Letters>(lda, transa, m, k))
            return 8;
        if (!fits_op_or_packed<Letters>(ldb, transb, k, n))
            return 10;
        if (!fits(ldc, *m))
            return 13;
        return 0;
    }
};

/// Integer products with offsets, whose operands may be packed.
struct compute_offset {
    template <class Letters>
    [[gnu::always_inline]] static int64_t first_bad(letter transa, letter transb, letter offsetc, integer m,
                                                    integer n, integer k, any, any, integer lda, any, any,
                                                    integer ldb, any, any, any, integer ldc, any)
    {
        if (!is_trans_or_packed<Letters>(transa))
            return 1;
        if (!is_trans_or_packed<Letters>(transb))
            return 2;
        if (!is_offset<Letters>(offsetc))
            return 3;
        if (*m < 0)
            return 4;
        if (*n < 0)
            return 5;
        if (*k < 0)
            return 6;
        if (!fits_op_or_packed<Letters>(lda, transa, m, k))
            return 9;
        if (!fits_op_or_packed<Letters>(ldb, transb, k, n))
            return 12;
        if (!fits(ldc, *m))
            return 16;
        return 0;
    }
};

/// The same with neither operand packed.
struct gemm_offset {
    template <class Letters>
    [[gnu::always_inline]] static int64_t
    first_bad(letter transa, letter transb, letter offsetc, integer m, integer n, integer k, any alpha,
              any a, integer lda, any ao, any b, integer ldb, any bo, any beta, any c, integer ldc, any co)
    {
        if (!is_trans<Letters>(transa))
            return 1;
        if (!is_trans<Letters>(transb))
            return 2;
        return compute_offset::first_bad<Letters>(transa, transb, offsetc, m, n, k, alpha, a, lda, ao, b,
                                                  ldb, bo, beta, c, ldc, co);
    }
};

} // namespace xkl::checks
