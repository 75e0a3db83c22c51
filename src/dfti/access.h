// What the Fortran interface of the transforms is served by in this library: reals, vectors and text. Vectors
// are not reversed, Fortran's first dimension is the fastest, as the core's is.
#pragma once

#include "xkl_dfti.h"

extern "C" {

int32_t xkl_dft_dfti_get_value_sglval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      float *value);
int32_t xkl_dft_dfti_set_value_sglval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const float *value);
int32_t xkl_dft_dfti_set_value_dblval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const double *value);

/// Lengths and strides.
int32_t xkl_dft_dfti_get_value_intvec(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      int64_t *vector);
/// Strides.
int32_t xkl_dft_dfti_set_value_intvec(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const int64_t *vector);

/// The descriptor's name, and the version (without a descriptor), padded with blanks; trailing blanks are
/// no part of a name that is set.
int32_t xkl_dft_dfti_get_value_chars(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter, char *text,
                                     int64_t length);
int32_t xkl_dft_dfti_set_value_chars(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                     const char *text, int64_t length);
}
