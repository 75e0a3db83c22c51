// Memory, threads, and the routines about planning that have nothing to do here: nothing is measured, so
// there is no experience to store, no cost and no text of a plan.
#pragma once

#include "fftw/plan.h"
#include "xkl_service.h"

#include <climits>

namespace xkl::fftw {

inline void *aligned_memory(size_t size)
{
    return XKL_malloc(size, fftw3_xkl.alignment);
}

/// Memory for `count` elements; null where their size is none that a machine has.
inline void *aligned_elements(size_t count, size_t size_of_each)
{
    size_t size = 0;
    return __builtin_mul_overflow(count, size_of_each, &size) ? nullptr : aligned_memory(size);
}

template <class>
void *malloc(size_t size)
{
    return aligned_memory(size);
}

template <class Real>
void *alloc_real(size_t count)
{
    return aligned_elements(count, sizeof(Real));
}

template <class Real>
void *alloc_complex(size_t count)
{
    return aligned_elements(count, 2 * sizeof(Real));
}

template <class>
void free(void *block)
{
    XKL_free(block);
}

template <class>
int alignment_of(const void *address)
{
    return static_cast<int>(reinterpret_cast<uintptr_t>(address) % 64);
}

template <class>
int init_threads()
{
    fftw3_xkl.thread_count = XKL_Domain_Get_Max_Threads(threads_domain);
    return 1;
}

/// Counts beyond an int, which Fortran may give, are as good as its bounds.
template <class>
void plan_with_nthreads(int64_t count)
{
    fftw3_xkl.thread_count = static_cast<int>(count > INT_MAX   ? INT_MAX
                                              : count < INT_MIN ? INT_MIN
                                                                : count);
}

template <class>
int planner_nthreads()
{
    return fftw3_xkl.thread_count;
}

template <class>
void cleanup_threads()
{
    fftw3_xkl.thread_count = 1;
}

template <class>
void make_planner_thread_safe()
{
}

template <class>
void threads_set_callback(fftw_spawn_loop_func, void *)
{
}

template <class>
void set_timelimit(double seconds)
{
    fftw3_xkl.time_limit = seconds;
}

template <class>
int import_wisdom_from_filename(const char *)
{
    return 0;
}

template <class>
int import_wisdom_from_file(FILE *)
{
    return 0;
}

template <class>
int import_wisdom_from_string(const char *)
{
    return 0;
}

template <class>
int import_wisdom(fftw_read_char_func, void *)
{
    return 0;
}

template <class>
int import_system_wisdom()
{
    return 0;
}

template <class>
int export_wisdom_to_filename(const char *)
{
    return 0;
}

template <class>
void export_wisdom_to_file(FILE *)
{
}

template <class>
void *export_wisdom_to_string()
{
    return nullptr;
}

template <class>
void export_wisdom(fftw_write_char_func, void *)
{
}

template <class>
void forget_wisdom()
{
}

template <class>
void cleanup()
{
}

template <class>
void fprint_plan(const void *, FILE *)
{
}

template <class>
void print_plan(const void *)
{
}

template <class>
void *sprint_plan(const void *)
{
    return nullptr;
}

template <class>
void flops(const void *, double *, double *, double *)
{
}

template <class>
double cost(const void *)
{
    return 0.0;
}

template <class>
double estimate_cost(const void *)
{
    return 0.0;
}

} // namespace xkl::fftw
