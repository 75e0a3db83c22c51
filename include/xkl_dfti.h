/* xkl_dfti.h: Fourier transforms of 1 to 7 dimensions, through descriptors.
 *
 * A descriptor is created with what it transforms, configured with DftiSetValue, committed, used for any number
 * of computations, and freed:
 *
 *     DFTI_DESCRIPTOR_HANDLE transform = NULL;
 *     long status = DftiCreateDescriptor(&transform, DFTI_DOUBLE, DFTI_COMPLEX, 1, (int64_t)n);
 *     if (status == DFTI_NO_ERROR) status = DftiCommitDescriptor(transform);
 *     if (status == DFTI_NO_ERROR) status = DftiComputeForward(transform, x);
 *     if (status != DFTI_NO_ERROR) puts(DftiErrorMessage(status));
 *     DftiFreeDescriptor(&transform);
 *
 * Every function returns a status, DFTI_NO_ERROR when all went well. Arguments behind an ellipsis are not
 * converted by the compiler: integers there are 64-bit (int64_t, long), real numbers are double, unless the
 * parameter says int. Lengths and strides are in the order of C's indices, the last dimension fastest;
 * docs/transforms.md has defaults, layouts and the packed formats. */
#ifndef XKL_DFTI_H
#define XKL_DFTI_H

#include "xkl_types.h"

/* A transform: opaque, made by DftiCreateDescriptor, released by DftiFreeDescriptor. */
typedef struct DFTI_DESCRIPTOR DFTI_DESCRIPTOR;
typedef DFTI_DESCRIPTOR *DFTI_DESCRIPTOR_HANDLE;

/* A transform over several processes; served by cores that have one. */
typedef struct DFTI_DESCRIPTOR_DM DFTI_DESCRIPTOR_DM;
typedef DFTI_DESCRIPTOR_DM *DFTI_DESCRIPTOR_DM_HANDLE;

/* What DftiSetValue sets and DftiGetValue tells: the parameter, then the type that both take. Strides are an
 * offset and one stride a dimension. */
enum DFTI_CONFIG_PARAM {
    DFTI_FORWARD_DOMAIN = 0,          /* int: DFTI_COMPLEX or DFTI_REAL, the data that forward reads */
    DFTI_DIMENSION = 1,               /* get only; int64_t */
    DFTI_LENGTHS = 2,                 /* get only; int64_t, one a dimension */
    DFTI_PRECISION = 3,               /* int: DFTI_SINGLE or DFTI_DOUBLE */
    DFTI_FORWARD_SCALE = 4,           /* double, a factor of forward's results; got as float if single */
    DFTI_BACKWARD_SCALE = 5,          /* double, a factor of backward's results; got as float if single */
    DFTI_NUMBER_OF_TRANSFORMS = 7,    /* int64_t, transforms that one call computes */
    DFTI_COMPLEX_STORAGE = 8,         /* int: DFTI_COMPLEX_COMPLEX, or DFTI_REAL_REAL for split arrays */
    DFTI_REAL_STORAGE = 9,            /* int: DFTI_REAL_REAL */
    DFTI_CONJUGATE_EVEN_STORAGE = 10, /* int: DFTI_COMPLEX_COMPLEX or DFTI_COMPLEX_REAL */
    DFTI_PLACEMENT = 11,              /* int: DFTI_INPLACE or DFTI_NOT_INPLACE */
    DFTI_INPUT_STRIDES = 12,          /* int64_t array, by address: dimensions + 1 entries */
    DFTI_OUTPUT_STRIDES = 13,         /* int64_t array, by address: dimensions + 1 entries */
    DFTI_INPUT_DISTANCE = 14,         /* int64_t, elements between the inputs of two transforms */
    DFTI_OUTPUT_DISTANCE = 15,        /* int64_t, elements between the outputs of two transforms */
    DFTI_WORKSPACE = 17,              /* int: DFTI_ALLOW, DFTI_AVOID or DFTI_NONE */
    DFTI_ORDERING = 18,               /* int: DFTI_ORDERED or DFTI_BACKWARD_SCRAMBLED */
    DFTI_TRANSPOSE = 19,              /* int: DFTI_NONE or DFTI_ALLOW */
    DFTI_DESCRIPTOR_NAME = 20,        /* text; got as at most DFTI_MAX_NAME_LENGTH bytes with its NUL */
    DFTI_PACKED_FORMAT = 21,          /* int: DFTI_CCS_FORMAT, _PACK_, _PERM_ or _CCE_ */
    DFTI_COMMIT_STATUS = 22,          /* int: DFTI_COMMITTED or DFTI_UNCOMMITTED */
    DFTI_VERSION = 23,                /* get only; text of DFTI_VERSION_LENGTH bytes; needs no descriptor */
    DFTI_NUMBER_OF_USER_THREADS = 26, /* int64_t, threads that compute with the descriptor at once */
    DFTI_THREAD_LIMIT = 27,           /* int64_t, threads that a computation may use, 0 for no limit */
    DFTI_DESTROY_INPUT = 28           /* int: whether out-of-place transforms may overwrite the input,
                                         DFTI_ALLOW or DFTI_AVOID */
};

/* Values of the parameters. */
enum DFTI_CONFIG_VALUE {
    DFTI_COMMITTED = 30,       /* ready to compute */
    DFTI_UNCOMMITTED = 31,     /* created, or changed since it was committed */
    DFTI_COMPLEX = 32,         /* complex data */
    DFTI_REAL = 33,            /* real data; the other side is conjugate-even */
    DFTI_SINGLE = 35,          /* float */
    DFTI_DOUBLE = 36,          /* double */
    DFTI_COMPLEX_COMPLEX = 39, /* complex elements; conjugate-even: the first half of the last dimension */
    DFTI_COMPLEX_REAL = 40,    /* conjugate-even data as reals, in a packed format */
    DFTI_REAL_COMPLEX = 41,    /* reals, each as a complex element */
    DFTI_REAL_REAL = 42,       /* real elements; complex data: real and imaginary parts apart */
    DFTI_INPLACE = 43,         /* the result takes the place of the data */
    DFTI_NOT_INPLACE = 44,     /* the result has an array of its own */
    DFTI_ORDERED = 48,         /* results in natural order */
    DFTI_BACKWARD_SCRAMBLED = 49, /* conjugate-even data may be in another order */
    DFTI_ALLOW = 51,              /* may happen */
    DFTI_AVOID = 52,              /* better not */
    DFTI_NONE = 53,               /* never */
    DFTI_CCS_FORMAT = 54,         /* packed: n/2 + 1 complex elements */
    DFTI_PACK_FORMAT = 55,        /* packed: n reals, no zero imaginary parts */
    DFTI_PERM_FORMAT = 56,        /* packed: n reals, the middle one second */
    DFTI_CCE_FORMAT = 57          /* conjugate-even, with DFTI_COMPLEX_COMPLEX */
};

/* Statuses. DftiErrorMessage has a sentence for each. */
#define DFTI_NO_ERROR 0              /* done */
#define DFTI_MEMORY_ERROR 1          /* no memory for the descriptor or its work */
#define DFTI_INVALID_CONFIGURATION 2 /* dimension, length, domain or precision; compute before commit */
#define DFTI_INCONSISTENT_CONFIGURATION 3 /* null or refused argument; settings that exclude each other */
#define DFTI_MULTITHREADED_ERROR 4        /* the threads that compute together failed */
#define DFTI_BAD_DESCRIPTOR 5             /* null, not a descriptor, or freed */
#define DFTI_UNIMPLEMENTED 6              /* the core does not compute this */
#define DFTI_INTERNAL_ERROR 7             /* the descriptor cannot be committed; a fault of the core */
#define DFTI_NUMBER_OF_THREADS_ERROR 8    /* the threads do not fit those that were committed for */
#define DFTI_1D_LENGTH_EXCEEDS_INT32 9    /* a length is too large for the core */

#define DFTI_VERSION_LENGTH 198    /* bytes that DFTI_VERSION fills */
#define DFTI_MAX_NAME_LENGTH 10    /* bytes that DFTI_DESCRIPTOR_NAME fills at most, with the NUL */
#define DFTI_MAX_MESSAGE_LENGTH 80 /* characters of a message that matter: a reason may follow them */

#ifdef __cplusplus
extern "C" {
#endif

/** Makes a descriptor. Behind dimension: the length (int64_t) if it is 1, else the address of the int64_t
 *  lengths. *handle is null after a refusal. */
long DftiCreateDescriptor(DFTI_DESCRIPTOR_HANDLE *handle, int precision, int domain, int64_t dimension,
                          ...);

/** The same in one dimension, single (s) or double (d) precision. Behind domain: the length, int64_t. */
long DftiCreateDescriptor_s_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...);
long DftiCreateDescriptor_d_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...);

/** The same in any number of dimensions, even 1: behind dimension always stands the lengths' address. */
long DftiCreateDescriptor_s_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...);
long DftiCreateDescriptor_d_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...);

/** Sets the parameter (DFTI_CONFIG_PARAM) to the value behind it; the descriptor must be committed (again)
 *  before it computes. */
long DftiSetValue(DFTI_DESCRIPTOR_HANDLE handle, int parameter, ...);

/** Stores a parameter's value at the address behind it. */
long DftiGetValue(DFTI_DESCRIPTOR_HANDLE handle, int parameter, ...);

/** Makes a descriptor ready to compute with its present settings. */
long DftiCommitDescriptor(DFTI_DESCRIPTOR_HANDLE handle);

/** Makes a second descriptor with the same settings, committed if the first one is. */
long DftiCopyDescriptor(DFTI_DESCRIPTOR_HANDLE handle, DFTI_DESCRIPTOR_HANDLE *copy);

/** Releases a descriptor and sets the handle to null. */
long DftiFreeDescriptor(DFTI_DESCRIPTOR_HANDLE *handle);

/** Transforms x as configured: in place (x); out of place (x, y); split arrays (x_re, x_im), out of place
 *  (x_re, x_im, y_re, y_im). Forward sums with exp(-2 pi i j k / n), backward with exp(+2 pi i j k / n). */
long DftiComputeForward(DFTI_DESCRIPTOR_HANDLE handle, void *x, ...);
long DftiComputeBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x, ...);

/** The same without an ellipsis, for descriptors that compute in place, or out of place. */
long DftiComputeInPlaceForward(DFTI_DESCRIPTOR_HANDLE handle, void *x);
long DftiComputeInPlaceBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x);
long DftiComputeOutOfPlaceForward(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *y);
long DftiComputeOutOfPlaceBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *y);

/** Whether a status is of a class: DftiErrorClass(status, DFTI_NO_ERROR) is true if all went well. */
long DftiErrorClass(long status, long error_class);

/** A sentence about a status; not to be changed or freed. */
char *DftiErrorMessage(long status);

/** Makes a transform over several processes ready to compute. */
long DftiCommitDescriptorDM(DFTI_DESCRIPTOR_DM_HANDLE handle);

#ifdef __cplusplus
}
#endif

#endif
