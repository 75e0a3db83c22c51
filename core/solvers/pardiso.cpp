// Defaults.
#include "solvers/pardiso.h"

namespace xkl::core {

// Touches nothing when mtype is no type of a matrix.
void pardisoinit(void **pt, const int64_t *mtype, int64_t *iparm)
{
    const auto kind = mtype ? solvers::kind_of(*mtype) : std::nullopt;
    if (!kind)
        return;
    if (pt)
        std::fill_n(pt, 64, nullptr);
    if (iparm)
        solvers::set_defaults(*kind, iparm);
}

} // namespace xkl::core
