// The argument tests of batches of matrix copies: those of one matrix, for each matrix or group.
//
// Strides come first, in the order of the list, as in the copy with strides: the sum reports its last test
// without stopping, so nothing can stand behind it. A stride of 0 always refuses the call, whatever the
// batch's size: the results of all matrices would lie in one place. Nothing follows for a batch of none
// from that: its other arguments are tested like any other's.
#pragma once

#include "matcopy/checks_single.h"

namespace xkl::checks {

struct omatcopy_batch_strided {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char trans, size_t rows,
                                                  size_t cols, unread, unread, size_t lda, size_t stridea,
                                                  unread, size_t ldb, size_t strideb, unread)
    {
        if (stridea == 0)
            return report(8);
        if (strideb == 0)
            return report(11);
        if (!is_ordering(ordering))
            return report(1);
        return refused_copy(report, {2, 7, 10}, ordering, trans, rows, cols, lda, ldb);
    }
};

struct imatcopy_batch_strided {
    template <class Report>
    [[gnu::always_inline]] static int64_t refused(Report report, char ordering, char trans, size_t rows,
                                                  size_t cols, unread, unread, size_t lda, size_t ldb,
                                                  size_t stride, unread)
    {
        if (stride == 0)
            return report(9);
        if (!is_ordering(ordering))
            return report(1);
        return refused_copy(report, {2, 7, 8}, ordering, trans, rows, cols, lda, ldb);
    }
};

struct omatadd_batch_strided {
    template <class Report>
    [[gnu::always_inline]] static int64_t
    refused(Report report, char ordering, char transa, char transb, size_t rows, size_t cols, unread,
            unread, size_t lda, size_t stridea, unread, unread, size_t ldb, size_t strideb, unread,
            size_t ldc, size_t stridec, unread)
    {
        if (stridea == 0)
            return report(9);
        if (strideb == 0)
            return report(13);
        if (stridec == 0)
            return report(16);
        return refused_sum(report, {8, 12, 15}, ordering, transa, transb, rows, cols, lda, ldb, ldc);
    }
};

/// Group after group; the first bad argument of the first bad group is reported. Without groups no array is
/// read: the caller may not have any. Groups without matrices are tested like the others.
template <class Report>
[[gnu::always_inline]] inline int64_t
refused_groups(Report report, copy_places at, char ordering, const char *trans, const size_t *rows,
               const size_t *cols, const size_t *lda, const size_t *ldb, size_t groups)
{
    if (!is_ordering(ordering))
        return report(1);
    for (size_t i = 0; i < groups; ++i)
        if (refused_copy(report, at, ordering, trans[i], rows[i], cols[i], lda[i], ldb[i]))
            return 1;
    return 0;
}

struct omatcopy_batch {
    template <class Report>
    [[gnu::always_inline]] static int64_t
    refused(Report report, char ordering, const char *trans, const size_t *rows, const size_t *cols, unread,
            unread, const size_t *lda, unread, const size_t *ldb, size_t group_count, unread)
    {
        return refused_groups(report, {2, 7, 9}, ordering, trans, rows, cols, lda, ldb, group_count);
    }
};

struct imatcopy_batch {
    template <class Report>
    [[gnu::always_inline]] static int64_t
    refused(Report report, char ordering, const char *trans, const size_t *rows, const size_t *cols, unread,
            unread, const size_t *lda, const size_t *ldb, size_t group_count, unread)
    {
        return refused_groups(report, {2, 7, 8}, ordering, trans, rows, cols, lda, ldb, group_count);
    }
};

} // namespace xkl::checks
