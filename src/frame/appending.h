// Appending frame: the core call with a 32-bit 1 behind the arguments, by which the core's eigenvalue drivers
// know that the call comes from a program.
#pragma once

#include "frame/core_call.h"

namespace xkl {

template <class Row, class... A>
[[gnu::always_inline]] inline auto appending_frame(A... arguments)
{
    return Row::core(arguments..., std::int32_t{1});
}

} // namespace xkl
