#include "conv/geometry.h"

#include <algorithm>

namespace xkl::core::conv {
namespace {

int64_t last_of(const dimension &d) noexcept
{
    return d.first + (d.count - 1) * d.step;
}

} // namespace

int64_t trim_result(dimension &d) noexcept
{
    const int64_t end = d.a_count + d.b_count - 1;
    const int64_t skip = d.first < 0 ? (-d.first + d.step - 1) / d.step : 0;
    const int64_t last = d.first < end ? (end - 1 - d.first) / d.step : -1;
    d.count = std::max<int64_t>(std::min(d.count - 1, last) - skip + 1, 0);
    d.first += skip * d.step;
    return skip;
}

int64_t trim_b(dimension &d) noexcept
{
    const int64_t skip = std::max<int64_t>(0, d.first - (d.a_count - 1));
    const int64_t last = std::min(d.b_count - 1, last_of(d));
    d.b_count = last - skip + 1;
    d.first -= skip;
    return skip;
}

skipped trim(dimension &d) noexcept
{
    skipped by;
    by.z = trim_result(d);
    if (d.count == 0)
        return by;
    by.b = trim_b(d);
    by.a = std::max<int64_t>(0, d.first - (d.b_count - 1));
    d.a_count = std::min(d.a_count - 1, last_of(d)) - by.a + 1;
    d.first -= by.a;
    return by;
}

// The number for each element of the full result rises from 1, stays at the shorter input's length and falls
// to 1. Its sum over a range is a difference of sums from the start; steps see every step-th of them.
double products(const dimension &d) noexcept
{
    const auto triangle = [](int64_t n) {
        const double x = static_cast<double>(std::max<int64_t>(n, 0));
        return x * (x + 1) / 2;
    };
    const auto before = [&](int64_t n) {
        return triangle(n) - triangle(n - d.a_count) - triangle(n - d.b_count) +
               triangle(n - d.a_count - d.b_count);
    };
    const int64_t last = last_of(d);
    return (before(last + 1) - before(d.first)) * static_cast<double>(d.count) /
           static_cast<double>(last - d.first + 1);
}

} // namespace xkl::core::conv
