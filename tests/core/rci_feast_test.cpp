// FEAST over the default core: eigenvalues of pencils whose spectrum is known, in every storage and type, and
// against LAPACK.
#include "element_types.h"

#include "xkl_lapack.h"
#include "xkl_service.h"
#include "xkl_solvers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>
#include <vector>

namespace {

using element_types::real_of;

/// The drivers of a type under one name each
template <class T>
constexpr auto drivers()
{
    if constexpr (std::is_same_v<T, float>)
        return std::make_tuple(sfeast_syev, sfeast_sygv, sfeast_sbev, sfeast_sbgv, sfeast_scsrev,
                               sfeast_scsrgv);
    else if constexpr (std::is_same_v<T, double>)
        return std::make_tuple(dfeast_syev, dfeast_sygv, dfeast_sbev, dfeast_sbgv, dfeast_scsrev,
                               dfeast_scsrgv);
    else if constexpr (std::is_same_v<T, std::complex<float>>)
        return std::make_tuple(cfeast_heev, cfeast_hegv, cfeast_hbev, cfeast_hbgv, cfeast_hcsrev,
                               cfeast_hcsrgv);
    else
        return std::make_tuple(zfeast_heev, zfeast_hegv, zfeast_hbev, zfeast_hbgv, zfeast_hcsrev,
                               zfeast_hcsrgv);
}

/// A tridiagonal matrix of order n with equal elements along its diagonals, or, for complex types, one
/// that is similar to it by phases: its eigenvalues are diagonal + 2 beside cos(k pi/(n+1)).
template <class T>
struct tridiagonal {
    int64_t n;
    double diagonal, beside;

    T at(int64_t i, int64_t j) const
    {
        if (i == j)
            return static_cast<T>(static_cast<real_of<T>>(diagonal));
        if (std::abs(i - j) != 1)
            return T(0);
        const auto value = static_cast<real_of<T>>(beside);
        if constexpr (std::is_same_v<T, real_of<T>>)
            return value;
        else
            return i > j ? T(0, value) : T(0, -value);
    }
    double eigenvalue(int64_t k) const
    {
        return diagonal +
               2 * beside *
                   std::cos(static_cast<double>(k) * std::numbers::pi / static_cast<double>(n + 1));
    }
    static bool given(char uplo, int64_t i, int64_t j)
    {
        return uplo == 'F' || (uplo == 'L' ? i >= j : i <= j);
    }

    /// Elements that are not given are no numbers: nobody may look at them.
    std::vector<T> dense(char uplo) const
    {
        std::vector<T> a(n * n, T(std::numeric_limits<real_of<T>>::quiet_NaN()));
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < n; ++i)
                if (given(uplo, i, j))
                    a[i + j * n] = at(i, j);
        return a;
    }
    std::vector<T> band(char uplo) const
    {
        const int64_t rows = uplo == 'F' ? 3 : 2, above = uplo == 'L' ? 0 : 1;
        std::vector<T> a(rows * n, T(0));
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = std::max<int64_t>(0, j - 1); i <= std::min(n - 1, j + 1); ++i)
                if (given(uplo, i, j))
                    a[i - j + above + j * rows] = at(i, j);
        return a;
    }
    struct rows {
        std::vector<T> a;
        std::vector<int64_t> ia{1}, ja;
    };
    rows compressed(char uplo) const
    {
        rows r;
        for (int64_t i = 0; i < n; ++i) {
            for (int64_t j = std::max<int64_t>(0, i - 1); j <= std::min(n - 1, i + 1); ++j)
                if (given(uplo, i, j)) {
                    r.a.push_back(at(i, j));
                    r.ja.push_back(j + 1);
                }
            r.ia.push_back(static_cast<int64_t>(r.a.size()) + 1);
        }
        return r;
    }
};

template <class T>
struct outcome {
    using real = real_of<T>;
    std::vector<int64_t> fpm = std::vector<int64_t>(128);
    int64_t loop = -1, m0, m = -1, info = -99;
    real epsout = -1, emin, emax;
    std::vector<real> e, res;
    std::vector<T> x;

    outcome(int64_t n, int64_t subspace, double low, double high)
        : m0(subspace), emin(static_cast<real>(low)), emax(static_cast<real>(high)), e(subspace),
          res(subspace), x(n * subspace)
    {
        feastinit(fpm.data());
    }
};

template <class T>
class feast : public testing::Test {
  protected:
    using real = real_of<T>;
    static constexpr int64_t n = 60, one = 1;
    static constexpr double low = 0.9, high = 2.1;
    const tridiagonal<T> a{n, 2, -1}, b{n, 4.0 / 6, -1.0 / 6}; // the pair shares its eigenvectors

    outcome<T> fresh() const { return {n, 30, low, high}; }
    std::vector<double> expected(bool pair) const
    {
        std::vector<double> values;
        for (int64_t k = 1; k <= n; ++k) {
            const double value = pair ? a.eigenvalue(k) / b.eigenvalue(k) : a.eigenvalue(k);
            if (low <= value && value <= high)
                values.push_back(value);
        }
        std::sort(values.begin(), values.end());
        return values;
    }

    /// The vectors are those of the pencil, and orthonormal in B.
    void expect_found(const outcome<T> &found, bool pair) const
    {
        const std::vector<double> values = expected(pair);
        const double close = sizeof(real) == 4 ? 2e-5 : 1e-11;
        ASSERT_EQ(found.info, 0);
        ASSERT_EQ(found.m, static_cast<int64_t>(values.size()));
        ASSERT_GT(found.m, 5);
        for (int64_t k = 0; k < found.m; ++k) {
            EXPECT_NEAR(static_cast<double>(found.e[k]), values[k], close) << k;
            EXPECT_LT(static_cast<double>(found.res[k]), 20 * close) << k;
            for (int64_t other = 0; other <= k; ++other) {
                std::complex<double> product = 0;
                for (int64_t i = 0; i < n; ++i)
                    for (int64_t j = std::max<int64_t>(0, i - 1); j <= std::min(n - 1, i + 1); ++j) {
                        const std::complex<double> entry = pair     ? std::complex<double>(b.at(i, j))
                                                           : i == j ? 1.0
                                                                    : 0.0;
                        product += std::conj(std::complex<double>(found.x[i + other * n])) * entry *
                                   std::complex<double>(found.x[j + k * n]);
                    }
                EXPECT_NEAR(std::abs(product), other == k ? 1 : 0, 20 * close) << other << " " << k;
            }
        }
    }
};

TYPED_TEST_SUITE(feast, element_types::all_types);

TYPED_TEST(feast, dense_matrices)
{
    const auto [single, pair, band, band_pair, rows, row_pair] = drivers<TypeParam>();
    for (const char uplo : {'L', 'U', 'F'}) {
        SCOPED_TRACE(uplo);
        const auto a = this->a.dense(uplo), b = this->b.dense(uplo);
        auto r = this->fresh();
        single(&uplo, &this->n, a.data(), &this->n, r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax,
               &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
        this->expect_found(r, false);
        r = this->fresh();
        pair(&uplo, &this->n, a.data(), &this->n, b.data(), &this->n, r.fpm.data(), &r.epsout, &r.loop,
             &r.emin, &r.emax, &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
        this->expect_found(r, true);
    }
}

TYPED_TEST(feast, band_matrices)
{
    const auto [single, pair, band, band_pair, rows, row_pair] = drivers<TypeParam>();
    for (const char uplo : {'L', 'U', 'F'}) {
        SCOPED_TRACE(uplo);
        const auto a = this->a.band(uplo), b = this->b.band(uplo);
        const int64_t ld = uplo == 'F' ? 3 : 2;
        auto r = this->fresh();
        band(&uplo, &this->n, &this->one, a.data(), &ld, r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax,
             &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
        this->expect_found(r, false);
        r = this->fresh();
        band_pair(&uplo, &this->n, &this->one, a.data(), &ld, &this->one, b.data(), &ld, r.fpm.data(),
                  &r.epsout, &r.loop, &r.emin, &r.emax, &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(),
                  &r.info);
        this->expect_found(r, true);
    }
}

TYPED_TEST(feast, sparse_matrices)
{
    const auto [single, pair, band, band_pair, rows, row_pair] = drivers<TypeParam>();
    for (const char uplo : {'L', 'U', 'F'}) {
        SCOPED_TRACE(uplo);
        const auto a = this->a.compressed(uplo), b = this->b.compressed(uplo);
        auto r = this->fresh();
        rows(&uplo, &this->n, a.a.data(), a.ia.data(), a.ja.data(), r.fpm.data(), &r.epsout, &r.loop,
             &r.emin, &r.emax, &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
        this->expect_found(r, false);
        r = this->fresh();
        row_pair(&uplo, &this->n, a.a.data(), a.ia.data(), a.ja.data(), b.a.data(), b.ia.data(),
                 b.ja.data(), r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax, &r.m0, r.e.data(),
                 r.x.data(), &r.m, r.res.data(), &r.info);
        this->expect_found(r, true);
    }
}

/// Above a thousand unknowns the systems are solved by another engine.
template <class T>
void expect_middle_of_spectrum(int64_t n)
{
    const tridiagonal<T> matrix{n, 2, -1};
    const auto a = matrix.compressed('U');
    const char uplo = 'U';
    outcome<T> r(n, 30, 2.0, 2.025);
    std::get<4>(drivers<T>())(&uplo, &n, a.a.data(), a.ia.data(), a.ja.data(), r.fpm.data(), &r.epsout,
                              &r.loop, &r.emin, &r.emax, &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(),
                              &r.info);
    ASSERT_EQ(r.info, 0);
    std::vector<double> expected;
    for (int64_t k = 1; k <= n; ++k)
        if (const double value = matrix.eigenvalue(k); 2.0 <= value && value <= 2.025)
            expected.push_back(value);
    ASSERT_EQ(r.m, static_cast<int64_t>(expected.size()));
    for (int64_t k = 0; k < r.m; ++k)
        EXPECT_NEAR(r.e[k], expected[k], 1e-11);
}

TEST(large_sparse_feast, finds_the_middle_of_the_spectrum)
{
    expect_middle_of_spectrum<double>(3000);
    expect_middle_of_spectrum<std::complex<double>>(3000);
}

class feast_control : public testing::Test {
  protected:
    static constexpr int64_t n = 60;
    const tridiagonal<double> matrix{n, 2, -1};
    const std::vector<double> a = matrix.dense('F');
    const char full = 'F';

    void run(outcome<double> &r, int64_t order = n)
    {
        dfeast_syev(&full, &order, a.data(), &n, r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax, &r.m0,
                    r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
    }
};

TEST_F(feast_control, random_matrix_has_the_eigenvalues_of_lapack)
{
    std::vector<double> random(n * n), values(n), work(100 * n);
    uint32_t state = 1;
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = j; i < n; ++i)
            random[i + j * n] =
                static_cast<double>((state = state * 1664525u + 1013904223u) >> 8) * 0x1p-24 - 0.5;
    outcome<double> r(n, 40, -1.0, 1.0);
    const char lower = 'L', none = 'N';
    dfeast_syev(&lower, &n, random.data(), &n, r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax, &r.m0,
                r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
    const int64_t length = static_cast<int64_t>(work.size());
    int64_t info = 1;
    dsyev(&none, &lower, &n, random.data(), &n, values.data(), work.data(), &length, &info);
    ASSERT_EQ(info, 0);
    ASSERT_EQ(r.info, 0);
    const auto first = std::lower_bound(values.begin(), values.end(), -1.0);
    ASSERT_EQ(r.m, std::upper_bound(first, values.end(), 1.0) - first);
    for (int64_t k = 0; k < r.m; ++k)
        EXPECT_NEAR(r.e[k], first[k], 1e-11);
}

TEST_F(feast_control, other_rules_and_criteria_find_the_same)
{
    outcome<double> usual(n, 30, 0.9, 2.1);
    run(usual);
    for (const int variant : {0, 1, 2, 3}) {
        SCOPED_TRACE(variant);
        outcome<double> r(n, 30, 0.9, 2.1);
        if (variant == 0)
            r.fpm[1] = 16, r.fpm[15] = 1; // trapezoidal
        else if (variant == 1)
            r.fpm[5] = 1, r.fpm[2] = 10; // by residuals
        else if (variant == 2)
            r.fpm[17] = 30; // a flat ellipse
        else {
            r = usual; // from vectors that are known
            feastinit(r.fpm.data());
            r.m0 = 30, r.fpm[4] = 1;
        }
        run(r);
        ASSERT_EQ(r.info, 0);
        ASSERT_EQ(r.m, usual.m);
        for (int64_t k = 0; k < r.m; ++k)
            EXPECT_NEAR(r.e[k], usual.e[k], 1e-10);
        EXPECT_TRUE(variant != 3 || r.loop <= 1) << r.loop;
    }
}

TEST_F(feast_control, says_how_it_ended)
{
    outcome<double> r(n, 30, 0.9, 2.1);
    r.fpm[3] = 0;
    run(r);
    EXPECT_EQ(r.info, 2) << "no loop, no convergence";
    r = outcome<double>(n, 5, 0.9, 2.1);
    run(r);
    EXPECT_EQ(r.info, 3) << "more eigenvalues than the subspace holds";
    r = outcome<double>(n, n / 2, 3.9973, 3.9974);
    run(r);
    EXPECT_EQ(r.info, 0) << "more room than the filter leaves directions";
    EXPECT_EQ(r.m, 1);
    EXPECT_LT(r.m0, n / 2);
    r = outcome<double>(n, 5, 5.0, 6.0);
    run(r);
    EXPECT_EQ(r.info, 1) << "nothing lies there";
    EXPECT_EQ(r.m, 0);
    r = outcome<double>(n, 30, 0.9, 2.1);
    r.fpm[13] = 1;
    run(r);
    EXPECT_EQ(r.info, 4);
}

/// The projected problem of such a B does not reach routines that would report bad arguments.
TEST_F(feast_control, notices_a_matrix_b_that_is_negative)
{
    static int reports;
    reports = 0;
    const xkl_xerbla_handler before =
        xkl_set_xerbla([](const char *, const int64_t *, int64_t) { ++reports; });
    std::vector<double> b(n * n);
    for (int64_t i = 0; i < n; ++i)
        b[i * (n + 1)] = -1;
    outcome<double> r(n, 30, 0.9, 2.1);
    dfeast_sygv(&full, &n, a.data(), &n, b.data(), &n, r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax,
                &r.m0, r.e.data(), r.x.data(), &r.m, r.res.data(), &r.info);
    EXPECT_EQ(r.info, -3);
    xkl_set_xerbla(before);
    EXPECT_EQ(reports, 0);
}

TEST_F(feast_control, refuses_what_it_cannot_do)
{
    const auto refusal = [&](auto change, int64_t order = n) {
        outcome<double> r(n, 30, 0.9, 2.1);
        const std::vector<double> before = r.x;
        change(r);
        run(r, order);
        EXPECT_EQ(r.x, before) << "nothing is written";
        return r.info;
    };
    using run_of = outcome<double>;
    EXPECT_EQ(refusal([](run_of &r) { r.emax = r.emin; }), 200);
    EXPECT_EQ(refusal([](run_of &r) { r.emin = std::nan(""); }), 200);
    EXPECT_EQ(refusal([](run_of &r) { r.m0 = 0; }), 201);
    EXPECT_EQ(refusal([](run_of &r) { r.m0 = n + 1; }), 201);
    EXPECT_EQ(refusal([](run_of &) {}, 0), -102);
    EXPECT_EQ(refusal([](run_of &) {}, n + 1), -104) << "lda";
    for (const auto &[place, value] : std::vector<std::pair<int, int64_t>>{{1, 2},
                                                                           {2, 0},
                                                                           {3, 17},
                                                                           {4, -1},
                                                                           {5, 2},
                                                                           {6, 3},
                                                                           {7, 9},
                                                                           {14, 2},
                                                                           {16, 2},
                                                                           {18, 0},
                                                                           {27, 1},
                                                                           {28, 1}})
        EXPECT_EQ(refusal([place = place, value = value](run_of &r) { r.fpm[place - 1] = value; }),
                  100 + place);
}

/// Products are all that it may ask for.
TEST_F(feast_control, polynomial_filter_needs_products_alone)
{
    for (const int64_t degree : {0, 60}) {
        outcome<double> r(n, 30, 0.9, 2.1), usual(n, 30, 0.9, 2.1);
        run(usual);
        std::vector<double> work(n * 30), aq(900), bq(900);
        std::vector<std::complex<double>> workc(n * 30);
        std::complex<double> ze;
        int64_t job = -1, products = 0;
        do {
            dfeast_srci_pfilter(&job, &n, &ze, work.data(), workc.data(), aq.data(), bq.data(),
                                r.fpm.data(), &r.epsout, &r.loop, &r.emin, &r.emax, &r.m0, r.e.data(),
                                r.x.data(), &r.m, r.res.data(), &degree, &r.info);
            ASSERT_TRUE(job == 30 || job == 0) << job;
            for (int64_t k = r.fpm[23] - 1; job == 30 && k < r.fpm[23] - 1 + r.fpm[24]; ++k, ++products)
                for (int64_t i = 0; i < n; ++i)
                    work[i + k * n] = 2 * r.x[i + k * n] - (i > 0 ? r.x[i - 1 + k * n] : 0) -
                                      (i + 1 < n ? r.x[i + 1 + k * n] : 0);
        } while (job != 0);
        ASSERT_EQ(r.info, 0);
        ASSERT_EQ(r.m, usual.m);
        EXPECT_GT(products, 100);
        for (int64_t k = 0; k < r.m; ++k)
            EXPECT_NEAR(r.e[k], usual.e[k], 1e-10);
    }
}

} // namespace
