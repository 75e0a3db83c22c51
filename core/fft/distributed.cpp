// Transforms over several processes: this core has none, and says so with a status rather than by ending a
// program that only asks.
#include "dft/communicators.h"

#include "core_dfti.h"
#include "xkl_dfti.h"

const xkl_mpi_wrappers *xkl_serv_get_mpi_wrappers(void)
{
    return nullptr;
}

int32_t xkl_dft_dfti_commit_descriptor_dm(void *)
{
    return DFTI_UNIMPLEMENTED;
}

int32_t xkl_dft_dfti_create_descriptor_dm1(void *, void **, const int32_t *, const int32_t *,
                                           const int64_t *, const int64_t *)
{
    return DFTI_UNIMPLEMENTED;
}

int32_t xkl_dft_dfti_set_value_dmi(void *const *, const int32_t *, const int64_t *)
{
    return DFTI_UNIMPLEMENTED;
}

int32_t xkl_dft_dfti_set_value_dmp(void *const *, const int32_t *, void *)
{
    return DFTI_UNIMPLEMENTED;
}
