// LAPACK's main computations in all types, called as Fortran programs call them, and judged as the field
// judges them: by residuals in units of the machine's precision, relative to the norms and the size of the
// problem.
#include "lapack_matrix.h"
#include "xkl.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

using namespace lapack_tests;

constexpr int64_t sizes[] = {1, 2, 5, 33, 130}; // below, at and above the sizes of blocks
constexpr int64_t one = 1;

/// Fortran takes everything by address.
template <class A>
auto address(const A &argument)
{
    if constexpr (std::is_pointer_v<std::decay_t<A>>)
        return argument;
    else
        return &argument;
}

template <class T>
T *address(matrix<T> &argument)
{
    return argument.data();
}

template <class T>
T *address(std::vector<T> &argument)
{
    return argument.data();
}

/// Calls with work space of the size that the routine asks for; the list ends there with lwork and info,
/// and in the complex routines rwork stands before info.
template <class T, class F, class... A>
void with_workspace(F routine, std::vector<real_of<T>> *rwork, A &&...arguments)
{
    int64_t lwork = -1, info = 1;
    std::vector<T> work(1);
    const auto call = [&] {
        if constexpr (std::is_invocable_v<F, decltype(address(arguments))..., T *, int64_t *, int64_t *>)
            routine(address(arguments)..., work.data(), &lwork, &info);
        else
            routine(address(arguments)..., work.data(), &lwork, rwork->data(), &info);
        ASSERT_EQ(info, 0);
    };
    call();
    lwork = static_cast<int64_t>(std::real(work[0]));
    work.resize(static_cast<size_t>(lwork));
    call();
}

template <class T>
struct routines;

#define ROUTINES(T, t, o, sy)                                                                              \
    template <>                                                                                            \
    struct routines<T> {                                                                                   \
        static constexpr auto gesv = t##gesv_;                                                             \
        static constexpr auto potrf = t##potrf_;                                                           \
        static constexpr auto potrs = t##potrs_;                                                           \
        static constexpr auto geqrf = t##geqrf_;                                                           \
        static constexpr auto orgqr = t##o##gqr_;                                                          \
        static constexpr auto gels = t##gels_;                                                             \
        static constexpr auto gesvd = t##gesvd_;                                                           \
        static constexpr auto syev = t##sy##ev_;                                                           \
        static constexpr auto geev = t##geev_;                                                             \
        static constexpr auto latms = t##latms_;                                                           \
    };
ROUTINES(float, s, or, sy)
ROUTINES(double, d, or, sy)
ROUTINES(complex8, c, un, he)
ROUTINES(complex16, z, un, he)

template <class T>
class lapack : public testing::Test {
  protected:
    using real = real_of<T>;
    using call = routines<T>;
};

TYPED_TEST_SUITE(lapack, all_types);

TYPED_TEST(lapack, solves_general_systems)
{
    using T = TypeParam;
    for (const int64_t n : sizes) {
        const auto a = matrix<T>::random(n, n), b = matrix<T>::random(n, 3);
        auto lu = a, x = b;
        std::vector<int64_t> pivots(static_cast<size_t>(n));
        int64_t info = 1;
        TestFixture::call::gesv(&n, &b.columns, lu.data(), &n, pivots.data(), x.data(), &n, &info);
        ASSERT_EQ(info, 0);
        EXPECT_LT(in_units(a * x - b, norm(a) * norm(x), n), threshold) << n;
    }
}

TYPED_TEST(lapack, factors_positive_definite_matrices)
{
    using T = TypeParam;
    for (const int64_t n : sizes)
        for (const char uplo : {'U', 'l'}) {
            const auto a = hermitian<T>(n, static_cast<real_of<T>>(2 * n));
            const auto b = matrix<T>::random(n, 2);
            auto factor = a, x = b;
            int64_t info = 1;
            TestFixture::call::potrf(&uplo, &n, factor.data(), &n, &info);
            ASSERT_EQ(info, 0);
            TestFixture::call::potrs(&uplo, &n, &b.columns, factor.data(), &n, x.data(), &n, &info);
            EXPECT_LT(in_units(a * x - b, norm(a) * norm(x), n), threshold) << n << uplo;
            for (int64_t j = 0; j < n; ++j)
                for (int64_t i = 0; i < n; ++i)
                    if (uplo == 'U' ? i > j : i < j)
                        factor(i, j) = 0;
            const auto product = uplo == 'U' ? adjoint(factor) * factor : factor * adjoint(factor);
            EXPECT_LT(in_units(a - product, norm(a), n), threshold) << n << uplo;
        }
}

TYPED_TEST(lapack, factors_into_orthogonal_and_triangular)
{
    using T = TypeParam;
    for (const int64_t n : sizes) {
        const int64_t m = n + 7;
        const auto a = matrix<T>::random(m, n);
        auto q = a;
        std::vector<T> tau(static_cast<size_t>(n));
        with_workspace<T>(TestFixture::call::geqrf, nullptr, m, n, q, m, tau);
        matrix<T> r(n, n);
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i <= j; ++i)
                r(i, j) = q(i, j);
        with_workspace<T>(TestFixture::call::orgqr, nullptr, m, n, n, q, m, tau);
        EXPECT_LT(in_units(a - q * r, norm(a), m), threshold) << n;
        EXPECT_LT(in_units(adjoint(q) * q - identity<T>(n), 1, m), threshold) << n;
    }
}

TYPED_TEST(lapack, fits_least_squares)
{
    using T = TypeParam;
    for (const int64_t n : sizes) {
        const int64_t m = 2 * n + 3;
        const auto a = matrix<T>::random(m, n), b = matrix<T>::random(m, 2);
        auto factored = a, solution = b;
        with_workspace<T>(TestFixture::call::gels, nullptr, "N", m, n, b.columns, factored, m, solution, m);
        matrix<T> x(n, b.columns);
        for (int64_t j = 0; j < b.columns; ++j)
            for (int64_t i = 0; i < n; ++i)
                x(i, j) = solution(i, j);
        // The residual of the best fit is orthogonal to the columns.
        const auto residual = a * x - b;
        EXPECT_LT(in_units(adjoint(a) * residual, norm(a) * norm(b), m), threshold) << n;
    }
}

TYPED_TEST(lapack, finds_singular_values)
{
    using T = TypeParam;
    using real = real_of<T>;
    for (const int64_t n : sizes) {
        const int64_t m = n + 4;
        const auto a = matrix<T>::random(m, n);
        auto destroyed = a;
        matrix<T> u(m, n), vt(n, n);
        std::vector<real> s(static_cast<size_t>(n)), rwork(static_cast<size_t>(5 * n));
        with_workspace<T>(TestFixture::call::gesvd, &rwork, "S", "S", m, n, destroyed, m, s, u, m, vt, n);
        EXPECT_TRUE(std::is_sorted(s.rbegin(), s.rend())) << n;
        EXPECT_LT(in_units(a - scaled_columns(u, s) * vt, norm(a), m), threshold) << n;
        EXPECT_LT(in_units(adjoint(u) * u - identity<T>(n), 1, m), threshold) << n;
        EXPECT_LT(in_units(vt * adjoint(vt) - identity<T>(n), 1, m), threshold) << n;
    }
}

TYPED_TEST(lapack, diagonalizes_hermitian_matrices)
{
    using T = TypeParam;
    using real = real_of<T>;
    for (const int64_t n : sizes) {
        const auto a = hermitian<T>(n, 0);
        auto v = a;
        std::vector<real> w(static_cast<size_t>(n)), rwork(static_cast<size_t>(3 * n));
        with_workspace<T>(TestFixture::call::syev, &rwork, "V", "L", n, v, n, w);
        EXPECT_TRUE(std::is_sorted(w.begin(), w.end())) << n;
        EXPECT_LT(in_units(a * v - scaled_columns(v, w), norm(a), n), threshold) << n;
        EXPECT_LT(in_units(adjoint(v) * v - identity<T>(n), 1, n), threshold) << n;
    }
}

TYPED_TEST(lapack, diagonalizes_general_matrices)
{
    using T = TypeParam;
    using real = real_of<T>;
    using complex = std::complex<real>;
    for (const int64_t n : sizes) {
        const auto a = matrix<T>::random(n, n);
        auto destroyed = a;
        matrix<T> right(n, n);
        matrix<complex> all(n, n), v(n, n);
        std::vector<complex> w(static_cast<size_t>(n));
        std::transform(a.elements.begin(), a.elements.end(), all.elements.begin(),
                       [](T x) { return complex(x); });
        if constexpr (is_complex<T>) {
            std::vector<real> rwork(static_cast<size_t>(2 * n));
            with_workspace<T>(TestFixture::call::geev, &rwork, "N", "V", n, destroyed, n, w,
                              static_cast<T *>(nullptr), one, right, n);
            v = right;
        } else {
            std::vector<real> re(static_cast<size_t>(n)), im(static_cast<size_t>(n));
            with_workspace<T>(TestFixture::call::geev, nullptr, "N", "V", n, destroyed, n, re, im,
                              static_cast<T *>(nullptr), one, right, n);
            for (int64_t j = 0; j < n; ++j) { // conjugate pairs share two columns
                const real sign = im[static_cast<size_t>(j)] < 0 ? -1 : 1;
                const bool real_value = im[static_cast<size_t>(j)] == 0;
                const int64_t first = sign < 0 ? j - 1 : j;
                w[static_cast<size_t>(j)] = {re[static_cast<size_t>(j)], im[static_cast<size_t>(j)]};
                for (int64_t i = 0; i < n; ++i)
                    v(i, j) = {right(i, first), real_value ? 0 : sign * right(i, first + 1)};
            }
        }
        EXPECT_LT(in_units(all * v - scaled_columns(v, w), norm(all) * norm(v), n), threshold) << n;
    }
}

TYPED_TEST(lapack, makes_matrices_with_given_singular_values)
{
    using T = TypeParam;
    using real = real_of<T>;
    const int64_t n = 20, mode = 0, full = n - 1;
    int64_t seed[] = {1, 2, 3, 5}, info = 1;
    std::vector<real> wanted(n), s(n), rwork(5 * n);
    std::iota(wanted.rbegin(), wanted.rend(), real(1));
    std::vector<T> work(3 * n);
    matrix<T> a(n, n);
    const real cond = 1, dmax = 1;
    auto given = wanted;
    TestFixture::call::latms(&n, &n, "U", seed, "N", given.data(), &mode, &cond, &dmax, &full, &full, "N",
                             a.data(), &n, work.data(), &info);
    ASSERT_EQ(info, 0);
    with_workspace<T>(TestFixture::call::gesvd, &rwork, "N", "N", n, n, a, n, s, static_cast<T *>(nullptr),
                      one, static_cast<T *>(nullptr), one);
    for (size_t i = 0; i < s.size(); ++i)
        EXPECT_NEAR(s[i], wanted[i], threshold * n * n * std::numeric_limits<real>::epsilon()) << i;
}

} // namespace
