// How long dlopen takes, in a fresh process: `bench_load lazy|now LIBRARY [LIBRARY_LOADED_BEFORE]`, in milliseconds.
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_load lazy|now LIBRARY [LIBRARY_LOADED_BEFORE]\n");
        return 1;
    }
    const int mode = std::strcmp(argv[1], "now") == 0 ? RTLD_NOW : RTLD_LAZY;
    if (argc > 3 && !dlopen(argv[3], RTLD_NOW | RTLD_GLOBAL)) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const auto start = std::chrono::steady_clock::now();
    if (!dlopen(argv[2], mode | RTLD_LOCAL)) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
    std::printf("%.3f\n", spent.count());
    return 0;
}
