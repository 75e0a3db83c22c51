// Conjugate gradients, minimal residuals and incomplete factors over the default core, as callers drive them.
#include "core/rci_systems.h"
#include "xkl_solvers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

namespace {

using namespace xkl::test;

constexpr int controls = 128;

struct iteration {
    sparse_system system = grid(20);
    int64_t n = system.n, request = 0;
    std::vector<int64_t> ipar = std::vector<int64_t>(controls + 8);
    std::vector<double> x = std::vector<double>(n), b = std::vector<double>(n, 1.0),
                        dpar = std::vector<double>(controls + 8), tmp;
    std::function<void(const double *, double *)> precondition;
    int products = 0, tests = 0;

    void multiply(int64_t from, int64_t to)
    {
        system.multiply(&tmp[from], &tmp[to]);
        ++products;
    }
};

class conjugate_gradients : public testing::Test, protected iteration {
  protected:
    void SetUp() override
    {
        tmp.resize(4 * n);
        dcg_init(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
        ASSERT_EQ(request, XKL_ISS_DONE);
        ipar[8] = 1, ipar[9] = 0; // the residual decides
        ipar[4] = 500;
        dpar[0] = 1e-20; // squares
    }

    int64_t check()
    {
        ipar[5] = ipar[6] = 0; // quietly
        dcg_check(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
        return request;
    }

    int64_t solve(int tests_before_stop = std::numeric_limits<int>::max())
    {
        for (;;) {
            dcg(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
            if (request == XKL_ISS_MULTIPLY)
                multiply(0, n);
            else if (request == XKL_ISS_PRECONDITION)
                precondition(&tmp[2 * n], &tmp[3 * n]);
            else if (request != XKL_ISS_TEST || ++tests == tests_before_stop)
                return request;
        }
    }
    int64_t iterations()
    {
        int64_t count = -1;
        dcg_get(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data(), &count);
        return count;
    }
};

TEST_F(conjugate_gradients, solve_to_the_tolerance)
{
    EXPECT_EQ(check(), XKL_ISS_DONE);
    EXPECT_EQ(solve(), XKL_ISS_DONE);
    EXPECT_LE(system.residual_norm(x.data(), b.data()), 1.01e-10 * std::sqrt(n));
    EXPECT_EQ(iterations(), products - 1) << "one product is the first residual";
    EXPECT_LE(dpar[4], dpar[3]);
}

TEST_F(conjugate_gradients, preconditioning_saves_steps)
{
    for (int64_t i = 0; i < n; ++i)
        b[i] = std::sin(static_cast<double>(i)); // has parts in every direction
    solve();
    const int64_t plain = iterations();
    const sparse_system &matrix = system;
    std::vector<double> factors(matrix.a.size());
    int64_t error = 1;
    dcsrilu0(&n, matrix.a.data(), matrix.ia.data(), matrix.ja.data(), factors.data(), ipar.data(),
             dpar.data(), &error);
    ASSERT_EQ(error, 0);
    precondition = [&](const double *from, double *to) {
        solve_factors(n, factors.data(), matrix.ia.data(), matrix.ja.data(), from, to);
    };
    std::fill(x.begin(), x.end(), 0.0);
    ipar[2] = 1, ipar[10] = 1;
    EXPECT_EQ(solve(), XKL_ISS_DONE);
    EXPECT_LT(2 * iterations(), plain);
    EXPECT_LE(system.residual_norm(x.data(), b.data()), 1.01e-10 * std::sqrt(n));
}

TEST_F(conjugate_gradients, end_as_they_are_told)
{
    ipar[4] = 7;
    EXPECT_EQ(solve(), XKL_ISS_TOO_MANY_STEPS);
    EXPECT_EQ(iterations(), 7);
    ipar[2] = 1, ipar[8] = 0, ipar[9] = 1;
    EXPECT_EQ(solve(3), XKL_ISS_TEST);
    EXPECT_EQ(iterations(), 2) << "the first test comes before the first step";
}

TEST_F(conjugate_gradients, notice_that_a_matrix_allows_no_step)
{
    std::fill(system.a.begin(), system.a.end(), 0.0);
    EXPECT_EQ(solve(), XKL_ISS_BREAKDOWN);
    b[3] = std::nan("");
    ipar[2] = 1;
    EXPECT_EQ(solve(), XKL_ISS_INVALID_NORM);
    std::fill(b.begin(), b.end(), 0.0);
    std::fill(x.begin(), x.end(), 0.0);
    ipar[2] = 1;
    EXPECT_EQ(solve(), XKL_ISS_DONE) << "nothing to do";
}

TEST_F(conjugate_gradients, check_finds_mistakes)
{
    ipar[8] = ipar[7] = ipar[9] = 0;
    EXPECT_EQ(check(), XKL_ISS_CHECK_WARNING);
    ipar[0] = 3;
    EXPECT_EQ(check(), XKL_ISS_CHECK_WARNED_AND_CORRECTED);
    EXPECT_EQ(ipar[0], n);
    ipar[7] = 1, ipar[0] = 3;
    EXPECT_EQ(check(), XKL_ISS_CHECK_CORRECTED);
    dpar[0] = -1;
    EXPECT_EQ(check(), XKL_ISS_CHECK_FAILED);
    const int64_t none = 0;
    dcg_init(&none, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
    EXPECT_EQ(request, XKL_ISS_INIT_FAILED);
}

TEST(conjugate_gradients_of_many, solve_every_side)
{
    iteration it;
    const int64_t sides = 3, method = 1, n = it.n;
    std::vector<double> x(sides * n), b(sides * n);
    for (int64_t i = 0; i < n; ++i) {
        b[i] = 1;
        b[n + i] = std::sin(static_cast<double>(i));
    } // the third is zero and takes no step
    it.tmp.resize((3 + sides) * n);
    dcgmrhs_init(&n, x.data(), &sides, b.data(), &method, &it.request, it.ipar.data(), it.dpar.data(),
                 it.tmp.data());
    it.ipar[8] = 1, it.ipar[9] = 0, it.ipar[10] = 1, it.ipar[4] = 500;
    it.dpar[0] = 1e-20;
    do {
        dcgmrhs(&n, x.data(), &sides, b.data(), &it.request, it.ipar.data(), it.dpar.data(), it.tmp.data());
        const double *from = &it.tmp[it.ipar[21] - 1];
        double *to = &it.tmp[it.ipar[22] - 1];
        if (it.request == XKL_ISS_MULTIPLY)
            it.system.multiply(from, to);
        else if (it.request == XKL_ISS_PRECONDITION)
            std::transform(from, from + n, to, [](double value) { return value / 4; });
    } while (it.request > 0);
    EXPECT_EQ(it.request, XKL_ISS_DONE);
    int64_t counts[3] = {-1, -1, -1};
    dcgmrhs_get(&n, x.data(), &sides, b.data(), &it.request, it.ipar.data(), it.dpar.data(), it.tmp.data(),
                counts);
    for (int64_t side = 0; side < sides; ++side)
        EXPECT_LE(it.system.residual_norm(&x[side * n], &b[side * n]), 1e-8) << side;
    EXPECT_GT(counts[0], 10);
    EXPECT_GT(counts[1], counts[0]) << "the sine has no symmetry";
    EXPECT_EQ(counts[2], 0);
}

class minimal_residuals : public testing::Test, protected iteration {
  protected:
    void start(int64_t restart)
    {
        system = grid(20, 0.7);
        tmp.assign((2 * restart + 1) * n + restart * (restart + 9) / 2 + 1, 0);
        dfgmres_init(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
        ASSERT_EQ(request, XKL_ISS_DONE);
        ipar[14] = restart;
        ipar[8] = 1, ipar[9] = 0, ipar[11] = 1, ipar[4] = 2000;
        dpar[0] = 1e-11;
        dfgmres_check(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
        ASSERT_EQ(request, XKL_ISS_DONE);
    }

    int64_t solve()
    {
        for (;;) {
            dfgmres(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data());
            if (request == XKL_ISS_MULTIPLY)
                multiply(ipar[21] - 1, ipar[22] - 1);
            else if (request == XKL_ISS_PRECONDITION)
                precondition(&tmp[ipar[21] - 1], &tmp[ipar[22] - 1]);
            else if (request == XKL_ISS_TEST_NORM && dpar[6] < 1e-13)
                return request;
            else if (request != XKL_ISS_TEST_NORM && request != XKL_ISS_TEST)
                return request;
        }
    }
    int64_t take_solution()
    {
        int64_t count = -1;
        dfgmres_get(&n, x.data(), b.data(), &request, ipar.data(), dpar.data(), tmp.data(), &count);
        return count;
    }
    void expect_solved() { EXPECT_LE(system.residual_norm(x.data(), b.data()), 1.1e-11 * std::sqrt(n)); }
};

TEST_F(minimal_residuals, solve_with_and_without_restarts)
{
    int64_t counts[2];
    for (const int64_t restart : {10, 150}) {
        start(restart);
        std::fill(x.begin(), x.end(), 0.0);
        EXPECT_EQ(solve(), XKL_ISS_DONE);
        counts[restart > 10] = take_solution();
        expect_solved();
    }
    EXPECT_GT(counts[0], counts[1]);
}

TEST_F(minimal_residuals, preconditioner_may_change_between_steps)
{
    start(30);
    int turn = 0;
    precondition = [&](const double *from, double *to) {
        const double by = ++turn % 2 ? 0.25 : 1.0 + turn;
        std::transform(from, from + n, to, [by](double value) { return by * value; });
    };
    ipar[10] = 1;
    EXPECT_EQ(solve(), XKL_ISS_DONE);
    take_solution();
    expect_solved();
}

TEST_F(minimal_residuals, solution_can_be_looked_at_on_the_way)
{
    start(40);
    ipar[4] = 25;
    EXPECT_EQ(solve(), XKL_ISS_TOO_MANY_STEPS);
    const std::vector<double> right = b, left = x;
    ipar[12] = 1; // to b
    EXPECT_EQ(take_solution(), 25);
    EXPECT_EQ(x, left);
    const double norm = system.residual_norm(b.data(), right.data());
    EXPECT_NEAR(norm, dpar[4], 1e-9 * norm);
    b = right;
    ipar[12] = 0;
    take_solution();
    EXPECT_NEAR(system.residual_norm(x.data(), b.data()), norm, 1e-9 * norm);
    ipar[4] = 2000;
    EXPECT_EQ(solve(), XKL_ISS_DONE) << "goes on from the solution that was taken";
    take_solution();
    expect_solved();
}

TEST_F(minimal_residuals, end_where_the_basis_spans_the_solution)
{
    start(20);
    system = grid(1);
    n = ipar[0] = 1;
    ipar[11] = 0; // the caller looks at the norm
    EXPECT_EQ(solve(), XKL_ISS_TEST_NORM);
    take_solution();
    EXPECT_DOUBLE_EQ(x[0], 0.25);
}

TEST(incomplete_factors, agree_with_the_matrix_on_its_pattern)
{
    const sparse_system matrix = grid(9, 0.3);
    const int64_t n = matrix.n;
    std::vector<int64_t> ipar(controls);
    std::vector<double> dpar(controls), factors(matrix.a.size());
    int64_t error = 1;
    dcsrilu0(&n, matrix.a.data(), matrix.ia.data(), matrix.ja.data(), factors.data(), ipar.data(),
             dpar.data(), &error);
    ASSERT_EQ(error, 0);
    std::vector<double> lower(n * n), upper(n * n);
    for (int64_t i = 0; i < n; ++i)
        for (int64_t k = matrix.ia[i] - 1; k < matrix.ia[i + 1] - 1; ++k)
            (matrix.ja[k] - 1 < i ? lower : upper)[i * n + matrix.ja[k] - 1] = factors[k];
    for (int64_t i = 0; i < n; ++i)
        for (int64_t k = matrix.ia[i] - 1; k < matrix.ia[i + 1] - 1; ++k) {
            const int64_t j = matrix.ja[k] - 1;
            double product = upper[i * n + j];
            for (int64_t l = 0; l < i; ++l)
                product += lower[i * n + l] * upper[l * n + j];
            EXPECT_NEAR(product, matrix.a[k], 1e-14) << i << " " << j;
        }
}

TEST(incomplete_factors, are_complete_when_nothing_is_dropped)
{
    const sparse_system matrix = grid(7, 0.4);
    const int64_t n = matrix.n;
    for (const int64_t most : {n - 1, int64_t{3}}) {
        std::vector<int64_t> ipar(controls), ib(n + 1), jb((2 * most + 1) * n - most * (most + 1) + 1);
        std::vector<double> dpar(controls), factors(jb.size()), b(n, 1.0), x(n);
        int64_t error = 1;
        const double tol = most == 3 ? 1e-3 : 0;
        dcsrilut(&n, matrix.a.data(), matrix.ia.data(), matrix.ja.data(), factors.data(), ib.data(),
                 jb.data(), &tol, &most, ipar.data(), dpar.data(), &error);
        ASSERT_EQ(error, 0);
        solve_factors(n, factors.data(), ib.data(), jb.data(), b.data(), x.data());
        const double left = matrix.residual_norm(x.data(), b.data()) / std::sqrt(static_cast<double>(n));
        EXPECT_LE(left, most == 3 ? 0.3 : 1e-13);
        for (int64_t i = 0; i < n; ++i) {
            EXPECT_LE(ib[i + 1] - ib[i], 2 * most + 1);
            EXPECT_TRUE(std::is_sorted(&jb[ib[i] - 1], &jb[ib[i + 1] - 1]));
        }
    }
}

TEST(incomplete_factors, tell_what_is_wrong)
{
    const auto error_of = [](sparse_system matrix, bool threshold, double tol = 0.1, int64_t most = 1,
                             int64_t replaces = 0, double least = 0, double replacing = 0) {
        std::vector<int64_t> ipar(controls), ib(matrix.n + 1), jb(100);
        std::vector<double> dpar(controls), factors(100);
        ipar[30] = replaces, dpar[30] = least, dpar[31] = replacing;
        int64_t error = 1;
        if (threshold)
            dcsrilut(&matrix.n, matrix.a.data(), matrix.ia.data(), matrix.ja.data(), factors.data(),
                     ib.data(), jb.data(), &tol, &most, ipar.data(), dpar.data(), &error);
        else
            dcsrilu0(&matrix.n, matrix.a.data(), matrix.ia.data(), matrix.ja.data(), factors.data(),
                     ipar.data(), dpar.data(), &error);
        return error;
    };
    sparse_system good = grid(2), unordered = good, outside = good, zero = good, falling = good,
                  from_zero = good, hollow;
    std::swap(unordered.ja[0], unordered.ja[1]);
    outside.ja[1] = 9;
    zero.a[0] = 0;
    falling.ia[2] = -5;
    for (int64_t &start : from_zero.ia)
        --start;
    hollow.add(1, 1.0);
    hollow.end_row();
    hollow.add(0, 1.0);
    hollow.end_row();
    for (const bool threshold : {false, true}) {
        EXPECT_EQ(error_of(good, threshold), 0);
        EXPECT_EQ(error_of(unordered, threshold), -106);
        EXPECT_EQ(error_of(outside, threshold), -107);
        EXPECT_EQ(error_of(zero, threshold), -102);
        EXPECT_EQ(error_of({}, threshold), -105);
        EXPECT_EQ(error_of(falling, threshold), -101);
        EXPECT_EQ(error_of(from_zero, threshold), -107);
        EXPECT_EQ(error_of(zero, threshold, 0.1, 1, 1, 0.2, 2.0), 0) << "replaced";
    }
    EXPECT_EQ(error_of(hollow, false), -101);
    EXPECT_EQ(error_of(good, true, 0.1, 4), 101);
    EXPECT_EQ(error_of(good, true, -0.1), 102);
    EXPECT_EQ(error_of(good, true, 0.1, 1, 1, 0.05), 103);
    EXPECT_EQ(error_of(good, true, 0, 1, 1, 0), 104);
}

} // namespace
