// Compressed rows to elements with their places, and back.
#pragma once

#include "spblas/conversion.h"

namespace xkl::core {
namespace spblas {

/// The parts of the result that are wanted: rows, then columns too, then values too
enum wanted_elements : int64_t { only_rows = 1, places = 2, all_elements = 3 };
/// And back: everything, or only the starts, or only what isn't starts
enum wanted_rows : int64_t { all_rows = 0, only_starts = 1, filling = 2 };

template <class T>
int64_t rows_to_elements(const job_list &job, int64_t n, const T *acsr, const int64_t *ja,
                         const int64_t *ia, int64_t *nnz, T *acoo, int64_t *rowind, int64_t *colind)
{
    if (job(6) < only_rows)
        return bad_choice(6);
    *nnz = elements_in(n, ia);
    if (*nnz > job(5))
        return no_room;
    for (int64_t i = 0; i < n; ++i)
        for (int64_t p = ia[i] - ia[0]; p < ia[i + 1] - ia[0]; ++p) {
            rowind[p] = i + job(3);
            if (job(6) >= places)
                colind[p] = ja[p] - job(2) + job(3);
            if (job(6) == all_elements)
                acoo[p] = acsr[p];
        }
    return converted;
}

template <class T>
int64_t elements_to_rows(const job_list &job, int64_t n, T *acsr, int64_t *ja, int64_t *ia, int64_t nnz,
                         const T *acoo, const int64_t *rowind, const int64_t *colind)
{
    if (job(6) > filling)
        return bad_choice(6);
    sort_into_lines(
        n, nnz, ia, [&](int64_t i) { return rowind[i] - job(3); },
        [&](int64_t i, int64_t place) {
            if (job(6) == only_starts)
                return;
            ja[place] = colind[i] - job(3) + job(2);
            acsr[place] = acoo[i];
        });
    if (job(1) == 2 && job(6) != only_starts)
        sort_lines(n, ia, ja, acsr);
    for (int64_t i = 0; i <= n; ++i)
        ia[i] += job(2);
    return converted;
}

} // namespace spblas

template <class T>
int64_t xkl_csrcoo(const int64_t *job, const int64_t *n, T *acsr, int64_t *ja, int64_t *ia, int64_t *nnz,
                   T *acoo, int64_t *rowind, int64_t *colind, int64_t *info)
{
    const spblas::job_list choices{job};
    *info = choices.backwards()
                ? spblas::elements_to_rows(choices, *n, acsr, ja, ia, *nnz, acoo, rowind, colind)
                : spblas::rows_to_elements(choices, *n, acsr, ja, ia, nnz, acoo, rowind, colind);
    return 0;
}

} // namespace xkl::core
