// How the entries over OpenBLAS hand back their results: real values in the register of their width, 64-bit
// places, and complex values through the address that leads the list.
#include "blas_reference.h"

namespace {
using namespace blas_test;

template <class T>
struct results : ::testing::Test {
};
TYPED_TEST_SUITE(results, complex_types);

TYPED_TEST(results, complex_products_are_stored)
{
    using T = TypeParam;
    const int64_t n = 37, none = 0;
    const strided<T> x(n, 2), y(n, -3);
    wide plain = 0, conjugated = 0;
    for (int64_t i = 0; i < n; ++i) {
        plain += widen(x[i]) * widen(y[i]);
        conjugated += std::conj(widen(x[i])) * widen(y[i]);
    }
    const auto dotc = pick<T>(0, 0, xkl_blas_cdotc, xkl_blas_zdotc);
    T sum;
    pick<T>(0, 0, xkl_blas_cdotu, xkl_blas_zdotu)(&sum, &n, x.data(), &x.inc, y.data(), &y.inc);
    expect_close(sum, plain, n, "dotu");
    dotc(&sum, &n, x.data(), &x.inc, y.data(), &y.inc);
    expect_close(sum, conjugated, n, "dotc");
    dotc(&sum, &none, x.data(), &x.inc, y.data(), &y.inc);
    EXPECT_EQ(sum, T(0));
}

// The rotation of complex vectors by a complex sine comes from another part of OpenBLAS than the rest of
// level 1.
TYPED_TEST(results, complex_rotation)
{
    using T = TypeParam;
    const int64_t n = 5;
    strided<T> x(n, -2), y(n, 1);
    const strided<T> a = x, b = y;
    const real_of<T> c = real_of<T>(.6);
    const T s = scalar<T>(.48, .64);
    pick<T>(0, 0, xkl_blas_crot, xkl_blas_zrot)(&n, x.data(), &x.inc, y.data(), &y.inc, &c, &s);
    for (int64_t i = 0; i < n; ++i) {
        expect_close(x[i], widen(c) * widen(a[i]) + widen(s) * widen(b[i]), 2, "x");
        expect_close(y[i], widen(c) * widen(b[i]) - std::conj(widen(s)) * widen(a[i]), 2, "y");
    }
}

TEST(results, real_values_and_places)
{
    const int64_t n = 3, none = 0, inc = 1;
    const float x[] = {3, -4, 12}, b = 10;
    const std::complex<float> c[] = {{3, -4}, {0, 12}, {0, 1}};
    EXPECT_EQ(xkl_blas_sdot(&n, x, &inc, x, &inc), 169.f);
    EXPECT_EQ(xkl_blas_sdsdot(&n, &b, x, &inc, x, &inc), 179.f);
    EXPECT_EQ(xkl_blas_dsdot(&n, x, &inc, x, &inc), 169.);
    EXPECT_FLOAT_EQ(xkl_blas_snrm2(&n, x, &inc), 13.f);
    EXPECT_EQ(xkl_blas_scasum(&n, c, &inc), 20.f);
    EXPECT_EQ(xkl_blas_scabs1(c), 7.f);
    EXPECT_EQ(xkl_blas_icamax(&n, c, &inc), 2);
    EXPECT_EQ(xkl_blas_icamin(&n, c, &inc), 3);
    EXPECT_EQ(xkl_blas_isamax(&none, x, &inc), 0);
}

} // namespace
