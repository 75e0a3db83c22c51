// The objects that the FFTW3 interface exports, and how an empty plan is made and released. This file is
// compiled so that fftw_malloc, fftw_free and fftw3_xkl are reached through the dynamic symbol: a program
// that defines its own pair of routines receives all records and buffers.
#include "fftw/plan.h"

#include "xkl_dfti.h"

namespace xkl::fftw {
namespace {

void destroy_by_default(plan_record *plan)
{
    if (!plan)
        return;
    for (int last = 2; last >= 0; --last)
        if (plan->buffers[last])
            fftw_free(plan->buffers[last]);
    if (plan->descriptor)
        DftiFreeDescriptor(&plan->descriptor);
    fftw_free(plan);
}

plan_record *make_plan()
{
    auto *plan = record_of(fftw_malloc(record_size));
    if (!plan)
        return nullptr;
    plan->descriptor = nullptr;
    plan->in = plan->out = plan->second_in = plan->second_out = nullptr;
    for (void *&buffer : plan->buffers)
        buffer = nullptr;
    plan->execute = nullptr;
    plan->destroy = destroy_by_default;
    plan->reserved = nullptr;
    return plan;
}

} // namespace
} // namespace xkl::fftw

extern "C" {

// Written by the program and by the thread and time limit routines, unguarded.
fftw3_xkl_settings fftw3_xkl = {.reserved = 0,
                                .thread_count = 1,
                                .time_limit = 0.0,
                                .reserved_word = 1,
                                .plan_constructor = xkl::fftw::make_plan,
                                .alignment = 64};

const char fftw_version[] = "FFTW 3.3.4 wrappers to  Quorl XKLlib";
const char fftwf_version[] = "FFTW 3.3.4 wrappers to  Quorl XKLlib";
const char fftw_cc[] = "";
const char fftwf_cc[] = "";
const char fftw_codelet_optim[] = "";
const char fftwf_codelet_optim[] = "";
}

static_assert(sizeof fftw_version == 37);
