// The dense kernels behind the core: which set computes, with how many threads, and what becomes of them
// when a process forks, ends or closes the library. Each case needs a process in which no kernel has run
// before.
#include "service/service_entries.h"
#include "xkl_service_types.h"

#include "process.h"

#include <atomic>
#include <dlfcn.h>
#include <fstream>
#include <set>
#include <sys/wait.h>
#include <thread>

namespace {

std::string kernel_set()
{
    xkl_version record;
    xkl_serv_get_version(&record);
    return record.kernels;
}

int threads_of_this_process()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "Threads:") {
            int count = 0;
            status >> count;
            return count;
        }
    return 0;
}

TEST(KernelSet, FollowsWhatTheProcessorCanDo)
{
    in_new_process([] {
        EXPECT_EQ(getenv("OPENBLAS_CORETYPE"), nullptr);
        EXPECT_EQ(getenv("OPENBLAS_NUM_THREADS"), nullptr);
        const std::string set = kernel_set();
        const std::set<std::string> fitting =
            __builtin_cpu_supports("avx512f") ? std::set<std::string>{"SkylakeX"}
            : __builtin_cpu_supports("avx2")  ? std::set<std::string>{"Haswell"}
            : __builtin_cpu_supports("avx")
                ? std::set<std::string>{"Sandybridge"}
                : std::set<std::string>{"Nehalem", "Penryn", "Core2", "Prescott"};
        EXPECT_TRUE(fitting.contains(set)) << set;
        EXPECT_TRUE(product_is_right(60));
    });
}

TEST(KernelSet, UserMayNameOneButABranchComesFirst)
{
    const variable named("OPENBLAS_CORETYPE", "Prescott");
    in_new_process([] { EXPECT_EQ(kernel_set(), "Prescott"); });
    const variable branch("XKL_CBWR", "SSE4_2,STRICT");
    in_new_process([] {
        EXPECT_EQ(kernel_set(), "Nehalem");
        EXPECT_EQ(xkl_serv_cbwr_get(XKL_CBWR_ALL), XKL_CBWR_SSE4_2 | XKL_CBWR_STRICT);
        EXPECT_TRUE(product_is_right(60));
    });
}

TEST(KernelSet, BranchMayChangeUntilTheFirstComputation)
{
    in_new_process([] {
        EXPECT_EQ(xkl_serv_cbwr_get(XKL_CBWR_BRANCH), XKL_CBWR_BRANCH_OFF);
        const struct {
            int branch;
            const char *set;
        } rows[] = {{XKL_CBWR_COMPATIBLE, "Prescott"}, {XKL_CBWR_SSE2, "Prescott"},
                    {XKL_CBWR_SSSE3, "Core2"},         {XKL_CBWR_SSE4_1, "Penryn"},
                    {XKL_CBWR_SSE4_2, "Nehalem"},      {XKL_CBWR_AVX, "Sandybridge"},
                    {XKL_CBWR_AVX2, "Haswell"},        {XKL_CBWR_AVX512, "SkylakeX"}};
        const int best = xkl_serv_cbwr_get_auto_branch();
        for (const auto &[branch, set] : rows) {
            const bool runs = branch <= best;
            EXPECT_EQ(xkl_serv_cbwr_set(branch), runs ? XKL_CBWR_SUCCESS : XKL_CBWR_ERR_UNSUPPORTED_BRANCH);
            EXPECT_EQ(kernel_set() == set, runs);
        }
        EXPECT_EQ(xkl_serv_cbwr_set(5), XKL_CBWR_ERR_UNKNOWN_BRANCH);
        EXPECT_EQ(xkl_serv_cbwr_set(XKL_CBWR_BRANCH_OFF | XKL_CBWR_STRICT), XKL_CBWR_ERR_INVALID_SETTINGS);
        EXPECT_EQ(xkl_serv_cbwr_get(2), XKL_CBWR_ERR_INVALID_INPUT);
        EXPECT_EQ(xkl_serv_cbwr_set(XKL_CBWR_SSE4_2), XKL_CBWR_SUCCESS);
        EXPECT_TRUE(product_is_right(60));
        EXPECT_EQ(xkl_serv_cbwr_set(XKL_CBWR_COMPATIBLE), XKL_CBWR_ERR_MODE_CHANGE_FAILURE);
        EXPECT_EQ(xkl_serv_cbwr_set(XKL_CBWR_SSE4_2), XKL_CBWR_SUCCESS);
        EXPECT_EQ(xkl_serv_cbwr_get(XKL_CBWR_BRANCH), XKL_CBWR_SSE4_2);
        EXPECT_EQ(xkl_serv_enable_instructions(XKL_ENABLE_AVX), 0);
    });
}

TEST(KernelSet, InstructionsAreBounded)
{
    in_new_process([] {
        EXPECT_EQ(xkl_serv_enable_instructions(3), 0);
        EXPECT_EQ(xkl_serv_enable_instructions(XKL_ENABLE_SSE4_2), 1);
        EXPECT_EQ(kernel_set(), "Nehalem");
        EXPECT_LE(xkl_serv_vml_cpu_detect(), 1);
        EXPECT_TRUE(product_is_right(60));
    });
}

TEST(KernelThreads, StartWithTheFirstKernelAndFollowTheCount)
{
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the sanitizer starts a thread of its own";
#endif
    in_new_process([] {
        const int before = threads_of_this_process();
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(3);
        EXPECT_EQ(threads_of_this_process(), before);
        xkl_serv_set_num_threads_local(1);
        EXPECT_TRUE(product_is_right(300));
        EXPECT_EQ(threads_of_this_process(), before);
        xkl_serv_set_num_threads_local(0);
        EXPECT_TRUE(product_is_right(300));
        EXPECT_EQ(threads_of_this_process(), before + 2);
    });
}

TEST(KernelThreads, CallersWithDifferentCountsTakeTurns)
{
    in_new_process([] {
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(2);
        std::atomic<int> wrong{0};
        std::vector<std::thread> callers;
        for (int caller = 0; caller < 8; ++caller)
            callers.emplace_back([caller, &wrong] {
                for (int round = 0; round < 30; ++round) {
                    xkl_serv_set_num_threads_local((caller + round) % 4); // 0 follows the count for all
                    wrong += !product_is_right(40 + 15 * caller);
                }
            });
        for (int count = 1; count < 60; ++count)
            xkl_serv_set_num_threads(1 + count % 3);
        for (std::thread &each : callers)
            each.join();
        EXPECT_EQ(wrong, 0);
        EXPECT_TRUE(product_is_right(200));
    });
}

// Runs kernels on threads of their own until it ends.
class computing {
  public:
    explicit computing(int count)
    {
        for (int i = 0; i < count; ++i)
            threads_.emplace_back([this] {
                while (!stop_)
                    rounds_ += product_is_right(250);
            });
        while (rounds_ < count)
            std::this_thread::yield();
    }
    ~computing()
    {
        stop_ = true;
        for (std::thread &each : threads_)
            each.join();
    }
    void let_go()
    {
        for (std::thread &each : threads_)
            each.detach();
        threads_.clear();
    }

  private:
    std::atomic<bool> stop_{false};
    std::atomic<int> rounds_{0};
    std::vector<std::thread> threads_;
};

TEST(Fork, ChildComputesAfterTheParentUsedThreads)
{
    in_new_process([] {
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(2);
        xkl_serv_set_num_threads_local(3);
        EXPECT_TRUE(product_is_right(300));
        const pid_t child = fork();
        if (child == 0) {
            alarm(30);
            bool right = product_is_right(300) && xkl_serv_get_max_threads() == 3;
            xkl_serv_set_num_threads_local(0);
            xkl_serv_set_num_threads(4);
            right = right && product_is_right(300);
            xkl_serv_print_verbose_info(0, 2, "CHILD()");
            _exit(right ? 0 : 1);
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
        EXPECT_TRUE(product_is_right(300));
    });
}

TEST(Fork, ParentGoesOnWhenItForksWhileOthersCompute)
{
    in_new_process([] {
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(2);
        const computing others(2);
        for (int round = 0; round < 10; ++round) {
            const pid_t child = fork();
            if (child == 0)
                _exit(0);
            int status = -1;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
            EXPECT_TRUE(product_is_right(200));
        }
    });
}

TEST(Exit, ProcessEndsWhileThreadsCompute)
{
    for (const int count : {1, 2})
        in_new_process([count] {
            xkl_serv_set_dynamic(0);
            xkl_serv_set_num_threads(count);
            (new computing(3))->let_go();
        });
}

TEST(Close, LibraryMayBeClosedWhileItsThreadsWait)
{
    in_new_process([] {
        EXPECT_TRUE(product_is_right(300));
        Dl_info core;
        ASSERT_NE(dladdr(reinterpret_cast<void *>(xkl_serv_verbose_mode()), &core), 0);
        void *library = dlopen(core.dli_fname, RTLD_NOW);
        ASSERT_NE(library, nullptr);
        EXPECT_EQ(dlclose(library), 0);
        EXPECT_TRUE(product_is_right(300));
    });
}

} // namespace
