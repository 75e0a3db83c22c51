// Hörmann's transformed rejection with squeeze, for distributions of one mode and means of 10 and more (W.
// Hörmann, The transformed rejection method for generating Poisson random variables, 1993; The generation
// of binomial random variates, 1993). Two uniform numbers a try, 1.1 to 1.4 tries a result.
#pragma once

#include "vsl/distributions/log_factorial.h"
#include "vsl/distributions/reader.h"

#include <cmath>

namespace xkl::vsl {

/// The hat that the uniform numbers are transformed to
struct hat {
    double a, b, centre;
    double scale;   // by which a try's second number is multiplied
    double squeeze; // below this one it is accepted without a look, in the middle
};

/// log_probability(k) is that of k but for a constant, which the hat's scale takes into account.
template <class LogProbability>
double transformed_rejection(uniform_reader &reader, const hat &h, double last,
                             LogProbability log_probability)
{
    while (reader.may_try()) {
        const double u = reader.next() - .5, v = reader.next(), distance = .5 - std::fabs(u);
        const double k = std::floor((2 * h.a / distance + h.b) * u + h.centre);
        if (distance >= .07 && v <= h.squeeze)
            return k;
        if (k < 0 || k > last)
            continue;
        if (std::log(v * h.scale / (h.a / (distance * distance) + h.b)) <= log_probability(k))
            return k;
    }
    return 0;
}

/// PTRS: mean >= 10
class poisson_rejection {
  public:
    explicit poisson_rejection(double mean) : mean_(mean), log_mean_(std::log(mean))
    {
        h_.b = .931 + 2.53 * std::sqrt(mean);
        h_.a = -.059 + .02483 * h_.b;
        h_.centre = mean + .43;
        h_.scale = 1.1239 + 1.1328 / (h_.b - 3.4);
        h_.squeeze = .9277 - 3.6224 / (h_.b - 2);
    }
    int32_t operator()(uniform_reader &u) const
    {
        return to_integer(transformed_rejection(
            u, h_, 0x1p62, [this](double k) { return k * log_mean_ - mean_ - log_factorial(k); }));
    }

  private:
    double mean_, log_mean_;
    hat h_;
};

/// BTRS: p <= 1/2, trials*p >= 10
class binomial_rejection {
  public:
    binomial_rejection(double trials, double p)
        : trials_(trials), mode_(std::floor((trials + 1) * p)), log_odds_(std::log(p / (1 - p)))
    {
        const double deviation = std::sqrt(trials * p * (1 - p));
        h_.b = 1.15 + 2.53 * deviation;
        h_.a = -.0873 + .0248 * h_.b + .01 * p;
        h_.centre = trials * p + .5;
        h_.scale = (2.83 + 5.1 / h_.b) * deviation;
        h_.squeeze = .92 - 4.2 / h_.b;
        at_mode_ = log_factorial(mode_) + log_factorial(trials - mode_);
    }
    int32_t operator()(uniform_reader &u) const
    {
        return static_cast<int32_t>(transformed_rejection(u, h_, trials_, [this](double k) {
            return at_mode_ - log_factorial(k) - log_factorial(trials_ - k) + (k - mode_) * log_odds_;
        }));
    }

  private:
    double trials_, mode_, log_odds_, at_mode_;
    hat h_;
};

} // namespace xkl::vsl
