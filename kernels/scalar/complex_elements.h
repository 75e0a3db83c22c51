// Complex functions of one element with more digits and a wider range than the vectors have: what is settled
// out of the fast path. They are the C library's, with the special cases of Annex G.
#pragma once

#include "../complex.h"

namespace xkl::kernels::scalar {

using wide = complex<long double>;

wide multiply(wide a, wide b) noexcept;
wide multiply_by_conjugate(wide a, wide b) noexcept;
wide divide(wide a, wide b) noexcept;
long double magnitude(wide a) noexcept;

wide square_root(wide a) noexcept;
wide exponential(wide a) noexcept;
wide logarithm(wide a) noexcept;
wide logarithm10(wide a) noexcept;
/// a**0 is 1, 0**b is 0 if b has a positive real part, otherwise a pole.
wide power(wide a, wide b) noexcept;

wide cosine(wide a) noexcept;
wide sine(wide a) noexcept;
wide tangent(wide a) noexcept;
wide hyperbolic_cosine(wide a) noexcept;
wide hyperbolic_sine(wide a) noexcept;
wide hyperbolic_tangent(wide a) noexcept;

wide arc_cosine(wide a) noexcept;
wide arc_sine(wide a) noexcept;
wide arc_tangent(wide a) noexcept;
wide area_cosine(wide a) noexcept;
wide area_sine(wide a) noexcept;
wide area_tangent(wide a) noexcept;

} // namespace xkl::kernels::scalar
