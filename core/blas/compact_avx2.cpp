// Compact arithmetic for 256-bit registers with fused products. The standard headers come first: what they
// define is shared with files for every processor.
#include "compact.h"

#pragma GCC target("avx2,fma")
#include "compact_kernels.h"

namespace xkl::core {
const compact_kernels compact_avx2 = kernels_of_width<32>;
}
