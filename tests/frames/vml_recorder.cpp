#include "vml_recorder.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

vml_recording vml_recorded;

namespace {

/// Beside the recording core.
std::string recording_kernels()
{
    Dl_info self{};
    dladdr(reinterpret_cast<const void *>(&recording_kernels), &self);
    const std::string file = self.dli_fname;
    return file.substr(0, file.rfind('/') + 1) + "libxkl_kernels.so";
}

} // namespace

extern "C" {

void *xkl_serv_load_vml(void)
{
    ++vml_recorded.loads;
    const std::string &file = vml_recorded.kernel_library;
    if (file == "none")
        return nullptr;
    return dlopen((file.empty() ? recording_kernels() : file).c_str(), RTLD_NOW | RTLD_LOCAL);
}

int xkl_serv_vml_cpu_detect(void)
{
    return vml_recorded.processor_code;
}

int xkl_serv_getenv(const char *name, char *buffer, int size)
{
    const char *value = std::getenv(name);
    return value ? std::snprintf(buffer, static_cast<size_t>(size), "%s", value) : 0;
}

// Written to standard error too, for those that look at a child process.
int xkl_serv_print(int flag, int number, int count, ...)
{
    printed_message message{flag, number, {}};
    std::fprintf(stderr, "message %d", number);
    va_list values;
    va_start(values, count);
    for (int i = 0; i < count; ++i) {
        message.arguments.push_back(va_arg(values, const char *));
        std::fprintf(stderr, " [%s]", message.arguments.back().c_str());
    }
    va_end(values);
    std::fprintf(stderr, "\n");
    vml_recorded.messages.push_back(message);
    return 0;
}

int xkl_serv_strncat_s(char *destination, size_t size, const char *source, size_t count)
{
    const size_t used = strnlen(destination, size), added = strnlen(source, count);
    if (used + added >= size)
        return 1;
    std::memcpy(destination + used, source, added + 1);
    vml_recorded.directory = destination;
    return 0;
}
}
