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

/// The road over a core that wants to be called for the registration.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto untraced_registering_call(A... arguments)
{
    register_by_call();
    return doubted_untraced_call<Row>(arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto guarded_frame(A... arguments)
{
    if (!registered_in_place()) [[unlikely]]
        return untraced_registering_call<Row>(arguments...);
    if (Row::check::template first_bad<inline_letters>(arguments...) != 0) [[unlikely]]
        return doubted_untraced_call<Row>(arguments...);
    store_info<Row>(0, arguments...);
    return call_core<Row>(arguments...);
}

} // namespace xkl
