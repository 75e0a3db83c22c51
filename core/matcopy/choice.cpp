// The one place where the instruction set of the matrix copies is chosen.
#include "matcopy/kernels.h"
#include "service/reproducibility.h"

namespace xkl::core {

const copy_kernels &copy_kernels_in_force() noexcept
{
    const instruction_level level = level_in_force();
    if (level >= instruction_level::avx512)
        return copy_avx512;
    return level >= instruction_level::avx2 ? copy_avx2 : copy_baseline;
}

} // namespace xkl::core
