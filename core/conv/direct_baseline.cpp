// Direct convolution for every processor, and the choice among the instruction sets.
#include "conv/strip_kernels.h"

#include "service/reproducibility.h"

namespace xkl::core::conv {

const direct_kernels direct_baseline = kernels_of_width<16>;

const direct_kernels &direct_kernels_in_force() noexcept
{
    const instruction_level level = level_in_force();
    if (level >= instruction_level::avx512)
        return direct_avx512;
    return level >= instruction_level::avx2 ? direct_avx2 : direct_baseline;
}

} // namespace xkl::core::conv
