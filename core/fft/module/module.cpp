// The one symbol of the module, and what stands between its C++ and the core.
#include "fft/module/plans.h"
#include "fft/module/transform.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <unistd.h>

namespace xkl::fft {
namespace {

// FFTW ends the process when it runs out of memory. It plans with tables as large as the longest dimension
// and, where it transposes, with a buffer as large as the data; data that does not fit into the machine is
// nowhere.
bool fits_into_machine(const problem &wanted)
{
    const double machine =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    const bool complex =
        wanted.what == operation::complex_forward || wanted.what == operation::complex_backward;
    double longest = 0, points = 1;
    for (int i = 0; i < wanted.rank; ++i) {
        longest = std::max(longest, static_cast<double>(wanted.sides[i].length));
        points *= static_cast<double>(wanted.sides[i].length);
    }
    for (int i = 0; i < wanted.batch_rank; ++i)
        points *= static_cast<double>(wanted.batches[i].length);
    return std::max(2 * longest, complex ? 2 * points : points) * (wanted.single ? 4 : 8) < machine;
}

int32_t make(const problem *wanted, transform **made) noexcept
try {
    *made = nullptr;
    if (!fits_into_machine(*wanted))
        return status_no_memory;
    int32_t status = status_fault;
    *made =
        (wanted->single ? make_transform<float>(*wanted, status) : make_transform<double>(*wanted, status))
            .release();
    return status;
} catch (const std::bad_alloc &) {
    return status_no_memory;
} catch (...) {
    return status_fault;
}

int32_t run(const transform *made, void *x, void *second, void *third, void *fourth)
{
    return made->run(x, second, third, fourth);
}

void release(transform *made)
{
    delete made;
}

constexpr module_functions functions{module_version, make, run, release, plans_kept, plannings_done};

} // namespace
} // namespace xkl::fft

__attribute__((visibility("default"))) const xkl::fft::module_functions *
xkl_core_fft_module(const xkl::fft::core_services *services, int32_t version)
{
    static std::once_flag started;
    if (version != xkl::fft::module_version)
        return nullptr;
    std::call_once(started, [services] {
        xkl::fft::host = services;
        xkl::fft::start_library();
    });
    return &xkl::fft::functions;
}
