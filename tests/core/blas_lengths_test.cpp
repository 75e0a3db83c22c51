// Level-1 reductions at every length around the kernels' blocks, in steps of 1, 2 and -1: vectorised
// kernels go wrong at the edges of their blocks, and a kernel set that does must not be chosen.
#include "blas_reference.h"

namespace {
using namespace blas_test;

template <class T>
struct lengths : ::testing::Test {
};
TYPED_TEST_SUITE(lengths, all_types);

constexpr int64_t longest = 150;

TYPED_TEST(lengths, sums_norms_and_places)
{
    using T = TypeParam;
    const auto asum = pick<T>(xkl_blas_sasum, xkl_blas_dasum, xkl_blas_scasum, xkl_blas_dzasum);
    const auto nrm2 = pick<T>(xkl_blas_snrm2, xkl_blas_dnrm2, xkl_blas_scnrm2, xkl_blas_dznrm2);
    const auto amax = pick<T>(xkl_blas_isamax, xkl_blas_idamax, xkl_blas_icamax, xkl_blas_izamax);
    for (const int64_t inc : {1, 2})
        for (int64_t n = 0; n <= longest; ++n) {
            const strided<T> x(n, inc);
            long double sum = 0, squares = 0, most = -1;
            int64_t place = 0;
            for (int64_t i = 0; i < n; ++i) {
                const long double size = std::abs(widen(x[i]).real()) + std::abs(widen(x[i]).imag());
                sum += size;
                squares += std::norm(widen(x[i]));
                if (static_cast<real_of<T>>(size) > most) {
                    most = static_cast<real_of<T>>(size);
                    place = i + 1;
                }
            }
            const auto name = "n " + std::to_string(n) + " inc " + std::to_string(inc);
            expect_close(T(asum(&n, x.data(), &inc)), wide(sum), 2 * n + 1, name.c_str());
            expect_close(T(nrm2(&n, x.data(), &inc)), wide(std::sqrt(squares)), 2 * n + 1, name.c_str());
            const int64_t found = amax(&n, x.data(), &inc);
            ASSERT_TRUE(found == place || (n > 0 && found > 0 && found <= n)) << name;
            if (n > 0) {
                const wide value = widen(x[found - 1]);
                EXPECT_GE(std::abs(value.real()) + std::abs(value.imag()), most * (1 - 1e-6L)) << name;
            }
        }
}

TYPED_TEST(lengths, updates)
{
    using T = TypeParam;
    const auto axpy = pick<T>(xkl_blas_saxpy, xkl_blas_daxpy, xkl_blas_caxpy, xkl_blas_zaxpy);
    const auto scal = pick<T>(xkl_blas_sscal, xkl_blas_dscal, xkl_blas_cscal, xkl_blas_zscal);
    const T alpha = scalar<T>(1.25, -.5);
    for (const int64_t inc : {1, 2, -1})
        for (int64_t n = 1; n <= longest; ++n) {
            const strided<T> x(n, inc);
            strided<T> y(n, 1);
            const strided<T> before = y;
            axpy(&n, &alpha, x.data(), &inc, y.data(), &y.inc);
            for (int64_t i = 0; i < n; ++i)
                expect_close(y[i], widen(alpha) * widen(x[i]) + widen(before[i]), 4, "axpy");
            scal(&n, &alpha, y.data(), &y.inc);
            for (int64_t i = 0; i < n; ++i)
                expect_close(y[i], widen(alpha) * (widen(alpha) * widen(x[i]) + widen(before[i])), 8,
                             "scal");
        }
}

} // namespace
