// The user's progress and pivot routines: where they are kept, and what happens without them.
#include "service/callbacks.h"

#include "service/scoped_mark.h"
#include "service/service_entries.h"

#include <atomic>
#include <cstring>
#include <dlfcn.h>

namespace {

// Written by xkl_serv_set_progress_interface: the first link of the caller's progress chain, null before
// any.
std::atomic<xkl_progress_handler> progress_interface{nullptr};

// Written by xkl_serv_set_progress: the user's routine at the end of that chain, null for none.
std::atomic<xkl_progress_handler> user_progress{nullptr};

// True while the user's routine runs on this thread, so that one which calls the chain again does not run
// for ever.
thread_local bool in_user_progress = false;

// Written by xkl_serv_set_pardiso_pivot at the start of every solver call: the first link of the caller's
// pivot chain, null before any.
std::atomic<xkl_pivot_handler> pivot_interface{nullptr};

// Written by xkl_serv_set_pardiso_pivot for users: the routine at the end of that chain, null for the core's
// own.
std::atomic<xkl_pivot_handler> user_pivot{nullptr};

// As in_user_progress.
thread_local bool in_user_pivot = false;

// Users and solver calls come with their routines to one entry. Were they kept in one place, the first solver
// call would end what the user has set. A first link is known by its name, which is looked up once: it is the
// same at every call.
bool is_first_link(xkl_pivot_handler handler)
{
    if (!handler || handler == pivot_interface.load(std::memory_order_relaxed))
        return handler != nullptr;
    void *const address = reinterpret_cast<void *>(handler);
    Dl_info found;
    return dladdr(address, &found) && found.dli_saddr == address &&
           std::strcmp(found.dli_sname, "cdecl_pardiso_pivot") == 0;
}

} // namespace

namespace xkl::core {

bool report_progress(int64_t thread, int64_t step, const char *stage)
{
    const xkl_progress_handler handler = progress_interface.load(std::memory_order_relaxed);
    return (handler ? handler : xkl_serv_default_progress)(&thread, &step, stage,
                                                           static_cast<int64_t>(std::strlen(stage))) != 0;
}

bool perturb_pivot(double diagonal, double &pivot, double threshold)
{
    const xkl_pivot_handler handler = pivot_interface.load(std::memory_order_relaxed);
    return (handler ? handler : xkl_serv_default_pardiso_pivot)(&diagonal, &pivot, &threshold) != 0;
}

} // namespace xkl::core

extern "C" {

void xkl_serv_set_progress_interface(xkl_progress_handler handler)
{
    progress_interface.store(handler, std::memory_order_relaxed);
}

xkl_progress_handler xkl_serv_set_progress(xkl_progress_handler handler)
{
    return user_progress.exchange(handler, std::memory_order_acq_rel);
}

int xkl_serv_default_progress(const int64_t *thread, const int64_t *step, const char *stage, int64_t length)
{
    const xkl_progress_handler handler = user_progress.load(std::memory_order_acquire);
    if (!handler || in_user_progress)
        return 0;
    const xkl::core::scoped_mark mark(in_user_progress);
    return handler(thread, step, stage, length);
}

xkl_pivot_handler xkl_serv_set_pardiso_pivot(xkl_pivot_handler handler)
{
    if (!is_first_link(handler))
        return user_pivot.exchange(handler, std::memory_order_acq_rel);
    pivot_interface.store(handler, std::memory_order_relaxed);
    return user_pivot.load(std::memory_order_relaxed);
}

// Without a user's routine a pivot within the threshold becomes the threshold with the pivot's sign.
int xkl_serv_default_pardiso_pivot(const double *diagonal, double *pivot, const double *threshold)
{
    const xkl_pivot_handler handler = user_pivot.load(std::memory_order_acquire);
    if (handler && !in_user_pivot) {
        const xkl::core::scoped_mark mark(in_user_pivot);
        return handler(diagonal, pivot, threshold);
    }
    if (*pivot > *threshold || *pivot < -*threshold)
        return 0;
    *pivot = *pivot < 0 ? -*threshold : *threshold;
    return 1;
}
}
