// Compressed rows to compressed columns, and back.
#pragma once

#include "spblas/conversion.h"

namespace xkl::core {
namespace spblas {

/// Lines of one direction to those of the other
template <class T>
void turn_lines(int64_t n, int64_t from_base, const T *a, const int64_t *ja, const int64_t *ia,
                int64_t to_base, bool with_values, T *b, int64_t *jb, int64_t *ib)
{
    const compressed<T> lines = rows_with_starts(n, from_base, a, ja, ia);
    sort_by_columns(lines, n, ib, [&](int64_t i, int64_t line, int64_t place) {
        jb[place] = line + to_base;
        if (with_values)
            b[place] = a[i];
    });
    for (int64_t i = 0; i <= n; ++i)
        ib[i] += to_base;
}

} // namespace spblas

template <class T>
int64_t xkl_csrcsc(const int64_t *job, const int64_t *n, T *acsr, int64_t *ja, int64_t *ia, T *acsc,
                   int64_t *ja1, int64_t *ia1, int64_t *info)
{
    const spblas::job_list is{job};
    const bool with_values = is(6) != 0;
    if (is.backwards())
        spblas::turn_lines(*n, is(3), acsc, ja1, ia1, is(2), with_values, acsr, ja, ia);
    else
        spblas::turn_lines(*n, is(2), acsr, ja, ia, is(3), with_values, acsc, ja1, ia1);
    *info = spblas::converted;
    return 0;
}

} // namespace xkl::core
