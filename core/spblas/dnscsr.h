// A dense matrix to compressed rows, and back: the whole of it or one triangle.
#pragma once

#include "spblas/conversion.h"

namespace xkl::core {
namespace spblas {

/// The places of a dense matrix that take part. It is stored by columns if its indices start at 1, else by
/// rows.
struct dense_part {
    enum kind : int64_t { lower = 0, upper = 1, whole = 2 };
    int64_t part, rows, columns, lead;
    bool by_columns;

    int64_t first(int64_t i) const { return part == upper ? std::min(i, columns) : 0; }
    int64_t end(int64_t i) const { return part == lower ? std::min(i + 1, columns) : columns; }
    int64_t place(int64_t i, int64_t j) const { return by_columns ? i + j * lead : i * lead + j; }
};

/// Tells the row, from 1, for which there is no room.
template <class T>
int64_t dense_to_rows(const job_list &job, const dense_part &is, const T *adns, T *acsr, int64_t *ja,
                      int64_t *ia)
{
    const bool only_starts = job(6) == 0;
    int64_t next = 0;
    ia[0] = job(3);
    for (int64_t i = 0; i < is.rows; ++i) {
        for (int64_t j = is.first(i); j < is.end(i); ++j) {
            const T v = adns[is.place(i, j)];
            if (v == T(0))
                continue;
            if (!only_starts) {
                if (next == job(5))
                    return i + 1;
                ja[next] = j + job(3);
                acsr[next] = v;
            }
            ++next;
        }
        ia[i + 1] = next + job(3);
    }
    return converted;
}

template <class T>
int64_t rows_to_dense(const dense_part &is, const compressed<T> &a, T *adns)
{
    for (int64_t i = 0; i < is.rows; ++i) {
        for (int64_t j = is.first(i); j < is.end(i); ++j)
            adns[is.place(i, j)] = T(0);
        a.visit(i, [&](int64_t j, T v) {
            if (j >= is.first(i) && j < is.end(i))
                adns[is.place(i, j)] += v;
        });
    }
    return converted;
}

} // namespace spblas

template <class T>
int64_t xkl_dnscsr(const int64_t *job, const int64_t *m, const int64_t *n, T *adns, const int64_t *lda,
                   T *acsr, int64_t *ja, int64_t *ia, int64_t *info)
{
    const spblas::job_list is{job};
    const spblas::dense_part part = {is(4), *m, *n, *lda, is(2) == 1};
    if (is(4) < spblas::dense_part::lower || is(4) > spblas::dense_part::whole)
        *info = spblas::bad_choice(4);
    else if (is.backwards())
        *info = spblas::rows_to_dense(part, spblas::rows_with_starts<T>(*m, is(3), acsr, ja, ia), adns);
    else
        *info = spblas::dense_to_rows(is, part, adns, acsr, ja, ia);
    return 0;
}

} // namespace xkl::core
