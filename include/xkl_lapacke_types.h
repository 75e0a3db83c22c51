/* xkl_lapacke_types.h: types, constants and controls of LAPACKE (xkl_lapacke.h), under the names that every
 * LAPACKE uses.
 *
 * Complex elements are `float _Complex` and `double _Complex`, unless the program says otherwise before the
 * first header: LAPACK_COMPLEX_CPP for std::complex, LAPACK_COMPLEX_STRUCTURE for a structure of real and
 * imag, or LAPACK_COMPLEX_CUSTOM with lapack_complex_float and lapack_complex_double of its own. */
#ifndef XKL_LAPACKE_TYPES_H
#define XKL_LAPACKE_TYPES_H

#include <inttypes.h>
#include <stdint.h>
#include <stdlib.h>

#ifndef lapack_int
#define lapack_int int64_t
#endif
#ifndef lapack_logical
#define lapack_logical lapack_int
#endif
/* How printf writes a lapack_int, behind the %. */
#ifndef LAPACK_IFMT
#define LAPACK_IFMT PRId64
#endif

#ifndef LAPACK_COMPLEX_CUSTOM
#if defined(LAPACK_COMPLEX_STRUCTURE)
typedef struct {
    float real, imag;
} xkl_lapack_complex_float;
typedef struct {
    double real, imag;
} xkl_lapack_complex_double;
#define lapack_complex_float xkl_lapack_complex_float
#define lapack_complex_double xkl_lapack_complex_double
#define lapack_complex_float_real(z) ((z).real)
#define lapack_complex_float_imag(z) ((z).imag)
#define lapack_complex_double_real(z) ((z).real)
#define lapack_complex_double_imag(z) ((z).imag)
#elif defined(LAPACK_COMPLEX_CPP) && defined(__cplusplus)
#include <complex>
#define lapack_complex_float std::complex<float>
#define lapack_complex_double std::complex<double>
#define lapack_complex_float_real(z) ((z).real())
#define lapack_complex_float_imag(z) ((z).imag())
#define lapack_complex_double_real(z) ((z).real())
#define lapack_complex_double_imag(z) ((z).imag())
#else
#ifndef __cplusplus
#include <complex.h>
#endif
__extension__ typedef float _Complex xkl_lapack_complex_float;
__extension__ typedef double _Complex xkl_lapack_complex_double;
#define lapack_complex_float xkl_lapack_complex_float
#define lapack_complex_double xkl_lapack_complex_double
#define lapack_complex_float_real(z) (__extension__ __real__(z))
#define lapack_complex_float_imag(z) (__extension__ __imag__(z))
#define lapack_complex_double_real(z) (__extension__ __real__(z))
#define lapack_complex_double_imag(z) (__extension__ __imag__(z))
#endif

/* A complex number from its parts, whatever the type: its memory is the real part and then the imaginary. */
static inline lapack_complex_float lapack_make_complex_float(float re, float im)
{
    lapack_complex_float z;
    float *const parts = (float *)&z;
    parts[0] = re;
    parts[1] = im;
    return z;
}
static inline lapack_complex_double lapack_make_complex_double(double re, double im)
{
    lapack_complex_double z;
    double *const parts = (double *)&z;
    parts[0] = re;
    parts[1] = im;
    return z;
}
#endif

/* Layouts. */
#define LAPACK_ROW_MAJOR 101 /* element (i,j) of a, from 0, is a[i*lda + j] */
#define LAPACK_COL_MAJOR 102 /* element (i,j) of a, from 0, is a[i + j*lda] */

/* Results beyond those of LAPACK. */
#define LAPACK_WORK_MEMORY_ERROR (-1010)      /* no memory for a workspace */
#define LAPACK_TRANSPOSE_MEMORY_ERROR (-1011) /* no memory for the copy of a row-major matrix */

/* Memory of programs that want the names. The library has its own. */
#ifndef LAPACKE_malloc
#define LAPACKE_malloc(size) malloc(size)
#endif
#ifndef LAPACKE_free
#define LAPACKE_free(block) free(block)
#endif
#ifndef LAPACK_malloc
#define LAPACK_malloc(size) malloc(size)
#endif
#ifndef LAPACK_free
#define LAPACK_free(block) free(block)
#endif

/* The integer that a workspace query leaves in a complex element. */
#define LAPACK_C2INT(x) (lapack_int)(*((float *)&x))
#define LAPACK_Z2INT(x) (lapack_int)(*((double *)&x))

/* Whether an eigenvalue is selected: from its real and imaginary part or as one complex number, and for
 * pairs of matrices as a quotient's numerator and then its denominator. All by address. */
typedef lapack_logical (*LAPACK_S_SELECT2)(const float *, const float *);
typedef lapack_logical (*LAPACK_S_SELECT3)(const float *, const float *, const float *);
typedef lapack_logical (*LAPACK_D_SELECT2)(const double *, const double *);
typedef lapack_logical (*LAPACK_D_SELECT3)(const double *, const double *, const double *);
typedef lapack_logical (*LAPACK_C_SELECT1)(const lapack_complex_float *);
typedef lapack_logical (*LAPACK_C_SELECT2)(const lapack_complex_float *, const lapack_complex_float *);
typedef lapack_logical (*LAPACK_Z_SELECT1)(const lapack_complex_double *);
typedef lapack_logical (*LAPACK_Z_SELECT2)(const lapack_complex_double *, const lapack_complex_double *);

#ifdef __cplusplus
extern "C" {
#endif

/* Whether the LAPACKE functions look for NaN in their arguments: on, unless the environment variable
 * LAPACKE_NANCHECK is a number that is 0 when it is first needed. */
void LAPACKE_set_nancheck(int flag);
int LAPACKE_get_nancheck(void);

/* Prints the message of an error that a LAPACKE function found itself. */
void LAPACKE_xerbla(const char *name, int64_t info);

/* The version of LAPACK that is implemented. */
void LAPACKE_ilaver(int64_t *major, int64_t *minor, int64_t *patch);

#ifdef __cplusplus
}
#endif

#endif
