// Handles over the caller's arrays: create, set_*_data_arrays, export, copy, destroy.
#pragma once

#include "arguments.h"

namespace xkl::core {

namespace inspector {

/// The shape of a matrix as its caller gives it
struct shape {
    storage form;
    sparse_index_base_t base;
    int64_t rows, cols;
    int64_t nnz = 0; // COO
    int64_t block = 1;
    sparse_layout_t layout = SPARSE_LAYOUT_ROW_MAJOR;

    bool good() const
    {
        int64_t total;
        return (base == SPARSE_INDEX_BASE_ZERO || base == SPARSE_INDEX_BASE_ONE) && rows >= 0 &&
               cols >= 0 && nnz >= 0 && block >= 1 && is_layout(layout) &&
               !__builtin_mul_overflow(rows, block, &total) && !__builtin_mul_overflow(cols, block, &total);
    }
};

template <class T>
void put_arrays(sparse_matrix &a, const shape &of, int64_t *starts, int64_t *ends, int64_t *minor,
                T *values)
{
    a.type = letter_of<T>;
    a.form = of.form;
    a.base = of.base;
    a.layout = of.layout;
    a.block = of.block;
    a.rows = of.rows;
    a.cols = of.cols;
    a.nnz = of.nnz;
    a.starts = starts;
    a.ends = ends;
    a.minor = minor;
    a.values = values;
}

/// Arrays may be missing where they have no elements.
inline sparse_status_t arrays_there(const shape &of, const int64_t *starts, const int64_t *ends,
                                    const int64_t *minor, const void *values)
{
    if (!of.good())
        return SPARSE_STATUS_INVALID_VALUE;
    const int64_t lines = of.form == storage::csc ? of.cols : of.rows;
    bool there, empty = of.nnz == 0;
    if (of.form == storage::coo)
        there = empty || starts;
    else {
        there = lines == 0 || (starts && ends);
        for (int64_t i = 0; there && i < lines; ++i)
            if (starts[i] < of.base || ends[i] < starts[i])
                return SPARSE_STATUS_INVALID_VALUE;
        empty = !there || std::equal(starts, starts + lines, ends);
    }
    return there && (empty || (minor && values)) ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_NOT_INITIALIZED;
}

template <class T>
sparse_status_t create(sparse_matrix **made, const shape &of, int64_t *starts, int64_t *ends,
                       int64_t *minor, T *values)
{
    if (!made)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (const auto bad = arrays_there(of, starts, ends, minor, values))
        return bad;
    auto *const a = make<sparse_matrix>();
    if (!a)
        return SPARSE_STATUS_ALLOC_FAILED;
    put_arrays(*a, of, starts, ends, minor, values);
    *made = a;
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t replace(sparse_matrix *a, const shape &of, int64_t *starts, int64_t *ends, int64_t *minor,
                        T *values)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (a->type != letter_of<T> || a->form != of.form)
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto bad = arrays_there(of, starts, ends, minor, values))
        return bad;
    a->forget_prepared();
    a->drop_arrays();
    put_arrays(*a, of, starts, ends, minor, values);
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t may_tell(const sparse_matrix *a, storage form)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    return a->type == letter_of<T> && a->form == form ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_INVALID_VALUE;
}

template <class... Address>
bool all_there(const Address *...addresses)
{
    return ((addresses != nullptr) && ...);
}

/// What compressed rows, columns and blocks have in common. Stages of a product tell the arrays that they
/// made.
template <class T>
sparse_status_t tell(const sparse_matrix &a, sparse_index_base_t *base, int64_t *rows, int64_t *cols,
                     int64_t **starts, int64_t **ends, int64_t **minor, T **values)
{
    if (!all_there(base, rows, cols, starts, ends, minor, values))
        return SPARSE_STATUS_INVALID_VALUE;
    *base = a.base;
    *rows = a.rows;
    *cols = a.cols;
    *starts = a.starts;
    *ends = a.ends;
    *minor = a.minor;
    *values = static_cast<T *>(a.values);
    return SPARSE_STATUS_SUCCESS;
}

/// A copy that owns its arrays, without the gaps that the source may have between its lines
template <class T>
sparse_status_t duplicate(const sparse_matrix &source, sparse_matrix **made)
{
    const bool coo = source.form == storage::coo;
    const int64_t lines = coo ? source.nnz : source.lines(), places = source.places(),
                  size = source.block * source.block;
    array<int64_t> starts, minor;
    array<T> values;
    auto *const a = starts.make(lines + 1) && minor.make(places) && values.make(places * size)
                        ? make<sparse_matrix>()
                        : nullptr;
    if (!a)
        return SPARSE_STATUS_ALLOC_FAILED;
    const T *const from = static_cast<const T *>(source.values);
    if (coo) {
        std::copy_n(source.starts, lines, starts.data());
        std::copy_n(source.minor, places, minor.data());
        std::copy_n(from, places, values.data());
    }
    int64_t place = 0;
    for (int64_t i = 0; !coo && i < lines; ++i) {
        const int64_t first = source.starts[i] - source.base, count = source.ends[i] - source.starts[i];
        starts[i] = place + source.base;
        std::copy_n(source.minor + first, count, minor.data() + place);
        std::copy_n(from + first * size, count * size, values.data() + place * size);
        place += count;
    }
    if (!coo)
        starts[lines] = place + source.base;
    const shape of{source.form, source.base,  source.rows,  source.cols,
                   source.nnz,  source.block, source.layout};
    int64_t *const first = starts.release();
    put_arrays(*a, of, first, coo ? nullptr : first + 1, minor.release(), values.release());
    a->owns = true;
    *made = a;
    return SPARSE_STATUS_SUCCESS;
}

} // namespace inspector

template <class T>
sparse_status_t xkl_sparse_create_coo(sparse_matrix **made, sparse_index_base_t base, int64_t rows,
                                      int64_t cols, int64_t nnz, int64_t *row, int64_t *column, T *values)
{
    return inspector::create(made, {inspector::storage::coo, base, rows, cols, nnz}, row, nullptr, column,
                             values);
}

template <class T>
sparse_status_t xkl_sparse_create_csr(sparse_matrix **made, sparse_index_base_t base, int64_t rows,
                                      int64_t cols, int64_t *starts, int64_t *ends, int64_t *minor,
                                      T *values)
{
    return inspector::create(made, {inspector::storage::csr, base, rows, cols}, starts, ends, minor,
                             values);
}

template <class T>
sparse_status_t xkl_sparse_create_csc(sparse_matrix **made, sparse_index_base_t base, int64_t rows,
                                      int64_t cols, int64_t *starts, int64_t *ends, int64_t *minor,
                                      T *values)
{
    return inspector::create(made, {inspector::storage::csc, base, rows, cols}, starts, ends, minor,
                             values);
}

template <class T>
sparse_status_t xkl_sparse_create_bsr(sparse_matrix **made, sparse_index_base_t base,
                                      sparse_layout_t layout, int64_t rows, int64_t cols, int64_t block,
                                      int64_t *starts, int64_t *ends, int64_t *minor, T *values)
{
    return inspector::create(made, {inspector::storage::bsr, base, rows, cols, 0, block, layout}, starts,
                             ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_set_coo_data_arrays(sparse_matrix *a, sparse_index_base_t base, int64_t rows,
                                               int64_t cols, int64_t nnz, int64_t *row, int64_t *column,
                                               T *values)
{
    return inspector::replace(a, {inspector::storage::coo, base, rows, cols, nnz}, row, nullptr, column,
                              values);
}

template <class T>
sparse_status_t xkl_sparse_set_csr_data_arrays(sparse_matrix *a, sparse_index_base_t base, int64_t rows,
                                               int64_t cols, int64_t *starts, int64_t *ends, int64_t *minor,
                                               T *values)
{
    return inspector::replace(a, {inspector::storage::csr, base, rows, cols}, starts, ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_set_csc_data_arrays(sparse_matrix *a, sparse_index_base_t base, int64_t rows,
                                               int64_t cols, int64_t *starts, int64_t *ends, int64_t *minor,
                                               T *values)
{
    return inspector::replace(a, {inspector::storage::csc, base, rows, cols}, starts, ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_set_bsr_data_arrays(sparse_matrix *a, sparse_index_base_t base,
                                               sparse_layout_t layout, int64_t rows, int64_t cols,
                                               int64_t block, int64_t *starts, int64_t *ends,
                                               int64_t *minor, T *values)
{
    return inspector::replace(a, {inspector::storage::bsr, base, rows, cols, 0, block, layout}, starts,
                              ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_export_coo(const sparse_matrix *a, sparse_index_base_t *base, int64_t *rows,
                                      int64_t *cols, int64_t *nnz, int64_t **row, int64_t **column,
                                      T **values)
{
    if (const auto bad = inspector::may_tell<T>(a, inspector::storage::coo))
        return bad;
    int64_t *ends;
    if (!nnz)
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto bad = inspector::tell(*a, base, rows, cols, row, &ends, column, values))
        return bad;
    *nnz = a->nnz;
    return SPARSE_STATUS_SUCCESS;
}

template <class T>
sparse_status_t xkl_sparse_export_csr(const sparse_matrix *a, sparse_index_base_t *base, int64_t *rows,
                                      int64_t *cols, int64_t **starts, int64_t **ends, int64_t **minor,
                                      T **values)
{
    const auto bad = inspector::may_tell<T>(a, inspector::storage::csr);
    return bad ? bad : inspector::tell(*a, base, rows, cols, starts, ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_export_csc(const sparse_matrix *a, sparse_index_base_t *base, int64_t *rows,
                                      int64_t *cols, int64_t **starts, int64_t **ends, int64_t **minor,
                                      T **values)
{
    const auto bad = inspector::may_tell<T>(a, inspector::storage::csc);
    return bad ? bad : inspector::tell(*a, base, rows, cols, starts, ends, minor, values);
}

template <class T>
sparse_status_t xkl_sparse_export_bsr(const sparse_matrix *a, sparse_index_base_t *base,
                                      sparse_layout_t *layout, int64_t *rows, int64_t *cols, int64_t *block,
                                      int64_t **starts, int64_t **ends, int64_t **minor, T **values)
{
    if (const auto bad = inspector::may_tell<T>(a, inspector::storage::bsr))
        return bad;
    if (!inspector::all_there(layout, block))
        return SPARSE_STATUS_INVALID_VALUE;
    if (const auto bad = inspector::tell(*a, base, rows, cols, starts, ends, minor, values))
        return bad;
    *layout = a->layout;
    *block = a->block;
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_copy(const sparse_matrix *source, matrix_descr descr,
                                       sparse_matrix **made)
{
    using namespace inspector;
    if (!made)
        return SPARSE_STATUS_NOT_INITIALIZED;
    part of;
    if (const auto bad = usable(source))
        return bad;
    if (const auto bad = part_of(*source, descr, of))
        return bad;
    return by_type(*source, [&]<class T>() { return duplicate<T>(*source, made); });
}

inline sparse_status_t xkl_sparse_destroy(sparse_matrix *a)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    inspector::unmake(a);
    return SPARSE_STATUS_SUCCESS;
}

} // namespace xkl::core
