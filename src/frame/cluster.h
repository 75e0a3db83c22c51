// Cluster frame: installs the progress routine and makes the core call. Whoever reports errors and is asked
// about pivots stays: these solvers do neither.
#pragma once

#include "frame/core_call.h"
#include "frame/core_text.h"
#include "xkl_service.h"

namespace xkl {

template <class Row, class... A>
[[gnu::always_inline]] inline auto cluster_frame(A... arguments)
{
    xkl_serv_set_progress_interface(cdecl_progress);
    return call_core<Row>(arguments...);
}

} // namespace xkl
