// The loader of the kernel library.
#include "vml/loader.h"

#include "vml/core_entries.h"
#include "xkl_service.h"

#include <atomic>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace {

enum message : int {
    no_working_directory = 1, // argument: this library's file
    no_kernel_library = 771,
    no_kernel = 772, // argument: the symbol
};

// Written by the first caller, null until then. Racing first callers store the same value: the core opens
// the library once, however often it is asked.
constinit std::atomic<void *> vml_dll_handle{nullptr};

constexpr size_t directory_size = 4096;
// The working directory at load, with a slash behind it. Written once, by the constructor below.
char DispLibCWD[directory_size];

/// There is no way to go on without a kernel: the caller is about to jump to it. So the process ends even
/// where the program has set a handler and that one returns.
[[noreturn]] void end_process()
{
    constexpr int code = 2;
    xkl_serv_iface_exit(code);
    std::exit(code);
}

constexpr int32_t unknown_class = -1;

/// The class that the environment asks for, or unknown_class. There is no class 8.
int32_t requested_class()
{
    char value[32] = "";
    const int length = xkl_serv_getenv("XKL_VML_DEBUG_CPU_TYPE", value, sizeof value);
    const auto digit = [](char letter) { return letter >= '0' && letter <= '9' ? letter - '0' : -1; };
    const int first = digit(value[0]), second = digit(value[1]);
    if (first < 0 || (length == 2 && second < 0))
        return unknown_class;
    // Longer values count by their first letter alone.
    const int wanted = length == 2 ? 10 * first + second : first;
    return wanted >= 10 || wanted == 8 ? unknown_class : wanted;
}

/// Class of a core's processor code; codes beyond the list are their own class.
int32_t mapped(int32_t code)
{
    constexpr int8_t classes[] = {0, 1, 0, 0, 0, 2, 2, 3, 4, 5};
    return code >= 0 && code < static_cast<int32_t>(sizeof classes) ? classes[code] : code;
}

int32_t unmapped(int32_t code)
{
    return code;
}

[[gnu::cold, gnu::noinline]] int32_t detect(std::atomic<int32_t> &cache, int32_t (*class_of)(int32_t))
{
    int32_t found = requested_class();
    if (found == unknown_class)
        found = class_of(xkl_serv_vml_cpu_detect());
    cache.store(found, std::memory_order_relaxed);
    return found;
}

/// A cache of its own for each way to read the core's code. Written by racing first callers, with the
/// same value as long as the environment does not change; -1 until then.
template <int32_t (*class_of)(int32_t)>
[[gnu::always_inline]] inline int32_t cached_class()
{
    static constinit std::atomic<int32_t> vml_cpu_type{unknown_class};
    const int32_t known = vml_cpu_type.load(std::memory_order_relaxed);
    return known != unknown_class ? known : detect(vml_cpu_type, class_of);
}

[[gnu::cold, gnu::noinline]] void open_kernel_library()
{
    vml_dll_handle.store(xkl_serv_load_vml(), std::memory_order_relaxed);
}

} // namespace

extern "C" {

void xkl_vml_serv_load_vml_dll(void)
{
    if (!vml_dll_handle.load(std::memory_order_relaxed)) [[unlikely]]
        open_kernel_library();
}

void *xkl_vml_serv_load_vml_func(const char *name)
{
    void *const library = vml_dll_handle.load(std::memory_order_relaxed);
    if (!library) {
        xkl_serv_print(1, no_kernel_library, 0);
        end_process();
    }
    void *const found = dlsym(library, name);
    if (dlerror() || !found) {
        xkl_serv_print(1, no_kernel, 1, name);
        end_process();
    }
    return found;
}

void *xkl_vml_serv_get_dll_handle(void)
{
    return vml_dll_handle.load(std::memory_order_relaxed);
}

int32_t xkl_vml_serv_cpu_detect(void)
{
    return cached_class<mapped>();
}

int32_t xkl_vml_serv_cpu_detect_legacy(void)
{
    return cached_class<unmapped>();
}

// The one constructor of this library: whoever may not read the working directory learns it at once, not
// at the first computation.
[[gnu::constructor]] void _Init_XKL_Loader(void)
{
    Dl_info self{};
    dladdr(reinterpret_cast<const void *>(&_Init_XKL_Loader), &self);
    if (!getcwd(DispLibCWD, directory_size)) {
        xkl_serv_print(1, no_working_directory, 1, self.dli_fname);
        end_process();
    }
    if (xkl_serv_strnlen_s(DispLibCWD, directory_size) <= directory_size - 2)
        xkl_serv_strncat_s(DispLibCWD, directory_size - 1, "/", directory_size);
}
}
