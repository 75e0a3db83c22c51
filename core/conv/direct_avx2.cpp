// Direct convolution for 256-bit registers.
// The standard headers come first: what they define is shared with files for every processor.
#include "conv/direct_kernels.h"

#include <type_traits>

#pragma GCC target("avx2,fma")
#include "conv/strip_kernels.h"

namespace xkl::core::conv {
const direct_kernels direct_avx2 = kernels_of_width<32>;
}
