#include "solvers/mumps/fronts.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<double>> make_front_engine(const engine_options &options)
{
    return std::make_unique<fronts<double, double>>(options);
}

} // namespace xkl::core::solvers
