// Matrix copies for every processor of the architecture: 128-bit registers.
#include "matcopy/kernels.h"

#include <immintrin.h>

#include "matcopy/block_kernels.h"

namespace xkl::core {
const copy_kernels copy_baseline = kernels_of_width<16>;
}
