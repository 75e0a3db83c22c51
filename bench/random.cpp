// Random numbers: nanoseconds a number of a million on one thread, for two generators, beside the C++
// library's distribution over its std::mt19937. The kernels are called as their frames call them. All in one
// run and in turn, so that a noisy machine disturbs all alike.
// usage: bench_random KERNEL_LIBRARY [DISTRIBUTION...]
#include "xkl_vsl_types.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int32_t n = 1000000;
constexpr double wanted_ratio = 4; // uniform and normal numbers beside the C++ library's
constexpr int rounds = 9;

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

template <class Function>
Function *symbol(void *library, const std::string &name)
{
    void *const found = dlsym(library, name.c_str());
    if (!found) {
        std::fprintf(stderr, "bench_random: %s\n", dlerror());
        std::exit(1);
    }
    return reinterpret_cast<Function *>(found);
}

struct basic_generator {
    const char *name;
    int32_t brng;
    void *stream;
} generators[] = {{"MT19937", VSL_BRNG_MT19937, nullptr},
                  {"Philox4x32-10", VSL_BRNG_PHILOX4X32X10, nullptr}};

/// One kernel with its method and parameters, and the same by the C++ library
struct contest {
    std::string kernel, title;
    std::function<void(void *stream)> ours;
    std::function<void()> theirs;
    bool tracked; // has to be wanted_ratio times as fast
};

template <class R, class Distribution, class... P>
contest make(void *library, const std::string &distribution, const std::string &title, int32_t method,
             bool tracked, Distribution law, P... parameters)
{
    static std::vector<R> r(n);
    static std::mt19937 engine(1);
    const std::string letter = std::is_same_v<R, double> ? "d" : std::is_same_v<R, float> ? "s" : "i";
    const auto kernel = symbol<int32_t(int32_t, void *, int32_t, R *, P...)>(
        library, "_vsl" + letter + "Rng" + distribution);
    return {distribution, "v" + letter + "Rng" + distribution + title,
            [=](void *stream) { kernel(method, stream, n, r.data(), parameters...); },
            [law]() mutable {
                for (R &each : r)
                    each = law(engine);
            },
            tracked};
}

template <class R>
void add_real(std::vector<contest> &all, void *library)
{
    const R zero = 0, one = 1;
    const std::normal_distribution<R> normal;
    all.push_back(make<R>(library, "Uniform", "", 0, true, std::uniform_real_distribution<R>(), zero, one));
    all.push_back(make<R>(library, "Gaussian", " Box-Muller", 0, true, normal, zero, one));
    all.push_back(make<R>(library, "Gaussian", " Box-Muller 2", 1, true, normal, zero, one));
    all.push_back(make<R>(library, "Gaussian", " ICDF", 2, true, normal, zero, one));
    all.push_back(
        make<R>(library, "Exponential", "", 0, false, std::exponential_distribution<R>(), zero, one));
    all.push_back(make<R>(library, "Lognormal", " ICDF", 1, false, std::lognormal_distribution<R>(), zero,
                          one, zero, one));
    all.push_back(make<R>(library, "Gamma", " shape 2.5", 0, false, std::gamma_distribution<R>(R(2.5)),
                          R(2.5), zero, one));
}

std::vector<contest> all_contests(void *library)
{
    std::vector<contest> all;
    add_real<double>(all, library);
    add_real<float>(all, library);
    for (const double mean : {3., 30.}) {
        const std::string title = " mean " + std::to_string(static_cast<int>(mean));
        all.push_back(make<int32_t>(library, "Poisson", title, 0, false,
                                    std::poisson_distribution<int32_t>(mean), mean));
        all.push_back(make<int32_t>(library, "Poisson", title + " normal", 1, false,
                                    std::poisson_distribution<int32_t>(mean), mean));
        all.push_back(make<int32_t>(library, "Binomial", title, 0, false,
                                    std::binomial_distribution<int32_t>(100, mean / 100), 100, mean / 100));
    }
    all.push_back(make<int32_t>(library, "NegBinomial", " 5 of .2", 0, false,
                                std::negative_binomial_distribution<int32_t>(5, .2), 5, .2));
    return all;
}

void compare(const contest &each)
{
    constexpr size_t count = std::size(generators);
    double best[count + 1];
    std::fill(std::begin(best), std::end(best), std::numeric_limits<double>::infinity());
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i <= count; ++i) {
            const double start = seconds();
            i < count ? each.ours(generators[i].stream) : each.theirs();
            best[i] = std::min(best[i], (seconds() - start) * 1e9 / n);
        }
    std::printf("%-30s", each.title.c_str());
    for (const double time : best)
        std::printf(" %13.2f", time);
    bool behind = false;
    for (size_t i = 0; i < count; ++i) {
        std::printf(" %8.1f", best[count] / best[i]);
        behind = behind || best[count] / best[i] < wanted_ratio;
    }
    std::puts(each.tracked && behind ? "  LESS THAN 4 TIMES" : "");
}

} // namespace

int main(int argc, char **argv)
{
    void *const library = argc >= 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!library) {
        std::fprintf(stderr, "usage: bench_random KERNEL_LIBRARY [DISTRIBUTION...] (%s)\n",
                     argc >= 2 ? dlerror() : "missing");
        return 1;
    }
    const auto make_stream =
        symbol<int32_t(void **, int32_t, int32_t, const uint32_t *)>(library, "__vslNewStreamEx");
    std::printf("%-30s", "ns a number");
    for (auto &each : generators) {
        const uint32_t seed = 1;
        if (make_stream(&each.stream, each.brng, 1, &seed) < 0)
            return 1;
        std::printf(" %13s", each.name);
    }
    std::printf(" %13s %8s %8s\n", "C++ library", "ratio", "ratio");
    const std::vector<std::string> chosen(argv + 2, argv + argc);
    for (const contest &each : all_contests(library))
        if (chosen.empty() || std::find(chosen.begin(), chosen.end(), each.kernel) != chosen.end())
            compare(each);
    for (auto &each : generators)
        symbol<int32_t(void **)>(library, "__vslDeleteStream")(&each.stream);
    return 0;
}
