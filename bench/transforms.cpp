// Fourier transforms through descriptors, beside FFTW called directly with the same planning: the best times
// of a second in which they take turns.
// usage: bench_transforms LIBFFTW3_SHARED_LIBRARY
// FFTW comes by dlopen and keeps to itself, because our library has its names too.
#include "xkl_dfti.h"

#include <dlfcn.h>
#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

struct fftw {
    explicit fftw(void *library) : library(library) {}
    template <class F>
    F *get(const char *name) const
    {
        auto *function = reinterpret_cast<F *>(dlsym(library, name));
        if (!function) {
            std::fprintf(stderr, "%s\n", dlerror());
            std::exit(1);
        }
        return function;
    }

    void *library;
    decltype(fftw_plan_guru64_dft) *plan_complex =
        get<decltype(fftw_plan_guru64_dft)>("fftw_plan_guru64_dft");
    decltype(fftw_plan_guru64_dft_r2c) *plan_real =
        get<decltype(fftw_plan_guru64_dft_r2c)>("fftw_plan_guru64_dft_r2c");
    decltype(fftw_execute) *execute = get<decltype(fftw_execute)>("fftw_execute");
    decltype(fftw_destroy_plan) *destroy = get<decltype(fftw_destroy_plan)>("fftw_destroy_plan");
};

struct workload {
    const char *name;
    bool real;
    std::vector<int64_t> lengths; // the last one fastest
    int64_t batch;

    int64_t points() const
    {
        return std::accumulate(lengths.begin(), lengths.end(), int64_t{1}, std::multiplies<>());
    }
};

void require(long status)
{
    if (status == DFTI_NO_ERROR)
        return;
    std::fprintf(stderr, "%s\n", DftiErrorMessage(status));
    std::exit(1);
}

DFTI_DESCRIPTOR_HANDLE make_descriptor(const workload &of, int64_t threads)
{
    DFTI_DESCRIPTOR_HANDLE made = nullptr;
    const auto rank = static_cast<int64_t>(of.lengths.size());
    require(DftiCreateDescriptor_d_md(&made, of.real ? DFTI_REAL : DFTI_COMPLEX, rank, of.lengths.data()));
    require(DftiSetValue(made, DFTI_PLACEMENT, DFTI_NOT_INPLACE));
    require(DftiSetValue(made, DFTI_NUMBER_OF_TRANSFORMS, of.batch));
    require(DftiSetValue(made, DFTI_THREAD_LIMIT, threads));
    require(DftiCommitDescriptor(made));
    return made;
}

fftw_plan make_plan(const fftw &library, const workload &of, double *x, double *y)
{
    const char *how = std::getenv("XKL_DFT_PLAN");
    const unsigned flags = how && std::string(how) == "measure" ? FFTW_MEASURE : FFTW_ESTIMATE;
    std::vector<fftw_iodim64> sides(of.lengths.size());
    ptrdiff_t in = 1, out = 1;
    for (size_t i = sides.size(); i-- > 0;) {
        sides[i] = {of.lengths[i], in, out};
        in *= of.lengths[i];
        out *= of.real && i + 1 == sides.size() ? of.lengths[i] / 2 + 1 : of.lengths[i];
    }
    const fftw_iodim64 batch{of.batch, in, out};
    const int rank = static_cast<int>(sides.size()), batches = of.batch > 1;
    auto *spectrum = reinterpret_cast<fftw_complex *>(y);
    return of.real
               ? library.plan_real(rank, sides.data(), batches, &batch, x, spectrum,
                                   flags | FFTW_PRESERVE_INPUT)
               : library.plan_complex(rank, sides.data(), batches, &batch,
                                      reinterpret_cast<fftw_complex *>(x), spectrum, FFTW_FORWARD, flags);
}

double time_of(const std::function<void()> &call, int64_t count)
{
    const double start = seconds();
    for (int64_t i = 0; i < count; ++i)
        call();
    return (seconds() - start) / static_cast<double>(count);
}

struct free_block {
    void operator()(void *block) const { std::free(block); }
};
using block = std::unique_ptr<double, free_block>;

block make_block(int64_t reals)
{
    const size_t bytes = (static_cast<size_t>(reals) * sizeof(double) + 63) / 64 * 64;
    block made(static_cast<double *>(std::aligned_alloc(64, bytes)));
    std::fill_n(made.get(), reals, 0.5);
    return made;
}

void compare(const fftw &library, const workload &of)
{
    const int64_t reals = (2 * of.points() + 4) * of.batch;
    const block x = make_block(reals), y = make_block(reals);
    const fftw_plan plan = make_plan(library, of, x.get(), y.get());
    DFTI_DESCRIPTOR_HANDLE one = make_descriptor(of, 1), all = make_descriptor(of, 0);
    const auto theirs = [&] { library.execute(plan); };
    const auto ours = [&] { DftiComputeForward(one, x.get(), y.get()); };
    const auto threaded = [&] { DftiComputeForward(all, x.get(), y.get()); };
    theirs();
    ours();
    threaded();
    const auto count = std::max<int64_t>(static_cast<int64_t>(1e-3 / time_of(theirs, 1)), 1);
    double a = 1e9, b = 1e9, c = 1e9;
    const double end = seconds() + 1;
    for (int round = 0; round < 7 || seconds() < end; ++round) {
        a = std::min(a, time_of(ours, count));
        b = std::min(b, time_of(theirs, count));
        c = std::min(c, time_of(threaded, count));
    }
    std::printf("%-26s %12.2f us %12.2f us   ratio %.3f %12.2f us", of.name, a * 1e6, b * 1e6, a / b,
                c * 1e6);
    if (of.points() * of.batch < 1000)
        std::printf("   a call costs %.0f ns over FFTW's", (a - b) * 1e9);
    std::printf("\n");
    library.destroy(plan);
    DftiFreeDescriptor(&one);
    DftiFreeDescriptor(&all);
}

// A descriptor's life without a computation, the first time and when an equal one has been.
void life(const workload &of)
{
    const auto make_and_free = [&] {
        DFTI_DESCRIPTOR_HANDLE one = make_descriptor(of, 1);
        DftiFreeDescriptor(&one);
    };
    const double first = time_of(make_and_free, 1);
    std::printf("%-26s %12.2f us %12.2f us\n", of.name, first * 1e6, time_of(make_and_free, 1000) * 1e6);
}

} // namespace

int main(int argc, char **argv)
{
    void *shared = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND) : nullptr;
    if (!shared) {
        std::fprintf(stderr, "usage: bench_transforms LIBFFTW3_SHARED_LIBRARY (%s)\n",
                     argc == 2 ? dlerror() : "missing");
        return 1;
    }
    const fftw library(shared);
    const std::vector<workload> workloads{
        {"complex 64", false, {64}, 1},
        {"complex 2^10", false, {1 << 10}, 1},
        {"complex 2^16", false, {1 << 16}, 1},
        {"complex 2^20", false, {1 << 20}, 1},
        {"complex 3*5*7*11*13", false, {3 * 5 * 7 * 11 * 13}, 1},
        {"real 2^16", true, {1 << 16}, 1},
        {"complex 512 x 512", false, {512, 512}, 1},
        {"complex 128 x 128 x 128", false, {128, 128, 128}, 1},
        {"complex 1,000 of 256", false, {256}, 1000},
    };
    std::printf("Create, commit and free: %16s %15s\n", "first", "again");
    for (const workload &each : workloads)
        life(each);
    std::printf("\n%-26s %15s %15s %15s %15s\n", "Forward, out of place", "1 thread", "FFTW", "",
                "all threads");
    for (const workload &each : workloads)
        compare(library, each);
}
