// Checked frame: registers the reporter, checks the arguments, makes the core call, and traces.
//
// A check is a structure with a function `first_bad` that returns the 1-based place of the first bad
// argument, or 0. The frame runs it inline and means only "good" or "not proven good" by it; the exported
// checker runs it again with the core's letters, reports, and decides.
#pragma once

#include "frame/letters.h"
#include "frame/registration.h"
#include "frame/traced.h"

namespace xkl {

template <class First, class... Rest>
[[gnu::always_inline]] inline auto last_of([[maybe_unused]] First first, Rest... rest)
{
    if constexpr (sizeof...(rest) == 0)
        return first;
    else
        return last_of(rest...);
}

/// Stores what a check found where the list ends with info: 0, or minus the place of the bad argument.
template <class Row, class... A>
[[gnu::always_inline]] inline void store_info(int64_t position, A... arguments)
{
    if constexpr (Row::sets_info)
        *last_of(arguments...) = -position;
}

/// Body of an exported checker: 0, or 1 after the report of the first bad argument.
template <class Row, class... A>
int64_t report_first_bad(A... arguments)
{
    const int64_t position = Row::check::template first_bad<core_letters>(arguments...);
    store_info<Row>(position, arguments...);
    if (position == 0)
        return 0;
    xkl_serv_xerbla(Row::reported_name, &position, sizeof(Row::reported_name) - 1);
    return 1;
}

/// What a refused call returns: nothing, or the row's failure value.
template <class Row>
auto refused()
{
    if constexpr (requires { Row::failed_result; })
        return Row::failed_result;
}

/// The road of a call that was not proven good.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto doubted_call(A... arguments)
{
    const int32_t mode = Row::flag.read();
    if (call_with_lengths<Row>(Row::checker, arguments...) == 0)
        return traced_frame<Row>(arguments...);
    if (Row::flag.resolve(mode))
        print_trace_line<Row>(stopwatch(), arguments...);
    return refused<Row>();
}

/// The road over a core that wants to be called for the registration.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto doubted_registering_call(A... arguments)
{
    register_by_call();
    return doubted_call<Row>(arguments...);
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto checked_frame(A... arguments)
{
    if (!registered_in_place()) [[unlikely]]
        return doubted_registering_call<Row>(arguments...);
    if (Row::check::template first_bad<inline_letters>(arguments...) != 0) [[unlikely]]
        return doubted_call<Row>(arguments...);
    store_info<Row>(0, arguments...);
    return traced_frame<Row>(arguments...);
}

} // namespace xkl
