// What every stream does, for each generator that offers it: numbers of intervals, skipping, leapfrog,
// copies.
#include "vsl_library.h"

#include <cmath>
#include <limits>
#include <thread>

namespace {

INSTANTIATE_TEST_SUITE_P(Streams, EachGenerator, testing::ValuesIn(generators), EachGenerator::name);

random_stream started(const generator_promise &g, int drawn)
{
    random_stream s(g.brng, {3});
    if (drawn > 0)
        s.doubles(drawn);
    return s;
}

TEST_P(EachGenerator, ElementsAreBelowTheirBits)
{
    const VSLBRngProperties p = random_stream::functions(GetParam().brng);
    const random_stream s(GetParam().brng);
    uint64_t all = 0;
    if (p.WordSize == 8)
        for (const uint64_t each : s.elements<uint64_t>(10000))
            all |= each;
    else
        for (const uint32_t each : s.elements(10000))
            all |= each;
    EXPECT_EQ(all >> (p.NBits - 8), 0xffu) << "the highest of them are all in use";
}

TEST_P(EachGenerator, NumbersLieInsideAndFillTheirInterval)
{
    const random_stream s(GetParam().brng);
    constexpr double largest = std::numeric_limits<double>::max();
    const double ends[][2] = {{0, 1}, {-3, 5}, {1, std::nextafter(1, 2)}, {-largest, largest}};
    for (const auto &[a, b] : ends) {
        double sum = 0;
        for (const double each : s.doubles(40000, a, b)) {
            ASSERT_GE(each, a);
            ASSERT_LT(each, b);
            sum += (each / 2 - a / 2) / (b / 2 - a / 2) / 40000;
        }
        EXPECT_TRUE(b == std::nextafter(a, b) || std::abs(sum - .5) < .01) << a << ' ' << b << ' ' << sum;
        for (const float each : s.floats(1000, 1.f, 1.0000002f))
            ASSERT_EQ(each, 1.f == each ? 1.f : std::nextafter(1.f, 2.f));
    }
}

TEST_P(EachGenerator, CallsMayBeCutAnywhereAndSetsAgree)
{
    if (!GetParam().repeats)
        return;
    const auto whole = started(GetParam(), 0).doubles(5000, -1, 3);
    for (int set = 0; set <= best_set(); ++set) {
        vsl().limit_set(set);
        const random_stream s = started(GetParam(), 0);
        size_t done = 0;
        for (int n = 1; done < whole.size(); n = n % 700 * 3 + 1) {
            const auto count = std::min(static_cast<size_t>(n), whole.size() - done);
            for (const double each : s.doubles(static_cast<int>(count), -1, 3))
                ASSERT_EQ(each, whole[done++]) << "set " << set;
        }
    }
    vsl().limit_set(2);
}

TEST_P(EachGenerator, FloatsAndDoublesTakeTheSameElements)
{
    if (!GetParam().repeats)
        return;
    const auto d = started(GetParam(), 0).doubles(3000);
    const auto f = started(GetParam(), 0).floats(3000);
    for (size_t i = 0; i < d.size(); ++i)
        ASSERT_NEAR(d[i], f[i], 0x1p-23);
}

TEST_P(EachGenerator, SkippingIsDrawing)
{
    const random_stream s = started(GetParam(), 5);
    const uint64_t far[2] = {12, 0};
    if (!GetParam().skips) {
        EXPECT_EQ(vsl().skip(s, 1), VSL_RNG_ERROR_SKIPAHEAD_UNSUPPORTED);
        EXPECT_EQ(vsl().skip_far(s, 2, far), VSL_RNG_ERROR_SKIPAHEADEX_UNSUPPORTED);
        return;
    }
    for (const int n : {0, 1, 2, 3, 7, 8, 100, 623, 624, 1000, 12345, 1 << 20}) {
        const random_stream drawn = s.copy(), skipped = s.copy(), skipped_far = s.copy();
        if (n > 0)
            drawn.doubles(n);
        EXPECT_EQ(vsl().skip(skipped, n), VSL_STATUS_OK);
        const uint64_t words[3] = {static_cast<uint64_t>(n), 0, 0};
        EXPECT_EQ(vsl().skip_far(skipped_far, 3, words), VSL_STATUS_OK);
        const auto expected = drawn.doubles(1500);
        EXPECT_EQ(skipped.doubles(1500), expected) << n;
        EXPECT_EQ(skipped_far.doubles(1500), expected) << n;
    }
    EXPECT_EQ(vsl().skip(s, -1), VSL_ERROR_BADARGS);
}

// From 2^24 elements on, generators over bits take another road.
TEST_P(EachGenerator, SkippingMillionsIsDrawing)
{
    if (!GetParam().skips)
        return;
    const random_stream drawn = started(GetParam(), 6), skipped = drawn.copy();
    for (int million = 0; million < 17; ++million)
        drawn.doubles(1000003);
    EXPECT_EQ(vsl().skip(skipped, 17 * 1000003), VSL_STATUS_OK);
    EXPECT_EQ(skipped.doubles(1500), drawn.doubles(1500));
}

TEST_P(EachGenerator, LongSkipsAddUp)
{
    const bool quasi = GetParam().brng == VSL_BRNG_SOBOL || GetParam().brng == VSL_BRNG_NIEDERR;
    if (!GetParam().skips || quasi)
        return;
    // 3 * (2^64 + 2^62 + 5) in one go, and in three
    const uint64_t third[2] = {(uint64_t{1} << 62) + 5, 1}, all[2] = {3 * third[0], 3};
    const random_stream at_once = started(GetParam(), 2), in_steps = started(GetParam(), 2);
    EXPECT_EQ(vsl().skip_far(at_once, 2, all), VSL_STATUS_OK);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(vsl().skip_far(in_steps, 2, third), VSL_STATUS_OK);
    EXPECT_EQ(at_once.doubles(100), in_steps.doubles(100));
}

TEST_P(EachGenerator, LeapfrogStreamsInterleave)
{
    const random_stream s = started(GetParam(), 6);
    if (!GetParam().leaps) {
        EXPECT_EQ(vsl().leapfrog(s, 0, 2) == VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED ||
                      vsl().leapfrog(s, 0, 2) == VSL_RNG_ERROR_LEAPFROG_NSTREAMS_TOO_BIG,
                  true);
        return;
    }
    constexpr int inner = 3, outer = 4, each = 500;
    const auto parent = s.copy().doubles(inner * outer * each);
    for (int k = 0; k < outer; ++k)
        for (int j = 0; j < inner; ++j) {
            const random_stream leaping = s.copy();
            EXPECT_EQ(vsl().leapfrog(leaping, k, outer), VSL_STATUS_OK);
            EXPECT_EQ(vsl().leapfrog(leaping, j, inner), VSL_STATUS_OK) << "of a leapfrog stream";
            EXPECT_EQ(vsl().skip(leaping, 10), VSL_STATUS_OK);
            const auto r = leaping.doubles(each - 10);
            for (size_t i = 0; i < r.size(); ++i)
                ASSERT_EQ(r[i], parent[k + outer * (j + inner * (i + 10))]) << k << ' ' << j << ' ' << i;
        }
    EXPECT_EQ(vsl().leapfrog(s, 2, 2), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().leapfrog(s, -1, 2), VSL_ERROR_BADARGS);
}

TEST_P(EachGenerator, CopiesGoOnAlike)
{
    const random_stream s = started(GetParam(), 777);
    const random_stream copy = s.copy(), behind = started(GetParam(), 1);
    EXPECT_EQ(vsl().brng(copy), GetParam().brng);
    EXPECT_EQ(vsl().copy_state(behind, s), VSL_STATUS_OK);
    if (!GetParam().repeats)
        return;
    const auto expected = s.doubles(1000);
    EXPECT_EQ(copy.doubles(1000), expected);
    EXPECT_EQ(behind.doubles(1000), expected);
}

TEST_P(EachGenerator, PropertiesReseedAStream)
{
    const VSLBRngProperties p = random_stream::functions(GetParam().brng);
    const random_stream s = started(GetParam(), 10);
    const unsigned seed = 3;
    EXPECT_EQ(p.InitStream(VSL_INIT_METHOD_STANDARD, s, 1, &seed), VSL_STATUS_OK);
    const auto again = s.doubles(100);
    EXPECT_EQ(again == started(GetParam(), 0).doubles(100), GetParam().repeats);
}

TEST_P(EachGenerator, ThreadsWithStreamsOfTheirOwn)
{
    if (!GetParam().repeats)
        return;
    const auto expected = started(GetParam(), 0).doubles(20000);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] { EXPECT_EQ(started(GetParam(), 0).doubles(20000), expected); });
    for (std::thread &each : threads)
        each.join();
}

TEST(QuasiRandomStreams, LeapfrogPicksACoordinate)
{
    for (const int32_t brng : {VSL_BRNG_SOBOL, VSL_BRNG_NIEDERR}) {
        const random_stream s(brng, {5});
        const auto points = s.copy().elements(5 * 1000);
        for (int k = 0; k < 5; ++k) {
            const random_stream one = s.copy();
            EXPECT_EQ(vsl().leapfrog(one, k, 5), VSL_STATUS_OK);
            auto r = one.elements(400);
            EXPECT_EQ(vsl().skip(one, 100), VSL_STATUS_OK);
            const auto rest = one.elements(500);
            for (size_t i = 0; i < 400; ++i)
                ASSERT_EQ(r[i], points[5 * i + static_cast<size_t>(k)]);
            for (size_t i = 0; i < 500; ++i)
                ASSERT_EQ(rest[i], points[5 * (i + 500) + static_cast<size_t>(k)]);
        }
        EXPECT_EQ(vsl().leapfrog(s, 0, 4), VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED);
        EXPECT_EQ(vsl().leapfrog(s, 0, 6), VSL_RNG_ERROR_LEAPFROG_NSTREAMS_TOO_BIG);
    }
}

TEST(QuasiRandomStreams, EndWithTheirPeriod)
{
    const random_stream s(VSL_BRNG_SOBOL, {2});
    EXPECT_EQ(vsl().skip(s, (int64_t{0xffffffff} - 1) * 2), VSL_STATUS_OK);
    uint32_t r[3];
    const auto bits = random_stream::functions().iBRng;
    EXPECT_EQ(bits(s.copy(), 3, r), VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED);
    EXPECT_EQ(bits(s, 2, r), VSL_STATUS_OK) << "the last point";
    EXPECT_EQ(bits(s, 1, r), VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED);
    EXPECT_EQ(vsl().skip(s, 1), VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED);
    const uint64_t far[2] = {0, 1};
    EXPECT_EQ(vsl().skip_far(s, 2, far), VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED);
}

TEST(Streams, BadArgumentsGetTheirStatusAndNoStream)
{
    VSLStreamStatePtr none = nullptr;
    const uint32_t seeds[2] = {0, 5};
    const struct {
        int32_t brng, n, status;
    } cases[] = {
        {0, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {-VSL_BRNG_MCG31, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {VSL_BRNG_MCG31 + 1, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {VSL_BRNG_IABSTRACT, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {0x7ff00000, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {VSL_BRNG_WH + VSL_WH_MEMBERS, 1, VSL_RNG_ERROR_INVALID_BRNG_INDEX},
        {VSL_BRNG_WH, 1, VSL_RNG_ERROR_BRNG_NOT_SUPPORTED},
        {VSL_BRNG_MT2203 + 6023, 1, VSL_RNG_ERROR_BRNG_NOT_SUPPORTED},
        {VSL_BRNG_MT19937, -1, VSL_ERROR_BADARGS},
        {VSL_BRNG_SOBOL, 1, VSL_ERROR_BADARGS}, // no dimension
    };
    for (const auto &each : cases) {
        EXPECT_EQ(vsl().create(&none, each.brng, each.n, seeds), each.status) << std::hex << each.brng;
        EXPECT_EQ(none, nullptr);
    }
    const uint32_t too_many = 3668, directions[2] = {3, 1};
    EXPECT_EQ(vsl().create(&none, VSL_BRNG_SOBOL, 1, &too_many), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().create(&none, VSL_BRNG_SOBOL, 2, directions), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().create(&none, VSL_BRNG_MT19937, 1, nullptr), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().create(nullptr, VSL_BRNG_MT19937, 1, seeds), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(none, nullptr);
}

TEST(Streams, DeadForeignAndDifferentStreamsAreRefused)
{
    alignas(16) unsigned char foreign[64] = {1, 2, 3, 4, 1}, dead[64] = {};
    const random_stream mt(VSL_BRNG_MT19937), mcg(VSL_BRNG_MCG31), sobol(VSL_BRNG_SOBOL, {3});
    const random_stream plane(VSL_BRNG_SOBOL, {2});
    const uint64_t one = 1;
    char memory[64];
    const struct {
        void *stream;
        int32_t status;
    } cases[] = {{nullptr, VSL_ERROR_NULL_PTR},
                 {foreign, VSL_RNG_ERROR_BAD_STREAM},
                 {dead, VSL_RNG_ERROR_BAD_STREAM}};
    for (const auto &[bad, status] : cases) {
        VSLStreamStatePtr handle = bad, made = nullptr;
        EXPECT_EQ(vsl().end(&handle), status);
        EXPECT_EQ(handle, bad);
        EXPECT_EQ(vsl().copy(&made, bad), status);
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(vsl().copy_state(mt, bad), status);
        EXPECT_EQ(vsl().copy_state(bad, mt), status);
        EXPECT_EQ(vsl().skip(bad, 1), status);
        EXPECT_EQ(vsl().skip_far(bad, 1, &one), status);
        EXPECT_EQ(vsl().leapfrog(bad, 0, 1), status);
        EXPECT_EQ(vsl().brng(bad), status);
        EXPECT_EQ(vsl().size(bad), status);
        EXPECT_EQ(vsl().save(bad, memory), status);
        EXPECT_EQ(vsl().save_file(bad, "/dev/null", -1), status);
    }
    EXPECT_EQ(vsl().copy_state(mt, mcg), VSL_RNG_ERROR_BRNGS_INCOMPATIBLE);
    EXPECT_EQ(vsl().copy_state(sobol, plane), VSL_RNG_ERROR_BRNGS_INCOMPATIBLE);
    EXPECT_EQ(vsl().copy(nullptr, mt), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(vsl().end(nullptr), VSL_ERROR_NULL_PTR);
}

TEST(Streams, CarryTheMarkOfLifeUntilTheyAreDeleted)
{
    random_stream s(VSL_BRNG_MCG31);
    const auto *const mark = static_cast<const volatile char *>(static_cast<void *>(s)) + 4;
    EXPECT_EQ(*mark, 1);
    EXPECT_EQ(vsl().end(s.address()), VSL_STATUS_OK);
    EXPECT_EQ(static_cast<void *>(s), nullptr);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_EQ(*mark, 0) << "for a caller who uses a dead stream";
#endif
}

} // namespace
