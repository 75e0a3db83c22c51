// Binomial and multinomial distributions.
#include "vsl/distributions/discrete_laws.h"
#include "vsl/distributions/transformed_rejection.h"

#include <cmath>

using namespace xkl::vsl;

namespace {

/// p <= 1/2
int32_t binomial_of_rare(uniform_reader &u, int32_t trials, double p)
{
    return trials * p < small_mean ? add_up(binomial_law{trials, p}, u.next())
                                   : binomial_rejection(trials, p)(u);
}

int32_t binomial_number(uniform_reader &u, int32_t trials, double p)
{
    return p <= .5 ? binomial_of_rare(u, trials, p) : trials - binomial_of_rare(u, trials, 1 - p);
}

int32_t binomial(stream &s, int64_t n, int32_t *r, int32_t trials, double p)
{
    if (std::isnan(p))
        return VSL_ERROR_BADARGS;
    const double rare = std::min(p, 1 - p);
    const auto run = [&](const auto &number) {
        return p <= .5 ? sample(s, n, r, number)
                       : sample(s, n, r, [&](uniform_reader &u) { return trials - number(u); });
    };
    return trials * rare < small_mean ? run(sums_of_law(binomial_law{trials, rare}))
                                      : run(binomial_rejection(trials, rare));
}

bool are_probabilities(const double *p, int32_t classes)
{
    constexpr double tolerance = 1e-8; // sums of floats, or of printed numbers
    double sum = 0;
    for (int32_t i = 0; i < classes; ++i) {
        if (!(p[i] >= 0))
            return false;
        sum += p[i];
    }
    return std::fabs(sum - 1) <= tolerance;
}

/// One row: each class has its binomial share of the trials that those before it left. The last class that
/// has a probability takes the rest, whatever rounding made of the probabilities' sum.
void multinomial_row(uniform_reader &u, int32_t *row, int32_t trials, int32_t classes, int32_t last,
                     const double *p)
{
    double remaining = 1;
    for (int32_t i = 0; i < classes; ++i) {
        if (trials == 0 || i > last)
            row[i] = 0;
        else if (i == last)
            row[i] = trials;
        else
            row[i] = binomial_number(u, trials, remaining > 0 ? std::min(p[i] / remaining, 1.) : 1);
        trials -= row[i];
        remaining -= p[i];
    }
}

int32_t multinomial(stream &s, int64_t n, int32_t *r, int32_t trials, int32_t classes, const double *p)
{
    if (!are_probabilities(p, classes))
        return VSL_DISTR_MULTINOMIAL_BAD_PROBABILITY_ARRAY;
    int32_t last = classes - 1;
    while (p[last] == 0)
        --last;
    uniform_reader u(s, n, trials > 0 && last > 0 ? 1 : 0);
    for (int64_t row = 0; row < n && u.status() >= 0; ++row) {
        multinomial_row(u, r + row * classes, trials, classes, last, p);
        u.finish();
    }
    return u.status();
}

} // namespace

XKL_VSL_KERNEL _vsliRngBinomial(int32_t, void *handle, int32_t n, int32_t *r, int32_t trials, double p)
{
    return on_stream(handle, [&](stream &s) { return binomial(s, n, r, trials, p); });
}

XKL_VSL_KERNEL _vsliRngMultinomial(int32_t, void *handle, int32_t n, int32_t *r, int32_t trials,
                                   int32_t classes, const double *p)
{
    return on_stream(handle, [&](stream &s) { return multinomial(s, n, r, trials, classes, p); });
}
