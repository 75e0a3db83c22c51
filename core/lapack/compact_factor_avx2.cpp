// Factorizations of compact matrices for 256-bit registers with fused products. The standard headers come
// first: what they define is shared with files for every processor.
#include "compact_factor.h"

#include <limits>

#pragma GCC target("avx2,fma")
#include "compact_factor_kernels.h"

namespace xkl::core {
const compact_factor_kernels compact_factor_avx2 = factor_kernels_of_width<32>;
}
