// Opens the kernel library of vector math and statistics.
#include "service/beside_core.h"
#include "service/environment.h"
#include "service/messages.h"
#include "service/service_entries.h"

#include <dlfcn.h>
#include <string>

namespace {

// Beside the core, wherever that was loaded from; XKL_KERNELS names another file.
std::string kernel_library_file()
{
    if (const char *named = xkl::core::environment_value("XKL_KERNELS"))
        return named;
    return xkl::core::beside_core("libxkl_kernels.so");
}

} // namespace

// Null when it cannot be opened: the caller prints message 771, whose text then tells the loader's reason.
extern "C" void *xkl_serv_load_vml(void)
{
    void *library = dlopen(kernel_library_file().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        xkl::core::explain_message(xkl::core::message_no_kernel_library, dlerror());
    return library;
}
