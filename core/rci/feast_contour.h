// The contour of FEAST: points of quadrature on the upper half of an ellipse around the interval, and what
// a solution at each of them weighs in the projector onto the wanted eigenvectors.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>

namespace xkl::core::feast {

/// A point of a rule on [-1, 1]
struct quadrature_point {
    double x, weight;
};

/// Of the rule of Gauss and Legendre: by Newton's method from Chebyshev's points, that lie near
inline quadrature_point gauss_point(int64_t points, int64_t index)
{
    const auto n = static_cast<double>(points);
    double x = std::cos(std::numbers::pi * (static_cast<double>(index) + 0.75) / (n + 0.5)), slope = 1;
    for (int turn = 0; turn < 100; ++turn) {
        double value = x, before = 1; // Legendre polynomials of degrees k and k - 1
        for (int64_t k = 2; k <= points; ++k) {
            const auto degree = static_cast<double>(k);
            const double next = ((2 * degree - 1) * x * value - (degree - 1) * before) / degree;
            before = value;
            value = next;
        }
        slope = n * (x * value - before) / (x * x - 1);
        const double step = value / slope;
        x -= step;
        if (std::abs(step) < 1e-15)
            break;
    }
    return {x, 2 / ((1 - x * x) * slope * slope)};
}

inline quadrature_point trapezoidal_point(int64_t points, int64_t index)
{
    const auto n = static_cast<double>(points);
    return {1 - (2 * static_cast<double>(index) + 1) / n, 2 / n};
}

struct contour {
    double middle, radius;
    double flatness; // the vertical axis by the horizontal one
    int64_t points;
    bool trapezoidal;

    quadrature_point rule(int64_t index) const
    {
        return trapezoidal ? trapezoidal_point(points, index) : gauss_point(points, index);
    }
    static double angle(const quadrature_point &point) { return std::numbers::pi / 2 * (1 - point.x); }

    std::complex<double> place(int64_t index) const
    {
        const double turn = angle(rule(index));
        return {middle + radius * std::cos(turn), radius * flatness * std::sin(turn)};
    }
    /// Of the solution at the point; the mirror image in the lower half weighs the conjugate.
    std::complex<double> weight(int64_t index) const
    {
        const quadrature_point point = rule(index);
        const double turn = angle(point);
        return point.weight / 4 * radius * std::complex<double>(flatness * std::cos(turn), std::sin(turn));
    }
};

} // namespace xkl::core::feast
