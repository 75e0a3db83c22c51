// Matrix copies for 256-bit registers.
// The standard headers come first: what they define is shared with files for every processor.
#include "matcopy/kernels.h"

#include <immintrin.h>

#pragma GCC target("avx2")
#include "matcopy/block_kernels.h"

namespace xkl::core {
const copy_kernels copy_avx2 = kernels_of_width<32>;
}
