#include "vsl/instruction_set.h"

#include <atomic>
#include <cstdint>

extern "C" int32_t xkl_vml_kernel_GetTTableIndex(int32_t processor_class);

namespace xkl::vsl {

namespace {

// Set by xkl_vsl_kernel_LimitSet alone: the highest set that may run, 2 by default.
std::atomic<int32_t> limit{2};

} // namespace

int instruction_set() noexcept
{
    constexpr int32_t newest_class = 5;
    const int32_t best = xkl_vml_kernel_GetTTableIndex(newest_class);
    const int32_t allowed = limit.load(std::memory_order_relaxed);
    return allowed < best ? allowed : best;
}

} // namespace xkl::vsl

// For tests and measurements: from now on no newer instruction set than that one runs. Returns the one
// that does.
extern "C" [[gnu::visibility("default")]] int32_t xkl_vsl_kernel_LimitSet(int32_t set)
{
    xkl::vsl::limit.store(set < 0 ? 0 : set, std::memory_order_relaxed);
    return xkl::vsl::instruction_set();
}
