// Nanoseconds of small calls and GFLOP/s of large products, through the library and directly into OpenBLAS, in one run.
// usage: bench_compare OPENBLAS_SHARED_LIBRARY
// Run it with OPENBLAS_CORETYPE set to the kernel set that the core chose (run_bench does), so that both compute alike.
#include "xkl.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

namespace {

using dgemm_type = xkl_type_dgemm;
using daxpy_type = xkl_type_daxpy;
using cblas_dgemm_type = decltype(cblas_dgemm);

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Threads of a kernel library spin for a while after their last work, and would take the other one's
/// processors.
constexpr std::chrono::milliseconds until_threads_sleep{150};

double time_of(const std::function<void(long)> &repeat, long count, bool threaded)
{
    if (threaded) {
        std::this_thread::sleep_for(until_threads_sleep);
        repeat(1); // wakes our own
    }
    const double start = seconds();
    repeat(count);
    return (seconds() - start) / static_cast<double>(count);
}

/// Times both in turn, ours and theirs, so that a noisy machine disturbs both alike; prints medians and
/// the ratio's median.
void compare(const char *name, const std::function<void(long)> &ours,
             const std::function<void(long)> &theirs, long count, double flops)
{
    ours(count / 10 + 1);
    theirs(count / 10 + 1);
    std::vector<double> a, b, ratio;
    for (int round = 0; round < 11; ++round) {
        a.push_back(time_of(ours, count, flops > 0));
        b.push_back(time_of(theirs, count, flops > 0));
        ratio.push_back(a.back() / b.back());
    }
    if (flops > 0)
        std::printf("%-22s %10.2f GFLOP/s %10.2f GFLOP/s   time ratio %.3f\n", name,
                    flops / median(a) * 1e-9, flops / median(b) * 1e-9, median(ratio));
    else
        std::printf("%-22s %10.1f ns      %10.1f ns        difference %.1f ns\n", name, median(a) * 1e9,
                    median(b) * 1e9, (median(a) - median(b)) * 1e9);
}

template <class F>
F *load(void *library, const char *name)
{
    auto *function = reinterpret_cast<F *>(dlsym(library, name));
    if (!function) {
        std::fprintf(stderr, "%s is not in OpenBLAS: %s\n", name, dlerror());
        std::exit(1);
    }
    return function;
}

void compare_small(dgemm_type *their_dgemm, daxpy_type *their_daxpy, cblas_dgemm_type *their_cblas)
{
    static double a[64], b[64], c[64];
    const double alpha = 1, beta = 0;
    const int64_t one = 1;
    for (const int64_t n : {1, 2, 3, 4, 6, 8}) {
        const auto by = [&](dgemm_type *f) {
            return [&, f](long count) {
                for (; count > 0; --count)
                    f("N", "N", &n, &n, &n, &alpha, a, &n, b, &n, &beta, c, &n);
            };
        };
        char name[32];
        std::snprintf(name, sizeof name, "dgemm %ldx%ld", static_cast<long>(n), static_cast<long>(n));
        compare(name, by(dgemm), by(their_dgemm), 100000, 0);
    }
    const auto axpy = [&](daxpy_type *f) {
        return [&, f](long count) {
            for (; count > 0; --count)
                f(&one, &alpha, a, &one, b, &one);
        };
    };
    compare("daxpy n = 1", axpy(daxpy), axpy(their_daxpy), 500000, 0);
    const auto row_major = [&](cblas_dgemm_type *f) {
        return [f](long count) {
            for (; count > 0; --count)
                f(CblasRowMajor, CblasNoTrans, CblasNoTrans, 2, 2, 2, 1.0, a, 2, b, 2, 0.0, c, 2);
        };
    };
    compare("cblas_dgemm 2x2", row_major(cblas_dgemm), row_major(their_cblas), 100000, 0);
}

void compare_large(dgemm_type *their_dgemm)
{
    for (const int64_t n : {1000, 1500, 2000}) {
        const auto size = static_cast<std::size_t>(n * n);
        std::vector<double> a(size, 0.5), b(size, 0.25), c(size);
        const double alpha = 1, beta = 0;
        const auto by = [&](dgemm_type *f) {
            return [&, f](long count) {
                for (; count > 0; --count)
                    f("N", "N", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n);
            };
        };
        char name[32];
        std::snprintf(name, sizeof name, "dgemm n = %ld", static_cast<long>(n));
        compare(name, by(dgemm), by(their_dgemm), n < 2000 ? 10 : 5, 2.0 * static_cast<double>(n * n * n));
    }
}

} // namespace

int main(int argc, char **argv)
{
    void *openblas = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!openblas) {
        std::fprintf(stderr, "usage: bench_compare OPENBLAS_SHARED_LIBRARY (%s)\n",
                     argc == 2 ? dlerror() : "missing");
        return 1;
    }
    auto *their_dgemm = load<dgemm_type>(openblas, "dgemm_");
    std::printf("%-22s %13s      %13s\n", "", "this library", "OpenBLAS");
    compare_small(their_dgemm, load<daxpy_type>(openblas, "daxpy_"),
                  load<cblas_dgemm_type>(openblas, "cblas_dgemm"));
    compare_large(their_dgemm);
    return 0;
}
