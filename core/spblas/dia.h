// Products and solves with matrices stored by diagonals.
#pragma once

#include "spblas/solves.h"

namespace xkl::core {
namespace spblas {

/// Rows, each with an element of every diagonal that crosses it; row i of the matrix is row i of the array.
template <class T>
struct diagonals {
    static constexpr bool own_lines = true;
    const T *values;
    int64_t distance;
    const int64_t *offsets;
    int64_t count, rows, columns;

    int64_t items() const { return rows; }
    double stored() const { return static_cast<double>(rows) * static_cast<double>(count); }
    int64_t line(int64_t item) const { return item; }
    int64_t cut(int64_t part, int64_t parts) const { return start_of(rows, part, parts); }

    template <class F>
    [[gnu::always_inline]] void visit(int64_t item, const F &f) const
    {
        for (int64_t d = 0; d < count; ++d) {
            const int64_t place = item + offsets[d];
            if (place >= 0 && place < columns)
                f(place, values[item + d * distance]);
        }
    }
};

template <class T>
matrix<diagonals<T>> diagonals_of(int64_t m, int64_t k, const description &, const T *val, int64_t lval,
                                  const int64_t *idiag, int64_t ndiag)
{
    return {{val, lval, idiag, ndiag, m, k}, m, k, true};
}

} // namespace spblas

template <class T>
int64_t xkl_diamv(const char *transa, const int64_t *m, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *lval, const int64_t *idiag,
                  const int64_t *ndiag, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::diagonals_of(*m, *k, is, val, *lval, idiag, *ndiag);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_diamm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *lval, const int64_t *idiag,
                  const int64_t *ndiag, const T *b, const int64_t *ldb, const T *beta, T *c,
                  const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::diagonals_of(*m, *k, is, val, *lval, idiag, *ndiag);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_diasv(const char *transa, const int64_t *m, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *lval, const int64_t *idiag, const int64_t *ndiag, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::diagonals_of(*m, *m, is, val, *lval, idiag, *ndiag);
    return spblas::solve(a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_diasm(const char *transa, const int64_t *m, const int64_t *n, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *lval, const int64_t *idiag,
                  const int64_t *ndiag, const T *b, const int64_t *ldb, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::diagonals_of(*m, *m, is, val, *lval, idiag, *ndiag);
    return spblas::solve(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                         spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_diagemv(const char *transa, const int64_t *m, const T *val, const int64_t *lval,
                    const int64_t *idiag, const int64_t *ndiag, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_one);
    const auto matrix = spblas::diagonals_of(*m, *m, is, val, *lval, idiag, *ndiag);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_diasymv(const char *uplo, const int64_t *m, const T *val, const int64_t *lval,
                    const int64_t *idiag, const int64_t *ndiag, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_one);
    const auto matrix = spblas::diagonals_of(*m, *m, is, val, *lval, idiag, *ndiag);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_diatrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m, const T *val,
                    const int64_t *lval, const int64_t *idiag, const int64_t *ndiag, const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_one);
    const auto matrix = spblas::diagonals_of(*m, *m, is, val, *lval, idiag, *ndiag);
    return spblas::solve(matrix, *transa, is, T(1), {x}, {y});
}

} // namespace xkl::core
