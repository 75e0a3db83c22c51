// Group batches of LAPACK: arrays with one entry a group, arrays of addresses with one entry a matrix. Every
// matrix is one call of the plain routine with its group's arguments; the matrices of all groups run side by
// side.
#pragma once

#include "batch.h"
#include "no_pivot.h"

namespace xkl::core {

template <class T>
void getrf_batch(const int64_t *m, const int64_t *n, T *const *a, const int64_t *lda, int64_t *const *ipiv,
                 const int64_t *groups, const int64_t *sizes, int64_t *info)
{
    if (refused<T>("?GETRF_BATCH ",
                   {{6, *groups >= 0},
                    {1, none_negative(*groups, m)},
                    {2, none_negative(*groups, n)},
                    {4, every(*groups, [=](int64_t g) { return holds(lda[g], m[g]); })},
                    {7, none_negative(*groups, sizes)}},
                   info))
        return;
    for_each_in_groups(
        *groups, sizes, [=](int64_t g) { return operations(m[g], n[g], std::min(m[g], n[g])); },
        [=](int64_t g, int64_t i) {
            call(entries::getrf<T>, m[g], n[g], a[i], lda[g], ipiv[i], info + i);
        });
}

template <class T>
void getrfnp_batch(const int64_t *m, const int64_t *n, T *const *a, const int64_t *lda,
                   const int64_t *groups, const int64_t *sizes, int64_t *info)
{
    if (refused<T>("?GETRFNP_BATCH ",
                   {{5, *groups >= 0},
                    {1, none_negative(*groups, m)},
                    {2, none_negative(*groups, n)},
                    {4, every(*groups, [=](int64_t g) { return holds(lda[g], m[g]); })},
                    {6, none_negative(*groups, sizes)}},
                   info))
        return;
    for_each_in_groups(
        *groups, sizes, [=](int64_t g) { return operations(m[g], n[g], std::min(m[g], n[g])); },
        [=](int64_t g, int64_t i) {
            info[i] = factor_without_pivots(m[g], n[g], std::min(m[g], n[g]), a[i], lda[g]);
        });
}

template <class T>
void getri_oop_batch(const int64_t *n, const T *const *a, const int64_t *lda, const int64_t *const *ipiv,
                     T *const *ainv, const int64_t *ldainv, const int64_t *groups, const int64_t *sizes,
                     int64_t *info)
{
    if (refused<T>("?GETRI_OOP_BATCH ",
                   {{7, *groups >= 0},
                    {1, none_negative(*groups, n)},
                    {3, every(*groups, [=](int64_t g) { return holds(lda[g], n[g]); })},
                    {6, every(*groups, [=](int64_t g) { return holds(ldainv[g], n[g]); })},
                    {8, none_negative(*groups, sizes)}},
                   info))
        return;
    for_each_in_groups(
        *groups, sizes, [=](int64_t g) { return operations(n[g], n[g], n[g]); },
        [=](int64_t g, int64_t i) {
            invert_into(n[g], a[i], lda[g], ipiv[i], ainv[i], ldainv[g], info + i);
        });
}

} // namespace xkl::core
