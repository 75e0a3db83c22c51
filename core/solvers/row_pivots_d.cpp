#include "solvers/row_pivots.h"

namespace xkl::core::solvers {

template <>
std::unique_ptr<engine<double>> make_row_engine(const engine_options &)
{
    return std::make_unique<row_pivots<double>>();
}

} // namespace xkl::core::solvers
