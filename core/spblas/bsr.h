// Products and solves with matrices of dense blocks in compressed rows.
#pragma once

#include "spblas/solves.h"

namespace xkl::core {
namespace spblas {

/// Rows of elements. Blocks are stored by columns where indices start at 1, by rows where they start at 0.
template <class T>
struct blocks {
    static constexpr bool own_lines = true;
    const T *values;
    const int64_t *across, *begins, *ends;
    int64_t block_rows, order, base;

    int64_t items() const { return block_rows * order; }
    double stored() const
    {
        return items() == 0 ? 0
                            : static_cast<double>(ends[block_rows - 1] - begins[0]) *
                                  static_cast<double>(order * order);
    }
    int64_t line(int64_t item) const { return item; }
    int64_t cut(int64_t part, int64_t parts) const { return start_of(items(), part, parts); }

    template <class F>
    [[gnu::always_inline]] void visit(int64_t item, const F &f) const
    {
        const int64_t block_row = item / order, row = item % order, first = begins[0];
        const int64_t down = base == 1 ? 1 : order, right = base == 1 ? order : 1;
        for (int64_t p = begins[block_row] - first; p < ends[block_row] - first; ++p) {
            const T *const elements = values + p * order * order + row * down;
            const int64_t start = (across[p] - base) * order;
            for (int64_t j = 0; j < order; ++j)
                f(start + j, elements[j * right]);
        }
    }
};

template <class T>
matrix<blocks<T>> blocks_of(int64_t m, int64_t k, int64_t lb, const description &is, const T *val,
                            const int64_t *indx, const int64_t *pntrb, const int64_t *pntre)
{
    return {{val, indx, pntrb, pntre, m, lb, is.base()}, m * lb, k * lb, true};
}

} // namespace spblas

template <class T>
int64_t xkl_bsrmv(const char *transa, const int64_t *m, const int64_t *k, const int64_t *lb, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::blocks_of(*m, *k, *lb, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_bsrmm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k,
                  const int64_t *lb, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *indx, const int64_t *pntrb, const int64_t *pntre, const T *b,
                  const int64_t *ldb, const T *beta, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::blocks_of(*m, *k, *lb, is, val, indx, pntrb, pntre);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_bsrsv(const char *transa, const int64_t *m, const int64_t *lb, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::blocks_of(*m, *m, *lb, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_bsrsm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *lb, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *indx, const int64_t *pntrb,
                  const int64_t *pntre, const T *b, const int64_t *ldb, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::blocks_of(*m, *m, *lb, is, val, indx, pntrb, pntre);
    return spblas::solve(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                         spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_bsrgemv(const char *transa, const int64_t *m, const int64_t *lb, const T *a, const int64_t *ia,
                    const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_one);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_bsrsymv(const char *uplo, const int64_t *m, const int64_t *lb, const T *a, const int64_t *ia,
                    const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_one);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_bsrtrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m,
                    const int64_t *lb, const T *a, const int64_t *ia, const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_one);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::solve(matrix, *transa, is, T(1), {x}, {y});
}

template <class T>
int64_t xkl_cspblas_bsrgemv(const char *transa, const int64_t *m, const int64_t *lb, const T *a,
                            const int64_t *ia, const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_zero);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_bsrsymv(const char *uplo, const int64_t *m, const int64_t *lb, const T *a,
                            const int64_t *ia, const int64_t *ja, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_zero);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_bsrtrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m,
                            const int64_t *lb, const T *a, const int64_t *ia, const int64_t *ja, const T *x,
                            T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_zero);
    const auto matrix = spblas::blocks_of(*m, *m, *lb, is, a, ja, ia, ia + 1);
    return spblas::solve(matrix, *transa, is, T(1), {x}, {y});
}

} // namespace xkl::core
