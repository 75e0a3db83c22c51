// The one symbol of the module, and what stands between its C++ and the core.
#include "fft/module/plans.h"
#include "fft/module/transform.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <unistd.h>

namespace xkl::fft {
namespace {

// FFTW ends the process when it runs out of memory. Its tables are as large as the longest dimension; data
// of that length does not fit into the machine either.
bool tables_fit(const problem &wanted)
{
    const double machine =
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
    const auto longest =
        std::max_element(wanted.sides, wanted.sides + wanted.rank,
                         [](const dimension &a, const dimension &b) { return a.length < b.length; });
    return static_cast<double>(longest->length) * (wanted.single ? 8 : 16) < machine;
}

int32_t make(const problem *wanted, transform **made) noexcept
try {
    *made = nullptr;
    if (!tables_fit(*wanted))
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
