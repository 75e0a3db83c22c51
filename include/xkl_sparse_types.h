/* xkl_sparse_types.h: handles, descriptors, enumerations and statuses of the sparse BLAS on matrix handles.
 *
 * All enumerations are 32-bit. In C++ they have a fixed type, so that a value that is none of theirs (which
 * the library answers with a status) is still a value. */
#ifndef XKL_SPARSE_TYPES_H
#define XKL_SPARSE_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
#define XKL_32_BITS : int32_t
#else
#define XKL_32_BITS
#endif

/* A matrix that the library knows. Made by the create, copy and convert routines and by the products with a
 * sparse result, released by xkl_sparse_destroy. Threads may use one at once as long as none changes it. */
typedef struct sparse_matrix *sparse_matrix_t;

/* What every routine returns. */
typedef enum sparse_status XKL_32_BITS {
    SPARSE_STATUS_SUCCESS = 0,          /* done */
    SPARSE_STATUS_NOT_INITIALIZED = 1,  /* a handle is null or its arrays are not there */
    SPARSE_STATUS_ALLOC_FAILED = 2,     /* there is not enough memory */
    SPARSE_STATUS_INVALID_VALUE = 3,    /* an argument has a value that it can't have */
    SPARSE_STATUS_EXECUTION_FAILED = 4, /* the computation failed: a zero pivot, for example */
    SPARSE_STATUS_INTERNAL_ERROR = 5,   /* the library made a mistake */
    SPARSE_STATUS_NOT_SUPPORTED = 6     /* the library does not do this for such a matrix */
} sparse_status_t;

/* op(A). */
typedef enum sparse_operation XKL_32_BITS {
    SPARSE_OPERATION_NON_TRANSPOSE = 10,      /* A */
    SPARSE_OPERATION_TRANSPOSE = 11,          /* A transposed */
    SPARSE_OPERATION_CONJUGATE_TRANSPOSE = 12 /* A transposed and conjugated */
} sparse_operation_t;

/* What a routine takes the stored elements for. */
typedef enum sparse_matrix_type XKL_32_BITS {
    SPARSE_MATRIX_TYPE_GENERAL = 20,          /* the matrix */
    SPARSE_MATRIX_TYPE_SYMMETRIC = 21,        /* one triangle of a symmetric matrix */
    SPARSE_MATRIX_TYPE_HERMITIAN = 22,        /* one triangle of a Hermitian matrix */
    SPARSE_MATRIX_TYPE_TRIANGULAR = 23,       /* a triangular matrix: one triangle of what is stored */
    SPARSE_MATRIX_TYPE_DIAGONAL = 24,         /* a diagonal matrix: the diagonal of what is stored */
    SPARSE_MATRIX_TYPE_BLOCK_TRIANGULAR = 25, /* the same by blocks, in block storage */
    SPARSE_MATRIX_TYPE_BLOCK_DIAGONAL = 26    /* the same by blocks, in block storage */
} sparse_matrix_type_t;

/* The number of the first row and column. */
typedef enum sparse_index_base XKL_32_BITS {
    SPARSE_INDEX_BASE_ZERO = 0, /* as C counts */
    SPARSE_INDEX_BASE_ONE = 1   /* as Fortran counts */
} sparse_index_base_t;

/* Which triangle a descriptor means. */
typedef enum sparse_fill_mode XKL_32_BITS {
    SPARSE_FILL_MODE_LOWER = 40, /* on and below the diagonal */
    SPARSE_FILL_MODE_UPPER = 41, /* on and above the diagonal */
    SPARSE_FILL_MODE_FULL = 42   /* both */
} sparse_fill_mode_t;

/* What a descriptor says about the diagonal. */
typedef enum sparse_diag_type XKL_32_BITS {
    SPARSE_DIAG_NON_UNIT = 50, /* as stored */
    SPARSE_DIAG_UNIT = 51      /* ones, whatever is stored */
} sparse_diag_type_t;

/* How dense matrices and the elements of a block are stored. */
typedef enum sparse_layout XKL_32_BITS {
    SPARSE_LAYOUT_ROW_MAJOR = 101,   /* by rows */
    SPARSE_LAYOUT_COLUMN_MAJOR = 102 /* by columns */
} sparse_layout_t;

/* How much the library tells about what it does. */
typedef enum verbose_mode XKL_32_BITS {
    SPARSE_VERBOSE_OFF = 70,     /* nothing */
    SPARSE_VERBOSE_BASIC = 71,   /* what optimize chose */
    SPARSE_VERBOSE_EXTENDED = 72 /* and why */
} verbose_mode_t;

/* Whether optimize may allocate memory of the order of the matrix. */
typedef enum sparse_memory_usage XKL_32_BITS {
    SPARSE_MEMORY_NONE = 80,      /* no */
    SPARSE_MEMORY_AGGRESSIVE = 81 /* yes: the default */
} sparse_memory_usage_t;

/* The stages of a product with a sparse result. */
typedef enum sparse_request XKL_32_BITS {
    SPARSE_STAGE_FULL_MULT = 90,           /* all at once */
    SPARSE_STAGE_NNZ_COUNT = 91,           /* first: the row starts of the result */
    SPARSE_STAGE_FINALIZE_MULT = 92,       /* after it: columns and values. Or values again */
    SPARSE_STAGE_FULL_MULT_NO_VAL = 93,    /* the pattern at once */
    SPARSE_STAGE_FINALIZE_MULT_NO_VAL = 94 /* after the row starts: the columns */
} sparse_request_t;

/* The direction of a relaxation sweep. */
typedef enum sparse_sor_type XKL_32_BITS {
    SPARSE_SOR_FORWARD = 110,  /* from the first row to the last */
    SPARSE_SOR_BACKWARD = 111, /* from the last row to the first */
    SPARSE_SOR_SYMMETRIC = 112 /* forward, then backward */
} sparse_sor_type_t;

/* How an orthogonal factorization is made. */
typedef enum sparse_qr_hint XKL_32_BITS {
    SPARSE_QR_WITH_PIVOTS = 0 /* columns may be exchanged, for matrices without full rank */
} sparse_qr_hint_t;

/* How a routine is to understand a matrix. General matrices need the type alone. */
struct matrix_descr {
    sparse_matrix_type_t type;
    sparse_fill_mode_t mode;
    sparse_diag_type_t diag;
};
#ifndef __cplusplus
typedef struct matrix_descr matrix_descr;
#endif

#undef XKL_32_BITS

#endif
