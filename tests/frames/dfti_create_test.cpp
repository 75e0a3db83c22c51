// Creation of descriptors over the recording core: which creator is called with what, and what is refused in
// which order.
#include "dfti_fake.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

namespace {

/// The lengths that a creator was given, in the core's order, read while they are alive.
struct creation {
    std::string entry;
    words lengths;
    int64_t reserved = -1;
};

class dfti_create : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        recorded.on_call = [this](const core_call &call) {
            if (call.entry.starts_with("xkl_dft_dfti_create"))
                note(call);
        };
    }
    void TearDown() override { recorded.on_call = nullptr; }

    void note(const core_call &call)
    {
        auto **place = reinterpret_cast<DFTI_DESCRIPTOR_HANDLE *>(call.arguments[0]);
        EXPECT_EQ(*place, nullptr) << "the handle is cleared first";
        made.entry = call.entry;
        if (call.entry.ends_with("1d")) {
            made.lengths = {call.arguments[1]};
            made.reserved = call.arguments[2];
        } else {
            const auto *lengths = reinterpret_cast<const int64_t *>(call.arguments[2]);
            made.lengths.assign(lengths, lengths + static_cast<int32_t>(call.arguments[1]));
            made.reserved = call.arguments[3];
        }
        if (recorded.integer_result == 0)
            *place = descriptor.handle();
    }

    /// Nothing but the creator and, behind it, the blessing of what it made.
    void expect_created(long status, const std::string &entry, const words &lengths)
    {
        EXPECT_EQ(status, 0);
        EXPECT_EQ(made.entry, "xkl_dft_dfti_create_" + entry);
        EXPECT_EQ(made.lengths, lengths);
        EXPECT_EQ(made.reserved, 0);
        ASSERT_EQ(recorded.order,
                  (std::vector<std::string>{"xkl_dft_dfti_create_" + entry, "xkl_dft_bless_node_thr"}));
        EXPECT_EQ(recorded.calls[1].arguments[0], reinterpret_cast<int64_t>(descriptor.handle()));
        EXPECT_EQ(handle, descriptor.handle());
        recorded.calls.clear();
        recorded.order.clear();
    }

    void expect_refused(long status, long expected, bool clears = true)
    {
        EXPECT_EQ(status, expected);
        EXPECT_TRUE(recorded.calls.empty());
        EXPECT_EQ(handle, clears ? nullptr : marker);
        handle = marker;
    }

    fake_descriptor descriptor;
    DFTI_DESCRIPTOR_HANDLE const marker = reinterpret_cast<DFTI_DESCRIPTOR_HANDLE>(0x10);
    DFTI_DESCRIPTOR_HANDLE handle = marker;
    creation made;
};

using any_creator = long (*)(DFTI_DESCRIPTOR_HANDLE *, int domain, int64_t, ...);

TEST_F(dfti_create, precision_and_domain_choose_the_creator)
{
    const int64_t lengths[] = {2, 3, 5};
    const struct {
        int precision, domain;
        const char *entry;
    } cases[] = {{35, 32, "scmd"}, {35, 33, "srmd"}, {36, 32, "dcmd"}, {36, 33, "drmd"}};
    for (const auto &each : cases) {
        SCOPED_TRACE(each.entry);
        expect_created(DftiCreateDescriptor(&handle, each.precision, each.domain, 3, lengths), each.entry,
                       {5, 3, 2});
        expect_created(DftiCreateDescriptor(&handle, each.precision, each.domain, 1, int64_t{1} << 40),
                       each.entry, {int64_t{1} << 40});
    }
    expect_created(DftiCreateDescriptor_s_1d(&handle, 32, int64_t{7}), "sc1d", {7});
    expect_created(DftiCreateDescriptor_s_1d(&handle, 33, int64_t{7}), "sr1d", {7});
    expect_created(DftiCreateDescriptor_d_1d(&handle, 32, int64_t{1} << 33), "dc1d", {int64_t{1} << 33});
    expect_created(DftiCreateDescriptor_d_1d(&handle, 33, int64_t{7}), "dr1d", {7});
    expect_created(DftiCreateDescriptor_s_md(&handle, 32, 3, lengths), "scmd", {5, 3, 2});
    expect_created(DftiCreateDescriptor_s_md(&handle, 33, 2, lengths), "srmd", {3, 2});
    expect_created(DftiCreateDescriptor_d_md(&handle, 32, 3, lengths), "dcmd", {5, 3, 2});
    expect_created(DftiCreateDescriptor_d_md(&handle, 33, 1, lengths), "drmd", {2}); // an address even then
}

TEST_F(dfti_create, lengths_are_reversed_in_all_dimensions)
{
    int64_t lengths[] = {2, 3, 4, 5, 6, 7, 8};
    for (int64_t dimension = 2; dimension <= 7; ++dimension) {
        const words expected(std::rbegin(lengths) + (7 - dimension), std::rend(lengths));
        expect_created(DftiCreateDescriptor(&handle, 36, 32, dimension, lengths), "dcmd", expected);
    }
    EXPECT_EQ(lengths[0], 2) << "the caller's own stay as they are";
}

TEST_F(dfti_create, no_place_for_the_handle)
{
    EXPECT_EQ(DftiCreateDescriptor(nullptr, 36, 32, 1, int64_t{8}), 3);
    EXPECT_EQ(DftiCreateDescriptor(nullptr, 0, 0, 0, int64_t{0}), 3); // before all else
    EXPECT_EQ(DftiCreateDescriptor_s_1d(nullptr, 32, int64_t{8}), 3);
    EXPECT_EQ(DftiCreateDescriptor_d_1d(nullptr, 32, int64_t{8}), 3);
    const int64_t length = 8;
    EXPECT_EQ(DftiCreateDescriptor_s_md(nullptr, 32, 1, &length), 3);
    EXPECT_EQ(DftiCreateDescriptor_d_md(nullptr, 32, 1, &length), 3);
    EXPECT_TRUE(recorded.calls.empty());
}

TEST_F(dfti_create, refusals_clear_the_handle_and_call_nothing)
{
    const int64_t lengths[] = {0, 5, 1, 1, 1, 1, 1, 1};
    const int64_t *none = nullptr;
    for (const int64_t dimension : {int64_t{0}, int64_t{8}, int64_t{-1}, (int64_t{1} << 32) + 1}) {
        expect_refused(DftiCreateDescriptor(&handle, 36, 32, dimension, none),
                       2); // before the null address
        expect_refused(DftiCreateDescriptor_s_md(&handle, 32, dimension, none), 2);
        expect_refused(DftiCreateDescriptor_d_md(&handle, 32, dimension, none), 2);
    }
    expect_refused(DftiCreateDescriptor(&handle, 36, 32, 2, none), 3);
    expect_refused(DftiCreateDescriptor(&handle, 34, 34, 2, none), 3); // before the precision
    expect_refused(DftiCreateDescriptor_s_md(&handle, 32, 1, none), 3);
    expect_refused(DftiCreateDescriptor_d_md(&handle, 34, 2, none), 3);
    expect_refused(DftiCreateDescriptor(&handle, 36, 32, 2, lengths), 2);
    expect_refused(DftiCreateDescriptor_d_md(&handle, 32, 1, lengths), 2);
    expect_refused(DftiCreateDescriptor_s_md(&handle, 32, 7, lengths), 2);
    for (const int64_t length : {int64_t{0}, int64_t{-4}}) {
        expect_refused(DftiCreateDescriptor(&handle, 36, 32, 1, length), 2);
        expect_refused(DftiCreateDescriptor_s_1d(&handle, 32, length), 2);
        expect_refused(DftiCreateDescriptor_d_1d(&handle, 33, length), 2);
    }
    for (const int domain : {34, 31, 0, -1}) {
        expect_refused(DftiCreateDescriptor(&handle, 35, domain, 1, int64_t{8}), 2);
        expect_refused(DftiCreateDescriptor(&handle, 36, domain, 2, lengths + 1), 2);
        expect_refused(DftiCreateDescriptor_s_1d(&handle, domain, int64_t{8}), 2);
        expect_refused(DftiCreateDescriptor_d_1d(&handle, domain, int64_t{8}), 2);
        expect_refused(DftiCreateDescriptor_s_md(&handle, domain, 2, lengths + 1), 2);
        expect_refused(DftiCreateDescriptor_d_md(&handle, domain, 2, lengths + 1), 2);
    }
    for (const int precision : {34, 37, 0})
        expect_refused(DftiCreateDescriptor(&handle, precision, 32, 1, int64_t{8}), 2);
}

TEST_F(dfti_create, negative_lengths_of_several_dimensions_are_the_cores_business)
{
    const int64_t lengths[] = {4, -5};
    expect_created(DftiCreateDescriptor(&handle, 36, 32, 2, lengths), "dcmd", {-5, 4});
    expect_created(DftiCreateDescriptor_s_md(&handle, 33, 2, lengths), "srmd", {-5, 4});
    expect_created(DftiCreateDescriptor_d_md(&handle, 32, 1, lengths + 1), "dcmd", {-5});
}

TEST_F(dfti_create, a_creators_refusal_is_handed_back)
{
    const int64_t lengths[] = {4, 5};
    recorded.integer_result = -9;
    EXPECT_EQ(DftiCreateDescriptor(&handle, 36, 32, 2, lengths), -9);
    EXPECT_EQ(DftiCreateDescriptor_s_1d(&handle, 33, int64_t{4}), -9);
    EXPECT_EQ(DftiCreateDescriptor_d_md(&handle, 33, 2, lengths), -9);
    EXPECT_EQ(recorded.calls.size(), 3u) << "nothing is blessed";
    EXPECT_EQ(handle, nullptr);
}

} // namespace
