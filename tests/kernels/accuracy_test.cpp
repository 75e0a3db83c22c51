// Every function keeps its promise of accuracy, in all modes and instruction sets.
#include "accuracy.h"
#include "kernel_rows.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const std::vector<promise> &promises()
{
    static const std::vector<promise> all = read_promises(ACCURACY_TABLE);
    return all;
}

class Accuracy : public testing::TestWithParam<promise> {};

TEST_P(Accuracy, IsAsPromised)
{
    const promise &p = GetParam();
    const effort wanted = wanted_effort();
    const std::optional<measurement> measured = measure(p, wanted);
    if (!measured)
        GTEST_SKIP() << p.routine() << " is a stand-in";
    for (int mode = 0; mode < 3; ++mode)
        EXPECT_LE(measured->modes[mode].error, p.ulps[mode])
            << describe(p, mode, measured->modes[mode]) << " (seed " << wanted.seed << ")";
}

INSTANTIATE_TEST_SUITE_P(Functions, Accuracy, testing::ValuesIn(promises()),
                         [](const auto &each) { return each.param.kernel(); });

TEST(Promises, EveryKernelHasOne)
{
    std::set<std::string> promised;
    for (const promise &p : promises())
        EXPECT_TRUE(promised.insert(p.kernel()).second) << p.kernel() << " is promised twice";
    for (int i = 0; i < kernel_row_count; ++i)
        if (!kernel_rows[i].strided && kernel_rows[i].kind != kernel_class::pack) {
            EXPECT_TRUE(promised.contains(kernel_rows[i].name)) << kernel_rows[i].name;
        }
}

} // namespace
