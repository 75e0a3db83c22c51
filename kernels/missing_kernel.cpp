#include "missing_kernel.h"

#include <cstdio>
#include <cstdlib>

namespace xkl::kernels {

void missing_kernel(const char *name)
{
    std::fprintf(stderr, "XKL: the vector math kernel library does not compute %s yet; avoid the routine\n",
                 name);
    std::exit(2);
}

} // namespace xkl::kernels
