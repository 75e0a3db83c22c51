// Discrete distributions against Boost.Math's distribution functions: a chi-square test and the mean, at
// fixed seeds.
#include "vsl_distributions.h"

#include <boost/math/distributions.hpp>

namespace {

using namespace distributions;
namespace bm = boost::math;

struct discrete_case {
    std::string name;
    generator<int32_t> draw;
    std::function<double(double)> cdf; // of integers
    double mean, deviation, low, high;
};

template <class Law>
std::function<double(double)> cdf_of(const Law &law)
{
    return [=](double k) { return k < 0 ? 0 : bm::cdf(law, k); };
}

template <class Law>
discrete_case make(const std::string &name, generator<int32_t> draw, const Law &law, double low,
                   double high)
{
    return {name, std::move(draw), cdf_of(law), bm::mean(law), bm::standard_deviation(law), low, high};
}

void add_trials(std::vector<discrete_case> &cases)
{
    for (const double p : {1e-4, .3, .5, .999}) {
        cases.push_back(make("Bernoulli", with<int32_t>("Bernoulli", 0, p), bm::bernoulli(p), 0, 1));
        cases.push_back(
            make("Geometric", with<int32_t>("Geometric", 0, p), bm::geometric(p), 0, INT32_MAX));
        for (const int32_t trials : {1, 5, 30, 1000, 1000000, INT32_MAX})
            cases.push_back(make("Binomial of " + std::to_string(trials),
                                 with<int32_t>("Binomial", 0, trials, p), bm::binomial(trials, p), 0,
                                 trials));
    }
    for (const double p : {.01, .3, .9})
        for (const int32_t successes : {1, 2, 7, 1000})
            cases.push_back(make("NegBinomial of " + std::to_string(successes),
                                 with<int32_t>("NegBinomial", 0, successes, p),
                                 bm::negative_binomial(successes, p), 0, INT32_MAX));
}

struct lot {
    int32_t all, drawn, marked;
};

void add_lots(std::vector<discrete_case> &cases)
{
    // Both small and large means, more and less than half of all drawn and marked
    for (const lot &each : {lot{50, 10, 5},
                            {50, 40, 45},
                            {1000, 300, 10},
                            {1000, 300, 400},
                            {1000, 700, 400},
                            {1000, 300, 800},
                            {1000, 900, 950},
                            {20000, 9000, 11000}}) {
        const bm::hypergeometric law(static_cast<uint64_t>(each.marked), static_cast<uint64_t>(each.drawn),
                                     static_cast<uint64_t>(each.all));
        const double low = std::max(0, each.drawn + each.marked - each.all);
        cases.push_back({"Hypergeometric of " + std::to_string(each.all),
                         with<int32_t>("Hypergeometric", 0, each.all, each.drawn, each.marked),
                         [=](double k) { return k < low ? 0 : bm::cdf(law, k); }, bm::mean(law),
                         bm::standard_deviation(law), low,
                         static_cast<double>(std::min(each.drawn, each.marked))});
    }
    // So few of so many are drawn that it does not matter whether they are put back.
    cases.push_back(make("Hypergeometric of most",
                         with<int32_t>("Hypergeometric", 0, INT32_MAX, 1000, INT32_MAX / 2),
                         bm::binomial(1000, .5), 0, 1000));
}

std::vector<discrete_case> all_cases()
{
    std::vector<discrete_case> cases;
    add_trials(cases);
    add_lots(cases);
    for (const double rate : {1e-6, .2, 1., 9.99, 10., 30., 500., 1e6, 1e9}) {
        for (const int32_t method : {0, 1})
            cases.push_back(make("Poisson method " + std::to_string(method) + " of " + std::to_string(rate),
                                 with<int32_t>("Poisson", method, rate), bm::poisson(rate), 0, INT32_MAX));
        static std::vector<double> rates[16];
        std::vector<double> &each = rates[cases.size() % 16];
        each.assign(100000, rate);
        cases.push_back(make("PoissonV of " + std::to_string(rate),
                             with<int32_t>("PoissonV", 0, static_cast<const double *>(each.data())),
                             bm::poisson(rate), 0, INT32_MAX));
    }
    for (const auto &[a, b] : {std::pair(-3, 4), {0, 1}, {-1000000, 2000000}, {INT32_MIN, INT32_MAX}}) {
        const double low = a, width = static_cast<double>(b) - a;
        cases.push_back({"Uniform", with<int32_t>("Uniform", 0, a, b),
                         [=](double k) { return std::clamp((k + 1 - low) / width, 0., 1.); },
                         low + (width - 1) / 2, std::sqrt((width * width - 1) / 12), low, low + width - 1});
    }
    return cases;
}

/// Ends of bins in which enough results are expected, as numbers of results up to there
std::vector<double> bins(const discrete_case &each, double n)
{
    const double step = std::max(1., std::floor(each.deviation / 6));
    const double first = std::max(each.low, std::floor(each.mean - 8 * each.deviation - step)),
                 end = std::min(each.high, std::ceil(each.mean + 8 * each.deviation + step));
    std::vector<double> ends;
    double before = 0;
    for (double k = first; k < end; k += step) {
        const double p = each.cdf(k);
        if ((p - before) * n < 10 || (1 - p) * n < 10)
            continue;
        ends.push_back(k);
        before = p;
    }
    return ends;
}

double chi_square_probability(const discrete_case &each, const std::vector<int32_t> &sorted)
{
    const auto n = static_cast<double>(sorted.size());
    std::vector<double> ends = bins(each, n);
    double sum = 0, count_before = 0, p_before = 0;
    ends.push_back(each.high);
    for (const double end : ends) {
        const auto up_to = static_cast<double>(
            std::upper_bound(sorted.begin(), sorted.end(), static_cast<int32_t>(end)) - sorted.begin());
        const double p = end == each.high ? 1 : each.cdf(end), expected = n * (p - p_before);
        sum += (up_to - count_before - expected) * (up_to - count_before - expected) / expected;
        count_before = up_to;
        p_before = p;
    }
    const auto freedom = static_cast<double>(ends.size() - 1);
    return freedom > 0 ? bm::cdf(bm::complement(bm::chi_squared(freedom), sum)) : 1;
}

void check(const discrete_case &each, std::vector<int32_t> r)
{
    const auto n = static_cast<double>(r.size());
    double mean = 0;
    for (const int32_t k : r) {
        if (k < each.low || k > each.high)
            FAIL() << k << " is out of bounds";
        mean += k / n;
    }
    EXPECT_NEAR(mean, each.mean, 4.5 * each.deviation / std::sqrt(n) + 1e-9 * std::abs(each.mean));
    std::sort(r.begin(), r.end());
    EXPECT_GT(chi_square_probability(each, r), 3e-4);
}

TEST(Discrete, HaveTheirDistributions)
{
    for (const discrete_case &each : all_cases()) {
        SCOPED_TRACE(each.name + " mean " + std::to_string(each.mean));
        stream s;
        check(each, drawn(each.draw, s, 100000));
    }
}

TEST(Discrete, MultinomialRowsAddUpAndEachClassIsBinomial)
{
    const std::vector<double> p = {.1, 0, .25, .05, .6, 0};
    for (const int32_t trials : {0, 1, 12, 500, 1000000}) {
        SCOPED_TRACE(trials);
        constexpr int32_t n = 20000;
        const auto classes = static_cast<int32_t>(p.size());
        stream s;
        const std::vector<int32_t> r =
            drawn(with<int32_t>("Multinomial", 0, trials, classes, p.data()), s, n, p.size());
        for (size_t row = 0; row < n; ++row) {
            int64_t sum = 0;
            for (size_t i = 0; i < p.size(); ++i)
                sum += r[row * p.size() + i];
            ASSERT_EQ(sum, trials);
        }
        for (size_t i = 0; i < p.size(); ++i) {
            std::vector<int32_t> of_class;
            for (size_t row = 0; row < n; ++row)
                of_class.push_back(r[row * p.size() + i]);
            const bm::binomial law(trials, p[i]);
            check(make("", {}, law, 0, trials), of_class);
        }
    }
}

TEST(Discrete, MultinomialWantsProbabilities)
{
    stream s;
    const double nan = std::nan("");
    for (const std::vector<double> &p : {std::vector{.5, .6}, {1.5, -.5}, {.2, nan}, {.4, .4}, {0., 0.}}) {
        int32_t r[2] = {-7, -7};
        EXPECT_EQ(with<int32_t>("Multinomial", 0, 5, 2, p.data())(s, 1, r),
                  VSL_DISTR_MULTINOMIAL_BAD_PROBABILITY_ARRAY);
        EXPECT_EQ(r[0], -7);
    }
}

TEST(Discrete, CertainResults)
{
    stream s;
    const auto all_are = [&](const generator<int32_t> &draw, int32_t wanted) {
        for (const int32_t r : drawn(draw, s, 100))
            ASSERT_EQ(r, wanted);
    };
    all_are(with<int32_t>("Bernoulli", 0, 0.), 0);
    all_are(with<int32_t>("Bernoulli", 0, 1.), 1);
    all_are(with<int32_t>("Binomial", 0, 77, 0.), 0);
    all_are(with<int32_t>("Binomial", 0, 77, 1.), 77);
    all_are(with<int32_t>("Binomial", 0, 0, .5), 0);
    all_are(with<int32_t>("Hypergeometric", 0, 0, 0, 0), 0);
    all_are(with<int32_t>("Hypergeometric", 0, 90, 90, 40), 40);
    all_are(with<int32_t>("Hypergeometric", 0, 90, 40, 90), 40);
    all_are(with<int32_t>("Hypergeometric", 0, INT32_MAX, INT32_MAX, INT32_MAX), INT32_MAX);
    all_are(with<int32_t>("Uniform", 0, 5, 6), 5);
    // What is too large for an integer is cut to it.
    all_are(with<int32_t>("Geometric", 0, 1e-300), INT32_MAX);
    all_are(with<int32_t>("NegBinomial", 0, 3, 1e-300), INT32_MAX);
    all_are(with<int32_t>("Poisson", 0, 1e300), INT32_MAX);
    all_are(with<int32_t>("Poisson", 1, 3e9), INT32_MAX);
    all_are(with<int32_t>("Poisson", 0, 3e9), INT32_MAX);
}

TEST(Discrete, ParametersThatAreNoNumbersAreRefused)
{
    const double nan = std::nan("");
    const std::vector<double> rates = {1, nan, 2};
    stream s;
    int32_t r[3] = {-7, -7, -7};
    for (const auto &draw : {with<int32_t>("Bernoulli", 0, nan), with<int32_t>("Geometric", 0, nan),
                             with<int32_t>("Binomial", 0, 5, nan), with<int32_t>("NegBinomial", 0, 5, nan),
                             with<int32_t>("Poisson", 0, nan), with<int32_t>("Poisson", 1, nan),
                             with<int32_t>("PoissonV", 0, rates.data())}) {
        EXPECT_EQ(draw(s, 3, r), VSL_ERROR_BADARGS);
        EXPECT_EQ(r[0], -7);
    }
}

TEST(Discrete, PoissonByNormalNumbersIsTheInverseFunction)
{
    std::vector<double> u;
    for (double each = 0x1p-31; each < .5; each *= 1.21) {
        u.push_back(std::round(each * 0x1p32) * 0x1p-32);
        u.push_back(1 - u.back());
    }
    for (const double rate : {.5, 9., 10., 11.5, 100., 12345.6, 1e7}) {
        const bm::poisson law(rate);
        stream s(u);
        const auto r = drawn(with<int32_t>("Poisson", 1, rate), s, static_cast<int32_t>(u.size()));
        for (size_t i = 0; i < u.size(); ++i) { // the stream's number is at most half a step from u
            EXPECT_GE(bm::cdf(law, r[i]), u[i] - 0x1p-33) << rate;
            if (r[i] > 0) {
                EXPECT_LE(bm::cdf(law, r[i] - 1), u[i] + 0x1p-32) << rate;
            }
        }
    }
}

} // namespace
