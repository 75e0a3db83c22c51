// Pass-through frame: the core call alone.
#pragma once

#include "frame/core_call.h"

namespace xkl {

template <class Row, class... A>
[[gnu::always_inline]] inline auto through_frame(A... arguments)
{
    return call_core<Row>(arguments...);
}

} // namespace xkl
