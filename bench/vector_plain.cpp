// Plain loops over the C library's functions, compiled twice: as libm_loops, one call an element, and with
// all that the compiler can do as compiler_loops.
#include "vector_loops.h"

#include <math.h>

namespace {

template <class R, R (*Function)(R)>
void unary(int64_t n, const R *a, const R *, R *r)
{
    for (int64_t i = 0; i < n; ++i)
        r[i] = Function(a[i]);
}
template <class R, R (*Function)(R, R)>
void binary(int64_t n, const R *a, const R *b, R *r)
{
    for (int64_t i = 0; i < n; ++i)
        r[i] = Function(a[i], b[i]);
}

const loops_of loops[] = {
    {"Exp", unary<double, exp>, unary<float, expf>},
    {"Ln", unary<double, log>, unary<float, logf>},
    {"Log10", unary<double, log10>, unary<float, log10f>},
    {"Sin", unary<double, sin>, unary<float, sinf>},
    {"Cos", unary<double, cos>, unary<float, cosf>},
    {"Tan", unary<double, tan>, unary<float, tanf>},
    {"Atan", unary<double, atan>, unary<float, atanf>},
    {"Tanh", unary<double, tanh>, unary<float, tanhf>},
    {"Cbrt", unary<double, cbrt>, unary<float, cbrtf>},
    {"Pow", binary<double, pow>, binary<float, powf>},
    {"Erf", unary<double, erf>, unary<float, erff>},
};

} // namespace

const loops_of *XKL_LOOPS(const char *function)
{
    return find_loops(loops, function);
}
