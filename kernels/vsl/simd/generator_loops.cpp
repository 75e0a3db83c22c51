// The table of the generators' loops for one instruction set.
#include "vsl/simd/congruential.h"
#include "vsl/simd/conversions.h"
#include "vsl/simd/philox.h"
#include "vsl/simd/shift_registers.h"

namespace xkl::kernels::XKL_ISA {

const vsl::loops generator_loops = {
    .doubles = doubles,
    .floats = floats,
    .doubles_of_long = of_long<double>,
    .floats_of_long = of_long<float>,
    .mcg31 = mcg31,
    .mcg59 = mcg59,
    .mrg32k3a = mrg32k3a,
    .mt19937_refill = mt19937_refill,
    .mt19937_temper = mt19937_temper,
    .sfmt19937_refill = sfmt19937_refill,
    .r250_refill = r250_refill,
    .philox = philox,
};

} // namespace xkl::kernels::XKL_ISA
