// Streams whose numbers are the program's own: abstract streams over a buffer, and registered generators.
#include "vsl_library.h"

#include <cmath>
#include <cstring>
#include <thread>

namespace {

/// How a callback refills its buffer: `each` numbers a call, counting on from `last`
struct refill_plan {
    int each = 0, calls = 0;
    double last = 0;
    int from = -1, count = 0;
} plan;

template <class T>
int refill(VSLStreamStatePtr, int *n, T buffer[], int *least, int *most, int *from)
{
    EXPECT_EQ(*least, 1);
    EXPECT_EQ(*most, *n);
    ++plan.calls;
    plan.from = *from;
    plan.count = *n;
    for (int i = 0; i < plan.each && i < *n; ++i)
        buffer[(*from + i) % *n] = static_cast<T>(++plan.last);
    return plan.each;
}

struct AbstractStreams : testing::Test {
    AbstractStreams() { plan = {}; }
};

TEST_F(AbstractStreams, GiveTheirBufferAndThenWhatTheCallbackBrings)
{
    std::vector<unsigned> buffer = {1, 2, 3, 4, 5};
    VSLStreamStatePtr made = nullptr;
    ASSERT_EQ(vsl().of_integers(&made, 5, buffer.data(), refill<unsigned>), VSL_STATUS_OK);
    const random_stream s(made);
    EXPECT_EQ(vsl().brng(s), VSL_BRNG_IABSTRACT);
    plan.each = 3, plan.last = 5;
    EXPECT_EQ(s.elements(5), (std::vector<uint32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(plan.calls, 0) << "nothing was missing";
    EXPECT_EQ(s.elements(4), (std::vector<uint32_t>{6, 7, 8, 9}));
    EXPECT_EQ(plan.calls, 2);
    EXPECT_EQ(plan.from, 3) << "where the buffer ran empty";
    EXPECT_EQ(s.elements(4), (std::vector<uint32_t>{10, 11, 12, 13})) << "round the end of the buffer";
    EXPECT_EQ(s.doubles(1)[0], 14 * 0x1p-32);
    EXPECT_EQ(s.floats(1, 2, 4)[0], 2);
}

TEST_F(AbstractStreams, MapTheirNumbersToTheIntervalAskedFor)
{
    const std::vector<double> doubles = {-1, 0, .5, 1, 7}; // the last ones are not below b
    const std::vector<float> floats = {2, 3, 4};
    VSLStreamStatePtr made = nullptr;
    ASSERT_EQ(vsl().of_doubles(&made, 5, doubles.data(), -1, 1, refill<double>), VSL_STATUS_OK);
    const double below = std::nextafter(20., 0.);
    EXPECT_EQ(random_stream(made).doubles(5, 10, 20), (std::vector<double>{10, 15, 17.5, below, below}));
    ASSERT_EQ(vsl().of_floats(&made, 3, floats.data(), 2, 6, refill<float>), VSL_STATUS_OK);
    const random_stream s(made);
    EXPECT_EQ(s.doubles(2), (std::vector<double>{0, .25}));
    EXPECT_EQ(s.floats(1, -2, 2), (std::vector<float>{0}));
    unsigned bits = 9;
    EXPECT_EQ(random_stream::functions().iBRng(s, 1, &bits), VSL_ERROR_FEATURE_NOT_IMPLEMENTED);
    EXPECT_EQ(bits, 9u);
}

TEST_F(AbstractStreams, TellOfCallbacksThatBringNothingOrTooMuch)
{
    const std::vector<double> buffer(4);
    double r[8];
    const struct {
        int brought, status;
    } cases[] = {
        {0, VSL_RNG_ERROR_NO_NUMBERS}, {5, VSL_RNG_ERROR_BAD_UPDATE}, {-2, VSL_RNG_ERROR_BAD_UPDATE}};
    for (const auto &[brought, status] : cases) {
        VSLStreamStatePtr made = nullptr;
        ASSERT_EQ(vsl().of_doubles(&made, 4, buffer.data(), 0, 1, refill<double>), VSL_STATUS_OK);
        const random_stream s(made);
        plan.each = brought;
        EXPECT_EQ(random_stream::functions().dBRng(s, 8, r, 0, 1), status);
    }
}

TEST_F(AbstractStreams, CanNotBeCopiedSavedOrMoved)
{
    const std::vector<unsigned> buffer(3);
    VSLStreamStatePtr made = nullptr, copy = nullptr;
    ASSERT_EQ(vsl().of_integers(&made, 3, buffer.data(), refill<unsigned>), VSL_STATUS_OK);
    const random_stream s(made);
    char memory[256];
    EXPECT_EQ(vsl().copy(&copy, s), VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM);
    EXPECT_EQ(vsl().copy_state(s, s), VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM);
    EXPECT_EQ(vsl().save(s, memory), VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM);
    EXPECT_EQ(vsl().size(s), VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM);
    EXPECT_EQ(vsl().save_file(s, "/dev/null", -1), VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM);
    EXPECT_EQ(vsl().skip(s, 1), VSL_RNG_ERROR_SKIPAHEAD_UNSUPPORTED);
    EXPECT_EQ(vsl().leapfrog(s, 0, 2), VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED);
    EXPECT_EQ(vsl().of_integers(&copy, 0, buffer.data(), refill<unsigned>), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().of_integers(&copy, 3, nullptr, refill<unsigned>), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().of_integers(&copy, 3, buffer.data(), nullptr), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().of_integers(nullptr, 3, buffer.data(), refill<unsigned>), VSL_ERROR_NULL_PTR);
    EXPECT_EQ(copy, nullptr);
}

/// A generator of the program: it counts.
struct counter_stream {
    unsigned reserved[4];
    uint64_t value, step;
};

int init_counter(int method, VSLStreamStatePtr pointer, int n, const unsigned params[])
{
    auto &s = *static_cast<counter_stream *>(pointer);
    switch (method) {
    case VSL_INIT_METHOD_STANDARD:
        s.value = n > 0 ? params[0] : 0;
        s.step = 1;
        return s.value == 666 ? -77 : VSL_ERROR_OK;
    case VSL_INIT_METHOD_LEAPFROG:
        s.value += params[0] * s.step;
        s.step *= params[1];
        return VSL_ERROR_OK;
    case VSL_INIT_METHOD_SKIPAHEAD:
        s.value += (params[0] + (n > 1 ? uint64_t{params[1]} << 32 : 0)) * s.step;
        return VSL_ERROR_OK;
    default:
        return VSL_ERROR_FEATURE_NOT_IMPLEMENTED;
    }
}

template <class R>
int count_reals(VSLStreamStatePtr pointer, int n, R r[], R a, R)
{
    auto &s = *static_cast<counter_stream *>(pointer);
    for (int i = 0; i < n; ++i, s.value += s.step)
        r[i] = a + static_cast<R>(s.value);
    return VSL_ERROR_OK;
}

int count_words(VSLStreamStatePtr pointer, int n, unsigned r[])
{
    auto &s = *static_cast<counter_stream *>(pointer);
    for (int i = 0; i < n; ++i, s.value += s.step)
        std::memcpy(r + 2 * i, &s.value, sizeof s.value);
    return VSL_ERROR_OK;
}

constexpr VSLBRngProperties counting = {
    sizeof(counter_stream), 1,          1, 8, 64, init_counter, count_reals<float>,
    count_reals<double>,    count_words};

int32_t counting_generator()
{
    static const int32_t brng = vsl().add(&counting);
    return brng;
}

TEST(RegisteredGenerators, ServeStreamsAsBasicOnesDo)
{
    const int32_t brng = counting_generator();
    ASSERT_GT(brng, VSL_BRNG_PHILOX4X32X10);
    VSLBRngProperties p{};
    EXPECT_EQ(vsl().properties(brng, &p), VSL_STATUS_OK);
    EXPECT_EQ(std::memcmp(&p, &counting, sizeof p), 0);
    const random_stream s(brng, {5});
    EXPECT_EQ(vsl().brng(s), brng);
    EXPECT_EQ(s.doubles(3, 0, 100), (std::vector<double>{5, 6, 7}));
    EXPECT_EQ(s.floats(2, 1, 100), (std::vector<float>{9, 10}));
    EXPECT_EQ(s.elements<uint64_t>(2), (std::vector<uint64_t>{10, 11}));
    EXPECT_EQ(s.doubles(1)[0], std::nextafter(1., 0.)) << "numbers beyond the interval are pulled in";
}

TEST(RegisteredGenerators, AreMovedCopiedAndSaved)
{
    const random_stream s(counting_generator(), {0});
    EXPECT_EQ(vsl().skip(s, (int64_t{1} << 40) + 2), VSL_STATUS_OK);
    EXPECT_EQ(vsl().leapfrog(s, 1, 10), VSL_STATUS_OK);
    std::vector<char> memory(static_cast<size_t>(vsl().size(s)));
    ASSERT_EQ(vsl().save(s, memory.data()), VSL_STATUS_OK);
    VSLStreamStatePtr made = nullptr;
    ASSERT_EQ(vsl().load(&made, memory.data()), VSL_STATUS_OK);
    const random_stream loaded(made), copy = s.copy();
    const uint64_t start = (uint64_t{1} << 40) + 3;
    for (const random_stream *each : {&s, &copy, &loaded})
        EXPECT_EQ(each->elements<uint64_t>(2), (std::vector<uint64_t>{start, start + 10}));
    const uint64_t beyond[2] = {0, 1};
    EXPECT_EQ(vsl().skip_far(s, 2, beyond), VSL_RNG_ERROR_SKIPAHEADEX_UNSUPPORTED);
}

TEST(RegisteredGenerators, MayRefuseAStart)
{
    VSLStreamStatePtr none = nullptr;
    const uint32_t refused = 666;
    EXPECT_EQ(vsl().create(&none, counting_generator(), 1, &refused), -77);
    EXPECT_EQ(none, nullptr);
}

TEST(RegisteredGenerators, WrongPropertiesAreRefused)
{
    const auto status_with = [](auto change) {
        VSLBRngProperties p = counting;
        change(p);
        return vsl().add(&p);
    };
    const int32_t before = vsl().known();
    EXPECT_EQ(status_with([](auto &p) { p.StreamStateSize = 15; }), VSL_RNG_ERROR_BAD_STREAM_STATE_SIZE);
    EXPECT_EQ(status_with([](auto &p) { p.WordSize = 5; }), VSL_RNG_ERROR_BAD_WORD_SIZE);
    EXPECT_EQ(status_with([](auto &p) { p.NSeeds = -1; }), VSL_RNG_ERROR_BAD_NSEEDS);
    EXPECT_EQ(status_with([](auto &p) { p.NBits = 65; }), VSL_RNG_ERROR_BAD_NBITS);
    EXPECT_EQ(status_with([](auto &p) { p.NBits = 0; }), VSL_RNG_ERROR_BAD_NBITS);
    EXPECT_EQ(status_with([](auto &p) { p.iBRng = nullptr; }), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().add(nullptr), VSL_ERROR_BADARGS);
    EXPECT_EQ(vsl().known(), before);
}

// Last of all: nothing can be registered any more.
TEST(RegisteredGenerators, ZzThreadsFillTheTable)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int32_t brng; (brng = vsl().add(&counting)) != VSL_RNG_ERROR_BRNG_TABLE_FULL;) {
                ASSERT_GT(brng, VSL_BRNG_PHILOX4X32X10);
                EXPECT_EQ(random_stream(brng, {1}).elements<uint64_t>(1)[0], 1u);
            }
        });
    for (std::thread &each : threads)
        each.join();
    EXPECT_EQ(vsl().known(), VSL_MAX_REG_BRNGS);
}

} // namespace
