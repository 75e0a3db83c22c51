// Convolution by its definition.
#pragma once

#include "conv/geometry.h"

namespace xkl::core::conv {

/// Computes the wanted elements with sums of type R (float or double), real and imaginary parts alike.
/// False when there is no memory for the copies of the inputs; nothing is written then.
template <class R, class T>
bool convolve_directly(problem<T>) noexcept;

/// What it takes, in nanoseconds of one thread
template <class R, class T>
double direct_cost(const problem<T> &) noexcept;

} // namespace xkl::core::conv
