// How the dense routines say that they can't do what was asked: through the error reporter, as the checks
// in front of them do. They test only what those can't see, or what would lead them to write outside the
// caller's arrays.
#pragma once

#include <cstdint>

namespace xkl::core {

/// The position by which the reporter knows a lack of memory.
inline constexpr int64_t no_memory = 1000;

/// Reports an argument of a routine. In its name, a string constant, `?` stands for the letter of its type.
[[gnu::cold]] void report(const char *name, char letter, int64_t position);

} // namespace xkl::core
