// What all functions of this family share: telling a descriptor from anything else, and the order of
// dimensions. C's first dimension is the slowest, the core's first one the fastest, as Fortran has it.
#pragma once

#include "core_dfti.h"
#include "dft/descriptor.h"

#include <cstdint>

namespace xkl::dfti {

constexpr int64_t most_dimensions = 7;
constexpr int64_t longest_name = 4096; // of a descriptor, as it is set

/// The offset, and a stride for each dimension.
using stride_vector = int64_t[most_dimensions + 1];

inline bool is_descriptor(const DFTI_DESCRIPTOR *handle)
{
    return handle && handle->tag == xkl_dft_tag;
}

/// Copies lengths from C's order to the core's, or back.
inline void copy_reversed(const int64_t *from, int64_t count, int64_t *to)
{
    for (int64_t i = 0; i < count; ++i)
        to[i] = from[count - 1 - i];
}

} // namespace xkl::dfti
