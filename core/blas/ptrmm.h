// B := alpha*op(A)*B or alpha*B*op(A), A triangular and packed. Packed columns have no leading dimension,
// so A is unpacked block by block on the stack; the order of the blocks lets B be overwritten in place.
#pragma once

#include "kernels.h"
#include "parts.h"

namespace xkl::core {

template <class T>
struct packed_product {
    static constexpr int64_t block = 64; // 32 KB of stack in double precision

    char side, uplo, transa, diag;
    int64_t m, n;
    T alpha;
    const T *ap;
    T *b;
    int64_t ldb;

    bool left() const { return is(side, 'L'); }
    bool upper() const { return is(uplo, 'U'); }
    int64_t order() const { return left() ? m : n; }

    /// Where element (i, j) of A stands, for i in the stored triangle of column j; (0, j) may lie outside
    const T *column(int64_t j) const
    {
        return ap + (upper() ? j * (j + 1) / 2 : j * (2 * order() - j - 1) / 2);
    }

    /// Rows i.. and columns j.. of the stored A. On the diagonal only the triangle: the rest isn't read.
    void unpack(int64_t i, int64_t rows, int64_t j, int64_t columns, T *to) const
    {
        for (int64_t v = 0; v < columns; ++v) {
            const int64_t first = i == j && !upper() ? v : 0, last = i == j && upper() ? v + 1 : rows;
            std::copy(column(j + v) + i + first, column(j + v) + i + last, to + first + v * block);
        }
    }

    T *part_of_b(int64_t i) const { return left() ? b + i : b + i * ldb; }

    /// Part i of B := its product with the diagonal block
    void multiply_diagonal(int64_t i, int64_t count) const
    {
        T a[block * block];
        unpack(i, count, i, count, a);
        trmm(side, uplo, transa, diag, left() ? count : m, left() ? n : count, alpha, a, block,
             part_of_b(i), ldb);
    }

    /// Part `to` of B += the product of part `from` with the block of A between them
    void add_product(int64_t to, int64_t count_to, int64_t from, int64_t count_from) const
    {
        T a[block * block];
        const bool row_is_target = is(transa, 'N') == left();
        const int64_t i = row_is_target ? to : from, rows = row_is_target ? count_to : count_from;
        const int64_t j = row_is_target ? from : to, columns = row_is_target ? count_from : count_to;
        unpack(i, rows, j, columns, a);
        if (left())
            gemm(transa, 'N', count_to, n, count_from, alpha, a, block, part_of_b(from), ldb, T(1),
                 part_of_b(to), ldb);
        else
            gemm('N', transa, m, count_to, count_from, alpha, part_of_b(from), ldb, a, block, T(1),
                 part_of_b(to), ldb);
    }

    void run() const
    {
        if (m <= 0 || n <= 0)
            return;
        if (alpha == T(0))
            return scale(m, n, T(0), b, ldb);
        // Each part of B needs the old values of those behind it, in the direction that uplo, transa and
        // side give.
        const bool forward = (upper() == is(transa, 'N')) == left();
        const int64_t parts = (order() + block - 1) / block;
        const auto count = [&](int64_t p) { return std::min(block, order() - p * block); };
        for (int64_t step = 0; step < parts; ++step) {
            const int64_t to = forward ? step : parts - 1 - step;
            multiply_diagonal(to * block, count(to));
            for (int64_t from = forward ? to + 1 : 0; from < (forward ? parts : to); ++from)
                add_product(to * block, count(to), from * block, count(from));
        }
    }
};

template <class T>
void ptrmm(const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,
           const int64_t *n, const T *alpha, const T *ap, T *b, const int64_t *ldb)
{
    packed_product<T>{*side, *uplo, *transa, *diag, *m, *n, *alpha, ap, b, *ldb}.run();
}

} // namespace xkl::core
