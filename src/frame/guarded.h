// Guarded frame: registers the reporter, checks the arguments and makes the core call. It never traces.
#pragma once

#include "frame/checked.h"

namespace xkl {

/// The road of a call that was not proven good.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto doubted_untraced_call(A... arguments)
{
    if (call_with_lengths<Row>(Row::checker, arguments...) != 0)
        return refused<Row>();
    return call_core<Row>(arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto guarded_frame(A... arguments)
{
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    if (Row::check::template first_bad<inline_letters>(arguments...) != 0) [[unlikely]]
        return doubted_untraced_call<Row>(arguments...);
    store_info<Row>(0, arguments...);
    return call_core<Row>(arguments...);
}

} // namespace xkl
