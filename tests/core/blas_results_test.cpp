// How the entries over OpenBLAS hand back their results: real values, 64-bit places, and complex values
// through the address that leads the list.
#include "blas_reference.h"

namespace {
using namespace blas_test;

template <class T>
struct results : ::testing::Test {
};
TYPED_TEST_SUITE(results, complex_types);

TYPED_TEST(results, complex_products_are_stored)
{
    constexpr auto dotc = pick<TypeParam>(0, 0, xkl_blas_cdotc, xkl_blas_zdotc);
    constexpr auto dotu = pick<TypeParam>(0, 0, xkl_blas_cdotu, xkl_blas_zdotu);
    const int64_t n = 37;
    strided<TypeParam> x(n, 2), y(n, -3);
    TypeParam sum;
    const auto right = [&](int64_t i) { return widen(y[i]); };
    dotu(&sum, &n, x.data(), &x.inc, y.data(), &y.inc);
    expect_close(sum,
                 inner(
                     n, [&](int64_t i) { return widen(x[i]); }, right),
                 n, "dotu");
    dotc(&sum, &n, x.data(), &x.inc, y.data(), &y.inc);
    expect_close(sum,
                 inner(
                     n, [&](int64_t i) { return std::conj(widen(x[i])); }, right),
                 n, "dotc");
    const int64_t none = 0;
    dotc(&sum, &none, x.data(), &x.inc, y.data(), &y.inc);
    EXPECT_EQ(sum, TypeParam(0));
}

TEST(results, real_functions)
{
    const int64_t n = 3, inc = 1;
    const float x[] = {3, -4, 12}, y[] = {1, 2, .5f}, b = 10;
    const double dx[] = {3, -4, 12};
    const std::complex<float> cx[] = {{3, -4}, {0, 12}, {0, 0}};
    const std::complex<double> zx[] = {{3, -4}, {0, 12}, {0, 0}};
    EXPECT_EQ(xkl_blas_sdot(&n, x, &inc, y, &inc), 1.f);
    EXPECT_EQ(xkl_blas_sdsdot(&n, &b, x, &inc, y, &inc), 11.f);
    EXPECT_EQ(xkl_blas_dsdot(&n, x, &inc, y, &inc), 1.);
    EXPECT_FLOAT_EQ(xkl_blas_snrm2(&n, x, &inc), 13.f);
    EXPECT_DOUBLE_EQ(xkl_blas_dnrm2(&n, dx, &inc), 13.);
    EXPECT_FLOAT_EQ(xkl_blas_scnrm2(&n, cx, &inc), 13.f);
    EXPECT_DOUBLE_EQ(xkl_blas_dznrm2(&n, zx, &inc), 13.);
    EXPECT_EQ(xkl_blas_sasum(&n, x, &inc), 19.f);
    EXPECT_EQ(xkl_blas_scasum(&n, cx, &inc), 19.f);
    EXPECT_EQ(xkl_blas_dzasum(&n, zx, &inc), 19.);
    EXPECT_EQ(xkl_blas_scabs1(cx), 7.f);
    EXPECT_EQ(xkl_blas_dcabs1(zx), 7.);
}

TEST(results, places)
{
    const int64_t n = 3, none = 0, inc = 1;
    const double x[] = {3, -4, 1};
    const std::complex<float> c[] = {{3, -4}, {0, 12}, {0, 1}};
    EXPECT_EQ(xkl_blas_idamax(&n, x, &inc), 2);
    EXPECT_EQ(xkl_blas_idamin(&n, x, &inc), 3);
    EXPECT_EQ(xkl_blas_icamax(&n, c, &inc), 2);
    EXPECT_EQ(xkl_blas_icamin(&n, c, &inc), 3);
    EXPECT_EQ(xkl_blas_idamax(&none, x, &inc), 0);
    EXPECT_EQ(xkl_blas_icamin(&none, c, &inc), 0);
}

// The rotations of complex vectors by a complex sine come from another part of OpenBLAS than the rest of
// level 1.
TYPED_TEST(results, complex_rotation)
{
    constexpr auto rot = pick<TypeParam>(0, 0, xkl_blas_crot, xkl_blas_zrot);
    const int64_t n = 5;
    strided<TypeParam> x(n, -2), y(n, 1);
    const strided<TypeParam> a = x, b = y;
    const real_of<TypeParam> c = real_of<TypeParam>(.6);
    const TypeParam s = scalar<TypeParam>(.48, .64);
    rot(&n, x.data(), &x.inc, y.data(), &y.inc, &c, &s);
    for (int64_t i = 0; i < n; ++i) {
        expect_close(x[i], widen(c) * widen(a[i]) + widen(s) * widen(b[i]), 2, "x");
        expect_close(y[i], widen(c) * widen(b[i]) - std::conj(widen(s)) * widen(a[i]), 2, "y");
    }
}

} // namespace
