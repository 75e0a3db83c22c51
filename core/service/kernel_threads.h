// How many threads a call may use, and the two ways in which the core uses several: kernels that thread
// themselves under a count set for them, and loops whose bodies each run on one thread.
//
// The kernel library knows a single count for the whole process. While no thread asks for another one, that
// count is in place and calls go straight through (openblas/forward.h). Otherwise a call takes a turn:
// turns that want the same count run at the same time, others wait until these have left, in the order in
// which they came.
#pragma once

#include "xkl_service_types.h"

#include <atomic>
#include <cstdint>
#include <type_traits>

namespace xkl::core {

// Threads that a call of the calling thread may use in a domain (XKL_DOMAIN_ values), 1 in the body of a
// loop.
int threads_for(int domain) noexcept;

// 1, else 0, while the kernel library's count is not the one that every call wants: before the first call,
// while a thread has a count of its own, while a loop runs. Written under the lock of the turns; a call
// that reads the old value runs with another number of threads than it wanted, and computes the same.
[[gnu::visibility("hidden")]] extern std::atomic<unsigned> kernel_turns_needed;

// Holds the kernel library at a count of threads. A turn inside another one of the same thread changes
// nothing.
class kernel_turn {
  public:
    kernel_turn(); // the count that the calling thread's calls want
    explicit kernel_turn(int threads);
    ~kernel_turn();
    kernel_turn(const kernel_turn &) = delete;
    kernel_turn &operator=(const kernel_turn &) = delete;
};

// For code that calls kernels from several threads of its own at once: they run on one thread each.
class serial_kernels {
    kernel_turn turn{1};
};

// Runs the change unless a kernel has run already; true when it was run. No kernel starts meanwhile.
bool before_first_kernel(void (*change)(const void *), const void *context);

template <class Change>
bool before_first_kernel(const Change &change)
{
    return before_first_kernel([](const void *context) { (*static_cast<const Change *>(context))(); },
                               &change);
}

// Called after a change of the settings from which the count of kernel_turn() follows.
void kernel_threads_changed();

// Called when a thread gets a count of its own (+1), gives it up or ends with it (-1).
void local_counts_changed(int by);

// Enough work to pay for handing a loop to other threads, in floating-point operations or the like.
constexpr double loop_work_that_pays = 1e5;

// The calls that dense routines make most.
inline int thread_count() noexcept
{
    return threads_for(XKL_DOMAIN_BLAS);
}

using loop_body = void (*)(const void *context, int64_t index);
void run_loop(int64_t count, int domain, double work_each, loop_body body, const void *context);

// Calls body(0) to body(count - 1), each once, on as many threads as the domain allows. Too little work, a
// loop within a loop and a loop while another thread runs one all stay on the calling thread. The body must
// not throw.
//
// Bodies of XKL_DOMAIN_BLAS may call kernels, which run on one thread each; few large items are run one after
// the other with all threads in the kernels. Bodies of the other domains call none: such loops take no
// turn, or a short one would wait for another thread's large product.
template <class Body>
void parallel_for(int64_t count, int domain, double work_each, const Body &body)
{
    run_loop(
        count, domain, work_each,
        [](const void *context, int64_t index) { (*static_cast<const Body *>(context))(index); }, &body);
}

// The same for a dense routine that has found already that its parts are worth sharing.
template <class Body>
void parallel_for(int64_t count, const Body &body)
{
    parallel_for(count, XKL_DOMAIN_BLAS, loop_work_that_pays, body);
}

} // namespace xkl::core
