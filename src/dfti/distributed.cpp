// Transforms over several processes belong to the core; here nulls are refused, and Fortran communicators
// become those of C.
#include "dfti/distributed.h"

#include "core_dfti.h"
#include "dft/communicators.h"

namespace {

/// Null where the core knows no message passing library.
void *communicator_of(int32_t fortran_communicator)
{
    const xkl_mpi_wrappers *const wrappers = xkl_serv_get_mpi_wrappers();
    if (!wrappers || !wrappers->communicator_of_fortran)
        return nullptr;
    return wrappers->communicator_of_fortran(fortran_communicator);
}

} // namespace

extern "C" {

long DftiCommitDescriptorDM(DFTI_DESCRIPTOR_DM_HANDLE handle)
{
    return handle ? xkl_dft_dfti_commit_descriptor_dm(handle) : DFTI_INCONSISTENT_CONFIGURATION;
}

int32_t DFTICREATEDESCRIPTORDM1_INTERNAL(const int32_t *communicator, void **handle,
                                         const int32_t *precision, const int32_t *domain,
                                         const int64_t *dimension, const int64_t *lengths)
{
    if (!communicator || !handle || !precision || !domain || !dimension || !lengths)
        return DFTI_INCONSISTENT_CONFIGURATION;
    void *const in_c = communicator_of(*communicator);
    if (!in_c)
        return DFTI_UNIMPLEMENTED;
    return xkl_dft_dfti_create_descriptor_dm1(in_c, handle, precision, domain, dimension, lengths);
}

int32_t DFTISETVALUEDMI_INTERNAL(void *const *handle, const int32_t *parameter, const int64_t *value)
{
    if (!handle || !parameter || !value)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return xkl_dft_dfti_set_value_dmi(handle, parameter, value);
}

int32_t DFTISETVALUEDMP_INTERNAL(void *const *handle, const int32_t *parameter, void *value)
{
    if (!handle || !parameter || !value)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return xkl_dft_dfti_set_value_dmp(handle, parameter, value);
}
}
