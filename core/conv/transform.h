// Convolution by Fourier transforms. The wanted part of the result is cut into blocks where that is cheaper
// than one large transform: each takes what it needs of b, with all of a, and the sums that wrap around fall
// on elements which the block does not want (overlap-save). Blocks write different elements, so that they run
// on several threads without sharing anything but the spectrum of a.
#pragma once

#include "conv/geometry.h"

#include <atomic>

namespace xkl::core::conv {

enum class outcome { done, no_memory, no_transforms, failed };

/// How one dimension is cut: blocks of at most per_block wanted elements, each by a transform of this length
struct axis {
    int64_t length, per_block, blocks;
};

struct transform_shape {
    int rank;
    axis axes[max_rank];
    double cost; // nanoseconds of one thread

    int64_t blocks() const noexcept;
};

/// The cheapest way to cut the problem. A fixed a is transformed once for all executions.
template <class R, class T>
transform_shape choose_transform(const problem<T> &, bool a_is_fixed) noexcept;

/// What executions of a task share: made by the first, and not changed any more.
struct transform_plan;
void discard(transform_plan *) noexcept; // null is fine

/// Computes the wanted elements, with transforms in the precision of R. Makes the plan if there is none; with
/// a fixed a it keeps that one's spectrum. Nothing is written unless all memory is at hand.
template <class R, class T>
outcome convolve_by_transform(const problem<T> &, const transform_shape &, bool a_is_fixed,
                              std::atomic<transform_plan *> &) noexcept;

} // namespace xkl::core::conv
