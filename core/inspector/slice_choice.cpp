// The one place where the instruction set of the slices is chosen.
#include "inspector/slices.h"
#include "service/reproducibility.h"

namespace xkl::core::inspector {

const slice_kernels &slices_in_force() noexcept
{
    const instruction_level level = level_in_force();
    if (level >= instruction_level::avx512)
        return slices_avx512;
    return level >= instruction_level::avx2 ? slices_avx2 : slices_baseline;
}

} // namespace xkl::core::inspector
