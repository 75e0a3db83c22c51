/* A program as others write it: the usual headers, and the usual names of types, constants and enumerations.
   It ends with 0 when its equations are solved. */
#include <cblas.h>
#include <lapacke.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

/* Row-major: A*x - b of a system that was solved in place. */
static double residual(lapack_int n)
{
    double *a = (double *)LAPACKE_malloc((size_t)(n * n) * sizeof(double));
    double *factors = (double *)LAPACKE_malloc((size_t)(n * n) * sizeof(double));
    double *b = (double *)LAPACKE_malloc((size_t)n * sizeof(double));
    double *x = (double *)LAPACKE_malloc((size_t)n * sizeof(double));
    lapack_int *ipiv = (lapack_int *)LAPACKE_malloc((size_t)n * sizeof(lapack_int));
    lapack_int i, info;
    double largest;
    for (i = 0; i < n * n; ++i)
        factors[i] = a[i] = (double)(i * i % 17) - (i % (n + 1) == 0 ? 100.0 : 8.0);
    for (i = 0; i < n; ++i)
        x[i] = b[i] = (double)i;
    info = LAPACKE_dgesv(LAPACK_ROW_MAJOR, n, 1, factors, n, ipiv, x, 1);
    cblas_dgemv(CblasRowMajor, CblasNoTrans, n, n, 1.0, a, n, x, 1, -1.0, b, 1);
    largest = info == 0 ? fabs(b[cblas_idamax(n, b, 1)]) : 1;
    LAPACKE_free(a);
    LAPACKE_free(factors);
    LAPACKE_free(b);
    LAPACKE_free(x);
    LAPACKE_free(ipiv);
    return largest;
}

static lapack_logical is_left(const double *re, const double *im)
{
    return *re < 0 && *im == 0;
}

int main(void)
{
    const enum CBLAS_ORDER order = CblasRowMajor;
    const enum CBLAS_UPLO uplo = CblasUpper;
    double a[] = {-1, 2, 0, 3}, vs[4], wr[2], wi[2], y[] = {0, 0}, x[] = {1, 1};
    lapack_complex_double z[] = {lapack_make_complex_double(2, 0), lapack_make_complex_double(0, -1),
                                 lapack_make_complex_double(0, 1), lapack_make_complex_double(2, 0)};
    double w[2];
    lapack_int selected = -1, info;

    if (LAPACKE_zhe_nancheck(LAPACK_ROW_MAJOR, 'U', 2, z, 2))
        return 4;
    LAPACKE_set_nancheck(0);
    info = LAPACKE_dgees(LAPACK_COL_MAJOR, 'V', 'S', is_left, 2, a, 2, &selected, wr, wi, vs, 2);
    if (info != 0 || selected != 1 || wr[0] != -1)
        return 1;
    info = LAPACKE_zheev(LAPACK_ROW_MAJOR, 'V', 'U', 2, z, 2, w);
    if (info != 0 || fabs(w[0] - 1) > 1e-15 || fabs(w[1] - 3) > 1e-15)
        return 2;
    if (fabs(lapack_complex_double_real(z[0]) * lapack_complex_double_real(z[0]) +
             lapack_complex_double_imag(z[0]) * lapack_complex_double_imag(z[0]) - 0.5) > 1e-15)
        return 3;
    cblas_dsymv(order, uplo, 2, 1.0, a, 2, x, 1, 0.0, y, 1);
    printf("residual %g, info of a bad call %" LAPACK_IFMT "\n", residual(40),
           LAPACKE_dgetrf(LAPACK_ROW_MAJOR, 2, 2, a, 1, NULL));
    return !(residual(40) < 1e-11);
}
