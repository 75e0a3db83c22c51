// C := alpha*op(A) + beta*op(B). An operand whose factor is zero is not read; C may be an operand that is
// not turned, in the same place.
#pragma once

#include "matcopy/copies.h"

namespace xkl::core {

template <class T>
void xkl_omatadd(char ordering, char transa, char transb, size_t rows, size_t cols,
                 scalar_argument<T> alpha, const T *a, size_t lda, scalar_argument<T> beta, const T *b,
                 size_t ldb, T *c, size_t ldc)
{
    const operation op_a(transa), op_b(transb);
    stored_lines shape(ordering, rows, cols);
    const auto copy_only = [&](operation op, T by, const T *from, size_t ld) {
        if (op.turned)
            shape.turn();
        copy_many<T>(op, shape, by, {from, ld}, {c, ldc});
    };
    if (value_of(beta) == T(0))
        return copy_only(op_a, value_of(alpha), a, lda);
    if (value_of(alpha) == T(0))
        return copy_only(op_b, value_of(beta), b, ldb);
    if (shape.empty())
        return;
    const factor<T> by_a(value_of(alpha), element<T>::is_complex && op_a.conjugated),
        by_b(value_of(beta), element<T>::is_complex && op_b.conjugated);
    const block<const T> from_a = {a, lda}, from_b = {b, ldb};
    const block<T> to = {c, ldc};
    const auto part = [](block<const T> whole, bool turned, size_t i, size_t j) {
        return turned ? whole.at(j, i) : whole.at(i, j);
    };
    const auto sum = copy_kernels_in_force().of<T>().sum[op_a.turned][op_b.turned];
    const auto add = [&](size_t i, size_t last_i, size_t j, size_t last_j) {
        sum(part(from_a, op_a.turned, i, j), by_a, part(from_b, op_b.turned, i, j), by_b, to.at(i, j),
            last_i - i, last_j - j);
    };
    constexpr size_t side = 1024 / sizeof(T);
    if (op_a.turned || op_b.turned)
        for_blocks({shape.lines, side}, {shape.length, side}, shape.elements() * sizeof(T), add);
    else
        for_line_blocks<T>(shape.lines, shape.length, add);
}

} // namespace xkl::core
