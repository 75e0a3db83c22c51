#include "solvers/fixed_pivots.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<float>> make_fixed_engine(const engine_options &options)
{
    return std::make_unique<fixed_pivots<float>>(options);
}

} // namespace xkl::core::solvers
