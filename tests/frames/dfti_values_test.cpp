// The parameters of a descriptor over the recording core, both ways: who is told or asked, in which type, and
// in which order of dimensions.
#include "dfti_fake.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <span>

namespace {

constexpr int64_t wide = (int64_t{1} << 32) + 5; // more than 32 bits, so that a wrong width shows

const std::set<int> int_parameters = {0, 3, 8, 9, 10, 11, 17, 18, 19, 21, 22, 28};
const std::set<int> int64_parameters = {7, 14, 15, 26, 27};
const std::set<int> refused_settings = {-1, 1, 2, 6, 16, 23, 24, 25, 29, 30, 1000};
const std::set<int> refused_questions = {-1, 6, 16, 24, 25, 29, 30, 1000};

class dfti_values : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        operation_calls.clear();
    }
    void TearDown() override { recorded.on_call = nullptr; }

    template <class T>
    T got(int parameter)
    {
        struct {
            T value;
            unsigned char behind[8];
        } place;
        std::memset(&place, 0x5a, sizeof place);
        EXPECT_EQ(DftiGetValue(descriptor.handle(), parameter, &place.value), 0) << parameter;
        EXPECT_TRUE(std::ranges::all_of(place.behind, [](unsigned char each) { return each == 0x5a; }))
            << "parameter " << parameter << " is written too wide";
        return place.value;
    }

    fake_descriptor descriptor{3};
};

TEST_F(dfti_values, integers_are_widened_and_go_to_the_core_by_address)
{
    struct {
        DFTI_DESCRIPTOR_HANDLE handle;
        int32_t parameter;
        int64_t value;
    } told{};
    recorded.on_call = [&](const core_call &call) {
        told = {*reinterpret_cast<DFTI_DESCRIPTOR_HANDLE *>(call.arguments[0]),
                *reinterpret_cast<int32_t *>(call.arguments[1]),
                *reinterpret_cast<int64_t *>(call.arguments[2])};
    };
    recorded.integer_result = -77;
    const auto expect_told = [&](long status, int parameter, int64_t value) {
        EXPECT_EQ(status, -77);
        ASSERT_EQ(recorded.calls.size(), 1u) << parameter;
        EXPECT_EQ(recorded.calls[0].entry, "xkl_dft_dfti_set_value_intval");
        EXPECT_EQ(told.handle, descriptor.handle());
        EXPECT_EQ(told.parameter, parameter);
        EXPECT_EQ(told.value, value) << parameter;
        recorded.calls.clear();
    };
    for (const int parameter : int_parameters) {
        expect_told(DftiSetValue(descriptor.handle(), parameter, 44), parameter, 44);
        expect_told(DftiSetValue(descriptor.handle(), parameter, -3), parameter, -3);
        // What lies above the low half of such an argument does not count.
        expect_told(DftiSetValue(descriptor.handle(), parameter, wide), parameter, 5);
    }
    for (const int parameter : int64_parameters)
        expect_told(DftiSetValue(descriptor.handle(), parameter, wide), parameter, wide);
    EXPECT_TRUE(operation_calls.empty());
}

TEST_F(dfti_values, scales_go_to_the_descriptor_as_doubles)
{
    for (const int parameter : {4, 5}) {
        descriptor.result = parameter;
        EXPECT_EQ(DftiSetValue(descriptor.handle(), parameter, 0.1), parameter);
        EXPECT_EQ(operation_calls.back(),
                  (operation_call{"set_scale", descriptor.handle(), {parameter, recorded_bits(0.1)}}));
    }
}

TEST_F(dfti_values, strides_are_reversed_behind_their_offset)
{
    const words given = {9, 1, 2, 3, 4, 5, 6, 7};
    for (int32_t rank = 1; rank <= 7; ++rank) {
        fake_descriptor of(rank);
        words expected(given.begin(), given.begin() + rank + 1);
        std::reverse(expected.begin() + 1, expected.end());
        EXPECT_EQ(DftiSetValue(of.handle(), 12, given.data()), 0);
        EXPECT_EQ(operation_calls.back(), (operation_call{"set_input_strides", of.handle(), expected}));
        EXPECT_EQ(DftiSetValue(of.handle(), 13, given.data()), 0);
        EXPECT_EQ(operation_calls.back(), (operation_call{"set_output_strides", of.handle(), expected}));
    }
}

TEST_F(dfti_values, lengths_and_strides_come_back_in_the_order_of_c)
{
    for (int32_t rank = 1; rank <= 7; ++rank) {
        fake_descriptor of(rank);
        words lengths, strides = {9};
        for (int64_t i = 1; i <= rank; ++i) {
            of.lengths[static_cast<std::size_t>(i - 1)] = 10 * i;
            of.input_strides[static_cast<std::size_t>(i)] = i;
            of.output_strides[static_cast<std::size_t>(i)] = -i;
            lengths.insert(lengths.begin(), 10 * i);
            strides.insert(strides.begin() + 1, i);
        }
        of.input_strides[0] = of.output_strides[0] = 9;
        words place(static_cast<std::size_t>(rank) + 2, 555);
        EXPECT_EQ(DftiGetValue(of.handle(), 2, place.data()), 0);
        EXPECT_TRUE(std::ranges::equal(lengths, std::span(place).first(lengths.size())));
        EXPECT_EQ(place[lengths.size()], 555) << "one entry a dimension";
        EXPECT_EQ(DftiGetValue(of.handle(), 12, place.data()), 0);
        EXPECT_TRUE(std::ranges::equal(strides, std::span(place).first(strides.size())));
        EXPECT_EQ(place.back(), 555);
        EXPECT_EQ(DftiGetValue(of.handle(), 13, place.data()), 0);
        EXPECT_EQ(place[0], 9);
        EXPECT_EQ(place[1], -rank);
        EXPECT_EQ(place[static_cast<std::size_t>(rank)], -1);
    }
}

TEST_F(dfti_values, integers_of_the_descriptor_have_their_widths)
{
    DFTI_DESCRIPTOR &head = descriptor.head;
    const std::pair<int, int32_t *> fields[] = {
        {0, &head.forward_domain}, {3, &head.precision},      {8, &head.complex_storage},
        {9, &head.real_storage},   {11, &head.placement},     {10, &head.conjugate_even_storage},
        {17, &head.workspace},     {18, &head.ordering},      {19, &head.transpose},
        {21, &head.packed_format}, {22, &head.commit_status},
    };
    int32_t value = 1000;
    for (const auto &[parameter, field] : fields) {
        *field = ++value;
        EXPECT_EQ(got<int32_t>(parameter), value) << parameter;
    }
    head.user_threads = -6;
    EXPECT_EQ(got<int64_t>(26), -6);
    head.flags = ~0x10u;
    EXPECT_EQ(got<int32_t>(28), 52);
    head.flags = 0x10;
    EXPECT_EQ(got<int32_t>(28), 51);

    descriptor.dimension = wide, descriptor.count = wide + 1, descriptor.thread_limit = wide + 2;
    descriptor.input_distance = wide + 3, descriptor.output_distance = wide + 4;
    EXPECT_EQ(got<int64_t>(1), wide);
    EXPECT_EQ(got<int64_t>(7), wide + 1);
    EXPECT_EQ(got<int64_t>(27), wide + 2);
    EXPECT_EQ(got<int64_t>(14), wide + 3);
    EXPECT_EQ(got<int64_t>(15), wide + 4);
}

TEST_F(dfti_values, scales_come_back_in_the_descriptors_precision)
{
    descriptor.head.forward_scale = 0.1;
    descriptor.head.backward_scale = 0.3;
    EXPECT_EQ(got<double>(4), 0.1);
    EXPECT_EQ(got<double>(5), 0.3);
    descriptor.head.precision = DFTI_SINGLE;
    EXPECT_EQ(got<float>(4), 0.1f);
    EXPECT_EQ(got<float>(5), 0.3f);
}

TEST_F(dfti_values, a_long_name_is_set_whole_and_comes_back_short)
{
    EXPECT_EQ(DftiSetValue(descriptor.handle(), 20, "twenty letters of it"), 0);
    EXPECT_EQ(descriptor.name, "twenty letters of it");
    char text[12] = "-----------";
    EXPECT_EQ(DftiGetValue(descriptor.handle(), 20, text), 0);
    EXPECT_STREQ(text, "twenty le");
    EXPECT_EQ(text[10], '-');
    EXPECT_EQ(operation_calls.back(), (operation_call{"get_name", descriptor.handle(), {10}}));

    const std::string longer(5000, 'n');
    EXPECT_EQ(DftiSetValue(descriptor.handle(), 20, longer.c_str()), 0);
    EXPECT_EQ(descriptor.name.size(), 4096u);
    EXPECT_EQ(DftiSetValue(descriptor.handle(), 20, ""), 0);
    EXPECT_EQ(DftiGetValue(descriptor.handle(), 20, text), 0);
    EXPECT_STREQ(text, "");
}

TEST_F(dfti_values, the_version_needs_no_descriptor)
{
    char text[200];
    std::memset(text, 'x', sizeof text);
    recorded.on_call = [](const core_call &call) {
        auto *place = reinterpret_cast<char *>(call.arguments[0]);
        EXPECT_TRUE(std::all_of(place, place + 198, [](char each) { return each == 0; }));
        std::memset(place, 'v', 198); // a core that forgets the end
    };
    EXPECT_EQ(DftiGetValue(nullptr, 23, text), 0);
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(recorded.calls[0].entry, "xkl_dft_dfti_get_version_string");
    EXPECT_EQ(static_cast<int32_t>(recorded.calls[0].arguments[1]), 198);
    EXPECT_EQ(std::string(text), std::string(197, 'v'));
    EXPECT_EQ(text[198], 'x');
    descriptor.head.tag = 0;
    EXPECT_EQ(DftiGetValue(descriptor.handle(), 23, text), 0);
    EXPECT_EQ(DftiGetValue(nullptr, 23, nullptr), 3);
}

TEST_F(dfti_values, other_parameters_and_nulls_are_refused)
{
    const void *const none = nullptr;
    int64_t place[10] = {};
    for (const int parameter : refused_settings)
        EXPECT_EQ(DftiSetValue(descriptor.handle(), parameter, place), 3) << parameter;
    for (const int parameter : {12, 13, 20})
        EXPECT_EQ(DftiSetValue(descriptor.handle(), parameter, none), 3) << parameter;
    for (const int parameter : refused_questions)
        EXPECT_EQ(DftiGetValue(descriptor.handle(), parameter, place), 3) << parameter;
    for (int parameter = -1; parameter <= 30; ++parameter)
        EXPECT_EQ(DftiGetValue(descriptor.handle(), parameter, none), 3) << parameter;
    EXPECT_TRUE(recorded.calls.empty());
    EXPECT_TRUE(operation_calls.empty());
    EXPECT_TRUE(std::ranges::all_of(place, [](int64_t each) { return each == 0; }));
}

TEST_F(dfti_values, what_is_no_descriptor_is_refused_first)
{
    fake_descriptor freed;
    freed.head.tag = 0;
    for (const DFTI_DESCRIPTOR_HANDLE handle : {DFTI_DESCRIPTOR_HANDLE{}, freed.handle()})
        for (int parameter = -1; parameter <= 30; ++parameter) {
            EXPECT_EQ(DftiSetValue(handle, parameter, nullptr), 5) << parameter;
            EXPECT_EQ(DftiGetValue(handle, parameter, nullptr), parameter == 23 ? 3 : 5) << parameter;
        }
    EXPECT_TRUE(recorded.calls.empty());
    EXPECT_TRUE(operation_calls.empty());
}

TEST_F(dfti_values, a_failing_operation_leaves_the_place_alone)
{
    descriptor.result = 6;
    descriptor.lengths = {1, 2, 3};
    for (const int parameter : {1, 2, 4, 5, 7, 12, 13, 14, 15, 27}) {
        int64_t place[5] = {41, 42, 43, 44, 45};
        EXPECT_EQ(DftiGetValue(descriptor.handle(), parameter, place), 6) << parameter;
        EXPECT_EQ(words(place, place + 5), (words{41, 42, 43, 44, 45})) << parameter;
    }
}

} // namespace
