// xkl: tells what is installed and what each core entry is provided by.
#include "xkl.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace {

const char usage[] = R"(usage: xkl COMMAND
  info               libraries and where they were loaded from, versions, threads, processor, and who
                     serves the core's entries
  info --missing     the core entries that nobody serves yet, one a line
  info --kernel-set  the name of the dense kernel set in use
  --version, --help
)";

/// The file that an address was loaded from, links resolved.
std::string file_of(const void *address)
{
    Dl_info found;
    if (!dladdr(address, &found) || !found.dli_fname)
        return "(unknown)";
    char path[PATH_MAX];
    return realpath(found.dli_fname, path) ? path : found.dli_fname;
}

/// The file of a library that the core opened, by the library's own name: an environment variable may
/// have named a file whose library calls itself something else.
std::string file_of_loaded(const char *name)
{
    void *library = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
    link_map *entry = nullptr;
    if (!library || dlinfo(library, RTLD_DI_LINKMAP, &entry) != 0)
        return "(loaded under another name)";
    char path[PATH_MAX];
    return realpath(entry->l_name, path) ? path : entry->l_name;
}

// What the default core tells about itself; another core may lack these.
using manifest_type = int64_t(int64_t index, const char **family, const char **entry,
                              const char **provider);
using kernel_set_type = const char *();

template <class F>
F *from_core(const char *name)
{
    return reinterpret_cast<F *>(dlsym(RTLD_DEFAULT, name));
}

int print_missing()
{
    auto *manifest = from_core<manifest_type>("xkl_core_manifest");
    if (!manifest) {
        std::fprintf(stderr, "xkl: this core does not tell who serves its entries\n");
        return 1;
    }
    const char *family, *entry, *provider;
    for (int64_t i = 0; manifest(i, &family, &entry, &provider); ++i)
        if (std::strcmp(provider, "none") == 0)
            std::printf("%s\n", entry);
    return 0;
}

void print_served()
{
    auto *manifest = from_core<manifest_type>("xkl_core_manifest");
    if (!manifest) {
        std::printf("\nThis core does not tell who serves its entries.\n");
        return;
    }
    std::map<std::string, std::map<std::string, int>> families; // how many entries a provider serves
    const char *family, *entry, *provider;
    for (int64_t i = 0; manifest(i, &family, &entry, &provider); ++i)
        ++families[family][provider];
    std::printf("\n%-12s %10s %10s %10s %10s\n", "core entries", "OpenBLAS", "tmglib", "own code",
                "missing");
    for (auto &[name, by] : families)
        std::printf("%-12s %10d %10d %10d %10d\n", name.c_str(), by["openblas"], by["tmglib"], by["own"],
                    by["none"]);
    std::printf(
        "A missing entry ends the process with a line that names it; `xkl info --missing` lists them.\n");
}

/// What the core opens for vector math, or why it can't.
std::string kernel_library()
{
    auto *load = from_core<void *()>("xkl_serv_load_vml");
    auto *message = from_core<const char *(int, int)>("xkl_serv_get_msg");
    constexpr int message_no_kernel_library = 771;
    if (!load || !message)
        return "(unknown)";
    return load() ? file_of_loaded("libxkl_kernels.so") : message(message_no_kernel_library, 0);
}

/// What the core opens for its first descriptor, or why it can't.
std::string transform_module()
{
    DFTI_DESCRIPTOR_HANDLE transform = nullptr;
    const long status = DftiCreateDescriptor(&transform, DFTI_DOUBLE, DFTI_COMPLEX, 1, int64_t{2});
    if (status != DFTI_NO_ERROR)
        return DftiErrorMessage(status);
    DftiFreeDescriptor(&transform);
    return file_of_loaded("libxkl_core_fft.so");
}

int print_info()
{
    char text[200];
    XKL_Get_Version_String(text, sizeof text);
    std::printf("%s\n\n", text);
    std::printf("%-20s %s\n", "interface library", file_of(reinterpret_cast<void *>(dgemm)).c_str());
    std::printf("%-20s %s\n", "core library",
                file_of(reinterpret_cast<void *>(from_core<void()>("xkl_serv_get_version"))).c_str());
    std::printf("%-20s %s\n", "kernel library", kernel_library().c_str());
    std::printf("%-20s %s\n", "transform module", transform_module().c_str());
    xkl_version version;
    XKL_Get_Version(&version);
    std::printf("%-20s %s, built by %s\n", "dense kernels", version.kernels, version.build);
    std::printf("%-20s %s, %.2f GHz\n", "processor", version.processor, XKL_Get_Max_Cpu_Frequency());
    std::printf("%-20s %d\n", "threads", XKL_Get_Max_Threads());
    print_served();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string command = argc > 1 ? argv[1] : "";
    const std::string option = argc > 2 ? argv[2] : "";
    if (command == "info" && option.empty())
        return print_info();
    if (command == "info" && option == "--missing")
        return print_missing();
    if (command == "info" && option == "--kernel-set") {
        auto *kernel_set = from_core<kernel_set_type>("xkl_core_kernel_set");
        std::printf("%s\n", kernel_set ? kernel_set() : "");
        return kernel_set ? 0 : 1;
    }
    if (command == "--version") {
        std::printf("xkl %s\n", XKL_TOOL_VERSION);
        return 0;
    }
    const bool asked = command == "--help" || command == "help";
    std::fputs(usage, asked ? stdout : stderr);
    return asked ? 0 : 2;
}
