// The loops and turns that the core's own routines use. Linked with the core's objects, whose names are not
// exported.
#include "openblas/forward.h"
#include "service/callbacks.h"
#include "service/exit.h"
#include "service/kernel_threads.h"
#include "service/missing_entry.h"
#include "service/service_entries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace xkl::core;

extern "C" double ddot_(const int64_t *n, const double *x, const int64_t *incx, const double *y,
                        const int64_t *incy);
extern "C" int openblas_get_num_threads(void);

namespace {

constexpr double worth_it = 1e6;

class Loops : public testing::Test {
  protected:
    void SetUp() override
    {
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(4);
    }
    void TearDown() override
    {
        xkl_serv_set_num_threads_local(0);
        xkl_serv_domain_set_num_threads(0, XKL_DOMAIN_ALL);
        xkl_serv_set_dynamic(1);
    }
};

// Each element is visited by one thread only; a second visit would show in the count and in the thread
// sanitizer.
void visit_all(int64_t count)
{
    std::vector<int> visits(static_cast<size_t>(count));
    parallel_for(count, XKL_DOMAIN_BLAS, worth_it,
                 [&](int64_t index) { ++visits[static_cast<size_t>(index)]; });
    ASSERT_EQ(std::ranges::count(visits, 1), count);
}

TEST_F(Loops, EveryIndexOnceForAnyCount)
{
    for (const int64_t count : {0, 1, 2, 3, 5, 31, 32, 33, 1000, 12345})
        visit_all(count);
    parallel_for(-5, XKL_DOMAIN_BLAS, worth_it, [](int64_t) { FAIL(); });
}

TEST_F(Loops, SeveralThreadsTakePartAndKernelsRunOnOneEach)
{
    std::mutex lock;
    std::set<std::thread::id> seen;
    std::atomic<int> wrong{0};
    for (int round = 0; round < 50 && seen.size() < 2; ++round)
        parallel_for(64, XKL_DOMAIN_BLAS, worth_it, [&](int64_t) {
            usleep(200);
            wrong += threads_for(XKL_DOMAIN_BLAS) != 1 || openblas_get_num_threads() != 1;
            const std::lock_guard guard(lock);
            seen.insert(std::this_thread::get_id());
        });
    EXPECT_GE(seen.size(), 2u);
    EXPECT_LE(seen.size(), 4u);
    EXPECT_EQ(wrong, 0);
    const kernel_turn turn;
    EXPECT_EQ(openblas_get_num_threads(), 4);
}

TEST_F(Loops, LittleWorkOneThreadAndNestingStayOnTheCaller)
{
    const auto caller = std::this_thread::get_id();
    const auto on_caller = [caller](int64_t) { EXPECT_EQ(std::this_thread::get_id(), caller); };
    parallel_for(100, XKL_DOMAIN_BLAS, 1, on_caller);
    xkl_serv_set_num_threads_local(1);
    parallel_for(100, XKL_DOMAIN_BLAS, worth_it, on_caller);
    xkl_serv_set_num_threads_local(0);
    parallel_for(8, XKL_DOMAIN_BLAS, worth_it, [](int64_t) {
        const auto outer = std::this_thread::get_id();
        parallel_for(8, XKL_DOMAIN_BLAS, worth_it,
                     [outer](int64_t) { EXPECT_EQ(std::this_thread::get_id(), outer); });
    });
}

TEST_F(Loops, FewLargeItemsLeaveTheThreadsToTheKernels)
{
    const auto caller = std::this_thread::get_id();
    parallel_for(2, XKL_DOMAIN_BLAS, 1e12, [caller](int64_t) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        EXPECT_EQ(openblas_get_num_threads(), 4);
    });
}

TEST_F(Loops, ManyCallersAtOnceWithKernelsInTheBodies)
{
    std::atomic<int> wrong{0};
    std::vector<std::thread> callers;
    for (int caller = 0; caller < 6; ++caller)
        callers.emplace_back([&wrong, caller] {
            if (caller % 2)
                xkl_serv_set_num_threads_local(caller);
            const std::vector<double> ones(100, 1);
            const int64_t n = 100, one = 1;
            for (int round = 0; round < 50; ++round) {
                parallel_for(40, [&](int64_t) {
                    wrong += on_openblas(ddot_, &n, ones.data(), &one, ones.data(), &one) != 100;
                });
                const double *x = ones.data();
                wrong += on_openblas<ddot_>(&n, x, &one, x, &one) != 100;
            }
        });
    for (std::thread &each : callers)
        each.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(Loops, ChildOfAForkHasItsOwnThreads)
{
    visit_all(100);
    const pid_t child = fork();
    if (child == 0) {
        alarm(30);
        std::atomic<int64_t> sum{0};
        parallel_for(1000, XKL_DOMAIN_BLAS, worth_it, [&](int64_t index) { sum += index; });
        _exit(sum == 499'500 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    visit_all(100);
}

TEST(Turns, QuietCallsNeedNoneAndAThreadsOwnCountHolds)
{
    const std::vector<double> ones(10, 1);
    const int64_t n = 10, one = 1;
    const double *x = ones.data();
    xkl_serv_set_dynamic(0);
    xkl_serv_set_num_threads(3);
    EXPECT_EQ(on_openblas<ddot_>(&n, x, &one, x, &one), 10);
    EXPECT_EQ(kernel_turns_needed, 0u);
    EXPECT_EQ(openblas_get_num_threads(), 3);
    xkl_serv_set_num_threads_local(2);
    EXPECT_EQ(kernel_turns_needed, 1u);
    {
        const kernel_turn turn;
        EXPECT_EQ(openblas_get_num_threads(), 2);
        const serial_kernels inner; // a turn within a turn changes nothing
        EXPECT_EQ(openblas_get_num_threads(), 2);
    }
    std::thread([] { xkl_serv_set_num_threads_local(5); }).join();
    EXPECT_EQ(kernel_turns_needed, 1u);
    xkl_serv_set_num_threads_local(0);
    EXPECT_EQ(kernel_turns_needed, 0u);
    EXPECT_EQ(openblas_get_num_threads(), 3);
    xkl_serv_domain_set_num_threads(2, XKL_DOMAIN_BLAS);
    EXPECT_EQ(openblas_get_num_threads(), 2);
    xkl_serv_domain_set_num_threads(0, XKL_DOMAIN_ALL);
    xkl_serv_set_dynamic(1);
}

TEST(MissingEntry, NamesTheEntryAndEndsWithCode2)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(xkl_core_missing_entry("xkl_blas_hgemm"), testing::ExitedWithCode(2),
                "XKL: the core library does not provide xkl_blas_hgemm yet");
    const auto handler = [](int code) { _exit(code + 40); };
    EXPECT_EXIT(
        {
            xkl_serv_set_exit_handler(handler);
            xkl_core_missing_entry("x");
        },
        testing::ExitedWithCode(42), "");
}

TEST(Callbacks, SolversReachTheRegisteredRoutines)
{
    double pivot = -1e-12;
    EXPECT_TRUE(perturb_pivot(1, pivot, 1e-8));
    EXPECT_EQ(pivot, -1e-8);
    xkl_serv_set_pardiso_pivot([](const double *diagonal, double *changed, const double *) {
        *changed = *diagonal;
        return 1;
    });
    EXPECT_TRUE(perturb_pivot(3, pivot, 1e-8));
    EXPECT_EQ(pivot, 3);
    xkl_serv_set_pardiso_pivot(nullptr);

    EXPECT_FALSE(report_progress(0, 1, "factor"));
    xkl_serv_set_progress_interface(
        [](const int64_t *thread, const int64_t *step, const char *, int64_t length) {
            return static_cast<int>(*thread + *step + length);
        });
    EXPECT_TRUE(report_progress(0, 1, "factor"));
    xkl_serv_set_progress_interface(nullptr);
}

} // namespace
