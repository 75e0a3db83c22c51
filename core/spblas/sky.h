// Products and solves with triangles in skyline storage. A general matrix has no place in it, and is
// reported.
#pragma once

#include "blas/report.h"
#include "spblas/solves.h"

namespace xkl::core {
namespace spblas {

/// Rows of a lower or columns of an upper triangle, each from its first nonzero element to the diagonal
template <class T>
struct skyline {
    static constexpr bool own_lines = true;
    const T *values;
    const int64_t *starts;
    int64_t count;

    int64_t items() const { return count; }
    double stored() const { return count > 0 ? static_cast<double>(starts[count] - starts[0]) : 0; }
    int64_t line(int64_t item) const { return item; }
    int64_t cut(int64_t part, int64_t parts) const { return start_of(count, part, parts); }

    template <class F>
    [[gnu::always_inline]] void visit(int64_t item, const F &f) const
    {
        const int64_t length = std::min(starts[item + 1] - starts[item], item + 1);
        const T *const diagonal = values + (starts[item + 1] - starts[0]) - 1;
        for (int64_t left = length - 1; left >= 0; --left)
            f(item - left, diagonal[-left]);
    }
};

template <class T>
matrix<skyline<T>> skyline_of(int64_t m, int64_t k, const description &is, const T *val,
                              const int64_t *pntr)
{
    const int64_t lines = is.kind == 'D' ? std::min(m, k) : is.upper ? k : m;
    return {{val, pntr, lines}, m, k, !is.upper};
}

template <class T>
int64_t refuse(const char *routine, int64_t position)
{
    report(routine, letter_of<T>, position);
    return 0;
}

} // namespace spblas

template <class T>
int64_t xkl_skymv(const char *transa, const int64_t *m, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *pntr, const T *x, const T *beta, T *y)
{
    const spblas::description is(matdescra);
    if (is.kind == 'G')
        return spblas::refuse<T>("XKL_?SKYMV", 5);
    const auto a = spblas::skyline_of(*m, *k, is, val, pntr);
    return spblas::multiply(a, *transa, is, *alpha, {x}, *beta, {y});
}

template <class T>
int64_t xkl_skymm(const char *transa, const int64_t *m, const int64_t *n, const int64_t *k, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *pntr, const T *b, const int64_t *ldb,
                  const T *beta, T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    if (is.kind == 'G')
        return spblas::refuse<T>("XKL_?SKYMM", 6);
    const auto a = spblas::skyline_of(*m, *k, is, val, pntr);
    return spblas::multiply(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is), *beta,
                            spblas::operand(c, *n, *ldc, is));
}

template <class T>
int64_t xkl_skysv(const char *transa, const int64_t *m, const T *alpha, const char *matdescra, const T *val,
                  const int64_t *pntr, const T *x, T *y)
{
    const spblas::description is(matdescra);
    const auto a = spblas::skyline_of(*m, *m, is, val, pntr);
    return spblas::solve(a, *transa, is, *alpha, {x}, {y});
}

template <class T>
int64_t xkl_skysm(const char *transa, const int64_t *m, const int64_t *n, const T *alpha,
                  const char *matdescra, const T *val, const int64_t *pntr, const T *b, const int64_t *ldb,
                  T *c, const int64_t *ldc)
{
    const spblas::description is(matdescra);
    const auto a = spblas::skyline_of(*m, *m, is, val, pntr);
    return spblas::solve(a, *transa, is, *alpha, spblas::operand(b, *n, *ldb, is),
                         spblas::operand(c, *n, *ldc, is));
}

} // namespace xkl::core
