// The entries that make, configure and release descriptors.
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

int32_t create_one(DFTI_DESCRIPTOR **handle, int32_t precision, int32_t domain, int64_t length)
{
    return create(handle, precision, domain, 1, &length);
}

// The Fortran forms, everything by reference.
int32_t create_by_reference(DFTI_DESCRIPTOR **handle, const int32_t *precision, const int32_t *domain,
                            const int64_t *dimension, const int64_t *lengths)
{
    if (handle)
        *handle = nullptr;
    if (!handle || !precision || !domain || !dimension)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return create(handle, *precision, *domain, *dimension, lengths);
}

constexpr int32_t single_precision = DFTI_SINGLE, double_precision = DFTI_DOUBLE;
constexpr int64_t one_dimension = 1;

} // namespace

extern "C" {

int32_t xkl_dft_dfti_create_scmd(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t)
{
    return create(handle, DFTI_SINGLE, DFTI_COMPLEX, rank, lengths);
}
int32_t xkl_dft_dfti_create_srmd(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t)
{
    return create(handle, DFTI_SINGLE, DFTI_REAL, rank, lengths);
}
int32_t xkl_dft_dfti_create_dcmd(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t)
{
    return create(handle, DFTI_DOUBLE, DFTI_COMPLEX, rank, lengths);
}
int32_t xkl_dft_dfti_create_drmd(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t)
{
    return create(handle, DFTI_DOUBLE, DFTI_REAL, rank, lengths);
}
int32_t xkl_dft_dfti_create_sc1d(DFTI_DESCRIPTOR **handle, int64_t length, int64_t)
{
    return create_one(handle, DFTI_SINGLE, DFTI_COMPLEX, length);
}
int32_t xkl_dft_dfti_create_sr1d(DFTI_DESCRIPTOR **handle, int64_t length, int64_t)
{
    return create_one(handle, DFTI_SINGLE, DFTI_REAL, length);
}
int32_t xkl_dft_dfti_create_dc1d(DFTI_DESCRIPTOR **handle, int64_t length, int64_t)
{
    return create_one(handle, DFTI_DOUBLE, DFTI_COMPLEX, length);
}
int32_t xkl_dft_dfti_create_dr1d(DFTI_DESCRIPTOR **handle, int64_t length, int64_t)
{
    return create_one(handle, DFTI_DOUBLE, DFTI_REAL, length);
}

int32_t xkl_dft_dfti_create_descriptor_1d(DFTI_DESCRIPTOR **handle, const int32_t *precision,
                                          const int32_t *domain, const int64_t *dimension,
                                          const int64_t *lengths)
{
    return create_by_reference(handle, precision, domain, dimension, lengths);
}
int32_t xkl_dft_dfti_create_descriptor_highd(DFTI_DESCRIPTOR **handle, const int32_t *precision,
                                             const int32_t *domain, const int64_t *dimension,
                                             const int64_t *lengths)
{
    return create_by_reference(handle, precision, domain, dimension, lengths);
}
int32_t xkl_dft_dfti_create_descriptor_s_1d(DFTI_DESCRIPTOR **handle, const void *, const int32_t *domain,
                                            const int64_t *, const int64_t *lengths)
{
    return create_by_reference(handle, &single_precision, domain, &one_dimension, lengths);
}
int32_t xkl_dft_dfti_create_descriptor_d_1d(DFTI_DESCRIPTOR **handle, const void *, const int32_t *domain,
                                            const int64_t *, const int64_t *lengths)
{
    return create_by_reference(handle, &double_precision, domain, &one_dimension, lengths);
}
int32_t xkl_dft_dfti_create_descriptor_s_md(DFTI_DESCRIPTOR **handle, const void *, const int32_t *domain,
                                            const int64_t *dimension, const int64_t *lengths)
{
    return create_by_reference(handle, &single_precision, domain, dimension, lengths);
}
int32_t xkl_dft_dfti_create_descriptor_d_md(DFTI_DESCRIPTOR **handle, const void *, const int32_t *domain,
                                            const int64_t *dimension, const int64_t *lengths)
{
    return create_by_reference(handle, &double_precision, domain, dimension, lengths);
}

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
    if (const int32_t status = find(handle, found))
        return status;
    return parameter && value ? set_integer(*found, *parameter, *value) : DFTI_INCONSISTENT_CONFIGURATION;
}

int32_t xkl_dft_dfti_get_value_intval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      int64_t *value)
{
    descriptor *found;
    if (const int32_t status = find(handle, found))
        return status;
    return parameter && value ? get_integer(*found, *parameter, *value) : DFTI_INCONSISTENT_CONFIGURATION;
}

int32_t xkl_dft_dfti_get_value_dblval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      double *value)
{
    descriptor *found;
    if (const int32_t status = find(handle, found))
        return status;
    return parameter && value ? descriptor_operations.get_scale(found, *parameter, value)
                              : DFTI_INCONSISTENT_CONFIGURATION;
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
