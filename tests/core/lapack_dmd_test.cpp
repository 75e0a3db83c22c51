// Dynamic mode decomposition in all types: eigenvalues and modes of operators that are known, found from
// their trajectories; the residuals it tells against residuals computed from the operator.
#include "lapack_dmd.h"
#include "lapack_reports.h"

namespace {

using namespace lapack_tests;

template <class T>
class dmd : public testing::Test {
  protected:
    using real = real_of<T>;
    using complex = std::complex<real>;
    static constexpr int64_t state = 24, count = 5, snapshots = 9;
    // The snapshots' condition number goes into the answers.
    static constexpr double tolerance = sizeof(real) == 4 ? 2e-2 : 1e-10;
    const known_operator<T> known{state, count};
    const matrix<T> trajectory = known.trajectory(snapshots);

    gedmd_call<T> pairs() const
    {
        return {columns(trajectory, 0, snapshots - 1), columns(trajectory, 1, snapshots)};
    }

    template <class Call>
    static void run(Call &c, bool best = true)
    {
        c();
        ASSERT_EQ(c.info, 0);
        c.take_workspaces(best);
        c();
    }

    static matrix<complex> widened(const matrix<T> &a)
    {
        matrix<complex> result(a.rows, a.columns);
        std::copy(a.elements.begin(), a.elements.end(), result.elements.begin());
        return result;
    }

    /// A*Z - Z*Lambda
    matrix<complex> residuals(const matrix<complex> &modes, const std::vector<complex> &values) const
    {
        return widened(known.a) * modes - scaled_columns(modes, values);
    }

    static double length(const matrix<complex> &a, int64_t j)
    {
        double sum = 0;
        for (int64_t i = 0; i < a.rows; ++i)
            sum += std::norm(a(i, j));
        return std::sqrt(sum);
    }

    /// Modes of length one that belong to the values, which are the operator's.
    void expect_modes(const dmd_arguments<T> &c, const matrix<complex> &modes) const
    {
        ASSERT_EQ(c.info, 0);
        ASSERT_EQ(c.k, count);
        EXPECT_LT(known.distance(c.values()), tolerance);
        const auto rest = residuals(modes, c.values());
        for (int64_t j = 0; j < c.k; ++j) {
            EXPECT_NEAR(length(modes, j), 1, tolerance);
            EXPECT_LT(length(rest, j), tolerance);
            if (c.jobr == 'R') {
                EXPECT_LT(c.res[static_cast<size_t>(j)], tolerance);
            }
        }
    }
};
TYPED_TEST_SUITE(dmd, all_types);

TYPED_TEST(dmd, finds_the_pairs_of_an_operator_by_all_methods_and_scalings)
{
    for (const int64_t method : {1, 2, 3, 4})
        for (const char scaling : {'S', 'C', 'y', 'N'})
            for (const bool best : {false, true}) {
                SCOPED_TRACE(testing::Message() << "method " << method << ", scaling " << scaling);
                auto c = this->pairs();
                c.whtsvd = method;
                c.jobs = scaling;
                this->run(c, best);
                this->expect_modes(c, c.vectors(c.z));
                const auto u = columns(c.x, 0, c.k);
                EXPECT_LT(in_units(adjoint(u) * u - identity<TypeParam>(c.k), 1, c.m), threshold);
            }
}

TYPED_TEST(dmd, gives_modes_in_factors_and_what_refines_them)
{
    for (const char vectors : {'V', 'F', 'N'})
        for (const char extra : {'R', 'E', 'N'}) {
            SCOPED_TRACE(testing::Message() << "jobz " << vectors << ", jobf " << extra);
            auto c = this->pairs();
            c.jobz = vectors;
            c.jobf = extra;
            c.jobr = vectors == 'V' ? 'R' : 'N';
            this->run(c);
            ASSERT_EQ(c.k, this->count);
            EXPECT_LT(this->known.distance(c.values()), this->tolerance);
            const auto u = columns(c.x, 0, c.k);
            const auto modes = this->widened(u) * rows(c.vectors(c.w), 0, c.k);
            if (vectors == 'V')
                this->expect_modes(c, c.vectors(c.z));
            else if (vectors == 'F')
                this->expect_modes(c, modes);
            if (extra == 'R') { // A*U
                EXPECT_LT(norm(columns(c.b, 0, c.k) - this->known.a * u), this->tolerance);
            } else if (extra == 'E') { // A*U*W
                EXPECT_LT(norm(c.vectors(c.b) - this->widened(this->known.a) * modes), this->tolerance);
            }
            if (c.jobr == 'N') { // as it was
                EXPECT_EQ(c.y.elements, columns(this->trajectory, 1, this->snapshots).elements);
            }
        }
}

TYPED_TEST(dmd, truncates_and_tells_the_residuals_of_that)
{
    using real = real_of<TypeParam>;
    auto whole = this->pairs();
    this->run(whole);
    auto c = this->pairs();
    c.nrnk = 3;
    this->run(c);
    ASSERT_EQ(c.info, 0);
    ASSERT_EQ(c.k, 3);
    const auto rest = this->residuals(c.vectors(c.z), c.values());
    double largest = 0;
    for (int64_t j = 0; j < c.k; ++j) {
        EXPECT_NEAR(c.res[static_cast<size_t>(j)], this->length(rest, j), this->tolerance);
        largest = std::max(largest, this->length(rest, j));
    }
    EXPECT_GT(largest, 1e-3);

    // Singular values stand in front of the real workspace.
    const auto sigma = [&](size_t i) -> real {
        if constexpr (is_complex<TypeParam>)
            return whole.rwork[i];
        else
            return whole.work[i];
    };
    EXPECT_GT(sigma(4), whole.tol * sigma(0));
    EXPECT_LE(sigma(5), whole.tol * sigma(0));
    auto by_ratio = this->pairs();
    by_ratio.tol = std::sqrt(sigma(1) * sigma(2)) / sigma(0);
    this->run(by_ratio);
    EXPECT_EQ(by_ratio.k, 2);
    auto by_step = this->pairs();
    by_step.nrnk = -2;
    by_step.tol = real(1e-3);
    this->run(by_step);
    EXPECT_EQ(by_step.k, this->count);
}

TYPED_TEST(dmd, takes_columns_of_any_size)
{
    using real = real_of<TypeParam>;
    auto c = this->pairs();
    const real huge = std::numeric_limits<real>::max() / 4, tiny = std::numeric_limits<real>::min() * 1000;
    for (int64_t i = 0; i < c.m; ++i) {
        c.x(i, 0) *= huge;
        c.y(i, 0) *= huge;
        c.x(i, 1) *= tiny;
        c.y(i, 1) *= tiny;
    }
    c.jobs = 'S';
    this->run(c);
    this->expect_modes(c, c.vectors(c.z));
}

TYPED_TEST(dmd, warns_of_snapshots_that_cannot_be)
{
    using T = TypeParam;
    for (const char scaling : {'S', 'C', 'N'}) {
        auto c = this->pairs();
        std::fill(&c.x(0, 2), &c.x(0, 3), T(0));
        c.jobs = scaling;
        c.jobr = 'N';
        this->run(c);
        EXPECT_EQ(c.info, scaling == 'N' ? 0 : 4) << scaling;
        const bool cleared = std::all_of(&c.y(0, 2), &c.y(0, 3), [](T each) { return each == T(0); });
        EXPECT_EQ(cleared, scaling == 'C') << scaling;
        if (cleared) {
            EXPECT_LT(this->known.distance(c.values()), this->tolerance);
        }
    }
}

TYPED_TEST(dmd, compresses_trajectories)
{
    using T = TypeParam;
    for (const char vectors : {'V', 'F', 'Q'})
        for (const char extra : {'R', 'E'})
            for (const int64_t method : {1, 2, 3, 4}) {
                SCOPED_TRACE(testing::Message() << "jobz " << vectors << ", method " << method);
                gedmdq_call<T> c(this->trajectory);
                c.jobz = vectors;
                c.jobf = extra;
                c.whtsvd = method;
                c.jobq = 'Q';
                c.jobt = 'R';
                c.jobs = 'S';
                this->run(c, method % 2 == 0);
                ASSERT_EQ(c.k, this->count);
                EXPECT_LT(in_units(adjoint(c.f) * c.f - identity<T>(c.n), 1, c.m), threshold);
                EXPECT_LT(in_units(this->trajectory - c.f * c.y, norm(this->trajectory), c.m), threshold);
                const auto q = this->widened(c.f), w = rows(c.vectors(c.w), 0, c.k);
                if (vectors == 'V')
                    this->expect_modes(c, c.vectors(c.z));
                else if (vectors == 'F')
                    this->expect_modes(c, this->widened(columns(c.z, 0, c.k)) * w);
                else
                    this->expect_modes(c, q * rows(c.vectors(c.z), 0, c.n));
                const auto u = c.f * columns(c.x, 0, c.k);
                if (extra == 'R') {
                    EXPECT_LT(norm(c.f * columns(c.b, 0, c.k) - this->known.a * u), this->tolerance);
                } else {
                    EXPECT_LT(norm(q * c.vectors(c.b) - this->widened(this->known.a * u) * w),
                              this->tolerance);
                }
            }
}

TYPED_TEST(dmd, decomposes_short_states)
{
    const known_operator<TypeParam> small(4, 4);
    gedmdq_call<TypeParam> c(small.trajectory(5)); // one snapshot more than the state has elements
    this->run(c);
    ASSERT_EQ(c.info, 0);
    EXPECT_EQ(c.k, 4);
    EXPECT_LT(small.distance(c.values()), this->tolerance);
}

TYPED_TEST(dmd, needs_no_more_workspace_than_documented)
{
    if constexpr (!is_complex<TypeParam>)
        for (const auto &[m, n] : {std::pair<int64_t, int64_t>{1, 1}, {2, 1}, {5, 5}, {30, 4}, {24, 8}}) {
            const int64_t documented[] = {std::max(3 * n + m, 5 * n),
                                          std::max(m, 5 * n * n + 4 * n) + 3 * n * n,
                                          n + m + std::max({3 * n + 1, 3 * n + m, 5 * n, n}),
                                          std::max<int64_t>({7, 2 * m + n, 6 * n + 2 * n * n})};
            for (int64_t method = 1; method <= 4; ++method) {
                gedmd_call<TypeParam> c(matrix<TypeParam>::random(m, n), matrix<TypeParam>::random(m, n));
                c.whtsvd = method;
                c();
                EXPECT_EQ(c.info, 0);
                const int64_t most = std::max<int64_t>({2, n + documented[method - 1], 5 * n});
                EXPECT_LE(c.work[0], most) << m << " by " << n << ", method " << method;
                c.take_workspaces(false);
                c();
                EXPECT_EQ(c.info, 0);
                EXPECT_EQ(c.k, n);
            }
        }
}

template <class Call>
struct mistake {
    int64_t position;
    void (*make)(Call &);
};

class dmd_reports : public reports {
  protected:
    template <class Call>
    static void expect_refused(const char *routine, Call c, const mistake<Call> &each)
    {
        c();
        ASSERT_EQ(c.info, 0);
        c.take_workspaces(false);
        each.make(c);
        forget();
        c();
        EXPECT_EQ(c.info, -each.position);
        EXPECT_EQ(position, each.position);
        EXPECT_EQ(name, routine);
    }

    template <class T>
    static matrix<T> data(int64_t n)
    {
        return matrix<T>::random(6, n);
    }

    template <class T>
    static void check_pairs(const char *routine)
    {
        using c = gedmd_call<T>;
        constexpr int64_t less = is_complex<T>;
        const mistake<c> mistakes[] = {
            {1, [](c &d) { d.jobs = 'X'; }},
            {2, [](c &d) { d.jobz = 'Q'; }},
            {3, [](c &d) { d.jobz = 'F'; }}, // residuals go with vectors
            {4, [](c &d) { d.jobf = 'V'; }},
            {5, [](c &d) { d.whtsvd = 5; }},
            {6, [](c &d) { d.m = -1; }},
            {7, [](c &d) { d.n = 7; }},
            {8, [](c &d) { d.x.elements.assign(18, T(0)); }},
            {8, [](c &d) { d.x(1, 1) = std::numeric_limits<real_of<T>>::quiet_NaN(); }},
            {9, [](c &d) { d.ldx = 5; }},
            {10, [](c &d) { d.y(1, 1) = std::numeric_limits<real_of<T>>::quiet_NaN(); }},
            {11, [](c &d) { d.ldy = 5; }},
            {12, [](c &d) { d.nrnk = 0; }},
            {13, [](c &d) { d.tol = 1; }},
            {18 - less, [](c &d) { d.ldz = 5; }},
            {21 - less, [](c &d) { d.ldb = 5, d.jobf = 'E'; }},
            {23 - less, [](c &d) { d.ldw = 2; }},
            {25 - less, [](c &d) { d.lds = 2; }},
            {27 - less, [](c &d) { --d.lwork; }},
            {29 + less, [](c &d) { --d.liwork; }},
        };
        gedmd_call<T> good(data<T>(3), data<T>(3));
        good.whtsvd = 4;
        for (const auto &each : mistakes)
            expect_refused(routine, good, each);
        if constexpr (is_complex<T>)
            expect_refused(routine, good, mistake<c>{28, [](c &d) { --d.lrwork; }});
    }

    template <class T>
    static void check_trajectories(const char *routine)
    {
        using c = gedmdq_call<T>;
        constexpr int64_t less = is_complex<T>;
        const mistake<c> mistakes[] = {
            {1, [](c &d) { d.jobs = 'X'; }},
            {2, [](c &d) { d.jobz = 'X'; }},
            {3, [](c &d) { d.jobz = 'N'; }},
            {4, [](c &d) { d.jobq = 'X'; }},
            {5, [](c &d) { d.jobt = 'Q'; }},
            {6, [](c &d) { d.jobf = 'V'; }},
            {7, [](c &d) { d.whtsvd = 0; }},
            {8, [](c &d) { d.m = -1; }},
            {9, [](c &d) { d.n = 8; }},
            {10, [](c &d) { d.f.elements.assign(24, T(0)); }},
            {11, [](c &d) { d.ldf = 5; }},
            {13, [](c &d) { d.ldx = 3; }},
            {15, [](c &d) { d.ldy = 3; }},
            {16, [](c &d) { d.nrnk = -3; }},
            {17, [](c &d) { d.tol = -1; }},
            {22 - less, [](c &d) { d.ldz = 5; }},
            {25 - less, [](c &d) { d.ldb = 3, d.jobf = 'R'; }},
            {27 - less, [](c &d) { d.ldw = 2; }},
            {29 - less, [](c &d) { d.lds = 2; }},
            {31 - less, [](c &d) { --d.lwork; }},
            {33 + less, [](c &d) { --d.liwork; }},
        };
        gedmdq_call<T> good(data<T>(4));
        for (const auto &each : mistakes)
            expect_refused(routine, good, each);
        if constexpr (is_complex<T>)
            expect_refused(routine, good, mistake<c>{32, [](c &d) { --d.lrwork; }});
    }
};

TEST_F(dmd_reports, name_the_argument_of_pairs)
{
    check_pairs<float>("SGEDMD");
    check_pairs<double>("DGEDMD");
    check_pairs<complex8>("CGEDMD");
    check_pairs<complex16>("ZGEDMD");
}

TEST_F(dmd_reports, name_the_argument_of_trajectories)
{
    check_trajectories<float>("SGEDMDQ");
    check_trajectories<double>("DGEDMDQ");
    check_trajectories<complex8>("CGEDMDQ");
    check_trajectories<complex16>("ZGEDMDQ");
}

TEST_F(dmd_reports, are_not_made_of_nothing_to_do)
{
    gedmd_call<double> none(matrix<double>(4, 0), matrix<double>(4, 0));
    gedmdq_call<complex16> one_snapshot(matrix<complex16>::random(4, 1));
    const auto expect_nothing = [](auto &c) {
        c();
        EXPECT_EQ(c.info, 1);
        EXPECT_EQ(std::real(c.work[0]), 2);
        EXPECT_EQ(c.iwork[0], 1);
        c.lwork = 2;
        c.liwork = c.lrwork = 1;
        c();
        EXPECT_EQ(c.info, 1);
        EXPECT_EQ(c.k, 0);
    };
    expect_nothing(none);
    expect_nothing(one_snapshot);
    EXPECT_EQ(position, 0);
}

} // namespace
