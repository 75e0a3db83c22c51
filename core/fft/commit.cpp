// From settings to transforms: default layouts, what contradicts itself, and the two problems for the
// module.
#include "fft/descriptor.h"

#include "service/kernel_threads.h"

#include <algorithm>

namespace xkl::fft {
namespace {

// Elements that dimension 0 takes on a side without strides of the user's own.
int64_t default_row(const descriptor &of, bool forward_side)
{
    const int64_t length = of.lengths[0], half = length / 2 + 1;
    if (of.forward_domain == DFTI_COMPLEX)
        return length;
    const bool short_format = of.packed() && of.packed_format != DFTI_CCS_FORMAT;
    if (forward_side)
        return of.placement == DFTI_INPLACE && !short_format ? 2 * half : length;
    if (!of.packed())
        return half;
    return short_format ? length : 2 * half;
}

// ccs pads the second dimension as it does the first.
int64_t default_columns(const descriptor &of, int index, bool forward_side)
{
    const int64_t length = of.lengths[static_cast<size_t>(index)];
    const bool padded = of.packed() && of.packed_format == DFTI_CCS_FORMAT &&
                        (!forward_side || of.placement == DFTI_INPLACE);
    return padded ? 2 * (length / 2 + 1) : length;
}

bool set_by_user(const descriptor &of, const strides &given)
{
    return std::any_of(given.begin() + 1, given.begin() + of.rank + 1,
                       [](int64_t each) { return each != 0; });
}

struct side {
    strides steps;
    int64_t distance;
};

// The side of the input (or the output) of a direction: the user's, else the default of its domain.
side side_of(const descriptor &of, bool forward_direction, bool input)
{
    const bool alone =
        of.placement == DFTI_INPLACE && of.forward_domain == DFTI_COMPLEX; // one layout for both
    const bool first = input || alone;
    const bool forward_side = forward_direction == input;
    const strides &given = first ? of.input_strides : of.output_strides;
    const int64_t distance = first ? of.input_distance : of.output_distance;
    side found{given, distance};
    if (!set_by_user(of, given)) {
        found.steps = default_strides(of, forward_side);
        found.steps[0] = given[0];
    }
    if (distance == 0)
        found.distance = default_distance(of, forward_side);
    return found;
}

bool elements_coincide(const descriptor &of, const side &which)
{
    for (int i = 0; i < of.rank; ++i)
        if (which.steps[static_cast<size_t>(i) + 1] == 0 && of.lengths[static_cast<size_t>(i)] > 1)
            return true;
    return false;
}

layout layout_of(const descriptor &of)
{
    if (of.split())
        return layout::split;
    if (!of.packed())
        return layout::complex;
    switch (of.packed_format) {
    case DFTI_CCS_FORMAT:
        return layout::ccs;
    case DFTI_PACK_FORMAT:
        return layout::pack;
    default:
        return layout::perm;
    }
}

int32_t threads_of(const descriptor &of)
{
    const int64_t threads = core::threads_for(XKL_DOMAIN_FFT);
    return static_cast<int32_t>(of.thread_limit > 0 ? std::min(threads, of.thread_limit) : threads);
}

operation operation_of(const descriptor &of, bool forward)
{
    if (of.forward_domain == DFTI_COMPLEX)
        return forward ? operation::complex_forward : operation::complex_backward;
    return forward ? operation::real_forward : operation::real_backward;
}

problem problem_of(const descriptor &of, bool forward)
{
    const side in = side_of(of, forward, true), out = side_of(of, forward, false);
    problem wanted{};
    wanted.what = operation_of(of, forward);
    wanted.single = of.precision == DFTI_SINGLE;
    wanted.storage = layout_of(of);
    wanted.in_place = of.placement == DFTI_INPLACE;
    wanted.may_destroy_input = of.destroys_input();
    wanted.keep_workspace = of.workspace == DFTI_ALLOW;
    wanted.threads = of.threads;
    wanted.rank = of.rank;
    for (size_t i = 0; i < static_cast<size_t>(of.rank); ++i)
        wanted.sides[i] = {of.lengths[i], in.steps[i + 1], out.steps[i + 1]};
    wanted.batch_rank = of.transforms > 1;
    wanted.batches[0] = {of.transforms, in.distance, out.distance};
    wanted.in_offset = in.steps[0];
    wanted.out_offset = out.steps[0];
    wanted.scale = forward ? of.forward_scale : of.backward_scale;
    return wanted;
}

// What the settings say together; each alone was looked at when it was set.
int32_t refusal(const descriptor &of)
{
    const bool complex_format = of.packed_format == DFTI_CCE_FORMAT;
    if ((of.conjugate_even_storage == DFTI_COMPLEX_COMPLEX) != complex_format)
        return DFTI_INCONSISTENT_CONFIGURATION;
    for (const bool forward : {true, false})
        for (const bool input : {true, false})
            if (elements_coincide(of, side_of(of, forward, input)))
                return DFTI_INCONSISTENT_CONFIGURATION;
    if (of.forward_domain == DFTI_COMPLEX)
        return of.complex_storage == DFTI_COMPLEX_COMPLEX || of.split() ? DFTI_NO_ERROR
                                                                        : DFTI_UNIMPLEMENTED;
    return of.real_storage != DFTI_REAL_REAL || (of.packed() && of.rank > 2) ? DFTI_UNIMPLEMENTED
                                                                             : DFTI_NO_ERROR;
}

int32_t plan(const descriptor &of, bool forward, transform *&made)
{
    const problem wanted = problem_of(of, forward);
    return of.module->make(&wanted, &made);
}

[[gnu::cold]] int32_t plan_backward(descriptor &of, const transform *&planned)
{
    transform *made = nullptr;
    const int32_t status = plan(of, false, made);
    if (status == DFTI_NO_ERROR)
        planned = of.backward_transform.offer(made);
    return status;
}

int32_t compute_forward(DFTI_DESCRIPTOR *handle, void *x, void *second, void *third, void *fourth, void *)
{
    const auto *own = static_cast<const descriptor *>(handle);
    return own->module->run(own->forward_transform.get(), x, second, third, fourth);
}

int32_t compute_backward(DFTI_DESCRIPTOR *handle, void *x, void *second, void *third, void *fourth, void *)
{
    auto *own = static_cast<descriptor *>(handle);
    const transform *planned = own->backward_transform.get();
    if (!planned) [[unlikely]]
        if (const int32_t status = plan_backward(*own, planned))
            return status;
    return own->module->run(planned, x, second, third, fourth);
}

} // namespace

strides default_strides(const descriptor &of, bool forward_side)
{
    strides found{};
    int64_t stride = 1;
    for (int i = 0; i < of.rank; ++i) {
        found[static_cast<size_t>(i) + 1] = stride;
        stride *= i == 0 ? default_row(of, forward_side) : default_columns(of, i, forward_side);
    }
    return found;
}

int64_t default_distance(const descriptor &of, bool forward_side)
{
    int64_t elements = default_row(of, forward_side);
    for (int i = 1; i < of.rank; ++i)
        elements *= default_columns(of, i, forward_side);
    return elements;
}

int32_t commit(descriptor &what)
{
    what.uncommit();
    if (const int32_t status = refusal(what))
        return status;
    what.threads = threads_of(what);
    transform *made = nullptr;
    if (const int32_t status = plan(what, true, made))
        return status;
    what.forward_transform.reset(made);
    what.backward_transform.reset(nullptr);
    what.forward = compute_forward;
    what.backward = compute_backward;
    const int32_t arrays = what.placement == DFTI_INPLACE ? 1 : 2;
    what.array_count = what.split() ? 2 * arrays : arrays;
    what.commit_status = DFTI_COMMITTED;
    return DFTI_NO_ERROR;
}

} // namespace xkl::fft
