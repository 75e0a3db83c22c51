// One triangle of C := alpha*op(A)*op(B) + beta*C. C is cut in two halves again and again: the square
// between two halves is a plain product; what is left on the diagonal is multiplied whole, aside, and its
// triangle added.
#pragma once

#include "kernels.h"
#include "parts.h"

namespace xkl::core {

template <class T>
struct triangle_product {
    static constexpr int64_t leaf = 48; // 36 KB of stack in double precision complex

    char uplo, transa, transb;
    int64_t k;
    T alpha;
    const T *a;
    int64_t lda;
    const T *b;
    int64_t ldb;
    T beta;
    T *c;
    int64_t ldc;

    const T *row_of_a(int64_t i) const { return is(transa, 'N') ? a + i : a + i * lda; }
    const T *column_of_b(int64_t j) const { return is(transb, 'N') ? b + j * ldb : b + j; }

    /// Rows i.. and columns j.. of C, rows by columns of them
    void square(int64_t i, int64_t j, int64_t rows, int64_t columns) const
    {
        gemm(transa, transb, rows, columns, k, alpha, row_of_a(i), lda, column_of_b(j), ldb, beta,
             c + i + j * ldc, ldc);
    }

    void on_diagonal(int64_t first, int64_t n) const
    {
        T whole[leaf * leaf];
        gemm(transa, transb, n, n, k, alpha, row_of_a(first), lda, column_of_b(first), ldb, T(0), whole,
             leaf);
        for (int64_t j = 0; j < n; ++j) {
            const int64_t top = is(uplo, 'U') ? 0 : j, count = is(uplo, 'U') ? j + 1 : n - j;
            T *column = c + first + top + (first + j) * ldc;
            scale(count, beta, column);
            add(count, 1, whole + top + j * leaf, leaf, column, ldc);
        }
    }

    void triangle(int64_t first, int64_t n) const
    {
        if (n <= leaf)
            return on_diagonal(first, n);
        const int64_t half = (n / 2 + leaf - 1) / leaf * leaf, rest = n - half;
        triangle(first, half);
        if (is(uplo, 'U'))
            square(first, first + half, half, rest);
        else
            square(first + half, first, rest, half);
        triangle(first + half, rest);
    }
};

template <class T>
void gemmt(const char *uplo, const char *transa, const char *transb, const int64_t *n, const int64_t *k,
           const T *alpha, const T *a, const int64_t *lda, const T *b, const int64_t *ldb, const T *beta,
           T *c, const int64_t *ldc)
{
    const triangle_product<T> product = {*uplo, *transa, *transb, *k,    *alpha, a,
                                         *lda,  b,       *ldb,    *beta, c,      *ldc};
    if (*n > 0)
        product.triangle(0, *n);
}

} // namespace xkl::core
