#include "dfti_fake.h"

#include <algorithm>
#include <cstring>

std::vector<operation_call> operation_calls;

namespace {

fake_descriptor &of(DFTI_DESCRIPTOR *handle)
{
    return *reinterpret_cast<fake_descriptor *>(handle);
}

int64_t as_word(const void *address)
{
    return reinterpret_cast<int64_t>(address);
}

void note(const char *name, DFTI_DESCRIPTOR *handle, words arguments = {})
{
    operation_calls.push_back({name, handle, std::move(arguments)});
}

template <words fake_descriptor::*Vector>
int32_t get_vector(DFTI_DESCRIPTOR *handle, int64_t *vector)
{
    std::ranges::copy(of(handle).*Vector, vector);
    return of(handle).result;
}

template <words fake_descriptor::*Vector>
int32_t set_vector(DFTI_DESCRIPTOR *handle, const int64_t *vector)
{
    note(Vector == &fake_descriptor::input_strides ? "set_input_strides" : "set_output_strides", handle,
         words(vector, vector + handle->rank + 1));
    return of(handle).result;
}

template <int64_t fake_descriptor::*Value>
int32_t get_integer(DFTI_DESCRIPTOR *handle, int64_t *value)
{
    *value = of(handle).*Value;
    return of(handle).result;
}

int32_t get_name(DFTI_DESCRIPTOR *handle, char *text, int64_t capacity)
{
    note("get_name", handle, {capacity});
    std::strncpy(text, of(handle).name.c_str(),
                 static_cast<std::size_t>(capacity)); // without a NUL if long
    return of(handle).result;
}

int32_t set_name(DFTI_DESCRIPTOR *handle, const char *text, int64_t length)
{
    note("set_name", handle, {length});
    of(handle).name.assign(text, static_cast<std::size_t>(length));
    return of(handle).result;
}

int32_t get_scale(DFTI_DESCRIPTOR *handle, int32_t parameter, double *value)
{
    *value = parameter == DFTI_FORWARD_SCALE ? handle->forward_scale : handle->backward_scale;
    return of(handle).result;
}

int32_t set_scale(DFTI_DESCRIPTOR *handle, int32_t parameter, double value)
{
    note("set_scale", handle, {parameter, recorded_bits(value)});
    return of(handle).result;
}

int32_t commit(DFTI_DESCRIPTOR *handle)
{
    note("commit", handle);
    return of(handle).commit_result;
}

int32_t copy(DFTI_DESCRIPTOR *handle, DFTI_DESCRIPTOR **made)
{
    note("copy", handle);
    *made = of(handle).to_copy ? of(handle).to_copy->handle() : nullptr;
    return of(handle).result;
}

int32_t free_it(DFTI_DESCRIPTOR *handle)
{
    note("free", handle);
    return 0;
}

int32_t forward(DFTI_DESCRIPTOR *handle, void *x, void *second, void *third, void *fourth, void *reserved)
{
    note("forward", handle,
         {as_word(x), as_word(second), as_word(third), as_word(fourth), as_word(reserved)});
    recorded.order.push_back("forward");
    return of(handle).compute_result;
}

int32_t backward(DFTI_DESCRIPTOR *handle, void *x, void *second, void *third, void *fourth, void *reserved)
{
    note("backward", handle,
         {as_word(x), as_word(second), as_word(third), as_word(fourth), as_word(reserved)});
    recorded.order.push_back("backward");
    return of(handle).compute_result;
}

const xkl_dft_operations all_operations = fake_operations();

} // namespace

void PrintTo(const operation_call &call, std::ostream *out)
{
    *out << call.name << "(" << static_cast<const void *>(call.handle);
    for (const int64_t each : call.arguments)
        *out << ", " << each;
    *out << ")";
}

xkl_dft_operations fake_operations()
{
    using fake = fake_descriptor;
    xkl_dft_operations made{};
    made.commit = commit;
    made.get_input_strides = get_vector<&fake::input_strides>;
    made.get_output_strides = get_vector<&fake::output_strides>;
    made.set_input_strides = set_vector<&fake::input_strides>;
    made.set_output_strides = set_vector<&fake::output_strides>;
    made.get_lengths = get_vector<&fake::lengths>;
    made.get_name = get_name;
    made.set_name = set_name;
    made.get_scale = get_scale;
    made.set_scale = set_scale;
    made.copy = copy;
    made.get_input_distance = get_integer<&fake::input_distance>;
    made.get_output_distance = get_integer<&fake::output_distance>;
    made.get_number_of_transforms = get_integer<&fake::count>;
    made.get_thread_limit = get_integer<&fake::thread_limit>;
    made.get_dimension = get_integer<&fake::dimension>;
    made.get_forward_distance = get_integer<&fake::forward_distance>;
    made.get_backward_distance = get_integer<&fake::backward_distance>;
    made.get_forward_strides = get_vector<&fake::forward_strides>;
    made.get_backward_strides = get_vector<&fake::backward_strides>;
    return made;
}

fake_descriptor::fake_descriptor(int32_t rank)
{
    head = {
        .forward = nullptr,
        .backward = nullptr,
        .array_count = 1,
        .tag = xkl_dft_tag,
        .commit_status = DFTI_UNCOMMITTED,
        .rank = rank,
        .free = free_it,
        .operations = &all_operations,
        .forward_domain = DFTI_COMPLEX,
        .precision = DFTI_DOUBLE,
        .complex_storage = DFTI_COMPLEX_COMPLEX,
        .real_storage = DFTI_REAL_REAL,
        .conjugate_even_storage = DFTI_COMPLEX_COMPLEX,
        .placement = DFTI_INPLACE,
        .packed_format = DFTI_CCE_FORMAT,
        .workspace = DFTI_ALLOW,
        .ordering = DFTI_ORDERED,
        .transpose = DFTI_NONE,
        .forward_scale = 1.0,
        .backward_scale = 1.0,
        .user_threads = 1,
        .flags = 0,
    };
    lengths.assign(static_cast<std::size_t>(rank), 4);
    for (words *each : {&input_strides, &output_strides, &forward_strides, &backward_strides})
        each->assign(static_cast<std::size_t>(rank) + 1, 0);
}

void make_committed(fake_descriptor &descriptor)
{
    descriptor.head.forward = forward;
    descriptor.head.backward = backward;
    descriptor.head.commit_status = DFTI_COMMITTED;
}
