// Transforms over several processes, as their Fortran module calls them.
#pragma once

#include "xkl_dfti.h"

extern "C" {

int32_t DFTICREATEDESCRIPTORDM1_INTERNAL(const int32_t *communicator, void **handle,
                                         const int32_t *precision, const int32_t *domain,
                                         const int64_t *dimension, const int64_t *lengths);
int32_t DFTISETVALUEDMI_INTERNAL(void *const *handle, const int32_t *parameter, const int64_t *value);
int32_t DFTISETVALUEDMP_INTERNAL(void *const *handle, const int32_t *parameter, void *value);
}
