// Call tracing: the flag of a routine, and the line that a traced call leaves.
//
// The quiet path is one load of a pointer and one test of the flag behind it. Everything else is out of
// line, so that a quiet frame keeps its arguments where its caller put them.
#pragma once

#include "core_service.h"
#include "frame/core_text.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace xkl {

constexpr int blas_domain = 2; // domain code of BLAS, LAPACK and statistics lines

inline constinit const int32_t unfetched_flag = -1;

/// Where a routine reads whether tracing is on. It starts at a constant -1, "not known yet"; the first call
/// that finds -1 fetches the address of the core's live flag and keeps it for the life of the process.
/// Racing threads store the same address, so the pointer is a relaxed atomic, and so is the flag behind it,
/// which the core may change at any time.
class verbose_flag {
  public:
    [[gnu::always_inline]] int32_t read() const
    {
        return __atomic_load_n(where_.load(std::memory_order_relaxed), __ATOMIC_RELAXED);
    }

    /// Whether tracing is on now, for a caller that read `mode` at its entry.
    bool resolve(int32_t mode)
    {
        if (mode == unfetched_flag)
            where_.store(xkl_serv_verbose_mode(), std::memory_order_relaxed);
        return read() != 0;
    }

  private:
    std::atomic<const int32_t *> where_{&unfetched_flag};
};

/// The time that a traced call takes. A clock that reads exactly 0.0 at the start stands for "no clock":
/// the elapsed time is then reported as minus that start, without a second reading.
class stopwatch {
  public:
    double elapsed() const { return -start_ != 0 ? xkl_serv_dsecnd() - start_ : -start_; }

  private:
    double start_ = xkl_serv_dsecnd();
};

/// Any argument as an address: data, or a procedure.
template <class T>
const void *as_address(T *argument)
{
    if constexpr (std::is_function_v<T>)
        return reinterpret_cast<const void *>(argument);
    else
        return argument;
}

/// An argument as the trace line prints it: a character, an integer (0 for a null address; 'v': passed by
/// value), or an address.
template <char Kind, class T>
auto printed(T argument)
{
    if constexpr (Kind == 'c')
        return static_cast<int>(*argument);
    else if constexpr (Kind == 'i' || Kind == 'e')
        return static_cast<long long>(argument ? *argument : 0);
    else if constexpr (Kind == 'v')
        return static_cast<long long>(argument);
    else
        return as_address(argument);
}

/// Formats and prints a line; what does not fit is cut.
template <class... V>
void print_line(double elapsed, const char *format, V... values)
{
    constexpr std::size_t size = 450;
    char line[size];
    xkl_serv_snprintf_s(line, size, size - 1, format, values...);
    line[size - 1] = 0;
    xkl_serv_print_verbose_info(elapsed, blas_domain, line);
}

/// Prints the line of a routine.
template <class Row, class... A>
void print_trace_line(const stopwatch &watch, A... arguments)
{
    const double elapsed = watch.elapsed();
    [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        print_line(elapsed, Row::format, printed<Row::kinds[I]>(arguments)...);
    }
    (std::index_sequence_for<A...>{});
}

} // namespace xkl
