// The version, as a record and as a line of text.
#include "service/version.h"

#include "openblas/kernel_set.h"
#include "service/processor.h"
#include "service/service_entries.h"

#include <algorithm>
#include <cstring>

#if !defined(XKL_VERSION_MAJOR) || !defined(XKL_VERSION_MINOR) || !defined(XKL_VERSION_PATCH)
#error                                                                                                     \
    "The build defines XKL_VERSION_MAJOR, XKL_VERSION_MINOR and XKL_VERSION_PATCH from the project's version."
#endif

namespace xkl::core {
namespace {

std::string numbers()
{
    return std::to_string(XKL_VERSION_MAJOR) + "." + std::to_string(XKL_VERSION_MINOR) + "." +
           std::to_string(XKL_VERSION_PATCH);
}

#if defined(__clang__)
constexpr const char *compiler = "clang " __clang_version__;
#else
constexpr const char *compiler = "gcc " __VERSION__;
#endif

} // namespace

std::string version_line()
{
    return "libxkl_quorl_ilp64 " + numbers() + ", " + dense_kernels() + ", processor " + processor_name() +
           " (" + level_name(processor_level()) + ")";
}

} // namespace xkl::core

extern "C" {

void xkl_serv_get_version(xkl_version *record)
{
    using namespace xkl::core;
    if (!record)
        return;
    *record = {
        .major = XKL_VERSION_MAJOR,
        .minor = XKL_VERSION_MINOR,
        .update = XKL_VERSION_PATCH,
        .integer_bits = 64,
        .status = XKL_VERSION_MAJOR > 0 ? "Release" : "Development",
        .build = compiler,
        .processor = level_name(processor_level()),
        .platform = "x86-64 Linux",
        .kernels = kernel_set_name(),
    };
}

// The Fortran form: blank padded, no terminator.
void xkl_serv_get_version_string(char *buffer, int64_t length)
{
    if (!buffer || length <= 0)
        return;
    const std::string line = xkl::core::version_line();
    const auto room = static_cast<size_t>(length), copied = std::min(line.size(), room);
    std::memcpy(buffer, line.data(), copied);
    std::memset(buffer + copied, ' ', room - copied);
}

void xkl_serv_get_version_string_c(char *buffer, int length)
{
    if (buffer && length > 0)
        xkl_serv_sprintf_s(buffer, static_cast<size_t>(length), "%s", xkl::core::version_line().c_str());
}
}
