// The service entries of the core library as its users see them. What depends on the environment or on
// being first runs in a process of its own: a death test in the thread-safe style starts this program anew.
#include "service/service_entries.h"
#include "xkl_service_types.h"

#include "process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

struct report {
    std::string name;
    int64_t position = 0;
};
report last_report;
void remember_report(const char *name, const int64_t *position, int64_t length)
{
    last_report = {std::string(name, static_cast<size_t>(length)), *position};
}

std::string printed_report(const char *name, int64_t position, int64_t length)
{
    testing::internal::CaptureStderr();
    xkl_serv_default_xerbla(name, &position, length);
    return testing::internal::GetCapturedStderr();
}

TEST(Reporter, DefaultPrintsOneLineAndKeepsToTheLength)
{
    EXPECT_EQ(printed_report("DGEMM garbage", 8, 6),
              "XKL: argument 8 of DGEMM is not valid; the call was not carried out\n");
    EXPECT_EQ(printed_report("cblas_dgemm", 1, 11),
              "XKL: argument 1 of cblas_dgemm is not valid; the call was not carried out\n");
    EXPECT_NE(
        printed_report("cblas_zher", 1000, 10).find("not enough memory for a temporary copy in cblas_zher"),
        std::string::npos);
    EXPECT_NE(printed_report(nullptr, 3, 4).find("argument 3 of ?"), std::string::npos);
    EXPECT_NE(printed_report("X", 3, -4).find("argument 3 of ?"), std::string::npos);
    const std::string endless(1000, 'A');
    EXPECT_LT(printed_report(endless.c_str(), 1, 1000).size(), 250u);
}

TEST(Reporter, RegisteredHandlerThenUserHandlerThenDefault)
{
    const int64_t position = 5;
    xkl_serv_set_xerbla_interface(remember_report);
    xkl_serv_xerbla("DTRSM ", &position, 6);
    EXPECT_EQ(last_report.name, "DTRSM ");
    EXPECT_EQ(last_report.position, 5);
    xkl_serv_set_xerbla_interface(nullptr);

    EXPECT_EQ(xkl_serv_set_xerbla(remember_report), nullptr);
    xkl_serv_xerbla("DSYRK ", &position, 6);
    EXPECT_EQ(last_report.name, "DSYRK ");

    // One that passes the report on through the chain must not come back for ever.
    EXPECT_EQ(xkl_serv_set_xerbla(xkl_serv_default_xerbla), &remember_report);
    EXPECT_NE(printed_report("DGER  ", 7, 6).find("argument 7 of DGER "), std::string::npos);
    EXPECT_EQ(xkl_serv_set_xerbla(nullptr), &xkl_serv_default_xerbla);
}

TEST(Reporter, KernelLibraryReportsUnderTheFramesName)
{
    const int64_t bad = -1, one = 1;
    const double value = 0;
    double result = 7;
    xkl_serv_set_xerbla_interface(remember_report);
    xkl_blas_dgemm("N", "N", &one, &bad, &one, &value, &value, &one, &value, &one, &value, &result, &one, 1,
                   1);
    xkl_serv_set_xerbla_interface(nullptr);
    EXPECT_EQ(last_report.name, "DGEMM ");
    EXPECT_EQ(last_report.position, 4);
    EXPECT_EQ(result, 7);
}

TEST(Text, NothingBeyondTheBufferAndTheLengthOfWhatIsThere)
{
    char buffer[9] = "########";
    EXPECT_EQ(xkl_serv_snprintf_s(buffer, 8, 5, "%s%d", "abc", 4567), 5);
    EXPECT_STREQ(buffer, "abc45");
    EXPECT_EQ(xkl_serv_snprintf_s(buffer, 8, 100, "%s", "longer than eight"), 7);
    EXPECT_STREQ(buffer, "longer ");
    EXPECT_EQ(buffer[8], '\0');
    EXPECT_EQ(xkl_serv_sprintf_s(buffer, 1, "%d", 42), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(xkl_serv_sprintf_char_s(buffer, 4, "x%zux%zu", size_t{12}, size_t{3}), 3);
    EXPECT_STREQ(buffer, "x12");
    EXPECT_EQ(xkl_serv_snprintf_s(buffer, 0, 5, "x"), -1);
    EXPECT_EQ(xkl_serv_sprintf_s(nullptr, 5, "x"), -1);
    EXPECT_EQ(xkl_serv_strnlen_s("cblas_dgemm", 4096), 11u);
    EXPECT_EQ(xkl_serv_strnlen_s("cblas_dgemm", 5), 5u);
    EXPECT_EQ(xkl_serv_strnlen_s(nullptr, 5), 0u);
}

TEST(Text, AppendingIsAllOrNothing)
{
    char path[6] = "ab";
    EXPECT_EQ(xkl_serv_strncat_s(path, sizeof path, "/", 4096), 0);
    EXPECT_STREQ(path, "ab/");
    EXPECT_EQ(xkl_serv_strncat_s(path, sizeof path, "cdefgh", 2), 0);
    EXPECT_STREQ(path, "ab/cd");
    EXPECT_NE(xkl_serv_strncat_s(path, sizeof path, "e", 1), 0);
    EXPECT_STREQ(path, "ab/cd");
    EXPECT_NE(xkl_serv_strncat_s(path, 0, "e", 1), 0);
    EXPECT_NE(xkl_serv_strncat_s(nullptr, 6, "e", 1), 0);
    char open_end[2] = {'a', 'b'};
    EXPECT_NE(xkl_serv_strncat_s(open_end, 2, "", 1), 0);
}

TEST(Text, LettersCompareWithoutCaseAndNothingElseDoes)
{
    for (int a = 0; a < 256; ++a)
        for (int b = 0; b < 256; ++b) {
            const auto letter = [](int c) { return c >= 'a' && c <= 'z' ? c - 32 : c; };
            const char left = static_cast<char>(a), right = static_cast<char>(b);
            ASSERT_EQ(xkl_serv_lsame(&left, &right, 1, 1), letter(a) == letter(b)) << a << ' ' << b;
        }
}

TEST(Memory, AlignedBlocksOfExactSizeAreCounted)
{
    int before = 0, now = 0;
    const int64_t bytes = xkl_serv_mem_stat(&before);
    for (const int alignment : {1, 16, 64, 128, 4096, 1 << 20}) {
        void *block = xkl_serv_malloc(1000, alignment);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % static_cast<uintptr_t>(alignment), 0u);
        std::fill_n(static_cast<char *>(block), 1000, 'x');
        EXPECT_EQ(xkl_serv_mem_stat(&now), bytes + 1000);
        EXPECT_EQ(now, before + 1);
        block = xkl_serv_realloc(block, 5000);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % static_cast<uintptr_t>(alignment), 0u);
        EXPECT_EQ(std::count(static_cast<char *>(block), static_cast<char *>(block) + 1000, 'x'), 1000);
        EXPECT_EQ(xkl_serv_mem_stat(&now), bytes + 5000);
        xkl_serv_free(block);
    }
    for (const int no_power : {0, -8, 48, INT_MIN}) {
        void *block = xkl_serv_allocate(1, no_power);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 64, 0u);
        xkl_serv_deallocate(block);
    }
    xkl_serv_free(nullptr);
    void *block = xkl_serv_realloc(nullptr, 10);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(xkl_serv_realloc(block, 0), nullptr);
    xkl_serv_free_buffers();
    EXPECT_EQ(xkl_serv_mem_stat(&now), bytes);
    EXPECT_EQ(now, before);
}

TEST(Memory, SmallBlocksWaitForTheirThreadAndEndWithIt)
{
    void *const first = xkl_serv_malloc(100, 16);
    xkl_serv_free(first);
    for (const int alignment : {128, 16, 256}) {
        void *const next = xkl_serv_malloc(200, alignment);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(next) % static_cast<uintptr_t>(alignment), 0u);
        std::memset(next, 1, 200);
        xkl_serv_free(next);
    }
    const auto in_use = [] { return mallinfo2().uordblks; };
    if (in_use() == 0)
        GTEST_SKIP() << "a sanitizer's allocator does not tell what is in use";
    const auto use_some = [] {
        void *blocks[20];
        for (void *&each : blocks)
            each = xkl_serv_malloc(64, 64);
        for (void *each : blocks)
            xkl_serv_free(each);
    };
    std::thread(use_some).join();
    const size_t before = in_use();
    for (int i = 0; i < 100; ++i)
        std::thread(use_some).join();
    EXPECT_LT(in_use(), before + 100 * 512); // less than one block of each thread is left
    use_some();
    const size_t kept = in_use();
    xkl_serv_thread_free_buffers();
    const size_t idle = in_use();
    EXPECT_LT(idle, kept);
    EXPECT_EQ(xkl_serv_disable_fast_mm(), 1);
    use_some();
    EXPECT_LE(in_use(), idle);
}

TEST(Memory, ImpossibleSizesAreNullAndLeaveNoTrace)
{
    const int64_t bytes = xkl_serv_mem_stat(nullptr);
    EXPECT_EQ(xkl_serv_calloc(SIZE_MAX / 2 + 2, 2, 64), nullptr);
    EXPECT_EQ(xkl_serv_calloc(SIZE_MAX, SIZE_MAX, 64), nullptr);
    EXPECT_EQ(xkl_serv_malloc(SIZE_MAX, 64), nullptr);
    EXPECT_EQ(xkl_serv_malloc(SIZE_MAX - 64, 128), nullptr);
    EXPECT_EQ(xkl_serv_malloc(PTRDIFF_MAX, 1 << 30), nullptr);
    auto *zeros = static_cast<char *>(xkl_serv_calloc(7, 100, 64));
    ASSERT_NE(zeros, nullptr);
    EXPECT_EQ(std::count(zeros, zeros + 700, 0), 700);
    EXPECT_EQ(xkl_serv_realloc(zeros, SIZE_MAX), nullptr);
    EXPECT_EQ(xkl_serv_mem_stat(nullptr), bytes + 700);
    xkl_serv_free(zeros);
    EXPECT_EQ(xkl_serv_mem_stat(nullptr), bytes);
}

TEST(Memory, LimitHoldsUntilItIsLifted)
{
    ASSERT_EQ(xkl_serv_set_memory_limit(XKL_MEM_ALL, 2), 1);
    EXPECT_EQ(xkl_serv_set_memory_limit(7, 1), 0);
    void *first = xkl_serv_malloc(3 << 19, 64);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(xkl_serv_malloc(3 << 19, 64), nullptr);
    xkl_serv_free(first);
    void *second = xkl_serv_malloc(3 << 19, 64);
    EXPECT_NE(second, nullptr);
    xkl_serv_free(second);
    EXPECT_EQ(xkl_serv_set_memory_limit(XKL_MEM_ALL, 0), 1);
    void *large = xkl_serv_malloc(8 << 20, 64);
    EXPECT_NE(large, nullptr);
    xkl_serv_free(large);
}

TEST(Memory, PeakIsSeenAcrossThreads)
{
    const int64_t start = xkl_serv_mem_stat(nullptr);
    xkl_serv_peak_mem_usage(XKL_PEAK_MEM_ENABLE);
    xkl_serv_peak_mem_usage(XKL_PEAK_MEM_RESET);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int round = 0; round < 500; ++round)
                xkl_serv_free(xkl_serv_malloc(1000, 64));
        });
    for (std::thread &each : threads)
        each.join();
    xkl_serv_free(xkl_serv_malloc(100'000, 64));
    EXPECT_EQ(xkl_serv_peak_mem_usage(XKL_PEAK_MEM_QUERY), start + 100'000);
    EXPECT_EQ(xkl_serv_peak_mem_usage(XKL_PEAK_MEM_RESET), start + 100'000);
    EXPECT_EQ(xkl_serv_peak_mem_usage(XKL_PEAK_MEM_DISABLE), start);
    xkl_serv_free(xkl_serv_malloc(100'000, 64));
    EXPECT_EQ(xkl_serv_peak_mem_usage(XKL_PEAK_MEM_QUERY), start);
    EXPECT_EQ(xkl_serv_peak_mem_usage(17), -1);
    EXPECT_EQ(xkl_serv_mem_stat(nullptr), start);
}

std::vector<std::string> lines_of(const std::string &file)
{
    std::ifstream in(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

bool matches(const std::string &line, const char *pattern)
{
    return testing::Matcher<const std::string &>(testing::MatchesRegex(pattern)).Matches(line);
}

TEST(Verbose, SwitchReturnsTheModeBeforeAndTheFlagFollows)
{
    int32_t *flag = xkl_serv_verbose_mode();
    EXPECT_EQ(*flag, 0);
    EXPECT_EQ(xkl_serv_verbose(1), 0);
    EXPECT_EQ(*flag, 1);
    EXPECT_EQ(xkl_serv_verbose(3), -1);
    EXPECT_EQ(xkl_serv_verbose(-1), -1);
    EXPECT_EQ(xkl_serv_verbose(2), 1);
    EXPECT_EQ(xkl_serv_verbose(0), 2);
    EXPECT_EQ(xkl_serv_verbose_mode(), flag);
}

TEST(Verbose, LinesOfManyThreadsStayWholeInTheFile)
{
    const std::string file = testing::TempDir() + "xkl_trace_" + std::to_string(getpid());
    ASSERT_EQ(xkl_serv_verbose_output_file(file.c_str()), 0);
    EXPECT_EQ(xkl_serv_verbose_output_file_mode(), 1);
    EXPECT_NE(xkl_serv_verbose_output_file("/no/such/folder/file"), 0);
    constexpr int threads = 8, rounds = 200;
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back([] {
            for (int round = 0; round < rounds; ++round)
                xkl_serv_print_verbose_info(1e-9 * (1 << (round % 31)), 2, "DAXPY(3,0x1,0x2,1,0x3,1)");
        });
    for (std::thread &each : all)
        each.join();
    xkl_serv_print_verbose_info(-0.0, 0, std::string(449, 'y').c_str());
    ASSERT_EQ(xkl_serv_verbose_output_file(""), 0);
    EXPECT_EQ(xkl_serv_verbose_output_file_mode(), 0);

    const std::vector<std::string> lines = lines_of(file);
    unlink(file.c_str());
    ASSERT_EQ(lines.size(), size_t{threads * rounds + 2});
    EXPECT_TRUE(matches(lines[0], "XKL_VERBOSE libxkl_quorl_ilp64 .*threads [0-9]+"));
    const char *shape =
        R"(XKL_VERBOSE DAXPY\(3,0x1,0x2,1,0x3,1\) [0-9]+\.[0-9]{2}(ns|us|ms|s) NThr:[0-9]+)";
    EXPECT_EQ(std::count_if(lines.begin() + 1, lines.end() - 1,
                            [&](const std::string &line) { return matches(line, shape); }),
              threads * rounds);
    EXPECT_NE(lines.back().find(std::string(449, 'y') + " 0.00ns NThr:"), std::string::npos);
}

TEST(Verbose, StartsAsTheEnvironmentSays)
{
    const std::string file = testing::TempDir() + "xkl_trace_from_environment";
    {
        const variable mode("XKL_VERBOSE", "2"), output("XKL_VERBOSE_OUTPUT_FILE", file);
        in_new_process([] {
            EXPECT_EQ(*xkl_serv_verbose_mode(), 2);
            xkl_serv_print_verbose_info(1.5, 2, "X()");
        });
    }
    const std::vector<std::string> lines = lines_of(file);
    unlink(file.c_str());
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(matches(lines[1], R"(XKL_VERBOSE X\(\) 1\.50s NThr:[0-9]+ Dom:2 Tid:[0-9]+)")) << lines[1];
}

TEST(Verbose, UnknownModeInTheEnvironmentIsOff)
{
    const variable unknown("XKL_VERBOSE", "7");
    in_new_process([] { EXPECT_EQ(*xkl_serv_verbose_mode(), 0); });
}

TEST(Threads, CountsByThreadThenDomainThenForAll)
{
    const int usual = xkl_serv_get_max_threads();
    xkl_serv_set_num_threads(4);
    EXPECT_EQ(xkl_serv_get_max_threads(), 4);
    EXPECT_EQ(xkl_serv_domain_set_num_threads(3, XKL_DOMAIN_FFT), 1);
    EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_FFT), 3);
    EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_BLAS), 4);
    EXPECT_EQ(xkl_serv_domain_set_num_threads(3, 5), 0);
    EXPECT_EQ(xkl_serv_domain_set_num_threads(-1, XKL_DOMAIN_FFT), 0);
    EXPECT_EQ(xkl_serv_set_num_threads_local(2), 0);
    EXPECT_EQ(xkl_serv_get_max_threads(), 2);
    EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_FFT), 2);
    std::thread([] {
        EXPECT_EQ(xkl_serv_get_max_threads(), 4);
        EXPECT_EQ(xkl_serv_set_num_threads_local(7), 0); // ends with the thread
    }).join();
    EXPECT_EQ(xkl_serv_set_num_threads_local(0), 2);
    EXPECT_EQ(xkl_serv_domain_set_num_threads(5, XKL_DOMAIN_ALL), 1);
    EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_FFT), 5);
    xkl_serv_set_num_threads(0);
    EXPECT_EQ(xkl_serv_get_max_threads(), usual);

    EXPECT_EQ(xkl_serv_get_dynamic(), 1);
    xkl_serv_set_dynamic(0);
    EXPECT_EQ(xkl_serv_get_dynamic(), 0);
    xkl_serv_set_dynamic(1);
    xkl_serv_set_num_stripes(3);
    EXPECT_EQ(xkl_serv_get_num_stripes(), 3);
    xkl_serv_set_num_stripes(-3);
    EXPECT_EQ(xkl_serv_get_num_stripes(), 0);
    EXPECT_EQ(xkl_serv_set_mpi(XKL_MPI_OPENMPI, nullptr), 0);
    EXPECT_EQ(xkl_serv_set_mpi(99, nullptr), -1);
    EXPECT_EQ(xkl_serv_set_mpi(XKL_MPI_CUSTOM, ""), -2);
    EXPECT_EQ(xkl_serv_set_mpi(XKL_MPI_DEFAULT, nullptr), 0);
}

TEST(Threads, StartAsTheEnvironmentSays)
{
    const variable omp("OMP_NUM_THREADS", "3,2"), openblas("OPENBLAS_NUM_THREADS", "5");
    in_new_process([] {
        EXPECT_EQ(xkl_serv_get_max_threads(), 3);
        EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_BLAS), 5);
    });
    const variable own("XKL_NUM_THREADS", "6");
    in_new_process([] {
        EXPECT_EQ(xkl_serv_get_max_threads(), 6);
        EXPECT_EQ(xkl_serv_domain_get_max_threads(XKL_DOMAIN_BLAS), 6);
    });
    in_new_process([] {
        EXPECT_EQ(xkl_serv_set_env_mode(XKL_ENV_MODE_IGNORE), XKL_ENV_MODE_READ);
        EXPECT_EQ(xkl_serv_get_max_threads(), 3);
    });
}

TEST(Environment, ValuesAreCutToTheBuffer)
{
    const variable set("XKL_SERVICE_TEST", "12345");
    char buffer[8];
    EXPECT_EQ(xkl_serv_getenv("XKL_SERVICE_TEST", buffer, sizeof buffer), 5);
    EXPECT_STREQ(buffer, "12345");
    EXPECT_EQ(xkl_serv_getenv("XKL_SERVICE_TEST", buffer, 3), 2);
    EXPECT_STREQ(buffer, "12");
    EXPECT_LE(xkl_serv_getenv("XKL_SERVICE_TEST_UNSET", buffer, 3), 0);
    EXPECT_LE(xkl_serv_getenv("XKL_SERVICE_TEST", nullptr, 3), 0);
    EXPECT_LE(xkl_serv_getenv(nullptr, buffer, 3), 0);
}

TEST(Messages, EveryNumberHasATextAndArgumentsFillIt)
{
    for (const int number : {1, 771, 772, 774, 775, 776, 777, 779, 780, 781, 782, 783, 784})
        EXPECT_GT(std::string(xkl_serv_get_msg(number, 0)).size(), 5u) << number;
    EXPECT_STREQ(xkl_serv_get_msg(4711, 0), xkl_serv_get_msg(784, 0));
    testing::internal::CaptureStderr();
    EXPECT_EQ(xkl_serv_print(1, 772, 1, "100%n%s"), 0);
    EXPECT_EQ(xkl_serv_print(1, 772, 0), 0);
    EXPECT_EQ(xkl_serv_print(1, 4711, 0), -1);
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find("has no kernel 100%n%s;"), std::string::npos);
    EXPECT_NE(text.find("has no kernel ?;"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
}

TEST(KernelLibrary, MissingOneIsExplained)
{
    const variable named("XKL_KERNELS", "/no/such/kernels.so");
    EXPECT_EQ(xkl_serv_load_vml(), nullptr);
    EXPECT_NE(std::string(xkl_serv_get_msg(771, 0)).find("/no/such/kernels.so"), std::string::npos);
}

TEST(Version, RecordAndTextsAgree)
{
    xkl_version record;
    xkl_serv_get_version(&record);
    EXPECT_EQ(record.integer_bits, 64);
    char c_text[200], short_text[5], fortran_text[200];
    xkl_serv_get_version_string_c(c_text, sizeof c_text);
    const std::string text = c_text;
    for (const char *part : {record.kernels, record.processor})
        EXPECT_NE(text.find(part), std::string::npos) << part;
    xkl_serv_get_version_string_c(short_text, sizeof short_text);
    EXPECT_EQ(short_text, text.substr(0, 4));
    xkl_serv_get_version_string(fortran_text, sizeof fortran_text);
    EXPECT_EQ(std::string(fortran_text, sizeof fortran_text), text + std::string(200 - text.size(), ' '));
}

TEST(Clock, RunsForwardAndFrequenciesMakeSense)
{
    const double start = xkl_serv_dsecnd();
    EXPECT_GT(start, 0);
    uint64_t first = 0, last = 0;
    xkl_serv_get_cpu_clocks(&first);
    usleep(20'000);
    xkl_serv_get_cpu_clocks(&last);
    const double elapsed = xkl_serv_dsecnd() - start;
    EXPECT_GE(elapsed, 0.02);
    EXPECT_NEAR(static_cast<double>(last - first) * 1e-9 / elapsed / xkl_serv_get_clocks_frequency(), 1,
                0.1);
    EXPECT_NEAR(xkl_serv_second(), xkl_serv_dsecnd(), 0.1);
    EXPECT_GT(xkl_serv_get_cpu_frequency(), 0.05);
    EXPECT_GT(xkl_serv_get_max_cpu_frequency(), 0.05);
}

TEST(Callbacks, PivotKeepsItsSignAndProgressCanStop)
{
    const double diagonal = 1, threshold = 1e-8;
    for (const auto &[before, after, changed] :
         {std::tuple{1e-9, 1e-8, 1}, {-1e-9, -1e-8, 1}, {0.0, 1e-8, 1}, {1e-7, 1e-7, 0}, {-1.0, -1.0, 0}}) {
        double pivot = before;
        EXPECT_EQ(xkl_serv_default_pardiso_pivot(&diagonal, &pivot, &threshold), changed);
        EXPECT_EQ(pivot, after);
    }
    const int64_t thread = 0, step = 3;
    EXPECT_EQ(xkl_serv_default_progress(&thread, &step, "DGETRF", 6), 0);
    const xkl_progress_handler stop = [](const int64_t *, const int64_t *at, const char *, int64_t) {
        return *at >= 3 ? 1 : 0;
    };
    EXPECT_EQ(xkl_serv_set_progress(stop), nullptr);
    EXPECT_EQ(xkl_serv_default_progress(&thread, &step, "DGETRF", 6), 1);
    EXPECT_EQ(xkl_serv_set_progress(nullptr), stop);
}

TEST(Reporter, HandlerMayThrowEachTime)
{
    const int64_t position = 8;
    const auto previous = xkl_serv_set_xerbla([](const char *, const int64_t *at, int64_t) { throw *at; });
    for (int i = 0; i < 2; ++i)
        EXPECT_THROW(xkl_serv_default_xerbla("DGEMM ", &position, 6), int64_t);
    xkl_serv_set_xerbla(previous);
}

} // namespace
