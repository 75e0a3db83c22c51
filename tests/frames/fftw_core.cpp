#include "fftw_core.h"

#include "dft/descriptor.h"

#include <bit>

namespace {

fftw_core *core = nullptr; // the one of the running test
std::map<const void *, std::string> names;

/// Lengths and strides come in the core's order, the offset first.
std::string in_c_order(const int64_t *entries, int32_t rank, int first)
{
    std::string text;
    for (int i = 0; i < first; ++i)
        text += " " + std::to_string(entries[i]);
    for (int i = rank - 1; i >= 0; --i)
        text += " " + std::to_string(entries[first + i]);
    return text;
}

template <class T>
T *address(int64_t word)
{
    return std::bit_cast<T *>(word);
}

/// Notes a step; its status.
int32_t step(const std::string &text)
{
    core->steps.push_back(text);
    return static_cast<int>(core->steps.size()) == core->failing_step ? DFTI_MEMORY_ERROR : 0;
}

int32_t compute(const char *direction, std::initializer_list<void *> arrays)
{
    std::string text = direction;
    for (void *each : arrays)
        if (each)
            text += " " + (names.count(each) ? names[each] : std::string("?"));
    return step(text);
}

int32_t forward(DFTI_DESCRIPTOR *, void *x, void *second, void *third, void *fourth, void *)
{
    return compute("forward", {x, second, third, fourth});
}

int32_t backward(DFTI_DESCRIPTOR *, void *x, void *second, void *third, void *fourth, void *)
{
    return compute("backward", {x, second, third, fourth});
}

int32_t set_input_strides(DFTI_DESCRIPTOR *handle, const int64_t *strides)
{
    return step("set 12" + in_c_order(strides, handle->rank, 1));
}

int32_t set_output_strides(DFTI_DESCRIPTOR *handle, const int64_t *strides)
{
    return step("set 13" + in_c_order(strides, handle->rank, 1));
}

int32_t commit(DFTI_DESCRIPTOR *handle)
{
    handle->forward = forward;
    handle->backward = backward;
    const bool split = handle->complex_storage == DFTI_REAL_REAL, apart = handle->placement != DFTI_INPLACE;
    handle->array_count = (split ? 2 : 1) * (apart ? 2 : 1);
    return step("commit");
}

const xkl_dft_operations operations = [] {
    xkl_dft_operations made{};
    made.commit = commit;
    made.set_input_strides = set_input_strides;
    made.set_output_strides = set_output_strides;
    return made;
}();

/// `arguments`: handle, then length, or rank and lengths.
int32_t create(const std::string &which, const words &arguments)
{
    const bool line = which.ends_with("1d");
    const int32_t rank = line ? 1 : static_cast<int32_t>(arguments[1]);
    const int64_t *lengths = line ? &arguments[1] : address<int64_t>(arguments[2]);
    const int32_t status = step("create " + which + in_c_order(lengths, rank, 0));
    if (status != 0 && !core->harmless)
        return status;
    auto *made = new DFTI_DESCRIPTOR{};
    made->tag = xkl_dft_tag;
    made->rank = rank;
    made->operations = &operations;
    made->placement = DFTI_INPLACE;
    made->conjugate_even_storage = which[1] == 'r' ? DFTI_COMPLEX_REAL : DFTI_COMPLEX_COMPLEX;
    made->packed_format = which[1] == 'r' ? DFTI_CCS_FORMAT : DFTI_CCE_FORMAT;
    *address<DFTI_DESCRIPTOR *>(arguments[0]) = made;
    ++core->live;
    return status;
}

int32_t set_integer(const words &arguments)
{
    DFTI_DESCRIPTOR &descriptor = **address<DFTI_DESCRIPTOR *>(arguments[0]);
    const int32_t parameter = *address<int32_t>(arguments[1]);
    const int64_t value = *address<int64_t>(arguments[2]);
    const auto keep = [&](int32_t &field) { field = static_cast<int32_t>(value); };
    if (parameter == DFTI_COMPLEX_STORAGE)
        keep(descriptor.complex_storage);
    if (parameter == DFTI_CONJUGATE_EVEN_STORAGE)
        keep(descriptor.conjugate_even_storage);
    if (parameter == DFTI_PACKED_FORMAT)
        keep(descriptor.packed_format);
    if (parameter == DFTI_PLACEMENT)
        keep(descriptor.placement);
    return step("set " + std::to_string(parameter) + " " + std::to_string(value));
}

int32_t free_descriptor(const words &arguments)
{
    auto &handle = *address<DFTI_DESCRIPTOR *>(arguments[0]);
    delete handle;
    handle = nullptr;
    --core->live;
    return step("free");
}

/// The r2r_create of a real transform: everything that it was asked for.
int32_t create_real(const words &arguments)
{
    const auto number = [&](int i) { return static_cast<int32_t>(arguments[i]); };
    std::string text = "r2r " + std::to_string(number(1));
    const auto add_dims = [&](int32_t rank, const int64_t *triples) {
        for (int i = 0; i < rank; ++i)
            text += (i ? " (" : ": (") + std::to_string(triples[3 * i]) + " " +
                    std::to_string(triples[3 * i + 1]) + " " + std::to_string(triples[3 * i + 2]) + ")";
    };
    add_dims(number(2), address<int64_t>(arguments[3]));
    if (number(4) > 0)
        text += " times";
    add_dims(number(4), address<int64_t>(arguments[5]));
    text += " kinds";
    for (int i = 0; i < number(2); ++i)
        text += " " + std::to_string(address<int32_t>(arguments[6])[i]);
    text += std::string(number(7) ? " in place" : "") + " limit " + std::to_string(number(8));
    const int32_t status = step(text);
    if (status != 0)
        return status;
    *address<void *>(arguments[0]) = new int;
    ++core->live;
    return 0;
}

int32_t free_real(const words &arguments)
{
    void *&transform = *address<void *>(arguments[0]);
    delete static_cast<int *>(transform);
    transform = nullptr;
    --core->live;
    return step("r2r_free");
}

int32_t answer(const core_call &call)
{
    const std::string dft = "xkl_dft_";
    if (call.entry == "xkl_serv_domain_get_max_threads")
        return call.arguments[0] == 2 ? core->threads : 0;
    if (!call.entry.starts_with(dft))
        return 0;
    const std::string name = call.entry.substr(dft.size());
    if (name.starts_with("dfti_create_"))
        return create(name.substr(12), call.arguments);
    if (name == "dfti_set_value_intval")
        return set_integer(call.arguments);
    if (name == "dfti_free_descriptor_external")
        return free_descriptor(call.arguments);
    if (name == "dfti_error_class_external")
        return core->harmless;
    if (name == "r2r_create")
        return create_real(call.arguments);
    if (name == "r2r_execute")
        return compute("r2r", {address<void>(call.arguments[1]), address<void>(call.arguments[2])});
    if (name == "r2r_free")
        return free_real(call.arguments);
    return 0;
}

} // namespace

fftw_core::fftw_core()
{
    reset();
    core = this;
    names.clear();
    recorded.serves_memory = true;
    recorded.on_call = [](const core_call &call) {
        const core_call kept = call; // the list of calls may grow meanwhile
        recorded.integer_result = answer(kept);
    };
}

fftw_core::~fftw_core()
{
    reset();
    core = nullptr;
}

void fftw_core::name(const void *address, std::string as)
{
    names[address] = std::move(as);
}
