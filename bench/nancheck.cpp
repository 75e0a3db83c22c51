// LAPACKE's NaN checks beside a plain sum of as many doubles that lie side by side, as a compiler vectorises
// it: how fast one thread can read. One run of a size takes both in turn, so that a noisy machine disturbs
// both alike.
#include "xkl_lapacke_helpers.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

// What a compiler makes of the obvious loop with the widest registers, allowed to reorder additions.
__attribute__((noinline, optimize("O3,fast-math"), target_clones("avx512f", "avx2", "default"))) double
read_sum(const double *a, int64_t count)
{
    double sum = 0;
    for (int64_t i = 0; i < count; ++i)
        sum += a[i];
    return sum;
}

double seconds_of(const std::function<void()> &call, long repetitions)
{
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < repetitions; ++i)
        call();
    const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
    return spent.count() / static_cast<double>(repetitions);
}

volatile double kept;

void compare(const char *name, int64_t n, const double *a, int64_t elements,
             int64_t (*check)(int64_t, const double *))
{
    const auto checked = [&] { kept = static_cast<double>(check(n, a)); };
    const auto summed = [&] { kept = read_sum(a, elements); };
    const long repetitions = std::max(3L, static_cast<long>(20'000'000 / elements));
    double best_check = seconds_of(checked, repetitions), best_sum = seconds_of(summed, repetitions);
    for (int round = 0; round < 20; ++round) {
        best_check = std::min(best_check, seconds_of(checked, repetitions));
        best_sum = std::min(best_sum, seconds_of(summed, repetitions));
    }
    const double gigabytes = 8e-9 * static_cast<double>(elements);
    std::printf("%-26s n = %4ld %8.1f GB/s   sum %8.1f GB/s   ratio %4.2f\n", name, static_cast<long>(n),
                gigabytes / best_check, gigabytes / best_sum, best_sum / best_check);
}

} // namespace

int main()
{
    for (const int64_t n : {64, 256, 1024, 4096}) {
        const std::vector<double> a(static_cast<std::size_t>(n * n), 1.0);
        const int64_t triangle = n * (n + 1) / 2;
        compare("dge_nancheck", n, a.data(), n * n,
                [](int64_t n, const double *a) { return LAPACKE_dge_nancheck(102, n, n, a, n); });
        compare("dsy_nancheck, upper", n, a.data(), triangle,
                [](int64_t n, const double *a) { return LAPACKE_dsy_nancheck(102, 'U', n, a, n); });
        compare("dtr_nancheck, lower", n, a.data(), triangle,
                [](int64_t n, const double *a) { return LAPACKE_dtr_nancheck(102, 'L', 'N', n, a, n); });
    }
    return 0;
}
