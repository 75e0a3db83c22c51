// Each basic generator against values that its authors published, or against an implementation that is
// not ours.
#include "vsl_library.h"

#include <Random123/philox.h>
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/sobol.hpp>

#include <array>
#include <bit>
#include <numeric>
#include <random>
#include <set>

namespace {

using words = std::vector<uint32_t>;

words drawn(int32_t brng, const words &seeds, int n)
{
    return random_stream(brng, seeds).elements(n);
}

/// The tests of one generator run with the loops of each instruction set.
struct KnownAnswers : testing::TestWithParam<int> {
    KnownAnswers() { vsl().limit_set(GetParam()); }
    ~KnownAnswers() override { vsl().limit_set(2); }
};
INSTANTIATE_TEST_SUITE_P(Set, KnownAnswers, testing::Range(0, best_set() + 1));

TEST_P(KnownAnswers, Mt19937)
{
    EXPECT_EQ(drawn(VSL_BRNG_MT19937, {5489}, 10000).back(), 4123659995u) << "the C++ standard's value";
    std::mt19937 standard(42);
    for (const uint32_t each : drawn(VSL_BRNG_MT19937, {42}, 5000))
        ASSERT_EQ(each, standard());
    EXPECT_EQ(drawn(VSL_BRNG_MT19937, {0x123, 0x234, 0x345, 0x456}, 5),
              (words{1067595299, 955945823, 477289528, 4107218783, 4228976476}))
        << "the authors' mt19937ar.out";
}

TEST_P(KnownAnswers, Sfmt19937)
{
    EXPECT_EQ(drawn(VSL_BRNG_SFMT19937, {1234}, 5),
              (words{3440181298, 1564997079, 1510669302, 2930277156, 1452439940}))
        << "the authors' SFMT.19937.out";
    EXPECT_EQ(drawn(VSL_BRNG_SFMT19937, {0x1234, 0x5678, 0x9abc, 0xdef0}, 5),
              (words{2920711183, 3885745737, 3501893680, 856470934, 1421864068}));
}

TEST_P(KnownAnswers, CongruentialGenerators)
{
    std::linear_congruential_engine<uint64_t, 1132489760, 0, 0x7fffffff> mcg31(12345);
    for (const uint32_t each : drawn(VSL_BRNG_MCG31, {12345}, 1001))
        ASSERT_EQ(each, mcg31());
    std::linear_congruential_engine<uint64_t, 302875106592253, 0, uint64_t{1} << 59> mcg59(0x300003039);
    for (const uint64_t each : random_stream(VSL_BRNG_MCG59, {0x3039, 3}).elements<uint64_t>(1001))
        ASSERT_EQ(each, mcg59());
}

TEST_P(KnownAnswers, CongruentialGeneratorsTakeNoSeedOfZero)
{
    EXPECT_EQ(drawn(VSL_BRNG_MCG31, {0}, 9), drawn(VSL_BRNG_MCG31, {1}, 9));
    EXPECT_EQ(drawn(VSL_BRNG_MCG31, {0x7fffffff}, 9), drawn(VSL_BRNG_MCG31, {}, 9));
    EXPECT_EQ(random_stream(VSL_BRNG_MCG59, {0, 0x08000000}).elements<uint64_t>(9),
              random_stream(VSL_BRNG_MCG59, {1}).elements<uint64_t>(9));
}

TEST_P(KnownAnswers, Mrg32k3a)
{
    const words seeds(6, 12345);
    const double published[] = {0.1270111220, 0.3185275654, 0.3091860156};
    const auto first = random_stream(VSL_BRNG_MRG32K3A, seeds).doubles(3);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(first[i], published[i], 1e-10);
    const auto all = random_stream(VSL_BRNG_MRG32K3A, seeds).doubles(10000000);
    EXPECT_NEAR(std::accumulate(all.begin(), all.end(), 0.), 5001090.95, .005) << "the author's sum";
}

TEST_P(KnownAnswers, Mrg32k3aByItsDefinition)
{
    int64_t x[3] = {5, 4, 3}, y[3] = {2, 1, 1};
    constexpr int64_t m1 = 4294967087, m2 = 4294944443;
    for (const uint32_t each : drawn(VSL_BRNG_MRG32K3A, {5, 4, 3, 2}, 1000)) {
        const auto next_x = static_cast<int64_t>((__int128{1403580} * x[1] - __int128{810728} * x[0]) % m1);
        const auto next_y = static_cast<int64_t>((__int128{527612} * y[2] - __int128{1370589} * y[0]) % m2);
        x[0] = x[1], x[1] = x[2], x[2] = next_x < 0 ? next_x + m1 : next_x;
        y[0] = y[1], y[1] = y[2], y[2] = next_y < 0 ? next_y + m2 : next_y;
        ASSERT_EQ(each, x[2] > y[2] ? x[2] - y[2] : x[2] - y[2] + m1);
    }
}

TEST_P(KnownAnswers, R250)
{
    words x(250);
    std::iota(x.begin(), x.end(), 1000);
    for (uint32_t &each : x)
        each *= 2654435761u;
    const words seeds = x;
    for (size_t i = 250; i < 2000; ++i)
        x.push_back(x[i - 103] ^ x[i - 250]);
    EXPECT_EQ(drawn(VSL_BRNG_R250, seeds, 1750), words(x.begin() + 250, x.end()));
    const words shorter = drawn(VSL_BRNG_R250, {1}, 2000);
    for (size_t i = 250; i < shorter.size(); ++i)
        ASSERT_EQ(shorter[i], shorter[i - 103] ^ shorter[i - 250]);
}

TEST_P(KnownAnswers, Philox)
{
    // Key and counter of three of Random123's known answers
    EXPECT_EQ(drawn(VSL_BRNG_PHILOX4X32X10, {0}, 4),
              (words{0x6627e8d5, 0xe169c58d, 0xbc57ac4c, 0x9b00dbd8}));
    EXPECT_EQ(drawn(VSL_BRNG_PHILOX4X32X10, words(6, 0xffffffff), 4),
              (words{0x408f276d, 0x41c83b0e, 0xa20bc7c6, 0x6d5451fd}));
    EXPECT_EQ(drawn(VSL_BRNG_PHILOX4X32X10,
                    {0xa4093822, 0x299f31d0, 0x243f6a88, 0x85a308d3, 0x13198a2e, 0x03707344}, 4),
              (words{0xd16cfe09, 0x94fdcceb, 0x5001e420, 0x24126ea1}));
}

/// Blocks of counters from `counter` on, with carries through all four words
template <class Counter, class Cipher>
words blocks(Counter counter, int count, const Cipher &cipher)
{
    words r;
    for (int i = 0; i < count; ++i) {
        const Counter block = cipher(counter);
        r.insert(r.end(), block.v, block.v + 4);
        for (uint32_t &word : counter.v)
            if (++word != 0)
                break;
    }
    return r;
}

TEST_P(KnownAnswers, CountersCarry)
{
    const philox4x32_key_t key = {{17, 4}};
    for (const uint32_t third : {5u, 0xffffffffu}) {
        const philox4x32_ctr_t counter = {{0xfffffff9, 0xffffffff, third, 3}};
        EXPECT_EQ(drawn(VSL_BRNG_PHILOX4X32X10, {17, 4, 0xfffffff9, 0xffffffff, third, 3}, 400),
                  blocks(counter, 100, [&](auto c) { return philox4x32_R(10, c, key); }));
    }
}

/// The byte substitution of AES: the inverse in its field of 256 elements, then an affine map
std::array<uint8_t, 256> aes_substitution()
{
    const auto times = [](unsigned a, unsigned b) {
        unsigned product = 0;
        for (; b != 0; b >>= 1, a = a << 1 ^ (a & 0x80 ? 0x11b : 0))
            product ^= b & 1 ? a : 0;
        return product;
    };
    std::array<uint8_t, 256> table{};
    for (unsigned x = 0; x < 256; ++x) {
        unsigned inverse = 0;
        for (unsigned y = 0; y < 256; ++y)
            inverse = times(x, y) == 1 ? y : inverse;
        const unsigned twice = inverse << 8 | inverse;
        const unsigned sum = twice ^ twice >> 4 ^ twice >> 5 ^ twice >> 6 ^ twice >> 7;
        table[x] = static_cast<uint8_t>(sum ^ 0x63);
    }
    return table;
}

using aes_block = std::array<uint8_t, 16>;

/// One round of AES as its standard words it: bytes by columns
aes_block aes_round(const aes_block &state, const aes_block &key, bool last)
{
    static const std::array<uint8_t, 256> substitute = aes_substitution();
    const auto twice = [](uint8_t x) { return static_cast<uint8_t>(x << 1 ^ (x & 0x80 ? 0x1b : 0)); };
    aes_block r;
    for (size_t column = 0; column < 4; ++column) {
        uint8_t x[4];
        for (size_t row = 0; row < 4; ++row)
            x[row] = substitute[state[4 * ((column + row) % 4) + row]];
        for (size_t row = 0; row < 4; ++row) {
            const uint8_t a = x[row], b = x[(row + 1) % 4], c = x[(row + 2) % 4], d = x[(row + 3) % 4];
            const auto mixed = static_cast<uint8_t>(twice(a) ^ twice(b) ^ b ^ c ^ d);
            r[4 * column + row] = (last ? a : mixed) ^ key[4 * column + row];
        }
    }
    return r;
}

using halves = std::array<uint64_t, 2>;

/// ARS-5 by its definition: both halves of the key grow by a constant from round to round.
words ars5(halves key, halves counter)
{
    aes_block state = std::bit_cast<aes_block>(halves{counter[0] ^ key[0], counter[1] ^ key[1]});
    for (int round = 1; round <= 5; ++round) {
        key[0] += 0x9e3779b97f4a7c15;
        key[1] += 0xbb67ae8584caa73b;
        state = aes_round(state, std::bit_cast<aes_block>(key), round == 5);
    }
    const auto r = std::bit_cast<std::array<uint32_t, 4>>(state);
    return {r.begin(), r.end()};
}

TEST_P(KnownAnswers, Ars5)
{
    if (!__builtin_cpu_supports("aes"))
        GTEST_SKIP() << "no AES instructions";
    const words r = drawn(VSL_BRNG_ARS5, {1, 2, 3, 4, 0xfffffffe, 0xffffffff, 6, 7}, 16);
    const halves key = {0x200000001, 0x400000003};
    const uint64_t upper = 0x700000006;
    const halves counters[] = {
        {~uint64_t{1}, upper}, {~uint64_t{0}, upper}, {0, upper + 1}, {1, upper + 1}};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(words(r.begin() + static_cast<int>(4 * i), r.begin() + static_cast<int>(4 * i + 4)),
                  ars5(key, counters[i]));
}

template <class Engine>
void expect_points_of(int32_t brng, uint32_t dimension)
{
    Engine engine(dimension);
    for (const uint32_t each : drawn(brng, {dimension}, 20000))
        ASSERT_EQ(each, engine()) << dimension;
}

TEST_P(KnownAnswers, QuasiRandomSequences)
{
    for (const uint32_t dimension : {1u, 2u, 7u, 40u, 3667u}) {
        expect_points_of<boost::random::sobol_engine<uint32_t, 32>>(VSL_BRNG_SOBOL, dimension);
        expect_points_of<boost::random::niederreiter_base2_engine<uint32_t, 32>>(VSL_BRNG_NIEDERR,
                                                                                 dimension);
    }
}

TEST_P(KnownAnswers, TheNonDeterministicGeneratorNeverRepeats)
{
    const random_stream one(VSL_BRNG_NONDETERM), other(VSL_BRNG_NONDETERM);
    std::set<uint64_t> seen;
    for (const random_stream *each : {&one, &other})
        for (const uint64_t pair : {each->elements<uint64_t>(1)[0], each->copy().elements<uint64_t>(1)[0]})
            seen.insert(pair);
    EXPECT_EQ(seen.size(), 4u);
}

} // namespace
