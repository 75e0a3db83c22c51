// Sine and cosine of a part of a turn, for Box and Muller's two coordinates and Cauchy's quotient. The
// angle is a fraction already, so there is nothing to reduce, which makes this faster than a sine of any
// argument.
#pragma once

#include "vsl/distributions/transforms/loop.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class V>
struct point {
    V cosine, sine;
};

/// Series in f*f: sin(f*pi/2)/f, cos(f*pi/2), |f| <= 1/2
template <class V>
XKL_HOT point<V> first_octants(V f)
{
    const V square = f * f;
    if constexpr (sizeof(element<V>) == 8) {
        constexpr double sine[] = {0x1.921fb54442d18p+0,  -0x1.4abbce625be53p-1, 0x1.466bc6775aae2p-4,
                                   -0x1.32d2cce62bd86p-8, 0x1.50783487ee782p-13, -0x1.e3074fde8871fp-19,
                                   0x1.e8f434d018d63p-25, -0x1.6fadb9f155744p-31};
        constexpr double cosine[] = {0x1.0000000000000p+0,  -0x1.3bd3cc9be45dep+0,  0x1.03c1f081b5ac4p-2,
                                     -0x1.55d3c7e3cbffap-6, 0x1.e1f506891babbp-11,  -0x1.a6d1f2a204a8cp-16,
                                     0x1.f9d38a3763cc3p-22, -0x1.b6e24f44b128fp-28, 0x1.20c62c2f2d7f5p-34};
        return {polynomial(square, cosine), f * polynomial(square, sine)};
    } else {
        constexpr double sine[] = {0x1.921fb54442d18p+0, -0x1.4abbce625be53p-1, 0x1.466bc6775aae2p-4,
                                   -0x1.32d2cce62bd86p-8, 0x1.50783487ee782p-13};
        constexpr double cosine[] = {0x1.0000000000000p+0, -0x1.3bd3cc9be45dep+0, 0x1.03c1f081b5ac4p-2,
                                     -0x1.55d3c7e3cbffap-6, 0x1.e1f506891babbp-11};
        return {polynomial(square, cosine), f * polynomial(square, sine)};
    }
}

/// Of an angle that is 0 to 4 quarters of a turn
template <class V>
XKL_HOT point<V> on_circle(V quarters)
{
    using R = element<V>;
    const V whole = nearest(quarters);
    const point<V> near = first_octants(quarters - whole);
    const auto odd = (whole == R(1)) | (whole == R(3));
    const V cosine = odd ? near.sine : near.cosine, sine = odd ? near.cosine : near.sine;
    return {(whole > R(.5)) & (whole < R(2.5)) ? -cosine : cosine,
            (whole > R(1.5)) & (whole < R(3.5)) ? -sine : sine};
}

/// a + beta*tan(pi*(u - 1/2)), as a cotangent that loses no digits at the ends
template <class R>
struct cauchy_transform {
    R a, beta;
    XKL_HOT vec<R> value(vec<R> u) const
    {
        const point<vec<R>> p = on_circle(2 * u);
        return a - beta * (p.cosine / p.sine);
    }
};

} // namespace XKL_ISA
} // namespace xkl::kernels
