// Entries of the core for the eleven real transforms of real data: cosine, sine and Hartley transforms and
// the half-complex pair. All other plans own a descriptor and reach the core through that.
#pragma once

#include <cstdint>

extern "C" {
/// Makes a transform of `rank` dimensions, repeated over `howmany_rank` more. `dims` and `howmany_dims` are
/// triples (n, is, os), strides in elements, the last dimension varies fastest. `kinds` has one number of
/// fftw_r2r_kind (0 to 10) for each of `rank` dimensions. `precision` is 35 for float, 36 for double. With
/// `in_place`, input and output are the same array. At most `thread_limit` threads compute; a negative limit
/// is none. 0, or a status of the descriptors with `*transform` null.
int32_t xkl_dft_r2r_create(void **transform, int32_t precision, int32_t rank, const int64_t *dims,
                           int32_t howmany_rank, const int64_t *howmany_dims, const int32_t *kinds,
                           int32_t in_place, int32_t thread_limit);

/// Computes; several threads may do so at once with arrays of their own. `out` is `in` when in place.
int32_t xkl_dft_r2r_execute(void *transform, void *in, void *out);

/// Releases `*transform`, which becomes null; a null one is left alone.
int32_t xkl_dft_r2r_free(void **transform);
}
