// Rows of a sparse matrix as the incomplete factorizations read them: compressed, indices from 1, columns
// ascending; and the codes by which they say what is wrong.
#pragma once

#include "blas/elements.h"
#include "service/service_entries.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>

namespace xkl::core::iss {

/// ierr of both factorizations; docs/sparse.md explains them.
enum incomplete_error : int64_t {
    incomplete_done = 0,
    no_diagonal = -101,   // ILU0: a row has none. ILUT: a row is empty. Both: one ends before it starts
    zero_diagonal = -102, // a pivot is zero, or too small, and ipar(31) does not allow to replace it
    tiny_diagonal = -103, // ILU0: a pivot is so small that dividing by it overflows
    incomplete_no_memory = -104,
    bad_order = -105, // n is not positive
    columns_not_ascending = -106,
    bad_column = -107,        // outside of 1 to n, as the first row start other than 1 is, too
    filling_cut = 101,        // ILUT: maxfil is not less than n
    negative_tolerance = 102, // ILUT: tol is negative; its amount was used
    large_tolerance = 103,    // ILUT: tol is larger than dpar(31), the least pivot
    no_replacement = 104      // ILUT: pivots may be replaced, but dpar(31) is 0
};

/// Places in ipar and dpar, counted from 0
inline constexpr int replace_pivots = 30;  // ipar: not 0 to go on with small pivots replaced
inline constexpr int least_pivot = 30;     // dpar: below it a pivot is small; ILUT: times the row's norm
inline constexpr int replacing_pivot = 31; // dpar, ILU0: what takes its place

template <class T>
struct sparse_rows {
    int64_t n;
    const T *a;
    const int64_t *ia, *ja;

    int64_t begin(int64_t row) const { return ia[row] - 1; }
    int64_t end(int64_t row) const { return ia[row + 1] - 1; }
    int64_t column(int64_t place) const { return ja[place] - 1; }

    int64_t mistake() const
    {
        if (n <= 0)
            return bad_order;
        if (ia[0] != 1)
            return bad_column;
        for (int64_t row = 0; row < n; ++row) {
            if (end(row) < begin(row))
                return no_diagonal;
            for (int64_t place = begin(row); place < end(row); ++place) {
                if (column(place) < 0 || column(place) >= n)
                    return bad_column;
                if (place > begin(row) && column(place) <= column(place - 1))
                    return columns_not_ascending;
            }
        }
        return incomplete_done;
    }
};

/// Space that the library's allocator gives, null when it has none
template <class T>
using space = std::unique_ptr<T[], decltype(&xkl_serv_free)>;

template <class T>
space<T> space_for(int64_t count)
{
    return {static_cast<T *>(xkl_serv_malloc(static_cast<size_t>(count) * sizeof(T), 64)), xkl_serv_free};
}

} // namespace xkl::core::iss
