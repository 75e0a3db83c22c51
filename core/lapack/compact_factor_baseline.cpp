// Factorizations of compact matrices for every processor: wide registers are put together from narrow ones.
#include "compact_factor_kernels.h"

namespace xkl::core {
const compact_factor_kernels compact_factor_baseline[3] = {
    factor_kernels_of_width<16>, factor_kernels_of_width<32>, factor_kernels_of_width<64>};
}
