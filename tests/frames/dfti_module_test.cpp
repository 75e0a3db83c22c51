// The Fortran module over the recording core: what programs write in dfti_module.f90, and what arrives.
#include "dfti_fake.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

extern "C" {
int64_t step_create();
int64_t step_short();
int64_t step_lifecycle();
int64_t step_set();
int64_t step_get();
int64_t step_statuses();
int64_t step_compute();
int64_t step_section();
void *place_of(int what);
}

namespace {

template <class T>
T *at(int64_t word)
{
    return reinterpret_cast<T *>(word);
}

/// The core behind the module: it hands out and answers from one descriptor.
class dfti_module : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        operation_calls.clear();
        recorded.on_call = [this](const core_call &call) { answer(call); };
        descriptor.lengths = {2, 3, 4};
        descriptor.input_strides = {7, 1, 2, 6};
        descriptor.head.forward_scale = 0.1;
        descriptor.name = "fake";
    }
    void TearDown() override { recorded.on_call = nullptr; }

    void answer(const core_call &call)
    {
        const std::string entry = call.entry.substr(std::strlen("xkl_dft_dfti_"));
        if (entry.starts_with("create")) {
            const auto *lengths = at<int64_t>(call.arguments[4]);
            words seen = {*at<int32_t>(call.arguments[1]), *at<int32_t>(call.arguments[2])};
            seen.insert(seen.end(), lengths, lengths + *at<int64_t>(call.arguments[3]));
            creations.push_back({entry, nullptr, seen});
            *at<DFTI_DESCRIPTOR_HANDLE>(call.arguments[0]) = descriptor.handle();
        } else if (entry.starts_with("copy")) {
            *at<DFTI_DESCRIPTOR_HANDLE>(call.arguments[1]) = *at<DFTI_DESCRIPTOR_HANDLE>(call.arguments[0]);
        } else if (entry == "get_value_intval") {
            EXPECT_EQ(*at<int32_t>(call.arguments[1]), DFTI_DIMENSION);
            *at<int64_t>(call.arguments[2]) = 3;
        } else if (entry == "set_value_intval") {
            settings.push_back({*at<int32_t>(call.arguments[1]), *at<int64_t>(call.arguments[2])});
        } else if (entry == "get_version_string") {
            std::strcpy(at<char>(call.arguments[0]), "version");
        } else if (entry == "error_message_external") {
            std::memcpy(at<char>(call.arguments[1]), "a text  ", 8);
        } else if (entry.starts_with("compute")) {
            EXPECT_EQ(*at<DFTI_DESCRIPTOR_HANDLE>(call.arguments[0]), descriptor.handle());
        }
    }

    /// Every entry by its name behind the common start, with the data that a computation was given.
    static std::vector<std::pair<std::string, words>> computations()
    {
        std::vector<std::pair<std::string, words>> made;
        for (const core_call &each : recorded.calls)
            made.emplace_back(each.entry.substr(std::strlen("xkl_dft_dfti_compute_")),
                              words(each.arguments.begin() + 1, each.arguments.end()));
        return made;
    }
    static int64_t place(int what) { return reinterpret_cast<int64_t>(place_of(what)); }

    fake_descriptor descriptor{3};
    std::vector<operation_call> creations;
    std::vector<words> settings;
};

TEST_F(dfti_module, descriptors_live_from_creation_to_release)
{
    EXPECT_EQ(step_create(), 0);
    const std::vector<operation_call> expected = {{"create_descriptor_highd", nullptr, {36, 32, 2, 3, 4}},
                                                  {"create_descriptor_1d", nullptr, {35, 33, 64}},
                                                  {"create_descriptor_1d", nullptr, {35, 33, 5}},
                                                  {"create_descriptor_highd", nullptr, {36, 33, 5, 6}}};
    EXPECT_EQ(creations, expected);
    EXPECT_EQ(step_lifecycle(), 0);

    recorded.calls.clear();
    EXPECT_EQ(step_short(), 3);
    EXPECT_TRUE(recorded.calls.empty());
}

TEST_F(dfti_module, values_go_both_ways)
{
    step_create();
    EXPECT_EQ(step_set(), 3) << "strides that are too few";
    EXPECT_EQ(settings, (std::vector<words>{{11, 44}, {7, int64_t{1} << 40}}));
    const std::vector<operation_call> expected = {
        {"set_input_strides", descriptor.handle(), {0, 1, 8, 64}},
        {"set_output_strides", descriptor.handle(), {0, 1, 9, 81}},
        {"set_scale", descriptor.handle(), {4, recorded_bits(0.5)}},
        {"set_scale", descriptor.handle(), {5, recorded_bits(0.25)}},
        {"set_name", descriptor.handle(), {6}}};
    EXPECT_EQ(operation_calls, expected);
    descriptor.name = "fake";
    EXPECT_EQ(step_get(), 3) << "room for lengths that is too short";
}

TEST_F(dfti_module, statuses_of_either_kind)
{
    EXPECT_EQ(step_statuses(), 0);
}

TEST_F(dfti_module, arrays_of_any_shape_choose_the_entry_by_their_types)
{
    step_create();
    recorded.calls.clear();
    EXPECT_EQ(step_compute(), 0);
    const auto made = computations();
    ASSERT_EQ(made.size(), 6u);
    EXPECT_EQ(made[0], (std::pair{std::string("forward_z"), words{place(1)}}));
    EXPECT_EQ(made[1], (std::pair{std::string("backward_cc"), words{place(2), place(3)}}));
    EXPECT_EQ(made[2], (std::pair{std::string("forward_dz"), words{place(4), place(1)}}));
    EXPECT_EQ(made[3].first, "backward_dddd");
    EXPECT_EQ(made[3].second.size(), 4u);
    EXPECT_EQ(made[4], (std::pair{std::string("forward_sc"), words{place(5), place(3)}}));
    EXPECT_EQ(made[5], (std::pair{std::string("backward_z"), words{place(1)}}));
}

TEST_F(dfti_module, sections_with_gaps_are_copied_there_and_back)
{
    step_create();
    recorded.on_call = [](const core_call &call) {
        auto *x = at<double>(call.arguments[1]);
        EXPECT_EQ(words(x, x + 4), (words{2, 4, 6, 8}));
        std::fill_n(x, 4, 100.0);
    };
    EXPECT_EQ(step_section(), 400 + 1 + 3 + 5 + 7);
}

} // namespace
