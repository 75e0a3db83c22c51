// Entries of the core for real transforms of real data, which have no descriptor.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
extern "C" {

// Dimensions are triples of a length and the strides of input and output, the last one fastest. Kinds are
// FFTW's numbers, 0 (real to half-complex) to 10. A thread limit below 1 is none. 0, or a descriptor's
// status with a null transform.
int32_t xkl_dft_r2r_create(void **made, int32_t precision, int32_t rank, const int64_t *dims,
                           int32_t howmany_rank, const int64_t *howmany_dims, const int32_t *kinds,
                           int32_t in_place, int32_t thread_limit);
int32_t xkl_dft_r2r_execute(void *planned, void *in, void *out);
int32_t xkl_dft_r2r_free(void **planned);
}
#pragma GCC visibility pop
