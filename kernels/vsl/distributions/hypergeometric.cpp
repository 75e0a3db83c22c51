// The hypergeometric distribution: marked ones in a sample drawn without putting back.
#include "vsl/distributions/discrete_laws.h"

#include <cmath>

using namespace xkl::vsl;

namespace {

/// By the ratio of uniform numbers (E. Stadlober, The ratio of uniforms approach for generating discrete
/// random variates, 1990, HRUA): two a try. The sample and the marked ones are at most half of all.
class ratio_of_uniforms {
  public:
    ratio_of_uniforms(double all, double sample, double marked)
        : all_(all), sample_(sample), marked_(marked)
    {
        const double share = marked / all;
        const double variance = (all - sample) * sample * share * (1 - share) / (all - 1);
        const double deviation = std::sqrt(variance + .5);
        const double mode = std::floor((sample + 1) * (marked + 1) / (all + 2));
        centre_ = sample * share + .5;
        width_ = 1.7155277699214135 * deviation + .8989161620588988; // 2*sqrt(2/e), 3 - 2*sqrt(3/e)
        end_ = std::min(std::min(sample, marked) + 1, std::floor(centre_ + 16 * deviation));
        at_mode_ = of_factorials(mode);
    }
    int32_t operator()(uniform_reader &reader) const
    {
        while (reader.may_try()) {
            const double x = reader.next(), y = reader.next(), w = centre_ + width_ * (y - .5) / x;
            if (w < 0 || w >= end_)
                continue;
            const double k = std::floor(w), bound = at_mode_ - of_factorials(k);
            if (x * (4 - x) - 3 <= bound) // lies above 2*ln(x)
                return static_cast<int32_t>(k);
            if (x * (x - bound) < 1 && 2 * std::log(x) <= bound)
                return static_cast<int32_t>(k);
        }
        return 0;
    }

  private:
    /// The logarithm of 1/probability, but for a constant
    double of_factorials(double k) const
    {
        return log_factorial(k) + log_factorial(marked_ - k) + log_factorial(sample_ - k) +
               log_factorial(all_ - marked_ - sample_ + k);
    }

    double all_, sample_, marked_, centre_, width_, end_, at_mode_;
};

int32_t hypergeometric(stream &s, int64_t n, int32_t *r, int32_t all, int32_t sample_size, int32_t marked)
{
    // Those left over instead of those drawn, those without a mark instead of those with one
    const int32_t few_drawn = std::min(sample_size, all - sample_size),
                  few = std::min(marked, all - marked);
    const bool others_drawn = few_drawn != sample_size, others_marked = few != marked;
    const auto result = [=](int32_t k) {
        const int32_t marked_in_few = others_marked ? few_drawn - k : k;
        return others_drawn ? marked - marked_in_few : marked_in_few;
    };
    const auto run = [&](const auto &number) {
        return sample(s, n, r, [&](uniform_reader &u) { return result(number(u)); });
    };
    const double mean = all > 0 ? static_cast<double>(few_drawn) * few / all : 0;
    if (mean < small_mean)
        return run(sums_of_law(hypergeometric_law{std::min(few_drawn, few),
                                                  static_cast<double>(std::max(few_drawn, few)),
                                                  static_cast<double>(all)}));
    return run(ratio_of_uniforms(all, few_drawn, few));
}

} // namespace

XKL_VSL_KERNEL _vsliRngHypergeometric(int32_t, void *handle, int32_t n, int32_t *r, int32_t all,
                                      int32_t sample_size, int32_t marked)
{
    return on_stream(handle, [&](stream &s) { return hypergeometric(s, n, r, all, sample_size, marked); });
}
