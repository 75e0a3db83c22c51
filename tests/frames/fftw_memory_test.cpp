// A program that defines fftw_malloc and fftw_free itself: records and buffers of plans must come from the
// one and go to the other, whichever family they belong to.
#include "fftw_core.h"

#include "fftw3_xkl.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

namespace {

std::set<void *> held;
int released = 0;

} // namespace

extern "C" void *fftw_malloc(size_t size)
{
    return *held.insert(std::malloc(size)).first;
}

extern "C" void fftw_free(void *block)
{
    EXPECT_EQ(held.erase(block), 1u) << "not one of ours";
    ++released;
    std::free(block);
}

namespace {

TEST(fftw_memory, of_the_program_holds_plans_and_their_buffers)
{
    fftw_core core;
    double x[8];
    float y[8];
    const fftw_plan plan = fftw_plan_r2r_1d(8, x, x, FFTW_REDFT10, FFTW_ESTIMATE);
    const fftwf_plan single = fftwf_plan_r2r_1d(8, y, y, FFTW_REDFT10, FFTW_ESTIMATE);
    ASSERT_NE(plan, nullptr);
    ASSERT_NE(single, nullptr);
    EXPECT_EQ(held.size(), 2u);
    for (void *&buffer : reinterpret_cast<fftw3_xkl_plan *>(plan)->buffers)
        buffer = fftw_malloc(1);
    fftw_destroy_plan(plan);
    fftwf_destroy_plan(single);
    EXPECT_EQ(released, 5);
    core.failing_step = static_cast<int>(core.steps.size()) + 1;
    EXPECT_EQ(fftw_plan_r2r_1d(8, x, x, FFTW_REDFT10, FFTW_ESTIMATE), nullptr);
    EXPECT_EQ(released, 6);
    EXPECT_TRUE(held.empty());
    EXPECT_EQ(core.live, 0);
    EXPECT_EQ(core.blocks(), 0) << "the library's own memory was not asked";
}

} // namespace
