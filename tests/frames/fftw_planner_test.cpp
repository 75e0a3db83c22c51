// The planners of the FFTW3 interface: which descriptor they make, in which steps, and that a step that fails
// leaves nothing behind. Both precisions.
#include "fftw_core.h"
#include "fftw_family.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>

namespace {

using steps = std::vector<std::string>;

template <class Real>
class fftw_planners : public testing::Test {
  protected:
    using family = fftw<Real>;
    using plan = typename family::plan;
    using complex = typename family::complex;

    fftw_planners()
    {
        core.name(a, "a");
        core.name(b, "b");
        core.name(c, "c");
        core.name(d, "d");
    }

    /// The steps of a planner, in words of double precision; the plan is released again.
    steps steps_of(plan made)
    {
        EXPECT_NE(made, nullptr);
        steps taken = core.steps;
        family::destroy_plan(made);
        EXPECT_EQ(core.live, 0);
        EXPECT_EQ(core.blocks(), 0);
        core.steps.clear();
        for (std::string &each : taken) {
            if (std::is_same_v<Real, float> && each.starts_with("create s"))
                each.replace(7, 1, "d");
            if (std::is_same_v<Real, float> && each.starts_with("r2r 35"))
                each.replace(5, 1, "6");
        }
        return taken;
    }

    static complex *z(Real *array) { return reinterpret_cast<complex *>(array); }

    fftw_core core;
    Real a[2], b[2], c[2], d[2];
};

using precisions = testing::Types<double, float>;
TYPED_TEST_SUITE(fftw_planners, precisions);

TYPED_TEST(fftw_planners, complex_plans_take_their_steps_in_order)
{
    using family = fftw<TypeParam>;
    const auto z = [](auto *array) { return reinterpret_cast<typename family::complex *>(array); };
    const fftw_iodim64 line[] = {{8, 3, 2}}, box[] = {{4, 60, 60}, {5, 12, 12}, {6, 2, 2}},
                       seven = {7, 500, 500};
    EXPECT_EQ(this->steps_of(family::plan_guru64_dft(1, line, 0, nullptr, z(this->a), z(this->b), -1, 0)),
              (steps{"create dc1d 8", "set 12 0 3", "set 11 44", "set 13 0 2", "set 27 1", "commit"}));
    EXPECT_EQ(this->steps_of(family::plan_guru64_dft(3, box, 1, &seven, z(this->a), z(this->a), 1,
                                                     FFTW_CONSERVE_MEMORY | FFTW_MEASURE)),
              (steps{"create dcmd 4 5 6", "set 17 52", "set 12 0 60 12 2", "set 7 7", "set 14 500",
                     "set 15 500", "set 27 1", "commit"}));
    const fftw_iodim narrow[] = {{4, 1, 5}, {5, 4, 1}}, twice = {2, 20, 30};
    EXPECT_EQ(this->steps_of(family::plan_guru_dft(2, narrow, 1, &twice, z(this->a), z(this->b), -1, ~4u)),
              (steps{"create dcmd 4 5", "set 12 0 1 4", "set 11 44", "set 13 0 5 1", "set 7 2", "set 14 20",
                     "set 15 30", "set 27 1", "commit"}))
        << "only the flag of value 4 counts";
}

TYPED_TEST(fftw_planners, rows_of_the_last_dimension_are_contiguous)
{
    using family = fftw<TypeParam>;
    const auto z = [](auto *array) { return reinterpret_cast<typename family::complex *>(array); };
    auto *in = z(this->a), *out = z(this->b);
    const int n[] = {4, 5, 6}, in_rows[] = {99, 7, 8}, out_rows[] = {99, 9, 10};
    const auto apart = [](steps first, const char *in_strides, const char *out_strides, steps last = {}) {
        first.insert(first.end(), {in_strides, "set 11 44", out_strides});
        first.insert(first.end(), last.begin(), last.end());
        first.insert(first.end(), {"set 27 1", "commit"});
        return first;
    };
    EXPECT_EQ(this->steps_of(family::plan_dft(3, n, in, out, -1, 0)),
              apart({"create dcmd 4 5 6"}, "set 12 0 30 6 1", "set 13 0 30 6 1"));
    EXPECT_EQ(this->steps_of(family::plan_dft_1d(9, in, out, -1, 0)),
              apart({"create dc1d 9"}, "set 12 0 1", "set 13 0 1"));
    EXPECT_EQ(this->steps_of(family::plan_dft_2d(9, 7, in, out, -1, 0)),
              apart({"create dcmd 9 7"}, "set 12 0 7 1", "set 13 0 7 1"));
    EXPECT_EQ(this->steps_of(family::plan_dft_3d(4, 5, 6, in, out, -1, 0)),
              apart({"create dcmd 4 5 6"}, "set 12 0 30 6 1", "set 13 0 30 6 1"));
    EXPECT_EQ(
        this->steps_of(family::plan_many_dft(3, n, 2, in, in_rows, 3, 1000, out, out_rows, 2, 2000, -1, 0)),
        apart({"create dcmd 4 5 6"}, "set 12 0 168 24 3", "set 13 0 180 20 2",
              {"set 7 2", "set 14 1000", "set 15 2000"}));
    EXPECT_EQ(this->steps_of(family::plan_many_dft(1, n, 1, in, nullptr, 1, 17, in, nullptr, 1, 18, -1, 0)),
              (steps{"create dc1d 4", "set 12 0 1", "set 27 1", "commit"}))
        << "distances of one transform";
}

TYPED_TEST(fftw_planners, real_plans_have_complex_rows_of_half_the_length)
{
    using family = fftw<TypeParam>;
    auto *x = this->a, *y = this->b;
    const auto z = [](auto *array) { return reinterpret_cast<typename family::complex *>(array); };
    const int n[] = {4, 5, 6};
    const steps storage = {"create drmd 4 5 6", "set 10 39", "set 21 57"};
    const auto with = [&](steps last) {
        steps all = storage;
        all.insert(all.end(), last.begin(), last.end());
        all.insert(all.end(), {"set 27 1", "commit"});
        return all;
    };
    const steps forward = with({"set 12 0 30 6 1", "set 11 44", "set 13 0 20 4 1"});
    EXPECT_EQ(this->steps_of(family::plan_dft_r2c(3, n, x, z(y), 0)), forward);
    EXPECT_EQ(this->steps_of(family::plan_dft_r2c_3d(4, 5, 6, x, z(y), 0)), forward);
    EXPECT_EQ(this->steps_of(family::plan_dft_r2c_3d(4, 5, 6, x, z(x), 0)),
              with({"set 12 0 40 8 1", "set 13 0 20 4 1"}))
        << "padded in place";
    EXPECT_EQ(this->steps_of(family::plan_dft_c2r_3d(4, 5, 6, z(x), y, 0)),
              with({"set 12 0 20 4 1", "set 11 44", "set 13 0 30 6 1"}));
    EXPECT_EQ(this->steps_of(family::plan_dft_c2r(3, n, z(x), x, 0)),
              with({"set 12 0 20 4 1", "set 13 0 40 8 1"}));
    EXPECT_EQ(
        this->steps_of(family::plan_many_dft_r2c(3, n, 3, x, nullptr, 1, 120, z(y), nullptr, 1, 80, 0)),
        with({"set 12 0 30 6 1", "set 11 44", "set 13 0 20 4 1", "set 7 3", "set 14 120", "set 15 80"}));
    const int rows[] = {4, 5, 10};
    EXPECT_EQ(
        this->steps_of(family::plan_many_dft_c2r(3, n, 3, z(x), nullptr, 1, 80, y, rows, 2, 400, 0)),
        with({"set 12 0 20 4 1", "set 11 44", "set 13 0 100 20 2", "set 7 3", "set 14 80", "set 15 400"}));
    EXPECT_EQ(this->steps_of(family::plan_dft_r2c_1d(7, x, z(x), 0)),
              (steps{"create dr1d 7", "set 10 39", "set 21 57", "set 12 0 1", "set 13 0 1", "set 27 1",
                     "commit"}));
    EXPECT_EQ(this->steps_of(family::plan_dft_c2r_2d(5, 7, z(x), y, FFTW_CONSERVE_MEMORY)),
              (steps{"create drmd 5 7", "set 10 39", "set 21 57", "set 17 52", "set 12 0 4 1", "set 11 44",
                     "set 13 0 7 1", "set 27 1", "commit"}));
    const fftw_iodim dims[] = {{4, 9, 8}}, batch = {2, 70, 60};
    EXPECT_EQ(this->steps_of(family::plan_guru_dft_c2r(1, dims, 1, &batch, z(x), y, 0)),
              (steps{"create dr1d 4", "set 10 39", "set 21 57", "set 12 0 9", "set 11 44", "set 13 0 8",
                     "set 7 2", "set 14 70", "set 15 60", "set 27 1", "commit"}));
}

TYPED_TEST(fftw_planners, split_plans_keep_the_parts_apart)
{
    using family = fftw<TypeParam>;
    const fftw_iodim64 dims[] = {{4, 5, 5}, {5, 1, 1}};
    EXPECT_EQ(this->steps_of(family::plan_guru64_split_dft(2, dims, 0, nullptr, this->a, this->b, this->c,
                                                           this->d, 0)),
              (steps{"create dcmd 4 5", "set 8 42", "set 12 0 5 1", "set 11 44", "set 13 0 5 1", "set 27 1",
                     "commit"}));
    EXPECT_EQ(this->steps_of(family::plan_guru64_split_dft(2, dims, 0, nullptr, this->a, this->b, this->a,
                                                           this->b, 0)),
              (steps{"create dcmd 4 5", "set 8 42", "set 12 0 5 1", "set 27 1", "commit"}));
    EXPECT_EQ(family::plan_guru64_split_dft(2, dims, 0, nullptr, this->a, this->b, this->a, this->d, 0),
              nullptr);
    EXPECT_EQ(family::plan_guru64_split_dft_r2c(2, dims, 0, nullptr, this->a, this->b, this->c, 0),
              nullptr);
    EXPECT_EQ(family::plan_guru64_split_dft_c2r(2, dims, 0, nullptr, this->a, this->b, this->c, 0),
              nullptr);
    EXPECT_EQ(family::plan_guru_split_dft_r2c(1, nullptr, 0, nullptr, this->a, this->b, this->c, 0),
              nullptr);
    EXPECT_EQ(family::plan_guru_split_dft_c2r(1, nullptr, 0, nullptr, this->a, this->b, this->c, 0),
              nullptr);
    EXPECT_EQ(this->core.steps, steps{});
}

TYPED_TEST(fftw_planners, real_to_real_plans_hand_on_dimensions_and_kinds)
{
    using family = fftw<TypeParam>;
    const int n[] = {4, 5}, rows[] = {9, 6};
    const fftw_r2r_kind kinds[] = {FFTW_RODFT11, FFTW_R2HC};
    auto *x = this->a, *y = this->b;
    EXPECT_EQ(this->steps_of(family::plan_r2r(2, n, x, y, kinds, 0)),
              steps{"r2r 36: (4 5 5) (5 1 1) kinds 10 0 limit 1"});
    EXPECT_EQ(this->steps_of(family::plan_r2r_1d(6, x, x, FFTW_REDFT10, 0)),
              steps{"r2r 36: (6 1 1) kinds 5 in place limit 1"});
    EXPECT_EQ(this->steps_of(family::plan_r2r_2d(6, 7, x, y, FFTW_DHT, FFTW_HC2R, 0)),
              steps{"r2r 36: (6 7 7) (7 1 1) kinds 2 1 limit 1"});
    EXPECT_EQ(
        this->steps_of(family::plan_r2r_3d(2, 3, 4, x, y, FFTW_REDFT00, FFTW_RODFT00, FFTW_RODFT01, 0)),
        steps{"r2r 36: (2 12 12) (3 4 4) (4 1 1) kinds 3 7 8 limit 1"});
    EXPECT_EQ(this->steps_of(family::plan_many_r2r(2, n, 3, x, rows, 2, 99, y, nullptr, 1, 20, kinds, 0)),
              steps{"r2r 36: (4 12 5) (5 2 1) times: (3 99 20) kinds 10 0 limit 1"});
    fftw3_xkl.thread_count = -1;
    const fftw_iodim dim = {5, 1, 2}, batch = {2, 5, 10};
    EXPECT_EQ(this->steps_of(family::plan_guru_r2r(1, &dim, 1, &batch, x, y, kinds, 0)),
              steps{"r2r 36: (5 1 2) times: (2 5 10) kinds 10 limit -1"});
    fftw3_xkl.thread_count = 1;
    const auto none = static_cast<fftw_r2r_kind>(11);
    EXPECT_EQ(family::plan_r2r_1d(6, x, y, none, 0), nullptr);
    EXPECT_EQ(family::plan_r2r(2, n, x, y, nullptr, 0), nullptr);
    EXPECT_EQ(family::plan_guru_r2r(1, &dim, 0, nullptr, x, x, kinds, 0), nullptr)
        << "strides differ in place";
    EXPECT_EQ(this->core.steps, steps{});
    EXPECT_EQ(this->core.blocks(), 0);
}

TYPED_TEST(fftw_planners, the_thread_count_becomes_the_limit)
{
    using family = fftw<TypeParam>;
    const auto plan = [&] { return family::plan_dft_1d(4, this->z(this->a), this->z(this->a), -1, 0); };
    family::plan_with_nthreads(6);
    EXPECT_EQ(this->steps_of(plan()), (steps{"create dc1d 4", "set 12 0 1", "set 27 6", "commit"}));
    family::plan_with_nthreads(0);
    EXPECT_EQ(this->steps_of(plan()), (steps{"create dc1d 4", "set 12 0 1", "set 27 0", "commit"}));
    family::plan_with_nthreads(-1);
    EXPECT_EQ(this->steps_of(plan()), (steps{"create dc1d 4", "set 12 0 1", "commit"}));
    family::cleanup_threads();
    EXPECT_EQ(this->steps_of(plan()), (steps{"create dc1d 4", "set 12 0 1", "set 27 1", "commit"}));
}

/// A plan of each kind that has most steps.
template <class Real>
std::vector<std::function<typename fftw<Real>::plan()>> longest_plans(Real *a, Real *b)
{
    using family = fftw<Real>;
    const auto z = [](Real *array) { return reinterpret_cast<typename family::complex *>(array); };
    static const fftw_iodim64 dims[] = {{4, 5, 5}, {5, 1, 1}}, batch = {3, 90, 90};
    static const fftw_r2r_kind kinds[] = {FFTW_DHT, FFTW_DHT};
    const unsigned flags = FFTW_CONSERVE_MEMORY;
    return {
        [=] { return family::plan_guru64_dft(2, dims, 1, &batch, z(a), z(b), -1, flags); },
        [=] { return family::plan_guru64_dft(2, dims, 1, &batch, z(a), z(a), 1, flags); },
        [=] { return family::plan_guru64_dft_r2c(2, dims, 1, &batch, a, z(b), flags); },
        [=] { return family::plan_guru64_dft_c2r(2, dims, 1, &batch, z(a), a, flags); },
        [=] { return family::plan_guru64_split_dft(2, dims, 1, &batch, a, a + 1, b, b + 1, flags); },
        [=] { return family::plan_guru64_r2r(2, dims, 1, &batch, a, b, kinds, flags); },
    };
}

TYPED_TEST(fftw_planners, a_step_that_fails_leaves_nothing_behind)
{
    int failures = 0;
    for (const auto &plan : longest_plans(this->a, this->b)) {
        const int count = static_cast<int>(this->steps_of(plan()).size());
        for (int failing = 1; failing <= count; ++failing, ++failures) {
            this->core.steps.clear();
            this->core.failing_step = failing;
            EXPECT_EQ(plan(), nullptr) << "step " << failing << ": " << this->core.steps.back();
            EXPECT_EQ(this->core.live, 0);
            EXPECT_EQ(this->core.blocks(), 0);
            const bool created = failing > 1;
            EXPECT_EQ(this->core.steps.size(), static_cast<size_t>(failing + created))
                << "goes on after it";
            EXPECT_EQ(this->core.steps.back() == "free", created);
        }
        this->core.failing_step = 0;
        this->core.steps.clear();
    }
    EXPECT_GT(failures, 40);
}

TYPED_TEST(fftw_planners, a_status_of_success_does_not_fail)
{
    this->core.harmless = true;
    const auto plan = longest_plans(this->a, this->b)[0];
    for (int step = 1; step <= 10; ++step) {
        this->core.steps.clear();
        this->core.failing_step = step;
        EXPECT_EQ(this->steps_of(plan()).size(), 10u);
    }
}

TYPED_TEST(fftw_planners, without_memory_there_is_no_plan)
{
    for (const auto &plan : longest_plans(this->a, this->b)) {
        recorded.failing_allocations = 1;
        EXPECT_EQ(plan(), nullptr);
        EXPECT_EQ(this->core.steps, steps{});
    }
}

TYPED_TEST(fftw_planners, refusals_ask_nobody)
{
    using family = fftw<TypeParam>;
    auto *x = this->a, *y = this->b;
    const auto z = [](auto *array) { return reinterpret_cast<typename family::complex *>(array); };
    fftw_iodim64 dims[8];
    fftw_iodim narrow[8];
    int n[8];
    fftw_r2r_kind kinds[8];
    for (int i = 0; i < 8; ++i) {
        dims[i] = {2, 1, 1};
        narrow[i] = {2, 1, 1};
        n[i] = 2;
        kinds[i] = FFTW_DHT;
    }
    EXPECT_EQ(family::plan_guru64_dft(8, dims, 0, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_dft(1, dims, 2, dims, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_dft(1, nullptr, 0, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_dft(1, dims, 1, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru_dft(8, narrow, 0, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru_dft(1, narrow, 2, narrow, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru_dft(1, nullptr, 0, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru_dft(1, narrow, 1, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_dft_r2c(8, dims, 0, nullptr, x, z(y), 0), nullptr);
    EXPECT_EQ(family::plan_guru_dft_c2r(1, narrow, 2, narrow, z(x), y, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_split_dft(8, dims, 0, nullptr, x, x, y, y, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_r2r(8, dims, 0, nullptr, x, y, kinds, 0), nullptr);
    EXPECT_EQ(family::plan_dft(8, n, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_dft(2, nullptr, z(x), z(y), -1, 0), nullptr);
    EXPECT_EQ(family::plan_dft_r2c(8, n, x, z(y), 0), nullptr);
    EXPECT_EQ(family::plan_dft_c2r(2, nullptr, z(x), y, 0), nullptr);
    EXPECT_EQ(family::plan_r2r(8, n, x, y, kinds, 0), nullptr);
    EXPECT_EQ(family::plan_many_dft(2, nullptr, 1, z(x), n, 1, 1, z(y), n, 1, 1, -1, 0), nullptr);
    const int endless[] = {INT_MAX, INT_MAX, INT_MAX, INT_MAX};
    EXPECT_EQ(family::plan_dft(4, endless, z(x), z(y), -1, 0), nullptr) << "strides beyond 64 bits";
    EXPECT_EQ(recorded.calls.size(), 0u) << recorded.calls.front().entry;
}

TYPED_TEST(fftw_planners, refusals_of_the_descriptor_destroy_the_plan)
{
    using family = fftw<TypeParam>;
    auto *x = reinterpret_cast<typename family::complex *>(this->a);
    auto *y = reinterpret_cast<typename family::complex *>(this->b);
    const fftw_iodim64 dims[] = {{4, 5, 1}, {5, 1, 4}}, same[] = {{4, 1, 1}}, batch = {2, 4, 5};
    EXPECT_EQ(family::plan_guru64_dft(2, dims, 0, nullptr, x, x, -1, 0), nullptr)
        << "strides differ in place";
    EXPECT_EQ(this->core.steps.back(), "free");
    EXPECT_EQ(family::plan_guru64_dft(1, same, 1, &batch, x, x, -1, 0), nullptr)
        << "distances differ in place";
    EXPECT_EQ(this->core.steps.back(), "free");
    this->core.steps.clear();
    const int zero = 0;
    EXPECT_EQ(family::plan_guru64_dft(0, dims, 0, nullptr, x, y, -1, 0), nullptr);
    EXPECT_EQ(family::plan_guru64_dft(-3, dims, 0, nullptr, x, y, -1, 0), nullptr);
    EXPECT_EQ(family::plan_dft_1d(0, x, y, -1, 0), nullptr);
    EXPECT_EQ(family::plan_dft_1d(-4, x, y, -1, 0), nullptr);
    EXPECT_EQ(family::plan_dft(1, &zero, x, y, -1, 0), nullptr);
    EXPECT_EQ(this->core.steps, steps{});
    EXPECT_EQ(this->core.live, 0);
    EXPECT_EQ(this->core.blocks(), 0);
}

} // namespace
