// Compact arithmetic for 512-bit registers. The standard headers come first: what they define is
// shared with files for every processor.
#include "compact.h"

#pragma GCC target("avx512f")
#include "compact_kernels.h"

namespace xkl::core {
const compact_kernels compact_avx512 = kernels_of_width<64>;
}
