// Registered frame: registers the reporter, makes the core call, and traces. The core checks the arguments,
// and what it finds goes to the program's reporter.
#pragma once

#include "frame/checked.h"

namespace xkl {

/// The road over a core that wants to be called for the registration.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto registering_call(A... arguments)
{
    register_by_call();
    return traced_frame<Row>(arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto registered_frame(A... arguments)
{
    if (!registered_in_place()) [[unlikely]]
        return registering_call<Row>(arguments...);
    return traced_frame<Row>(arguments...);
}

} // namespace xkl
