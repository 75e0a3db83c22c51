// Nanoseconds an element of the vector math routines in their three modes, on one thread, beside a loop
// over the C library, the compiler's own vectors over glibc's vector library, and SLEEF called directly;
// and what a call of 10 elements costs over its kernel. All in one run and in turn, so that a noisy machine
// disturbs all alike.
// usage: bench_vector KERNEL_LIBRARY [ROUTINE...]
#include "vector_loops.h"
#include "xkl_service.h"
#include "xkl_vml.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>
#include <vector>

extern "C" int32_t xkl_vml_serv_cpu_detect();

namespace {

constexpr uint64_t modes[] = {VML_HA, VML_LA, VML_EP};
constexpr double of_base = 1.05, of_libm = 1. / 3, noise = 1.02;
constexpr int64_t room = 16; // elements behind a vector that SLEEF's last register may touch

/// One function and type: the routine, the arguments
template <class R>
struct routine {
    const char *name, *function;
    void (*unary)(int64_t, const R *, R *);
    void (*binary)(int64_t, const R *, const R *, R *);
    R low, high, low_b = 0, high_b = 0;
};

// clang-format off
const routine<double> in_double[] = {
    {"vdExp", "Exp", vdExp, nullptr, -10, 10},
    {"vdLn", "Ln", vdLn, nullptr, 1e-3, 1e3},
    {"vdLog10", "Log10", vdLog10, nullptr, 1e-3, 1e3},
    {"vdSin", "Sin", vdSin, nullptr, -10, 10},
    {"vdCos", "Cos", vdCos, nullptr, -10, 10},
    {"vdTan", "Tan", vdTan, nullptr, -10, 10},
    {"vdAtan", "Atan", vdAtan, nullptr, -10, 10},
    {"vdTanh", "Tanh", vdTanh, nullptr, -3, 3},
    {"vdCbrt", "Cbrt", vdCbrt, nullptr, -100, 100},
    {"vdPow", "Pow", nullptr, vdPow, .1, 10, -5, 5},
    {"vdErf", "Erf", vdErf, nullptr, -3, 3},
    {"vdLGamma", "LGamma", vdLGamma, nullptr, .1, 30},
    {"vdTGamma", "TGamma", vdTGamma, nullptr, .1, 30},
    {"vdJ0", "J0", vdJ0, nullptr, 0, 30},
    {"vdErfInv", "ErfInv", vdErfInv, nullptr, -.99, .99},
    {"vdCdfNormInv", "CdfNormInv", vdCdfNormInv, nullptr, .01, .99},
};
const routine<float> in_float[] = {
    {"vsExp", "Exp", vsExp, nullptr, -10, 10},
    {"vsLn", "Ln", vsLn, nullptr, 1e-3F, 1e3F},
    {"vsSin", "Sin", vsSin, nullptr, -10, 10},
    {"vsCos", "Cos", vsCos, nullptr, -10, 10},
    {"vsTan", "Tan", vsTan, nullptr, -10, 10},
    {"vsTanh", "Tanh", vsTanh, nullptr, -3, 3},
    {"vsPow", "Pow", nullptr, vsPow, .1F, 10, -5, 5},
    {"vsErf", "Erf", vsErf, nullptr, -3, 3},
    {"vsCdfNormInv", "CdfNormInv", vsCdfNormInv, nullptr, .01F, .99F},
};
// clang-format on

using body = std::function<void(long calls)>;

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

/// The least seconds of one call for each body, all taken in turn: what disturbs a measurement only makes
/// it longer.
std::vector<double> time_in_turn(const std::vector<body> &bodies, long calls, int rounds)
{
    std::vector<double> best(bodies.size(), std::numeric_limits<double>::infinity());
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < bodies.size(); ++i) {
            if (!bodies[i])
                continue;
            const double start = seconds();
            bodies[i](calls);
            best[i] = std::min(best[i], (seconds() - start) / static_cast<double>(calls));
        }
    return best;
}

template <class R>
std::vector<R> spread(int64_t n, R low, R high)
{
    std::vector<R> a(static_cast<size_t>(n + room), low);
    for (int64_t i = 0; i < n; ++i) // in no order, as branches would like it
        a[static_cast<size_t>(i)] =
            low + (high - low) * static_cast<R>(i * 7919 % 10007) / static_cast<R>(10007);
    return a;
}

vector_loop<double> loop_of(const loops_of &loops, double)
{
    return loops.in_double;
}
vector_loop<float> loop_of(const loops_of &loops, float)
{
    return loops.in_float;
}

std::string cell(double value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%8.2f", value);
    return value > 0 && std::isfinite(value) ? text : "       -"; // nobody to compare with
}

/// The columns of one line: three modes, the C library (or Boost), compiler, SLEEF within 1 and 4 ULP
enum column { high, low, enhanced, scalar, compiler, sleef1, sleef4, columns };

void print_line(const std::string &title, const std::vector<double> &ns)
{
    std::printf("%-14s", title.c_str());
    for (const double time : ns)
        std::printf(" %s", cell(time).c_str());
    const double base_high = ns[sleef1],
                 base_low = std::min(ns[sleef4], std::min(ns[compiler], ns[sleef1]));
    for (const double ratio : {ns[high] / base_high, ns[low] / base_low, ns[scalar] / ns[high]})
        std::printf(" %s", cell(ratio).c_str());
    if (ns[high] > of_base * base_high)
        std::printf("  HIGH OVER BASE");
    if (ns[low] > of_base * base_low)
        std::printf("  LOW OVER BASE");
    if (ns[enhanced] > ns[low] * of_base)
        std::printf("  ENHANCED BEHIND LOW");
    const bool vector_form = std::isfinite(base_low);
    if (ns[high] > ns[scalar] * (vector_form ? of_libm : noise))
        std::printf(vector_form ? "  LESS THAN 3 TIMES LIBM" : "  BEHIND LIBM");
    std::puts("");
}

template <class R>
void compare(const routine<R> &each, int64_t n)
{
    const std::vector<R> a = spread(n, each.low, each.high), b = spread(n, each.low_b, each.high_b);
    std::vector<R> r(a.size());
    std::vector<body> bodies;
    for (const uint64_t mode : modes)
        bodies.push_back([&, mode](long calls) {
            vmlSetMode(mode);
            for (long call = 0; call < calls; ++call)
                each.unary ? each.unary(n, a.data(), r.data())
                           : each.binary(n, a.data(), b.data(), r.data());
        });
    const loops_of *const libm = libm_loops(each.function);
    for (const loops_of *loops : {libm ? libm : scalar_loops(each.function), compiler_loops(each.function),
                                  sleef_loops_1ulp(each.function), sleef_loops_4ulp(each.function)})
        bodies.push_back(loops ? body([&, loop = loop_of(*loops, R())](long calls) {
            for (long call = 0; call < calls; ++call)
                loop(n, a.data(), b.data(), r.data());
        })
                               : body());
    const long calls = std::max(1L, static_cast<long>(100000 / n));
    std::vector<double> ns = time_in_turn(bodies, calls, n > 100000 ? 7 : 15);
    for (double &time : ns)
        time *= 1e9 / static_cast<double>(n);
    print_line(std::string(each.name) + (n > 100000 ? " 1e6" : " 1e3"), ns);
}

/// What a call of 10 elements costs over the kernel that it ends in
void compare_short(void *kernels)
{
    const auto index =
        reinterpret_cast<int32_t (*)(int32_t)>(dlsym(kernels, "xkl_vml_kernel_GetTTableIndex"));
    auto *const table = static_cast<void **>(dlsym(kernels, "xkl_vml_kernel_dExp_ttab"));
    if (!index || !table) {
        std::puts("no kernels to compare with");
        return;
    }
    const auto kernel = reinterpret_cast<void (*)(int32_t, const double *, double *)>(
        table[index(xkl_vml_serv_cpu_detect())]);
    double a[10], r[10];
    for (int i = 0; i < 10; ++i)
        a[i] = .3 * i;
    const std::vector<double> best = time_in_turn({[&](long calls) {
                                                       for (long call = 0; call < calls; ++call)
                                                           vdExp(10, a, r);
                                                   },
                                                   [&](long calls) {
                                                       for (long call = 0; call < calls; ++call)
                                                           kernel(10, a, r);
                                                   }},
                                                  20000, 31);
    const double over = 1e9 * (best[0] - best[1]);
    std::printf("\nvdExp, n = 10: %.1f ns, its kernel %.1f ns, the rest %.1f ns%s\n", 1e9 * best[0],
                1e9 * best[1], over, over > 40 ? "  OVER BUDGET (40)" : "");
}

} // namespace

int main(int argc, char **argv)
{
    void *const kernels = argc >= 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!kernels) {
        std::fprintf(stderr, "usage: bench_vector KERNEL_LIBRARY [ROUTINE...] (%s)\n",
                     argc >= 2 ? dlerror() : "missing");
        return 1;
    }
    XKL_Set_Num_Threads(1);
    std::printf("%-14s %8s %8s %8s %8s %8s %8s %8s %8s %8s %8s\n", "ns an element", "HA", "LA", "EP",
                "libm", "compiler", "SLEEF 1", "SLEEF 4", "HA/base", "LA/base", "libm/HA");
    const std::vector<std::string> chosen(argv + 2, argv + argc);
    const auto wanted = [&](const char *name) {
        return chosen.empty() || std::find(chosen.begin(), chosen.end(), name) != chosen.end();
    };
    for (const int64_t n : {1000, 1000000}) {
        for (const auto &each : in_double)
            if (wanted(each.name))
                compare(each, n);
        for (const auto &each : in_float)
            if (wanted(each.name))
                compare(each, n);
    }
    compare_short(kernels);
    return 0;
}
