// Strided batches: one set of arguments, and matrices at a fixed distance from each other. Every matrix is
// one call of the plain routine; the matrices run side by side. An input with a stride of 0 serves all of
// them.
#pragma once

#include "dgmm.h"
#include "kernels.h"
#include "parallel.h"

namespace xkl::core {

template <class T>
void gemm_batch_strided(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                        const int64_t *k, const T *alpha, const T *a, const int64_t *lda,
                        const int64_t *stridea, const T *b, const int64_t *ldb, const int64_t *strideb,
                        const T *beta, T *c, const int64_t *ldc, const int64_t *stridec,
                        const int64_t *batch_size, gemm_routine<T> *kernel = kernels<T>::gemm)
{
    for_each(*batch_size, operations(*m, *n, *k), [=](int64_t i) {
        on_openblas(kernel, transa, transb, m, n, k, alpha, a + i * *stridea, lda, b + i * *strideb, ldb,
                    beta, c + i * *stridec, ldc, 1, 1);
    });
}

template <class T>
void gemm3m_batch_strided(const char *transa, const char *transb, const int64_t *m, const int64_t *n,
                          const int64_t *k, const T *alpha, const T *a, const int64_t *lda,
                          const int64_t *stridea, const T *b, const int64_t *ldb, const int64_t *strideb,
                          const T *beta, T *c, const int64_t *ldc, const int64_t *stridec,
                          const int64_t *batch_size)
{
    gemm_batch_strided(transa, transb, m, n, k, alpha, a, lda, stridea, b, ldb, strideb, beta, c, ldc,
                       stridec, batch_size, kernels<T>::gemm3m);
}

template <class T>
void syrk_batch_strided(const char *uplo, const char *trans, const int64_t *n, const int64_t *k,
                        const T *alpha, const T *a, const int64_t *lda, const int64_t *stridea,
                        const T *beta, T *c, const int64_t *ldc, const int64_t *stridec,
                        const int64_t *batch_size)
{
    for_each(*batch_size, operations(*n, *n, *k) / 2, [=](int64_t i) {
        on_openblas(kernels<T>::syrk, uplo, trans, n, k, alpha, a + i * *stridea, lda, beta,
                    c + i * *stridec, ldc, 1, 1);
    });
}

template <class T>
void trsm_batch_strided(const char *side, const char *uplo, const char *transa, const char *diag,
                        const int64_t *m, const int64_t *n, const T *alpha, const T *a, const int64_t *lda,
                        const int64_t *stridea, T *b, const int64_t *ldb, const int64_t *strideb,
                        const int64_t *batch_size)
{
    for_each(*batch_size, operations(*m, *n, *(is(*side, 'L') ? m : n)) / 2, [=](int64_t i) {
        on_openblas(kernels<T>::trsm, side, uplo, transa, diag, m, n, alpha, a + i * *stridea, lda,
                    b + i * *strideb, ldb, 1, 1, 1, 1);
    });
}

template <class T>
void gemv_batch_strided(const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const T *a,
                        const int64_t *lda, const int64_t *stridea, const T *x, const int64_t *incx,
                        const int64_t *stridex, const T *beta, T *y, const int64_t *incy,
                        const int64_t *stridey, const int64_t *batch_size)
{
    for_each(*batch_size, operations(*m, *n), [=](int64_t i) {
        on_openblas(kernels<T>::gemv, trans, m, n, alpha, a + i * *stridea, lda, x + i * *stridex, incx,
                    beta, y + i * *stridey, incy, 1);
    });
}

template <class T>
void dgmm_batch_strided(const char *side, const int64_t *m, const int64_t *n, const T *a,
                        const int64_t *lda, const int64_t *stridea, const T *x, const int64_t *incx,
                        const int64_t *stridex, T *c, const int64_t *ldc, const int64_t *stridec,
                        const int64_t *batch_size)
{
    for_each(*batch_size, operations(*m, *n), [=](int64_t i) {
        multiply_by_diagonal(*side, *m, *n, a + i * *stridea, *lda, x + i * *stridex, *incx,
                             c + i * *stridec, *ldc);
    });
}

template <class T>
void axpy_batch_strided(const int64_t *n, const T *alpha, const T *x, const int64_t *incx,
                        const int64_t *stridex, T *y, const int64_t *incy, const int64_t *stridey,
                        const int64_t *batch_size)
{
    for_each(*batch_size, operations(*n), [=](int64_t i) {
        on_openblas(kernels<T>::axpy, n, alpha, x + i * *stridex, incx, y + i * *stridey, incy);
    });
}

template <class T>
void copy_batch_strided(const int64_t *n, const T *x, const int64_t *incx, const int64_t *stridex, T *y,
                        const int64_t *incy, const int64_t *stridey, const int64_t *batch_size)
{
    for_each(*batch_size, operations(*n), [=](int64_t i) {
        on_openblas(kernels<T>::copy, n, x + i * *stridex, incx, y + i * *stridey, incy);
    });
}

} // namespace xkl::core
