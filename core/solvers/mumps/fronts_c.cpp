#include "solvers/mumps/fronts.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<std::complex<float>>> make_front_engine(const engine_options &options)
{
    if (options.kind.form == symmetry::conjugated)
        return std::make_unique<fronts<std::complex<float>, float>>(options);
    return std::make_unique<fronts<std::complex<float>, std::complex<float>>>(options);
}

} // namespace xkl::core::solvers
