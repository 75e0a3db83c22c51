/* xkl_solver_types.h: options, statuses, error codes and records of the sparse solvers.
 *
 * Numbers and control-array entries are explained in docs/sparse.md. */
#ifndef XKL_SOLVER_TYPES_H
#define XKL_SOLVER_TYPES_H

#include <stdint.h>

/* pardiso: the kind of matrix, mtype. */
#define XKL_PARDISO_REAL_STRUCTURALLY_SYMMETRIC 1
#define XKL_PARDISO_REAL_POSITIVE_DEFINITE 2 /* symmetric; the upper triangle is given */
#define XKL_PARDISO_REAL_INDEFINITE (-2)     /* symmetric; the upper triangle is given */
#define XKL_PARDISO_COMPLEX_STRUCTURALLY_SYMMETRIC 3
#define XKL_PARDISO_HERMITIAN_POSITIVE_DEFINITE 4 /* the upper triangle is given */
#define XKL_PARDISO_HERMITIAN_INDEFINITE (-4)     /* the upper triangle is given */
#define XKL_PARDISO_COMPLEX_SYMMETRIC 6           /* the upper triangle is given */
#define XKL_PARDISO_REAL_UNSYMMETRIC 11
#define XKL_PARDISO_COMPLEX_UNSYMMETRIC 13

/* pardiso: what to do, phase. The first digit is the first step, the second the last one. */
#define XKL_PARDISO_ANALYSIS 11
#define XKL_PARDISO_ANALYSIS_FACTORIZATION 12
#define XKL_PARDISO_ANALYSIS_FACTORIZATION_SOLVE 13
#define XKL_PARDISO_FACTORIZATION 22
#define XKL_PARDISO_FACTORIZATION_SOLVE 23
#define XKL_PARDISO_SOLVE 33          /* with iterative refinement */
#define XKL_PARDISO_FORWARD_SOLVE 331 /* with L */
#define XKL_PARDISO_DIAGONAL_SOLVE 332
#define XKL_PARDISO_BACKWARD_SOLVE 333 /* with U */
#define XKL_PARDISO_RELEASE_FACTORS 0  /* of the matrix mnum */
#define XKL_PARDISO_RELEASE_EVERYTHING (-1)

/* pardiso: how it went, error. */
#define XKL_PARDISO_SUCCESS 0
#define XKL_PARDISO_INPUT_ERROR (-1)      /* an argument, a control entry or the matrix is not valid */
#define XKL_PARDISO_OUT_OF_MEMORY (-2)    /* memory ran out */
#define XKL_PARDISO_REORDERING_ERROR (-3) /* no order of elimination could be found */
#define XKL_PARDISO_ZERO_PIVOT (-4)     /* the matrix is singular, or not positive definite as mtype says */
#define XKL_PARDISO_INTERNAL_ERROR (-5) /* the solver made a mistake */
#define XKL_PARDISO_PREORDERING_FAILED                                                                     \
    (-6) /* unsymmetric matrices: no rows could be matched to the diagonal */
#define XKL_PARDISO_SINGULAR_DIAGONAL (-7) /* a diagonal matrix has a zero */
#define XKL_PARDISO_INTEGER_OVERFLOW (-8) /* the factors have too many elements for the solver's integers */
#define XKL_PARDISO_OUT_OF_CORE_MEMORY (-9) /* solution from files: not enough memory */
#define XKL_PARDISO_OUT_OF_CORE_OPEN (-10)  /* a file could not be opened */
#define XKL_PARDISO_OUT_OF_CORE_IO (-11)    /* a file could not be read or written */
#define XKL_PARDISO_64_CALLED_FROM_32 (-12) /* does not occur in this library */
#define XKL_PARDISO_INTERRUPTED (-13)       /* the progress routine asked to stop */
#define XKL_PARDISO_NOT_SUPPORTED (-15)     /* a control entry asks for what this core does not do */

/* dss_create: options, to be added up; one of each group. */
#define XKL_DSS_DEFAULTS 0
#define XKL_DSS_OOC_VARIABLE 1024 /* factors in files where memory is short */
#define XKL_DSS_OOC_STRONG 2048   /* factors in files */
#define XKL_DSS_REFINEMENT_OFF 4096
#define XKL_DSS_REFINEMENT_ON 8192
#define XKL_DSS_SINGLE_PRECISION 65536
#define XKL_DSS_ZERO_BASED_INDEXING 131072

/* Level of the messages, and level of an error that ends the solution. For any dss_ routine. */
#define XKL_DSS_MSG_LVL_SUCCESS (-2147483647)
#define XKL_DSS_MSG_LVL_DEBUG (-2147483646)
#define XKL_DSS_MSG_LVL_INFO (-2147483645)
#define XKL_DSS_MSG_LVL_WARNING (-2147483644)
#define XKL_DSS_MSG_LVL_ERROR (-2147483643)
#define XKL_DSS_MSG_LVL_FATAL (-2147483642)
#define XKL_DSS_TERM_LVL_SUCCESS 1073741832
#define XKL_DSS_TERM_LVL_DEBUG 1073741840
#define XKL_DSS_TERM_LVL_INFO 1073741848
#define XKL_DSS_TERM_LVL_WARNING 1073741856
#define XKL_DSS_TERM_LVL_ERROR 1073741864
#define XKL_DSS_TERM_LVL_FATAL 1073741872

/* dss_define_structure: the kind of matrix. Symmetric ones give the upper triangle. */
#define XKL_DSS_SYMMETRIC 536870976
#define XKL_DSS_SYMMETRIC_STRUCTURE 536871040
#define XKL_DSS_NON_SYMMETRIC 536871104
#define XKL_DSS_SYMMETRIC_COMPLEX 536871168
#define XKL_DSS_SYMMETRIC_STRUCTURE_COMPLEX 536871232
#define XKL_DSS_NON_SYMMETRIC_COMPLEX 536871296

/* dss_reorder: where the order of elimination comes from. */
#define XKL_DSS_AUTO_ORDER 268435520         /* the solver chooses */
#define XKL_DSS_MY_ORDER 268435584           /* perm has it */
#define XKL_DSS_OPTION1_ORDER 268435648      /* minimum degree */
#define XKL_DSS_GET_ORDER 268435712          /* the solver chooses and tells perm */
#define XKL_DSS_METIS_ORDER 268435776        /* nested dissection */
#define XKL_DSS_METIS_OPENMP_ORDER 268435840 /* nested dissection, in parallel */

/* dss_factor: what is known about the values. */
#define XKL_DSS_POSITIVE_DEFINITE 134217792
#define XKL_DSS_INDEFINITE 134217856
#define XKL_DSS_HERMITIAN_POSITIVE_DEFINITE 134217920
#define XKL_DSS_HERMITIAN_INDEFINITE 134217984

/* dss_solve: parts of the solution, and op(A). */
#define XKL_DSS_FORWARD_SOLVE 16384
#define XKL_DSS_DIAGONAL_SOLVE 32768
#define XKL_DSS_BACKWARD_SOLVE 49152
#define XKL_DSS_TRANSPOSE_SOLVE 262144
#define XKL_DSS_CONJUGATE_SOLVE 524288

/* What dss_ routines return. */
#define XKL_DSS_SUCCESS 0
#define XKL_DSS_ZERO_PIVOT (-1)                 /* the matrix is singular */
#define XKL_DSS_OUT_OF_MEMORY (-2)              /* memory ran out */
#define XKL_DSS_FAILURE (-3)                    /* the solver failed for no reason of this list */
#define XKL_DSS_ROW_ERR (-4)                    /* rowindex is not valid */
#define XKL_DSS_COL_ERR (-5)                    /* columns is not valid */
#define XKL_DSS_TOO_FEW_VALUES (-6)             /* nnonzeros is less than rowindex says */
#define XKL_DSS_TOO_MANY_VALUES (-7)            /* nnonzeros is more than rowindex says */
#define XKL_DSS_NOT_SQUARE (-8)                 /* nrows and ncols differ */
#define XKL_DSS_STATE_ERR (-9)                  /* a step was left out; no such handle, or at work */
#define XKL_DSS_INVALID_OPTION (-10)            /* opt is not valid */
#define XKL_DSS_OPTION_CONFLICT (-11)           /* opt contradicts an earlier one */
#define XKL_DSS_MSG_LVL_ERR (-12)               /* the level of messages is not valid */
#define XKL_DSS_TERM_LVL_ERR (-13)              /* the level of errors is not valid */
#define XKL_DSS_STRUCTURE_ERR (-14)             /* the kind of matrix is not valid */
#define XKL_DSS_REORDER_ERR (-15)               /* the order of elimination failed */
#define XKL_DSS_VALUES_ERR (-16)                /* the values are not valid */
#define XKL_DSS_STATISTICS_INVALID_MATRIX (-17) /* nothing is known of that kind for such a matrix */
#define XKL_DSS_STATISTICS_INVALID_STATE (-18)  /* it is not known yet */
#define XKL_DSS_STATISTICS_INVALID_STRING (-19) /* a word is not known */
#define XKL_DSS_REORDER1_ERR (-20)
#define XKL_DSS_PREORDER_ERR (-21)
#define XKL_DSS_DIAG_ERR (-22)
#define XKL_DSS_I32BIT_ERR (-23)
#define XKL_DSS_OOC_MEM_ERR (-24) /* factors in files: not enough memory */
#define XKL_DSS_OOC_OC_ERR (-25)  /* a file could not be opened or closed */
#define XKL_DSS_OOC_RW_ERR (-26)  /* a file could not be read or written */

/* sparse_matrix_checker: statuses. */
#define XKL_SPARSE_CHECKER_SUCCESS 0
#define XKL_SPARSE_CHECKER_NON_MONOTONIC 21 /* a row ends before it starts: its number, start and end */
#define XKL_SPARSE_CHECKER_OUT_OF_RANGE 22  /* a column outside the matrix: place, column, row */
#define XKL_SPARSE_CHECKER_NONTRIANGULAR 23 /* an element in the wrong triangle: place, column, row */
#define XKL_SPARSE_CHECKER_NONORDERED 24    /* columns not ascending: place, column before, column */

/* sparse_matrix_checker: settings of the record. */
#define XKL_ZERO_BASED 0
#define XKL_ONE_BASED 1
#define XKL_GENERAL_STRUCTURE 0
#define XKL_UPPER_TRIANGULAR 1
#define XKL_LOWER_TRIANGULAR 2
#define XKL_STRUCTURAL_SYMMETRIC 3
#define XKL_C_STYLE 0 /* messages count from 0 */
#define XKL_FORTRAN_STYLE 1
#define XKL_NO_PRINT 0
#define XKL_PRINT 1

/* The matrix that sparse_matrix_checker looks at, and what it found. */
typedef struct {
    int64_t n;                /* order */
    const int64_t *csr_ia;    /* row starts, n + 1 of them */
    const int64_t *csr_ja;    /* columns */
    int32_t indexing;         /* XKL_ZERO_BASED or XKL_ONE_BASED */
    int32_t matrix_structure; /* XKL_GENERAL_STRUCTURE ... */
    int32_t print_style;      /* XKL_C_STYLE or XKL_FORTRAN_STYLE */
    int32_t message_level;    /* XKL_NO_PRINT or XKL_PRINT */
    int64_t check_result[3];  /* about the first fault, as the statuses say */
} sparse_struct;

/* Arrays of the factors that the cluster solver can export: P*A*Q = L*U, or P*inv(D)*A*Q = L*U. */
#define XKL_CLUSTER_EXPORT_PTLUQT_L 0
#define XKL_CLUSTER_EXPORT_PTLUQT_U 1
#define XKL_CLUSTER_EXPORT_PTLUQT_P 2
#define XKL_CLUSTER_EXPORT_PTLUQT_Q 3
#define XKL_CLUSTER_EXPORT_DPTLUQT_L 4
#define XKL_CLUSTER_EXPORT_DPTLUQT_U 5
#define XKL_CLUSTER_EXPORT_DPTLUQT_P 6
#define XKL_CLUSTER_EXPORT_DPTLUQT_Q 7
#define XKL_CLUSTER_EXPORT_DPTLUQT_D 8
/* Which of the two cluster_sparse_solver_export is to write. */
#define XKL_CLUSTER_EXPORT_PTLUQT 0
#define XKL_CLUSTER_EXPORT_DPTLUQT 1

/* Conjugate gradients and minimal residuals: rci_request of a step. */
#define XKL_ISS_DONE 0
#define XKL_ISS_MULTIPLY 1          /* A times a part of tmp, to another part of it */
#define XKL_ISS_TEST 2              /* decide whether to stop */
#define XKL_ISS_PRECONDITION 3      /* apply the preconditioner to a part of tmp, to another part of it */
#define XKL_ISS_TEST_NORM 4         /* minimal residuals: is the norm of the next vector zero? */
#define XKL_ISS_TOO_MANY_STEPS (-1) /* the largest number of iterations was reached */
#define XKL_ISS_BREAKDOWN (-2)     /* conjugate gradients: a division by zero; A is not positive definite */
#define XKL_ISS_INVALID_NORM (-10) /* a norm is no number */
#define XKL_ISS_INFINITE_CYCLE (-11) /* ipar(3), where to go on, is none of the solver's */
#define XKL_ISS_BAD_PARAMETERS (-12) /* minimal residuals: n or ipar(15) is not positive */
/* The same of the init and check routines, beside XKL_ISS_DONE. */
#define XKL_ISS_INIT_FAILED (-10000)
#define XKL_ISS_CHECK_FAILED (-1100)    /* the solution can't go on with these parameters */
#define XKL_ISS_CHECK_WARNING (-1001)   /* it can, but there are warnings */
#define XKL_ISS_CHECK_CORRECTED (-1010) /* some parameters were changed to make them consistent */
#define XKL_ISS_CHECK_WARNED_AND_CORRECTED (-1011)

/* Trust regions and Jacobi matrices: statuses. */
#define XKL_TR_SUCCESS 1501
#define XKL_TR_INVALID_OPTION 1502 /* an argument is not valid */
#define XKL_TR_OUT_OF_MEMORY 1503

/* djacobi: f (m values) at x (n values). The integers' addresses come first. */
typedef void (*xkl_vector_function_s)(const int64_t *m, const int64_t *n, const float *x, float *f);
typedef void (*xkl_vector_function_d)(const int64_t *m, const int64_t *n, const double *x, double *f);
typedef void (*xkl_vector_function_with_data_s)(const int64_t *m, const int64_t *n, const float *x,
                                                float *f, void *user_data);
typedef void (*xkl_vector_function_with_data_d)(const int64_t *m, const int64_t *n, const double *x,
                                                double *f, void *user_data);

#endif
