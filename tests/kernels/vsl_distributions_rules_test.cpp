// What holds for all distributions: where they write, how many numbers they take from their stream, and
// what becomes of a failure of the stream.
#include "vsl_distributions.h"

#include <limits>
#include <span>

namespace {

using namespace distributions;

constexpr double mean_vector[] = {1, 2}, triangle[] = {1, 0, .5, 2}, shares[] = {.5, .2, .3};
constexpr float mean_floats[] = {1, 2}, triangle_floats[] = {1, 0, .5, 2};
const std::vector<double> rates(2000, 12.); // equal ones, so that calls can be cut

/// Any kernel, with parameters of the usual kind
struct any_kernel {
    std::string name;
    std::function<int32_t(stream &, int32_t, char *)> draw;
    size_t bytes;    // of one result
    int uniform = 0; // numbers that one result takes from the stream; 0: now more, now less
};

template <class R, class... P>
any_kernel any(const char *name, int32_t method, int uniform, P... parameters)
{
    const generator<R> draw = with<R>(name, method, parameters...);
    return {std::string(name) + (sizeof(R) == 4 ? " 4 bytes" : " 8 bytes") + ", method " +
                std::to_string(method),
            [=](stream &s, int32_t n, char *r) { return draw(s, n, reinterpret_cast<R *>(r)); }, sizeof(R),
            uniform};
}

template <class R>
void add_real(std::vector<any_kernel> &all)
{
    const R one = 1, two = 2, half = R(.5);
    for (const char *name : {"Uniform", "Exponential", "Laplace", "Cauchy", "Rayleigh", "Gumbel"})
        all.push_back(any<R>(name, 0, 1, one, two));
    all.push_back(any<R>("Gaussian", 0, 2, one, two));
    all.push_back(any<R>("Gaussian", 2, 1, one, two));
    all.push_back(any<R>("Lognormal", 1, 1, one, two, one, two));
    all.push_back(any<R>("Weibull", 0, 1, half, one, two));
    all.push_back(any<R>("Gamma", 0, 0, half, one, two));
    all.push_back(any<R>("Gamma", 0, 0, two, one, two));
    all.push_back(any<R>("Beta", 0, 0, half, two, one, two));
    all.push_back(any<R>("ChiSquare", 0, 0, 5));
}

void add_integers(std::vector<any_kernel> &all)
{
    all.push_back(any<int32_t>("Uniform", 0, 1, 1, 9));
    all.push_back(any<int32_t>("Bernoulli", 0, 1, .5));
    all.push_back(any<int32_t>("Geometric", 0, 1, .1));
    all.push_back(any<int32_t>("Binomial", 0, 1, 10, .3));
    all.push_back(any<int32_t>("Binomial", 0, 0, 1000, .3));
    all.push_back(any<int32_t>("NegBinomial", 0, 0, 7, .3));
    all.push_back(any<int32_t>("Hypergeometric", 0, 1, 100, 10, 20));
    all.push_back(any<int32_t>("Hypergeometric", 0, 0, 1000, 300, 200));
    all.push_back(any<int32_t>("Poisson", 0, 1, 3.));
    all.push_back(any<int32_t>("Poisson", 0, 0, 30.));
    all.push_back(any<int32_t>("Poisson", 1, 1, 30.));
    all.push_back(any<int32_t>("PoissonV", 0, 1, rates.data()));
}

std::vector<any_kernel> all_kernels()
{
    std::vector<any_kernel> all;
    add_real<double>(all);
    add_real<float>(all);
    add_integers(all);
    for (const int32_t method : {0, 2}) {
        all.push_back(
            any<double>("GaussianMV", method, method ? 2 : 4, 2, 0, &mean_vector[0], &triangle[0]));
        all.push_back(
            any<float>("GaussianMV", method, method ? 2 : 4, 2, 0, &mean_floats[0], &triangle_floats[0]));
        for (size_t i = all.size() - 2; i < all.size(); ++i)
            all[i].bytes *= 2;
    }
    all.push_back(any<int32_t>("Multinomial", 0, 0, 100, 3, &shares[0]));
    all.back().bytes *= 3;
    return all;
}

/// Those whose result takes two numbers a pair
std::vector<any_kernel> kernels_of_pairs()
{
    return {any<double>("Gaussian", 1, 1, 1., 2.), any<float>("Gaussian", 1, 1, 1.F, 2.F),
            any<double>("Lognormal", 0, 1, 1., 2., 1., 2.),
            any<float>("Lognormal", 0, 1, 1.F, 2.F, 1.F, 2.F)};
}

constexpr char untouched = 0x5a;

std::vector<char> drawn_bytes(const any_kernel &kernel, stream &s, int32_t n, size_t room_behind = 64)
{
    std::vector<char> r(static_cast<size_t>(n) * kernel.bytes + room_behind, untouched);
    EXPECT_EQ(kernel.draw(s, n, r.data()), VSL_STATUS_OK);
    for (size_t i = r.size() - room_behind; i < r.size(); ++i)
        EXPECT_EQ(r[i], untouched);
    r.resize(r.size() - room_behind);
    return r;
}

/// What n results of a kernel and then a few uniform numbers are
std::vector<char> cut_at(const any_kernel &kernel, int32_t first, int32_t n)
{
    stream s;
    std::vector<char> r = first > 0 ? drawn_bytes(kernel, s, first) : std::vector<char>();
    for (const auto &part :
         {drawn_bytes(kernel, s, n - first), drawn_bytes(any<double>("Uniform", 0, 1, 0., 1.), s, 3)})
        r.insert(r.end(), part.begin(), part.end());
    return r;
}

TEST(DistributionRules, CallsMayBeCutAnywhereAndNothingIsWrittenBehindTheirEnd)
{
    constexpr int32_t n = 1500; // blocks of several sizes
    const auto check = [](const any_kernel &kernel, std::initializer_list<int32_t> cuts) {
        SCOPED_TRACE(kernel.name);
        const std::vector<char> whole = cut_at(kernel, 0, n);
        for (const int32_t cut : cuts)
            EXPECT_EQ(cut_at(kernel, cut, n), whole) << cut;
    };
    for (const any_kernel &kernel : all_kernels())
        check(kernel, {1, 2, 3, 7, 17, 511, 512, 513, 1499});
    for (const any_kernel &kernel : kernels_of_pairs())
        check(kernel, {2, 4, 18, 512, 1024});
}

TEST(DistributionRules, UniformNumbersTakenAreThoseOfTheMethod)
{
    const auto check = [](const any_kernel &kernel) {
        if (kernel.uniform == 0)
            return;
        SCOPED_TRACE(kernel.name);
        const any_kernel uniform = any<double>("Uniform", 0, 1, 0., 1.);
        constexpr int32_t n = 1030;
        stream s, plain;
        drawn_bytes(kernel, s, n);
        drawn_bytes(uniform, plain, n * kernel.uniform);
        EXPECT_EQ(drawn_bytes(uniform, s, 5), drawn_bytes(uniform, plain, 5));
    };
    for (const any_kernel &kernel : all_kernels())
        check(kernel);
    for (const any_kernel &kernel : kernels_of_pairs())
        check(kernel);
}

int refuse(VSLStreamStatePtr, int *, double *, int *, int *, int *)
{
    return 0;
}

TEST(DistributionRules, AFailureOfTheStreamEndsTheCall)
{
    const std::vector<double> numbers(100, .4); // fewer than the call takes
    for (const auto &kernels : {all_kernels(), kernels_of_pairs()})
        for (const any_kernel &kernel : kernels) {
            SCOPED_TRACE(kernel.name);
            stream s(numbers, refuse);
            std::vector<char> r(1000 * kernel.bytes + 64, untouched);
            EXPECT_EQ(kernel.draw(s, 1000, r.data()), VSL_RNG_ERROR_NO_NUMBERS);
            EXPECT_EQ(r.back(), untouched);
        }
}

TEST(DistributionRules, AStreamThatRepeatsItselfHangsNoCall)
{
    for (const double number : {0., 1e-9, .5, 1 - 0x1p-32})
        for (const any_kernel &kernel : all_kernels()) {
            SCOPED_TRACE(kernel.name);
            const std::vector<double> numbers(64, number);
            stream s(numbers);
            std::vector<char> r(10 * kernel.bytes);
            const int32_t status = kernel.draw(s, 10, r.data());
            EXPECT_TRUE(status == VSL_STATUS_OK || status == VSL_ERROR_UNKNOWN) << status;
        }
}

TEST(DistributionRules, DeadStreamsAndUnknownMethodsAreRefused)
{
    double r[4] = {-7, -7, -7, -7};
    const auto gaussian =
        vsl_entry<int32_t(int32_t, void *, int32_t, double *, double, double)>("_vsldRngGaussian");
    char dead[64] = {};
    EXPECT_EQ(gaussian(0, nullptr, 4, r, 0, 1), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(gaussian(0, dead, 4, r, 0, 1), VSL_RNG_ERROR_BAD_STREAM);
    stream s;
    EXPECT_EQ(gaussian(3, s, 4, r, 0, 1), VSL_ERROR_BADARGS);
    EXPECT_EQ(gaussian(-1, s, 4, r, 0, 1), VSL_ERROR_BADARGS);
    EXPECT_EQ(r[0], -7);
}

template <class R>
void check_storages(int32_t method)
{
    constexpr int32_t dimension = 3, n = 701;
    const R a[] = {1, -2, 3}, garbage = std::numeric_limits<R>::quiet_NaN();
    const R full[] = {2, garbage, garbage, R(.5), 1, garbage, -1, R(.25), 3},
            packed[] = {2, R(.5), 1, -1, R(.25), 3}, diagonal[] = {2, 1, 3};
    const R no_factor[] = {1, 1, 1}, no_mean[] = {0, 0, 0};
    const auto rows = [&](int32_t storage, const R *mean, const R *t) {
        stream s;
        return drawn(with<R>("GaussianMV", method, dimension, storage, mean, t), s, n, dimension);
    };
    const std::vector<R> standard = rows(VSL_MATRIX_STORAGE_DIAGONAL, no_mean, no_factor),
                         by_full = rows(VSL_MATRIX_STORAGE_FULL, a, full),
                         by_packed = rows(VSL_MATRIX_STORAGE_PACKED, a, packed),
                         by_diagonal = rows(VSL_MATRIX_STORAGE_DIAGONAL, a, diagonal);
    stream s;
    EXPECT_EQ(standard, drawn(with<R>("Gaussian", method, R(0), R(1)), s, n * dimension));
    for (size_t row = 0; row < n; ++row) {
        const R *const z = &standard[row * dimension];
        for (size_t i = 0; i < dimension; ++i) {
            double x = a[i];
            for (size_t j = 0; j <= i; ++j)
                x += static_cast<double>(full[i * dimension + j]) * z[j];
            const double near = 20 * static_cast<double>(std::numeric_limits<R>::epsilon());
            ASSERT_NEAR(by_full[row * dimension + i], x, near);
            ASSERT_EQ(by_packed[row * dimension + i], by_full[row * dimension + i]);
            ASSERT_NEAR(by_diagonal[row * dimension + i], a[i] + diagonal[i] * z[i], near);
        }
    }
}

TEST(DistributionRules, VectorsAreTheFactorTimesNormalNumbers)
{
    for (const int32_t method : {0, 1, 2}) {
        SCOPED_TRACE(method);
        check_storages<double>(method);
        check_storages<float>(method);
    }
    stream s;
    double r[1];
    EXPECT_EQ(with<double>("GaussianMV", 0, 1, 3, &mean_vector[0], &triangle[0])(s, 1, r),
              VSL_ERROR_BADARGS);
}

// Of more dimensions than a block has numbers
TEST(DistributionRules, LongVectors)
{
    constexpr int32_t dimension = 100003;
    const std::vector<double> a(dimension, 5), diagonal(dimension, 2);
    stream s;
    const auto r = drawn(
        with<double>("GaussianMV", 2, dimension, VSL_MATRIX_STORAGE_DIAGONAL, a.data(), diagonal.data()), s,
        3, dimension);
    stream plain;
    const auto z = drawn(with<double>("Gaussian", 2, 5., 2.), plain, 3 * dimension);
    for (size_t i = 0; i < r.size(); ++i)
        ASSERT_NEAR(r[i], z[i], 1e-13);
}

/// Quasi-random numbers stay evenly spread: each coordinate of 1,024 points is within 2/1024 of its law,
/// where random numbers are some 30/1024 off.
TEST(DistributionRules, InverseFunctionsKeepQuasiRandomNumbersEven)
{
    constexpr int32_t points = 1024;
    for (const uint32_t dimensions : {1U, 3U, 12U}) {
        const auto check = [&](const char *name, int32_t method, auto cdf) {
            SCOPED_TRACE(name + std::to_string(dimensions));
            stream s(VSL_BRNG_SOBOL, dimensions);
            const auto r =
                drawn(with<double>(name, method, 0., 1.), s, points * static_cast<int32_t>(dimensions));
            for (size_t coordinate = 0; coordinate < dimensions; ++coordinate) {
                std::vector<double> p;
                for (size_t i = coordinate; i < r.size(); i += dimensions)
                    p.push_back(cdf(r[i]));
                std::sort(p.begin(), p.end());
                for (size_t i = 0; i < p.size(); ++i)
                    ASSERT_NEAR(p[i], (static_cast<double>(i) + .5) / points, 2. / points);
            }
        };
        check("Gaussian", 2, [](double x) { return std::erfc(-x * std::sqrt(.5)) / 2; });
        check("Exponential", 0, [](double x) { return std::exp(-x); });
    }
}

TEST(DistributionRules, BitsAreTheGeneratorsOwn)
{
    stream one, two, three;
    std::vector<uint32_t> words(8), bits(8);
    std::vector<uint64_t> pairs(4);
    const auto kernel32 = vsl_entry<int32_t(int32_t, void *, int32_t, uint32_t *)>("_vsliRngUniformBits32");
    const auto native = vsl_entry<int32_t(int32_t, void *, int32_t, uint32_t *)>("_vsliRngUniformBits");
    const auto kernel64 = vsl_entry<int32_t(int32_t, void *, int32_t, uint64_t *)>("_vsliRngUniformBits64");
    EXPECT_EQ(native(0, one, 8, words.data()), VSL_STATUS_OK);
    EXPECT_EQ(kernel32(0, two, 8, bits.data()), VSL_STATUS_OK);
    EXPECT_EQ(kernel64(0, three, 4, pairs.data()), VSL_STATUS_OK);
    EXPECT_EQ(words, bits); // MT19937's are uniform
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(pairs[i], words[2 * i] | static_cast<uint64_t>(words[2 * i + 1]) << 32);
    // Words of 64 bits, also from where they must not begin
    std::vector<uint32_t> first(2 * 3000), second(first.size() + 1);
    stream long_words(VSL_BRNG_MCG59), same(VSL_BRNG_MCG59);
    EXPECT_EQ(native(0, long_words, 3000, first.data()), VSL_STATUS_OK);
    EXPECT_EQ(native(0, same, 3000, second.data() + 1), VSL_STATUS_OK);
    EXPECT_TRUE(std::ranges::equal(first, std::span(second).subspan(1)));
    const std::vector<double> numbers(64, .5);
    stream of_reals(numbers);
    EXPECT_EQ(kernel32(0, of_reals, 8, bits.data()), VSL_ERROR_FEATURE_NOT_IMPLEMENTED);
}

} // namespace
