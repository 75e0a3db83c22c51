// Factorizations of compact matrices for 512-bit registers. The standard headers come
// first: what they define is shared with files for every processor.
#include "compact_factor.h"

#include <limits>

#pragma GCC target("avx512f")
#include "compact_factor_kernels.h"

namespace xkl::core {
const compact_factor_kernels compact_factor_avx512 = factor_kernels_of_width<64>;
}
