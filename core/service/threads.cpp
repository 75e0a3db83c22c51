// The thread settings: counts for all, by domain and by thread, and the settings about them.
#include "service/environment.h"
#include "service/kernel_threads.h"
#include "service/service_entries.h"
#include "service/thread_state.h"

#include <algorithm>
#include <atomic>
#include <sched.h>

namespace xkl::core {
namespace {

constexpr int domain_count = XKL_DOMAIN_SPARSE + 1;

// Written by the setters: the count of each domain, 0 for one that follows the count for all, whose own 0
// means the count that the environment gives. Plain numbers without order between them.
std::atomic<int> requested[domain_count];

// Written by the setters. Dynamic: a call may use fewer threads than its count. The stripes are a hint that
// the present kernels do not need; the message passing library is for the cluster routines.
std::atomic<bool> dynamic_on{true};
std::atomic<int> stripes{0};
std::atomic<int> mpi_vendor{XKL_MPI_DEFAULT};

// The calling thread's own count, 0 for none. A thread that ends gives it up.
struct local_count {
    int value = 0;

    void set(int count)
    {
        const int change = (count != 0) - (value != 0);
        value = count;
        if (change != 0)
            local_counts_changed(change);
    }
    ~local_count() { set(0); }
};
thread_local local_count own_count;

int available_processors() noexcept
{
    cpu_set_t set;
    CPU_ZERO(&set);
    return sched_getaffinity(0, sizeof set, &set) == 0 ? std::max(CPU_COUNT(&set), 1) : 1;
}

// Read once: whoever changes the environment or the affinity later calls XKL_Set_Num_Threads.
int processors() noexcept
{
    static const int count = available_processors();
    return count;
}

int positive_number(const char *variable) noexcept
{
    return std::max(environment_number(variable).value_or(0), 0);
}

int default_count() noexcept
{
    static const int count = [] {
        for (const char *variable : {"XKL_NUM_THREADS", "OMP_NUM_THREADS"})
            if (const int number = positive_number(variable))
                return number;
        return processors();
    }();
    return count;
}

// What the kernel library's own variable asks for holds for its domain, unless the library's variable is
// set.
int default_blas_count() noexcept
{
    static const int count =
        positive_number("XKL_NUM_THREADS") ? 0 : positive_number("OPENBLAS_NUM_THREADS");
    return count;
}

int count_for_all() noexcept
{
    const int count = requested[XKL_DOMAIN_ALL].load(std::memory_order_relaxed);
    return count > 0 ? count : default_count();
}

int process_count(int domain) noexcept
{
    if (const int count = requested[domain].load(std::memory_order_relaxed))
        return count;
    const bool nothing_said = requested[XKL_DOMAIN_ALL].load(std::memory_order_relaxed) == 0;
    if (domain == XKL_DOMAIN_BLAS && nothing_said && default_blas_count() > 0)
        return default_blas_count();
    return count_for_all();
}

int usable(int count) noexcept
{
    return dynamic_on.load(std::memory_order_relaxed) ? std::min(count, processors()) : count;
}

bool is_domain(int domain)
{
    return domain >= 0 && domain < domain_count;
}

} // namespace

int threads_for(int domain) noexcept
{
    if (in_loop_body())
        return 1;
    return usable(own_count.value > 0 ? own_count.value
                                      : process_count(is_domain(domain) ? domain : XKL_DOMAIN_ALL));
}

bool has_own_count() noexcept
{
    return own_count.value > 0;
}

int process_threads_for(int domain) noexcept
{
    return usable(process_count(domain));
}

} // namespace xkl::core

using namespace xkl::core;

extern "C" {

// A count below 1 goes back to the one that the environment gives.
void xkl_serv_set_num_threads(int count)
{
    requested[XKL_DOMAIN_ALL].store(std::max(count, 0), std::memory_order_relaxed);
    kernel_threads_changed();
}

// Returns the thread's own count before, 0 for none.
int xkl_serv_set_num_threads_local(int count)
{
    const int before = own_count.value;
    own_count.set(std::max(count, 0));
    return before;
}

int xkl_serv_get_max_threads(void)
{
    return own_count.value > 0 ? own_count.value : count_for_all();
}

// Count 0 makes a domain follow the count for all. Returns 1, or 0 for a negative count or an unknown
// domain.
int xkl_serv_domain_set_num_threads(int count, int domain)
{
    if (count < 0 || !is_domain(domain))
        return 0;
    if (domain == XKL_DOMAIN_ALL)
        for (std::atomic<int> &each : requested)
            each.store(0, std::memory_order_relaxed);
    requested[domain].store(count, std::memory_order_relaxed);
    kernel_threads_changed();
    return 1;
}

// 0 for an unknown domain.
int xkl_serv_domain_get_max_threads(int domain)
{
    if (!is_domain(domain))
        return 0;
    return own_count.value > 0 ? own_count.value : process_count(domain);
}

void xkl_serv_set_dynamic(int flag)
{
    dynamic_on.store(flag != 0, std::memory_order_relaxed);
    kernel_threads_changed();
}

int xkl_serv_get_dynamic(void)
{
    return dynamic_on.load(std::memory_order_relaxed);
}

void xkl_serv_set_num_stripes(int count)
{
    stripes.store(std::max(count, 0), std::memory_order_relaxed);
}

int xkl_serv_get_num_stripes(void)
{
    return stripes.load(std::memory_order_relaxed);
}

int xkl_serv_set_mpi(int vendor, const char *custom_library)
{
    if (vendor < XKL_MPI_DEFAULT || vendor > XKL_MPI_OPENMPI)
        return -1;
    if (vendor == XKL_MPI_CUSTOM && (!custom_library || !*custom_library))
        return -2;
    mpi_vendor.store(vendor, std::memory_order_relaxed);
    return 0;
}
}
