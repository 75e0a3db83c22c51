/* fftw3_xkl.h: what this library's FFTW3 interface has beyond fftw3.h: its settings, one object for the
 * double and the single family, and the record behind a plan. */
#ifndef FFTW3_XKL_H
#define FFTW3_XKL_H

#include "fftw3.h"

#include <stdint.h>

/* A plan. The library's own constructor fills words 0 to 8 and 10 with zero and word 9 with the library's
 * destroy routine. Whoever replaces the constructor may put a destroy routine of his own into word 9 that ends
 * in the library's, and may add words behind the last one; execution with new arrays hands a copy of these
 * twelve to the execute routine. */
struct DFTI_DESCRIPTOR;
typedef struct fftw3_xkl_plan {
    struct DFTI_DESCRIPTOR *descriptor; /* 0: of xkl_dfti.h */
    void *in;                           /* 1: input; of split arrays the real part */
    void *out;                          /* 2: output when out of place; of split arrays the real part */
    void *second_in;  /* 3: imaginary part of split input; real-to-real plans: the transform */
    void *second_out; /* 4: imaginary part of split output; real-to-real plans: the constructor's
                          destroy routine */
    void *buffers[3]; /* 5 to 7: memory that goes with the plan, through fftw_free */
    void (*execute)(struct fftw3_xkl_plan *); /* 8 */
    void (*destroy)(struct fftw3_xkl_plan *); /* 9 */
    void *reserved;                           /* 10: zero in a new plan */
    void *unset;                              /* 11: whatever the memory held */
} fftw3_xkl_plan;

/* Settings of the process. Written by the routines named below and by the program, read by every planner;
 * nothing guards it: change it while no other thread plans. */
typedef struct fftw3_xkl_settings {
    int32_t reserved;      /* 0 */
    int32_t thread_count;  /* threads of later plans, 1 at first; negative: as many as they like. Set by
                              fftw_init_threads, fftw_plan_with_nthreads and fftw_cleanup_threads */
    double time_limit;     /* kept for fftw_set_timelimit, 0 at first */
    int64_t reserved_word; /* 1 */
    fftw3_xkl_plan *(*plan_constructor)(void); /* makes an empty plan, or returns null; every
                                                  planner calls it */
    int32_t alignment;                         /* of fftw_malloc and its kin, 64 at first: a power of 2 */
} fftw3_xkl_settings;

#ifdef __cplusplus
extern "C" {
#endif

extern fftw3_xkl_settings fftw3_xkl;

#ifdef __cplusplus
}
#endif

#endif
