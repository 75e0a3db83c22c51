// Direct convolution for 512-bit registers.
// The standard headers come first: what they define is shared with files for every processor.
#include "conv/direct_kernels.h"

#include <type_traits>

#pragma GCC target("avx512f,avx512dq,avx512vl,fma")
#include "conv/strip_kernels.h"

namespace xkl::core::conv {
const direct_kernels direct_avx512 = kernels_of_width<64>;
}
