// Discrete distributions whose probabilities follow from each other, with small means: by adding up from 0
// on. One uniform number a result. A law has `start()`, the probability of 0, `after(p, k)`, that of k + 1
// from that of k, and `last`, the largest result.
#pragma once

#include "vsl/distributions/log_factorial.h"
#include "vsl/distributions/reader.h"

namespace xkl::vsl {

constexpr double small_mean = 10; // up to this one adding up is faster than rejection

struct poisson_law {
    double mean;
    int32_t last = INT32_MAX;

    double start() const { return std::exp(-mean); }
    double after(double p, int32_t k) const { return p * (mean / (k + 1.)); }
};

/// p <= 1/2
struct binomial_law {
    int32_t last; // trials
    double p;

    double start() const { return std::exp(last * std::log1p(-p)); }
    double after(double probability, int32_t k) const
    {
        return probability * ((last - k) / (k + 1.) * (p / (1 - p)));
    }
};

/// Marked ones among `last` drawn of `all`, of which `marked` >= `last`, both at most half of all
struct hypergeometric_law {
    int32_t last;
    double marked, all;

    double start() const
    {
        return std::exp(log_factorial(all - last) + log_factorial(all - marked) - log_factorial(all) -
                        log_factorial(all - marked - last));
    }
    double after(double p, int32_t k) const
    {
        return p * ((last - k) / (k + 1.) * ((marked - k) / (all - marked - last + k + 1)));
    }
};

/// The result of one uniform number u: the first one at which the sum of the probabilities is above u
template <class Law>
int32_t add_up(const Law &law, double u)
{
    double p = law.start();
    int32_t k = 0;
    for (; u >= p && k < law.last && p > 0; ++k) {
        u -= p;
        p = law.after(p, k);
    }
    return k;
}

/// The sums themselves, for many results of one law
class sums_of_law {
  public:
    template <class Law>
    explicit sums_of_law(const Law &law)
    {
        double p = law.start(), sum = p;
        int32_t k = 0;
        for (; k < law.last && k < most && !(k > small_mean && p < 0x1p-60); ++k) {
            sums_[k] = sum;
            p = law.after(p, k);
            sum += p;
        }
        sums_[k] = 1; // what is not there any more, and what rounding has lost
    }
    int32_t operator()(uniform_reader &reader) const
    {
        const double u = reader.next();
        int32_t k = 0;
        while (u >= sums_[k])
            ++k;
        return k;
    }

  private:
    static constexpr int32_t most = 127;
    double sums_[most + 1];
};

} // namespace xkl::vsl
