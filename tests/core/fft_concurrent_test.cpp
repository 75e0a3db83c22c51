// Eight threads at once: descriptors of their own, one descriptor for all, and the thread settings.
#include "fft_model.h"
#include "service/service_entries.h"
#include "xkl_service_types.h"

#include <gtest/gtest.h>

#include <atomic>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace fft_model;

namespace {

constexpr int threads = 8;

template <class Body>
void in_threads(const Body &body)
{
    std::vector<std::thread> all;
    for (int index = 0; index < threads; ++index)
        all.emplace_back([&body, index] { body(index); });
    for (std::thread &each : all)
        each.join();
}

std::vector<float> ramp(int64_t count)
{
    std::vector<float> all(static_cast<size_t>(count));
    for (size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<float>(i % 17) - 8;
    return all;
}

bool near(const std::vector<float> &a, const std::vector<float> &b)
{
    for (size_t i = 0; i < a.size(); ++i)
        if (std::abs(a[i] - b[i]) > 1e-3f)
            return false;
    return true;
}

// A descriptor's whole life; true when there and back leads to the start.
bool there_and_back(int32_t domain, const indices &lengths, int64_t batch, int shift)
{
    descriptor one(DFTI_SINGLE, domain, lengths);
    one.set(DFTI_NUMBER_OF_TRANSFORMS, batch);
    one.scale(1, 1 / static_cast<double>(product(lengths)));
    if (domain == DFTI_REAL)
        one.set(DFTI_PACKED_FORMAT, DFTI_PERM_FORMAT);
    if (one.status || one.commit())
        return false;
    DFTI_DESCRIPTOR *copy = nullptr;
    if (xkl_dft_dfti_copy_descriptor_external(&one.handle, &copy))
        return false;
    const std::vector<float> x = ramp(product(lengths) * batch * 2 + shift);
    std::vector<float> y = x;
    const bool computed = one.compute(true, y.data() + shift) == 0 &&
                          copy->backward(copy, y.data() + shift, nullptr, nullptr, nullptr, nullptr) == 0;
    return xkl_dft_dfti_free_descriptor_external(&copy) == 0 && computed && near(x, y);
}

class Concurrent : public testing::Test {
  protected:
    void SetUp() override
    {
        xkl_serv_set_dynamic(0);
        xkl_serv_set_num_threads(4);
    }
    void TearDown() override
    {
        xkl_serv_domain_set_num_threads(0, XKL_DOMAIN_ALL);
        xkl_serv_set_dynamic(1);
    }
};

TEST_F(Concurrent, DescriptorsOfTheirOwn)
{
    std::atomic<int> wrong{0};
    in_threads([&](int index) {
        for (int round = 0; round < 60; ++round) {
            const int64_t n = 2 + (index + round) % 90;
            const int32_t domain = round % 2 ? DFTI_REAL : DFTI_COMPLEX;
            wrong += !there_and_back(domain, {n}, 1 + round % 40, round % 3);
            wrong += !there_and_back(domain, {n, 12}, 1, 0);
        }
        wrong += !there_and_back(DFTI_COMPLEX, {1 << 16}, 1, 0); // large enough to be shared among threads
        wrong += !there_and_back(DFTI_COMPLEX, {256}, 300, 1);
    });
    EXPECT_EQ(wrong, 0);
}

// Backward, and the plan for arrays off alignment, are made by whoever comes first.
void expect_one_for_all(int32_t domain, int32_t format, const indices &lengths, int64_t batch)
{
    descriptor shared(DFTI_SINGLE, domain, lengths);
    shared.set(DFTI_NUMBER_OF_TRANSFORMS, batch);
    shared.set(DFTI_PACKED_FORMAT, format);
    shared.scale(1, 1 / static_cast<double>(product(lengths)));
    ASSERT_EQ(shared.commit(), 0);
    std::atomic<int> wrong{0};
    in_threads([&](int index) {
        for (int round = 0; round < 20; ++round) {
            const int shift = (index + round) % 4;
            const std::vector<float> x = ramp(product(lengths) * batch * 2 + 8);
            std::vector<float> y = x;
            wrong +=
                shared.compute(true, y.data() + shift) != 0 || shared.compute(false, y.data() + shift) != 0;
            if (domain == DFTI_COMPLEX || format == DFTI_PACK_FORMAT)
                wrong += !near(x, y);
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(Concurrent, OneDescriptorForAll)
{
    expect_one_for_all(DFTI_COMPLEX, DFTI_CCE_FORMAT, {60}, 1);
    expect_one_for_all(DFTI_COMPLEX, DFTI_CCE_FORMAT, {60, 7}, 50);
    expect_one_for_all(DFTI_COMPLEX, DFTI_CCE_FORMAT, {300, 300}, 1);
    expect_one_for_all(DFTI_REAL, DFTI_PACK_FORMAT, {60, 9}, 30);
    expect_one_for_all(DFTI_REAL, DFTI_CCE_FORMAT, {64, 9, 2}, 1);
}

TEST_F(Concurrent, ResultsDoNotDependOnTheNumberOfThreads)
{
    const indices lengths{512, 256};
    const auto computed_with = [&](int64_t limit) {
        descriptor one(DFTI_SINGLE, DFTI_COMPLEX, lengths);
        one.set(DFTI_THREAD_LIMIT, limit);
        one.scale(0.5, 1);
        EXPECT_EQ(one.commit(), 0);
        std::vector<float> x = ramp(product(lengths) * 2);
        EXPECT_EQ(one.compute(true, x.data()), 0);
        return x;
    };
    const std::vector<float> alone = computed_with(1);
    for (const int64_t limit : {0, 2, 3, 100}) {
        const std::vector<float> together = computed_with(limit);
        for (size_t i = 0; i < alone.size(); ++i)
            ASSERT_NEAR(alone[i], together[i], 0.05) << limit;
    }
}

TEST_F(Concurrent, ChildOfAForkTransforms)
{
    ASSERT_TRUE(there_and_back(DFTI_COMPLEX, {1 << 16}, 1, 0));
    std::atomic<bool> stop{false};
    std::thread planning([&] {
        for (int64_t n = 2; !stop; n = n % 500 + 1)
            there_and_back(DFTI_COMPLEX, {n}, 1, 0);
    });
    for (int round = 0; round < 5; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(30);
            _exit(there_and_back(DFTI_COMPLEX, {1 << 16}, 1, 0) &&
                          there_and_back(DFTI_REAL, {501 + round}, 3, 0)
                      ? 0
                      : 1);
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    stop = true;
    planning.join();
}

} // namespace
