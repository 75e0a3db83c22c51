// Reading the environment. All of the core reads it here, so that XKL_Set_Env_Mode holds everywhere.
#pragma once

#include <optional>

namespace xkl::core {

// The value of a variable; null when it is unset, empty, or one of the library's own while these are
// ignored.
const char *environment_value(const char *name) noexcept;

// The number at the start of a variable's value ("4,2" gives 4), none when it does not start with one.
std::optional<int> environment_number(const char *name) noexcept;

} // namespace xkl::core
