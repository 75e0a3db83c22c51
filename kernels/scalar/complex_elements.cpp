// Complex elements by the C library's functions and the compiler's products and quotients, in long double:
// exponents of double don't overflow there, and 11 more bits make the rounded result right but for rare ties.
#include "complex_elements.h"

#include <cmath>

namespace xkl::kernels::scalar {
namespace {

using built_in = _Complex long double;

built_in from(wide a) noexcept
{
    built_in z;
    __real__ z = a.re;
    __imag__ z = a.im;
    return z;
}
wide to(built_in z) noexcept
{
    return {__real__ z, __imag__ z};
}

} // namespace

wide multiply(wide a, wide b) noexcept
{
    return to(from(a) * from(b));
}
wide multiply_by_conjugate(wide a, wide b) noexcept
{
    return to(from(a) * from({b.re, -b.im}));
}
wide divide(wide a, wide b) noexcept
{
    return to(from(a) / from(b));
}
long double magnitude(wide a) noexcept
{
    return std::hypot(a.re, a.im);
}
wide square_root(wide a) noexcept
{
    return to(__builtin_csqrtl(from(a)));
}
wide exponential(wide a) noexcept
{
    return to(__builtin_cexpl(from(a)));
}
wide logarithm(wide a) noexcept
{
    return to(__builtin_clogl(from(a)));
}
wide logarithm10(wide a) noexcept
{
    constexpr long double of_e = 0.434294481903251827651128918916605082L;
    const wide y = logarithm(a);
    return {y.re * of_e, y.im * of_e};
}
wide power(wide a, wide b) noexcept
{
    if (b.re == 0 && b.im == 0)
        return {1, 0};
    if (a.re == 0 && a.im == 0 && b.re > 0)
        return {0, 0};
    return exponential(multiply(b, logarithm(a)));
}
wide cosine(wide a) noexcept
{
    return to(__builtin_ccosl(from(a)));
}
wide sine(wide a) noexcept
{
    return to(__builtin_csinl(from(a)));
}
wide tangent(wide a) noexcept
{
    return to(__builtin_ctanl(from(a)));
}
wide hyperbolic_cosine(wide a) noexcept
{
    return to(__builtin_ccoshl(from(a)));
}
wide hyperbolic_sine(wide a) noexcept
{
    return to(__builtin_csinhl(from(a)));
}
wide hyperbolic_tangent(wide a) noexcept
{
    return to(__builtin_ctanhl(from(a)));
}
wide arc_cosine(wide a) noexcept
{
    return to(__builtin_cacosl(from(a)));
}
wide arc_sine(wide a) noexcept
{
    return to(__builtin_casinl(from(a)));
}
wide arc_tangent(wide a) noexcept
{
    return to(__builtin_catanl(from(a)));
}
wide area_cosine(wide a) noexcept
{
    return to(__builtin_cacoshl(from(a)));
}
wide area_sine(wide a) noexcept
{
    return to(__builtin_casinhl(from(a)));
}
wide area_tangent(wide a) noexcept
{
    return to(__builtin_catanhl(from(a)));
}

} // namespace xkl::kernels::scalar
