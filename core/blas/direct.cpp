// Entries that skip the frame's work and compute what a plain routine computes: the direct-call routines,
// and the product through a kernel made on the first call, for which OpenBLAS's own kernels serve.
// Every argument goes on as it came, the options' lengths (l1...) too: nothing is moved for the call.
#include "entries.h"
#include "kernels.h"

using namespace xkl::core;

#define PRODUCT(T, name, kernel)                                                                           \
    extern "C" void xkl_blas_##name(const char *transa, const char *transb, const int64_t *m,              \
                                    const int64_t *n, const int64_t *k, const T *alpha, const T *a,        \
                                    const int64_t *lda, const T *b, const int64_t *ldb, const T *beta,     \
                                    T *c, const int64_t *ldc, int64_t l1, int64_t l2)                      \
    {                                                                                                      \
        on_openblas<kernels<T>::kernel>(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, l1,  \
                                        l2);                                                               \
    }

#define ENTRIES_OF_ALL_TYPES(T, t)                                                                         \
    PRODUCT(T, t##gemm_direct, gemm)                                                                       \
    PRODUCT(T, xkl_##t##gemm_jit, gemm)                                                                    \
    PRODUCT(T, xkl_##t##gemm_direct_jit, gemm)                                                             \
    extern "C" void xkl_blas_##t##syrk_direct(                                                             \
        const char *uplo, const char *trans, const int64_t *n, const int64_t *k, const T *alpha,           \
        const T *a, const int64_t *lda, const T *beta, T *c, const int64_t *ldc, int64_t l1, int64_t l2)   \
    {                                                                                                      \
        on_openblas<kernels<T>::syrk>(uplo, trans, n, k, alpha, a, lda, beta, c, ldc, l1, l2);             \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##trsm_direct(                                                             \
        const char *side, const char *uplo, const char *transa, const char *diag, const int64_t *m,        \
        const int64_t *n, const T *alpha, const T *a, const int64_t *lda, T *b, const int64_t *ldb,        \
        int64_t l1, int64_t l2, int64_t l3, int64_t l4)                                                    \
    {                                                                                                      \
        on_openblas<kernels<T>::trsm>(side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb, l1, l2, l3,   \
                                      l4);                                                                 \
    }                                                                                                      \
    extern "C" void xkl_blas_##t##axpy_direct(const int64_t *n, const T *a, const T *x,                    \
                                              const int64_t *incx, T *y, const int64_t *incy)              \
    {                                                                                                      \
        on_openblas<kernels<T>::axpy>(n, a, x, incx, y, incy);                                             \
    }
XKL_FOR_ALL_TYPES(ENTRIES_OF_ALL_TYPES)

#define ENTRIES_OF_COMPLEX_TYPES(T, t) PRODUCT(T, t##gemm3m_direct, gemm3m)
XKL_FOR_C_Z(ENTRIES_OF_COMPLEX_TYPES)

#define ENTRIES_OF_REAL_TYPES(T, t)                                                                        \
    extern "C" T xkl_blas_##t##dot_direct(const int64_t *n, const T *x, const int64_t *incx, const T *y,   \
                                          const int64_t *incy)                                             \
    {                                                                                                      \
        return on_openblas<kernels<T>::dot>(n, x, incx, y, incy);                                          \
    }
XKL_FOR_S_D(ENTRIES_OF_REAL_TYPES)
