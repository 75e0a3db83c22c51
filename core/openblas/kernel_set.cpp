// The kernel set: chosen by processor features, before the kernel library looks for itself.
#include "openblas/kernel_set.h"

#include "service/environment.h"
#include "service/reproducibility.h"

#include <string_view>

extern "C" {
char *openblas_get_config(void);
char *openblas_get_corename(void);
void openblas_set_num_threads(int threads);
void gotoblas_dynamic_init(void);
void gotoblas_dynamic_quit(void);
}

namespace xkl::core {
namespace {

// The sets by what the processor can do, not by its maker and model: the kernel library knows no processor
// that is newer than itself, and would give it its oldest kernels.
const char *set_for(instruction_level level) noexcept
{
    using enum instruction_level;
    switch (level) {
    case avx512_bf16: // not "Cooperlake": its SCASUM is wrong from nine elements on, and the rest is no faster
    case avx512:
        return "SkylakeX";
    case avx2:
        return "Haswell";
    case avx:
        return "Sandybridge";
    case sse4_2:
        return "Nehalem";
    case sse4_1:
        return "Penryn";
    case ssse3:
        return "Core2";
    default:
        return "Prescott";
    }
}

} // namespace

// A limit that the caller has set comes before the kernel library's own variable, and that before our
// choice.
const char *wanted_kernel_set() noexcept
{
    const char *named = environment_value("OPENBLAS_CORETYPE");
    return named && !level_limit() ? named : set_for(level_in_force());
}

void select_kernel_set_again()
{
    gotoblas_dynamic_quit();
    gotoblas_dynamic_init();
}

const char *kernel_set_name()
{
    return openblas_get_corename();
}

std::string dense_kernels()
{
    // The configuration starts with the library's name and version; build options follow.
    const std::string_view config = openblas_get_config();
    const std::string_view version = config.substr(0, config.find(' ', config.find(' ') + 1));
    return std::string(version) + " " + kernel_set_name();
}

void set_kernel_library_threads(int threads)
{
    openblas_set_num_threads(threads);
}

} // namespace xkl::core
