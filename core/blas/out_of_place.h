// C := alpha*op(A)*B + beta*C and C := alpha*inv(op(A))*B + beta*C, A triangular on either side, B
// untouched. Without beta both are the routine in place on a copy of B in C (B may then be C itself). With
// beta the product goes block by block: C can't hold anything but the sum, and the stack holds one block.
#pragma once

#include "kernels.h"
#include "parts.h"
#include "workspace.h"

namespace xkl::core {

template <class T>
struct out_of_place {
    static constexpr int64_t leaf = 64, leaf_width = 32; // 32 KB of stack in double precision complex

    char side, uplo, transa, diag;
    int64_t m, n;
    T alpha;
    const T *a;
    int64_t lda;
    const T *b;
    int64_t ldb;
    T beta;
    T *c;
    int64_t ldc;

    bool left() const { return is(side, 'L'); }
    int64_t order() const { return left() ? m : n; }
    bool nothing_to_do() const { return m <= 0 || n <= 0; }

    void copy_to_result() const
    {
        if (b != c || ldb != ldc)
            copy(m, n, b, ldb, c, ldc);
    }

    /// Rows (side L) or columns (side R) i.. of C += those of the product with a diagonal block of A
    void add_diagonal(int64_t i, int64_t count) const
    {
        T block[leaf * leaf_width];
        const T *triangle = a + i + i * lda;
        for (int64_t j = 0, across = left() ? n : m; j < across; j += leaf_width) {
            const int64_t width = std::min(leaf_width, across - j);
            const int64_t rows = left() ? count : width, columns = left() ? width : count;
            const int64_t row = left() ? i : j, column = left() ? j : i;
            copy(rows, columns, b + row + column * ldb, ldb, block, rows);
            trmm(side, uplo, transa, diag, rows, columns, alpha, triangle, lda, block, rows);
            add(rows, columns, block, rows, c + row + column * ldc, ldc);
        }
    }

    /// C += the product with a square block of A, at row i and column j, rows by columns
    void add_square(int64_t i, int64_t j, int64_t rows, int64_t columns) const
    {
        const T *block = a + i + j * lda;
        const bool plain = is(transa, 'N');
        const int64_t to = plain == left() ? i : j, from = plain == left() ? j : i;
        const int64_t count_to = plain == left() ? rows : columns,
                      count_from = plain == left() ? columns : rows;
        if (left())
            gemm(transa, 'N', count_to, n, count_from, alpha, block, lda, b + from, ldb, T(1), c + to, ldc);
        else
            gemm('N', transa, m, count_to, count_from, alpha, b + from * ldb, ldb, block, lda, T(1),
                 c + to * ldc, ldc);
    }

    void add_triangle(int64_t first, int64_t count) const
    {
        if (count <= leaf)
            return add_diagonal(first, count);
        const int64_t half = (count / 2 + leaf - 1) / leaf * leaf, rest = count - half;
        add_triangle(first, half);
        add_triangle(first + half, rest);
        if (is(uplo, 'U'))
            add_square(first, first + half, half, rest);
        else
            add_square(first + half, first, rest, half);
    }

    void multiply() const
    {
        if (nothing_to_do())
            return;
        if (alpha == T(0))
            return scale(m, n, beta, c, ldc);
        if (beta == T(0)) {
            copy_to_result();
            return trmm(side, uplo, transa, diag, m, n, alpha, a, lda, c, ldc);
        }
        scale(m, n, beta, c, ldc);
        add_triangle(0, order());
    }

    /// The right-hand sides that a solution aside holds at once: columns (side L) or rows (side R) of B
    void solve_panels(T *solution, int64_t width) const
    {
        for (int64_t j = 0, across = left() ? n : m; j < across; j += width) {
            const int64_t count = std::min(width, across - j);
            const int64_t rows = left() ? m : count, columns = left() ? count : n;
            const T *from = left() ? b + j * ldb : b + j;
            T *to = left() ? c + j * ldc : c + j;
            copy(rows, columns, from, ldb, solution, rows);
            trsm(side, uplo, transa, diag, rows, columns, alpha, a, lda, solution, rows);
            scale(rows, columns, beta, to, ldc);
            add(rows, columns, solution, rows, to, ldc);
        }
    }

    void solve() const
    {
        if (nothing_to_do())
            return;
        if (alpha == T(0))
            return scale(m, n, beta, c, ldc);
        if (beta == T(0)) {
            copy_to_result();
            return trsm(side, uplo, transa, diag, m, n, alpha, a, lda, c, ldc);
        }
        const int64_t width = std::min<int64_t>(left() ? n : m, 64);
        workspace<T> solution(order(), width, "?TRSM_OOP ");
        if (solution.width() > 0)
            solve_panels(solution.data(), solution.width());
    }
};

template <class T>
void trmm_oop(const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,
              const int64_t *n, const T *alpha, const T *a, const int64_t *lda, const T *b,
              const int64_t *ldb, const T *beta, T *c, const int64_t *ldc)
{
    out_of_place<T>{*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb, *beta, c, *ldc}
        .multiply();
}

template <class T>
void trsm_oop(const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,
              const int64_t *n, const T *alpha, const T *a, const int64_t *lda, const T *b,
              const int64_t *ldb, const T *beta, T *c, const int64_t *ldc)
{
    out_of_place<T>{*side, *uplo, *transa, *diag, *m, *n, *alpha, a, *lda, b, *ldb, *beta, c, *ldc}.solve();
}

} // namespace xkl::core
