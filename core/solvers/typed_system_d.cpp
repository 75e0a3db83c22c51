#include "solvers/typed_system.h"

namespace xkl::core::solvers {

template class typed_system<double>;

} // namespace xkl::core::solvers
