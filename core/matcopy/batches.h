// Batches of matrix copies: every matrix is one call of the plain routine, and the matrices run side by
// side. Groups have arrays with one entry each, and an array of addresses with one entry a matrix.
#pragma once

#include "blas/parallel.h"
#include "matcopy/in_place.h"
#include "matcopy/sums.h"

namespace xkl::core {

/// The share of a loop's work that pays which an element is, so that batches get threads from the same
/// number of bytes on as single copies.
template <class T>
constexpr double work_of_element = loop_work_that_pays / bytes_for_threads * sizeof(T);

template <class T, class Body>
void for_each_matrix(size_t count, size_t rows, size_t cols, const Body &body)
{
    for_each(static_cast<int64_t>(count), work_of_element<T> * operations(rows, cols),
             [&](int64_t i) { body(static_cast<size_t>(i)); });
}

template <class T, class Body>
void for_each_matrix_in_groups(size_t groups, const size_t *sizes, const size_t *rows, const size_t *cols,
                               const Body &body)
{
    for_each_in_groups(
        static_cast<int64_t>(groups), reinterpret_cast<const int64_t *>(sizes),
        [=](int64_t group) { return work_of_element<T> * operations(rows[group], cols[group]); }, body);
}

/// The scalar of a group, as the plain routines take it
template <class T>
scalar_argument<T> entry(const T *scalars, int64_t group)
{
    if constexpr (element<T>::is_complex)
        return scalars + group;
    else
        return scalars[group];
}

template <class T>
void xkl_omatcopy_batch_strided(char ordering, char trans, size_t rows, size_t cols,
                                scalar_argument<T> alpha, const T *a, size_t lda, size_t stridea, T *b,
                                size_t ldb, size_t strideb, size_t batch_size)
{
    for_each_matrix<T>(batch_size, rows, cols, [=](size_t i) {
        xkl_omatcopy<T>(ordering, trans, rows, cols, alpha, a + i * stridea, lda, b + i * strideb, ldb);
    });
}

template <class T>
void xkl_imatcopy_batch_strided(char ordering, char trans, size_t rows, size_t cols,
                                scalar_argument<T> alpha, T *ab, size_t lda, size_t ldb, size_t stride,
                                size_t batch_size)
{
    for_each_matrix<T>(batch_size, rows, cols, [=](size_t i) {
        xkl_imatcopy<T>(ordering, trans, rows, cols, alpha, ab + i * stride, lda, ldb);
    });
}

template <class T>
void xkl_omatadd_batch_strided(char ordering, char transa, char transb, size_t rows, size_t cols,
                               scalar_argument<T> alpha, const T *a, size_t lda, size_t stridea,
                               scalar_argument<T> beta, const T *b, size_t ldb, size_t strideb, T *c,
                               size_t ldc, size_t stridec, size_t batch_size)
{
    for_each_matrix<T>(batch_size, rows, cols, [=](size_t i) {
        xkl_omatadd<T>(ordering, transa, transb, rows, cols, alpha, a + i * stridea, lda, beta,
                       b + i * strideb, ldb, c + i * stridec, ldc);
    });
}

template <class T>
void xkl_omatcopy_batch(char ordering, const char *trans, const size_t *rows, const size_t *cols,
                        const T *alpha, const T *const *a, const size_t *lda, T *const *b,
                        const size_t *ldb, size_t group_count, const size_t *group_size)
{
    for_each_matrix_in_groups<T>(group_count, group_size, rows, cols, [=](int64_t g, int64_t i) {
        xkl_omatcopy<T>(ordering, trans[g], rows[g], cols[g], entry(alpha, g), a[i], lda[g], b[i], ldb[g]);
    });
}

template <class T>
void xkl_imatcopy_batch(char ordering, const char *trans, const size_t *rows, const size_t *cols,
                        const T *alpha, T *const *ab, const size_t *lda, const size_t *ldb,
                        size_t group_count, const size_t *group_size)
{
    for_each_matrix_in_groups<T>(group_count, group_size, rows, cols, [=](int64_t g, int64_t i) {
        xkl_imatcopy<T>(ordering, trans[g], rows[g], cols[g], entry(alpha, g), ab[i], lda[g], ldb[g]);
    });
}

} // namespace xkl::core
