// Runs the independent parts of one call side by side: the matrices of a batch, the blocks of a product.
#pragma once

#include "service/kernel_threads.h"

#include <algorithm>
#include <cstdint>

namespace xkl::core {

/// What one part costs, from its dimensions
template <class... Sizes>
double operations(Sizes... sizes)
{
    return (1. * ... * static_cast<double>(sizes));
}

/// body(i) for every i of 0 to count
template <class Body>
void for_each(int64_t count, double operations_of_one, const Body &body)
{
    if (count > 0)
        parallel_for(count, XKL_DOMAIN_BLAS, operations_of_one, body);
}

/// body(group, i) for every matrix i of a batch that stands group after group. Matrices are handed out in
/// ranges, each of which looks for its first group itself: no list of the matrices' groups is kept.
template <class Operations, class Body>
void for_each_in_groups(int64_t groups, const int64_t *sizes, const Operations &operations,
                        const Body &body)
{
    int64_t count = 0;
    double work = 0;
    for (int64_t group = 0; group < groups; ++group)
        if (sizes[group] > 0) {
            count += sizes[group];
            work += static_cast<double>(sizes[group]) * operations(group);
        }
    const int64_t ranges = std::min<int64_t>(count, 256);
    for_each(ranges, work / static_cast<double>(std::max<int64_t>(ranges, 1)), [&](int64_t range) {
        const int64_t length = count / ranges, longer = count % ranges;
        const int64_t first = range * length + std::min(range, longer),
                      last = first + length + (range < longer);
        int64_t group = 0, end = std::max<int64_t>(sizes[0], 0);
        for (int64_t i = first; i < last; ++i) {
            while (i >= end)
                end += std::max<int64_t>(sizes[++group], 0);
            body(group, i);
        }
    });
}

} // namespace xkl::core
