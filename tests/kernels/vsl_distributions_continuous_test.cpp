// Continuous distributions against Boost.Math's distribution functions: the Kolmogorov-Smirnov statistic,
// mean and variance, in both precisions and with all instruction sets, at fixed seeds.
#include "vsl_distributions.h"

#include <boost/math/distributions.hpp>

namespace {

using namespace distributions;
namespace bm = boost::math;
constexpr int32_t accurate = VSL_RNG_METHOD_ACCURACY_FLAG;
constexpr double inf = std::numeric_limits<double>::infinity();

/// The law of (x - a)/beta
struct law {
    std::function<double(double)> cdf;
    double mean, variance, kurtosis, low, high; // NaN: none
};

template <class Law>
law of(const Law &each)
{
    return {[=](double x) {
                return x <= bm::support(each).first    ? 0.
                       : x >= bm::support(each).second ? 1.
                                                       : bm::cdf(each, x);
            },
            bm::mean(each),
            bm::variance(each),
            bm::kurtosis(each),
            bm::range(each).first,
            bm::range(each).second};
}

law of_cauchy()
{
    const double none = std::nan("");
    return {[](double x) { return bm::cdf(bm::cauchy(), x); }, none, none, none, -inf, inf};
}

/// The largest of many, mirrored
law of_gumbel()
{
    const bm::extreme_value largest;
    return {[=](double x) { return bm::cdf(bm::complement(largest, -x)); },
            -bm::mean(largest),
            bm::variance(largest),
            bm::kurtosis(largest),
            -inf,
            inf};
}

struct continuous_case {
    std::string name;
    generator<double> doubles;
    generator<float> floats, accurate_floats;
    double a, beta;
    law standard;
};

template <class... P>
continuous_case make(const std::string &name, int32_t method, const law &standard, double a, double beta,
                     P... parameters)
{
    return {name + " method " + std::to_string(method),
            with<double>(name, method, static_cast<double>(parameters)...),
            with<float>(name, method, static_cast<float>(parameters)...),
            with<float>(name, method | accurate, static_cast<float>(parameters)...),
            a,
            beta,
            standard};
}

void add_shapes(std::vector<continuous_case> &cases)
{
    for (const double alpha : {.5, 1., 2.5, 50.})
        cases.push_back(make("Weibull", 0, of(bm::weibull(alpha)), 1, 3, alpha, 1., 3.));
    for (const double alpha : {.02, .3, .99, 1., 1.01, 2., 10., 1000., 1e7})
        cases.push_back(make("Gamma", 0, of(bm::gamma_distribution<>(alpha)), 0, 2, alpha, 0., 2.));
    cases.push_back(make("Gamma", 0, of(bm::gamma_distribution<>(3)), -3, .5, 3., -3., .5));
    for (const auto &[p, q] : {std::pair(.02, .03),
                               {.5, .5},
                               {.3, 4.},
                               {4., .3},
                               {1., 1.},
                               {1., 3.},
                               {3., 1.},
                               {1e-3, 1e3},
                               {.5, 1e4},
                               {1.01, 1.02},
                               {2., 3.},
                               {30., 2.},
                               {300., 500.},
                               {1e6, 2e6}})
        cases.push_back(make("Beta", 0, of(bm::beta_distribution<>(p, q)), 0, 1, p, q, 0., 1.));
    cases.push_back(make("Beta", 0, of(bm::beta_distribution<>(2, 3)), -1, 5, 2., 3., -1., 5.));
    for (const int32_t degrees : {1, 2, 3, 30, 100000})
        cases.push_back({"ChiSquare", with<double>("ChiSquare", 0, degrees),
                         with<float>("ChiSquare", 0, degrees), with<float>("ChiSquare", accurate, degrees),
                         0, 1, of(bm::chi_squared(degrees))});
}

std::vector<continuous_case> all_cases()
{
    std::vector<continuous_case> cases = {
        make("Uniform", 0, of(bm::uniform()), -2, 5, -2., 3.),
        make("Exponential", 0, of(bm::exponential()), 1, .5, 1., .5),
        make("Rayleigh", 0, of(bm::rayleigh(std::sqrt(.5))), -1, 2, -1., 2.),
        make("Laplace", 0, of(bm::laplace()), 1, 2, 1., 2.),
        make("Cauchy", 0, of_cauchy(), 1, 2, 1., 2.),
        make("Gumbel", 0, of_gumbel(), 1, 2, 1., 2.),
    };
    for (const int32_t method : {0, 1, 2})
        cases.push_back(make("Gaussian", method, of(bm::normal()), -1, 2.5, -1., 2.5));
    for (const int32_t method : {0, 1})
        for (const double sigma : {.01, .5, 1.})
            cases.push_back(
                make("Lognormal", method, of(bm::lognormal(.25, sigma)), 2, 4, .25, sigma, 2., 4.));
    add_shapes(cases);
    return cases;
}

/// The largest distance of the two distribution functions, which has nearly one distribution times sqrt(n).
/// Where many numbers are equal, rounding has moved them: there the law may be anywhere in the step.
double distance(const std::vector<double> &sorted, const law &standard)
{
    const auto n = static_cast<double>(sorted.size());
    constexpr ptrdiff_t stride = 5; // Boost's functions take their time
    double largest = 0;
    for (auto at = sorted.begin(); sorted.end() - at >= stride; at += stride) {
        const auto [first, last] = std::equal_range(sorted.begin(), sorted.end(), *at);
        const double p = standard.cdf(*at), before = static_cast<double>(first - sorted.begin()) / n,
                     behind = static_cast<double>(last - sorted.begin()) / n;
        const bool alone = last - first == 1;
        largest = std::max({largest, alone ? p - before : before - p, alone ? behind - p : p - behind});
    }
    return largest;
}

void check_moments(const std::vector<double> &x, const law &standard)
{
    if (std::isnan(standard.mean))
        return;
    const auto n = static_cast<double>(x.size());
    double mean = 0, variance = 0;
    for (const double each : x)
        mean += each / n;
    for (const double each : x)
        variance += (each - mean) * (each - mean) / (n - 1);
    EXPECT_NEAR(mean, standard.mean, 4.5 * std::sqrt(standard.variance / n));
    if (standard.kurtosis < 50) { // else the sample's variance says little
        EXPECT_NEAR(variance / standard.variance, 1, 4.5 * std::sqrt((standard.kurtosis - 1) / n));
    }
}

template <class R>
void check(const continuous_case &each, const generator<R> &draw, double a, double beta)
{
    constexpr int32_t n = 40000;
    stream s;
    const std::vector<R> r = drawn(draw, s, n);
    std::vector<double> x(r.begin(), r.end());
    for (double &value : x) {
        if (!(value >= a + beta * each.standard.low &&
              value <= static_cast<R>(a + beta * each.standard.high)))
            FAIL() << value << " is out of bounds";
        value = (value - a) / beta;
    }
    check_moments(x, each.standard);
    std::sort(x.begin(), x.end());
    EXPECT_LT(distance(x, each.standard) * std::sqrt(n), 2.0); // once in 1,500 seeds
}

TEST(Continuous, HaveTheirDistributions)
{
    for (const continuous_case &each : all_cases()) {
        SCOPED_TRACE(each.name + " mean " + std::to_string(each.standard.mean) + " variance " +
                     std::to_string(each.standard.variance));
        check(each, each.doubles, each.a, each.beta);
        check(each, each.floats, each.a, each.beta);
    }
}

// Every method keeps its results inside of the bounds, as `check` tests.
TEST(Continuous, TheFlagOfAccuracyChangesNothing)
{
    for (const continuous_case &each : all_cases()) {
        SCOPED_TRACE(each.name);
        stream s, another;
        EXPECT_EQ(drawn(each.floats, s, 300), drawn(each.accurate_floats, another, 300));
    }
}

TEST(Continuous, LastBitsAloneDifferBetweenInstructionSets)
{
    for (const continuous_case &each : all_cases()) {
        SCOPED_TRACE(each.name);
        std::vector<std::vector<double>> of_set;
        for (int set = 0; set <= newest_set && limit_set(set) == set; ++set) {
            stream s;
            of_set.push_back(drawn(each.doubles, s, 1000));
        }
        for (size_t set = 1; set < of_set.size(); ++set)
            for (size_t i = 0; i < 1000; ++i)
                ASSERT_NEAR(of_set[set][i], of_set[0][i], 1e-11 * (std::abs(of_set[0][i]) + each.beta));
    }
    limit_set(newest_set);
}

struct inverse_case {
    const char *name;
    int32_t method;
    std::function<double(double)> quantile; // of the uniform number u
};

TEST(Continuous, InversesAreThoseOfBoost)
{
    const bm::normal normal(1, 2);
    const bm::laplace laplace(1, 2);
    const bm::cauchy cauchy(1, 2);
    const inverse_case cases[] = {
        {"Gaussian", 2, [&](double u) { return bm::quantile(normal, u); }},
        {"Laplace", 0, [&](double u) { return bm::quantile(laplace, u); }},
        {"Cauchy", 0, [&](double u) { return bm::quantile(cauchy, u); }},
        {"Exponential", 0, [](double u) { return 1 - 2 * std::log(u); }},
        {"Rayleigh", 0, [](double u) { return 1 + 2 * std::sqrt(-std::log(u)); }},
        {"Gumbel", 0, [](double u) { return 1 + 2 * std::log(-std::log(u)); }},
    };
    // A stream of numbers that go to both ends
    std::vector<double> u;
    for (double each = 0x1p-32; each < .5; each *= 1.37) {
        u.push_back(std::round(each * 0x1p32) * 0x1p-32);
        u.push_back(1 - u.back());
    }
    const auto n = static_cast<int32_t>(u.size());
    for (int set = 0; set <= newest_set && limit_set(set) == set; ++set)
        for (const inverse_case &each : cases) {
            SCOPED_TRACE(each.name);
            stream s(u);
            const std::vector<double> r = drawn(with<double>(each.name, each.method, 1., 2.), s, n);
            for (size_t i = 0; i < u.size();
                 ++i) { // the open interval's numbers are half a step apart from u
                const double x = each.quantile(u[i]), step = std::abs(each.quantile(u[i] + 0x1p-33) - x) +
                                                             std::abs(each.quantile(u[i] - 0x1p-33) - x);
                ASSERT_NEAR(r[i], x, step + 1e-13 * std::abs(x)) << u[i];
            }
        }
    limit_set(newest_set);
}

template <class R>
void expect_no_numbers(const std::vector<R> &r)
{
    for (const R each : r)
        EXPECT_TRUE(std::isnan(each)) << each;
}

TEST(Continuous, ParametersThatAreNoNumbersGiveNone)
{
    const double nan = std::nan("");
    stream s;
    for (const char *name :
         {"Uniform", "Gaussian", "Exponential", "Laplace", "Cauchy", "Rayleigh", "Gumbel"}) {
        SCOPED_TRACE(name);
        expect_no_numbers(drawn(with<double>(name, 0, nan, 1.), s, 9));
        expect_no_numbers(drawn(with<float>(name, 0, 1.F, static_cast<float>(nan)), s, 9));
    }
    expect_no_numbers(drawn(with<double>("Weibull", 0, nan, 0., 1.), s, 9));
    expect_no_numbers(drawn(with<double>("Lognormal", 1, 1., nan, 0., 1.), s, 9));
    for (const double shape : {nan, inf}) {
        expect_no_numbers(drawn(with<double>("Gamma", 0, shape, 0., 1.), s, 9));
        expect_no_numbers(drawn(with<double>("Beta", 0, 2., shape, 0., 1.), s, 9));
        expect_no_numbers(drawn(with<float>("Beta", 0, static_cast<float>(shape), 2.F, 0.F, 1.F), s, 9));
    }
}

TEST(Continuous, ExtremeShapes)
{
    stream s;
    for (const double shape : {1e-300, 1e-5, 1e15, 1e300}) {
        for (const double r : drawn(with<double>("Gamma", 0, shape, 2., 1.), s, 1000))
            ASSERT_TRUE(r >= 2 && r <= 2 + 2 * shape + 100) << shape << ' ' << r;
        for (const double other : {1e-300, 1., 1e300})
            for (const double r : drawn(with<double>("Beta", 0, shape, other, 2., 1.), s, 1000))
                ASSERT_TRUE(r >= 2 && r <= 3) << shape << ' ' << other << ' ' << r;
    }
    for (const double r : drawn(with<double>("Beta", 0, 1e-3, 1e300, 0., 1.), s, 1000))
        ASSERT_LT(r, 1e-200);
    // Uniform numbers of an interval as narrow as can be
    for (const float r : drawn(with<float>("Uniform", accurate, 1.F, std::nextafter(1.F, 2.F)), s, 1000))
        ASSERT_EQ(r, 1);
}

// With two small shapes nearly all results are at one end or the other, in the ratio of the shapes.
TEST(Continuous, SmallShapesOfBeta)
{
    const double shapes[][2] = {{1e-2, 1e-2},  {1e-3, 1e-3},     {1e-3, 4e-3},    {4e-5, 1e-5},
                                {1e-5, 1e-12}, {1e-300, 3e-300}, {3e-310, 1e-310}};
    for (int set = 0; set <= newest_set && limit_set(set) == set; ++set)
        for (const auto &[p, q] : shapes) {
            stream s;
            const std::vector<double> r = drawn(with<double>("Beta", 0, p, q, 0., 1.), s, 20000);
            const auto at_one = std::ranges::count_if(r, [](double x) { return x > .5; });
            EXPECT_NEAR(static_cast<double>(at_one) / 20000, p / (p + q), .016) << p << ' ' << q;
        }
    limit_set(newest_set);
}

} // namespace
