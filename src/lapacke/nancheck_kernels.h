// The search itself, for any width of registers. It is compiled once for each instruction set, under internal
// names: a linker that merged equal names would mix instruction sets.
//
// `Lanes` offers, for one type: width; unordered(p, q), whether elements of the registers loaded from p and q
// are NaNs; either and any of such; and tail(p, count), any for fewer than two registers full, which reads
// nothing behind them.
#pragma once

#include "lapacke/nancheck_scan.h"

namespace xkl::lapacke {
namespace {

/// Reals of a line from which on four are walked side by side. One stream of reads stops at every page and at
/// every line's end until the processor guesses the next one; four keep the memory busy.
constexpr int64_t long_line = 512;
/// The same for one run of reals, which is in no cache any more.
constexpr int64_t long_run = int64_t{1} << 20;

/// Reals before the first at which a register is loaded best: loads that cross cache lines take twice as
/// long.
template <class Lanes, class R>
[[gnu::always_inline]] inline int64_t until_aligned(const R *p)
{
    constexpr auto bytes = Lanes::width * sizeof(R);
    return static_cast<int64_t>((bytes - reinterpret_cast<uintptr_t>(p) % bytes) % bytes / sizeof(R));
}

template <class Lanes, class R>
[[gnu::always_inline]] inline bool line_holds_nan(const R *p, int64_t count)
{
    constexpr int64_t w = Lanes::width;
    if (count < 2 * w)
        return Lanes::tail(p, count);
    int64_t i = 0;
    if (count >= 16 * w) {
        if (Lanes::any(Lanes::unordered(p, p)))
            return true;
        i = until_aligned<Lanes>(p);
    }
    for (; i + 8 * w <= count; i += 8 * w) {
        const auto near = Lanes::either(Lanes::unordered(p + i, p + i + w),
                                        Lanes::unordered(p + i + 2 * w, p + i + 3 * w));
        const auto far = Lanes::either(Lanes::unordered(p + i + 4 * w, p + i + 5 * w),
                                       Lanes::unordered(p + i + 6 * w, p + i + 7 * w));
        if (Lanes::any(Lanes::either(near, far)))
            return true;
    }
    // The last two registers end with the line and overlap those before: looking twice costs less than a
    // loop.
    auto bad = Lanes::unordered(p + count - 2 * w, p + count - w);
    for (; i + 2 * w < count; i += 2 * w)
        bad = Lanes::either(bad, Lanes::unordered(p + i, p + i + w));
    return Lanes::any(bad);
}

/// Four lines, side by side; count is at least two registers full.
template <class Lanes, class R>
[[gnu::always_inline]] inline bool four_lines_hold_nan(const R *const (&p)[4], int64_t count)
{
    constexpr int64_t w = Lanes::width;
    const auto bad_at = [&](int64_t i) {
        const auto near = Lanes::either(Lanes::unordered(p[0] + i, p[0] + i + w),
                                        Lanes::unordered(p[1] + i, p[1] + i + w));
        const auto far = Lanes::either(Lanes::unordered(p[2] + i, p[2] + i + w),
                                       Lanes::unordered(p[3] + i, p[3] + i + w));
        return Lanes::any(Lanes::either(near, far));
    };
    for (int64_t i = 0; i + 2 * w < count; i += 2 * w)
        if (bad_at(i))
            return true;
    return bad_at(count - 2 * w);
}

template <class Lanes, class R>
bool search_run(const R *a, int64_t count)
{
    if (count < long_run)
        return line_holds_nan<Lanes>(a, count);
    const int64_t quarter = count / 4;
    const R *const quarters[4] = {a, a + quarter, a + 2 * quarter, a + 3 * quarter};
    return four_lines_hold_nan<Lanes>(quarters, quarter) ||
           line_holds_nan<Lanes>(a + 4 * quarter, count - 4 * quarter);
}

template <class Lanes, class R>
[[gnu::always_inline]] inline bool part_holds_nan(const R *line, int64_t from, int64_t to)
{
    return from < to && line_holds_nan<Lanes>(line + from, to - from);
}

/// Lines k to k + 3: what all hold side by side, from `from` to before `to`, and the ends line by line.
template <class Lanes, class R>
bool search_four(const R *a, const line_starts &starts, const line_parts &parts, int64_t k, int64_t from,
                 int64_t to)
{
    const R *const lines[4] = {a + starts[k], a + starts[k + 1], a + starts[k + 2], a + starts[k + 3]};
    const R *const common[4] = {lines[0] + from, lines[1] + from, lines[2] + from, lines[3] + from};
    if (four_lines_hold_nan<Lanes>(common, to - from))
        return true;
    for (int64_t i = 0; i < 4; ++i)
        if (part_holds_nan<Lanes>(lines[i], parts.first_of(k + i), from) ||
            part_holds_nan<Lanes>(lines[i], to, parts.last_of(k + i)))
            return true;
    return false;
}

/// Lines of which some are long, four at a time where these are
template <class Lanes, class R>
bool search_long_lines(const R *a, const line_starts &starts, const line_parts &parts)
{
    for (int64_t k = 0; k < parts.count; ++k) {
        const int64_t last = smaller(k + 3, parts.count - 1);
        const int64_t start = starts[k], held = larger(parts.first_of(k), parts.first_of(last));
        const int64_t from = held + until_aligned<Lanes>(a + start + held);
        const int64_t to = smaller(parts.last_of(k), parts.last_of(last));
        if (last == k + 3 && to - from >= long_line) {
            if (search_four<Lanes>(a, starts, parts, k, from, to))
                return true;
            k = last;
        } else if (part_holds_nan<Lanes>(a + start, parts.first_of(k), parts.last_of(k))) {
            return true;
        }
    }
    return false;
}

/// Short lines cost more to find than to search: their places are carried on from line to line.
template <class Lanes, class R>
bool search_lines(const R *a, const line_starts &starts, const line_parts &given)
{
    const line_parts parts = given; // in registers
    if (parts.high - parts.low >= long_line)
        return search_long_lines<Lanes>(a, starts, given);
    const int64_t growth = starts.growth;
    int64_t start = 0, step = starts.step, first = parts.first, last = parts.last;
    for (int64_t k = parts.count; k > 0; --k) {
        const int64_t from = larger(first, parts.low);
        if (part_holds_nan<Lanes>(a + start, from, smaller(last, parts.high)))
            return true;
        start += step;
        step += growth;
        first += parts.slope;
        last += parts.slope;
    }
    return false;
}

template <template <class> class Lanes, class R>
constexpr nan_kernel<R> kernel_with = {search_run<Lanes<R>, R>, search_lines<Lanes<R>, R>};

template <template <class> class Lanes>
constexpr nan_kernels kernels_with = {kernel_with<Lanes, float>, kernel_with<Lanes, double>};

} // namespace
} // namespace xkl::lapacke
