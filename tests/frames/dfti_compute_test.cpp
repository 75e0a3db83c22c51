// Computations over the recording core: what is refused before the descriptor's routine is called, what it is
// called with, and the clock around it.
#include "dfti_fake.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

namespace {

using listed = long (*)(DFTI_DESCRIPTOR_HANDLE, void *, ...);
using in_place = long (*)(DFTI_DESCRIPTOR_HANDLE, void *);
using out_of_place = long (*)(DFTI_DESCRIPTOR_HANDLE, void *, void *);

struct way {
    const char *name;
    listed compute;
    in_place compute_in_place;
    out_of_place compute_out_of_place;
};

const way ways[] = {
    {"forward", DftiComputeForward, DftiComputeInPlaceForward, DftiComputeOutOfPlaceForward},
    {"backward", DftiComputeBackward, DftiComputeInPlaceBackward, DftiComputeOutOfPlaceBackward}};

class dfti_compute : public testing::TestWithParam<way> {
  protected:
    void SetUp() override
    {
        reset();
        operation_calls.clear();
        make_committed(descriptor);
    }

    static int64_t as_word(const void *address) { return reinterpret_cast<int64_t>(address); }

    /// The routine was called once, with these data.
    void expect_called(const words &data)
    {
        words expected = data;
        expected.resize(5, 0);
        ASSERT_EQ(operation_calls.size(), 1u);
        EXPECT_EQ(operation_calls[0], (operation_call{GetParam().name, descriptor.handle(), expected}));
        operation_calls.clear();
    }

    void expect_refused(long status, long expected)
    {
        EXPECT_EQ(status, expected);
        EXPECT_TRUE(operation_calls.empty());
    }

    const way &to = GetParam();
    fake_descriptor descriptor;
    double x[8], y[8], z[8], w[8];
};

TEST_P(dfti_compute, further_data_are_read_as_the_descriptor_needs_them)
{
    void *const none = nullptr;
    const words all = {as_word(x), as_word(y), as_word(z), as_word(w)};
    for (int32_t count = 0; count <= 5; ++count) {
        SCOPED_TRACE(count);
        descriptor.head.array_count = count;
        EXPECT_EQ(to.compute(descriptor.handle(), x, y, z, w), 0);
        expect_called(words(all.begin(), all.begin() + std::clamp(count, 1, 4)));
        if (count >= 2)
            expect_refused(to.compute(descriptor.handle(), x, none, z, w), 3);
        if (count > 2)
            expect_refused(to.compute(descriptor.handle(), x, y, none, w), 3);
        if (count >= 4)
            expect_refused(to.compute(descriptor.handle(), x, y, z, none), 3);
    }
}

TEST_P(dfti_compute, handle_then_routine_then_data)
{
    fake_descriptor fresh;
    expect_refused(to.compute(nullptr, nullptr), 5);
    expect_refused(to.compute_in_place(nullptr, nullptr), 5);
    expect_refused(to.compute_out_of_place(nullptr, nullptr, nullptr), 5);
    expect_refused(to.compute(fresh.handle(), nullptr), 2);
    expect_refused(to.compute_in_place(fresh.handle(), nullptr), 2);
    expect_refused(to.compute_out_of_place(fresh.handle(), nullptr, nullptr), 2);
    descriptor.head.array_count = 4;
    expect_refused(to.compute(descriptor.handle(), nullptr, y, z, w), 3);
    expect_refused(to.compute_in_place(descriptor.handle(), nullptr), 3);
    expect_refused(to.compute_out_of_place(descriptor.handle(), nullptr, y), 3);

    // The other direction's routine is no help.
    (std::string(to.name) == "forward" ? descriptor.head.forward : descriptor.head.backward) = nullptr;
    expect_refused(to.compute(descriptor.handle(), x, y, z, w), 2);
    expect_refused(to.compute_in_place(descriptor.handle(), x), 2);
}

TEST_P(dfti_compute, the_tag_is_not_looked_at)
{
    descriptor.head.tag = 0;
    EXPECT_EQ(to.compute(descriptor.handle(), x), 0);
    expect_called({as_word(x)});
}

TEST_P(dfti_compute, fixed_forms_pass_what_they_are_given)
{
    descriptor.head.array_count = 4; // they do not ask
    EXPECT_EQ(to.compute_in_place(descriptor.handle(), x), 0);
    expect_called({as_word(x)});
    EXPECT_EQ(to.compute_out_of_place(descriptor.handle(), x, y), 0);
    expect_called({as_word(x), as_word(y)});
    EXPECT_EQ(to.compute_out_of_place(descriptor.handle(), x, nullptr), 0);
    expect_called({as_word(x)});
}

TEST_P(dfti_compute, a_quiet_call_reads_no_clock)
{
    descriptor.compute_result = -8;
    EXPECT_EQ(to.compute(descriptor.handle(), x), -8);
    EXPECT_EQ(recorded.order, (std::vector<std::string>{"verbose_mode", to.name}));
}

TEST_P(dfti_compute, a_traced_call_is_timed_and_keeps_its_status)
{
    descriptor.head.array_count = 2;
    descriptor.compute_result = -8;
    const auto traced = [&](auto &&call) {
        recorded.order.clear();
        recorded.lines.clear();
        recorded.verbose = 1;
        recorded.clock = {10.0, 12.5};
        EXPECT_EQ(call(), -8);
        EXPECT_EQ(recorded.order,
                  (std::vector<std::string>{"verbose_mode", "clock", to.name, "clock", "line"}));
        ASSERT_EQ(recorded.lines.size(), 1u);
        EXPECT_EQ(recorded.lines[0].seconds, 2.5);
        EXPECT_EQ(recorded.lines[0].domain, 0);
    };
    traced([&] { return to.compute(descriptor.handle(), x, y); });
    traced([&] { return to.compute_in_place(descriptor.handle(), x); });
    traced([&] { return to.compute_out_of_place(descriptor.handle(), x, y); });

    recorded.lines.clear();
    recorded.clock = {0.0, 12.5};
    to.compute(descriptor.handle(), x, y);
    EXPECT_EQ(recorded_bits(recorded.lines.at(0).seconds), recorded_bits(-0.0)) << "no clock";
    recorded.lines.clear();
    to.compute(descriptor.handle(), nullptr, y);
    EXPECT_TRUE(recorded.lines.empty()) << "a refused call leaves no line";
}

INSTANTIATE_TEST_SUITE_P(both, dfti_compute, testing::ValuesIn(ways),
                         [](const auto &info) { return std::string(info.param.name); });

} // namespace
