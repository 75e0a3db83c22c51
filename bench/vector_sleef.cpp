// SLEEF called directly, register by register, with the widest vectors that this file is compiled for.
#include "vector_loops.h"

#include <sleef.h>

#include <immintrin.h>

namespace {

#if defined(__AVX512F__)
using doubles = __m512d;
using floats = __m512;
#define SLEEF_D(name, bound) Sleef_##name##d8_##bound##avx512f
#define SLEEF_F(name, bound) Sleef_##name##f16_##bound##avx512f
#elif defined(__AVX2__)
using doubles = __m256d;
using floats = __m256;
#define SLEEF_D(name, bound) Sleef_##name##d4_##bound##avx2
#define SLEEF_F(name, bound) Sleef_##name##f8_##bound##avx2
#else
using doubles = __m128d;
using floats = __m128;
#define SLEEF_D(name, bound) Sleef_##name##d2_##bound##sse2
#define SLEEF_F(name, bound) Sleef_##name##f4_##bound##sse2
#endif

template <class R, class V, auto Function>
void unary(int64_t n, const R *a, const R *, R *r)
{
    constexpr int64_t width = sizeof(V) / sizeof(R);
    for (int64_t i = 0; i < n; i += width) {
        V x;
        __builtin_memcpy(&x, a + i, sizeof x);
        x = Function(x);
        __builtin_memcpy(r + i, &x, sizeof x);
    }
}
template <class R, class V, auto Function>
void binary(int64_t n, const R *a, const R *b, R *r)
{
    constexpr int64_t width = sizeof(V) / sizeof(R);
    for (int64_t i = 0; i < n; i += width) {
        V x, y;
        __builtin_memcpy(&x, a + i, sizeof x);
        __builtin_memcpy(&y, b + i, sizeof y);
        x = Function(x, y);
        __builtin_memcpy(r + i, &x, sizeof x);
    }
}

#define LOOPS(title, shape, name, bound)                                                                   \
    {                                                                                                      \
        title, shape<double, doubles, SLEEF_D(name, bound)>, shape<float, floats, SLEEF_F(name, bound)>    \
    }
const loops_of within_1ulp[] = {
    LOOPS("Exp", unary, exp, u10),       LOOPS("Ln", unary, log, u10),
    LOOPS("Log10", unary, log10, u10),   LOOPS("Sin", unary, sin, u10),
    LOOPS("Cos", unary, cos, u10),       LOOPS("Tan", unary, tan, u10),
    LOOPS("Atan", unary, atan, u10),     LOOPS("Tanh", unary, tanh, u10),
    LOOPS("Cbrt", unary, cbrt, u10),     LOOPS("Pow", binary, pow, u10),
    LOOPS("Erf", unary, erf, u10),       LOOPS("LGamma", unary, lgamma, u10),
    LOOPS("TGamma", unary, tgamma, u10),
};
const loops_of within_4ulp[] = {
    LOOPS("Ln", unary, log, u35),    LOOPS("Sin", unary, sin, u35),   LOOPS("Cos", unary, cos, u35),
    LOOPS("Tan", unary, tan, u35),   LOOPS("Atan", unary, atan, u35), LOOPS("Tanh", unary, tanh, u35),
    LOOPS("Cbrt", unary, cbrt, u35),
};

} // namespace

const loops_of *sleef_loops_1ulp(const char *function)
{
    return find_loops(within_1ulp, function);
}
const loops_of *sleef_loops_4ulp(const char *function)
{
    return find_loops(within_4ulp, function);
}
