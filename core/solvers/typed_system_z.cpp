#include "solvers/typed_system.h"

namespace xkl::core::solvers {

template class typed_system<std::complex<double>>;

} // namespace xkl::core::solvers
