// Strided batches: one set of arguments, and matrices at a fixed distance from each other. Every matrix is
// one call of the plain routine; the matrices run side by side. An input with a stride of 0 serves all of
// them.
#include "dgmm.h"
#include "entries.h"
#include "kernels.h"
#include "parallel.h"

using namespace xkl::core;

namespace {

/// What one matrix costs, from its dimensions
template <class... Sizes>
double operations(Sizes... sizes)
{
    return (1. * ... * static_cast<double>(*sizes));
}

} // namespace

#define GEMM_ENTRY(T, name, kernel)                                                                        \
    extern "C" void xkl_blas_##name(                                                                       \
        const char *transa, const char *transb, const int64_t *m, const int64_t *n, const int64_t *k,      \
        const T *alpha, const T *a, const int64_t *lda, const int64_t *stridea, const T *b,                \
        const int64_t *ldb, const int64_t *strideb, const T *beta, T *c, const int64_t *ldc,               \
        const int64_t *stridec, const int64_t *batch_size, int64_t, int64_t)                               \
    {                                                                                                      \
        for_each(*batch_size, operations(m, n, k), [=](int64_t i) {                                        \
            on_openblas(kernels<T>::kernel, transa, transb, m, n, k, alpha, a + i * *stridea, lda,         \
                        b + i * *strideb, ldb, beta, c + i * *stridec, ldc, 1, 1);                         \
        });                                                                                                \
    }
#define GEMM_ENTRIES(T, t) GEMM_ENTRY(T, t##gemm_batch_strided, gemm)
#define GEMM3M_ENTRIES(T, t) GEMM_ENTRY(T, t##gemm3m_batch_strided, gemm3m)
XKL_FOR_ALL_TYPES(GEMM_ENTRIES)
XKL_FOR_C_Z(GEMM3M_ENTRIES)

#define LEVEL_3_AND_2_ENTRIES(T, t)                                                                        \
    extern "C" void xkl_blas_##t##syrk_batch_strided(                                                      \
        const char *uplo, const char *trans, const int64_t *n, const int64_t *k, const T *alpha,           \
        const T *a, const int64_t *lda, const int64_t *stridea, const T *beta, T *c, const int64_t *ldc,   \
        const int64_t *stridec, const int64_t *batch_size, int64_t, int64_t)                               \
    {                                                                                                      \
        for_each(*batch_size, operations(n, n, k) / 2, [=](int64_t i) {                                    \
            on_openblas(kernels<T>::syrk, uplo, trans, n, k, alpha, a + i * *stridea, lda, beta,           \
                        c + i * *stridec, ldc, 1, 1);                                                      \
        });                                                                                                \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##trsm_batch_strided(                                                      \
        const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,        \
        const int64_t *n, const T *alpha, const T *a, const int64_t *lda, const int64_t *stridea, T *b,    \
        const int64_t *ldb, const int64_t *strideb, const int64_t *batch_size, int64_t, int64_t, int64_t,  \
        int64_t)                                                                                           \
    {                                                                                                      \
        for_each(*batch_size, operations(m, n, is(*side, 'L') ? m : n) / 2, [=](int64_t i) {               \
            on_openblas(kernels<T>::trsm, side, uplo, transa, diag, m, n, alpha, a + i * *stridea, lda,    \
                        b + i * *strideb, ldb, 1, 1, 1, 1);                                                \
        });                                                                                                \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##gemv_batch_strided(                                                      \
        const char *trans, const int64_t *m, const int64_t *n, const T *alpha, const T *a,                 \
        const int64_t *lda, const int64_t *stridea, const T *x, const int64_t *incx,                       \
        const int64_t *stridex, const T *beta, T *y, const int64_t *incy, const int64_t *stridey,          \
        const int64_t *batch_size, int64_t)                                                                \
    {                                                                                                      \
        for_each(*batch_size, operations(m, n), [=](int64_t i) {                                           \
            on_openblas(kernels<T>::gemv, trans, m, n, alpha, a + i * *stridea, lda, x + i * *stridex,     \
                        incx, beta, y + i * *stridey, incy, 1);                                            \
        });                                                                                                \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##dgmm_batch_strided(                                                      \
        const char *side, const int64_t *m, const int64_t *n, const T *a, const int64_t *lda,              \
        const int64_t *stridea, const T *x, const int64_t *incx, const int64_t *stridex, T *c,             \
        const int64_t *ldc, const int64_t *stridec, const int64_t *batch_size, int64_t)                    \
    {                                                                                                      \
        for_each(*batch_size, operations(m, n), [=](int64_t i) {                                           \
            multiply_by_diagonal(*side, *m, *n, a + i * *stridea, *lda, x + i * *stridex, *incx,           \
                                 c + i * *stridec, *ldc);                                                  \
        });                                                                                                \
    }
XKL_FOR_ALL_TYPES(LEVEL_3_AND_2_ENTRIES)

#define LEVEL_1_ENTRIES(T, t)                                                                              \
    extern "C" void xkl_blas_##t##axpy_batch_strided(                                                      \
        const int64_t *n, const T *alpha, const T *x, const int64_t *incx, const int64_t *stridex, T *y,   \
        const int64_t *incy, const int64_t *stridey, const int64_t *batch_size)                            \
    {                                                                                                      \
        for_each(*batch_size, operations(n), [=](int64_t i) {                                              \
            on_openblas(kernels<T>::axpy, n, alpha, x + i * *stridex, incx, y + i * *stridey, incy);       \
        });                                                                                                \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##copy_batch_strided(const int64_t *n, const T *x, const int64_t *incx,    \
                                                     const int64_t *stridex, T *y, const int64_t *incy,    \
                                                     const int64_t *stridey, const int64_t *batch_size)    \
    {                                                                                                      \
        for_each(*batch_size, operations(n), [=](int64_t i) {                                              \
            on_openblas(kernels<T>::copy, n, x + i * *stridex, incx, y + i * *stridey, incy);              \
        });                                                                                                \
    }
XKL_FOR_ALL_TYPES(LEVEL_1_ENTRIES)
