// Reals, vectors and text of a descriptor, by reference.
#include "dfti/access.h"

#include "dfti/core_services.h"
#include "dfti/descriptor.h"

#include <algorithm>

using namespace xkl::dfti;

namespace {

/// Why there is no access, before it is known whether the parameter is one of the operation's.
int32_t refusal(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter, const void *value)
{
    if (!handle)
        return DFTI_INCONSISTENT_CONFIGURATION;
    if (!is_descriptor(*handle))
        return DFTI_BAD_DESCRIPTOR;
    return parameter && value ? DFTI_NO_ERROR : DFTI_INCONSISTENT_CONFIGURATION;
}

bool is_scale(int32_t parameter)
{
    return parameter == DFTI_FORWARD_SCALE || parameter == DFTI_BACKWARD_SCALE;
}

template <class T>
int32_t set_scale(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter, const T *value)
{
    if (const int32_t status = refusal(handle, parameter, value); status != DFTI_NO_ERROR)
        return status;
    if (!is_scale(*parameter))
        return DFTI_INCONSISTENT_CONFIGURATION;
    return (*handle)->operations->set_scale(*handle, *parameter, *value);
}

/// Null for a parameter that is no vector.
xkl_dft_operations::get_vector *vector_operation(const xkl_dft_operations &operations, int32_t parameter)
{
    switch (parameter) {
    case DFTI_LENGTHS:
        return operations.get_lengths;
    case DFTI_INPUT_STRIDES:
        return operations.get_input_strides;
    case DFTI_OUTPUT_STRIDES:
        return operations.get_output_strides;
    default:
        return nullptr;
    }
}

/// A C text into a Fortran one.
void store_padded(const char *from, size_t capacity, char *text, int64_t length)
{
    const auto known = static_cast<int64_t>(xkl_serv_strnlen_s(from, capacity));
    for (int64_t i = 0; i < length; ++i)
        text[i] = i < known ? from[i] : ' ';
}

int64_t trimmed_length(const char *text, int64_t length)
{
    length = std::clamp(length, int64_t{0}, longest_name);
    while (length > 0 && text[length - 1] == ' ')
        --length;
    return length;
}

int32_t get_version(char *text, int64_t length)
{
    char version[DFTI_VERSION_LENGTH];
    version[0] = '\0';
    xkl_dft_dfti_get_version_string(version, DFTI_VERSION_LENGTH);
    store_padded(version, DFTI_VERSION_LENGTH - 1, text, length);
    return DFTI_NO_ERROR;
}

} // namespace

extern "C" {

int32_t xkl_dft_dfti_get_value_sglval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      float *value)
{
    if (const int32_t status = refusal(handle, parameter, value); status != DFTI_NO_ERROR)
        return status;
    if (!is_scale(*parameter))
        return DFTI_INCONSISTENT_CONFIGURATION;
    double scale = 0;
    const int32_t status = (*handle)->operations->get_scale(*handle, *parameter, &scale);
    if (status == DFTI_NO_ERROR)
        *value = static_cast<float>(scale);
    return status;
}

int32_t xkl_dft_dfti_set_value_sglval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const float *value)
{
    return set_scale(handle, parameter, value);
}

int32_t xkl_dft_dfti_set_value_dblval(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const double *value)
{
    return set_scale(handle, parameter, value);
}

int32_t xkl_dft_dfti_get_value_intvec(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      int64_t *vector)
{
    if (const int32_t status = refusal(handle, parameter, vector); status != DFTI_NO_ERROR)
        return status;
    xkl_dft_operations::get_vector *const get = vector_operation(*(*handle)->operations, *parameter);
    if (!get)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return get(*handle, vector);
}

int32_t xkl_dft_dfti_set_value_intvec(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                      const int64_t *vector)
{
    if (const int32_t status = refusal(handle, parameter, vector); status != DFTI_NO_ERROR)
        return status;
    const xkl_dft_operations &operations = *(*handle)->operations;
    if (*parameter == DFTI_INPUT_STRIDES)
        return operations.set_input_strides(*handle, vector);
    if (*parameter == DFTI_OUTPUT_STRIDES)
        return operations.set_output_strides(*handle, vector);
    return DFTI_INCONSISTENT_CONFIGURATION;
}

int32_t xkl_dft_dfti_get_value_chars(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter, char *text,
                                     int64_t length)
{
    if (parameter && *parameter == DFTI_VERSION)
        return text ? get_version(text, length) : DFTI_INCONSISTENT_CONFIGURATION;
    if (const int32_t status = refusal(handle, parameter, text); status != DFTI_NO_ERROR)
        return status;
    if (*parameter != DFTI_DESCRIPTOR_NAME)
        return DFTI_INCONSISTENT_CONFIGURATION;
    char name[DFTI_MAX_NAME_LENGTH] = {};
    const int32_t status = (*handle)->operations->get_name(*handle, name, DFTI_MAX_NAME_LENGTH);
    if (status == DFTI_NO_ERROR)
        store_padded(name, DFTI_MAX_NAME_LENGTH - 1, text, length);
    return status;
}

int32_t xkl_dft_dfti_set_value_chars(DFTI_DESCRIPTOR *const *handle, const int32_t *parameter,
                                     const char *text, int64_t length)
{
    if (const int32_t status = refusal(handle, parameter, text); status != DFTI_NO_ERROR)
        return status;
    if (*parameter != DFTI_DESCRIPTOR_NAME)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return (*handle)->operations->set_name(*handle, text, trimmed_length(text, length));
}
}
