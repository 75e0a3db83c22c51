// One number of the gamma distribution (G. Marsaglia, W. W. Tsang, A simple method for generating gamma
// variables, 2000): the cube of a normal number. The vectors' candidates are in transforms/candidates.h.
#pragma once

#include "vsl/distributions/reader.h"

#include <cmath>

namespace xkl::vsl {

/// A shape below 1 is raised by 1; the number is then multiplied by a power of a uniform one.
class gamma_shape {
  public:
    explicit gamma_shape(double alpha)
        : d((alpha < 1 ? alpha + 1 : alpha) - 1. / 3), c(1 / std::sqrt(9 * d)),
          inverse_(alpha < 1 ? 1 / alpha : 0)
    {
    }
    bool below_one() const { return inverse_ > 0; }
    double power_of(double u) const { return std::pow(u, inverse_); }

    double d, c;

  private:
    double inverse_;
};

/// Of scale 1; takes at least three uniform numbers.
inline double gamma_number(uniform_reader &u, const gamma_shape &shape)
{
    constexpr double turn = 6.283185307179586;
    while (u.may_try()) {
        const double radius = std::sqrt(-2 * std::log(u.next())), x = radius * std::sin(turn * u.next()),
                     uniform = u.next(), y = shape.c * x, root = 1 + y;
        if (root <= 0)
            continue;
        const double bound = .5 * x * x + shape.d * (3 * std::log1p(y) - y * (3 + y * (3 + y)));
        if (std::log(uniform) < bound)
            return shape.d * (root * root * root) * (shape.below_one() ? shape.power_of(u.next()) : 1);
    }
    return 0;
}

} // namespace xkl::vsl
