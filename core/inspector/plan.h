// What optimize prepares: op(A), as a description says, written out by rows in order, with 32-bit columns
// where they suffice. Products, sweeps and solves that are asked for this operation and description read it
// instead of A, and never scatter.
#pragma once

#include "arguments.h"
#include "kernels.h"

namespace xkl::core::inspector {

inline bool alike(const matrix_descr &a, const matrix_descr &b)
{
    return a.type == b.type &&
           (a.type == SPARSE_MATRIX_TYPE_GENERAL ||
            (a.diag == b.diag && (a.mode == b.mode || a.type == SPARSE_MATRIX_TYPE_DIAGONAL ||
                                  a.type == SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL)));
}

template <class T>
struct plan final : prepared {
    sparse_operation_t operation;
    matrix_descr descr;
    written_rows<T> wide;
    array<int32_t> narrow; // in the place of wide.columns

    // Rows in groups that depend on earlier groups only, for solves: group g is order[groups[g]] to
    // order[groups[g + 1] - 1]. Empty when there is too little in a group to share.
    array<int64_t> order, groups;
    int64_t group_count = 0;

    // The same in slices, for products with a vector; real types. Empty where rows are too unequal. There
    // are no rows besides where nothing but such products was announced.
    int64_t slice_rows = 0;
    int64_t slice_count = 0;
    array<int64_t> slice_starts;
    array<int32_t> slice_columns;
    array<T> slice_values;

    plan(sparse_operation_t op, const matrix_descr &d) : operation(op), descr(d) {}
    void release() noexcept override { unmake(this); }
    bool has_rows() const { return wide.starts.data() != nullptr; }

    template <class Use>
    auto with_rows(const Use &use) const
    {
        const row_view<T> rows = wide.view();
        if (narrow.data())
            return use(row_view<T, int32_t>{rows.rows, rows.cols, rows.starts, rows.ends, narrow.data(),
                                            rows.values, 0});
        return use(rows);
    }
};

/// y := alpha A x + beta y by slices
template <class T>
void multiply_by_slices(const plan<T> &of, T alpha, const T *x, T beta, T *y)
{
    const slice_product<T> by{of.slice_rows,
                              of.slice_starts.data(),
                              of.slice_columns.data(),
                              of.slice_values.data(),
                              alpha,
                              beta,
                              x,
                              y};
    const auto kernel = kernels_in_force().of<T>().slices;
    const row_view<T> slices{of.slice_count, 0, by.starts, by.starts + 1, nullptr, by.values, 0};
    for_row_ranges(slices, 2., [&](int64_t first, int64_t last) { kernel(by, first, last); });
}

template <class T>
const plan<T> *plan_for(const sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr)
{
    for (const prepared *each = a.plans; each; each = each->next) {
        const auto &found = *static_cast<const plan<T> *>(each);
        if (found.operation == operation && alike(found.descr, descr))
            return &found;
    }
    return nullptr;
}

/// The same where its rows are to be read
template <class T>
const plan<T> *rows_plan_for(const sparse_matrix &a, sparse_operation_t operation,
                             const matrix_descr &descr)
{
    const plan<T> *const found = plan_for<T>(a, operation, descr);
    return found && found->has_rows() ? found : nullptr;
}

/// Calls use with op(A) by rows, from the plan for it when there is one, and from A or written out
/// otherwise.
template <class T, class Use>
sparse_status_t with_rows(const sparse_matrix &a, sparse_operation_t operation, const matrix_descr &descr,
                          const Use &use)
{
    action how;
    if (const auto status = action_of(a, operation, descr, how))
        return status;
    if (const plan<T> *const found = rows_plan_for<T>(a, operation, descr))
        return found->with_rows(use);
    written_rows<T> space;
    row_view<T> view;
    if (const auto status = rows_of(a, how, space, view))
        return status;
    return use(view);
}

} // namespace xkl::core::inspector
