// The forms of the FFTW3 interface that Fortran calls without an interface: everything by address, 64-bit
// integers, sizes and kinds of arrays whose first dimension is the fastest.
#include "fftw_core.h"
#include "fftw_family.h"

#include <gtest/gtest.h>

extern "C" {
using integer = const int64_t *;
void dfftw_plan_dft_(void **, integer rank, integer n, void *, void *, integer sign, integer flags);
void dfftw_plan_dft_1d_(void **, integer, void *, void *, integer, integer);
void sfftw_plan_dft_2d_(void **, integer, integer, void *, void *, integer, integer);
void dfftw_plan_dft_3d_(void **, integer, integer, integer, void *, void *, integer, integer);
void sfftw_plan_dft_r2c_2d_(void **, integer, integer, void *, void *, integer);
void dfftw_plan_dft_c2r_(void **, integer, integer, void *, void *, integer);
void dfftw_plan_many_dft_(void **, integer rank, integer n, integer howmany, void *, integer inembed,
                          integer istride, integer idist, void *, integer onembed, integer ostride,
                          integer odist, integer sign, integer flags);
void dfftw_plan_many_dft_r2c_(void **, integer, integer, integer, void *, integer, integer, integer, void *,
                              integer, integer, integer, integer);
void dfftw_plan_many_dft_c2r_(void **, integer, integer, integer, void *, integer, integer, integer, void *,
                              integer, integer, integer, integer);
void dfftw_plan_many_r2r_(void **, integer, integer, integer, void *, integer, integer, integer, void *,
                          integer, integer, integer, integer kinds, integer);
void dfftw_plan_dft_r2c_3d_(void **, integer, integer, integer, void *, void *, integer);
void dfftw_plan_dft_c2r_3d_(void **, integer, integer, integer, void *, void *, integer);
void dfftw_plan_r2r_2d_(void **, integer, integer, void *, void *, integer, integer, integer);
void dfftw_plan_guru_dft_r2c_(void **, integer, integer, integer, integer, integer, integer, integer,
                              integer, void *, void *, integer);
void dfftw_plan_guru_dft_c2r_(void **, integer, integer, integer, integer, integer, integer, integer,
                              integer, void *, void *, integer);
void dfftw_plan_guru_split_dft_(void **, integer, integer, integer, integer, integer, integer, integer,
                                integer, void *, void *, void *, void *, integer);
void dfftw_plan_guru_dft_(void **, integer rank, integer n, integer is, integer os, integer howmany_rank,
                          integer howmany_n, integer howmany_is, integer howmany_os, void *, void *,
                          integer sign, integer flags);
void dfftw_plan_guru_split_dft_r2c_(void **, integer rank, integer n, integer is, integer os,
                                    integer howmany_rank, integer howmany_n, integer howmany_is,
                                    integer howmany_os, void *, void *, void *, integer flags);
void dfftw_plan_r2r_3d_(void **, integer, integer, integer, void *, void *, integer, integer, integer,
                        integer flags);
void sfftw_plan_r2r_(void **, integer, integer, void *, void *, integer kinds, integer flags);
void dfftw_plan_guru_r2r_(void **, integer rank, integer n, integer is, integer os, integer howmany_rank,
                          integer howmany_n, integer howmany_is, integer howmany_os, void *, void *,
                          integer kinds, integer flags);
void dfftw_execute_(void **);
void dfftw_execute_dft_(void **, void *, void *);
void sfftw_execute_r2r_(void **, void *, void *);
void dfftw_destroy_plan_(void **);
void sfftw_destroy_plan_(void **);
void dfftw_init_threads_(int64_t *);
void dfftw_plan_with_nthreads_(integer);
void sfftw_planner_nthreads_(int64_t *);
void dfftw_cleanup_threads_(void);
void dfftw_set_timelimit_(const double *);
void dfftw_import_system_wisdom_(int64_t *);
void dfftw_estimate_cost_(double *, void **);
}

namespace {

using steps = std::vector<std::string>;

class fftw_fortran : public testing::Test {
  protected:
    fftw_fortran()
    {
        core.name(&array[0], "a");
        core.name(&array[1], "b");
        core.name(&array[2], "c");
    }

    steps taken()
    {
        EXPECT_NE(plan, nullptr);
        dfftw_destroy_plan_(&plan);
        EXPECT_EQ(core.live, 0);
        core.steps.pop_back(); // the release
        return std::exchange(core.steps, {});
    }

    fftw_core core;
    double array[4] = {};
    void *a = &array[0], *b = &array[1], *c = &array[2];
    void *plan = &array[3];
    const int64_t one = 1, two = 2, three = 3, forward = -1, flags = 64;
    const int64_t n[3] = {6, 5, 4};
};

TEST_F(fftw_fortran, planners_turn_sizes_around)
{
    const steps box = {"create dcmd 4 5 6", "set 12 0 30 6 1", "set 11 44",
                       "set 13 0 30 6 1",   "set 27 1",        "commit"};
    dfftw_plan_dft_(&plan, &three, n, a, b, &forward, &flags);
    EXPECT_EQ(taken(), box);
    dfftw_plan_dft_3d_(&plan, &n[0], &n[1], &n[2], a, b, &forward, &flags);
    EXPECT_EQ(taken(), box);
    sfftw_plan_dft_2d_(&plan, &n[0], &n[1], a, a, &one, &flags);
    EXPECT_EQ(taken(), (steps{"create scmd 5 6", "set 12 0 6 1", "set 27 1", "commit"}));
    sfftw_plan_dft_r2c_2d_(&plan, &n[0], &n[1], a, b, &flags);
    EXPECT_EQ(taken(), (steps{"create srmd 5 6", "set 10 39", "set 21 57", "set 12 0 6 1", "set 11 44",
                              "set 13 0 4 1", "set 27 1", "commit"}))
        << "the first dimension is halved";
    dfftw_plan_dft_c2r_(&plan, &two, n, a, a, &flags);
    EXPECT_EQ(taken(), (steps{"create drmd 5 6", "set 10 39", "set 21 57", "set 12 0 4 1", "set 13 0 8 1",
                              "set 27 1", "commit"}));
    const int64_t embed[] = {7, 8, 9}, in_distance = 700, out_distance = 800;
    dfftw_plan_many_dft_(&plan, &three, n, &two, a, embed, &two, &in_distance, b, n, &one, &out_distance,
                         &forward, &flags);
    EXPECT_EQ(taken(), (steps{"create dcmd 4 5 6", "set 12 0 112 14 2", "set 11 44", "set 13 0 30 6 1",
                              "set 7 2", "set 14 700", "set 15 800", "set 27 1", "commit"}));
    const int64_t large = int64_t{1} << 33;
    dfftw_plan_dft_1d_(&plan, &large, a, a, &forward, &flags);
    EXPECT_EQ(taken()[0], "create dc1d 8589934592");
}

TEST_F(fftw_fortran, guru_planners_take_three_arrays)
{
    const int64_t is[] = {1, 6, 30}, os[] = {20, 4, 1}, zero = 0, distance = 500, eight = 8;
    dfftw_plan_guru_dft_(&plan, &three, n, is, os, &one, &two, &distance, &distance, a, b, &forward,
                         &flags);
    EXPECT_EQ(taken(), (steps{"create dcmd 6 5 4", "set 12 0 1 6 30", "set 11 44", "set 13 0 20 4 1",
                              "set 7 2", "set 14 500", "set 15 500", "set 27 1", "commit"}));
    dfftw_plan_guru_dft_(&plan, &eight, n, is, os, &zero, n, is, os, a, b, &forward, &flags);
    EXPECT_EQ(plan, nullptr);
    plan = a;
    dfftw_plan_guru_dft_(&plan, &one, n, is, os, &two, n, is, os, a, b, &forward, &flags);
    EXPECT_EQ(plan, nullptr);
    plan = a;
    dfftw_plan_guru_split_dft_r2c_(&plan, &one, n, is, os, &zero, n, is, os, a, b, c, &flags);
    EXPECT_EQ(plan, nullptr);
    EXPECT_EQ(core.steps, steps{});
}

TEST_F(fftw_fortran, planners_are_those_of_c)
{
    double *x = array, *y = array + 1;
    auto *z = reinterpret_cast<fftw_complex *>(array + 2);
    const auto expect_same = [&](void *made_by_c, const auto &fortran) {
        plan = made_by_c;
        const steps expected = taken();
        fortran();
        EXPECT_EQ(taken(), expected);
    };
    const int sizes[] = {4, 5, 6}, wide[] = {9, 8, 7}; // n and embed
    const int64_t embed[] = {7, 8, 9}, far = 700, farther = 800;
    expect_same(fftw_plan_many_dft_r2c(3, sizes, 2, x, wide, 3, 700, z, sizes, 1, 800, 4), [&] {
        const int64_t save_memory = FFTW_CONSERVE_MEMORY;
        dfftw_plan_many_dft_r2c_(&plan, &three, n, &two, x, embed, &three, &far, z, n, &one, &farther,
                                 &save_memory);
    });
    expect_same(fftw_plan_many_dft_c2r(3, sizes, 2, z, wide, 3, 700, x, sizes, 1, 800, 64), [&] {
        dfftw_plan_many_dft_c2r_(&plan, &three, n, &two, z, embed, &three, &far, x, n, &one, &farther,
                                 &flags);
    });
    const fftw_r2r_kind kinds[] = {FFTW_DHT, FFTW_R2HC, FFTW_RODFT11};
    const int64_t kinds_turned[] = {FFTW_RODFT11, FFTW_R2HC, FFTW_DHT};
    expect_same(fftw_plan_many_r2r(3, sizes, 2, x, wide, 3, 700, y, sizes, 1, 800, kinds, 64), [&] {
        dfftw_plan_many_r2r_(&plan, &three, n, &two, x, embed, &three, &far, y, n, &one, &farther,
                             kinds_turned, &flags);
    });
    expect_same(fftw_plan_dft_r2c_3d(4, 5, 6, x, z, 64),
                [&] { dfftw_plan_dft_r2c_3d_(&plan, &n[0], &n[1], &n[2], x, z, &flags); });
    expect_same(fftw_plan_dft_c2r_3d(4, 5, 6, z, x, 64),
                [&] { dfftw_plan_dft_c2r_3d_(&plan, &n[0], &n[1], &n[2], z, x, &flags); });
    expect_same(fftw_plan_r2r_2d(5, 6, x, x, FFTW_R2HC, FFTW_RODFT11, 64), [&] {
        dfftw_plan_r2r_2d_(&plan, &n[0], &n[1], x, x, &kinds_turned[0], &kinds_turned[1], &flags);
    });
    const fftw_iodim dims[] = {{6, 1, 20}, {5, 6, 4}, {4, 30, 1}}, batch = {2, 500, 600};
    const int64_t is[] = {1, 6, 30}, os[] = {20, 4, 1}, batch_is = 500, batch_os = 600;
    expect_same(fftw_plan_guru_dft_r2c(3, dims, 1, &batch, x, z, 64), [&] {
        dfftw_plan_guru_dft_r2c_(&plan, &three, n, is, os, &one, &two, &batch_is, &batch_os, x, z, &flags);
    });
    expect_same(fftw_plan_guru_dft_c2r(3, dims, 1, &batch, z, x, 64), [&] {
        dfftw_plan_guru_dft_c2r_(&plan, &three, n, is, os, &one, &two, &batch_is, &batch_os, z, x, &flags);
    });
    expect_same(fftw_plan_guru_split_dft(3, dims, 1, &batch, x, y, array + 2, array + 3, 64), [&] {
        dfftw_plan_guru_split_dft_(&plan, &three, n, is, os, &one, &two, &batch_is, &batch_os, x, y,
                                   array + 2, array + 3, &flags);
    });
}

TEST_F(fftw_fortran, kinds_are_turned_around_too)
{
    const int64_t kinds[] = {FFTW_RODFT11, FFTW_R2HC, FFTW_DHT}, is[] = {1, 6, 30}, zero = 0;
    dfftw_plan_r2r_3d_(&plan, &n[0], &n[1], &n[2], a, b, &kinds[0], &kinds[1], &kinds[2], &flags);
    const std::string whole = ": (4 30 30) (5 6 6) (6 1 1) kinds 2 0 10 limit 1";
    EXPECT_EQ(taken()[0], "r2r 36" + whole);
    sfftw_plan_r2r_(&plan, &three, n, a, b, kinds, &flags);
    EXPECT_EQ(taken()[0], "r2r 35" + whole);
    dfftw_plan_guru_r2r_(&plan, &three, n, is, is, &zero, n, is, is, a, b, kinds, &flags);
    EXPECT_EQ(taken()[0], "r2r 36: (6 1 1) (5 6 6) (4 30 30) kinds 2 0 10 limit 1");
    const int64_t none[] = {11, 0, 0}, wrapped[] = {(int64_t{1} << 32), 0, 0};
    sfftw_plan_r2r_(&plan, &three, n, a, b, none, &flags);
    EXPECT_EQ(plan, nullptr);
    sfftw_plan_r2r_(&plan, &three, n, a, b, wrapped, &flags);
    EXPECT_EQ(plan, nullptr);
}

TEST_F(fftw_fortran, plans_are_found_by_address)
{
    dfftw_plan_dft_1d_(&plan, &three, a, b, &one, &flags);
    core.steps.clear();
    dfftw_execute_(&plan);
    dfftw_execute_dft_(&plan, b, c);
    EXPECT_EQ(core.steps, (steps{"backward a b", "backward b c"}));
    double cost = -1;
    dfftw_estimate_cost_(&cost, &plan);
    EXPECT_EQ(cost, 0);
    dfftw_destroy_plan_(&plan);
    const int64_t kind = FFTW_DHT;
    sfftw_plan_r2r_(&plan, &one, n, a, b, &kind, &flags);
    core.steps.clear();
    sfftw_execute_r2r_(&plan, b, c);
    EXPECT_EQ(core.steps, steps{"r2r b c"});
    sfftw_destroy_plan_(&plan);
    EXPECT_EQ(core.blocks(), 0);
}

TEST_F(fftw_fortran, settings_are_those_of_c)
{
    int64_t result = 99;
    dfftw_init_threads_(&result);
    EXPECT_EQ(result, 1);
    sfftw_planner_nthreads_(&result);
    EXPECT_EQ(result, core.threads);
    dfftw_plan_with_nthreads_(&three);
    EXPECT_EQ(fftw3_xkl.thread_count, 3);
    const int64_t few = -(int64_t{1} << 40);
    dfftw_plan_with_nthreads_(&few);
    EXPECT_LT(fftw3_xkl.thread_count, 0);
    dfftw_cleanup_threads_();
    EXPECT_EQ(fftw3_xkl.thread_count, 1);
    const double seconds = 1.5;
    dfftw_set_timelimit_(&seconds);
    EXPECT_EQ(fftw3_xkl.time_limit, 1.5);
    fftw3_xkl.time_limit = 0;
    dfftw_import_system_wisdom_(&result);
    EXPECT_EQ(result, 0);
}

} // namespace
