#include "solvers/fixed_pivots.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<double>> make_fixed_engine(const engine_options &options)
{
    return std::make_unique<fixed_pivots<double>>(options);
}

} // namespace xkl::core::solvers
