// Transforms over several processes, as their Fortran module calls them, and what the core offers for them.
#pragma once

#include "xkl_dfti.h"

/// What the core knows of the program's message passing library. Null entries are not offered.
struct xkl_mpi_wrappers {
    void *(*communicator_of_fortran)(int32_t communicator);
};

extern "C" {

int32_t DFTICREATEDESCRIPTORDM1_INTERNAL(const int32_t *communicator, void **handle,
                                         const int32_t *precision, const int32_t *domain,
                                         const int64_t *dimension, const int64_t *lengths);
int32_t DFTISETVALUEDMI_INTERNAL(void *const *handle, const int32_t *parameter, const int64_t *value);
int32_t DFTISETVALUEDMP_INTERNAL(void *const *handle, const int32_t *parameter, void *value);
}
