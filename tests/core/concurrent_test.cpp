// Many threads in the library at once, with errors and tracing switched on and off under them.
#include "xkl.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

std::atomic<int> reports{0};

void count_report(const char *, const int64_t *position, int64_t)
{
    if (*position == 8)
        ++reports;
}

constexpr int threads = 8;
constexpr int rounds = 200;

/// Products with known results, and a bad call in every round.
void work(std::atomic<int> &wrong)
{
    const int64_t n = 16, too_small = 4;
    std::vector<double> a(256, 1.0), b(256, 2.0), c(256);
    const double one = 1, zero = 0;
    for (int round = 0; round < rounds; ++round) {
        cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, n, n, n, 1.0, a.data(), n, b.data(), n, 0.0,
                    c.data(), n);
        for (const double element : c)
            wrong += element != 32;
        c.assign(256, -1);
        dgemm_("N", "N", &n, &n, &n, &one, a.data(), &too_small, b.data(), &n, &zero, c.data(), &n);
        for (const double element : c)
            wrong += element != -1; // a refused call writes nothing
    }
}

TEST(concurrent, calls_errors_and_tracing)
{
    const std::string trace = testing::TempDir() + "xkl_trace_" + std::to_string(getpid());
    ASSERT_EQ(XKL_Verbose_Output_File(trace.c_str()), 0);
    const auto previous = xkl_set_xerbla(count_report);
    std::atomic<int> wrong{0};
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back(work, std::ref(wrong));
    for (int i = 0; i < 50; ++i)
        XKL_Verbose(i % 2);
    for (std::thread &each : running)
        each.join();
    XKL_Verbose(1);
    std::thread(work, std::ref(wrong)).join();
    XKL_Verbose(0);
    xkl_set_xerbla(previous);
    XKL_Verbose_Output_File(nullptr);

    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(reports, (threads + 1) * rounds);
    std::ifstream file(trace);
    int good = 0, other = 0;
    for (std::string line; std::getline(file, line);)
        ++(line.find("DGEMM(") != std::string::npos && line.find("NThr:") != std::string::npos ? good
                                                                                               : other);
    EXPECT_GE(good, 2 * rounds)
        << "the last thread ran with tracing on: a line for good and refused calls alike";
    EXPECT_LE(other, 2) << "only the header lines hold no call: lines never mix";
    unlink(trace.c_str());
}

} // namespace
