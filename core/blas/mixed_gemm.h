// C := alpha*op(A)*op(B) + beta*C with a real A and complex B and C. alpha*op(B) is taken apart into its
// real and its imaginary part, side by side, so that one real product serves both; its result goes together
// again into C. That is half of the work of a complex product, block by block on the stack.
#pragma once

#include "kernels.h"
#include "parallel.h"
#include "parts.h"

namespace xkl::core {

template <class R>
struct mixed_gemm {
    // 64 KB for the parts of B and 32 KB for the product in double precision; a block row of C shares its
    // parts of B.
    static constexpr int64_t block_rows = 64, block_columns = 32, block_depth = 128, rows_of_task = 512;

    using C = std::complex<R>;
    char transa, transb;
    int64_t m, n, k;
    C alpha;
    const R *a;
    int64_t lda;
    const C *b;
    int64_t ldb;
    C beta;
    C *c;
    int64_t ldc;

    C element_of_b(int64_t p, int64_t j) const
    {
        if (is(transb, 'N'))
            return b[p + j * ldb];
        return is(transb, 'C') ? std::conj(b[j + p * ldb]) : b[j + p * ldb];
    }

    void take_apart(int64_t p, int64_t depth, int64_t j, int64_t columns, R *parts) const
    {
        for (int64_t v = 0; v < columns; ++v)
            for (int64_t u = 0; u < depth; ++u) {
                const C scaled = product(alpha, element_of_b(p + u, j + v));
                parts[u + v * block_depth] = scaled.real();
                parts[u + (columns + v) * block_depth] = scaled.imag();
            }
    }

    /// C(i.., j..) += op(A)(i.., p..) * parts
    void add_product(int64_t i, int64_t rows, int64_t p, int64_t depth, const R *parts, int64_t j,
                     int64_t columns) const
    {
        R both[block_rows * 2 * block_columns];
        const R *block = is(transa, 'N') ? a + i + p * lda : a + p + i * lda;
        gemm<R>(transa, 'N', rows, 2 * columns, depth, 1, block, lda, parts, block_depth, 0, both,
                block_rows);
        const R *im = both + columns * block_rows;
        for (int64_t v = 0; v < columns; ++v)
            for (int64_t u = 0; u < rows; ++u)
                c[i + u + (j + v) * ldc] += C(both[u + v * block_rows], im[u + v * block_rows]);
    }

    void task(int64_t i, int64_t rows, int64_t j, int64_t columns) const
    {
        scale(rows, columns, beta, c + i + j * ldc, ldc);
        if (alpha == C(0))
            return;
        R parts[block_depth * 2 * block_columns];
        for (int64_t p = 0; p < k; p += block_depth) {
            const int64_t depth = std::min(block_depth, k - p);
            take_apart(p, depth, j, columns, parts);
            for (int64_t u = 0; u < rows; u += block_rows)
                add_product(i + u, std::min(block_rows, rows - u), p, depth, parts, j, columns);
        }
    }

    void run() const
    {
        if (m <= 0 || n <= 0)
            return;
        const int64_t down = (m + rows_of_task - 1) / rows_of_task;
        const int64_t across = (n + block_columns - 1) / block_columns;
        for_each(down * across, 4. * rows_of_task * block_columns * static_cast<double>(k),
                 [&](int64_t each) {
                     const int64_t i = each % down * rows_of_task, j = each / down * block_columns;
                     task(i, std::min(rows_of_task, m - i), j, std::min(block_columns, n - j));
                 });
    }
};

/// T is the type of B and C. The plain product of kernels.h, which takes values, has the same name.
template <class T>
void gemm(const char *transa, const char *transb, const int64_t *m, const int64_t *n, const int64_t *k,
          const T *alpha, const real_of<T> *a, const int64_t *lda, const T *b, const int64_t *ldb,
          const T *beta, T *c, const int64_t *ldc)
{
    mixed_gemm<real_of<T>>{*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc}.run();
}

} // namespace xkl::core
