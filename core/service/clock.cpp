// Clocks and frequencies. Times are counted from the load of the library, so that single precision resolves
// them.
#include "service/service_entries.h"

#include <algorithm>
#include <atomic>
#include <cpuid.h>
#include <cstdio>
#include <time.h>
#include <x86intrin.h>

namespace {

int64_t nanoseconds() noexcept
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// Written once, while the library is loaded. One nanosecond early: a time of exactly zero means "not taken"
// to frames.
const int64_t origin = nanoseconds() - 1;

// A chain of additions, each of which waits for the one before: one clock of the core each.
double measured_core_ghz() noexcept
{
    constexpr int rounds = 20'000, chain = 64;
    uint64_t value = 1;
    const int64_t start = nanoseconds();
    for (int round = 0; round < rounds; ++round)
        asm volatile(".rept 64\n\tadd %1, %0\n\t.endr" : "+r"(value) : "r"(uint64_t{3}) : "cc");
    const int64_t elapsed = std::max<int64_t>(nanoseconds() - start, 1);
    return double{rounds} * chain / static_cast<double>(elapsed);
}

double measured_counter_ghz() noexcept
{
    constexpr int64_t duration = 5'000'000;
    const int64_t start = nanoseconds();
    const uint64_t first = __rdtsc();
    int64_t elapsed = 0;
    while (elapsed < duration)
        elapsed = nanoseconds() - start;
    return static_cast<double>(__rdtsc() - first) / static_cast<double>(elapsed);
}

double frequency_file_ghz() noexcept
{
    long kilohertz = 0;
    if (FILE *file = std::fopen("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "re")) {
        if (std::fscanf(file, "%ld", &kilohertz) != 1)
            kilohertz = 0;
        std::fclose(file);
    }
    return static_cast<double>(kilohertz) * 1e-6;
}

double identified_max_ghz() noexcept
{
    constexpr unsigned frequency_leaf = 0x16;
    unsigned base = 0, highest = 0, bus = 0, unused = 0;
    if (static_cast<unsigned>(__get_cpuid_max(0, nullptr)) >= frequency_leaf)
        __cpuid(frequency_leaf, base, highest, bus, unused);
    return (highest & 0xffff) * 1e-3;
}

double cached(std::atomic<double> &value, double (*measure)())
{
    double ghz = value.load(std::memory_order_relaxed);
    if (ghz == 0) {
        ghz = measure();
        value.store(ghz, std::memory_order_relaxed);
    }
    return ghz;
}

} // namespace

extern "C" {

double xkl_serv_dsecnd(void)
{
    return static_cast<double>(nanoseconds() - origin) * 1e-9;
}

float xkl_serv_second(void)
{
    return static_cast<float>(xkl_serv_dsecnd());
}

void xkl_serv_get_cpu_clocks(uint64_t *clocks)
{
    if (clocks)
        *clocks = __rdtsc();
}

// The frequency of this moment: the best of a few measurements, since an interrupt only ever makes one
// lower.
double xkl_serv_get_cpu_frequency(void)
{
    return std::max({measured_core_ghz(), measured_core_ghz(), measured_core_ghz()});
}

// What the system or the processor says; where neither does, the highest that was measured on the first
// call.
double xkl_serv_get_max_cpu_frequency(void)
{
    static std::atomic<double> highest{0};
    return cached(highest, [] {
        const double told = std::max(frequency_file_ghz(), identified_max_ghz());
        return told > 0 ? told : xkl_serv_get_cpu_frequency();
    });
}

double xkl_serv_get_clocks_frequency(void)
{
    static std::atomic<double> counter{0};
    return cached(counter, measured_counter_ghz);
}
}
