// What happens to a whole descriptor between its creation and its end, and what its statuses mean.
#include "dfti/core_services.h"
#include "dfti/descriptor.h"

using namespace xkl::dfti;

namespace {

/// Complex elements on the conjugate-even side have a format of their own, which reals there cannot have.
bool storage_is_consistent(const DFTI_DESCRIPTOR &descriptor)
{
    const bool complex_format = descriptor.packed_format == DFTI_CCE_FORMAT;
    if (descriptor.conjugate_even_storage == DFTI_COMPLEX_COMPLEX)
        return complex_format;
    return descriptor.conjugate_even_storage != DFTI_COMPLEX_REAL || !complex_format;
}

constexpr int first_message = 774;
constexpr int unknown_message = 784;
constexpr long last_status = DFTI_1D_LENGTH_EXCEEDS_INT32;

} // namespace

extern "C" {

long DftiCommitDescriptor(DFTI_DESCRIPTOR_HANDLE handle)
{
    if (!is_descriptor(handle))
        return DFTI_BAD_DESCRIPTOR;
    if (!handle->operations->commit)
        return DFTI_INTERNAL_ERROR;
    if (!storage_is_consistent(*handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    return handle->operations->commit(handle);
}
decltype(DftiCommitDescriptor) xkl_dft_dfticommitdescriptor __attribute__((alias("DftiCommitDescriptor")));

long DftiCopyDescriptor(DFTI_DESCRIPTOR_HANDLE handle, DFTI_DESCRIPTOR_HANDLE *copy)
{
    if (!is_descriptor(handle))
        return DFTI_BAD_DESCRIPTOR;
    if (!copy)
        return DFTI_INCONSISTENT_CONFIGURATION;
    DFTI_DESCRIPTOR_HANDLE made = nullptr;
    if (const int32_t status = handle->operations->copy(handle, &made); status != DFTI_NO_ERROR)
        return status;
    if (handle->commit_status == DFTI_COMMITTED)
        if (const long status = DftiCommitDescriptor(made); status != DFTI_NO_ERROR) {
            made->free(made);
            return status;
        }
    *copy = made;
    return DFTI_NO_ERROR;
}
decltype(DftiCopyDescriptor) xkl_dft_dfticopydescriptor __attribute__((alias("DftiCopyDescriptor")));

long DftiFreeDescriptor(DFTI_DESCRIPTOR_HANDLE *handle)
{
    return xkl_dft_dfti_free_descriptor_external(handle);
}
decltype(DftiFreeDescriptor) xkl_dft_dftifreedescriptor __attribute__((alias("DftiFreeDescriptor")));

long DftiErrorClass(long status, long error_class)
{
    // The core reads the low halves.
    return xkl_dft_dfti_error_class_external(reinterpret_cast<const int32_t *>(&status),
                                             reinterpret_cast<const int32_t *>(&error_class));
}
decltype(DftiErrorClass) xkl_dft_dftierrorclass __attribute__((alias("DftiErrorClass")));

char *DftiErrorMessage(long status)
{
    const bool known = status >= 0 && status <= last_status && status != DFTI_MULTITHREADED_ERROR;
    return const_cast<char *>(
        xkl_serv_get_msg(known ? first_message + static_cast<int>(status) : unknown_message, 0));
}
decltype(DftiErrorMessage) xkl_dft_dftierrormessage __attribute__((alias("DftiErrorMessage")));
}
