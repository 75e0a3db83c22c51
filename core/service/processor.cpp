// What the processor can do and the system allows, by CPUID and XGETBV.
#include "service/processor.h"

#include "service/reproducibility.h"
#include "service/service_entries.h"

#include <array>
#include <cpuid.h>
#include <cstdint>
#include <cstring>

namespace xkl::core {
namespace {

struct registers {
    unsigned a = 0, b = 0, c = 0, d = 0;
};

registers identify(unsigned leaf, unsigned subleaf = 0) noexcept
{
    registers r;
    if (static_cast<unsigned>(__get_cpuid_max(leaf & 0x80000000u, nullptr)) >= leaf)
        __cpuid_count(leaf, subleaf, r.a, r.b, r.c, r.d);
    return r;
}

// The register states that the operating system saves when it switches threads.
uint64_t saved_states(const registers &basic) noexcept
{
    if (!(basic.c & bit_OSXSAVE))
        return 0;
    uint32_t low = 0, high = 0;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return uint64_t{high} << 32 | low;
}

constexpr bool all(uint64_t value, uint64_t bits)
{
    return (value & bits) == bits;
}

instruction_level detect() noexcept
{
    using enum instruction_level;
    constexpr uint64_t avx_state = 0x06, avx512_state = 0xe6;
    constexpr unsigned bit_bf16 = 1u << 5;
    const registers basic = identify(1), extended = identify(7), more = identify(7, 1);
    const uint64_t states = saved_states(basic);
    const bool has_avx = all(basic.c, bit_AVX) && all(states, avx_state);
    const bool has_avx2 = has_avx && all(basic.c, bit_FMA) && all(extended.b, bit_AVX2 | bit_BMI2);
    const bool has_avx512 =
        has_avx2 && all(states, avx512_state) &&
        all(extended.b, bit_AVX512F | bit_AVX512CD | bit_AVX512BW | bit_AVX512DQ | bit_AVX512VL);
    if (has_avx512)
        return all(more.a, bit_bf16) && all(extended.c, bit_AVX512VNNI) ? avx512_bf16 : avx512;
    if (has_avx2)
        return avx2;
    if (has_avx)
        return avx;
    if (all(basic.c, bit_SSE4_2))
        return sse4_2;
    if (all(basic.c, bit_SSE4_1))
        return sse4_1;
    if (all(basic.c, bit_SSSE3))
        return ssse3;
    return all(basic.c, bit_SSE3) ? sse3 : sse2;
}

std::string read_name()
{
    constexpr unsigned first_leaf = 0x80000002, last_leaf = 0x80000004;
    std::array<char, 49> name{};
    for (unsigned leaf = first_leaf; leaf <= last_leaf; ++leaf) {
        const registers part = identify(leaf);
        std::memcpy(name.data() + (leaf - first_leaf) * sizeof part, &part, sizeof part);
    }
    const std::string text = name.data();
    const size_t start = text.find_first_not_of(' '), end = text.find_last_not_of(' ');
    return start == std::string::npos ? "unknown" : text.substr(start, end - start + 1);
}

} // namespace

instruction_level processor_level() noexcept
{
    static const instruction_level level = detect();
    return level;
}

const char *level_name(instruction_level level) noexcept
{
    static constexpr const char *names[] = {"SSE2", "SSE3", "SSSE3",   "SSE4.1",      "SSE4.2",
                                            "AVX",  "AVX2", "AVX-512", "AVX-512 BF16"};
    return names[static_cast<int>(level)];
}

const std::string &processor_name()
{
    static const std::string &name = *new std::string(read_name());
    return name;
}

} // namespace xkl::core

// The processor code that the vector math loader maps to a kernel class: 0 the baseline, 1 SSE4.2, 5 AVX, 7
// AVX2 with FMA, 8 AVX-512, 9 AVX-512 with VNNI and BF16. The codes 2, 3, 4 and 6 are never answered.
extern "C" int xkl_serv_vml_cpu_detect(void)
{
    using namespace xkl::core;
    using enum instruction_level;
    switch (level_in_force()) {
    case avx512_bf16:
        return 9;
    case avx512:
        return 8;
    case avx2:
        return 7;
    case avx:
        return 5;
    case sse4_2:
        return 1;
    default:
        return 0;
    }
}
