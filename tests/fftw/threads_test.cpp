// Eight threads that plan, execute and release at once, each with plans of its own and all with one plan.
#include "direct_sums.h"
#include "fftw_family.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {

constexpr int threads = 8, rounds = 60;

void in_threads(const std::function<void(int)> &work)
{
    std::vector<std::thread> all;
    for (int i = 0; i < threads; ++i)
        all.emplace_back(work, i);
    for (std::thread &each : all)
        each.join();
}

/// A wave of the given frequency in n complex elements.
std::vector<std::complex<double>> wave(int n, int frequency)
{
    std::vector<std::complex<double>> x;
    for (int i = 0; i < n; ++i)
        x.emplace_back(direct::turned(static_cast<long long>(i) * frequency, n));
    return x;
}

fftw_complex *pairs(std::vector<std::complex<double>> &x)
{
    return reinterpret_cast<fftw_complex *>(x.data());
}

bool has_peak_at(const std::vector<std::complex<double>> &x, int frequency)
{
    for (int i = 0; i < static_cast<int>(x.size()); ++i)
        if (std::abs(x[i] - (i == frequency ? static_cast<double>(x.size()) : 0.0)) > 1e-9)
            return false;
    return true;
}

TEST(fftw_threads, make_use_and_release_plans_at_once)
{
    std::atomic<int> wrong = 0;
    in_threads([&](int thread) {
        for (int round = 0; round < rounds; ++round) {
            const int n = 16 + (thread + round) % 13, frequency = round % n;
            auto x = wave(n, frequency);
            const fftw_plan plan = fftw_plan_dft_1d(n, pairs(x), pairs(x), FFTW_FORWARD, FFTW_ESTIMATE);
            float y[] = {1, 2, 3, 4, 5, 6};
            const fftwf_plan cosine = fftwf_plan_r2r_2d(2, 3, y, y, FFTW_REDFT10, FFTW_DHT, FFTW_ESTIMATE);
            fftw_execute(plan);
            fftwf_execute(cosine);
            wrong += !has_peak_at(x, frequency) || y[0] != 42;
            fftw_destroy_plan(plan);
            fftwf_destroy_plan(cosine);
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(fftw_threads, share_a_plan)
{
    constexpr int n = 96;
    auto first = wave(n, 0);
    const fftw_plan plan = fftw_plan_dft_1d(n, pairs(first), pairs(first), FFTW_FORWARD, FFTW_ESTIMATE);
    std::atomic<int> wrong = 0;
    in_threads([&](int thread) {
        for (int round = 0; round < rounds; ++round) {
            auto x = wave(n, (7 * thread + round) % n);
            fftw_execute_dft(plan, pairs(x), pairs(x));
            wrong += !has_peak_at(x, (7 * thread + round) % n);
        }
    });
    fftw_destroy_plan(plan);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(first, wave(n, 0)) << "the plan's own array is left alone";
}

} // namespace
