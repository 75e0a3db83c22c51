// Random problems of every planner with guru's freedom, over the whole stack, against direct sums: 1 to 3
// dimensions, orders and gaps of the dimensions at random, one transform or several, in place or not, with
// the plan's arrays and with others. What lies between the elements of the output must stay as it was.
#include "direct_sums.h"
#include "fftw_family.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

namespace {

using direct::numbers;
using lengths = std::vector<int>;

constexpr int problems_of_each_kind = 60;

/// Where the elements of a batch of arrays lie: a stride a dimension, the batch first.
struct layout {
    lengths n; // the batch first
    std::vector<ptrdiff_t> strides;
    ptrdiff_t size = 1;

    /// The dimensions nested in a random order, with gaps.
    static layout random(const lengths &n, std::mt19937 &numbers_of)
    {
        layout made{n, std::vector<ptrdiff_t>(n.size()), 1};
        std::vector<size_t> order(n.size());
        std::iota(order.begin(), order.end(), size_t{0});
        std::shuffle(order.begin(), order.end(), numbers_of);
        for (const size_t dimension : order) {
            made.strides[dimension] = made.size;
            made.size *= n[dimension] + static_cast<int>(numbers_of() % 2);
        }
        return made;
    }

    static layout row_major(const lengths &n, ptrdiff_t last)
    {
        layout made{n, std::vector<ptrdiff_t>(n.size()), 1};
        for (size_t i = n.size(); i-- > 0;) {
            made.strides[i] = made.size;
            made.size *= i == n.size() - 1 ? last : n[i];
        }
        return made;
    }

    size_t count() const
    {
        return std::accumulate(n.begin(), n.end(), size_t{1}, std::multiplies<size_t>());
    }

    /// Place of an element by its row-major number.
    ptrdiff_t place(size_t element) const
    {
        ptrdiff_t at = 0;
        for (size_t i = n.size(); i-- > 0; element /= n[i])
            at += static_cast<ptrdiff_t>(element % n[i]) * strides[i];
        return at;
    }
};

struct guru_dims {
    std::vector<fftw_iodim64> dims;
    fftw_iodim64 batch;

    guru_dims(const lengths &n, const layout &in, const layout &out)
        : batch{n[0], in.strides[0], out.strides[0]}
    {
        for (size_t i = 1; i < n.size(); ++i)
            dims.push_back({n[i], in.strides[i], out.strides[i]});
    }

    int rank() const { return static_cast<int>(dims.size()); }
};

template <class Real>
class random_plans : public testing::Test {
  protected:
    using family = fftw<Real>;
    using plan_type = typename family::plan;
    using complex_pair = typename family::complex;
    using array = std::vector<std::complex<Real>>; // as wide as the wider side

    /// Batch and lengths.
    lengths random_lengths(int least = 1)
    {
        static constexpr int most[] = {24, 11, 7};
        const int rank = 1 + pick(3);
        lengths n{1 + pick(3)};
        for (int i = 0; i < rank; ++i)
            n.push_back(least + pick(most[rank - 1]));
        return n;
    }

    int pick(int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); }
    Real number() { return static_cast<Real>(std::uniform_real_distribution<double>(-1, 1)(random)); }

    array noise(ptrdiff_t size)
    {
        array made(static_cast<size_t>(size));
        for (auto &each : made)
            each = {number(), number()};
        return made;
    }

    /// One element a transform at a time, in row-major order.
    template <class Element>
    static numbers gathered(const Element *from, const layout &at)
    {
        numbers all(at.count());
        for (size_t i = 0; i < all.size(); ++i)
            all[i] = std::complex<long double>(from[at.place(i)]);
        return all;
    }

    /// Applies `transform` to every array of a batch.
    template <class Transform>
    static numbers each_of(const numbers &batch, int count, const Transform &transform)
    {
        numbers results;
        const size_t size = batch.size() / static_cast<size_t>(count);
        for (int i = 0; i < count; ++i) {
            const numbers one(batch.begin() + i * static_cast<ptrdiff_t>(size),
                              batch.begin() + (i + 1) * static_cast<ptrdiff_t>(size));
            const numbers result = transform(one);
            results.insert(results.end(), result.begin(), result.end());
        }
        return results;
    }

    template <class Element>
    static void expect_near(const Element *results, const layout &at, const numbers &expected)
    {
        long double largest = 0, error = 0;
        for (size_t i = 0; i < expected.size(); ++i) {
            const std::complex<long double> result(results[at.place(i)]);
            largest = std::max(largest, std::abs(expected[i]));
            error = std::max(error, std::abs(result - expected[i]));
        }
        EXPECT_LE(error, 50 * std::numeric_limits<Real>::epsilon() * largest);
    }

    /// What is no element has kept its value.
    template <class Element>
    static void expect_gaps_kept(const Element *now, const Element *before, const layout &at)
    {
        std::vector<bool> element(static_cast<size_t>(at.size));
        for (size_t i = 0; i < at.count(); ++i)
            element[static_cast<size_t>(at.place(i))] = true;
        for (size_t i = 0; i < element.size(); ++i) {
            if (!element[i]) {
                ASSERT_EQ(now[i], before[i]) << i;
            }
        }
    }

    static complex_pair *pairs(array &data) { return reinterpret_cast<complex_pair *>(data.data()); }
    static Real *reals(array &data) { return reinterpret_cast<Real *>(data.data()); }

    std::mt19937 random{20240611};
};

using precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(random_plans, precisions);

TYPED_TEST(random_plans, complex)
{
    using family = fftw<TypeParam>;
    for (int problem = 0; problem < problems_of_each_kind; ++problem) {
        const lengths n = this->random_lengths(), inner(n.begin() + 1, n.end());
        const bool in_place = this->pick(2), other_arrays = this->pick(2);
        const int sign = this->pick(2) ? FFTW_FORWARD : FFTW_BACKWARD;
        const layout in = layout::random(n, this->random),
                     out = in_place ? in : layout::random(n, this->random);
        const guru_dims guru(n, in, out);
        auto source = this->noise(in.size), target = this->noise(out.size);
        auto plan_source = source, plan_target = target;
        const auto kept_source = source, kept_target = in_place ? source : target;
        auto &result = in_place ? source : target;
        auto &planned = other_arrays ? plan_source : source;
        auto &planned_out = in_place ? planned : other_arrays ? plan_target : target;
        const auto plan =
            family::plan_guru64_dft(guru.rank(), guru.dims.data(), 1, &guru.batch, this->pairs(planned),
                                    this->pairs(planned_out), sign, FFTW_ESTIMATE);
        ASSERT_NE(plan, nullptr);
        if (other_arrays)
            family::execute_dft(plan, this->pairs(source), this->pairs(result));
        else
            family::execute(plan);
        family::destroy_plan(plan);
        const numbers expected =
            this->each_of(this->gathered(kept_source.data(), in), n[0],
                          [&](const numbers &one) { return direct::fourier_all(one, inner, sign); });
        this->expect_near(result.data(), out, expected);
        this->expect_gaps_kept(result.data(), kept_target.data(), out);
        if (!in_place) {
            EXPECT_EQ(source, kept_source);
        }
        if (other_arrays) {
            EXPECT_EQ(plan_source, kept_source) << "the plan's own arrays";
        }
        ASSERT_FALSE(this->HasFailure()) << "problem " << problem;
    }
}

TYPED_TEST(random_plans, split)
{
    using family = fftw<TypeParam>;
    for (int problem = 0; problem < problems_of_each_kind; ++problem) {
        const lengths n = this->random_lengths(), inner(n.begin() + 1, n.end());
        const bool in_place = this->pick(2), backward = this->pick(2);
        const layout in = layout::random(n, this->random),
                     out = in_place ? in : layout::random(n, this->random);
        const guru_dims guru(n, in, out);
        std::vector<TypeParam> parts[4];
        for (int i = 0; i < 4; ++i)
            for (ptrdiff_t j = i < 2 ? in.size : out.size; j > 0; --j)
                parts[i].push_back(this->number());
        numbers given = this->gathered(parts[0].data(), in);
        const numbers imaginary = this->gathered(parts[1].data(), in);
        for (size_t i = 0; i < given.size(); ++i)
            given[i] = {given[i].real(), imaginary[i].real()};
        TypeParam *arrays[4];
        for (int i = 0; i < 4; ++i)
            arrays[i] = parts[in_place ? i % 2 : i].data();
        if (backward) { // with the parts exchanged
            std::swap(arrays[0], arrays[1]);
            std::swap(arrays[2], arrays[3]);
        }
        const auto plan =
            family::plan_guru64_split_dft(guru.rank(), guru.dims.data(), 1, &guru.batch, arrays[0],
                                          arrays[1], arrays[2], arrays[3], FFTW_ESTIMATE);
        ASSERT_NE(plan, nullptr);
        family::execute(plan);
        family::destroy_plan(plan);
        const numbers expected = this->each_of(given, n[0], [&](const numbers &one) {
            return direct::fourier_all(one, inner, backward ? FFTW_BACKWARD : FFTW_FORWARD);
        });
        std::vector<std::complex<TypeParam>> joined(static_cast<size_t>(out.size));
        for (size_t i = 0; i < joined.size(); ++i)
            joined[i] = {parts[in_place ? 0 : 2][i], parts[in_place ? 1 : 3][i]};
        this->expect_near(joined.data(), out, expected);
        ASSERT_FALSE(this->HasFailure()) << "problem " << problem;
    }
}

TYPED_TEST(random_plans, real_to_complex_and_back)
{
    using family = fftw<TypeParam>;
    for (int problem = 0; problem < problems_of_each_kind; ++problem) {
        const lengths n = this->random_lengths(), inner(n.begin() + 1, n.end());
        lengths half = n;
        half.back() = half.back() / 2 + 1;
        const bool in_place = this->pick(2);
        const layout wide =
            in_place ? layout::row_major(n, 2 * half.back()) : layout::random(n, this->random);
        const layout narrow =
            in_place ? layout::row_major(half, half.back()) : layout::random(half, this->random);
        auto data = this->noise(wide.size), spectrum = this->noise(narrow.size);
        TypeParam *x = this->reals(data);
        auto *z = in_place ? this->pairs(data) : this->pairs(spectrum);
        const numbers given = this->gathered(x, wide);
        const std::vector<TypeParam> kept(x, x + wide.size);
        const guru_dims there(n, wide, narrow), back(n, narrow, wide);
        const auto forward = family::plan_guru64_dft_r2c(there.rank(), there.dims.data(), 1, &there.batch,
                                                         x, z, FFTW_ESTIMATE);
        const auto backward =
            family::plan_guru64_dft_c2r(back.rank(), back.dims.data(), 1, &back.batch, z, x, FFTW_ESTIMATE);
        ASSERT_NE(forward, nullptr);
        ASSERT_NE(backward, nullptr);
        family::execute(forward);
        const numbers full = this->each_of(
            given, n[0], [&](const numbers &one) { return direct::fourier_all(one, inner, FFTW_FORWARD); });
        numbers expected;
        for (size_t i = 0; i < full.size(); ++i)
            if (static_cast<int>(i % static_cast<size_t>(n.back())) < half.back())
                expected.push_back(full[i]);
        this->expect_near(reinterpret_cast<std::complex<TypeParam> *>(z), narrow, expected);
        if (!in_place) {
            EXPECT_EQ(std::vector<TypeParam>(x, x + wide.size), kept);
            std::fill(x, x + wide.size, TypeParam(0));
        }
        const auto before_back = spectrum;
        family::execute(backward);
        EXPECT_EQ(spectrum, before_back) << "input is kept";
        numbers scaled = given;
        for (auto &each : scaled)
            each *= static_cast<long double>(given.size() / static_cast<size_t>(n[0]));
        this->expect_near(x, wide, scaled);
        family::destroy_plan(forward);
        family::destroy_plan(backward);
        ASSERT_FALSE(this->HasFailure()) << "problem " << problem;
    }
}

TYPED_TEST(random_plans, real_to_real_of_all_kinds)
{
    using family = fftw<TypeParam>;
    for (int problem = 0; problem < 6 * problems_of_each_kind; ++problem) {
        const lengths n = this->random_lengths(2), inner(n.begin() + 1, n.end()); // REDFT00 needs two
        const bool in_place = this->pick(2);
        std::vector<fftw_r2r_kind> kinds;
        for (size_t i = 0; i < inner.size(); ++i)
            kinds.push_back(static_cast<fftw_r2r_kind>(i == 0 ? problem % 11 : this->pick(11)));
        const layout in = layout::random(n, this->random),
                     out = in_place ? in : layout::random(n, this->random);
        const guru_dims guru(n, in, out);
        auto source = this->noise(in.size), target = this->noise(out.size);
        TypeParam *x = this->reals(source), *y = in_place ? x : this->reals(target);
        const numbers given = this->gathered(x, in);
        const auto kept = in_place ? source : target;
        const auto plan = family::plan_guru64_r2r(guru.rank(), guru.dims.data(), 1, &guru.batch, x, y,
                                                  kinds.data(), FFTW_ESTIMATE);
        ASSERT_NE(plan, nullptr);
        family::execute(plan);
        family::destroy_plan(plan);
        const numbers expected = this->each_of(given, n[0], [&](const numbers &one) {
            return direct::along_all(
                one, inner,
                [&](const direct::number *from, int stride, int length, int k, size_t dimension) {
                    return direct::real_to_real(kinds[dimension], from, stride, length, k);
                });
        });
        this->expect_near(y, out, expected);
        this->expect_gaps_kept(y, reinterpret_cast<const TypeParam *>(kept.data()), out);
        ASSERT_FALSE(this->HasFailure()) << "problem " << problem << ", kind " << kinds[0];
    }
}

} // namespace
