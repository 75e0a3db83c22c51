/* fftw3.h: the FFTW3 interface to this library's Fourier transforms, for programs written for FFTW. With this
 * folder in the search path they compile unchanged; they link this library instead of libfftw3 and libfftw3f
 * (and their _threads and _omp companions).
 *
 *     fftw_complex *in = fftw_alloc_complex(n), *out = fftw_alloc_complex(n);
 *     fftw_plan plan = fftw_plan_dft_1d(n, in, out, FFTW_FORWARD, FFTW_ESTIMATE);
 *     ... fill in ...
 *     fftw_execute(plan);
 *     fftw_destroy_plan(plan);
 *
 * fftw_ is double precision, fftwf_ single; there is no long double. Transforms are not normalised: forward
 * and backward give n times the data. A planner that cannot serve returns null, and fftw_execute does nothing
 * with a null plan: test for it. What is refused: more than 7 dimensions; a howmany_rank above 1; complex,
 * split and real-to-real plans in place whose input and output strides differ; split transforms of real
 * data. Planning never touches the arrays, and the input of an out-of-place transform is always kept.
 * Arrays may be at any address. Integers are int, as in FFTW, but for the guru64 planners.
 *
 * Settings beyond this interface, alignment and a constructor of one's own: fftw3_xkl.h. */
#ifndef FFTW3_H
#define FFTW3_H

#include <stddef.h>
#include <stdio.h>

/* Complex numbers are those of C when <complex.h> was included before, else pairs of real and imaginary part;
 * a std::complex has the same layout. */
#if !defined(FFTW_NO_Complex) && defined(_Complex_I) && defined(complex) && defined(I)
typedef double _Complex fftw_complex;
typedef float _Complex fftwf_complex;
#else
typedef double fftw_complex[2];
typedef float fftwf_complex[2];
#endif

/* A plan: opaque, made by a planner, released by destroy_plan. */
typedef struct fftw_plan_s *fftw_plan;
typedef struct fftwf_plan_s *fftwf_plan;

/* A dimension of the guru planners: its length, and the distances between neighbours in the input and in the
 * output, in elements of either. */
typedef struct {
    int n;
    int is;
    int os;
} fftw_iodim;
typedef struct {
    ptrdiff_t n;
    ptrdiff_t is;
    ptrdiff_t os;
} fftw_iodim64;
typedef fftw_iodim fftwf_iodim;
typedef fftw_iodim64 fftwf_iodim64;

/* Programs hand these to the wisdom and thread routines, which never call them. */
typedef void (*fftw_write_char_func)(char c, void *data);
typedef int (*fftw_read_char_func)(void *data);
typedef void (*fftw_spawn_loop_func)(void *(*work)(char *), char *jobs, size_t size, int count, void *data);
typedef fftw_write_char_func fftwf_write_char_func;
typedef fftw_read_char_func fftwf_read_char_func;
typedef fftw_spawn_loop_func fftwf_spawn_loop_func;

/* For fftw_set_timelimit. */
#define FFTW_NO_TIMELIMIT (-1.0)

#include "fftw3_routines.h"

#endif
