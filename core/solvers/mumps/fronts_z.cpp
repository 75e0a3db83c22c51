#include "solvers/mumps/fronts.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<std::complex<double>>> make_front_engine(const engine_options &options)
{
    if (options.kind.form == symmetry::conjugated)
        return std::make_unique<fronts<std::complex<double>, double>>(options);
    return std::make_unique<fronts<std::complex<double>, std::complex<double>>>(options);
}

} // namespace xkl::core::solvers
