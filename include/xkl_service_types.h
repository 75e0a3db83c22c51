/* xkl_service_types.h: constants and records of the service routines (xkl_service.h). */
#ifndef XKL_SERVICE_TYPES_H
#define XKL_SERVICE_TYPES_H

#include <stdint.h>

/* The record that XKL_Get_Version fills. */
/* The texts belong to the library and stay valid until the process ends. */
typedef struct xkl_version {
    int32_t major;         /* first number of the version: changes when a caller has to be rebuilt */
    int32_t minor;         /* second number: new routines */
    int32_t update;        /* third number: corrections only */
    int32_t integer_bits;  /* width of the integers of this library's interface: 64 */
    const char *status;    /* "Release", or "Development" for a version whose first number is 0 */
    const char *build;     /* compiler that built the core */
    const char *processor; /* class of the running processor, such as "AVX2" */
    const char *platform;  /* what the library was built for */
    const char *kernels;   /* the set of dense kernels chosen for this processor */
} xkl_version;

/* Domains of XKL_Domain_Set_Num_Threads and XKL_Domain_Get_Max_Threads. A count for the calling thread
   (XKL_Set_Num_Threads_Local) comes before a domain's count, and that before the count for all. */
#define XKL_DOMAIN_ALL 0    /* the count for all; setting it makes every domain follow it again */
#define XKL_DOMAIN_BLAS 1   /* dense linear algebra: BLAS, LAPACK and their extensions */
#define XKL_DOMAIN_FFT 2    /* Fourier transforms */
#define XKL_DOMAIN_VML 3    /* vector math and statistics */
#define XKL_DOMAIN_SPARSE 4 /* sparse solvers and sparse BLAS */

/* Modes of XKL_Peak_Mem_Usage. Each returns the highest number of bytes in use that was seen while
   measuring, -1 for another mode. */
#define XKL_PEAK_MEM_DISABLE 0  /* stop measuring; the peak stays to be asked for */
#define XKL_PEAK_MEM_ENABLE 1   /* start measuring, from the bytes in use now */
#define XKL_PEAK_MEM_QUERY 2    /* change nothing */
#define XKL_PEAK_MEM_RESET (-1) /* return the peak, then start again from the bytes in use now */

/* Memory types of XKL_Set_Memory_Limit, which returns 1 when it has set the limit, else 0. */
/* all memory that the library holds; limit in megabytes of 2^20 bytes, 0 for no limit */
#define XKL_MEM_ALL 1

/* Codes of XKL_Enable_Instructions: the library uses nothing beyond the set that was named. It returns 1
   when it was carried out, 0 for an unknown code or once a computation has run. */
#define XKL_ENABLE_SSE4_2 0
#define XKL_ENABLE_AVX 1
#define XKL_ENABLE_AVX2 2
#define XKL_ENABLE_AVX512 4
#define XKL_ENABLE_AVX512_E1 5

/* Vendors of XKL_Set_mpi, which returns 0 when it has taken the choice, -1 for an unknown code, -2 for a
   custom library without a name. */
#define XKL_MPI_DEFAULT 0 /* whatever the program was linked with */
#define XKL_MPI_CUSTOM 1  /* wrappers in the library that the second argument names */
#define XKL_MPI_MPICH 2
#define XKL_MPI_OPENMPI 3

/* Modes of XKL_Set_Env_Mode, which returns the mode that was in force; any other value only asks. */
#define XKL_ENV_MODE_IGNORE 0 /* environment variables that start with XKL_ are not read any more */
#define XKL_ENV_MODE_READ 1   /* they are read, as at the start */

/* Switch of XKL_Verbose, which returns the switch that was in force, -1 for another value. */
#define XKL_VERBOSE_OFF 0
#define XKL_VERBOSE_CALLS 1   /* a line for each traced call */
#define XKL_VERBOSE_DETAILS 2 /* the line tells the domain code and the thread too */

/* Conditional bit-wise reproducibility: XKL_CBWR_Set, XKL_CBWR_Get, XKL_CBWR_Get_Auto_Branch, and the
   environment variable XKL_CBWR.

   A branch names the instruction set whose kernels compute, so that two machines set to the same branch
   give the same bits for the same number of threads. With XKL_CBWR_STRICT added the dense kernels run on
   one thread each and the bits do not depend on the number of threads either. A branch can be chosen until
   the first computation. */

/* What XKL_CBWR_Get can be asked for. */
#define XKL_CBWR_BRANCH 1 /* the branch, without flags */
#define XKL_CBWR_ALL (~0) /* the branch with its flags */

/* Branches. */
#define XKL_CBWR_UNSET_ALL 0  /* forget every setting: as XKL_CBWR_BRANCH_OFF */
#define XKL_CBWR_BRANCH_OFF 1 /* no promise is asked for: the fastest kernels of the processor */
/* the fastest kernels, their results repeatable from run to run on this processor */
#define XKL_CBWR_AUTO 2
#define XKL_CBWR_COMPATIBLE 3 /* the kernels that every processor of this architecture runs */
#define XKL_CBWR_SSE2 4       /* as XKL_CBWR_COMPATIBLE */
#define XKL_CBWR_SSSE3 6      /* SSSE3 kernels */
#define XKL_CBWR_SSE4_1 7     /* SSE4.1 kernels */
#define XKL_CBWR_SSE4_2 8     /* SSE4.2 kernels */
#define XKL_CBWR_AVX 9        /* AVX kernels */
#define XKL_CBWR_AVX2 10      /* AVX2 and FMA kernels */
#define XKL_CBWR_AVX512 12    /* AVX-512 kernels (F, CD, BW, DQ, VL) */
#define XKL_CBWR_AVX512_E1 13 /* AVX-512 kernels that use VNNI and BF16 too */
#define XKL_CBWR_STRICT 65536 /* flag, added to a branch from XKL_CBWR_AUTO on */

/* Statuses. */
#define XKL_CBWR_SUCCESS 0
#define XKL_CBWR_ERR_INVALID_SETTINGS (-1) /* XKL_CBWR_STRICT without a branch that it can belong to */
/* XKL_CBWR_Get was asked for something else than the options above */
#define XKL_CBWR_ERR_INVALID_INPUT (-2)
#define XKL_CBWR_ERR_UNSUPPORTED_BRANCH (-3) /* this processor does not run the branch */
#define XKL_CBWR_ERR_UNKNOWN_BRANCH (-4)     /* no branch has this number */
/* a computation has run already: the branch can no longer change */
#define XKL_CBWR_ERR_MODE_CHANGE_FAILURE (-8)

#endif
