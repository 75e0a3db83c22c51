// Matrix copies for 512-bit registers.
// The standard headers come first: what they define is shared with files for every processor.
#include "matcopy/kernels.h"

#include <immintrin.h>

#pragma GCC target("avx512f,avx512vl,avx512dq,avx512bw")
#include "matcopy/block_kernels.h"

namespace xkl::core {
const copy_kernels copy_avx512 = kernels_of_width<64>;
}
