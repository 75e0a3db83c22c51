// The eleven real transforms against their sums, in any number of dimensions.
#include "fft/real_to_real.h"
#include "fft_model.h"

#include <gtest/gtest.h>

#include <functional>

using namespace fft_model;

namespace {

constexpr long double pi = std::numbers::pi_v<long double>;

long double sum(int64_t n, const std::function<long double(int64_t)> &term)
{
    long double all = 0;
    for (int64_t j = 0; j < n; ++j)
        all += term(j);
    return all;
}

// Result k of a line x, by the number of the kind.
long double result(int kind, const std::vector<long double> &x, int64_t k)
{
    const auto n = static_cast<int64_t>(x.size());
    const auto at = [&](int64_t j) { return x[static_cast<size_t>(j)]; };
    const auto angle = [](long double j, long double of) { return pi * j / of; };
    const long double size = static_cast<long double>(n), frequency = static_cast<long double>(k);
    const long double sign = k % 2 ? -1 : 1;
    switch (kind) {
    case 0: // real to half-complex: imaginary parts run backwards behind the real ones
        return 2 * k <= n
                   ? sum(n, [&](int64_t j) { return at(j) * std::cos(angle(2 * j * k, size)); })
                   : -sum(n, [&](int64_t j) { return at(j) * std::sin(angle(2 * j * (n - k), size)); });
    case 1:
        return at(0) + (n % 2 == 0 ? sign * at(n / 2) : 0) +
               2 * sum((n - 1) / 2, [&](int64_t j) {
                   return at(j + 1) * std::cos(angle(2 * (j + 1) * k, size)) -
                          at(n - j - 1) * std::sin(angle(2 * (j + 1) * k, size));
               });
    case 2:
        return sum(n, [&](int64_t j) {
            return at(j) * (std::cos(angle(2 * j * k, size)) + std::sin(angle(2 * j * k, size)));
        });
    case 3:
        return at(0) + sign * at(n - 1) + 2 * sum(n - 2, [&](int64_t j) {
                                              return at(j + 1) * std::cos(angle((j + 1) * k, size - 1));
                                          });
    case 4:
        return at(0) +
               2 * sum(n - 1, [&](int64_t j) {
                   return at(j + 1) *
                          std::cos(angle(static_cast<long double>(j + 1) * (frequency + 0.5L), size));
               });
    case 5:
        return 2 * sum(n, [&](int64_t j) {
                   return at(j) * std::cos(angle((static_cast<long double>(j) + 0.5L) * frequency, size));
               });
    case 6:
        return 2 * sum(n, [&](int64_t j) {
                   return at(j) *
                          std::cos(angle((static_cast<long double>(j) + 0.5L) * (frequency + 0.5L), size));
               });
    case 7:
        return 2 * sum(n, [&](int64_t j) { return at(j) * std::sin(angle((j + 1) * (k + 1), size + 1)); });
    case 8:
        return sign * at(n - 1) +
               2 * sum(n - 1, [&](int64_t j) {
                   return at(j) *
                          std::sin(angle(static_cast<long double>(j + 1) * (frequency + 0.5L), size));
               });
    case 9:
        return 2 * sum(n, [&](int64_t j) {
                   return at(j) *
                          std::sin(angle((static_cast<long double>(j) + 0.5L) * (frequency + 1), size));
               });
    default:
        return 2 * sum(n, [&](int64_t j) {
                   return at(j) *
                          std::sin(angle((static_cast<long double>(j) + 0.5L) * (frequency + 0.5L), size));
               });
    }
}

std::vector<long double> results(std::vector<long double> x, const indices &lengths,
                                 const std::vector<int32_t> &kinds)
{
    int64_t stride = 1;
    for (size_t dimension = 0; dimension < lengths.size(); ++dimension) {
        const int64_t n = lengths[dimension];
        std::vector<long double> line(static_cast<size_t>(n));
        for (int64_t start = 0; start < static_cast<int64_t>(x.size()); ++start) {
            if (start / stride % n != 0)
                continue;
            for (int64_t j = 0; j < n; ++j)
                line[static_cast<size_t>(j)] = x[static_cast<size_t>(start + j * stride)];
            for (int64_t k = 0; k < n; ++k)
                x[static_cast<size_t>(start + k * stride)] = result(kinds[dimension], line, k);
        }
        stride *= n;
    }
    return x;
}

template <class T>
void expect_sums(std::mt19937 &random, const indices &lengths, const std::vector<int32_t> &kinds,
                 bool in_place)
{
    const int64_t batch = 1 + static_cast<int64_t>(random() % 3);
    const placing in = random_placing(random, lengths, batch, true);
    const placing out = in_place ? in : random_placing(random, lengths, batch, true);
    std::vector<int64_t> dimensions; // the slowest first
    std::vector<int32_t> turned(kinds.rbegin(), kinds.rend());
    for (size_t i = lengths.size(); i-- > 0;)
        dimensions.insert(dimensions.end(), {lengths[i], in.strides[i], out.strides[i]});
    const int64_t batches[] = {batch, in.distance, out.distance};

    std::vector<T> x(60'000, 5), y(x.size(), 5);
    std::vector<std::vector<long double>> expected;
    long double norm = 0;
    for (int64_t b = 0; b < batch; ++b) {
        std::vector<long double> numbers;
        for_each_index(lengths, [&](const indices &k, int64_t) {
            const T number = static_cast<T>(static_cast<int>(random() % 2001) - 1000) / 1000;
            x.at(static_cast<size_t>(in.at(k, b))) = number;
            numbers.push_back(number);
            norm += number * number;
        });
        expected.push_back(results(numbers, lengths, kinds));
    }
    const std::vector<T> before = x;
    void *transform = nullptr;
    ASSERT_EQ(xkl_dft_r2r_create(&transform, sizeof(T) == 4 ? DFTI_SINGLE : DFTI_DOUBLE,
                                 static_cast<int32_t>(lengths.size()), dimensions.data(), 1, batches,
                                 turned.data(), in_place, -1),
              0);
    ASSERT_EQ(xkl_dft_r2r_execute(transform, x.data() + in.offset, (in_place ? x : y).data() + out.offset),
              0);
    ASSERT_EQ(xkl_dft_r2r_free(&transform), 0);
    ASSERT_EQ(transform, nullptr);
    ASSERT_TRUE(in_place || x == before);
    const long double bound = std::numeric_limits<T>::epsilon() * 200 * std::sqrt(norm + 1);
    for (int64_t b = 0; b < batch; ++b)
        for_each_index(lengths, [&](const indices &k, int64_t place) {
            const T got = (in_place ? x : y)[static_cast<size_t>(out.at(k, b))];
            ASSERT_NEAR(got,
                        static_cast<double>(expected[static_cast<size_t>(b)][static_cast<size_t>(place)]),
                        bound);
        });
}

TEST(RealToReal, AllKindsAreTheirSums)
{
    std::mt19937 random(11);
    for (int kind = 0; kind <= 10; ++kind)
        for (int64_t n = 2; n <= 20; ++n)
            for (const bool in_place : {true, false}) {
                expect_sums<double>(random, {n}, {kind}, in_place);
                expect_sums<float>(random, {n}, {kind}, in_place);
                ASSERT_FALSE(HasFatalFailure())
                    << "kind " << kind << ", n " << n << ", in place " << in_place;
            }
}

TEST(RealToReal, KindsMixInSeveralDimensions)
{
    std::mt19937 random(12);
    for (int round = 0; round < 300; ++round) {
        indices lengths;
        std::vector<int32_t> kinds;
        for (uint32_t i = 0; i < 2 + random() % 3; ++i) {
            lengths.push_back(2 + static_cast<int64_t>(random() % 7));
            kinds.push_back(static_cast<int32_t>(random() % 11));
        }
        expect_sums<double>(random, lengths, kinds, random() % 2);
        expect_sums<float>(random, lengths, kinds, random() % 2);
        ASSERT_FALSE(HasFatalFailure()) << "round " << round;
    }
}

TEST(RealToReal, RefusesWhatCannotBe)
{
    const int64_t dimension[] = {8, 1, 1}, empty[] = {0, 1, 1};
    const int32_t cosine = 5, unknown = 11, first = 3;
    void *made = nullptr;
    const auto create = [&](int32_t precision, int32_t rank, const int64_t *dims, const int32_t *kinds) {
        const int32_t status = xkl_dft_r2r_create(&made, precision, rank, dims, 0, nullptr, kinds, 0, -1);
        EXPECT_EQ(made, nullptr);
        return status;
    };
    EXPECT_EQ(create(34, 1, dimension, &cosine), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(create(DFTI_DOUBLE, 0, dimension, &cosine), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(create(DFTI_DOUBLE, 8, dimension, &cosine), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(create(DFTI_DOUBLE, 1, empty, &cosine), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(create(DFTI_DOUBLE, 1, dimension, &unknown), DFTI_INVALID_CONFIGURATION);
    EXPECT_EQ(create(DFTI_DOUBLE, 1, nullptr, &cosine), DFTI_INCONSISTENT_CONFIGURATION);
    const int64_t one[] = {1, 1, 1};
    EXPECT_EQ(create(DFTI_DOUBLE, 1, one, &first), DFTI_UNIMPLEMENTED); // REDFT00 begins at two elements
    // More than any machine has, in dimensions that each would fit: null, and the process goes on.
    const int64_t large[] = {1 << 20, 1 << 24, 1 << 24, 1 << 20, 16, 16, 16, 1, 1};
    const int32_t kinds[] = {0, 1, 2};
    EXPECT_EQ(create(DFTI_DOUBLE, 3, large, kinds), DFTI_MEMORY_ERROR);
    EXPECT_EQ(xkl_dft_r2r_create(nullptr, DFTI_DOUBLE, 1, dimension, 0, nullptr, &cosine, 0, -1),
              DFTI_INCONSISTENT_CONFIGURATION);
    EXPECT_EQ(xkl_dft_r2r_execute(nullptr, nullptr, nullptr), DFTI_BAD_DESCRIPTOR);
    EXPECT_EQ(xkl_dft_r2r_free(&made), 0);
}

} // namespace
