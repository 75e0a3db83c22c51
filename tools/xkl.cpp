// xkl: tells what is installed and what each core entry is provided by.
#include "xkl.h"

#include <dlfcn.h>
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

// What the default core tells about itself; another core may lack these.
using manifest_type = int64_t(int64_t index, const char **family, const char **entry,
                              const char **provider);
using kernel_set_type = const char *();

template <class F>
F *from_core(const char *name)
{
    return reinterpret_cast<F *>(dlsym(RTLD_DEFAULT, name));
}

/// The module that the core opens for its first descriptor, or why it can't.
std::string transform_module()
{
    DFTI_DESCRIPTOR_HANDLE transform = nullptr;
    const long status = DftiCreateDescriptor(&transform, DFTI_DOUBLE, DFTI_COMPLEX, 1, int64_t{2});
    if (status != DFTI_NO_ERROR)
        return DftiErrorMessage(status);
    DftiFreeDescriptor(&transform);
    void *module = dlopen("libxkl_core_fft.so", RTLD_LAZY | RTLD_NOLOAD);
    void *symbol = module ? dlsym(module, "xkl_core_fft_module") : nullptr;
    return symbol ? file_of(symbol) : "(one that has another name)";
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

/// Opened here, as a program's first call would; or why that fails.
std::string kernel_library()
{
    constexpr int no_kernel_library = 771;
    auto *load = from_core<void *()>("xkl_serv_load_vml");
    auto *message = from_core<const char *(int number, int)>("xkl_serv_get_msg");
    if (void *kernels = load ? load() : nullptr)
        return file_of(dlsym(kernels, "xkl_vml_kernel_GetMode"));
    return message ? message(no_kernel_library, 0) : "(unknown)";
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
    xkl_version version;
    XKL_Get_Version(&version);
    std::printf("%-20s %s\n", "transform module", transform_module().c_str());
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
