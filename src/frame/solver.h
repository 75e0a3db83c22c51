// Solver frame: installs what the core's solvers call back, and makes the core call. Nothing is checked.
//
// The callbacks are set on every call, so that a routine which the program replaced between two calls counts
// at the next one. Their addresses come from the dynamic symbol table, where the program's own routine of
// the same name comes first.
#pragma once

#include "core_service.h"
#include "frame/core_call.h"
#include "frame/core_text.h"
#include "frame/registration.h"
#include "xkl_service.h"

namespace xkl {

/// The three go in this order: errors, progress, pivots. A solver takes its time, so the reporter is set by a
/// call like the others.
template <class Row, class... A>
[[gnu::always_inline]] inline auto solver_frame(A... arguments)
{
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    xkl_serv_set_progress_interface(cdecl_progress);
    xkl_serv_set_pardiso_pivot(cdecl_pardiso_pivot);
    return call_core<Row>(arguments...);
}

} // namespace xkl
