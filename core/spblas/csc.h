// Products and solves with matrices in compressed columns.
#pragma once

#include "spblas/solves.h"

namespace xkl::core {
namespace spblas {

template <class T>
matrix<compressed<T>> columns_of(int64_t m, int64_t k, const description &is, const T *val,
                                 const int64_t *indx, const int64_t *pntrb, const int64_t *pntre)
{
    return {{val, indx, pntrb, pntre, k, is.base()}, m, k, false};
}

} // namespace spblas

template <class T>
int64_t xkl_cscmv(const char *transa, const int64_t *m, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::columns_of(*m, *k, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_cscmm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *b, const int64_t *ldb, const T *beta, T *c,
                  const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::columns_of(*m, *k, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_cscsv(const char *transa, const int64_t *m, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *indx, const int64_t *pntrb, const int64_t *pntre, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::columns_of(*m, *m, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_cscsm(const char *transa, const int64_t *m, const int64_t *n, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *b, const int64_t *ldb, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::columns_of(*m, *m, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                         spblas::operand(c, *n, *ldc, is));
}

} // namespace xkl::core
