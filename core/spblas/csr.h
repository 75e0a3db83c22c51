// Products and solves with matrices in compressed rows.
#pragma once

#include "spblas/solves.h"

namespace xkl::core {
namespace spblas {

template <class T>
matrix<compressed<T>> rows_of(int64_t m, int64_t k, const description &is, const T *val,
                              const int64_t *indx, const int64_t *pntrb, const int64_t *pntre)
{
    return {{val, indx, pntrb, pntre, m, is.base()}, m, k, true};
}

} // namespace spblas

template <class T>
int64_t xkl_csrmv(const char *transa, const int64_t *m, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::rows_of(*m, *k, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_csrmm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *b, const int64_t *ldb, const T *beta, T *c,
                  const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::rows_of(*m, *k, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_csrsv(const char *transa, const int64_t *m, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *indx, const int64_t *pntrb, const int64_t *pntre, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::rows_of(*m, *m, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_csrsm(const char *transa, const int64_t *m, const int64_t *n, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *b, const int64_t *ldb, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::rows_of(*m, *m, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                         spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_csrgemv(const char *transa, const int64_t *m, const T *a, const int64_t *ia, const int64_t *ja,
                    const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_one);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_csrsymv(const char *uplo, const int64_t *m, const T *a, const int64_t *ia, const int64_t *ja,
                    const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_one);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_csrtrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m, const T *a,
                    const int64_t *ia, const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_one);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::solve(matrix, *transa, is, T(1), {x}, {y});
}

template <class T>
int64_t xkl_cspblas_csrgemv(const char *transa, const int64_t *m, const T *a, const int64_t *ia,
                            const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_zero);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_csrsymv(const char *uplo, const int64_t *m, const T *a, const int64_t *ia,
                            const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_zero);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_csrtrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m,
                            const T *a, const int64_t *ia, const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_zero);
    const auto matrix = spblas::rows_of(*m, *m, is, a, ja, ia, ia + 1);
    return spblas::solve(matrix, *transa, is, T(1), {x}, {y});
}

} // namespace xkl::core
