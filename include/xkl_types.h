/* xkl_types.h: the types that all headers of the library share.
 *
 * Integers are 64-bit signed everywhere, but for the service controls, the enumerations and cblas_xerbla's
 * position, which are 32-bit, and the sizes of the matrix copies, which are unsigned. Nothing here depends on
 * how the program's own int is wide. */
#ifndef XKL_TYPES_H
#define XKL_TYPES_H

#include "xkl_service_types.h"

#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>

/* The library's integer, for programs that like a name for it. */
typedef int64_t xkl_int;

/* A complex element: real part first. A program may put its own type of the same layout in the place of
 * either, before the first header: -DXKL_Complex16='double _Complex' in C, #define XKL_Complex16
 * std::complex<double> in C++. */
#ifndef XKL_Complex8
typedef struct {
    float real, imag;
} xkl_complex8;
#define XKL_Complex8 xkl_complex8
#endif
#ifndef XKL_Complex16
typedef struct {
    double real, imag;
} xkl_complex16;
#define XKL_Complex16 xkl_complex16
#endif

/* Low-precision elements, as their bits. */
typedef uint16_t xkl_f16;  /* IEEE binary16: 1 sign, 5 exponent, 10 fraction bits */
typedef uint16_t xkl_bf16; /* 1 sign, 8 exponent, 7 fraction bits */
typedef uint8_t xkl_e4m3;  /* 1 sign, 4 exponent, 3 fraction bits */
typedef uint8_t xkl_e5m2;  /* 1 sign, 5 exponent, 2 fraction bits */

/* The integers of the C interface, under the names that every CBLAS uses. */
#ifndef CBLAS_INT
#define CBLAS_INT int64_t
#endif
#ifndef CBLAS_IFMT /* how printf writes one, behind the % */
#define CBLAS_IFMT PRId64
#endif
#ifndef CBLAS_INDEX
#define CBLAS_INDEX int64_t
#endif

/* Options of the C interface, with the values that every CBLAS uses. */
typedef enum CBLAS_LAYOUT {
    CblasRowMajor = 101, /* element (i,j) of a at a[i*lda + j] */
    CblasColMajor = 102  /* element (i,j) of a at a[i + j*lda] */
} CBLAS_LAYOUT;
#define CBLAS_ORDER CBLAS_LAYOUT /* its name in older programs */

typedef enum CBLAS_TRANSPOSE {
    CblasNoTrans = 111,  /* op(A) = A */
    CblasTrans = 112,    /* op(A) = A transposed */
    CblasConjTrans = 113 /* op(A) = A transposed and conjugated */
} CBLAS_TRANSPOSE;

typedef enum CBLAS_UPLO {
    CblasUpper = 121, /* the upper triangle is stored and used */
    CblasLower = 122  /* the lower triangle is stored and used */
} CBLAS_UPLO;

typedef enum CBLAS_DIAG {
    CblasNonUnit = 131, /* the diagonal is stored and used */
    CblasUnit = 132     /* the diagonal is taken as ones and never read */
} CBLAS_DIAG;

typedef enum CBLAS_SIDE {
    CblasLeft = 141, /* the special matrix stands to the left */
    CblasRight = 142 /* the special matrix stands to the right */
} CBLAS_SIDE;

/* Compact matrices: how many bits of neighbouring matrices' elements lie together. */
typedef enum {
    XKL_COMPACT_128 = 181, /* 4 single or 2 double precision matrices interleaved */
    XKL_COMPACT_256 = 182, /* 8 or 4 */
    XKL_COMPACT_512 = 183  /* 16 or 8 */
} xkl_compact_format;

/* Matrices interleaved in one compact group: reals of `width` bytes that fit the format's registers. */
static inline int64_t xkl_compact_lanes(int32_t format, int64_t width)
{
    return ((int64_t)16 << (format - XKL_COMPACT_128)) / width;
}

/* Reals that a compact buffer of nm matrices needs; ld leading dimension, n columns (rows if row-major),
 * width bytes of a real (4 or 8), parts 1 for real and 2 for complex elements. */
static inline int64_t xkl_compact_size(int64_t ld, int64_t n, int32_t format, int64_t nm, int64_t width,
                                       int64_t parts)
{
    const int64_t lanes = xkl_compact_lanes(format, width);
    return ld * n * parts * ((nm + lanes - 1) / lanes) * lanes;
}

/* Status of the routines that make and free kernels. */
typedef enum {
    XKL_JIT_SUCCESS = 0, /* done */
    XKL_JIT_ERROR = 2    /* bad argument or no memory; nothing was changed */
} xkl_jit_status;

/* Receives argument errors: the routine's name (length bytes, no terminator) and the argument's place,
 * from 1. */
typedef void (*xkl_xerbla_handler)(const char *name, const int64_t *position, int64_t length);

/* The core's record of who receives them, for frames that store a handler without a call. `setter` is the
 * function that does the same by call; a core whose setter does more than store leaves it null. */
typedef struct {
    xkl_xerbla_handler handler;
    void (*setter)(xkl_xerbla_handler handler);
} xkl_xerbla_registration;

/* Told about the progress of long computations; a nonzero return asks the computation to stop. */
typedef int32_t (*xkl_progress_handler)(const int64_t *thread, const int64_t *step, const char *stage,
                                        int64_t length);

/* May change a small pivot: gets the matrix's own element, the pivot, the threshold; returns 1 if it did. */
typedef int32_t (*xkl_pivot_handler)(const double *diagonal, double *pivot, const double *threshold);

/* Tells whether an eigenvalue is selected, from its parts: (re, im) or (w) for one matrix, (alphar, alphai,
 * beta) or (alpha, beta) for a pair, all by address. The result is a logical, as wide as an integer. */
typedef int64_t (*xkl_select_function)(const void *, const void *, const void *);

/* Called with the exit code when the library must end the process. */
typedef void (*xkl_exit_handler)(int code);

#endif
