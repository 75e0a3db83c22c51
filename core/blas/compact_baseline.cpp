// Compact arithmetic for every processor: wide registers are put together from narrow ones.
#include "compact_kernels.h"

namespace xkl::core {
const compact_kernels compact_baseline[3] = {kernels_of_width<16>, kernels_of_width<32>,
                                             kernels_of_width<64>};
}
