#include "solvers/typed_system.h"

namespace xkl::core::solvers {

template class typed_system<std::complex<float>>;

} // namespace xkl::core::solvers
