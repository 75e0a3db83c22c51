// DftiSetValue and DftiGetValue: what a parameter's number says about the type behind it, and who is asked.
#include "dfti/core_services.h"
#include "dfti/descriptor.h"

#include <cstdarg>
#include <cstring>

using namespace xkl::dfti;

namespace {

/// What stands behind a parameter in the lists of DftiSetValue.
enum class setting { none, int32, int64, real, strides, text };

constexpr setting setting_of(int parameter)
{
    switch (parameter) {
    case DFTI_FORWARD_DOMAIN:
    case DFTI_PRECISION:
    case DFTI_COMPLEX_STORAGE:
    case DFTI_REAL_STORAGE:
    case DFTI_CONJUGATE_EVEN_STORAGE:
    case DFTI_PLACEMENT:
    case DFTI_WORKSPACE:
    case DFTI_ORDERING:
    case DFTI_TRANSPOSE:
    case DFTI_PACKED_FORMAT:
    case DFTI_COMMIT_STATUS:
    case DFTI_DESTROY_INPUT:
        return setting::int32;
    case DFTI_NUMBER_OF_TRANSFORMS:
    case DFTI_INPUT_DISTANCE:
    case DFTI_OUTPUT_DISTANCE:
    case DFTI_NUMBER_OF_USER_THREADS:
    case DFTI_THREAD_LIMIT:
        return setting::int64;
    case DFTI_FORWARD_SCALE:
    case DFTI_BACKWARD_SCALE:
        return setting::real;
    case DFTI_INPUT_STRIDES:
    case DFTI_OUTPUT_STRIDES:
        return setting::strides;
    case DFTI_DESCRIPTOR_NAME:
        return setting::text;
    default:
        return setting::none;
    }
}

int32_t set_integer(DFTI_DESCRIPTOR_HANDLE handle, int32_t parameter, int64_t value)
{
    return xkl_dft_dfti_set_value_intval(&handle, &parameter, &value);
}

int32_t set_strides(DFTI_DESCRIPTOR_HANDLE handle, int parameter, const int64_t *strides)
{
    if (!strides)
        return DFTI_INCONSISTENT_CONFIGURATION;
    stride_vector reversed = {strides[0]};
    copy_reversed(strides + 1, handle->rank, reversed + 1);
    const xkl_dft_operations &operations = *handle->operations;
    return parameter == DFTI_INPUT_STRIDES ? operations.set_input_strides(handle, reversed)
                                           : operations.set_output_strides(handle, reversed);
}

int32_t set_name(DFTI_DESCRIPTOR_HANDLE handle, const char *text)
{
    if (!text)
        return DFTI_INCONSISTENT_CONFIGURATION;
    const size_t length = xkl_serv_strnlen_s(text, longest_name);
    return handle->operations->set_name(handle, text, static_cast<int64_t>(length));
}

int32_t set_value(DFTI_DESCRIPTOR_HANDLE handle, int parameter, va_list tail)
{
    switch (setting_of(parameter)) {
    case setting::int32:
        return set_integer(handle, parameter, va_arg(tail, int));
    case setting::int64:
        return set_integer(handle, parameter, va_arg(tail, int64_t));
    case setting::real:
        return handle->operations->set_scale(handle, parameter, va_arg(tail, double));
    case setting::strides:
        return set_strides(handle, parameter, va_arg(tail, const int64_t *));
    case setting::text:
        return set_name(handle, va_arg(tail, const char *));
    case setting::none:
        break;
    }
    return DFTI_INCONSISTENT_CONFIGURATION;
}

/// Puts a value where the caller wants it, however that place is aligned.
template <class T>
int32_t store(T value, void *place)
{
    std::memcpy(place, &value, sizeof value);
    return DFTI_NO_ERROR;
}

/// Fetches into local memory, so that a failing operation leaves the caller's alone.
int32_t get_integer(DFTI_DESCRIPTOR_HANDLE handle, xkl_dft_operations::get_integer *get, void *place)
{
    int64_t value = 0;
    const int32_t status = get(handle, &value);
    return status == DFTI_NO_ERROR ? store(value, place) : status;
}

int32_t get_lengths(DFTI_DESCRIPTOR_HANDLE handle, int64_t *lengths)
{
    int64_t fetched[most_dimensions] = {};
    const int32_t status = handle->operations->get_lengths(handle, fetched);
    if (status == DFTI_NO_ERROR)
        copy_reversed(fetched, handle->rank, lengths);
    return status;
}

int32_t get_strides(DFTI_DESCRIPTOR_HANDLE handle, xkl_dft_operations::get_vector *get, int64_t *strides)
{
    stride_vector fetched = {};
    const int32_t status = get(handle, fetched);
    if (status == DFTI_NO_ERROR) {
        strides[0] = fetched[0];
        copy_reversed(fetched + 1, handle->rank, strides + 1);
    }
    return status;
}

int32_t get_scale(DFTI_DESCRIPTOR_HANDLE handle, int parameter, void *place)
{
    double value = 0;
    const int32_t status = handle->operations->get_scale(handle, parameter, &value);
    if (status != DFTI_NO_ERROR)
        return status;
    return handle->precision == DFTI_SINGLE ? store(static_cast<float>(value), place) : store(value, place);
}

int32_t get_name(DFTI_DESCRIPTOR_HANDLE handle, char *text)
{
    const int32_t status = handle->operations->get_name(handle, text, DFTI_MAX_NAME_LENGTH);
    text[DFTI_MAX_NAME_LENGTH - 1] = '\0';
    return status;
}

int32_t get_version(char *text)
{
    std::memset(text, 0, DFTI_VERSION_LENGTH);
    xkl_dft_dfti_get_version_string(text, DFTI_VERSION_LENGTH);
    text[DFTI_VERSION_LENGTH - 1] = '\0';
    return DFTI_NO_ERROR;
}

/// The parameters that operations of the descriptor tell.
int32_t get_by_operation(DFTI_DESCRIPTOR_HANDLE handle, int parameter, void *place)
{
    const xkl_dft_operations &operations = *handle->operations;
    switch (parameter) {
    case DFTI_DIMENSION:
        return get_integer(handle, operations.get_dimension, place);
    case DFTI_LENGTHS:
        return get_lengths(handle, static_cast<int64_t *>(place));
    case DFTI_FORWARD_SCALE:
    case DFTI_BACKWARD_SCALE:
        return get_scale(handle, parameter, place);
    case DFTI_NUMBER_OF_TRANSFORMS:
        return get_integer(handle, operations.get_number_of_transforms, place);
    case DFTI_INPUT_STRIDES:
        return get_strides(handle, operations.get_input_strides, static_cast<int64_t *>(place));
    case DFTI_OUTPUT_STRIDES:
        return get_strides(handle, operations.get_output_strides, static_cast<int64_t *>(place));
    case DFTI_INPUT_DISTANCE:
        return get_integer(handle, operations.get_input_distance, place);
    case DFTI_OUTPUT_DISTANCE:
        return get_integer(handle, operations.get_output_distance, place);
    case DFTI_DESCRIPTOR_NAME:
        return get_name(handle, static_cast<char *>(place));
    case DFTI_THREAD_LIMIT:
        return get_integer(handle, operations.get_thread_limit, place);
    default:
        return DFTI_INCONSISTENT_CONFIGURATION;
    }
}

/// Those that stand in the descriptor itself come first.
int32_t get_value(DFTI_DESCRIPTOR_HANDLE handle, int parameter, void *place)
{
    const DFTI_DESCRIPTOR &of = *handle;
    switch (parameter) {
    case DFTI_FORWARD_DOMAIN:
        return store(of.forward_domain, place);
    case DFTI_PRECISION:
        return store(of.precision, place);
    case DFTI_COMPLEX_STORAGE:
        return store(of.complex_storage, place);
    case DFTI_REAL_STORAGE:
        return store(of.real_storage, place);
    case DFTI_CONJUGATE_EVEN_STORAGE:
        return store(of.conjugate_even_storage, place);
    case DFTI_PLACEMENT:
        return store(of.placement, place);
    case DFTI_WORKSPACE:
        return store(of.workspace, place);
    case DFTI_ORDERING:
        return store(of.ordering, place);
    case DFTI_TRANSPOSE:
        return store(of.transpose, place);
    case DFTI_PACKED_FORMAT:
        return store(of.packed_format, place);
    case DFTI_COMMIT_STATUS:
        return store(of.commit_status, place);
    case DFTI_NUMBER_OF_USER_THREADS:
        return store(int64_t{of.user_threads}, place);
    case DFTI_DESTROY_INPUT:
        return store(int32_t{of.flags & xkl_dft_destroys_input ? DFTI_ALLOW : DFTI_AVOID}, place);
    default:
        return get_by_operation(handle, parameter, place);
    }
}

} // namespace

extern "C" {

long DftiSetValue(DFTI_DESCRIPTOR_HANDLE handle, int parameter, ...)
{
    if (!is_descriptor(handle))
        return DFTI_BAD_DESCRIPTOR;
    va_list tail;
    va_start(tail, parameter);
    const int32_t status = set_value(handle, parameter, tail);
    va_end(tail);
    return status;
}
decltype(DftiSetValue) xkl_dft_dftisetvalue __attribute__((alias("DftiSetValue")));

long DftiGetValue(DFTI_DESCRIPTOR_HANDLE handle, int parameter, ...)
{
    const bool asks_version = parameter == DFTI_VERSION; // which no descriptor is needed for
    if (!asks_version && !is_descriptor(handle))
        return DFTI_BAD_DESCRIPTOR;
    va_list tail;
    va_start(tail, parameter);
    void *const place = va_arg(tail, void *);
    va_end(tail);
    if (!place)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return asks_version ? get_version(static_cast<char *>(place)) : get_value(handle, parameter, place);
}
decltype(DftiGetValue) xkl_dft_dftigetvalue __attribute__((alias("DftiGetValue")));
}
