#include "conv/elements.h"

#include "service/service_entries.h"

#include <algorithm>
#include <utility>

namespace xkl::core::conv {

scratch::scratch(double bytes) noexcept : block_(nullptr)
{
    constexpr double most = 0x1p62, least = 64;
    if (bytes < most)
        block_ = xkl_serv_malloc(static_cast<size_t>(std::max(bytes, least)), 64);
}

scratch::~scratch()
{
    if (block_)
        xkl_serv_free(block_);
}

void *scratch::release() noexcept
{
    return std::exchange(block_, nullptr);
}

} // namespace xkl::core::conv
