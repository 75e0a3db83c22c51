// The argument tests of copies and sums of single matrices, and what the batches share with them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace xkl::checks {

/// An argument that no test looks at.
struct unread {
    template <class T>
    unread(const T &)
    {
    }
};

[[gnu::always_inline]] inline bool is(char given, char letter)
{
    return (given & 0xdf) == letter;
}

[[gnu::always_inline]] inline bool is_ordering(char given)
{
    return is(given, 'C') || is(given, 'R');
}

/// Whether rows and columns change places.
[[gnu::always_inline]] inline bool turns(char trans)
{
    return is(trans, 'T') || is(trans, 'C');
}

[[gnu::always_inline]] inline bool is_op(char given)
{
    return turns(given) || is(given, 'N') || is(given, 'R');
}

/// The length of a stored line: of a column, or of a row.
[[gnu::always_inline]] inline size_t line(char ordering, size_t rows, size_t cols)
{
    return is(ordering, 'C') ? rows : cols;
}

/// The same for op of a rows by cols matrix.
[[gnu::always_inline]] inline size_t line_of_op(char ordering, char trans, size_t rows, size_t cols)
{
    return turns(trans) ? line(ordering, cols, rows) : line(ordering, rows, cols);
}

/// A leading dimension of 0 is refused even for an empty matrix.
[[gnu::always_inline]] inline bool fits(size_t ld, size_t length)
{
    return ld >= length && ld != 0;
}

/// The same for a line whose elements lie `stride` apart. No length is too large for the multiplication: a
/// product beyond all integers fits nowhere.
[[gnu::always_inline]] inline bool fits_strided(size_t ld, size_t length, size_t stride)
{
    if (ld == 0 || length == 0)
        return ld != 0;
    size_t last;
    return !__builtin_mul_overflow(length - 1, stride, &last) && ld > last;
}

/// Where the arguments of one copy stand.
struct copy_places {
    int64_t trans, lda, ldb;
};

/// The tests of one copy behind the ordering. The source is tested before trans: a call with both bad is
/// about lda.
template <class Report>
[[gnu::always_inline]] inline int64_t refused_copy(Report report, copy_places at, char ordering, char trans,
                                                   size_t rows, size_t cols, size_t lda, size_t ldb)
{
    if (!fits(lda, line(ordering, rows, cols)))
        return report(at.lda);
    if (!is_op(trans))
        return report(at.trans);
    if (!fits(ldb, line_of_op(ordering, trans, rows, cols)))
        return report(at.ldb);
    return 0;
}

struct omatcopy {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char trans, size_t rows,
                                                  size_t cols, unread, unread, size_t lda, unread,
                                                  size_t ldb)
    {
        if (!is_ordering(ordering))
            return report(1);
        return refused_copy(report, {2, 7, 9}, ordering, trans, rows, cols, lda, ldb);
    }
};

struct imatcopy {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char trans, size_t rows,
                                                  size_t cols, unread, unread, size_t lda, size_t ldb)
    {
        if (!is_ordering(ordering))
            return report(1);
        return refused_copy(report, {2, 7, 8}, ordering, trans, rows, cols, lda, ldb);
    }
};

/// A strideb of 0 and a bad trans are reported and do not stop the copy.
struct omatcopy2 {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char trans, size_t rows,
                                                  size_t cols, unread, unread, size_t lda, size_t stridea,
                                                  unread, size_t ldb, size_t strideb)
    {
        if (stridea == 0)
            return report(8);
        if (strideb == 0)
            report(11);
        if (!is_ordering(ordering))
            return report(1);
        if (!fits_strided(lda, line(ordering, rows, cols), stridea))
            return report(7);
        if (!is_op(trans)) {
            report(2);
            return 0;
        }
        if (!fits_strided(ldb, line_of_op(ordering, trans, rows, cols), strideb))
            return report(10);
        return 0;
    }
};

/// Where the arguments of one sum stand.
struct sum_places {
    int64_t lda, ldb, ldc;
};

/// The tests of one sum. A bad transa or transb is reported, and its operand's leading dimension is not
/// tested; a bad ldc is reported and does not stop the sum.
template <class Report>
[[gnu::always_inline]] inline int64_t refused_sum(Report report, sum_places at, char ordering, char transa,
                                                  char transb, size_t rows, size_t cols, size_t lda,
                                                  size_t ldb, size_t ldc)
{
    if (!is_ordering(ordering))
        return report(1);
    if (!is_op(transa))
        report(2);
    else if (!fits(lda, line_of_op(ordering, transa, rows, cols)))
        return report(at.lda);
    if (!is_op(transb))
        report(3);
    else if (!fits(ldb, line_of_op(ordering, transb, rows, cols)))
        return report(at.ldb);
    if (!fits(ldc, line(ordering, rows, cols)))
        report(at.ldc);
    return 0;
}

struct omatadd {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char transa, char transb,
                                                  size_t rows, size_t cols, unread, unread, size_t lda,
                                                  unread, unread, size_t ldb, unread, size_t ldc)
    {
        return refused_sum(report, {8, 11, 13}, ordering, transa, transb, rows, cols, lda, ldb, ldc);
    }
};

} // namespace xkl::checks
