// BLAS and LAPACK as MUMPS calls them: with 32-bit integers, under names that the build gives its objects
// (symbols.txt), so that they meet no routine of that name with other integers. Each one widens its
// integers and calls the core's entry.
#include "lapack/call.h"

namespace xkl::core {
namespace {

using small = const int32_t *;

template <class T>
void gemm(const char *transa, const char *transb, small m, small n, small k, const T *alpha, const T *a,
          small lda, const T *b, small ldb, const T *beta, T *c, small ldc)
{
    call(entries::gemm<T>, *transa, *transb, int64_t{*m}, int64_t{*n}, int64_t{*k}, alpha, a, int64_t{*lda},
         b, int64_t{*ldb}, beta, c, int64_t{*ldc});
}

template <class T>
void gemv(const char *trans, small m, small n, const T *alpha, const T *a, small lda, const T *x,
          small incx, const T *beta, T *y, small incy)
{
    call(entries::gemv<T>, *trans, int64_t{*m}, int64_t{*n}, alpha, a, int64_t{*lda}, x, int64_t{*incx},
         beta, y, int64_t{*incy});
}

template <class T>
void trsm(const char *side, const char *uplo, const char *trans, const char *diag, small m, small n,
          const T *alpha, const T *a, small lda, T *b, small ldb)
{
    call(entries::trsm<T>, *side, *uplo, *trans, *diag, int64_t{*m}, int64_t{*n}, alpha, a, int64_t{*lda},
         b, int64_t{*ldb});
}

template <class T>
void axpy(small n, const T *alpha, const T *x, small incx, T *y, small incy)
{
    call(entries::axpy<T>, int64_t{*n}, alpha, x, int64_t{*incx}, y, int64_t{*incy});
}

template <class T>
void copy(small n, const T *x, small incx, T *y, small incy)
{
    call(entries::copy<T>, int64_t{*n}, x, int64_t{*incx}, y, int64_t{*incy});
}

template <class T>
void swap(small n, T *x, small incx, T *y, small incy)
{
    call(entries::swap<T>, int64_t{*n}, x, int64_t{*incx}, y, int64_t{*incy});
}

template <class T>
void scal(small n, const T *alpha, T *x, small incx)
{
    call(entries::scal<T>, int64_t{*n}, alpha, x, int64_t{*incx});
}

template <class T>
void larfg(small n, T *alpha, T *x, small incx, T *tau)
{
    call(entries::larfg<T>, int64_t{*n}, alpha, x, int64_t{*incx}, tau);
}

template <auto Entry, class T>
void generate_q(small m, small n, small k, T *a, small lda, const T *tau, T *work, small lwork,
                int32_t *info)
{
    int64_t wide_info = 0;
    call(Entry, int64_t{*m}, int64_t{*n}, int64_t{*k}, a, int64_t{*lda}, tau, work, int64_t{*lwork},
         &wide_info);
    *info = static_cast<int32_t>(wide_info);
}

} // namespace
} // namespace xkl::core

using xkl::core::complex16;
using xkl::core::complex8;
using small = const int32_t *;

// The hidden lengths at the ends of the lists are not read.
#define XKL_MUMPS_BLAS(letter, T)                                                                          \
    void xkl_mumps_##letter##gemm(const char *transa, const char *transb, small m, small n, small k,       \
                                  const T *alpha, const T *a, small lda, const T *b, small ldb,            \
                                  const T *beta, T *c, small ldc)                                          \
    {                                                                                                      \
        xkl::core::gemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);                     \
    }                                                                                                      \
    void xkl_mumps_##letter##gemv(const char *trans, small m, small n, const T *alpha, const T *a,         \
                                  small lda, const T *x, small incx, const T *beta, T *y, small incy)      \
    {                                                                                                      \
        xkl::core::gemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);                               \
    }                                                                                                      \
    void xkl_mumps_##letter##trsm(const char *side, const char *uplo, const char *trans, const char *diag, \
                                  small m, small n, const T *alpha, const T *a, small lda, T *b,           \
                                  small ldb)                                                               \
    {                                                                                                      \
        xkl::core::trsm(side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb);                             \
    }                                                                                                      \
    void xkl_mumps_##letter##axpy(small n, const T *alpha, const T *x, small incx, T *y, small incy)       \
    {                                                                                                      \
        xkl::core::axpy(n, alpha, x, incx, y, incy);                                                       \
    }                                                                                                      \
    void xkl_mumps_##letter##copy(small n, const T *x, small incx, T *y, small incy)                       \
    {                                                                                                      \
        xkl::core::copy(n, x, incx, y, incy);                                                              \
    }                                                                                                      \
    void xkl_mumps_##letter##swap(small n, T *x, small incx, T *y, small incy)                             \
    {                                                                                                      \
        xkl::core::swap(n, x, incx, y, incy);                                                              \
    }                                                                                                      \
    void xkl_mumps_##letter##scal(small n, const T *alpha, T *x, small incx)                               \
    {                                                                                                      \
        xkl::core::scal(n, alpha, x, incx);                                                                \
    }                                                                                                      \
    void xkl_mumps_##letter##larfg(small n, T *alpha, T *x, small incx, T *tau)                            \
    {                                                                                                      \
        xkl::core::larfg(n, alpha, x, incx, tau);                                                          \
    }

extern "C" {
XKL_MUMPS_BLAS(s, float)
XKL_MUMPS_BLAS(d, double)
XKL_MUMPS_BLAS(c, complex8)
XKL_MUMPS_BLAS(z, complex16)

float xkl_mumps_snrm2(small n, const float *x, small incx)
{
    return xkl::core::call(xkl_blas_snrm2, int64_t{*n}, x, int64_t{*incx});
}
double xkl_mumps_dnrm2(small n, const double *x, small incx)
{
    return xkl::core::call(xkl_blas_dnrm2, int64_t{*n}, x, int64_t{*incx});
}
float xkl_mumps_scnrm2(small n, const complex8 *x, small incx)
{
    return xkl::core::call(xkl_blas_scnrm2, int64_t{*n}, x, int64_t{*incx});
}
double xkl_mumps_dznrm2(small n, const complex16 *x, small incx)
{
    return xkl::core::call(xkl_blas_dznrm2, int64_t{*n}, x, int64_t{*incx});
}
int32_t xkl_mumps_isamax(small n, const float *x, small incx)
{
    return static_cast<int32_t>(xkl::core::call(xkl_blas_isamax, int64_t{*n}, x, int64_t{*incx}));
}
int32_t xkl_mumps_idamax(small n, const double *x, small incx)
{
    return static_cast<int32_t>(xkl::core::call(xkl_blas_idamax, int64_t{*n}, x, int64_t{*incx}));
}
void xkl_mumps_sorgqr(small m, small n, small k, float *a, small lda, const float *tau, float *work,
                      small lwork, int32_t *info)
{
    xkl::core::generate_q<xkl_lapack_sorgqr>(m, n, k, a, lda, tau, work, lwork, info);
}
void xkl_mumps_dorgqr(small m, small n, small k, double *a, small lda, const double *tau, double *work,
                      small lwork, int32_t *info)
{
    xkl::core::generate_q<xkl_lapack_dorgqr>(m, n, k, a, lda, tau, work, lwork, info);
}
void xkl_mumps_cungqr(small m, small n, small k, complex8 *a, small lda, const complex8 *tau,
                      complex8 *work, small lwork, int32_t *info)
{
    xkl::core::generate_q<xkl_lapack_cungqr>(m, n, k, a, lda, tau, work, lwork, info);
}
void xkl_mumps_zungqr(small m, small n, small k, complex16 *a, small lda, const complex16 *tau,
                      complex16 *work, small lwork, int32_t *info)
{
    xkl::core::generate_q<xkl_lapack_zungqr>(m, n, k, a, lda, tau, work, lwork, info);
}

// The width of a block of columns, the one thing asked for.
int32_t xkl_mumps_ilaenv(small, const char *, const char *, small, small, small, small)
{
    return 32;
}
}
