// Group batches: arrays with one entry a group, arrays of addresses with one entry a matrix. Every matrix
// is one call of the plain routine with its group's arguments; the matrices of all groups run side by side.
#pragma once

#include "dgmm.h"
#include "kernels.h"
#include "parallel.h"

namespace xkl::core {

template <class T>
void gemm_batch(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                const int64_t *k, const T *alpha, const T *const *a, const int64_t *lda, const T *const *b,
                const int64_t *ldb, const T *beta, T *const *c, const int64_t *ldc, const int64_t *groups,
                const int64_t *sizes, gemm_routine<T> *kernel = kernels<T>::gemm)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(m[g], n[g], k[g]); },
        [&](int64_t g, int64_t i) {
            on_openblas(kernel, transa + g, transb + g, m + g, n + g, k + g, alpha + g, a[i], lda + g, b[i],
                        ldb + g, beta + g, c[i], ldc + g, 1, 1);
        });
}

template <class T>
void gemm3m_batch(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                  const int64_t *k, const T *alpha, const T *const *a, const int64_t *lda,
                  const T *const *b, const int64_t *ldb, const T *beta, T *const *c, const int64_t *ldc,
                  const int64_t *groups, const int64_t *sizes)
{
    gemm_batch(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, groups, sizes,
               kernels<T>::gemm3m);
}

template <class T>
void syrk_batch(const char *uplo, const char *trans, const int64_t *n, const int64_t *k, const T *alpha,
                const T *const *a, const int64_t *lda, const T *beta, T *const *c, const int64_t *ldc,
                const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(n[g], n[g], k[g]) / 2; },
        [&](int64_t g, int64_t i) {
            on_openblas(kernels<T>::syrk, uplo + g, trans + g, n + g, k + g, alpha + g, a[i], lda + g,
                        beta + g, c[i], ldc + g, 1, 1);
        });
}

template <class T>
void trsm_batch(const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,
                const int64_t *n, const T *alpha, const T *const *a, const int64_t *lda, T *const *b,
                const int64_t *ldb, const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes,
        [&](int64_t g) { return operations(m[g], n[g], is(side[g], 'L') ? m[g] : n[g]) / 2; },
        [&](int64_t g, int64_t i) {
            on_openblas(kernels<T>::trsm, side + g, uplo + g, transa + g, diag + g, m + g, n + g, alpha + g,
                        a[i], lda + g, b[i], ldb + g, 1, 1, 1, 1);
        });
}

template <class T>
void gemv_batch(const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const T *const *a,
                const int64_t *lda, const T *const *x, const int64_t *incx, const T *beta, T *const *y,
                const int64_t *incy, const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(m[g], n[g]); },
        [&](int64_t g, int64_t i) {
            on_openblas(kernels<T>::gemv, trans + g, m + g, n + g, alpha + g, a[i], lda + g, x[i], incx + g,
                        beta + g, y[i], incy + g, 1);
        });
}

template <class T>
void dgmm_batch(const char *side, const int64_t *m, const int64_t *n, const T *const *a, const int64_t *lda,
                const T *const *x, const int64_t *incx, T *const *c, const int64_t *ldc,
                const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(m[g], n[g]); },
        [&](int64_t g, int64_t i) {
            multiply_by_diagonal(side[g], m[g], n[g], a[i], lda[g], x[i], incx[g], c[i], ldc[g]);
        });
}

template <class T>
void axpy_batch(const int64_t *n, const T *alpha, const T *const *x, const int64_t *incx, T *const *y,
                const int64_t *incy, const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(n[g]); },
        [&](int64_t g, int64_t i) {
            on_openblas(kernels<T>::axpy, n + g, alpha + g, x[i], incx + g, y[i], incy + g);
        });
}

template <class T>
void copy_batch(const int64_t *n, const T *const *x, const int64_t *incx, T *const *y, const int64_t *incy,
                const int64_t *groups, const int64_t *sizes)
{
    for_each_in_groups(
        *groups, sizes, [&](int64_t g) { return operations(n[g]); },
        [&](int64_t g, int64_t i) {
            on_openblas(kernels<T>::copy, n + g, x[i], incx + g, y[i], incy + g);
        });
}

} // namespace xkl::core
