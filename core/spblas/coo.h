// Products and solves with matrices given by their elements and their places. Elements of one place add up.
#pragma once

#include "blas/report.h"
#include "spblas/solves.h"
#include "spblas/sorting.h"

namespace xkl::core {
namespace spblas {

/// Single elements in any order
template <class T>
struct elements {
    static constexpr bool own_lines = false;
    const T *values;
    const int64_t *lines, *across;
    int64_t count, base;

    int64_t items() const { return count; }
    double stored() const { return static_cast<double>(count); }
    int64_t line(int64_t item) const { return lines[item] - base; }
    int64_t cut(int64_t part, int64_t parts) const { return start_of(count, part, parts); }

    template <class F>
    [[gnu::always_inline]] void visit(int64_t item, const F &f) const
    {
        f(across[item] - base, values[item]);
    }
};

template <class T>
matrix<elements<T>> elements_of(int64_t m, int64_t k, const description &is, const T *val,
                                const int64_t *rowind, const int64_t *colind, int64_t nnz)
{
    return {{val, rowind, colind, nnz, is.base()}, m, k, true};
}

/// Unknowns need the elements of a row together: they are sorted first.
template <class T>
int64_t solve_sorted(const char *routine, const matrix<elements<T>> &a, char trans, const description &of,
                     T alpha, const panel<const T> &x, const panel<T> &y)
{
    const elements<T> &all = a.storage;
    const buffer<int64_t> starts(a.rows + 1), across(all.count);
    const buffer<T> values(all.count);
    if (!starts.enough() || !across.enough() || !values.enough()) {
        report(routine, letter_of<T>, no_memory);
        return 0;
    }
    sort_into_lines(
        a.rows, all.count, starts.data(), [&](int64_t i) { return all.line(i); },
        [&](int64_t i, int64_t place) {
            across[place] = all.across[i] - all.base;
            values[place] = all.values[i];
        });
    const int64_t *const begins = starts.data();
    const matrix<compressed<T>> rows = {
        {values.data(), across.data(), begins, begins + 1, a.rows, 0}, a.rows, a.columns, true};
    return solve(rows, trans, of, alpha, x, y);
}

} // namespace spblas

template <class T>
int64_t xkl_coomv(const char *transa, const int64_t *m, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *rowind, const int64_t *colind,
                  const int64_t *nnz, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::elements_of(*m, *k, is, val, rowind, colind, *nnz);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_coomm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *rowind, const int64_t *colind,
                  const int64_t *nnz, const T *b, const int64_t *ldb, const T *beta, T *c,
                  const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::elements_of(*m, *k, is, val, rowind, colind, *nnz);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_coosv(const char *transa, const int64_t *m, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *rowind, const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::solve_sorted("XKL_?COOSV", a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_coosm(const char *transa, const int64_t *m, const int64_t *n, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *rowind, const int64_t *colind,
                  const int64_t *nnz, const T *b, const int64_t *ldb, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::solve_sorted("XKL_?COOSM", a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                                spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_coogemv(const char *transa, const int64_t *m, const T *val, const int64_t *rowind,
                    const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_one);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_coosymv(const char *uplo, const int64_t *m, const T *val, const int64_t *rowind,
                    const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_one);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cootrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m, const T *val,
                    const int64_t *rowind, const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_one);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::solve_sorted("XKL_?COOTRSV", matrix, *transa, is, T(1), {x}, {y});
}

template <class T>
int64_t xkl_cspblas_coogemv(const char *transa, const int64_t *m, const T *val, const int64_t *rowind,
                            const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is = spblas::general(spblas::from_zero);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::multiply(matrix, *transa, is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_coosymv(const char *uplo, const int64_t *m, const T *val, const int64_t *rowind,
                            const int64_t *colind, const int64_t *nnz, const T *x, T *y)
{
    const spblas::description is = spblas::symmetric(*uplo, spblas::from_zero);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::multiply(matrix, 'N', is, T(1), {x}, T(0), {y});
}

template <class T>
int64_t xkl_cspblas_cootrsv(const char *uplo, const char *transa, const char *diag, const int64_t *m,
                            const T *val, const int64_t *rowind, const int64_t *colind, const int64_t *nnz,
                            const T *x, T *y)
{
    const spblas::description is = spblas::triangular(*uplo, *diag, spblas::from_zero);
    const auto matrix = spblas::elements_of(*m, *m, is, val, rowind, colind, *nnz);
    return spblas::solve_sorted("XKL_CSPBLAS_?COOTRSV", matrix, *transa, is, T(1), {x}, {y});
}

} // namespace xkl::core
