/* xkl_vsl_types.h: identifiers, methods, status values and types of random streams and of convolution and
 * correlation tasks. Programs include xkl_vsl.h, which adds the routines.
 *
 * Constants are macros, so that a program can ask with #ifdef for one that it would like to use. */
#ifndef XKL_VSL_TYPES_H
#define XKL_VSL_TYPES_H

#include <stdint.h>

/* A stream of random numbers: made by vslNewStream and its kin, ended by vslDeleteStream. One stream serves
 * one thread at a time; different streams may be used at once. */
typedef void *VSLStreamStatePtr;

/* A convolution or correlation task: made by the NewTask routines, ended by the DeleteTask ones. */
typedef void *VSLConvTaskPtr;
typedef void *VSLCorrTaskPtr;

/* Basic generators. Which of them the kernel library in use has, vslNewStream tells: those that it lacks get
 * VSL_RNG_ERROR_INVALID_BRNG_INDEX or VSL_RNG_ERROR_BRNG_NOT_SUPPORTED. */
#define VSL_BRNG_SHIFT 20       /* bits of the room that a family has, */
#define VSL_BRNG_INC 0x00100000 /* which is the distance of identifiers */

#define VSL_BRNG_MCG31 0x00100000         /* multiplicative congruential, modulus 2^31-1 */
#define VSL_BRNG_R250 0x00200000          /* generalised feedback shift register (250,103) */
#define VSL_BRNG_MRG32K3A 0x00300000      /* two combined recursions of order 3 */
#define VSL_BRNG_MCG59 0x00400000         /* multiplicative congruential, modulus 2^59 */
#define VSL_BRNG_WH 0x00500000            /* Wichmann-Hill; members VSL_BRNG_WH + 0 to 272 */
#define VSL_BRNG_SOBOL 0x00600000         /* Sobol's quasi-random sequence */
#define VSL_BRNG_NIEDERR 0x00700000       /* Niederreiter's quasi-random sequence */
#define VSL_BRNG_MT19937 0x00800000       /* Mersenne twister */
#define VSL_BRNG_MT2203 0x00900000        /* small twisters; members VSL_BRNG_MT2203 + 0 to 6023 */
#define VSL_BRNG_IABSTRACT 0x00a00000     /* of a stream over the caller's integers, doubles */
#define VSL_BRNG_DABSTRACT 0x00b00000     /* or floats: vslGetStreamStateBrng gives these three, */
#define VSL_BRNG_SABSTRACT 0x00c00000     /* and vslNewStream refuses them */
#define VSL_BRNG_SFMT19937 0x00d00000     /* Mersenne twister made for vector units */
#define VSL_BRNG_NONDETERM 0x00e00000     /* the system's pool of noise: never the same */
#define VSL_BRNG_ARS5 0x00f00000          /* counter-based, five rounds of AES */
#define VSL_BRNG_PHILOX4X32X10 0x01000000 /* counter-based, ten rounds */

#define VSL_WH_MEMBERS 273      /* members of the Wichmann-Hill family */
#define VSL_MT2203_MEMBERS 6024 /* members of the MT2203 family */

/* How many generators can be known at once, those of the library and those registered. vslRegisterBrng gives
 * identifiers behind VSL_BRNG_PHILOX4X32X10, VSL_BRNG_INC apart. */
#define VSL_MAX_REG_BRNGS 512

/* How numbers of a distribution are made from those of the generator: the first argument of the generators.
 *
 * With the flag VSL_RNG_METHOD_ACCURACY_FLAG every result lies inside the distribution's bounds even after
 * rounding; it may be added where a name with _ACCURATE stands below. */
#define VSL_RNG_METHOD_ACCURACY_FLAG (1 << 30)

/* v?RngUniform: a + (b-a)*u with u in [0,1); viRngUniform: its integer part */
#define VSL_RNG_METHOD_UNIFORM_STD 0
#define VSL_RNG_METHOD_UNIFORM_STD_ACCURATE (VSL_RNG_METHOD_UNIFORM_STD | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_UNIFORMBITS_STD 0   /* the words of the generator's recurrence */
#define VSL_RNG_METHOD_UNIFORMBITS32_STD 0 /* 32 uniform bits */
#define VSL_RNG_METHOD_UNIFORMBITS64_STD 0 /* 64 uniform bits */

#define VSL_RNG_METHOD_GAUSSIAN_BOXMULLER 0  /* two uniform numbers a result */
#define VSL_RNG_METHOD_GAUSSIAN_BOXMULLER2 1 /* two uniform numbers for two results */
#define VSL_RNG_METHOD_GAUSSIAN_ICDF 2       /* inverse of the distribution function, one uniform number */
#define VSL_RNG_METHOD_GAUSSIANMV_BOXMULLER 0
#define VSL_RNG_METHOD_GAUSSIANMV_BOXMULLER2 1
#define VSL_RNG_METHOD_GAUSSIANMV_ICDF 2
#define VSL_RNG_METHOD_LOGNORMAL_BOXMULLER2 0
#define VSL_RNG_METHOD_LOGNORMAL_ICDF 1
#define VSL_RNG_METHOD_LOGNORMAL_BOXMULLER2_ACCURATE                                                       \
    (VSL_RNG_METHOD_LOGNORMAL_BOXMULLER2 | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_LOGNORMAL_ICDF_ACCURATE                                                             \
    (VSL_RNG_METHOD_LOGNORMAL_ICDF | VSL_RNG_METHOD_ACCURACY_FLAG)

/* By the inverse of the distribution function */
#define VSL_RNG_METHOD_EXPONENTIAL_ICDF 0
#define VSL_RNG_METHOD_EXPONENTIAL_ICDF_ACCURATE                                                           \
    (VSL_RNG_METHOD_EXPONENTIAL_ICDF | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_LAPLACE_ICDF 0
#define VSL_RNG_METHOD_WEIBULL_ICDF 0
#define VSL_RNG_METHOD_WEIBULL_ICDF_ACCURATE (VSL_RNG_METHOD_WEIBULL_ICDF | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_CAUCHY_ICDF 0
#define VSL_RNG_METHOD_RAYLEIGH_ICDF 0
#define VSL_RNG_METHOD_RAYLEIGH_ICDF_ACCURATE (VSL_RNG_METHOD_RAYLEIGH_ICDF | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_GUMBEL_ICDF 0
#define VSL_RNG_METHOD_BERNOULLI_ICDF 0
#define VSL_RNG_METHOD_GEOMETRIC_ICDF 0

/* By transformation and rejection */
#define VSL_RNG_METHOD_GAMMA_GNORM 0
#define VSL_RNG_METHOD_GAMMA_GNORM_ACCURATE (VSL_RNG_METHOD_GAMMA_GNORM | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_BETA_CJA 0
#define VSL_RNG_METHOD_BETA_CJA_ACCURATE (VSL_RNG_METHOD_BETA_CJA | VSL_RNG_METHOD_ACCURACY_FLAG)
#define VSL_RNG_METHOD_CHISQUARE_CHI2GAMMA 0
#define VSL_RNG_METHOD_BINOMIAL_BTPE 0
#define VSL_RNG_METHOD_MULTINOMIAL_MULTPOISSON 0 /* Poisson numbers, corrected to the number of trials */
#define VSL_RNG_METHOD_HYPERGEOMETRIC_H2PE 0
#define VSL_RNG_METHOD_POISSON_PTPE 0     /* acceptance and rejection */
#define VSL_RNG_METHOD_POISSON_POISNORM 1 /* by way of Gaussian numbers */
#define VSL_RNG_METHOD_POISSONV_POISNORM 0
#define VSL_RNG_METHOD_NEGBINOMIAL_NBAR 0

/* How v?RngGaussianMV finds the lower triangular factor T of the covariance matrix, covariance = T*transpose(T) */
#define VSL_MATRIX_STORAGE_FULL 0     /* dimen by dimen elements, by rows; the upper triangle is not read */
#define VSL_MATRIX_STORAGE_PACKED 1   /* dimen*(dimen+1)/2 elements, the lower triangle by rows */
#define VSL_MATRIX_STORAGE_DIAGONAL 2 /* dimen elements, the diagonal */

/* Status values of all routines. */
#define VSL_STATUS_OK 0
#define VSL_ERROR_OK 0
#define VSL_ERROR_FEATURE_NOT_IMPLEMENTED (-1) /* the library does not do this for these arguments */
#define VSL_ERROR_UNKNOWN (-2)                 /* a distribution refused 100,000 numbers in a row */
#define VSL_ERROR_BADARGS (-3)                 /* an argument is out of its range, or a null array */
#define VSL_ERROR_MEM_FAILURE (-4)             /* no memory */
#define VSL_ERROR_NULL_PTR (-5)                /* the stream, or the address of one, is null */
#define VSL_ERROR_CPU_NOT_SUPPORTED (-6)       /* not used by this library */

/* Streams */
#define VSL_RNG_ERROR_INVALID_BRNG_INDEX (-1000)      /* no generator has this identifier */
#define VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED (-1002)    /* the generator has no leapfrog */
#define VSL_RNG_ERROR_SKIPAHEAD_UNSUPPORTED (-1003)   /* the generator can't skip numbers */
#define VSL_RNG_ERROR_SKIPAHEADEX_UNSUPPORTED (-1004) /* it can't, or not so many as that */
#define VSL_RNG_ERROR_BRNGS_INCOMPATIBLE (-1005) /* vslCopyStreamState: generators or dimensions differ */
#define VSL_RNG_ERROR_BAD_STREAM (-1006)         /* not a stream, or one that was deleted */
#define VSL_RNG_ERROR_BRNG_TABLE_FULL (-1007) /* vslRegisterBrng: VSL_MAX_REG_BRNGS generators are known */
#define VSL_RNG_ERROR_BAD_STREAM_STATE_SIZE (-1008) /* vslRegisterBrng: StreamStateSize is too small */
#define VSL_RNG_ERROR_BAD_WORD_SIZE (-1009)         /* vslRegisterBrng: WordSize is not 4, 8 or 16 */
#define VSL_RNG_ERROR_BAD_NSEEDS (-1010)            /* vslRegisterBrng: NSeeds is negative */
#define VSL_RNG_ERROR_BAD_NBITS (-1011)           /* vslRegisterBrng: NBits is not 1 to 8 times WordSize */
#define VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED (-1012) /* the quasi-random sequence is at its end */
#define VSL_RNG_ERROR_LEAPFROG_NSTREAMS_TOO_BIG                                                            \
    (-1013)                                      /* more streams than the generator can be split into */
#define VSL_RNG_ERROR_BRNG_NOT_SUPPORTED (-1014) /* this library does not have the generator */
#define VSL_RNG_ERROR_BAD_UPDATE (-1120) /* an abstract stream's callback returned a count out of range */
#define VSL_RNG_ERROR_NO_NUMBERS (-1121) /* an abstract stream's callback gave no number */
#define VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM (-1122)     /* an abstract stream can't do this */
#define VSL_RNG_ERROR_NONDETERM_NOT_SUPPORTED (-1130)     /* this system gives no noise */
#define VSL_RNG_ERROR_NONDETERM_NRETRIES_EXCEEDED (-1131) /* it was interrupted again and again */
#define VSL_RNG_ERROR_ARS5_NOT_SUPPORTED (-1140)          /* this processor has no AES instructions */
#define VSL_DISTR_MULTINOMIAL_BAD_PROBABILITY_ARRAY                                                        \
    (-1150) /* negative probabilities, or their sum is not 1 */

/* Saved streams */
#define VSL_RNG_ERROR_FILE_CLOSE (-1100)      /* the file can't be closed, for want of room for instance */
#define VSL_RNG_ERROR_FILE_OPEN (-1101)       /* the file can't be opened */
#define VSL_RNG_ERROR_FILE_WRITE (-1102)      /* the file can't be written */
#define VSL_RNG_ERROR_FILE_READ (-1103)       /* the file can't be read */
#define VSL_RNG_ERROR_BAD_FILE_FORMAT (-1110) /* not a saved stream, or a damaged one */
#define VSL_RNG_ERROR_UNSUPPORTED_FILE_VER (-1111) /* saved by a newer version */
#define VSL_RNG_ERROR_BAD_MEM_FORMAT (-1200)       /* memory that holds no saved stream, or a damaged one */

/* Convolution and correlation */
#define VSL_CC_STATUS_OK 0
#define VSL_CC_ERROR_NOT_IMPLEMENTED (-2000)    /* not used by this library */
#define VSL_CC_ERROR_ALLOCATION_FAILURE (-2001) /* no memory */
#define VSL_CC_ERROR_BAD_DESCRIPTOR (-2200)     /* the task is null, was deleted, or is something else */
#define VSL_CC_ERROR_SERVICE_FAILURE (-2210)    /* a transform failed */
#define VSL_CC_ERROR_EDIT_FAILURE (-2211)       /* not used by this library */
#define VSL_CC_ERROR_EDIT_PROHIBITED (-2212)    /* not used by this library */
#define VSL_CC_ERROR_COMMIT_FAILURE (-2220)     /* not used by this library */
#define VSL_CC_ERROR_COPY_FAILURE (-2230)       /* not used by this library */
#define VSL_CC_ERROR_DELETE_FAILURE (-2240)     /* not used by this library */
#define VSL_CC_ERROR_BAD_ARGUMENT (-2300)       /* the address for a new task is null */
#define VSL_CC_ERROR_JOB (-2100)        /* wrong routine for the task: ExecX without x, Exec with one */
#define VSL_CC_ERROR_KIND (-2110)       /* from the core's entries alone: neither kind */
#define VSL_CC_ERROR_MODE (-2120)       /* mode is none of VSL_CONV_MODE_AUTO, _DIRECT, _FFT */
#define VSL_CC_ERROR_TYPE (-2130)       /* from the core's entries alone: neither real nor complex */
#define VSL_CC_ERROR_DIMS (-2301)       /* dims is not 1 to VSL_CONV_MAX_DIMS */
#define VSL_CC_ERROR_START (-2302)      /* start is null */
#define VSL_CC_ERROR_DECIMATION (-2303) /* decimation is null or has an element below 1 */
#define VSL_CC_ERROR_XSHAPE (-2304) /* xshape is null, has an element below 1, or is too large to address */
#define VSL_CC_ERROR_YSHAPE (-2305) /* yshape likewise */
#define VSL_CC_ERROR_ZSHAPE (-2306) /* zshape likewise */
#define VSL_CC_ERROR_XSTRIDE (-2307) /* xstride is null, has an element 0, or reaches too far to address */
#define VSL_CC_ERROR_YSTRIDE (-2308) /* ystride likewise */
#define VSL_CC_ERROR_ZSTRIDE (-2309) /* zstride likewise */
#define VSL_CC_ERROR_X (-2310)       /* x is null */
#define VSL_CC_ERROR_Y (-2311)       /* y is null */
#define VSL_CC_ERROR_Z (-2312)       /* z is null */
#define VSL_CC_ERROR_EXTERNAL_PRECISION                                                                    \
    (-2400) /* from the core's entries alone: neither single nor double */
#define VSL_CC_ERROR_INTERNAL_PRECISION (-2401) /* the internal precision is neither single nor double */
#define VSL_CC_ERROR_METHOD (-2402) /* VSL_CONV_MODE_FFT without the core's module of transforms */
#define VSL_CC_ERROR_OTHER (-2800)  /* not used by this library */

#define VSL_CONV_MAX_DIMS 7 /* dimensions of a task's arrays, at most */

/* How a task computes. */
#define VSL_CONV_MODE_AUTO 0   /* whichever is faster for its sizes; the start */
#define VSL_CONV_MODE_DIRECT 1 /* by the definition: the most accurate, for short arrays the fastest */
#define VSL_CONV_MODE_FFT 2    /* by Fourier transforms: faster for long arrays */
#define VSL_CORR_MODE_AUTO VSL_CONV_MODE_AUTO
#define VSL_CORR_MODE_DIRECT VSL_CONV_MODE_DIRECT
#define VSL_CORR_MODE_FFT VSL_CONV_MODE_FFT

/* In which precision a task computes. */
#define VSL_CONV_PRECISION_SINGLE 1
#define VSL_CONV_PRECISION_DOUBLE 2
#define VSL_CORR_PRECISION_SINGLE VSL_CONV_PRECISION_SINGLE
#define VSL_CORR_PRECISION_DOUBLE VSL_CONV_PRECISION_DOUBLE

/* A generator of the program's own: what vslRegisterBrng is given, and vslGetBrngProperties gives. The
 * functions return a status, VSL_ERROR_OK or a negative value that the caller of the library then gets. */

/* What InitStream is asked for */
#define VSL_INIT_METHOD_STANDARD 0 /* the start, from n words of params */
#define VSL_INIT_METHOD_LEAPFROG                                                                           \
    1 /* every params[1]-th number from params[0] on; the start has been made */
#define VSL_INIT_METHOD_SKIPAHEAD 2 /* params[0] numbers further on, params[1] its upper half if n is 2 */

typedef int (*InitStreamPtr)(int method, VSLStreamStatePtr stream, int n, const unsigned int params[]);
/* n uniform numbers of [a,b) */
typedef int (*sBRngPtr)(VSLStreamStatePtr stream, int n, float r[], float a, float b);
typedef int (*dBRngPtr)(VSLStreamStatePtr stream, int n, double r[], double a, double b);
/* n elements of the recurrence, each WordSize bytes */
typedef int (*iBRngPtr)(VSLStreamStatePtr stream, int n, unsigned int r[]);

typedef struct {
    int StreamStateSize; /* bytes of a stream's state, of which the library uses the first 16 */
    int NSeeds;          /* words of params that InitStream takes; missing ones are made up by it */
    int IncludesZero;    /* 1: the recurrence gives 0 too; 0: it does not */
    int WordSize;        /* bytes of an element of the recurrence: 4, 8 or 16 */
    int NBits;           /* bits of it that are random */
    InitStreamPtr InitStream;
    sBRngPtr sBRng;
    dBRngPtr dBRng;
    iBRngPtr iBRng;
} VSLBRngProperties;

/* An abstract stream's buffer runs empty: the callback refills it. `buf` has `n` elements and is read in a
 * circle; from index `idx` on, write at least `nmin` and at most `nmax` elements (going on at index 0 behind
 * the last) and return how many. */
typedef int (*iUpdateFuncPtr)(VSLStreamStatePtr stream, int *n, unsigned int ibuf[], int *nmin, int *nmax,
                              int *idx);
typedef int (*dUpdateFuncPtr)(VSLStreamStatePtr stream, int *n, double dbuf[], int *nmin, int *nmax,
                              int *idx);
typedef int (*sUpdateFuncPtr)(VSLStreamStatePtr stream, int *n, float sbuf[], int *nmin, int *nmax,
                              int *idx);

#endif
