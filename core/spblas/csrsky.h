// Compressed rows to a triangle in skyline storage, and back.
#pragma once

#include "spblas/conversion.h"

namespace xkl::core {
namespace spblas {

/// f(line, place on it, element) for the elements of one triangle: rows of the lower, columns of the upper
template <class T, class F>
void visit_triangle(const compressed<T> &a, bool lower, const F &f)
{
    for (int64_t i = 0; i < a.count; ++i)
        a.visit(i, [&](int64_t j, T v) {
            const int64_t line = lower ? i : j, place = lower ? j : i;
            if (place <= line)
                f(line, place, v);
        });
}

template <class T>
int64_t rows_to_skyline(const job_list &job, const compressed<T> &a, bool lower, T *asky, int64_t *pointers)
{
    const int64_t n = a.count, base = job(3);
    std::fill(pointers + 1, pointers + n + 1, 1); // the diagonal has its place even if it's zero
    visit_triangle(a, lower, [&](int64_t line, int64_t place, T) {
        pointers[line + 1] = std::max(pointers[line + 1], line - place + 1);
    });
    add_up(n, base, pointers);
    if (job(6) == 0)
        return converted;
    const int64_t size = pointers[n] - base;
    if (size > job(5))
        return no_room;
    std::fill(asky, asky + size, T(0));
    visit_triangle(a, lower, [&](int64_t line, int64_t place, T v) {
        asky[pointers[line + 1] - base - 1 - (line - place)] += v;
    });
    return converted;
}

/// f(row, column, element) for the diagonal and what else isn't zero
template <class T, class F>
void visit_skyline(int64_t n, bool lower, const T *asky, const int64_t *pointers, const F &f)
{
    for (int64_t line = 0; line < n; ++line)
        for (int64_t p = pointers[line] - pointers[0], end = pointers[line + 1] - pointers[0]; p < end;
             ++p) {
            const int64_t place = line - (end - 1 - p);
            if (place == line || asky[p] != T(0))
                f(lower ? line : place, lower ? place : line, asky[p]);
        }
}

template <class T>
int64_t skyline_to_rows(const job_list &job, int64_t n, bool lower, const T *asky, const int64_t *pointers,
                        T *acsr, int64_t *ja, int64_t *ia)
{
    std::fill(ia, ia + n + 1, 0);
    visit_skyline(n, lower, asky, pointers, [&](int64_t i, int64_t, T) { ++ia[i + 1]; });
    add_up(n, 0, ia);
    const bool fits = ia[n] <= job(5);
    if (fits) {
        visit_skyline(n, lower, asky, pointers, [&](int64_t i, int64_t j, T v) {
            ja[ia[i]] = j + job(2);
            acsr[ia[i]++] = v;
        });
        std::copy_backward(ia, ia + n, ia + n + 1);
        ia[0] = 0;
    }
    for (int64_t i = 0; i <= n; ++i)
        ia[i] += job(2);
    return fits ? converted : no_room;
}

} // namespace spblas

template <class T>
int64_t xkl_csrsky(const int64_t *job, const int64_t *n, T *acsr, int64_t *ja, int64_t *ia, T *asky,
                   int64_t *pointers, int64_t *info)
{
    const spblas::job_list is{job};
    const bool lower = is(4) == 1;
    if (is(4) != 0 && is(4) != 1)
        *info = spblas::bad_choice(4);
    else if (is.backwards())
        *info = spblas::skyline_to_rows(is, *n, lower, asky, pointers, acsr, ja, ia);
    else
        *info = spblas::rows_to_skyline(is, spblas::rows_with_starts<T>(*n, is(2), acsr, ja, ia), lower,
                                        asky, pointers);
    return 0;
}

} // namespace xkl::core
