// The entries that configure, copy and release descriptors, and tell what statuses mean.
#include "core_dfti.h"
#include "fft/descriptor.h"

#include "service/service_entries.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace xkl::fft;

namespace {

// 3 without an address, 5 without a live descriptor behind it.
int32_t find(DFTI_DESCRIPTOR *const *handle, descriptor *&found)
{
    found = handle ? live_descriptor(*handle) : nullptr;
    if (found)
        return DFTI_NO_ERROR;
    return handle ? DFTI_BAD_DESCRIPTOR : DFTI_INCONSISTENT_CONFIGURATION;
}

// The same for access to a parameter, which needs addresses of its number and its value.
int32_t find(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter, const void *value,
             descriptor *&found)
{
    if (const int32_t status = find(handle, found))
        return status;
    return parameter && value ? DFTI_NO_ERROR : DFTI_INCONSISTENT_CONFIGURATION;
}

} // namespace

extern "C" {

// A descriptor belongs to no thread here.
void xkl_dft_bless_node_thr(DFTI_DESCRIPTOR *) {}

int32_t xkl_dft_dfti_commit_descriptor_external(DFTI_DESCRIPTOR *const *handle)
{
    descriptor *found;
    const int32_t status = find(handle, found);
    return status ? status : commit(*found);
}

int32_t xkl_dft_dfti_copy_descriptor_external(DFTI_DESCRIPTOR *const *handle, DFTI_DESCRIPTOR **made)
{
    descriptor *found;
    if (const int32_t status = find(handle, found))
        return status;
    if (!made)
        return DFTI_INCONSISTENT_CONFIGURATION;
    DFTI_DESCRIPTOR *second = nullptr;
    int32_t status = copy(*found, &second);
    if (!status && found->commit_status == DFTI_COMMITTED)
        status = commit(*live_descriptor(second));
    if (!status)
        *made = second;
    else if (second)
        second->free(second);
    return status;
}

int32_t xkl_dft_dfti_free_descriptor_external(DFTI_DESCRIPTOR **handle)
{
    descriptor *found;
    if (const int32_t status = find(handle, found))
        return status;
    *handle = nullptr;
    return found->free(found);
}

int32_t xkl_dft_dfti_set_value_intval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const int64_t *value)
{
    descriptor *found;
    const int32_t status = find(handle, parameter, value, found);
    return status ? status : set_integer(*found, *parameter, *value);
}

int32_t xkl_dft_dfti_get_value_intval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      int64_t *value)
{
    descriptor *found;
    const int32_t status = find(handle, parameter, value, found);
    return status ? status : get_integer(*found, *parameter, *value);
}

int32_t xkl_dft_dfti_get_value_dblval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      double *value)
{
    descriptor *found;
    const int32_t status = find(handle, parameter, value, found);
    return status ? status : descriptor_operations.get_scale(found, *parameter, value);
}

void xkl_dft_dfti_get_version_string(char *text, int32_t size)
{
    if (text && size > 0)
        std::snprintf(text, static_cast<size_t>(size),
                      "XKL %d.%d.%d, Fourier transforms by libxkl_core_fft.so over FFTW 3",
                      XKL_VERSION_MAJOR, XKL_VERSION_MINOR, XKL_VERSION_PATCH);
}

int32_t xkl_dft_dfti_error_class_external(const int32_t *status, const int32_t *error_class)
{
    return status && error_class && *status == *error_class;
}

// Fortran's text: filled up with blanks. The numbers are those of DftiErrorMessage.
int32_t xkl_dft_dfti_error_message_external(const int32_t *status, char *text, int64_t length)
{
    if (!status || !text || length < 0)
        return DFTI_INCONSISTENT_CONFIGURATION;
    const bool known =
        *status >= 0 && *status <= DFTI_1D_LENGTH_EXCEEDS_INT32 && *status != DFTI_MULTITHREADED_ERROR;
    const char *message = xkl_serv_get_msg(known ? 774 + *status : 784, 0);
    const auto room = static_cast<size_t>(length), used = std::min(std::strlen(message), room);
    std::memcpy(text, message, used);
    std::memset(text + used, ' ', room - used);
    return DFTI_NO_ERROR;
}
}
