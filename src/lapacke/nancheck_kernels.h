// The search itself, for any width of registers. It is compiled once for each instruction set, under internal names: a
// linker that merged equal names would mix instruction sets.
//
// `Lanes` offers, for one type: width; bad, what a comparison of registers gives; unordered(p, q), whether elements of the
// registers loaded from p and q are NaNs; either and any of such; and tail(p, count), the same for fewer than two
// registers full, which reads nothing behind them.
#pragma once

#include "lapacke/nancheck_scan.h"

namespace xkl::lapacke {
namespace {

template <class Lanes, class R>
[[gnu::always_inline]] inline bool line_holds_nan(const R *p, int64_t count)
{
    constexpr int64_t w = Lanes::width;
    int64_t i = 0;
    for (; i + 8 * w <= count; i += 8 * w) {
        const auto near = Lanes::either(Lanes::unordered(p + i, p + i + w),
                                        Lanes::unordered(p + i + 2 * w, p + i + 3 * w));
        const auto far = Lanes::either(Lanes::unordered(p + i + 4 * w, p + i + 5 * w),
                                       Lanes::unordered(p + i + 6 * w, p + i + 7 * w));
        if (Lanes::any(Lanes::either(near, far)))
            return true;
    }
    if (count < 2 * w)
        return Lanes::any(Lanes::tail(p, count));
    // The last two registers end with the line and overlap those before: looking twice costs less than a loop.
    auto bad = Lanes::unordered(p + count - 2 * w, p + count - w);
    for (; i + 2 * w < count; i += 2 * w)
        bad = Lanes::either(bad, Lanes::unordered(p + i, p + i + w));
    return Lanes::any(bad);
}

template <class Lanes, class R>
bool search(const R *a, const line_starts &starts, const line_parts &parts)
{
    int64_t start = 0, step = starts.step, first = parts.first, last = parts.last;
    for (int64_t k = parts.count; k > 0; --k) {
        const int64_t from = larger(first, parts.low), to = smaller(last, parts.high);
        if (from < to && line_holds_nan<Lanes>(a + start + from, to - from))
            return true;
        start += step;
        step += starts.growth;
        first += parts.slope;
        last += parts.slope;
    }
    return false;
}

template <template <class> class Lanes>
constexpr nan_kernels kernels_with = {search<Lanes<float>, float>, search<Lanes<double>, double>};

} // namespace
} // namespace xkl::lapacke
