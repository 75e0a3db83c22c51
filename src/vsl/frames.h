// The frames of random streams: generators, and routines that make, change and end streams. What differs
// between routines is in their rows, which are printed from the tables: names, methods, and the kinds of
// their arguments (arguments.h).
#pragma once

#include "frame/verbose.h"
#include "vml/kernel_tables.h"
#include "vsl/arguments.h"
#include "vsl/core_entries.h"

#include <cstddef>
#include <type_traits>
#include <utility>

namespace xkl::vsl {

using vml::fetched;

/// Reports an argument by its place, and returns the status. Rare, so out of line and shared.
int32_t refuse(const char *name, int32_t place, int32_t status);

/// Fetches a kernel by name, opening the kernel library if nobody has.
void fetch(fetched<void> &kernel, const char *name);

/// Fetches the row's kernel, unless that has happened; ahead of clocks, which shall not see it.
template <class Row>
[[gnu::always_inline]] inline void make_ready()
{
    if (!Row::kernel.load(std::memory_order_relaxed)) [[unlikely]]
        fetch(Row::kernel, Row::kernel_name);
}

/// Calls the row's kernel with the arguments in the tuples, one behind the other.
template <class Row, class... Tuples>
[[gnu::always_inline]] inline int32_t call_kernel(Tuples... parts)
{
    return std::apply(
        []<class... Handed>(Handed... handed) {
            using kernel = int32_t(Handed...);
            return reinterpret_cast<kernel *>(Row::kernel.load(std::memory_order_relaxed))(handed...);
        },
        std::tuple_cat(parts...));
}

template <class Row>
[[gnu::always_inline]] inline bool is_traced()
{
    const int32_t mode = Row::flag.read();
    return mode != 0 && Row::flag.resolve(mode);
}

template <class T>
T as_vararg(const T &value)
{
    return value;
}
inline const char *as_vararg(const engine_name &name)
{
    return name.text();
}

/// A traced call's line. The longest file names are cut.
class trace_line {
  public:
    template <class Row, class... Tuples>
    static trace_line of(Tuples... printed)
    {
        trace_line line;
        std::apply(
            [&](const auto &...values) {
                xkl_serv_sprintf_s(line.text_, sizeof line.text_, Row::format, Row::name,
                                   as_vararg(values)...);
            },
            std::tuple_cat(printed...));
        return line;
    }

    void print(double seconds) const
    {
        constexpr int statistics_domain = 2;
        xkl_serv_print_verbose_info(seconds, statistics_domain, text_);
    }

  private:
    trace_line() = default;
    char text_[256];
};

// Stream routines

template <class Row, class... V>
[[gnu::noinline, gnu::cold]] int32_t traced_stream_routine(const V &...values)
{
    const trace_line line = trace_line::of<Row>(Row::parameters::printed(values...));
    const auto handed = Row::parameters::handed(values...);
    make_ready<Row>();
    const double start = xkl_serv_dsecnd();
    const int32_t result = call_kernel<Row>(handed);
    line.print(xkl_serv_dsecnd() - start);
    return result;
}

/// vslSkipAheadStream: checks in the order of the arguments, and one call of the kernel.
template <class Row, class... V>
[[gnu::always_inline]] inline int32_t stream_routine(const V &...values)
{
    if (const refusal found = Row::parameters::first_refused(values...); found.status != VSL_STATUS_OK)
        return refuse(Row::name, found.place, found.status);
    if constexpr (Row::creates)
        xkl_serv_get_dynamic(); // has the core set up its threads ahead of the first stream; no answer needed
    if (is_traced<Row>()) [[unlikely]]
        return traced_stream_routine<Row>(values...);
    make_ready<Row>();
    return call_kernel<Row>(Row::parameters::handed(values...));
}

// Generators

enum place : int32_t { method_place = 1, stream_place, count_place, result_place };

/// A method without the flag that rows with accurate methods take.
template <class Row>
constexpr uint64_t without_flag(int64_t method)
{
    constexpr uint64_t flag = Row::accurate ? VSL_RNG_METHOD_ACCURACY_FLAG : 0;
    return static_cast<uint64_t>(method) & ~flag;
}

/// Elements of r that a number takes.
template <class Row, class... P>
constexpr int64_t width_of(const P &...parameters)
{
    if constexpr (Row::width < 0)
        return 1;
    else
        return std::get<static_cast<std::size_t>(Row::width)>(std::tie(parameters...));
}

/// Kernels count in 32 bits, so more numbers come in blocks, up to the first that fails. `call` makes one
/// call of the kernel.
template <class Row, class Call, class T, class... P>
[[gnu::always_inline]] inline int32_t run_blocks(Call call, int64_t n, T *r, P... parameters)
{
    constexpr int64_t longest = INT32_MAX;
    for (;;) {
        const int64_t count = n < longest ? n : longest;
        const int32_t status = call(static_cast<int32_t>(count), r, parameters...);
        n -= count;
        if (status < 0 || n == 0)
            return status;
        r += count * width_of<Row>(parameters...);
        Row::parameters::advance(count, parameters...);
    }
}

template <class Row, class T, class... P>
[[gnu::noinline, gnu::cold]] int32_t traced_generate(int64_t method, VSLStreamStatePtr stream, int64_t n,
                                                     T *r, P... parameters)
{
    const auto low_half = [](int64_t value) { return static_cast<int32_t>(value); }; // as %d prints it
    double seconds = 0;
    const auto timed = [&](int32_t count, T *block, const auto &...here) {
        const double start = xkl_serv_dsecnd();
        const int32_t status = call_kernel<Row>(std::tuple(low_half(method), stream, count, block),
                                                Row::parameters::handed(here...));
        seconds += xkl_serv_dsecnd() - start;
        return status;
    };
    const int32_t status = run_blocks<Row>(timed, n, r, parameters...);
    if (status >= 0)
        trace_line::of<Row>(std::tuple(low_half(method), stream, low_half(n), static_cast<const void *>(r)),
                            Row::parameters::printed(parameters...))
            .print(seconds);
    return status;
}

/// vdRngGaussian
template <class Row, class T, class... P>
[[gnu::always_inline]] inline int32_t generate(int64_t method, VSLStreamStatePtr stream, int64_t n, T *r,
                                               P... parameters)
{
    if (method < 0)
        return refuse(Row::name, method_place, VSL_ERROR_BADARGS);
    if (const int32_t status = xkl_vml_service_IsStreamValid(stream); status < 0)
        return refuse(Row::name, stream_place, status);
    if (n < 0)
        return refuse(Row::name, count_place, VSL_ERROR_BADARGS);
    if (n == 0)
        return VSL_STATUS_OK;
    if (!r)
        return refuse(Row::name, result_place, VSL_ERROR_BADARGS);
    if (without_flag<Row>(method) >= Row::methods)
        return refuse(Row::name, method_place, VSL_ERROR_BADARGS);
    if (const refusal found = Row::parameters::first_refused(parameters...); found.status != VSL_STATUS_OK)
        return refuse(Row::name, result_place + found.place, found.status);
    make_ready<Row>();
    if (is_traced<Row>()) [[unlikely]]
        return traced_generate<Row>(method, stream, n, r, parameters...);
    const auto once = [&](int32_t count, T *block, const auto &...here) {
        return call_kernel<Row>(std::tuple(static_cast<int32_t>(method), stream, count, block),
                                Row::parameters::handed(here...));
    };
    return run_blocks<Row>(once, n, r, parameters...);
}

} // namespace xkl::vsl
