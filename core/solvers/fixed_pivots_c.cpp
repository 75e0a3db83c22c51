#include "solvers/fixed_pivots.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<std::complex<float>>> make_fixed_engine(const engine_options &options)
{
    return std::make_unique<fixed_pivots<std::complex<float>>>(options);
}

} // namespace xkl::core::solvers
