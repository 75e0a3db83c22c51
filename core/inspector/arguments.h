// What the routines on handles ask of their arguments.
#pragma once

#include "rows.h"

#include <initializer_list>

namespace xkl::core::inspector {

/// Scalars as the entries get them: real ones by value, complex ones by address.
template <class T>
using scalar = std::conditional_t<element<T>::is_complex, const T *, T>;

template <class T>
bool read(scalar<T> given, T &value)
{
    if constexpr (element<T>::is_complex) {
        if (!given)
            return false;
        value = *given;
    } else
        value = given;
    return true;
}

inline sparse_status_t usable(const sparse_matrix *a)
{
    return a && a->complete() ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_NOT_INITIALIZED;
}

template <class T>
sparse_status_t usable_as(const sparse_matrix *a)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return a->type == letter_of<T> ? usable(a) : SPARSE_STATUS_INVALID_VALUE;
}

/// The first status of a list that is not success
inline sparse_status_t first_failure(std::initializer_list<sparse_status_t> list)
{
    for (const sparse_status_t each : list)
        if (each != SPARSE_STATUS_SUCCESS)
            return each;
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t valid(bool condition)
{
    return condition ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_INVALID_VALUE;
}

/// Keeps the row (counted as in A) or the like that a failure was about, for xkl_sparse_get_error_info.
inline sparse_status_t fail_at(sparse_matrix &a, int64_t index, sparse_status_t status)
{
    a.error_info.store(index + a.base, std::memory_order_relaxed);
    return status;
}

/// Rows and columns of op(A)
inline int64_t rows_under(const sparse_matrix &a, sparse_operation_t operation)
{
    return operation == SPARSE_OPERATION_NON_TRANSPOSE ? a.total_rows() : a.total_cols();
}
inline int64_t cols_under(const sparse_matrix &a, sparse_operation_t operation)
{
    return operation == SPARSE_OPERATION_NON_TRANSPOSE ? a.total_cols() : a.total_rows();
}

/// Calls use.operator()<T>() with the matrix' element type.
template <class Use>
auto by_type(const sparse_matrix &a, const Use &use)
{
    switch (a.type) {
    case 'S':
        return use.template operator()<float>();
    case 'D':
        return use.template operator()<double>();
    case 'C':
        return use.template operator()<complex8>();
    default:
        return use.template operator()<complex16>();
    }
}

/// A dense matrix: element (i, j) at i * down + j * across
template <class T>
struct dense {
    T *first;
    int64_t down, across;

    dense(T *at, sparse_layout_t layout, int64_t ld)
        : first(at), down(layout == SPARSE_LAYOUT_ROW_MAJOR ? ld : 1),
          across(layout == SPARSE_LAYOUT_ROW_MAJOR ? 1 : ld)
    {
    }
    explicit dense(T *vector) : first(vector), down(1), across(1) {}
    T &operator()(int64_t i, int64_t j) const { return first[i * down + j * across]; }
    /// Rows lie together and columns follow each other
    bool by_rows() const { return across == 1; }
};

/// Whether rows by cols elements fit a dense matrix of this leading dimension.
inline bool fits(sparse_layout_t layout, int64_t rows, int64_t cols, int64_t ld)
{
    return is_layout(layout) && ld >= std::max<int64_t>(1, layout == SPARSE_LAYOUT_ROW_MAJOR ? cols : rows);
}

} // namespace xkl::core::inspector
