// Sparse level 1 against its definitions, element by element.
#include "blas_reference.h"

namespace {
using namespace blas_test;

BLAS_ENTRY(, axpyi);
BLAS_ENTRY(, gthr);
BLAS_ENTRY(, gthrz);
BLAS_ENTRY(, sctr);

constexpr int64_t places[] = {7, 1, 4, 10}, nz = 4, length = 10; // places from 1, in no order

template <class T>
struct sparse1 : ::testing::Test {
    strided<T> x{nz, 1}, y{length, 1};
    const strided<T> old_x = x, old_y = y;

    wide old_at(int64_t i) const { return widen(old_y[places[i] - 1]); }

    /// Place i of y: what the routine made of the stored element there, or untouched
    template <class Made>
    void expect_y(const Made &made)
    {
        for (int64_t i = 0; i < length; ++i) {
            const auto found = std::find(places, places + nz, i + 1);
            expect_close(y[i], found == places + nz ? widen(old_y[i]) : made(found - places), 2, "y");
        }
        EXPECT_TRUE(x.canaries_live() && y.canaries_live());
    }

    template <class Left>
    wide dot(const Left &left) const
    {
        wide sum = 0;
        for (int64_t i = 0; i < nz; ++i)
            sum += left(i) * old_at(i);
        return sum;
    }
};
TYPED_TEST_SUITE(sparse1, all_types);

TYPED_TEST(sparse1, adds_gathers_and_scatters)
{
    using T = TypeParam;
    const T a = scalar<T>(1.5, -.5);
    axpyi<T>(&nz, &a, this->x.data(), places, this->y.data());
    this->expect_y([&](int64_t i) { return this->old_at(i) + widen(a) * widen(this->x[i]); });
    this->y = this->old_y;
    gthr<T>(&nz, this->y.data(), this->x.data(), places);
    this->expect_y([&](int64_t i) { return widen(this->x[i]); });
    gthrz<T>(&nz, this->y.data(), this->x.data(), places);
    this->expect_y([](int64_t) { return wide(0); });
    sctr<T>(&nz, this->x.data(), places, this->y.data());
    this->expect_y([&](int64_t i) { return this->old_at(i); });
}

TYPED_TEST(sparse1, serves_a_place_as_often_as_it_is_named)
{
    using T = TypeParam;
    const int64_t twice[] = {3, 3}, two = 2;
    const T a = 2;
    axpyi<T>(&two, &a, this->x.data(), twice, this->y.data());
    expect_close(this->y[2], widen(this->old_y[2]) + 2.L * (widen(this->x[0]) + widen(this->x[1])), 4, "y");
    gthrz<T>(&two, this->y.data(), this->x.data(), twice);
    EXPECT_EQ(this->x[1], T(0));
    for (const int64_t none : {int64_t{0}, int64_t{-3}}) {
        axpyi<T>(&none, &a, nullptr, nullptr, nullptr);
        gthr<T>(&none, nullptr, nullptr, nullptr);
        gthrz<T>(&none, nullptr, nullptr, nullptr);
        sctr<T>(&none, nullptr, nullptr, nullptr);
    }
}

template <class T>
using sparse1_real = sparse1<T>;
TYPED_TEST_SUITE(sparse1_real, real_types);

TYPED_TEST(sparse1_real, dot_and_rotation)
{
    using T = TypeParam;
    const auto x = [&](int64_t i) { return widen(this->old_x[i]); };
    const T sum =
        pick<T>(xkl_blas_sdoti, xkl_blas_ddoti, 0, 0)(&nz, this->x.data(), places, this->y.data());
    expect_close(sum, this->dot(x), nz, "dot");
    const T c = T(.8), s = T(.6);
    pick<T>(xkl_blas_sroti, xkl_blas_droti, 0, 0)(&nz, this->x.data(), places, this->y.data(), &c, &s);
    this->expect_y([&](int64_t i) { return widen(c) * this->old_at(i) - widen(s) * x(i); });
    for (int64_t i = 0; i < nz; ++i)
        expect_close(this->x[i], widen(c) * x(i) + widen(s) * this->old_at(i), 2, "x");
}

template <class T>
using sparse1_complex = sparse1<T>;
TYPED_TEST_SUITE(sparse1_complex, complex_types);

TYPED_TEST(sparse1_complex, dots_store_their_result)
{
    using T = TypeParam;
    T sum = not_a_number<T>();
    const int64_t none = 0;
    const auto dotci = pick<T>(0, 0, xkl_blas_cdotci, xkl_blas_zdotci);
    pick<T>(0, 0, xkl_blas_cdotui, xkl_blas_zdotui)(&sum, &nz, this->x.data(), places, this->y.data());
    expect_close(sum, this->dot([&](int64_t i) { return widen(this->x[i]); }), nz, "dotui");
    dotci(&sum, &nz, this->x.data(), places, this->y.data());
    expect_close(sum, this->dot([&](int64_t i) { return std::conj(widen(this->x[i])); }), nz, "dotci");
    dotci(&sum, &none, nullptr, nullptr, nullptr);
    EXPECT_EQ(sum, T(0));
}

} // namespace
