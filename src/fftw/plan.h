// Plans and the settings that every planner reads: include/fftw/fftw3_xkl.h says what is in them.
#pragma once

#include "fftw/fftw3_xkl.h"

#include <cstddef>

namespace xkl::fftw {

using plan_record = fftw3_xkl_plan;

constexpr size_t record_size = 96; // of the library's own records
static_assert(sizeof(plan_record) == record_size && offsetof(plan_record, buffers) == 5 * 8);
static_assert(offsetof(plan_record, execute) == 8 * 8 && offsetof(plan_record, destroy) == 9 * 8);
static_assert(offsetof(fftw3_xkl_settings, thread_count) == 4 &&
              offsetof(fftw3_xkl_settings, time_limit) == 8);
static_assert(offsetof(fftw3_xkl_settings, plan_constructor) == 24 &&
              offsetof(fftw3_xkl_settings, alignment) == 32);

constexpr int32_t threads_domain = 2; // Fourier transforms, for XKL_Domain_Get_Max_Threads

/// The families' plan types differ in name alone.
inline plan_record *record_of(void *plan)
{
    return static_cast<plan_record *>(plan);
}

/// Nothing happens to a null plan, or to one without a destroy routine.
inline void destroy(plan_record *plan)
{
    if (plan && plan->destroy)
        plan->destroy(plan);
}

} // namespace xkl::fftw
