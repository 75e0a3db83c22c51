// Valued frame: registers the reporter, checks, makes the core call, and traces. Checker and core take
// values, so that the body that has addresses reads them first, and both bodies go on alike.
//
// The tracing flag is fetched on every call: this family keeps no place of its own for it.
#pragma once

#include "frame/checked.h"

namespace xkl {

/// Body of an exported checker: a check reports by itself, and may do so without refusing the call.
template <class Row, class... A>
int64_t check_values(A... arguments)
{
    const auto report = [](int64_t position) -> int64_t {
        xkl_serv_xerbla(Row::reported_name, &position, sizeof(Row::reported_name) - 1);
        return 1;
    };
    return Row::check::refused(report, arguments...);
}

/// Takes the place of reporting: keeps that there is something to report.
struct noted_report {
    bool &bad;
    [[gnu::always_inline]] int64_t operator()(int64_t) const
    {
        bad = true;
        return 1;
    }
};

/// Whether no test finds anything to report. Reports are left to the checker.
template <class Row, class... A>
[[gnu::always_inline]] inline bool proven_good(A... arguments)
{
    bool bad = false;
    Row::check::refused(noted_report{bad}, arguments...);
    return !bad;
}

/// The road of a call that was not proven good: what is bad may be reported and not stop it.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] void call_if_good(A... arguments)
{
    if (Row::checker(arguments...) == 0)
        Row::core(arguments...);
}

/// A value as the trace line prints it.
template <class T>
auto printed_value(T value)
{
    if constexpr (std::is_pointer_v<T>)
        return as_address(value);
    else
        return value;
}

/// A refused call leaves its line, too. The clock's first reading counts whatever it is, 0 included.
template <class Row, class... A>
[[gnu::noinline, gnu::cold]] void traced_values(const char *format, A... arguments)
{
    const double start = -xkl_serv_dsecnd();
    call_if_good<Row>(arguments...);
    print_line(start + xkl_serv_dsecnd(), format, printed_value(arguments)...);
}

/// `format` is the body's: the two differ in how they print sizes.
template <class Row, class... A>
[[gnu::always_inline]] inline void valued_frame(const char *format, A... arguments)
{
    register_reporter();
    if (__atomic_load_n(xkl_serv_verbose_mode(), __ATOMIC_RELAXED) != 0) [[unlikely]]
        return traced_values<Row>(format, arguments...);
    if (!proven_good<Row>(arguments...)) [[unlikely]]
        return call_if_good<Row>(arguments...);
    Row::core(arguments...);
}

} // namespace xkl
