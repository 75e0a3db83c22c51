// The environment as the core sees it: its own variables can be switched off, the others always count.
#include "service/environment.h"

#include "service/service_entries.h"
#include "xkl_service_types.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace xkl::core {
namespace {
// Written by xkl_serv_set_env_mode: XKL_ENV_MODE_READ or XKL_ENV_MODE_IGNORE. Settings already read stay as
// they are.
std::atomic<int> env_mode{XKL_ENV_MODE_READ};
} // namespace

const char *environment_value(const char *name) noexcept
{
    const bool own = std::strncmp(name, "XKL_", 4) == 0;
    if (own && env_mode.load(std::memory_order_relaxed) == XKL_ENV_MODE_IGNORE)
        return nullptr;
    // Not getenv: that one answers the kernel libraries, with what the core has decided for them.
    const char *value = secure_getenv(name);
    return value && *value ? value : nullptr;
}

std::optional<int> environment_number(const char *name) noexcept
{
    const char *value = environment_value(name);
    if (!value)
        return std::nullopt;
    char *end = nullptr;
    const long number = std::strtol(value, &end, 10);
    if (end == value)
        return std::nullopt;
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

} // namespace xkl::core

extern "C" {

// A value longer than the buffer is cut, and the length is that of what the buffer holds.
int xkl_serv_getenv(const char *name, char *buffer, int size)
{
    if (!buffer || size <= 0)
        return 0;
    buffer[0] = '\0';
    const char *value = name ? xkl::core::environment_value(name) : nullptr;
    if (!value)
        return 0;
    const size_t length = strnlen(value, static_cast<size_t>(size) - 1);
    std::memcpy(buffer, value, length);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

int xkl_serv_set_env_mode(int mode)
{
    using xkl::core::env_mode;
    if (mode == XKL_ENV_MODE_READ || mode == XKL_ENV_MODE_IGNORE)
        return env_mode.exchange(mode, std::memory_order_relaxed);
    return env_mode.load(std::memory_order_relaxed);
}
}
