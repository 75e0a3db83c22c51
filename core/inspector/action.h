// What a call makes of the stored elements: which of them count, which stand for two, and where they go.
//
// Storage by columns is storage by rows of the transposed matrix, so all of the code below works on rows:
// an action says what becomes of an element (i, j) met in the rows of what is stored.
#pragma once

#include "matrix.h"

namespace xkl::core::inspector {

enum class mirror : char { none, symmetric, hermitian };

/// The elements that count
struct part {
    bool below = true, above = true, diagonal = true; // stored elements there are read
    bool unit = false;                                // ones stand in the diagonal, whatever is stored
    mirror mirrored = mirror::none;
    int64_t block = 1; // order of what "diagonal" means

    bool whole() const { return below && above && diagonal && mirrored == mirror::none; }
    bool triangular() const { return mirrored == mirror::none && !(below && above); }

    template <class Index>
    [[gnu::always_inline]] bool has(Index i, Index j) const
    {
        if (block != 1) {
            i /= block;
            j /= block;
        }
        return i == j ? diagonal : i > j ? below : above;
    }
};

struct action {
    part of;
    bool transposed = false, conjugated = false;
};

inline bool is_operation(sparse_operation_t operation)
{
    return operation >= SPARSE_OPERATION_NON_TRANSPOSE && operation <= SPARSE_OPERATION_CONJUGATE_TRANSPOSE;
}

inline bool is_layout(sparse_layout_t layout)
{
    return layout == SPARSE_LAYOUT_ROW_MAJOR || layout == SPARSE_LAYOUT_COLUMN_MAJOR;
}

constexpr matrix_descr general_descr{SPARSE_MATRIX_TYPE_GENERAL, SPARSE_FILL_MODE_FULL,
                                     SPARSE_DIAG_NON_UNIT};

/// The part that a description names, or why there is none.
inline sparse_status_t part_of(const sparse_matrix &a, const matrix_descr &descr, part &of)
{
    of = part();
    const bool by_blocks = descr.type == SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR ||
                           descr.type == SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL;
    const bool diagonal =
        descr.type == SPARSE_MATRIX_TYPE_DIAGONAL || descr.type == SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL;
    if (descr.type < SPARSE_MATRIX_TYPE_GENERAL || descr.type > SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL)
        return SPARSE_STATUS_INVALID_VALUE;
    if (descr.type == SPARSE_MATRIX_TYPE_GENERAL)
        return SPARSE_STATUS_SUCCESS;
    if (descr.diag != SPARSE_DIAG_NON_UNIT && descr.diag != SPARSE_DIAG_UNIT)
        return SPARSE_STATUS_INVALID_VALUE;
    if (!diagonal && descr.mode != SPARSE_FILL_MODE_LOWER && descr.mode != SPARSE_FILL_MODE_UPPER)
        return SPARSE_STATUS_INVALID_VALUE;
    if (by_blocks && a.form != storage::bsr)
        return SPARSE_STATUS_NOT_SUPPORTED;
    of.unit = descr.diag == SPARSE_DIAG_UNIT;
    of.diagonal = !of.unit;
    of.below = !diagonal && descr.mode == SPARSE_FILL_MODE_LOWER;
    of.above = !diagonal && descr.mode == SPARSE_FILL_MODE_UPPER;
    if (descr.type == SPARSE_MATRIX_TYPE_SYMMETRIC)
        of.mirrored = mirror::symmetric;
    if (descr.type == SPARSE_MATRIX_TYPE_HERMITIAN)
        of.mirrored = mirror::hermitian;
    if (of.mirrored != mirror::none && a.total_rows() != a.total_cols())
        return SPARSE_STATUS_INVALID_VALUE;
    of.block = by_blocks ? a.block : 1;
    return SPARSE_STATUS_SUCCESS;
}

/// The action on the rows of what is stored that makes op(A).
inline sparse_status_t action_of(const sparse_matrix &a, sparse_operation_t operation,
                                 const matrix_descr &descr, action &how)
{
    if (!is_operation(operation))
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto status = part_of(a, descr, how.of))
        return status;
    how.transposed = operation != SPARSE_OPERATION_NON_TRANSPOSE;
    how.conjugated = operation == SPARSE_OPERATION_CONJUGATE_TRANSPOSE && (a.type == 'C' || a.type == 'Z');
    if (a.form == storage::csc) {
        std::swap(how.of.below, how.of.above);
        how.transposed = !how.transposed;
    }
    if (how.of.mirrored == mirror::hermitian && how.transposed)
        how.conjugated = !how.conjugated;
    if (how.of.mirrored != mirror::none)
        how.transposed = false;
    return SPARSE_STATUS_SUCCESS;
}

/// Hands what becomes of the stored element (i, j) to emit(row, column, value), in no or two calls.
template <class T, class Emit>
[[gnu::always_inline]] inline void act(const action &how, int64_t i, int64_t j, T value, const Emit &emit)
{
    if (!how.of.has(i, j))
        return;
    if (how.of.mirrored == mirror::hermitian && i == j)
        value = T(std::real(value)); // as the dense routines take it
    if (how.conjugated)
        value = conjugate(value);
    if (how.transposed)
        std::swap(i, j);
    emit(i, j, value);
    if (how.of.mirrored != mirror::none && i != j)
        emit(j, i, how.of.mirrored == mirror::hermitian ? conjugate(value) : value);
}

/// Hands each element of the stored lines first to last - 1 to use(i, j, value), i being a line (COO:
/// elements first to last - 1); storage by columns is read as the rows of the transposed matrix.
template <class T, class Use>
void each_stored(const sparse_matrix &a, int64_t first, int64_t last, const Use &use)
{
    const int64_t base = a.base, b = a.block;
    const T *const values = static_cast<const T *>(a.values);
    if (a.form == storage::coo) {
        for (int64_t k = first; k < last; ++k)
            use(a.starts[k] - base, a.minor[k] - base, values[k]);
        return;
    }
    for (int64_t i = first; i < last; ++i)
        for (int64_t k = a.starts[i] - base; k < a.ends[i] - base; ++k) {
            const int64_t j = a.minor[k] - base;
            if (a.form != storage::bsr) {
                use(i, j, values[k]);
                continue;
            }
            const bool by_rows = a.layout == SPARSE_LAYOUT_ROW_MAJOR;
            const T *const block = values + k * b * b;
            for (int64_t r = 0; r < b; ++r)
                for (int64_t c = 0; c < b; ++c)
                    use(i * b + r, j * b + c, block[by_rows ? r * b + c : c * b + r]);
        }
}

/// All of them
template <class T, class Use>
void each_stored(const sparse_matrix &a, const Use &use)
{
    each_stored<T>(a, 0, a.form == storage::coo ? a.nnz : a.lines(), use);
}

} // namespace xkl::core::inspector
