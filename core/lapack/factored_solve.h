// Solutions from a factorization that is there already: of square systems, of least squares, of minimum norm.
#pragma once

#include "arguments.h"
#include "blas/kernels.h"
#include "call.h"

namespace xkl::core {

template <class T>
using getrs_routine = void(const char *trans, const int64_t *n, const int64_t *nrhs, T *a,
                           const int64_t *lda, int64_t *ipiv, T *b, const int64_t *ldb, int64_t *info,
                           int64_t);
extern "C" {
getrs_routine<float> sgetrs_;
getrs_routine<double> dgetrs_;
getrs_routine<complex8> cgetrs_;
getrs_routine<complex16> zgetrs_;
}
template <class T>
inline constexpr decltype(nullptr) openblas_getrs{};
template <>
inline constexpr auto *openblas_getrs<float> = sgetrs_;
template <>
inline constexpr auto *openblas_getrs<double> = dgetrs_;
template <>
inline constexpr auto *openblas_getrs<complex8> = cgetrs_;
template <>
inline constexpr auto *openblas_getrs<complex16> = zgetrs_;

/// Solves op(A)*X = B with the factors of ?GETRF. OpenBLAS reports bad arguments of this routine and leaves
/// info as it was, so they are looked for here.
template <class T>
void getrs(const char *trans, const int64_t *n, const int64_t *nrhs, T *a, const int64_t *lda,
           int64_t *ipiv, T *b, const int64_t *ldb, int64_t *info)
{
    *info = refuse<T>("?GETRS", {{!is_one_of(*trans, "NTC"), 1},
                                 {*n < 0, 2},
                                 {*nrhs < 0, 3},
                                 {*lda < std::max<int64_t>(1, *n), 5},
                                 {*ldb < std::max<int64_t>(1, *n), 8}});
    if (*info == 0)
        on_openblas(openblas_getrs<T>, trans, n, nrhs, a, lda, ipiv, b, ldb, info, 1);
}

/// Minimizes ||A*X - B||, A = Q*R as ?GEQRF leaves it.
template <class T>
void geqrs(const int64_t *m, const int64_t *n, const int64_t *nrhs, T *a, const int64_t *lda, T *tau, T *b,
           const int64_t *ldb, T *work, const int64_t *lwork, int64_t *info)
{
    *info = refuse<T>("?GEQRS", {{*m < 0, 1},
                                 {*n < 0 || *n > *m, 2},
                                 {*nrhs < 0, 3},
                                 {*lda < std::max<int64_t>(1, *m), 5},
                                 {*ldb < std::max<int64_t>(1, *m), 8},
                                 {*lwork < 1 || (*lwork<*nrhs && * m> 0 && *n > 0), 10}});
    if (*info != 0 || *n == 0 || *nrhs == 0 || *m == 0)
        return;
    if constexpr (element<T>::is_complex)
        call(entries::unmqr<T>, 'L', 'C', m, nrhs, n, a, lda, tau, b, ldb, work, lwork, info);
    else
        call(entries::ormqr<T>, 'L', 'T', m, nrhs, n, a, lda, tau, b, ldb, work, lwork, info);
    trsm<T>('L', 'U', 'N', 'N', *n, *nrhs, T(1), a, *lda, b, *ldb);
}

/// The X of the least norm with A*X = B, A = L*Q as ?GELQF leaves it.
template <class T>
void gelqs(const int64_t *m, const int64_t *n, const int64_t *nrhs, T *a, const int64_t *lda, T *tau, T *b,
           const int64_t *ldb, T *work, const int64_t *lwork, int64_t *info)
{
    *info = refuse<T>("?GELQS", {{*m < 0, 1},
                                 {*n < 0 || *m > *n, 2},
                                 {*nrhs < 0, 3},
                                 {*lda < std::max<int64_t>(1, *m), 5},
                                 {*ldb < std::max<int64_t>(1, *n), 8},
                                 {*lwork < 1 || (*lwork<*nrhs && * m> 0 && *n > 0), 10}});
    if (*info != 0 || *n == 0 || *nrhs == 0 || *m == 0)
        return;
    trsm<T>('L', 'L', 'N', 'N', *m, *nrhs, T(1), a, *lda, b, *ldb);
    for (int64_t j = 0; j < *nrhs; ++j)
        std::fill(b + j * *ldb + *m, b + j * *ldb + *n, T(0));
    if constexpr (element<T>::is_complex)
        call(entries::unmlq<T>, 'L', 'C', n, nrhs, m, a, lda, tau, b, ldb, work, lwork, info);
    else
        call(entries::ormlq<T>, 'L', 'T', n, nrhs, m, a, lda, tau, b, ldb, work, lwork, info);
}

} // namespace xkl::core
