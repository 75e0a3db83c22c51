// Checked frame: registers the reporter, checks the arguments, makes the core call, and traces.
//
// A check is a structure with a function `first_bad` that returns the 1-based place of the first bad
// argument, or 0. The frame runs it inline and means only "good" or "not proven good" by it; the exported
// checker runs it again with the core's letters, reports, and decides.
#pragma once

#include "frame/letters.h"
#include "frame/traced.h"

extern "C" void cdecl_xerbla(const char *name, const int64_t *position, int64_t length);

namespace xkl {

/// Body of an exported checker: 0, or 1 after the report of the first bad argument.
template <class Row, class... A>
int64_t report_first_bad(A... arguments)
{
    const int64_t position = Row::check::template first_bad<core_letters>(arguments...);
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

/// The road of a good call whose flag did not read 0. `mode` comes first for a reason: with the routine's
/// own list the compiler would make this a tail call and keep copies of all stack arguments ready for it on
/// the quiet path.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto good_flagged_call(int32_t mode, A... arguments)
{
    return Row::flag.resolve(mode) ? timed_call<Row>(arguments...) : call_core<Row>(arguments...);
}

/// The road of a call that was not proven good: `mode` is the flag as it read at entry.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] auto doubted_call(int32_t mode, A... arguments)
{
    const bool bad = call_with_lengths<Row>(Row::checker, arguments...) != 0;
    if (!bad)
        return mode == 0 ? call_core<Row>(arguments...) : good_flagged_call<Row>(mode, arguments...);
    if (Row::flag.resolve(mode))
        print_trace_line<Row>(stopwatch(), arguments...);
    return refused<Row>();
}

template <class Row, class... A>
[[gnu::always_inline]] inline auto checked_frame(A... arguments)
{
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    const int32_t mode = Row::flag.read();
    if (Row::check::template first_bad<inline_letters>(arguments...) != 0) [[unlikely]]
        return doubted_call<Row>(mode, arguments...);
    if (mode != 0) [[unlikely]]
        return good_flagged_call<Row>(mode, arguments...);
    return call_core<Row>(arguments...);
}

} // namespace xkl
