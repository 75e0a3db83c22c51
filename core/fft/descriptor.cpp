// Descriptors: made, copied, released, and their operations.
#include "fft/descriptor.h"

#include "service/service_entries.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace xkl::fft {
namespace {

int32_t release(DFTI_DESCRIPTOR *handle)
{
    delete static_cast<descriptor *>(handle);
    return DFTI_NO_ERROR;
}

template <auto member>
int32_t get(DFTI_DESCRIPTOR *handle, int64_t *value)
{
    *value = static_cast<descriptor *>(handle)->*member;
    return DFTI_NO_ERROR;
}

template <strides descriptor::*member>
int32_t get_strides(DFTI_DESCRIPTOR *handle, int64_t *vector)
{
    const auto *own = static_cast<descriptor *>(handle);
    std::copy_n((own->*member).begin(), own->rank + 1, vector);
    return DFTI_NO_ERROR;
}

template <strides descriptor::*member>
int32_t set_strides(DFTI_DESCRIPTOR *handle, const int64_t *vector)
{
    auto *own = static_cast<descriptor *>(handle);
    own->uncommit();
    std::copy_n(vector, own->rank + 1, (own->*member).begin());
    return DFTI_NO_ERROR;
}

template <bool forward_side>
int32_t get_side_strides(DFTI_DESCRIPTOR *handle, int64_t *vector)
{
    std::copy_n(default_strides(*static_cast<descriptor *>(handle), forward_side).begin(), handle->rank + 1,
                vector);
    return DFTI_NO_ERROR;
}

template <bool forward_side>
int32_t get_side_distance(DFTI_DESCRIPTOR *handle, int64_t *value)
{
    *value = default_distance(*static_cast<descriptor *>(handle), forward_side);
    return DFTI_NO_ERROR;
}

int32_t get_lengths(DFTI_DESCRIPTOR *handle, int64_t *vector)
{
    std::copy_n(static_cast<descriptor *>(handle)->lengths.begin(), handle->rank, vector);
    return DFTI_NO_ERROR;
}

int32_t get_name(DFTI_DESCRIPTOR *handle, char *text, int64_t capacity)
{
    if (capacity <= 0)
        return DFTI_INCONSISTENT_CONFIGURATION;
    const std::string &name = static_cast<descriptor *>(handle)->name;
    const size_t length = std::min(name.size(), static_cast<size_t>(capacity - 1));
    std::memcpy(text, name.data(), length);
    text[length] = '\0';
    return DFTI_NO_ERROR;
}

// A name changes nothing about what was committed.
int32_t set_name(DFTI_DESCRIPTOR *handle, const char *text, int64_t length)
try {
    static_cast<descriptor *>(handle)->name.assign(text, static_cast<size_t>(std::max<int64_t>(length, 0)));
    return DFTI_NO_ERROR;
} catch (const std::bad_alloc &) {
    return DFTI_MEMORY_ERROR;
}

int32_t get_scale(DFTI_DESCRIPTOR *handle, int32_t parameter, double *value)
{
    if (parameter != DFTI_FORWARD_SCALE && parameter != DFTI_BACKWARD_SCALE)
        return DFTI_INCONSISTENT_CONFIGURATION;
    *value = parameter == DFTI_FORWARD_SCALE ? handle->forward_scale : handle->backward_scale;
    return DFTI_NO_ERROR;
}

int32_t set_scale(DFTI_DESCRIPTOR *handle, int32_t parameter, double value)
{
    if (parameter != DFTI_FORWARD_SCALE && parameter != DFTI_BACKWARD_SCALE)
        return DFTI_INCONSISTENT_CONFIGURATION;
    static_cast<descriptor *>(handle)->uncommit();
    (parameter == DFTI_FORWARD_SCALE ? handle->forward_scale : handle->backward_scale) = value;
    return DFTI_NO_ERROR;
}

int32_t get_dimension(DFTI_DESCRIPTOR *handle, int64_t *value)
{
    *value = handle->rank;
    return DFTI_NO_ERROR;
}

int32_t commit_handle(DFTI_DESCRIPTOR *handle)
{
    return commit(*static_cast<descriptor *>(handle));
}

int32_t copy_handle(DFTI_DESCRIPTOR *handle, DFTI_DESCRIPTOR **made)
{
    return copy(*static_cast<descriptor *>(handle), made);
}

// Values that every new descriptor has: complex elements on both sides, in place, unscaled.
DFTI_DESCRIPTOR new_head(int32_t precision, int32_t domain, int32_t dimensions)
{
    DFTI_DESCRIPTOR head{};
    head.array_count = 1;
    head.tag = xkl_dft_tag;
    head.commit_status = DFTI_UNCOMMITTED;
    head.rank = dimensions;
    head.free = release;
    head.operations = &descriptor_operations;
    head.forward_domain = domain;
    head.precision = precision;
    head.complex_storage = DFTI_COMPLEX_COMPLEX;
    head.real_storage = DFTI_REAL_REAL;
    head.conjugate_even_storage = DFTI_COMPLEX_COMPLEX;
    head.placement = DFTI_INPLACE;
    head.packed_format = DFTI_CCE_FORMAT;
    head.workspace = DFTI_ALLOW;
    head.ordering = DFTI_ORDERED;
    head.transpose = DFTI_NONE;
    head.forward_scale = 1;
    head.backward_scale = 1;
    head.user_threads = 1;
    return head;
}

// Elements of a side fill less than the address space can hold, whatever the format adds to them.
bool fits_into_memory(int64_t dimensions, const int64_t *lengths)
{
    double product = 1;
    for (int64_t i = 0; i < dimensions; ++i)
        product *= static_cast<double>(lengths[i]) + 2;
    return product < 0x1p57;
}

} // namespace

const xkl_dft_operations descriptor_operations = {
    .commit = commit_handle,
    .unused_1 = nullptr,
    .get_input_strides = get_strides<&descriptor::input_strides>,
    .get_output_strides = get_strides<&descriptor::output_strides>,
    .set_input_strides = set_strides<&descriptor::input_strides>,
    .set_output_strides = set_strides<&descriptor::output_strides>,
    .get_lengths = get_lengths,
    .get_name = get_name,
    .set_name = set_name,
    .get_scale = get_scale,
    .set_scale = set_scale,
    .copy = copy_handle,
    .get_input_distance = get<&descriptor::input_distance>,
    .get_output_distance = get<&descriptor::output_distance>,
    .get_number_of_transforms = get<&descriptor::transforms>,
    .unused_15 = {},
    .get_thread_limit = get<&descriptor::thread_limit>,
    .unused_19 = nullptr,
    .get_dimension = get_dimension,
    .unused_21 = {},
    .get_forward_distance = get_side_distance<true>,
    .get_backward_distance = get_side_distance<false>,
    .get_forward_strides = get_side_strides<true>,
    .get_backward_strides = get_side_strides<false>,
};

descriptor::descriptor(const module_functions *opened, int32_t of_precision, int32_t of_domain,
                       int32_t dimensions, const int64_t *of_lengths)
    : DFTI_DESCRIPTOR(new_head(of_precision, of_domain, dimensions)), module(opened),
      forward_transform(opened), backward_transform(opened)
{
    std::copy_n(of_lengths, dimensions, lengths.begin());
}

// A volatile store: the next user of the handle must find it gone, and the compiler sees no next user.
descriptor::~descriptor()
{
    *const_cast<volatile int32_t *>(&tag) = 0;
}

void *descriptor::operator new(size_t size, const std::nothrow_t &) noexcept
{
    return xkl_serv_malloc(size, 64);
}

void descriptor::operator delete(void *block) noexcept
{
    xkl_serv_free(block);
}

void descriptor::uncommit()
{
    forward = backward = nullptr;
    commit_status = DFTI_UNCOMMITTED;
}

int32_t create(DFTI_DESCRIPTOR **handle, int32_t precision, int32_t domain, int64_t dimensions,
               const int64_t *lengths)
{
    if (!handle)
        return DFTI_INCONSISTENT_CONFIGURATION;
    *handle = nullptr;
    if (dimensions < 1 || dimensions > most_dimensions)
        return DFTI_INVALID_CONFIGURATION;
    if (!lengths)
        return DFTI_INCONSISTENT_CONFIGURATION;
    if (std::any_of(lengths, lengths + dimensions, [](int64_t each) { return each <= 0; }) ||
        (precision != DFTI_SINGLE && precision != DFTI_DOUBLE) ||
        (domain != DFTI_COMPLEX && domain != DFTI_REAL))
        return DFTI_INVALID_CONFIGURATION;
    if (!fits_into_memory(dimensions, lengths))
        return DFTI_1D_LENGTH_EXCEEDS_INT32;
    const module_functions *module = transform_module();
    if (!module)
        return DFTI_UNIMPLEMENTED;
    *handle =
        new (std::nothrow) descriptor(module, precision, domain, static_cast<int32_t>(dimensions), lengths);
    return *handle ? DFTI_NO_ERROR : DFTI_MEMORY_ERROR;
}

int32_t copy(const descriptor &from, DFTI_DESCRIPTOR **handle)
try {
    std::unique_ptr<descriptor> made(new (std::nothrow) descriptor(
        from.module, from.precision, from.forward_domain, from.rank, from.lengths.data()));
    if (!made)
        return DFTI_MEMORY_ERROR;
    static_cast<DFTI_DESCRIPTOR &>(*made) = from;
    made->uncommit();
    made->input_strides = from.input_strides;
    made->output_strides = from.output_strides;
    made->input_distance = from.input_distance;
    made->output_distance = from.output_distance;
    made->transforms = from.transforms;
    made->thread_limit = from.thread_limit;
    made->storage_set = from.storage_set;
    made->format_set = from.format_set;
    made->name = from.name;
    *handle = made.release();
    return DFTI_NO_ERROR;
} catch (const std::bad_alloc &) {
    return DFTI_MEMORY_ERROR;
}

} // namespace xkl::fft
