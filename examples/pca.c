/* Principal components of Fisher's iris measurements, through the C interface in row-major layout.
 *
 *     cc pca.c $(pkg-config --cflags --libs xkl) && ./a.out data/iris.csv
 */
#include <xkl.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { flowers = 150, traits = 4, iterations = 100 };

static int read_measurements(const char *path, double x[flowers][traits])
{
    FILE *file = fopen(path, "r");
    if (!file || fscanf(file, "%*[^\n]") == EOF) /* the line of column names */
        return 0;
    int rows = 0;
    while (rows < flowers && fscanf(file, "%lf,%lf,%lf,%lf,%*s", &x[rows][0], &x[rows][1], &x[rows][2],
                                    &x[rows][3]) == traits)
        ++rows;
    fclose(file);
    return rows == flowers;
}

/* Takes the mean of each column away: x := x - ones mean'. */
static void center(double x[flowers][traits])
{
    double ones[flowers], mean[traits];
    for (int i = 0; i < flowers; ++i)
        ones[i] = 1.0;
    cblas_dgemv(CblasRowMajor, CblasTrans, flowers, traits, 1.0 / flowers, *x, traits, ones, 1, 0.0, mean,
                1);
    cblas_dger(CblasRowMajor, flowers, traits, -1.0, ones, 1, mean, 1, *x, traits);
}

/* Makes the columns of z orthonormal (modified Gram-Schmidt); length[j] is what was left of column j. */
static void orthonormalize(double z[traits][traits], double length[traits])
{
    for (int j = 0; j < traits; ++j) {
        for (int k = 0; k < j; ++k) {
            const double shared = cblas_ddot(traits, &z[0][k], traits, &z[0][j], traits);
            cblas_daxpy(traits, -shared, &z[0][k], traits, &z[0][j], traits);
        }
        length[j] = cblas_dnrm2(traits, &z[0][j], traits);
        cblas_dscal(traits, 1.0 / length[j], &z[0][j], traits);
    }
}

/* Orthogonal iteration: the columns of q turn into the eigenvectors, the lengths into the eigenvalues. */
static void eigenpairs(const double c[traits][traits], double q[traits][traits], double value[traits])
{
    double z[traits][traits];
    for (int i = 0; i < traits; ++i)
        for (int j = 0; j < traits; ++j)
            q[i][j] = i == j;
    for (int i = 0; i < iterations; ++i) {
        cblas_dsymm(CblasRowMajor, CblasLeft, CblasUpper, traits, traits, 1.0, *c, traits, *q, traits, 0.0,
                    *z, traits);
        cblas_dcopy(traits * traits, *z, 1, *q, 1);
        orthonormalize(q, value);
    }
}

static int wrong = 0;

/* Agreement is asked for in every decimal that was published. */
static void compare(const char *what, double computed, double published, int decimals)
{
    char ours[32], theirs[32];
    snprintf(ours, sizeof ours, "%.*f", decimals, computed);
    snprintf(theirs, sizeof theirs, "%.*f", decimals, published);
    const int agrees = strcmp(ours, theirs) == 0;
    printf("  %-28s %10s %10s  %s\n", what, ours, theirs, agrees ? "agrees" : "DIFFERS");
    wrong += !agrees;
}

/* The flowers along the components: a traced call, and one with a bad argument. */
static void project(double x[flowers][traits], double component[traits][traits], double published_variance)
{
    /* One switch makes the library tell what it was asked to do, and how long that took. The C call was
     * row-major, so the line shows the column-major product that stands for it: operands exchanged. */
    double scores[flowers][traits];
    printf("\nThe flowers in the new coordinates, with tracing on:\n");
    fflush(stdout);
    XKL_Verbose(1);
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, flowers, traits, traits, 1.0, *x, traits,
                *component, traits, 0.0, *scores, traits);
    XKL_Verbose(0);
    const double variance =
        cblas_ddot(flowers, &scores[0][0], traits, &scores[0][0], traits) / (flowers - 1);
    compare("variance of the first", variance, published_variance, 4);

    /* A row of x has 4 elements; a leading dimension of 3 would mix the rows up. */
    printf("\nThe same product with lda = 3, a bad argument (place 9 in the C list):\n");
    fflush(stdout);
    const double kept = scores[0][0];
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, flowers, traits, traits, 1.0, *x, 3, *component,
                traits, 0.0, *scores, traits);
    if (scores[0][0] != kept)
        ++wrong;
    printf("  ... and the result is %s.\n", scores[0][0] == kept ? "as it was" : "CHANGED");
}

int main(int argc, char **argv)
{
    /* As published for this data set: the eigenvalues of the covariance matrix, their shares in the total
     * variance in percent, and the first component. */
    static const double published_value[] = {4.2282, 0.2427, 0.0782, 0.0238};
    static const double published_share[] = {92.46, 5.31, 1.71, 0.52};
    static const double published_first[] = {0.3614, -0.0845, 0.8567, 0.3583};
    static const char *const trait[] = {"sepal length", "sepal width", "petal length", "petal width"};

    double x[flowers][traits], covariance[traits][traits], component[traits][traits], value[traits];
    if (argc != 2 || !read_measurements(argv[1], x)) {
        fprintf(stderr, "usage: %s data/iris.csv\n", argv[0]);
        return 2;
    }
    center(x);
    cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, traits, flowers, 1.0 / (flowers - 1), *x, traits,
                0.0, *covariance, traits);
    eigenpairs((const double(*)[traits])covariance, component, value);

    double total = 0.0;
    for (int j = 0; j < traits; ++j)
        total += value[j];
    const double sign = component[0][0] < 0 ? -1.0 : 1.0; /* a component's direction is free */
    char what[40];
    printf("Principal components of %d irises\n  %-28s %10s %10s\n", flowers, "", "computed", "published");
    for (int j = 0; j < traits; ++j) {
        snprintf(what, sizeof what, "eigenvalue %d", j + 1);
        compare(what, value[j], published_value[j], 4);
    }
    for (int j = 0; j < traits; ++j) {
        snprintf(what, sizeof what, "percent of the variance %d", j + 1);
        compare(what, 100.0 * value[j] / total, published_share[j], 2);
    }
    for (int j = 0; j < traits; ++j) {
        snprintf(what, sizeof what, "component 1, %s", trait[j]);
        compare(what, sign * component[j][0], published_first[j], 4);
    }
    project(x, component, published_value[0]);
    return wrong ? EXIT_FAILURE : EXIT_SUCCESS;
}
