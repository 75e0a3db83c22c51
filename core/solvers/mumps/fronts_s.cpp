#include "solvers/mumps/fronts.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<float>> make_front_engine(const engine_options &options)
{
    return std::make_unique<fronts<float, float>>(options);
}

} // namespace xkl::core::solvers
