// The vector math libraries underneath, under one name for all types and instruction sets:
// sleef::exp_u10(x) is SLEEF's exp within 1.0 ULP, glibc::exp(x) that of glibc's own vector library,
// within 4 ULP.
#pragma once

#include "vector.h"

#include <sleef.h>

namespace xkl::kernels {
inline namespace XKL_ISA {

#if defined(__AVX512F__)
#define XKL_SLEEF_D(name, bound) Sleef_##name##d8_##bound##avx512f
#define XKL_SLEEF_F(name, bound) Sleef_##name##f16_##bound##avx512f
#define XKL_GLIBC_D(arguments, name) _ZGVeN8##arguments##_##name
#define XKL_GLIBC_F(arguments, name) _ZGVeN16##arguments##_##name##f
#elif defined(__AVX2__)
#define XKL_SLEEF_D(name, bound) Sleef_##name##d4_##bound##avx2
#define XKL_SLEEF_F(name, bound) Sleef_##name##f8_##bound##avx2
#define XKL_GLIBC_D(arguments, name) _ZGVdN4##arguments##_##name
#define XKL_GLIBC_F(arguments, name) _ZGVdN8##arguments##_##name##f
#else
#define XKL_SLEEF_D(name, bound) Sleef_##name##d2_##bound##sse2
#define XKL_SLEEF_F(name, bound) Sleef_##name##f4_##bound##sse2
#define XKL_GLIBC_D(arguments, name) _ZGVbN2##arguments##_##name
#define XKL_GLIBC_F(arguments, name) _ZGVbN4##arguments##_##name##f
#endif

// Names are put together here, which only a macro can do.
#define XKL_SLEEF_1(name, bound)                                                                           \
    XKL_HOT vec<double> name##_##bound(vec<double> x)                                                      \
    {                                                                                                      \
        return XKL_SLEEF_D(name, bound)(x);                                                                \
    }                                                                                                      \
    XKL_HOT vec<float> name##_##bound(vec<float> x)                                                        \
    {                                                                                                      \
        return XKL_SLEEF_F(name, bound)(x);                                                                \
    }
#define XKL_SLEEF_2(name, bound)                                                                           \
    XKL_HOT vec<double> name##_##bound(vec<double> x, vec<double> y)                                       \
    {                                                                                                      \
        return XKL_SLEEF_D(name, bound)(x, y);                                                             \
    }                                                                                                      \
    XKL_HOT vec<float> name##_##bound(vec<float> x, vec<float> y)                                          \
    {                                                                                                      \
        return XKL_SLEEF_F(name, bound)(x, y);                                                             \
    }
#define XKL_SLEEF_PAIR(name, bound)                                                                        \
    XKL_HOT auto name##_##bound(vec<double> x)                                                             \
    {                                                                                                      \
        return XKL_SLEEF_D(name, bound)(x);                                                                \
    }                                                                                                      \
    XKL_HOT auto name##_##bound(vec<float> x)                                                              \
    {                                                                                                      \
        return XKL_SLEEF_F(name, bound)(x);                                                                \
    }
#define XKL_GLIBC_1(name)                                                                                  \
    extern "C" vec<double> XKL_GLIBC_D(v, name)(vec<double>);                                              \
    extern "C" vec<float> XKL_GLIBC_F(v, name)(vec<float>);                                                \
    XKL_HOT vec<double> name(vec<double> x)                                                                \
    {                                                                                                      \
        return XKL_GLIBC_D(v, name)(x);                                                                    \
    }                                                                                                      \
    XKL_HOT vec<float> name(vec<float> x)                                                                  \
    {                                                                                                      \
        return XKL_GLIBC_F(v, name)(x);                                                                    \
    }
#define XKL_GLIBC_2(name)                                                                                  \
    extern "C" vec<double> XKL_GLIBC_D(vv, name)(vec<double>, vec<double>);                                \
    extern "C" vec<float> XKL_GLIBC_F(vv, name)(vec<float>, vec<float>);                                   \
    XKL_HOT vec<double> name(vec<double> x, vec<double> y)                                                 \
    {                                                                                                      \
        return XKL_GLIBC_D(vv, name)(x, y);                                                                \
    }                                                                                                      \
    XKL_HOT vec<float> name(vec<float> x, vec<float> y)                                                    \
    {                                                                                                      \
        return XKL_GLIBC_F(vv, name)(x, y);                                                                \
    }

namespace sleef {
XKL_SLEEF_1(acos, u10)
XKL_SLEEF_1(acos, u35)
XKL_SLEEF_1(acosh, u10)
XKL_SLEEF_1(asin, u10)
XKL_SLEEF_1(asin, u35)
XKL_SLEEF_1(asinh, u10)
XKL_SLEEF_1(atan, u10)
XKL_SLEEF_1(atan, u35)
XKL_SLEEF_2(atan2, u10)
XKL_SLEEF_2(atan2, u35)
XKL_SLEEF_1(atanh, u10)
XKL_SLEEF_1(cbrt, u10)
XKL_SLEEF_1(cbrt, u35)
XKL_SLEEF_1(cos, u10)
XKL_SLEEF_1(cos, u35)
XKL_SLEEF_1(cosh, u10)
XKL_SLEEF_1(cosh, u35)
XKL_SLEEF_1(cospi, u05)
XKL_SLEEF_1(erf, u10)
XKL_SLEEF_1(erfc, u15)
XKL_SLEEF_1(exp, u10)
XKL_SLEEF_1(exp10, u10)
XKL_SLEEF_1(exp10, u35)
XKL_SLEEF_1(exp2, u10)
XKL_SLEEF_1(exp2, u35)
XKL_SLEEF_1(expm1, u10)
XKL_SLEEF_2(hypot, u05)
XKL_SLEEF_2(hypot, u35)
XKL_SLEEF_1(lgamma, u10)
XKL_SLEEF_1(log, u10)
XKL_SLEEF_1(log, u35)
XKL_SLEEF_1(log10, u10)
XKL_SLEEF_1(log1p, u10)
XKL_SLEEF_1(log2, u10)
XKL_SLEEF_1(log2, u35)
XKL_SLEEF_1(sin, u10)
XKL_SLEEF_1(sin, u35)
XKL_SLEEF_1(sinh, u10)
XKL_SLEEF_1(sinh, u35)
XKL_SLEEF_1(sinpi, u05)
XKL_SLEEF_PAIR(sincos, u10)
XKL_SLEEF_PAIR(sincos, u35)
XKL_SLEEF_PAIR(sincospi, u05)
XKL_SLEEF_PAIR(sincospi, u35)
XKL_SLEEF_1(tan, u10)
XKL_SLEEF_1(tan, u35)
XKL_SLEEF_1(tanh, u10)
XKL_SLEEF_1(tanh, u35)
XKL_SLEEF_1(tgamma, u10)
} // namespace sleef

namespace glibc {
XKL_GLIBC_1(acos)
XKL_GLIBC_1(acosh)
XKL_GLIBC_1(asin)
XKL_GLIBC_1(asinh)
XKL_GLIBC_1(atan)
XKL_GLIBC_2(atan2)
XKL_GLIBC_1(atanh)
XKL_GLIBC_1(cbrt)
XKL_GLIBC_1(cos)
XKL_GLIBC_1(cosh)
XKL_GLIBC_1(erf)
XKL_GLIBC_1(erfc)
XKL_GLIBC_1(exp)
XKL_GLIBC_1(exp10)
XKL_GLIBC_1(exp2)
XKL_GLIBC_1(expm1)
XKL_GLIBC_2(hypot)
XKL_GLIBC_1(log)
XKL_GLIBC_1(log10)
XKL_GLIBC_1(log1p)
XKL_GLIBC_1(log2)
XKL_GLIBC_2(pow)
XKL_GLIBC_1(sin)
XKL_GLIBC_1(sinh)
XKL_GLIBC_1(tan)
XKL_GLIBC_1(tanh)
} // namespace glibc

#undef XKL_SLEEF_1
#undef XKL_SLEEF_2
#undef XKL_SLEEF_PAIR
#undef XKL_GLIBC_1
#undef XKL_GLIBC_2
#undef XKL_SLEEF_D
#undef XKL_SLEEF_F
#undef XKL_GLIBC_D
#undef XKL_GLIBC_F

/// Arguments so small that the result is the argument rounded; there the base library may be an ULP off,
/// or lose the sign of denormal ones. The default serves series that go on with a cube. Results are
/// computed, not copied: denormal arguments become zeros where the mode says so.
/// f is left alone with what it needs: whatever is kept across its call costs time.
template <class V, class F>
XKL_HOT V small_as_they_are(V a, const F &f, element<V> small = sizeof(element<V>) == 8 ? 0x1p-27 : 0x1p-13)
{
    if (which_are<below>(absolute(a), small)) [[unlikely]] {
        const V y = f(a);
        return absolute(a) < small ? multiply_add(a, V{}, a) : y;
    }
    return f(a);
}

} // namespace XKL_ISA
} // namespace xkl::kernels
