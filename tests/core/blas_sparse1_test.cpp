// Sparse level 1 against its definitions, element by element.
#include "blas_reference.h"

namespace {
using namespace blas_test;

BLAS_ENTRY(, axpyi);
BLAS_ENTRY(, gthr);
BLAS_ENTRY(, gthrz);
BLAS_ENTRY(, sctr);

constexpr int64_t places[] = {7, 1, 4, 10}; // from 1, in no order
constexpr int64_t nz = 4, length = 10;

template <class T>
struct sparse1 : ::testing::Test {
    strided<T> x{nz, 1}, y{length, 1};
    const strided<T> old_x = x, old_y = y;

    /// Place i of y: what the routine made of the stored element there, or untouched
    void expect_y(const std::function<wide(int64_t)> &made)
    {
        for (int64_t i = 0; i < length; ++i) {
            const auto found = std::find(places, places + nz, i + 1);
            if (found == places + nz)
                EXPECT_EQ(y[i], old_y[i]);
            else
                expect_close(y[i], made(found - places), 2, "y");
        }
        EXPECT_TRUE(x.gaps_are_whole() && y.gaps_are_whole());
    }
    wide old_at(int64_t i) const { return widen(old_y[places[i] - 1]); }
};
TYPED_TEST_SUITE(sparse1, all_types);

TYPED_TEST(sparse1, adds_at_the_places)
{
    const TypeParam a = scalar<TypeParam>(1.5, -.5);
    axpyi<TypeParam>(&nz, &a, this->x.data(), places, this->y.data());
    this->expect_y([&](int64_t i) { return this->old_at(i) + widen(a) * widen(this->x[i]); });
}

TYPED_TEST(sparse1, gathers_and_scatters)
{
    gthr<TypeParam>(&nz, this->y.data(), this->x.data(), places);
    this->expect_y([&](int64_t i) { return this->old_at(i); });
    for (int64_t i = 0; i < nz; ++i)
        EXPECT_EQ(this->x[i], this->old_y[places[i] - 1]);
    gthrz<TypeParam>(&nz, this->y.data(), this->x.data(), places);
    this->expect_y([](int64_t) { return wide(0); });
    sctr<TypeParam>(&nz, this->x.data(), places, this->y.data());
    this->expect_y([&](int64_t i) { return this->old_at(i); });
}

TYPED_TEST(sparse1, a_place_named_twice_is_served_twice)
{
    const int64_t twice[] = {3, 3}, two = 2;
    const TypeParam a = 2;
    axpyi<TypeParam>(&two, &a, this->x.data(), twice, this->y.data());
    expect_close(this->y[2], widen(this->old_y[2]) + 2.L * (widen(this->x[0]) + widen(this->x[1])), 4, "y");
    gthrz<TypeParam>(&two, this->y.data(), this->x.data(), twice);
    EXPECT_EQ(this->x[1], TypeParam(0));
}

TYPED_TEST(sparse1, nothing_happens_without_elements)
{
    for (const int64_t none : {int64_t{0}, int64_t{-3}}) {
        const TypeParam a = 2;
        axpyi<TypeParam>(&none, &a, nullptr, nullptr, nullptr);
        gthr<TypeParam>(&none, nullptr, nullptr, nullptr);
        gthrz<TypeParam>(&none, nullptr, nullptr, nullptr);
        sctr<TypeParam>(&none, nullptr, nullptr, nullptr);
    }
}

template <class T>
using sparse1_real = sparse1<T>;
TYPED_TEST_SUITE(sparse1_real, real_types);

TYPED_TEST(sparse1_real, dot_and_rotation)
{
    constexpr auto doti = pick<TypeParam>(xkl_blas_sdoti, xkl_blas_ddoti, 0, 0);
    constexpr auto roti = pick<TypeParam>(xkl_blas_sroti, xkl_blas_droti, 0, 0);
    const TypeParam sum = doti(&nz, this->x.data(), places, this->y.data());
    const auto x = [&](int64_t i) { return widen(this->old_x[i]); };
    expect_close(sum, inner(nz, x, [&](int64_t i) { return this->old_at(i); }), nz, "dot");
    const TypeParam c = TypeParam(.8), s = TypeParam(.6);
    roti(&nz, this->x.data(), places, this->y.data(), &c, &s);
    this->expect_y([&](int64_t i) { return widen(c) * this->old_at(i) - widen(s) * x(i); });
    for (int64_t i = 0; i < nz; ++i)
        expect_close(this->x[i], widen(c) * x(i) + widen(s) * this->old_at(i), 2, "x");
    const int64_t none = -1;
    EXPECT_EQ(doti(&none, nullptr, nullptr, nullptr), 0);
}

template <class T>
using sparse1_complex = sparse1<T>;
TYPED_TEST_SUITE(sparse1_complex, complex_types);

TYPED_TEST(sparse1_complex, dots_store_their_result)
{
    constexpr auto dotui = pick<TypeParam>(0, 0, xkl_blas_cdotui, xkl_blas_zdotui);
    constexpr auto dotci = pick<TypeParam>(0, 0, xkl_blas_cdotci, xkl_blas_zdotci);
    const auto y = [&](int64_t i) { return this->old_at(i); };
    TypeParam sum;
    dotui(&sum, &nz, this->x.data(), places, this->y.data());
    expect_close(sum,
                 inner(
                     nz, [&](int64_t i) { return widen(this->x[i]); }, y),
                 nz, "dotui");
    dotci(&sum, &nz, this->x.data(), places, this->y.data());
    expect_close(sum,
                 inner(
                     nz, [&](int64_t i) { return std::conj(widen(this->x[i])); }, y),
                 nz, "dotci");
    const int64_t none = 0;
    dotci(&sum, &none, nullptr, nullptr, nullptr);
    EXPECT_EQ(sum, TypeParam(0));
}

} // namespace
