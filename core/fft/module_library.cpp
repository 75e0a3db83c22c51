// Opens the transform module.
#include "fft/descriptor.h"

#include "service/beside_core.h"
#include "service/environment.h"
#include "service/kernel_threads.h"
#include "service/messages.h"
#include "service/service_entries.h"

#include <atomic>
#include <dlfcn.h>
#include <string>

namespace xkl::fft {
namespace {

// Found once; a failure is tried again by the next descriptor.
std::atomic<const module_functions *> opened{nullptr};

// The module says itself what is worth sharing; the loop only needs to hear that it is.
void run_shared_loop(int64_t count, void (*body)(const void *, int64_t), const void *context)
{
    core::run_loop(count, XKL_DOMAIN_FFT, core::loop_work_that_pays, body, context);
}

constexpr core_services services{xkl_serv_malloc, xkl_serv_free, core::environment_value, run_shared_loop};

// Beside the core, wherever that was loaded from; XKL_CORE_FFT names another file.
std::string module_file()
{
    if (const char *named = core::environment_value("XKL_CORE_FFT"))
        return named;
    return core::beside_core("libxkl_core_fft.so");
}

const module_functions *open_module()
{
    void *library = dlopen(module_file().c_str(), RTLD_NOW | RTLD_LOCAL);
    void *symbol = library ? dlsym(library, "xkl_core_fft_module") : nullptr;
    if (!symbol) {
        core::explain_message(core::message_no_transform, dlerror());
        return nullptr;
    }
    const auto get_functions = reinterpret_cast<decltype(&xkl_core_fft_module)>(symbol);
    const module_functions *found = get_functions(&services, module_version);
    if (!found)
        core::explain_message(core::message_no_transform, "the module belongs to another version");
    return found;
}

} // namespace

const module_functions *transform_module()
{
    const module_functions *found = opened.load(std::memory_order_acquire);
    if (!found) {
        found = open_module();
        if (found)
            opened.store(found, std::memory_order_release);
    }
    return found;
}

} // namespace xkl::fft
