// The templates behind LAPACKE's helpers, as src/lapacke/helpers.tbl names them.
#pragma once

#include "lapacke/layout_copy_packed.h"
#include "lapacke/nancheck_matrix.h"
#include "xkl_service.h"

namespace xkl::lapacke {

inline int64_t lsame(char ca, char cb)
{
    return xkl_lapack__lsame_(&ca, &cb, 1, 1);
}

} // namespace xkl::lapacke
