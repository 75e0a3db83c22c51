// What plans do when they are executed, and execution with other arrays than the plan's: a copy of the
// record on the stack gets them, so that threads can share a plan.
#pragma once

#include "core_dfti.h"
#include "fftw/plan.h"
#include "xkl_dfti.h"

namespace xkl::fftw {

using execution = void (*)(plan_record *);

/// The execute routine of plans with a descriptor: one array a side, or two when real and imaginary parts
/// are apart. An execution has no status to tell.
template <bool forward, bool in_place, bool split = false>
void execute_descriptor(plan_record *plan)
{
    const auto compute = [plan](auto... arrays) {
        forward ? DftiComputeForward(plan->descriptor, arrays...)
                : DftiComputeBackward(plan->descriptor, arrays...);
    };
    if constexpr (split && in_place)
        compute(plan->in, plan->second_in);
    else if constexpr (split)
        compute(plan->in, plan->second_in, plan->out, plan->second_out);
    else if constexpr (in_place)
        compute(plan->in);
    else
        compute(plan->in, plan->out);
}

template <bool split = false>
execution descriptor_execution(bool forward, bool in_place)
{
    if (in_place)
        return forward ? execute_descriptor<true, true, split> : execute_descriptor<false, true, split>;
    return forward ? execute_descriptor<true, false, split> : execute_descriptor<false, false, split>;
}

template <bool in_place>
void execute_real_to_real(plan_record *plan)
{
    xkl_dft_r2r_execute(plan->second_in, plan->in, in_place ? plan->in : plan->out);
}

// The routines of fftw.tbl. They are the same in both precisions.

template <class>
void execute(void *any_plan)
{
    if (plan_record *plan = record_of(any_plan); plan && plan->execute)
        plan->execute(plan);
}

template <class>
void execute_dft(void *any_plan, void *in, void *out)
{
    const plan_record *plan = record_of(any_plan);
    if (!plan || !plan->execute || !in || !out)
        return;
    plan_record copy = *plan;
    copy.in = in;
    copy.out = out;
    copy.execute(&copy);
}

template <class Real>
void execute_dft_r2c(void *plan, void *in, void *out)
{
    execute_dft<Real>(plan, in, out);
}

template <class Real>
void execute_dft_c2r(void *plan, void *in, void *out)
{
    execute_dft<Real>(plan, in, out);
}

template <class Real>
void execute_r2r(void *plan, void *in, void *out)
{
    execute_dft<Real>(plan, in, out);
}

template <class>
void execute_split_dft(void *any_plan, void *ri, void *ii, void *ro, void *io)
{
    const plan_record *plan = record_of(any_plan);
    if (!plan || !plan->execute || !ri || !ii || !ro || !io)
        return;
    plan_record copy = *plan;
    copy.in = ri;
    copy.second_in = ii;
    copy.out = ro;
    copy.second_out = io;
    copy.execute(&copy);
}

template <class>
void execute_split_dft_r2c(void *, void *, void *, void *)
{
}

template <class>
void execute_split_dft_c2r(void *, void *, void *, void *)
{
}

template <class>
void destroy_plan(void *plan)
{
    destroy(record_of(plan));
}

} // namespace xkl::fftw
