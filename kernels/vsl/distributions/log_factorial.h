// ln(k!) of an integer k: the C library's lgamma is slower, and writes a global.
#pragma once

#include <cmath>

namespace xkl::vsl {

/// Within 1e-10 plus a few ULP
inline double log_factorial(double k)
{
    constexpr double small[] = {0,
                                0,
                                0.69314718055994531,
                                1.7917594692280550,
                                3.1780538303479458,
                                4.7874917427820460,
                                6.5792512120101010,
                                8.5251613610654143,
                                10.604602902745251,
                                12.801827480081469};
    if (k < 10)
        return small[static_cast<int>(k)];
    const double inverse = 1 / k, square = inverse * inverse; // Stirling's series
    return (k + .5) * std::log(k) - k + .91893853320467274 +
           inverse * (1. / 12 - square * (1. / 360 - square * (1. / 1260)));
}

} // namespace xkl::vsl
