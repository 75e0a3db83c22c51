// Nonlinear least squares and Jacobi matrices over the default core. The problems are those by which Moré,
// Garbow and Hillstrom compare such solvers, with the least sums of squares that they give.
#include "xkl_solvers.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace {

using values = std::vector<double>;

struct problem {
    const char *name;
    int64_t m;
    values start;
    double least; // sum of squares
    std::function<void(const double *x, double *f)> function;
};

std::ostream &operator<<(std::ostream &out, const problem &p)
{
    return out << p.name;
}

const values bard_y = {0.14, 0.18, 0.22, 0.25, 0.29, 0.32, 0.35, 0.39,
                       0.37, 0.58, 0.73, 0.96, 1.34, 2.10, 4.39};
const values kowalik_y = {0.1957, 0.1947, 0.1735, 0.1600, 0.0844, 0.0627,
                          0.0456, 0.0342, 0.0323, 0.0235, 0.0246};
const values kowalik_u = {4, 2, 1, 0.5, 0.25, 0.167, 0.125, 0.1, 0.0833, 0.0714, 0.0625};

const problem problems[] = {
    {"rosenbrock",
     2,
     {-1.2, 1},
     0,
     [](const double *x, double *f) { f[0] = 10 * (x[1] - x[0] * x[0]), f[1] = 1 - x[0]; }},
    {"freudenstein_roth",
     2,
     {0.5, -2},
     48.98425367924,
     [](const double *x, double *f) {
         f[0] = -13 + x[0] + ((5 - x[1]) * x[1] - 2) * x[1];
         f[1] = -29 + x[0] + ((x[1] + 1) * x[1] - 14) * x[1];
     }},
    {"beale",
     3,
     {1, 1},
     0,
     [](const double *x, double *f) {
         const double y[] = {1.5, 2.25, 2.625};
         for (int i = 0; i < 3; ++i)
             f[i] = y[i] - x[0] * (1 - std::pow(x[1], i + 1));
     }},
    {"jennrich_sampson",
     10,
     {0.3, 0.4},
     124.3621823556,
     [](const double *x, double *f) {
         for (int i = 1; i <= 10; ++i)
             f[i - 1] = 2 + 2 * i - (std::exp(i * x[0]) + std::exp(i * x[1]));
     }},
    {"helical_valley",
     3,
     {-1, 0, 0},
     0,
     [](const double *x, double *f) {
         const double turn = std::atan(x[1] / x[0]) / (2 * std::numbers::pi) + (x[0] < 0 ? 0.5 : 0);
         f[0] = 10 * (x[2] - 10 * turn), f[1] = 10 * (std::hypot(x[0], x[1]) - 1), f[2] = x[2];
     }},
    {"bard",
     15,
     {1, 1, 1},
     8.214877306578e-3,
     [](const double *x, double *f) {
         for (int i = 1; i <= 15; ++i)
             f[i - 1] = bard_y[i - 1] - (x[0] + i / ((16 - i) * x[1] + std::min(i, 16 - i) * x[2]));
     }},
    {"box",
     10,
     {0, 10, 20},
     0,
     [](const double *x, double *f) {
         for (int i = 1; i <= 10; ++i) {
             const double t = 0.1 * i;
             f[i - 1] =
                 std::exp(-t * x[0]) - std::exp(-t * x[1]) - x[2] * (std::exp(-t) - std::exp(-10 * t));
         }
     }},
    {"powell_singular",
     4,
     {3, -1, 0, 1},
     0,
     [](const double *x, double *f) {
         f[0] = x[0] + 10 * x[1], f[1] = std::sqrt(5.0) * (x[2] - x[3]);
         f[2] = (x[1] - 2 * x[2]) * (x[1] - 2 * x[2]),
         f[3] = std::sqrt(10.0) * (x[0] - x[3]) * (x[0] - x[3]);
     }},
    {"wood",
     6,
     {-3, -1, -3, -1},
     0,
     [](const double *x, double *f) {
         f[0] = 10 * (x[1] - x[0] * x[0]), f[1] = 1 - x[0];
         f[2] = std::sqrt(90.0) * (x[3] - x[2] * x[2]), f[3] = 1 - x[2];
         f[4] = std::sqrt(10.0) * (x[1] + x[3] - 2), f[5] = (x[1] - x[3]) / std::sqrt(10.0);
     }},
    {"kowalik_osborne",
     11,
     {0.25, 0.39, 0.415, 0.39},
     3.0750560385e-4,
     [](const double *x, double *f) {
         for (int i = 0; i < 11; ++i) {
             const double u = kowalik_u[i];
             f[i] = kowalik_y[i] - x[0] * (u * u + u * x[1]) / (u * u + u * x[2] + x[3]);
         }
     }},
    {"brown_dennis",
     20,
     {25, 5, -5, -1},
     85822.20162636,
     [](const double *x, double *f) {
         for (int i = 1; i <= 20; ++i) {
             const double t = i / 5.0, a = x[0] + t * x[1] - std::exp(t),
                          b = x[2] + x[3] * std::sin(t) - std::cos(t);
             f[i - 1] = a * a + b * b;
         }
     }},
};

struct result {
    int64_t iterations = -1, criterion = -1, steps = 0;
    double first = -1, last = -1;
};

void differentiate(const problem &p, const values &x, values &jacobian)
{
    const auto n = static_cast<int64_t>(x.size());
    static const problem *current;
    current = &p;
    values at = x;
    const double eps = 6e-6;
    ASSERT_EQ(djacobi([](const int64_t *, const int64_t *, const double *point,
                         double *f) { current->function(point, f); },
                      &n, &p.m, jacobian.data(), at.data(), &eps),
              XKL_TR_SUCCESS);
    ASSERT_EQ(at, x) << "the point comes back as it was";
}

/// Drives a solution with or without bounds.
result solve(const problem &p, values &x, const values *lower = nullptr, const values *upper = nullptr,
             int64_t most = 1000, double least_column = 0)
{
    const auto n = static_cast<int64_t>(x.size());
    const double eps[6] = {1e-14, 1e-12, least_column, 1e-14, 1e-15, 0}, factor = 1;
    const int64_t trials = 100;
    values f(p.m), jacobian(p.m * n);
    void *handle = nullptr;
    const int64_t status = lower ? dtrnlspbc_init(&handle, &n, &p.m, x.data(), lower->data(), upper->data(),
                                                  eps, &most, &trials, &factor)
                                 : dtrnlsp_init(&handle, &n, &p.m, x.data(), eps, &most, &trials, &factor);
    EXPECT_EQ(status, XKL_TR_SUCCESS);
    p.function(x.data(), f.data());
    differentiate(p, x, jacobian);
    result r;
    int64_t request = 0;
    do {
        const int64_t step = lower ? dtrnlspbc_solve(&handle, f.data(), jacobian.data(), &request)
                                   : dtrnlsp_solve(&handle, f.data(), jacobian.data(), &request);
        EXPECT_EQ(step, XKL_TR_SUCCESS);
        if (request == 1)
            p.function(x.data(), f.data());
        else if (request == 2)
            differentiate(p, x, jacobian);
        for (int64_t j = 0; lower && j < n; ++j)
            EXPECT_TRUE((*lower)[j] <= x[j] && x[j] <= (*upper)[j]) << "never outside";
    } while (request >= 0 && ++r.steps < 10000);
    EXPECT_EQ(dtrnlsp_get(&handle, &r.iterations, &r.criterion, &r.first, &r.last), XKL_TR_SUCCESS);
    EXPECT_EQ(request, -r.criterion);
    EXPECT_EQ(dtrnlsp_delete(&handle), XKL_TR_SUCCESS);
    EXPECT_EQ(handle, nullptr);
    return r;
}

class least_squares : public testing::TestWithParam<problem> {};

TEST_P(least_squares, finds_the_published_minimum)
{
    const problem &p = GetParam();
    values x = p.start;
    const result r = solve(p, x);
    EXPECT_NEAR(r.last * r.last, p.least, 1e-9 * std::max(p.least, 1e-3)) << "criterion " << r.criterion;
    EXPECT_GT(r.first, r.last);
    EXPECT_LT(r.iterations, 400);
    values f(p.m);
    p.function(x.data(), f.data());
    double sum = 0;
    for (const double value : f)
        sum += value * value;
    EXPECT_NEAR(std::sqrt(sum), r.last, 1e-12 * (1 + r.last)) << "x is where the last residual was";
}

TEST_P(least_squares, wide_bounds_change_nothing)
{
    const problem &p = GetParam();
    values x = p.start;
    const values lower(x.size(), -1e6), upper(x.size(), 1e6);
    const result r = solve(p, x, &lower, &upper);
    EXPECT_NEAR(r.last * r.last, p.least, 1e-9 * std::max(p.least, 1e-3));
}

INSTANTIATE_TEST_SUITE_P(all, least_squares, testing::ValuesIn(problems),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(bounded_least_squares, rest_on_the_bounds)
{
    const problem &rosenbrock = problems[0];
    values x = {-1.2, 1};
    const values lower = {-2, -2}, upper = {0.5, 2};
    const result r = solve(rosenbrock, x, &lower, &upper);
    EXPECT_EQ(x[0], 0.5);
    EXPECT_NEAR(x[1], 0.25, 1e-8);
    EXPECT_NEAR(r.last, 0.5, 1e-10);
    x = {5, 5}; // outside: begins at the bounds
    solve(rosenbrock, x, &lower, &upper);
    EXPECT_NEAR(x[1], 0.25, 1e-8);
}

/// |A x - b| in a box: at the end each variable has a slope of zero, or is pushed against its bound.
TEST(bounded_least_squares, linear_ones_end_where_no_way_leads_down)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> uniform(-2, 2);
    for (int64_t trial = 0; trial < 400; ++trial) {
        const int64_t n = 1 + trial % 5, m = n + trial % 4;
        values a(m * n), b(m), x(n), f(m);
        for (values *each : {&a, &b, &x})
            for (double &value : *each)
                value = uniform(random);
        const problem p{"linear", m, x, 0, [&](const double *at, double *result) {
                            for (int64_t i = 0; i < m; ++i) {
                                result[i] = -b[i];
                                for (int64_t j = 0; j < n; ++j)
                                    result[i] += a[j * m + i] * at[j];
                            }
                        }};
        const values lower(n, -1), upper(n, 1);
        solve(p, x, &lower, &upper);
        p.function(x.data(), f.data());
        for (int64_t j = 0; j < n; ++j) {
            double slope = 0;
            for (int64_t i = 0; i < m; ++i)
                slope += a[j * m + i] * f[i];
            const bool held = x[j] == lower[j] ? slope > 0 : x[j] == upper[j] && slope < 0;
            EXPECT_TRUE(held || std::abs(slope) < 1e-4) << trial << ": " << slope << " at " << x[j];
        }
    }
}

TEST(least_squares_handle, tells_why_it_ends)
{
    values x = {-1.2, 1};
    EXPECT_EQ(solve(problems[0], x, nullptr, nullptr, 2).criterion, 1) << "out of iterations";
    const problem flat{"flat", 2, {1, 1}, 0, [](const double *, double *f) { f[0] = f[1] = 1; }};
    x = flat.start;
    EXPECT_EQ(solve(flat, x, nullptr, nullptr, 10, 1e-12).criterion, 4) << "the matrix is singular";
}

TEST(least_squares_handle, refuses_bad_arguments)
{
    const int64_t n = 2, m = 2, one = 1, many = 10;
    values x = {1, 1}, f(2), jacobian(4), lower = {0, 3}, upper = {1, 2};
    double eps[6] = {1e-6, 1e-6, 1e-6, 1e-6, 1e-6, 1e-6}, factor = 1;
    void *handle = &x;
    EXPECT_EQ(dtrnlsp_init(&handle, &n, &one, x.data(), eps, &many, &many, &factor), XKL_TR_INVALID_OPTION);
    EXPECT_EQ(handle, nullptr) << "no handle of an earlier call is left";
    EXPECT_EQ(
        dtrnlspbc_init(&handle, &n, &m, x.data(), lower.data(), upper.data(), eps, &many, &many, &factor),
        XKL_TR_INVALID_OPTION)
        << "crossed bounds";
    int64_t request = 0, info[6] = {9, 9, 9, 9, 9, 9};
    EXPECT_EQ(dtrnlsp_solve(&handle, f.data(), jacobian.data(), &request), XKL_TR_INVALID_OPTION);
    ASSERT_EQ(dtrnlsp_init(&handle, &n, &m, x.data(), eps, &many, &many, &factor), XKL_TR_SUCCESS);
    f[1] = std::nan("");
    eps[2] = -1;
    EXPECT_EQ(
        dtrnlspbc_check(&handle, &n, &m, jacobian.data(), f.data(), lower.data(), upper.data(), eps, info),
        XKL_TR_SUCCESS);
    const std::array<int64_t, 6> expected = {0, 0, 2, 3, 3, 3};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), info));
    dtrnlsp_delete(&handle);
    EXPECT_EQ(dtrnlsp_delete(&handle), XKL_TR_INVALID_OPTION);
}

TEST(jacobi_matrix, is_the_derivative)
{
    const problem &wood = problems[8];
    const values x = wood.start;
    values jacobian(wood.m * 4);
    differentiate(wood, x, jacobian);
    EXPECT_NEAR(jacobian[0], -20 * x[0], 1e-7); // f0 by x0
    EXPECT_NEAR(jacobian[1], -1, 1e-9);
    EXPECT_NEAR(jacobian[wood.m], 10, 1e-8); // f0 by x1
    EXPECT_NEAR(jacobian[3 * wood.m + 2], std::sqrt(90.0), 1e-7);
}

TEST(jacobi_matrix, comes_by_reverse_communication_too)
{
    const int64_t n = 2, m = 3;
    const float start[] = {0.5f, 2.0f}, eps = 1e-3f;
    float x[] = {0.5f, 2.0f}, jacobian[6], f1[3], f2[3];
    const auto function = [&](float *f) { f[0] = x[0] * x[0], f[1] = x[0] * x[1], f[2] = 3 * x[1]; };
    void *handle = nullptr;
    ASSERT_EQ(sjacobi_init(&handle, &n, &m, x, jacobian, &eps), XKL_TR_SUCCESS);
    int64_t request = 0;
    do {
        ASSERT_EQ(sjacobi_solve(&handle, f1, f2, &request), XKL_TR_SUCCESS);
        if (request == 1)
            function(f1);
        else if (request == 2)
            function(f2);
    } while (request != 0);
    EXPECT_EQ(sjacobi_delete(&handle), XKL_TR_SUCCESS);
    const float expected[] = {1, 2, 0, 0, 0.5f, 3};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(jacobian[i], expected[i], 2e-3f) << i;
    EXPECT_TRUE(std::equal(x, x + n, start));
    struct shift {
        float by;
    } data{7};
    ASSERT_EQ(sjacobix([](const int64_t *, const int64_t *, const float *at, float *f,
                          void *user) { f[0] = f[1] = f[2] = at[0] * static_cast<shift *>(user)->by; },
                       &n, &m, jacobian, x, &eps, &data),
              XKL_TR_SUCCESS);
    EXPECT_NEAR(jacobian[2], 7, 5e-3f);
}

} // namespace
