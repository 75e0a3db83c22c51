// OpenBLAS's routines as the core's own routines call them: by value, one name for the four types. Hidden
// lengths are always 1. Every call goes through on_openblas, so that a thread's own thread count holds here
// too.
#pragma once

#include "elements.h"
#include "openblas/forward.h"

namespace xkl::core {

using size_ref = const int64_t *;
using option_ref = const char *;

template <class T>
using gemm_routine = void(option_ref, option_ref, size_ref, size_ref, size_ref, const T *, const T *,
                          size_ref, const T *, size_ref, const T *, T *, size_ref, int64_t, int64_t);
template <class T>
using syrk_routine = void(option_ref, option_ref, size_ref, size_ref, const T *, const T *, size_ref,
                          const T *, T *, size_ref, int64_t, int64_t);
template <class T>
using triangular_routine = void(option_ref, option_ref, option_ref, option_ref, size_ref, size_ref,
                                const T *, const T *, size_ref, T *, size_ref, int64_t, int64_t, int64_t,
                                int64_t);
template <class T>
using gemv_routine = void(option_ref, size_ref, size_ref, const T *, const T *, size_ref, const T *,
                          size_ref, const T *, T *, size_ref, int64_t);
template <class T>
using axpy_routine = void(size_ref, const T *, const T *, size_ref, T *, size_ref);
template <class T>
using copy_routine = void(size_ref, const T *, size_ref, T *, size_ref);
template <class T>
using dot_routine = T(size_ref, const T *, size_ref, const T *, size_ref);

extern "C" {
gemm_routine<float> sgemm_;
gemm_routine<double> dgemm_;
gemm_routine<complex8> cgemm_, cgemm3m_;
gemm_routine<complex16> zgemm_, zgemm3m_;
syrk_routine<float> ssyrk_;
syrk_routine<double> dsyrk_;
syrk_routine<complex8> csyrk_;
syrk_routine<complex16> zsyrk_;
triangular_routine<float> strmm_, strsm_;
triangular_routine<double> dtrmm_, dtrsm_;
triangular_routine<complex8> ctrmm_, ctrsm_;
triangular_routine<complex16> ztrmm_, ztrsm_;
gemv_routine<float> sgemv_;
gemv_routine<double> dgemv_;
gemv_routine<complex8> cgemv_;
gemv_routine<complex16> zgemv_;
axpy_routine<float> saxpy_;
axpy_routine<double> daxpy_;
axpy_routine<complex8> caxpy_;
axpy_routine<complex16> zaxpy_;
copy_routine<float> scopy_;
copy_routine<double> dcopy_;
copy_routine<complex8> ccopy_;
copy_routine<complex16> zcopy_;
dot_routine<complex8> cdotc_, cdotu_;
dot_routine<complex16> zdotc_, zdotu_;
}

template <class T>
struct kernels;
template <>
struct kernels<float> {
    static constexpr auto gemm = sgemm_;
    static constexpr auto syrk = ssyrk_;
    static constexpr auto trmm = strmm_, trsm = strsm_;
    static constexpr auto gemv = sgemv_;
    static constexpr auto axpy = saxpy_;
    static constexpr auto copy = scopy_;
};
template <>
struct kernels<double> {
    static constexpr auto gemm = dgemm_;
    static constexpr auto syrk = dsyrk_;
    static constexpr auto trmm = dtrmm_, trsm = dtrsm_;
    static constexpr auto gemv = dgemv_;
    static constexpr auto axpy = daxpy_;
    static constexpr auto copy = dcopy_;
};
template <>
struct kernels<complex8> {
    static constexpr auto gemm = cgemm_, gemm3m = cgemm3m_;
    static constexpr auto syrk = csyrk_;
    static constexpr auto trmm = ctrmm_, trsm = ctrsm_;
    static constexpr auto gemv = cgemv_;
    static constexpr auto axpy = caxpy_;
    static constexpr auto copy = ccopy_;
    static constexpr auto dotc = cdotc_, dotu = cdotu_;
};
template <>
struct kernels<complex16> {
    static constexpr auto gemm = zgemm_, gemm3m = zgemm3m_;
    static constexpr auto syrk = zsyrk_;
    static constexpr auto trmm = ztrmm_, trsm = ztrsm_;
    static constexpr auto gemv = zgemv_;
    static constexpr auto axpy = zaxpy_;
    static constexpr auto copy = zcopy_;
    static constexpr auto dotc = zdotc_, dotu = zdotu_;
};

template <class T>
void gemm(char transa, char transb, int64_t m, int64_t n, int64_t k, T alpha, const T *a, int64_t lda,
          const T *b, int64_t ldb, T beta, T *c, int64_t ldc)
{
    on_openblas(kernels<T>::gemm, &transa, &transb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc, 1,
                1);
}

template <class T>
void trmm(char side, char uplo, char transa, char diag, int64_t m, int64_t n, T alpha, const T *a,
          int64_t lda, T *b, int64_t ldb)
{
    on_openblas(kernels<T>::trmm, &side, &uplo, &transa, &diag, &m, &n, &alpha, a, &lda, b, &ldb, 1, 1, 1,
                1);
}

template <class T>
void trsm(char side, char uplo, char transa, char diag, int64_t m, int64_t n, T alpha, const T *a,
          int64_t lda, T *b, int64_t ldb)
{
    on_openblas(kernels<T>::trsm, &side, &uplo, &transa, &diag, &m, &n, &alpha, a, &lda, b, &ldb, 1, 1, 1,
                1);
}

template <class T>
void gemv(char trans, int64_t m, int64_t n, T alpha, const T *a, int64_t lda, const T *x, int64_t incx,
          T beta, T *y, int64_t incy)
{
    on_openblas(kernels<T>::gemv, &trans, &m, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy, 1);
}

} // namespace xkl::core
