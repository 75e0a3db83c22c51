// Random transforms of every kind, compared with the sums of the definition element by element. What lies
// between the elements must stay as it was, and so must the input of transforms out of place.
#include "fft_model.h"

#include <gtest/gtest.h>

using namespace fft_model;

namespace {

struct configuration {
    int32_t domain, storage, format, placement;
    bool forward, default_layout, may_destroy, keep_workspace;
    indices lengths;
    int64_t batch;
    double scale;
};

std::ostream &operator<<(std::ostream &out, const configuration &of)
{
    out << "domain " << of.domain << " storage " << of.storage << " format " << of.format << " placement "
        << of.placement << (of.forward ? " forward" : " backward") << (of.default_layout ? " default" : "")
        << " batch " << of.batch << " scale " << of.scale << " lengths";
    for (const int64_t each : of.lengths)
        out << ' ' << each;
    return out;
}

indices random_lengths(std::mt19937 &random, size_t dimensions, int64_t most_points)
{
    indices lengths;
    int64_t points = 1;
    for (size_t i = 0; i < dimensions; ++i) {
        const int64_t most = std::max<int64_t>(std::min<int64_t>(60, most_points / points), 1);
        lengths.push_back(1 + static_cast<int64_t>(random()) % most);
        points *= lengths.back();
    }
    std::ranges::shuffle(lengths, random);
    return lengths;
}

configuration random_configuration(std::mt19937 &random)
{
    const auto one_of = [&](std::initializer_list<int32_t> all) {
        return *(all.begin() + static_cast<int64_t>(random() % all.size()));
    };
    configuration made{};
    made.domain = one_of({DFTI_COMPLEX, DFTI_REAL});
    made.storage = made.domain == DFTI_COMPLEX ? one_of({DFTI_COMPLEX_COMPLEX, DFTI_REAL_REAL})
                                               : one_of({DFTI_COMPLEX_COMPLEX, DFTI_COMPLEX_REAL});
    made.format = made.storage == DFTI_COMPLEX_REAL
                      ? one_of({DFTI_CCS_FORMAT, DFTI_PACK_FORMAT, DFTI_PERM_FORMAT})
                      : DFTI_CCE_FORMAT;
    made.placement = one_of({DFTI_INPLACE, DFTI_NOT_INPLACE});
    made.forward = random() % 2;
    made.default_layout = random() % 3 == 0;
    made.may_destroy = random() % 4 == 0;
    made.keep_workspace = random() % 2;
    const size_t dimensions = made.storage == DFTI_COMPLEX_REAL ? 1 + random() % 2 : 1 + random() % 4;
    made.lengths = random_lengths(random, dimensions, 900);
    made.batch = random() % 2 ? 1 : 1 + static_cast<int64_t>(random() % 9);
    made.scale = random() % 2 ? 1 : 0.37;
    return made;
}

// One test case: its numbers, where they go in and where they come out.
template <class T>
class trial {
  public:
    trial(std::mt19937 &random, const configuration &of)
        : of_(of), transform_(sizeof(T) == 4 ? DFTI_SINGLE : DFTI_DOUBLE, of.domain, of.lengths)
    {
        choose_layouts(random);
        make_numbers(random);
    }

    void run()
    {
        configure();
        ASSERT_EQ(transform_.commit(), 0);
        const bool in_place = of_.placement == DFTI_INPLACE;
        std::array<std::vector<T>, 2> in{room(), room()}, out{room(), room()};
        for (int64_t b = 0; b < of_.batch; ++b)
            put(in, of_.forward, in_, b, numbers_in_[static_cast<size_t>(b)]);
        const auto before = in;
        auto &result = in_place ? in : out;
        auto expected = result;
        for (int64_t b = 0; b < of_.batch; ++b)
            put(expected, !of_.forward, out_, b, numbers_out_[static_cast<size_t>(b)]);
        ASSERT_EQ(compute(in, out), 0);
        ASSERT_TRUE(in_place || of_.may_destroy || in == before);
        for (size_t part = 0; part < 2; ++part)
            compare(result[part], expected[part], before[part]);
    }

  private:
    bool split() const { return of_.domain == DFTI_COMPLEX && of_.storage == DFTI_REAL_REAL; }
    bool packed() const { return of_.storage == DFTI_COMPLEX_REAL; }

    int32_t compute(std::array<std::vector<T>, 2> &in, std::array<std::vector<T>, 2> &out) const
    {
        T *const x = in[0].data(), *const y = out[0].data();
        if (of_.placement == DFTI_INPLACE)
            return transform_.compute(of_.forward, x, split() ? in[1].data() : nullptr);
        return split() ? transform_.compute(of_.forward, x, in[1].data(), y, out[1].data())
                       : transform_.compute(of_.forward, x, y);
    }

    // Elements of a side by dimension.
    indices extents(bool forward_side) const
    {
        indices all = of_.lengths;
        if (of_.domain == DFTI_REAL && !forward_side && !packed())
            all[0] = all[0] / 2 + 1;
        if (packed() && !forward_side)
            for (int64_t &each : all)
                each = packed_rows(of_.format, each).size();
        return all;
    }
    // Reals to an element of a side.
    int64_t unit(bool forward_side) const
    {
        if (of_.domain == DFTI_COMPLEX)
            return split() ? 1 : 2;
        return forward_side || packed() ? 1 : 2;
    }

    placing tight(const indices &rows) const
    {
        placing made;
        int64_t stride = 1;
        for (const int64_t each : rows) {
            made.strides.push_back(stride);
            stride *= each;
        }
        made.distance = stride;
        return made;
    }

    void choose_layouts(std::mt19937 &random)
    {
        const bool in_place = of_.placement == DFTI_INPLACE;
        const indices in = extents(of_.forward), out = extents(!of_.forward);
        if (of_.domain == DFTI_COMPLEX) {
            in_ = of_.default_layout ? tight(in) : random_placing(random, in, of_.batch, true);
            out_ = in_place             ? in_
                   : of_.default_layout ? tight(out)
                                        : random_placing(random, out, of_.batch, true);
            return;
        }
        if (!of_.default_layout) {
            in_ = random_placing(random, in, of_.batch, true);
            out_ = random_placing(random, out, of_.batch, true);
            return;
        }
        indices real = extents(true);
        const indices spectrum = extents(false);
        if (in_place && unit(false) == 2)
            real[0] = 2 * spectrum[0];
        else if (in_place)
            for (size_t i = 0; i < real.size(); ++i)
                real[i] = std::max(real[i], spectrum[i]);
        in_ = tight(of_.forward ? real : spectrum);
        out_ = tight(of_.forward ? spectrum : real);
    }

    void make_numbers(std::mt19937 &random)
    {
        std::uniform_real_distribution<double> uniform(-1, 1);
        for (int64_t b = 0; b < of_.batch; ++b) {
            std::vector<value> x(static_cast<size_t>(product(of_.lengths)));
            for (value &each : x)
                each = {static_cast<T>(uniform(random)),
                        of_.domain == DFTI_REAL ? T(0) : static_cast<T>(uniform(random))};
            // A conjugate-even input is the spectrum of real numbers.
            if (of_.domain == DFTI_REAL && !of_.forward)
                x = transform(x, of_.lengths, -1);
            for (const value &each : x)
                norm_ += std::norm(each) / static_cast<long double>(of_.batch);
            auto y = transform(x, of_.lengths, of_.forward ? -1 : 1);
            for (value &each : y)
                each *= static_cast<T>(of_.scale);
            numbers_in_.push_back(std::move(x));
            numbers_out_.push_back(std::move(y));
        }
    }

    void configure()
    {
        ASSERT_EQ(transform_.status, 0);
        ASSERT_EQ(transform_.set(DFTI_PLACEMENT, of_.placement), 0);
        ASSERT_EQ(
            transform_.set(of_.domain == DFTI_COMPLEX ? DFTI_COMPLEX_STORAGE : DFTI_CONJUGATE_EVEN_STORAGE,
                           of_.storage),
            0);
        ASSERT_EQ(transform_.set(DFTI_PACKED_FORMAT, of_.format), 0);
        ASSERT_EQ(transform_.set(DFTI_NUMBER_OF_TRANSFORMS, of_.batch), 0);
        ASSERT_EQ(transform_.set(DFTI_DESTROY_INPUT, of_.may_destroy ? DFTI_ALLOW : DFTI_AVOID), 0);
        ASSERT_EQ(transform_.set(DFTI_WORKSPACE, of_.keep_workspace ? DFTI_ALLOW : DFTI_AVOID), 0);
        transform_.scale(of_.forward ? of_.scale : 77, of_.forward ? 77 : of_.scale);
        if (of_.default_layout)
            return;
        transform_.strides(in_, out_);
        if (of_.batch > 1)
            transform_.distances(in_, out_);
    }

    std::vector<T> room() const
    {
        int64_t most = 0;
        for (const bool input : {true, false}) {
            const bool forward_side = input == of_.forward;
            const placing &where = input ? in_ : out_;
            int64_t reach = where.offset + (of_.batch - 1) * std::abs(where.distance);
            const indices all = extents(forward_side);
            for (size_t i = 0; i < all.size(); ++i)
                reach += (all[i] - 1) * std::abs(where.strides[i]);
            most = std::max(most, (reach + 1) * unit(forward_side));
        }
        return std::vector<T>(static_cast<size_t>(most + 8), T(-12345));
    }

    // Writes the numbers of a transform to the places of a side.
    void put(std::array<std::vector<T>, 2> &to, bool forward_side, const placing &where, int64_t b,
             const std::vector<value> &numbers) const
    {
        if (packed() && !forward_side) {
            for (const auto &[place, number] : packed_places(of_.format, of_.lengths, numbers, where, b))
                to[0].at(static_cast<size_t>(place)) = static_cast<T>(number);
            return;
        }
        const bool half = of_.domain == DFTI_REAL && !forward_side;
        for_each_index(of_.lengths, [&](const indices &k, int64_t place) {
            if (half && 2 * k[0] > of_.lengths[0])
                return;
            const value number = numbers[static_cast<size_t>(place)];
            const auto element = static_cast<size_t>(where.at(k, b) * unit(forward_side));
            to[0].at(element) = static_cast<T>(number.real());
            if (split())
                to[1].at(element) = static_cast<T>(number.imag());
            else if (unit(forward_side) == 2)
                to[0].at(element + 1) = static_cast<T>(number.imag());
        });
    }

    // What is not expected to be anything was part of an in-place input, and may be anything.
    void compare(const std::vector<T> &got, const std::vector<T> &expected,
                 const std::vector<T> &input) const
    {
        const auto points = static_cast<long double>(product(of_.lengths));
        const long double bound =
            16 * std::numeric_limits<T>::epsilon() * (1 + std::log2(points)) * std::sqrt(norm_) * of_.scale;
        for (size_t i = 0; i < got.size(); ++i) {
            if (of_.placement == DFTI_INPLACE && expected[i] == input[i] && input[i] != T(-12345))
                continue;
            ASSERT_LE(std::abs(got[i] - expected[i]), bound)
                << "at " << i << ": " << got[i] << ", not " << expected[i];
        }
    }

    configuration of_;
    descriptor transform_;
    placing in_, out_;
    std::vector<std::vector<value>> numbers_in_, numbers_out_;
    long double norm_ = 0;
};

template <class T>
class Results : public testing::Test {
};
using precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(Results, precisions);

TYPED_TEST(Results, AreTheSumsOfTheDefinition)
{
    std::mt19937 random(20261123);
    for (int round = 0; round < 800; ++round) {
        const configuration of = random_configuration(random);
        trial<TypeParam> one(random, of);
        one.run();
        ASSERT_FALSE(this->HasFatalFailure()) << "round " << round << ": " << of;
    }
}

// More than the cache takes at once: chunks, the last one shorter.
TYPED_TEST(Results, OfLargeBatches)
{
    std::mt19937 random(61);
    for (int round = 0; round < 60; ++round) {
        configuration of = random_configuration(random);
        of.lengths = round % 2 ? indices{30, 21} : indices{59};
        of.batch = round % 2 ? 61 : 307;
        trial<TypeParam> one(random, of);
        one.run();
        ASSERT_FALSE(this->HasFatalFailure()) << of;
    }
}

// Real data forward and backward in place has the results that it has out of place.
template <class T>
void expect_same_in_place(const indices &lengths, int64_t batch, const placing &real,
                          const placing &spectrum)
{
    const auto computed = [&](bool forward, int32_t placement, std::vector<T> x) {
        descriptor one(sizeof(T) == 4 ? DFTI_SINGLE : DFTI_DOUBLE, DFTI_REAL, lengths);
        one.set(DFTI_PLACEMENT, placement);
        one.set(DFTI_NUMBER_OF_TRANSFORMS, batch);
        one.strides(forward ? real : spectrum, forward ? spectrum : real);
        one.distances(forward ? real : spectrum, forward ? spectrum : real);
        EXPECT_EQ(one.commit(), 0);
        std::vector<T> y(x.size());
        EXPECT_EQ(one.compute(forward, x.data(), placement == DFTI_INPLACE ? nullptr : y.data()), 0);
        return placement == DFTI_INPLACE ? x : y;
    };
    indices last = lengths;
    for (int64_t &each : last)
        --each;
    std::vector<T> x(
        static_cast<size_t>(2 + std::max(real.at(last, batch - 1), 2 * spectrum.at(last, batch - 1))));
    std::mt19937 random(4);
    std::uniform_real_distribution<T> uniform(-1, 1);
    std::ranges::generate(x, [&] { return uniform(random); });
    const std::vector<T> there = computed(true, DFTI_NOT_INPLACE, x);
    const std::vector<T> back = computed(false, DFTI_NOT_INPLACE, there);
    const std::vector<T> there_in_place = computed(true, DFTI_INPLACE, x);
    const std::vector<T> back_in_place = computed(false, DFTI_INPLACE, there);
    const auto expect_near = [&](const std::vector<T> &got, const std::vector<T> &expected, int64_t at) {
        const auto place = static_cast<size_t>(at);
        ASSERT_NEAR(got[place], expected[place], 100 * std::numeric_limits<T>::epsilon()) << at;
    };
    for (int64_t b = 0; b < batch; ++b)
        for_each_index(lengths, [&](const indices &k, int64_t) {
            expect_near(back_in_place, back, real.at(k, b));
            for (int64_t part = 0; 2 * k[0] <= lengths[0] && part < 2; ++part)
                expect_near(there_in_place, there, 2 * spectrum.at(k, b) + part);
        });
}

TYPED_TEST(Results, InPlaceElsewhereThanTheInput)
{
    using T = TypeParam;
    // Rows of the spectrum further apart than those of the data, the batch between the rows: results lie
    // among the input of other transforms.
    for (const int64_t batch : {4, 4000})
        expect_same_in_place<T>({4, 3}, batch, {0, {1, 6 * batch}, 6}, {0, {1, 3 * batch + 3}, 3});
    // FFTW's planner does not come back from these.
    expect_same_in_place<T>({2, 3}, 1, {0, {1, 7}, 0}, {0, {9, 20}, 0});
    expect_same_in_place<T>({4, 2}, 1, {2, {2, 18}, 0}, {1, {1, 24}, 0});
    expect_same_in_place<T>({2, 4}, 2, {0, {2, 9}, 42}, {0, {1, 2}, 21});
}

TYPED_TEST(Results, InFiveToSevenDimensions)
{
    std::mt19937 random(7);
    for (size_t dimensions = 5; dimensions <= 7; ++dimensions)
        for (int round = 0; round < 20; ++round) {
            configuration of = random_configuration(random);
            of.storage = DFTI_COMPLEX_COMPLEX;
            of.format = DFTI_CCE_FORMAT;
            of.lengths.clear();
            for (size_t i = 0; i < dimensions; ++i)
                of.lengths.push_back(1 + static_cast<int64_t>(random() % 4));
            trial<TypeParam> one(random, of);
            one.run();
            ASSERT_FALSE(this->HasFatalFailure()) << of;
        }
}

} // namespace
