// Strided batches of LAPACK: one set of arguments, and matrices at a fixed distance from each other. Every
// matrix is one call of the plain routine; the matrices run side by side. An input with a stride of 0 serves
// all of them.
#pragma once

#include "batch.h"
#include "no_pivot.h"

namespace xkl::core {

template <class T>
void getrf_batch_strided(const int64_t *m, const int64_t *n, T *a, const int64_t *lda,
                         const int64_t *stridea, int64_t *ipiv, const int64_t *stridepiv,
                         const int64_t *batch_size, int64_t *info)
{
    const int64_t steps = std::min(*m, *n);
    if (refused<T>("?GETRF_BATCH_STRIDED ",
                   {{1, *m >= 0},
                    {2, *n >= 0},
                    {4, holds(*lda, *m)},
                    {5, apart(*stridea, *lda, *n)},
                    {7, apart(*stridepiv, steps, 1)},
                    {8, *batch_size >= 0}},
                   info))
        return;
    for_each(*batch_size, operations(*m, *n, steps), [=](int64_t i) {
        call(entries::getrf<T>, m, n, a + i * *stridea, lda, ipiv + i * *stridepiv, info + i);
    });
}

template <class T>
void getrfnp_batch_strided(const int64_t *m, const int64_t *n, T *a, const int64_t *lda,
                           const int64_t *stridea, const int64_t *batch_size, int64_t *info)
{
    if (refused<T>("?GETRFNP_BATCH_STRIDED ",
                   {{1, *m >= 0},
                    {2, *n >= 0},
                    {4, holds(*lda, *m)},
                    {5, apart(*stridea, *lda, *n)},
                    {6, *batch_size >= 0}},
                   info))
        return;
    const int64_t steps = std::min(*m, *n);
    for_each(*batch_size, operations(*m, *n, steps),
             [=](int64_t i) { info[i] = factor_without_pivots(*m, *n, steps, a + i * *stridea, *lda); });
}

template <class T>
void getrs_batch_strided(const char *trans, const int64_t *n, const int64_t *nrhs, const T *a,
                         const int64_t *lda, const int64_t *stridea, const int64_t *ipiv,
                         const int64_t *stridepiv, T *b, const int64_t *ldb, const int64_t *strideb,
                         const int64_t *batch_size, int64_t *info)
{
    if (refused<T>("?GETRS_BATCH_STRIDED ",
                   {{1, is_operation(*trans)},
                    {2, *n >= 0},
                    {3, *nrhs >= 0},
                    {5, holds(*lda, *n)},
                    {6, *stridea >= 0},
                    {8, *stridepiv >= 0},
                    {10, holds(*ldb, *n)},
                    {11, apart(*strideb, *ldb, *nrhs)},
                    {12, *batch_size >= 0}},
                   info))
        return;
    for_each(*batch_size, 2 * operations(*n, *n, *nrhs), [=](int64_t i) {
        call(entries::getrs<T>, trans, n, nrhs, a + i * *stridea, lda, ipiv + i * *stridepiv,
             b + i * *strideb, ldb, info + i);
    });
}

template <class T>
void getrsnp_batch_strided(const char *trans, const int64_t *n, const int64_t *nrhs, const T *a,
                           const int64_t *lda, const int64_t *stridea, T *b, const int64_t *ldb,
                           const int64_t *strideb, const int64_t *batch_size, int64_t *info)
{
    if (refused<T>("?GETRSNP_BATCH_STRIDED ",
                   {{1, is_operation(*trans)},
                    {2, *n >= 0},
                    {3, *nrhs >= 0},
                    {5, holds(*lda, *n)},
                    {6, *stridea >= 0},
                    {8, holds(*ldb, *n)},
                    {9, apart(*strideb, *ldb, *nrhs)},
                    {10, *batch_size >= 0}},
                   info))
        return;
    for_each(*batch_size, 2 * operations(*n, *n, *nrhs), [=](int64_t i) {
        info[i] = 0;
        solve_without_pivots(*trans, *n, *nrhs, a + i * *stridea, *lda, b + i * *strideb, *ldb);
    });
}

template <class T>
void getri_batch_strided(const int64_t *n, T *a, const int64_t *lda, const int64_t *stridea,
                         const int64_t *ipiv, const int64_t *stridepiv, const int64_t *batch_size,
                         int64_t *info)
{
    constexpr const char *name = "?GETRI_BATCH_STRIDED ";
    if (refused<T>(name,
                   {{1, *n >= 0},
                    {3, holds(*lda, *n)},
                    {4, apart(*stridea, *lda, *n)},
                    {6, *stridepiv >= 0},
                    {7, *batch_size >= 0}},
                   info))
        return;
    const int64_t lwork = best_workspace<T>([=](T *work, int64_t query, int64_t *done) {
        call(entries::getri<T>, n, a, lda, ipiv, work, query, done);
    });
    for_each_with_space<T>(
        name, lwork, *batch_size, 1.5 * operations(*n, *n, *n), info, [=](int64_t i, T *work) {
            call(entries::getri<T>, n, a + i * *stridea, lda, ipiv + i * *stridepiv, work, lwork, info + i);
        });
}

template <class T>
void getri_oop_batch_strided(const int64_t *n, const T *a, const int64_t *lda, const int64_t *stridea,
                             const int64_t *ipiv, const int64_t *stridepiv, T *ainv, const int64_t *ldainv,
                             const int64_t *strideainv, const int64_t *batch_size, int64_t *info)
{
    if (refused<T>("?GETRI_OOP_BATCH_STRIDED ",
                   {{1, *n >= 0},
                    {3, holds(*lda, *n)},
                    {4, *stridea >= 0},
                    {6, *stridepiv >= 0},
                    {8, holds(*ldainv, *n)},
                    {9, apart(*strideainv, *ldainv, *n)},
                    {10, *batch_size >= 0}},
                   info))
        return;
    for_each(*batch_size, 1.5 * operations(*n, *n, *n), [=](int64_t i) {
        invert_into(*n, a + i * *stridea, *lda, ipiv + i * *stridepiv, ainv + i * *strideainv, *ldainv,
                    info + i);
    });
}

template <class T>
void potrf_batch_strided(const char *uplo, const int64_t *n, T *a, const int64_t *lda,
                         const int64_t *stridea, const int64_t *batch_size, int64_t *info)
{
    if (refused<T>("?POTRF_BATCH_STRIDED ",
                   {{1, is(*uplo, 'U') || is(*uplo, 'L')},
                    {2, *n >= 0},
                    {4, holds(*lda, *n)},
                    {5, apart(*stridea, *lda, *n)},
                    {6, *batch_size >= 0}},
                   info))
        return;
    for_each(*batch_size, operations(*n, *n, *n) / 3,
             [=](int64_t i) { call(entries::potrf<T>, uplo, n, a + i * *stridea, lda, info + i); });
}

template <class T>
void gels_batch_strided(const char *trans, const int64_t *m, const int64_t *n, const int64_t *nrhs, T *a,
                        const int64_t *lda, const int64_t *stridea, T *b, const int64_t *ldb,
                        const int64_t *strideb, const int64_t *batch_size, int64_t *info)
{
    constexpr const char *name = "?GELS_BATCH_STRIDED ";
    constexpr char transposed = element<T>::is_complex ? 'C' : 'T';
    if (refused<T>(name,
                   {{1, is(*trans, 'N') || is(*trans, transposed)},
                    {2, *m >= 0},
                    {3, *n >= 0},
                    {4, *nrhs >= 0},
                    {6, holds(*lda, *m)},
                    {7, apart(*stridea, *lda, *n)},
                    {9, holds(*ldb, std::max(*m, *n))},
                    {10, apart(*strideb, *ldb, *nrhs)},
                    {11, *batch_size >= 0}},
                   info))
        return;
    const int64_t lwork = best_workspace<T>([=](T *work, int64_t query, int64_t *done) {
        call(entries::gels<T>, trans, m, n, nrhs, a, lda, b, ldb, work, query, done);
    });
    for_each_with_space<T>(name, lwork, *batch_size, 2 * operations(*m, *n, std::min(*m, *n)), info,
                           [=](int64_t i, T *work) {
                               call(entries::gels<T>, trans, m, n, nrhs, a + i * *stridea, lda,
                                    b + i * *strideb, ldb, work, lwork, info + i);
                           });
}

} // namespace xkl::core
