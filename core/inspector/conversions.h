// Other storages of op(A): convert_coo, convert_csr, convert_csc, convert_bsr. The copies have arrays of
// their own, and indices from where A's are counted.
#pragma once

#include "arguments.h"

namespace xkl::core {

namespace inspector {

/// Makes a handle own what was written out; the arrays count from `base`.
template <class T>
sparse_status_t adopt(written_rows<T> &rows, storage form, sparse_index_base_t base, sparse_matrix **made)
{
    const int64_t places = rows.places();
    const bool coo = form == storage::coo;
    array<int64_t> row;
    if (coo && !row.make(places))
        return SPARSE_STATUS_ALLOC_FAILED;
    auto *const a = make<sparse_matrix>();
    if (!a)
        return SPARSE_STATUS_ALLOC_FAILED;
    for (int64_t i = 0; coo && i < rows.rows; ++i)
        std::fill(row.data() + rows.starts[i], row.data() + rows.starts[i + 1], i);
    if (coo)
        rows.starts = std::move(row);
    const int64_t length = coo ? places : rows.rows + 1;
    for (int64_t i = 0; base != 0 && i < length; ++i)
        rows.starts[i] += base;
    for (int64_t k = 0; base != 0 && k < places; ++k)
        rows.columns[k] += base;
    a->type = letter_of<T>;
    a->form = form;
    a->base = base;
    a->rows = form == storage::csc ? rows.cols : rows.rows;
    a->cols = form == storage::csc ? rows.rows : rows.cols;
    a->nnz = coo ? places : 0;
    a->starts = rows.starts.release();
    a->ends = coo ? nullptr : a->starts + 1;
    a->minor = rows.columns.release();
    a->values = rows.values.release();
    a->owns = true;
    *made = a;
    return SPARSE_STATUS_SUCCESS;
}

/// op(A) by rows, or, turned, by columns
template <class T>
sparse_status_t written(const sparse_matrix &a, sparse_operation_t operation, bool turned,
                        written_rows<T> &rows)
{
    action how;
    if (const auto bad = action_of(a, operation, general_descr, how))
        return bad;
    how.transposed = how.transposed != turned;
    return write_out(a, how, rows);
}

/// Blocks that hold an element, by rows of blocks. Where the order does not divide a size, the last blocks
/// reach over the matrix with zeros.
template <class T>
sparse_status_t to_blocks(const sparse_matrix &a, int64_t b, sparse_layout_t layout,
                          sparse_operation_t operation, sparse_matrix **made)
{
    written_rows<T> rows, blocks;
    if (const auto bad = written(a, operation, false, rows))
        return bad;
    blocks.rows = rows.rows / b + (rows.rows % b != 0);
    blocks.cols = rows.cols / b + (rows.cols % b != 0);
    array<int64_t> mark; // the place of a column of blocks in the row at hand
    if (!mark.make(blocks.cols, -1) || !blocks.starts.make(blocks.rows + 1, 0))
        return SPARSE_STATUS_ALLOC_FAILED;
    const auto each_block_row = [&](const auto &use) {
        int64_t count = 0;
        for (int64_t i = 0; i < blocks.rows; ++i) {
            blocks.starts[i] = count;
            const int64_t last = rows.starts[i + 1 == blocks.rows ? rows.rows : (i + 1) * b];
            for (int64_t k = rows.starts[i * b]; k < last; ++k) {
                int64_t &place = mark[rows.columns[k] / b];
                if (place < blocks.starts[i])
                    place = count++;
                use(place, k);
            }
        }
        blocks.starts[blocks.rows] = count;
    };
    each_block_row([](int64_t, int64_t) {});
    int64_t size;
    if (__builtin_mul_overflow(b, b, &size) || __builtin_mul_overflow(size, blocks.places(), &size) ||
        !blocks.columns.make(blocks.places()) || !blocks.values.make(size, T(0)))
        return SPARSE_STATUS_ALLOC_FAILED;
    std::fill_n(mark.data(), blocks.cols, -1);
    int64_t row = 0;
    each_block_row([&](int64_t place, int64_t k) {
        while (k >= rows.starts[row + 1])
            ++row;
        const int64_t r = row % b, c = rows.columns[k] % b;
        blocks.columns[place] = rows.columns[k] / b;
        blocks.values[place * b * b + (layout == SPARSE_LAYOUT_ROW_MAJOR ? r * b + c : c * b + r)] +=
            rows.values[k];
    });
    const auto status = adopt(blocks, storage::bsr, a.base, made);
    if (status == SPARSE_STATUS_SUCCESS) {
        (*made)->block = b;
        (*made)->layout = layout;
    }
    return status;
}

inline sparse_status_t convertible(const sparse_matrix *a, sparse_operation_t operation,
                                   sparse_matrix *const *made)
{
    if (!made)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return first_failure({usable(a), valid(is_operation(operation))});
}

inline sparse_status_t convert_lines(const sparse_matrix *a, storage form, sparse_operation_t operation,
                                     sparse_matrix **made)
{
    if (const auto bad = convertible(a, operation, made))
        return bad;
    return by_type(*a, [&]<class T>() {
        written_rows<T> rows;
        const auto bad = written(*a, operation, form == storage::csc, rows);
        return bad ? bad : adopt(rows, form, a->base, made);
    });
}

} // namespace inspector

inline sparse_status_t xkl_sparse_convert_csr(const sparse_matrix *a, sparse_operation_t operation,
                                              sparse_matrix **made)
{
    return inspector::convert_lines(a, inspector::storage::csr, operation, made);
}

inline sparse_status_t xkl_sparse_convert_csc(const sparse_matrix *a, sparse_operation_t operation,
                                              sparse_matrix **made)
{
    return inspector::convert_lines(a, inspector::storage::csc, operation, made);
}

inline sparse_status_t xkl_sparse_convert_coo(const sparse_matrix *a, sparse_operation_t operation,
                                              sparse_matrix **made)
{
    return inspector::convert_lines(a, inspector::storage::coo, operation, made);
}

inline sparse_status_t xkl_sparse_convert_bsr(const sparse_matrix *a, int64_t block, sparse_layout_t layout,
                                              sparse_operation_t operation, sparse_matrix **made)
{
    using namespace inspector;
    if (const auto bad =
            first_failure({convertible(a, operation, made), valid(block >= 1 && is_layout(layout))}))
        return bad;
    return by_type(*a, [&]<class T>() { return to_blocks<T>(*a, block, layout, operation, made); });
}

} // namespace xkl::core
