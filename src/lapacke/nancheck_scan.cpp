// The choice of the kernel for NaN checks: the widest registers that the processor and the system have.
#include "lapacke/nancheck_scan.h"

namespace xkl::lapacke {
namespace {

/// What the compiler's run time found out when the library was loaded. The kernels use byte masks (DQ) and
/// variable shifts (BMI2) besides.
const nan_kernels &kernels()
{
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("bmi2"))
        return nan_kernels_avx512;
    return __builtin_cpu_supports("avx2") ? nan_kernels_avx2 : nan_kernels_baseline;
}

} // namespace

bool run_holds_nan(const float *a, int64_t count)
{
    return kernels().floats.run(a, count);
}
bool run_holds_nan(const double *a, int64_t count)
{
    return kernels().doubles.run(a, count);
}
bool lines_hold_nan(const float *a, const line_starts &starts, const line_parts &parts)
{
    return kernels().floats.lines(a, starts, parts);
}
bool lines_hold_nan(const double *a, const line_starts &starts, const line_parts &parts)
{
    return kernels().doubles.lines(a, starts, parts);
}

} // namespace xkl::lapacke
