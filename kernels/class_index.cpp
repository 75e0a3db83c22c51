// Which of a table's kernels a processor class runs: 0 SSE2, 1 AVX2 with FMA, 2 AVX-512.
#include <cstdint>

namespace {

// The best index that this processor has, whatever class was asked for: a class may be forced by an
// environment variable, and a wrong one shall not end the process.
int32_t best_index()
{
    __builtin_cpu_init();
    const bool avx2 =
        __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2");
    const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
                        __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512vl");
    return !avx2 ? 0 : avx512 ? 2 : 1;
}

// Filled when the library is loaded.
const int32_t best = best_index();

} // namespace

// Classes 0 to 2 are processors before AVX2, 3 has AVX2, 4 and 5 have AVX-512. A class that is not known
// runs what every processor runs.
extern "C" [[gnu::visibility("default")]] int32_t xkl_vml_kernel_GetTTableIndex(int32_t processor_class)
{
    const int32_t wanted = processor_class == 3 ? 1 : processor_class == 4 || processor_class == 5 ? 2 : 0;
    return wanted < best ? wanted : best;
}
