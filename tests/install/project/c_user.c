/* A product and a complex dot product through both C conventions; ends with 0 when they are right. */
#include <xkl.h>

#include <stdio.h>

int main(void)
{
    const double a[] = {1, 2, 3, 4}, b[] = {5, 6, 7, 8};
    const double alpha = 1, beta = 0;
    const int64_t n = 2;
    double by_row[4], by_column[4];
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, n, n, n, alpha, a, n, b, n, beta, by_row, n);
    dgemm("N", "N", &n, &n, &n, &alpha, b, &n, a, &n, &beta, by_column, &n);

    const XKL_Complex16 x[] = {{1, 2}, {0, 1}}, y[] = {{3, 0}, {1, 1}};
    XKL_Complex16 dot;
    cblas_zdotc_sub(n, x, 1, y, 1, &dot);

    printf("C: %g %g %g %g, %g%+gi\n", by_row[0], by_row[1], by_row[2], by_row[3], dot.real, dot.imag);
    for (int i = 0; i < 4; ++i)
        if (by_row[i] != by_column[i])
            return 1;
    return !(by_row[0] == 19 && by_row[1] == 22 && by_row[2] == 43 && by_row[3] == 50 && dot.real == 4 &&
             dot.imag == -7);
}
