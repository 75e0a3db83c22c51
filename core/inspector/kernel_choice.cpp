// The one place where the instruction set of the products is chosen.
#include "inspector/kernels.h"
#include "service/reproducibility.h"

namespace xkl::core::inspector {

const product_kernels &kernels_in_force() noexcept
{
    const instruction_level level = level_in_force();
    if (level >= instruction_level::avx512)
        return kernels_avx512;
    return level >= instruction_level::avx2 ? kernels_avx2 : kernels_baseline;
}

} // namespace xkl::core::inspector
