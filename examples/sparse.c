/* Solves a sparse system from a Matrix Market file directly, and tells the residual and the time of each phase.
 *
 *     cc sparse.c $(pkg-config --cflags --libs xkl) && ./a.out data/utm300.mtx
 */
#include <xkl_solvers.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

struct element {
    int64_t row, column;
    double value;
};

struct system {
    int64_t n, count, *ia, *ja;
    double *a;
    int symmetric;
};

static int in_rows(const void *left, const void *right)
{
    const struct element *x = left, *y = right;
    if (x->row != y->row)
        return x->row < y->row ? -1 : 1;
    return x->column < y->column ? -1 : x->column > y->column;
}

/* Compressed rows with indices from 1; of a symmetric matrix the upper triangle, where the file has the lower. */
static int read_system(const char *path, struct system *s)
{
    char line[256];
    FILE *file = fopen(path, "r");
    long long n, columns, count, row, column;
    if (!file || !fgets(line, sizeof line, file))
        return 0;
    s->symmetric = strstr(line, " symmetric") != NULL;
    while (fgets(line, sizeof line, file) && line[0] == '%') {
    }
    if (sscanf(line, "%lld %lld %lld", &n, &columns, &count) != 3 || n != columns)
        return 0;
    struct element *elements = malloc((size_t)count * sizeof *elements);
    s->n = n;
    s->count = count;
    for (int64_t k = 0; k < count; ++k) {
        if (fscanf(file, "%lld %lld %lf", &row, &column, &elements[k].value) != 3)
            return 0;
        elements[k].row = s->symmetric ? column : row;
        elements[k].column = s->symmetric ? row : column;
    }
    fclose(file);
    qsort(elements, (size_t)count, sizeof *elements, in_rows);
    s->ia = calloc((size_t)n + 1, sizeof *s->ia);
    s->ja = malloc((size_t)count * sizeof *s->ja);
    s->a = malloc((size_t)count * sizeof *s->a);
    for (int64_t k = 0; k < count; ++k) {
        ++s->ia[elements[k].row];
        s->ja[k] = elements[k].column;
        s->a[k] = elements[k].value;
    }
    s->ia[0] = 1;
    for (int64_t i = 0; i < n; ++i)
        s->ia[i + 1] += s->ia[i];
    free(elements);
    return 1;
}

/* y := A x */
static void multiply(const struct system *s, const double *x, double *y)
{
    memset(y, 0, (size_t)s->n * sizeof *y);
    for (int64_t i = 0; i < s->n; ++i)
        for (int64_t k = s->ia[i] - 1; k < s->ia[i + 1] - 1; ++k) {
            const int64_t j = s->ja[k] - 1;
            y[i] += s->a[k] * x[j];
            if (s->symmetric && j != i)
                y[j] += s->a[k] * x[i];
        }
}

static double norm(const double *x, int64_t n)
{
    double sum = 0;
    for (int64_t i = 0; i < n; ++i)
        sum += x[i] * x[i];
    return sqrt(sum);
}

static double seconds(void)
{
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (double)now.tv_sec + 1e-9 * (double)now.tv_nsec;
}

int main(int argc, char **argv)
{
    static const struct {
        int64_t number;
        const char *name;
    } phases[] = {{XKL_PARDISO_ANALYSIS, "analysis"},
                  {XKL_PARDISO_FACTORIZATION, "factorization"},
                  {XKL_PARDISO_SOLVE, "solution"}};
    struct system s;
    if (argc < 2 || !read_system(argv[1], &s)) {
        fprintf(stderr, "usage: sparse FILE.mtx (a real square matrix by its elements)\n");
        return 2;
    }

    /* The right-hand side belongs to a solution of ones. */
    double *ones = malloc((size_t)s.n * sizeof *ones), *b = malloc((size_t)s.n * sizeof *b);
    double *x = malloc((size_t)s.n * sizeof *x), *r = malloc((size_t)s.n * sizeof *r);
    for (int64_t i = 0; i < s.n; ++i)
        ones[i] = 1.0;
    multiply(&s, ones, b);
    printf("%s: %lld unknowns, %lld elements, %s\n", argv[1], (long long)s.n, (long long)s.count,
           s.symmetric ? "symmetric" : "unsymmetric");

    void *pt[64];
    int64_t iparm[64], perm = 0, error = 0;
    const int64_t one = 1, silent = 0, all = XKL_PARDISO_RELEASE_EVERYTHING;
    const int64_t type = s.symmetric ? XKL_PARDISO_REAL_INDEFINITE : XKL_PARDISO_REAL_UNSYMMETRIC;
    pardisoinit(pt, &type, iparm);
    iparm[7] = 2;  /* up to two steps of refinement */
    iparm[26] = 1; /* check the matrix */
    for (int i = 0; i < 3; ++i) {
        const double begin = seconds();
        pardiso(pt, &one, &one, &type, &phases[i].number, &s.n, s.a, s.ia, s.ja, &perm, &one, iparm,
                &silent, b, x, &error);
        if (error != 0) {
            fprintf(stderr, "%s: error %lld\n", phases[i].name, (long long)error);
            return 1;
        }
        printf("  %-14s %9.3f ms\n", phases[i].name, 1e3 * (seconds() - begin));
    }
    printf("  elements of the factors: %lld; steps of refinement: %lld\n", (long long)iparm[17],
           (long long)iparm[6]);
    if (s.symmetric)
        printf("  eigenvalues: %lld positive, %lld negative\n", (long long)iparm[21], (long long)iparm[22]);

    multiply(&s, x, r);
    double farthest = 0;
    for (int64_t i = 0; i < s.n; ++i) {
        r[i] = b[i] - r[i];
        farthest = fmax(farthest, fabs(x[i] - 1.0));
    }
    const double residual = norm(r, s.n) / norm(b, s.n);
    printf("  residual: %.1e of the right-hand side; farthest from the true solution: %.1e\n", residual,
           farthest);
    pardiso(pt, &one, &one, &type, &all, &s.n, NULL, NULL, NULL, NULL, &one, iparm, &silent, NULL, NULL,
            &error);
    free(ones), free(b), free(x), free(r), free(s.ia), free(s.ja), free(s.a);
    return residual < 1e-12 && farthest < 1e-6 ? 0 : 1;
}
