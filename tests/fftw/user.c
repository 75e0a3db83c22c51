/* A C program as FFTW's users write them, after the uses that its manual teaches: complex transforms of one
 * to three dimensions, padded real ones in place, many at once, guru plans, real-to-real plans, new-array
 * execution, wisdom and threads. Ends with 0 when all results are right. Compiled with PAIRS it does without
 * <complex.h>. */
#ifndef PAIRS
#include <complex.h>
#endif
#include <fftw3.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

static const double two_pi = 6.283185307179586476925286766559;
static int failures = 0;

static void check(const char *what, double error)
{
    if (!(error < 1e-11)) {
        printf("%s: wrong by %g\n", what, error);
        ++failures;
    }
}

static double re(fftw_complex *x, int i)
{
    return ((double *)(x + i))[0];
}

static double im(fftw_complex *x, int i)
{
    return ((double *)(x + i))[1];
}

static void put(fftw_complex *x, int i, double real, double imaginary)
{
#ifdef PAIRS
    x[i][0] = real;
    x[i][1] = imaginary;
#else
    x[i] = real + I * imaginary;
#endif
}

static double distance(fftw_complex *x, int i, double real, double imaginary)
{
    return fabs(re(x, i) - real) + fabs(im(x, i) - imaginary);
}

/* A wave of frequency f has one peak, of height n, at f. */
static void one_dimension(void)
{
    enum { n = 120, frequency = 7 };
    fftw_complex *in = (fftw_complex *)fftw_malloc(sizeof(fftw_complex) * n);
    fftw_complex *out = (fftw_complex *)fftw_malloc(sizeof(fftw_complex) * n);
    fftw_plan p = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_ESTIMATE);
    fftw_plan back = fftw_plan_dft_1d(n, out, out, FFTW_BACKWARD, FFTW_MEASURE | FFTW_UNALIGNED);
    double error = 0;
    int i;
    for (i = 0; i < n; ++i)
        put(in, i, cos(two_pi * frequency * i / n), sin(two_pi * frequency * i / n));
    fftw_execute(p);
    for (i = 0; i < n; ++i)
        error = fmax(error, distance(out, i, i == frequency ? n : 0, 0));
    check("1-D forward", error);
    fftw_execute(back);
    for (error = 0, i = 0; i < n; ++i)
        error = fmax(error, distance(out, i, n * re(in, i), n * im(in, i)));
    check("1-D backward", error);
    fftw_destroy_plan(p);
    fftw_destroy_plan(back);
    fftw_free(in);
    fftw_free(out);
}

static void two_and_three_dimensions(void)
{
    enum { n0 = 6, n1 = 10, n2 = 4 };
    fftw_complex *box = fftw_alloc_complex(n0 * n1 * n2);
    const int n[] = {n0, n1};
    fftw_plan plane = fftw_plan_dft(2, n, box, box, FFTW_FORWARD, FFTW_ESTIMATE);
    fftw_plan space = fftw_plan_dft_3d(n0, n1, n2, box, box, FFTW_BACKWARD, FFTW_ESTIMATE);
    double error = 0;
    int i, j, k;
    for (i = 0; i < n0; ++i)
        for (j = 0; j < n1; ++j) {
            const double angle = two_pi * (2.0 * i / n0 + 3.0 * j / n1);
            put(box, i * n1 + j, cos(angle), sin(angle));
        }
    fftw_execute(plane);
    for (i = 0; i < n0 * n1; ++i)
        error = fmax(error, distance(box, i, i == 2 * n1 + 3 ? n0 * n1 : 0, 0));
    check("2-D", error);
    for (i = 0; i < n0; ++i)
        for (j = 0; j < n1; ++j)
            for (k = 0; k < n2; ++k) {
                const double angle = -two_pi * (1.0 * i / n0 + 4.0 * j / n1 + 2.0 * k / n2);
                put(box, (i * n1 + j) * n2 + k, cos(angle), sin(angle));
            }
    fftw_execute(space);
    for (error = 0, i = 0; i < n0 * n1 * n2; ++i)
        error = fmax(error, distance(box, i, i == (1 * n1 + 4) * n2 + 2 ? n0 * n1 * n2 : 0, 0));
    check("3-D", error);
    fftw_destroy_plan(plane);
    fftw_destroy_plan(space);
    fftw_free(box);
}

/* Real data in place: rows padded to 2 * (n1/2 + 1). There and back is n0 * n1 times the data. */
static void padded_in_place(void)
{
    enum { n0 = 5, n1 = 9, row = 2 * (n1 / 2 + 1) };
    double *data = fftw_alloc_real(n0 * row);
    fftw_complex *spectrum = (fftw_complex *)data;
    fftw_plan there = fftw_plan_dft_r2c_2d(n0, n1, data, spectrum, FFTW_ESTIMATE);
    fftw_plan back = fftw_plan_dft_c2r_2d(n0, n1, spectrum, data, FFTW_ESTIMATE);
    double error = 0, sum = 0;
    int i, j;
    for (i = 0; i < n0; ++i)
        for (j = 0; j < n1; ++j)
            sum += data[i * row + j] = cos(i + 0.5 * j * j);
    fftw_execute(there);
    check("r2c in place: the sum", distance(spectrum, 0, sum, 0));
    fftw_execute(back);
    for (i = 0; i < n0; ++i)
        for (j = 0; j < n1; ++j)
            error = fmax(error, fabs(data[i * row + j] - n0 * n1 * cos(i + 0.5 * j * j)));
    check("r2c and c2r in place", error);
    fftw_destroy_plan(there);
    fftw_destroy_plan(back);
    fftw_free(data);
}

/* The columns of a matrix: stride n1, distance 1. Each column is a constant, its spectrum a first element. The
 * real ones once more in place, where the spectra overlap other columns' data. */
static void many_columns(void)
{
    enum { n0 = 8, n1 = 3 };
    const int n[] = {n0};
    fftw_complex *matrix = fftw_alloc_complex(n0 * n1);
    double *reals = fftw_alloc_real(n0 * n1);
    fftw_complex *halves = fftw_alloc_complex((n0 / 2 + 1) * n1);
    double *same = (double *)halves;
    fftw_plan p =
        fftw_plan_many_dft(1, n, n1, matrix, NULL, n1, 1, matrix, NULL, n1, 1, FFTW_FORWARD, FFTW_ESTIMATE);
    fftw_plan r = fftw_plan_many_dft_r2c(1, n, n1, reals, n, n1, 1, halves, NULL, n1, 1, FFTW_ESTIMATE);
    fftw_plan s = fftw_plan_many_dft_r2c(1, n, n1, same, NULL, n1, 1, halves, NULL, n1, 1, FFTW_ESTIMATE);
    double error = 0;
    int i;
    for (i = 0; i < n0 * n1; ++i) {
        put(matrix, i, i % n1 + 1, -(i % n1));
        reals[i] = i % n1 + 1;
    }
    fftw_execute(p);
    fftw_execute(r);
    for (i = 0; i < n0 * n1; ++i)
        error = fmax(error, distance(matrix, i, i < n1 ? n0 * (i + 1) : 0, i < n1 ? -n0 * i : 0));
    for (i = 0; i < (n0 / 2 + 1) * n1; ++i)
        error = fmax(error, distance(halves, i, i < n1 ? n0 * (i + 1) : 0, 0));
    check("many", error);
    for (i = 0; i < n0 * n1; ++i)
        same[i] = i % n1 + 1;
    fftw_execute(s);
    for (error = 0, i = 0; i < (n0 / 2 + 1) * n1; ++i)
        error = fmax(error, distance(halves, i, i < n1 ? n0 * (i + 1) : 0, 0));
    check("many in place", error);
    fftw_destroy_plan(s);
    fftw_destroy_plan(p);
    fftw_destroy_plan(r);
    fftw_free(matrix);
    fftw_free(reals);
    fftw_free(halves);
}

/* A transform of split arrays, backward by exchanging the parts, then of interleaved ones. */
static void guru(void)
{
    enum { n = 16, count = 2 };
    double parts[4][n * count], error = 0;
    fftw_iodim dims[1], howmany[1];
    fftw_plan forward, backward;
    int i;
    dims[0].n = n;
    dims[0].is = dims[0].os = count;
    howmany[0].n = count;
    howmany[0].is = howmany[0].os = 1;
    forward = fftw_plan_guru_split_dft(1, dims, 1, howmany, parts[0], parts[1], parts[2], parts[3],
                                       FFTW_ESTIMATE);
    backward = fftw_plan_guru_split_dft(1, dims, 1, howmany, parts[3], parts[2], parts[3], parts[2],
                                        FFTW_ESTIMATE);
    for (i = 0; i < n * count; ++i) {
        parts[0][i] = sin(i * i);
        parts[1][i] = cos(3 * i);
    }
    fftw_execute(forward);
    fftw_execute_split_dft(backward, parts[3], parts[2], parts[3], parts[2]);
    for (i = 0; i < n * count; ++i)
        error = fmax(error, fabs(parts[2][i] - n * parts[0][i]) + fabs(parts[3][i] - n * parts[1][i]));
    check("guru, split", error);
    fftw_destroy_plan(forward);
    fftw_destroy_plan(backward);
}

/* Pairs of kinds that undo each other, up to a factor. */
static void real_to_real(void)
{
    enum { n0 = 7, n1 = 6 };
    static const struct {
        fftw_r2r_kind there, back;
        int factor0, factor1;
    } pairs[] = {{FFTW_R2HC, FFTW_HC2R, n0, n1},
                 {FFTW_DHT, FFTW_DHT, n0, n1},
                 {FFTW_REDFT00, FFTW_REDFT00, 2 * (n0 - 1), 2 * (n1 - 1)},
                 {FFTW_REDFT10, FFTW_REDFT01, 2 * n0, 2 * n1},
                 {FFTW_REDFT11, FFTW_REDFT11, 2 * n0, 2 * n1},
                 {FFTW_RODFT00, FFTW_RODFT00, 2 * (n0 + 1), 2 * (n1 + 1)},
                 {FFTW_RODFT10, FFTW_RODFT01, 2 * n0, 2 * n1},
                 {FFTW_RODFT11, FFTW_RODFT11, 2 * n0, 2 * n1}};
    double in[n0 * n1], out[n0 * n1];
    unsigned c;
    for (c = 0; c < sizeof pairs / sizeof pairs[0]; ++c) {
        fftw_plan there = fftw_plan_r2r_2d(n0, n1, in, out, pairs[c].there, pairs[c].there, FFTW_ESTIMATE);
        fftw_plan back = fftw_plan_r2r_2d(n0, n1, out, out, pairs[c].back, pairs[c].back, FFTW_ESTIMATE);
        double error = 0;
        int i;
        for (i = 0; i < n0 * n1; ++i)
            in[i] = sin(1 + i * i);
        fftw_execute(there);
        fftw_execute(back);
        for (i = 0; i < n0 * n1; ++i)
            error = fmax(error, fabs(out[i] - pairs[c].factor0 * pairs[c].factor1 * in[i]));
        check("r2r there and back", error);
        fftw_destroy_plan(there);
        fftw_destroy_plan(back);
    }
}

/* One plan for many arrays. */
static void new_arrays(void)
{
    enum { n = 32, arrays = 5 };
    fftw_complex *first = fftw_alloc_complex(n), *other[arrays];
    fftw_plan p = fftw_plan_dft_1d(n, first, first, FFTW_FORWARD, FFTW_ESTIMATE | FFTW_UNALIGNED);
    double error = 0;
    int a, i;
    for (a = 0; a < arrays; ++a) {
        other[a] = fftw_alloc_complex(n + 1);
        for (i = 0; i < n; ++i)
            put(other[a], i + 1, cos(two_pi * a * i / n), sin(two_pi * a * i / n));
        fftw_execute_dft(p, other[a] + 1, other[a] + 1);
        for (i = 0; i < n; ++i)
            error = fmax(error, distance(other[a] + 1, i, i == a ? n : 0, 0));
        fftw_free(other[a]);
    }
    check("new arrays", error);
    fftw_destroy_plan(p);
    fftw_free(first);
}

/* Single precision, and what a careful program does around its plans. */
static void around(void)
{
    enum { n = 64 };
    float *x = fftwf_alloc_real(n);
    fftwf_complex *y = fftwf_alloc_complex(n / 2 + 1);
    fftwf_plan p = fftwf_plan_dft_r2c_1d(n, x, y, FFTW_PATIENT);
    char *wisdom = fftw_export_wisdom_to_string();
    int i;
    for (i = 0; i < n; ++i)
        x[i] = 1;
    fftwf_execute(p);
    check("single precision", fabs(((float *)y)[0] - n) > 1e-4);
    fftw_import_wisdom_from_string(wisdom ? wisdom : "");
    free(wisdom);
    fftw_set_timelimit(FFTW_NO_TIMELIMIT);
    if (fftw_alignment_of((double *)y) != fftwf_alignment_of((float *)y))
        check("alignment", 1);
    fftwf_destroy_plan(p);
    fftwf_free(x);
    fftwf_free(y);
    fftw_forget_wisdom();
    fftw_cleanup();
    fftwf_cleanup();
}

int main(void)
{
    one_dimension();
    two_and_three_dimensions();
    padded_in_place();
    many_columns();
    guru();
    real_to_real();
    new_arrays();
    around();
    printf("%s, %d failures\n", fftw_version, failures);
    return failures != 0;
}
