// Changing and looking at the elements of a matrix: set_value, update_values, order, the sorted property,
// the flags.
#pragma once

#include "arguments.h"

namespace xkl::core {

namespace inspector {

/// Calls use(value) for each stored place of the element (row, col), counted from 0.
template <class T, class Use>
void each_place(const sparse_matrix &a, int64_t row, int64_t col, const Use &use)
{
    T *const values = static_cast<T *>(a.values);
    if (a.form == storage::coo) {
        for (int64_t k = 0; k < a.nnz; ++k)
            if (a.starts[k] - a.base == row && a.minor[k] - a.base == col)
                use(values[k]);
        return;
    }
    const bool turned = a.form == storage::csc;
    const int64_t i = turned ? col : row, j = turned ? row : col, b = a.block;
    const int64_t inside = a.layout == SPARSE_LAYOUT_ROW_MAJOR ? i % b * b + j % b : j % b * b + i % b;
    for (int64_t k = a.starts[i / b] - a.base; k < a.ends[i / b] - a.base; ++k)
        if (a.minor[k] - a.base == j / b)
            use(values[k * b * b + inside]);
}

template <class T>
bool is_stored(const sparse_matrix &a, int64_t row, int64_t col)
{
    bool found = false;
    if (row >= 0 && col >= 0 && row < a.total_rows() && col < a.total_cols())
        each_place<T>(a, row, col, [&](T &) { found = true; });
    return found;
}

/// An element that is stored several times is their sum: the first takes the value.
template <class T>
void set_stored(sparse_matrix &a, int64_t row, int64_t col, T value)
{
    each_place<T>(a, row, col, [&](T &place) { place = std::exchange(value, T(0)); });
}

/// All values in the order in which they stand
template <class T>
void set_all(sparse_matrix &a, const T *values)
{
    T *const to = static_cast<T *>(a.values);
    if (a.form == storage::coo) {
        std::copy_n(values, a.nnz, to);
        return;
    }
    const int64_t size = a.block * a.block;
    for (int64_t i = 0; i < a.lines(); ++i) {
        const int64_t count = (a.ends[i] - a.starts[i]) * size;
        std::copy_n(values, count, to + (a.starts[i] - a.base) * size);
        values += count;
    }
}

inline bool is_sorted(const sparse_matrix &a)
{
    if (a.form == storage::coo) {
        for (int64_t k = 1; k < a.nnz; ++k)
            if (a.starts[k] < a.starts[k - 1] ||
                (a.starts[k] == a.starts[k - 1] && a.minor[k] < a.minor[k - 1]))
                return false;
        return true;
    }
    for (int64_t i = 0; i < a.lines(); ++i)
        if (!std::is_sorted(a.minor + (a.starts[i] - a.base), a.minor + (a.ends[i] - a.base)))
            return false;
    return true;
}

/// Sorts places first to first + count - 1 by keys(place) and moves `size` values each; order and values
/// are space for so many.
template <class T>
void sort_places(sparse_matrix &a, int64_t first, int64_t count, int64_t size, int64_t *order,
                 int64_t *indices, T *values)
{
    T *const stored = static_cast<T *>(a.values);
    const bool coo = a.form == storage::coo;
    for (int64_t k = 0; k < count; ++k)
        order[k] = first + k;
    std::sort(order, order + count, [&](int64_t x, int64_t y) {
        if (coo && a.starts[x] != a.starts[y])
            return a.starts[x] < a.starts[y];
        return a.minor[x] != a.minor[y] ? a.minor[x] < a.minor[y] : x < y;
    });
    const auto reorder = [&](int64_t *array) {
        for (int64_t k = 0; k < count; ++k)
            indices[k] = array[order[k]];
        std::copy_n(indices, count, array + first);
    };
    for (int64_t k = 0; k < count; ++k)
        std::copy_n(stored + order[k] * size, size, values + k * size);
    std::copy_n(values, count * size, stored + first * size);
    if (coo)
        reorder(a.starts);
    reorder(a.minor);
}

/// Sorts the caller's own arrays; where there is no memory, nothing has changed.
template <class T>
sparse_status_t sort(sparse_matrix &a)
{
    if (is_sorted(a))
        return SPARSE_STATUS_SUCCESS;
    const bool coo = a.form == storage::coo;
    const int64_t size = a.block * a.block;
    int64_t longest = coo ? a.nnz : 0;
    for (int64_t i = 0; !coo && i < a.lines(); ++i)
        longest = std::max(longest, a.ends[i] - a.starts[i]);
    array<int64_t> order, indices;
    array<T> values;
    if (!order.make(longest) || !indices.make(longest) || !values.make(longest * size))
        return SPARSE_STATUS_ALLOC_FAILED;
    a.forget_prepared();
    if (coo)
        sort_places<T>(a, 0, a.nnz, size, order.data(), indices.data(), values.data());
    for (int64_t i = 0; !coo && i < a.lines(); ++i)
        sort_places<T>(a, a.starts[i] - a.base, a.ends[i] - a.starts[i], size, order.data(), indices.data(),
                       values.data());
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t set_flag(sparse_matrix *a, bool sparse_matrix::*flag, int32_t value)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (value != 0 && value != 1)
        return SPARSE_STATUS_INVALID_VALUE;
    a->*flag = value == 1;
    return SPARSE_STATUS_SUCCESS;
}

/// The entries of one type take handles of this type alone.
template <class T>
sparse_status_t of_type(const sparse_matrix *a)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return valid(a->type == letter_of<T>);
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_set_value(sparse_matrix *a, int64_t row, int64_t col, inspector::scalar<T> value)
{
    using namespace inspector;
    T given;
    if (const auto bad = first_failure({usable_as<T>(a), valid(read<T>(value, given))}))
        return bad;
    if (!is_stored<T>(*a, row - a->base, col - a->base))
        return SPARSE_STATUS_INVALID_VALUE;
    a->forget_prepared();
    set_stored(*a, row - a->base, col - a->base, given);
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t xkl_sparse_update_values(sparse_matrix *a, int64_t count, const int64_t *row,
                                         const int64_t *col, const T *values)
{
    using namespace inspector;
    if (const auto bad = usable_as<T>(a))
        return bad;
    const int64_t all = a->places() * a->block * a->block;
    const bool whole = (count == 0 || count == all) && !row && !col;
    if (count < 0 || (!values && all > 0) || (!whole && (!row || !col)))
        return SPARSE_STATUS_INVALID_VALUE;
    for (int64_t k = 0; !whole && k < count; ++k)
        if (!is_stored<T>(*a, row[k] - a->base, col[k] - a->base))
            return fail_at(*a, k - a->base, SPARSE_STATUS_INVALID_VALUE);
    a->forget_prepared();
    if (whole)
        set_all(*a, values);
    for (int64_t k = 0; !whole && k < count; ++k)
        set_stored(*a, row[k] - a->base, col[k] - a->base, values[k]);
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_order(sparse_matrix *a)
{
    using namespace inspector;
    if (const auto bad = usable(a))
        return bad;
    return by_type(*a, [&]<class T>() { return sort<T>(*a); });
}

inline sparse_status_t xkl_sparse_get_sorted_property(const sparse_matrix *a, int32_t *sorted)
{
    using namespace inspector;
    if (const auto bad = first_failure({usable(a), valid(sorted != nullptr)}))
        return bad;
    *sorted = is_sorted(*a);
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_get_error_info(const sparse_matrix *a, int64_t *info)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (!info)
        return SPARSE_STATUS_INVALID_VALUE;
    *info = a->error_info.load(std::memory_order_relaxed);
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_set_inplace_copy(sparse_matrix *a, int32_t flag)
{
    return inspector::set_flag(a, &sparse_matrix::in_place, flag);
}

inline sparse_status_t xkl_sparse_set_is_sycl_cpu(sparse_matrix *a, int32_t flag)
{
    return inspector::set_flag(a, &sparse_matrix::host_queue, flag);
}

template <class T>
sparse_status_t xkl_sparse_do_order(sparse_matrix *a)
{
    const auto bad = inspector::of_type<T>(a);
    return bad ? bad : xkl_sparse_order(a);
}

template <class T>
sparse_status_t xkl_sparse_do_get_sorted_property(const sparse_matrix *a, int32_t *sorted)
{
    const auto bad = inspector::of_type<T>(a);
    return bad ? bad : xkl_sparse_get_sorted_property(a, sorted);
}

template <class T>
sparse_status_t xkl_sparse_do_set_inplace_copy(sparse_matrix *a, int32_t flag)
{
    const auto bad = inspector::of_type<T>(a);
    return bad ? bad : xkl_sparse_set_inplace_copy(a, flag);
}

template <class T>
sparse_status_t xkl_sparse_do_set_is_sycl_cpu(sparse_matrix *a, int32_t flag)
{
    const auto bad = inspector::of_type<T>(a);
    return bad ? bad : xkl_sparse_set_is_sycl_cpu(a, flag);
}

} // namespace xkl::core
