// The program's exit handler, as XKL_SET_EXIT_HANDLER leaves it.
#pragma once

#include "xkl_types.h"

namespace xkl {

void remember_exit_handler(xkl_exit_handler handler);

} // namespace xkl
