// Registered frame: registers the reporter, makes the core call, and traces. The core checks the arguments,
// and what it finds goes to the program's reporter.
#pragma once

#include "frame/checked.h"

namespace xkl {

template <class Row, class... A>
[[gnu::always_inline]] inline auto registered_frame(A... arguments)
{
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    const int32_t mode = Row::flag.read();
    if (mode != 0) [[unlikely]]
        return good_flagged_call<Row>(mode, arguments...);
    return call_core<Row>(arguments...);
}

} // namespace xkl
