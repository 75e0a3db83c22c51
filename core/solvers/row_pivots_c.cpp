#include "solvers/row_pivots.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<std::complex<float>>> make_row_engine(const engine_options &)
{
    return std::make_unique<row_pivots<std::complex<float>>>();
}

} // namespace xkl::core::solvers
