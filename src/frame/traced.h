// Traced frame: the core call, and a line about it when tracing is on. It checks nothing.
#pragma once

#include "frame/core_call.h"
#include "frame/verbose.h"

#include <type_traits>

namespace xkl {

/// Makes the core call and prints its line; a function's result is kept across the printing.
template <class Row, class... A>
auto timed_call(A... arguments)
{
    const stopwatch watch;
    if constexpr (std::is_void_v<decltype(call_core<Row>(arguments...))>) {
        call_core<Row>(arguments...);
        print_trace_line<Row>(watch, arguments...);
    } else {
        const auto result = call_core<Row>(arguments...);
        print_trace_line<Row>(watch, arguments...);
        return result;
    }
}

/// The road of a call whose flag did not read 0.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto flagged_call(A... arguments)
{
    if (!Row::flag.resolve(Row::flag.read()))
        return call_core<Row>(arguments...);
    return timed_call<Row>(arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto traced_frame(A... arguments)
{
    if (Row::flag.read() != 0) [[unlikely]]
        return flagged_call<Row>(arguments...);
    return call_core<Row>(arguments...);
}

} // namespace xkl
