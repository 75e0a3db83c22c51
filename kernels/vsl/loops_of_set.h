// The generators' loops for this processor.
#pragma once

#include "vsl/instruction_set.h"
#include "vsl/simd/loops.h"

namespace xkl::vsl {

inline const loops &simd() noexcept
{
    return of_set(kernels::sse2::generator_loops, kernels::avx2::generator_loops,
                  kernels::avx512::generator_loops);
}

} // namespace xkl::vsl
