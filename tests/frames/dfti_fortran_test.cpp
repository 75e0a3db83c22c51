// What Fortran calls: every spelling of every row, where it goes, and the access to reals, vectors and
// text that this library serves itself.
#include "dfti_fake.h"
#include "routine_call.h"

#include "xkl_dfti.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <span>

namespace {

const std::set<std::string> served_here = {"xkl_dft_dfti_get_value_intvec", "xkl_dft_dfti_get_value_sglval",
                                           "xkl_dft_dfti_get_value_chars",  "xkl_dft_dfti_set_value_intvec",
                                           "xkl_dft_dfti_set_value_sglval", "xkl_dft_dfti_set_value_dblval",
                                           "xkl_dft_dfti_set_value_chars"};

std::vector<const routine_row *> rows_of(const std::string &frame)
{
    std::vector<const routine_row *> rows;
    for (const routine_row &row : std::span(dfti_rows, static_cast<std::size_t>(dfti_row_count)))
        if (row.frame == frame)
            rows.push_back(&row);
    return rows;
}

TEST(dfti_names, every_function_has_its_second_name)
{
    int functions = 0;
    for (const routine_row *row : rows_of("own"))
        if (const auto others = split(row->spellings); !others.empty()) {
            ++functions;
            ASSERT_EQ(others.size(), 1u);
            EXPECT_TRUE(others[0].starts_with("xkl_dft_dfti")) << others[0];
            EXPECT_EQ(exported(others[0]), exported(row->body)) << others[0];
        }
    EXPECT_EQ(functions, 18);
    EXPECT_EQ(rows_of("through").size(), 45u);
}

TEST(dfti_names, fortran_routines_have_five_spellings_and_reach_their_entry)
{
    int64_t places[5] = {};
    for (const routine_row *row : rows_of("through")) {
        SCOPED_TRACE(row->name);
        std::vector<std::string> spellings = split(row->spellings);
        spellings.push_back(row->body);
        ASSERT_EQ(spellings.size(), 5u);
        for (const std::string &spelling : spellings)
            EXPECT_EQ(exported(spelling), exported(row->body)) << spelling;
        if (served_here.contains(row->core_entry)) {
            EXPECT_NE(exported(row->core_entry), nullptr);
            continue;
        }
        reset();
        recorded.integer_result = 31;
        words given;
        for (std::size_t i = 0; i < split(row->kinds).size(); ++i)
            given.push_back(reinterpret_cast<int64_t>(places + i));
        EXPECT_EQ(call_integer(exported(row->body), given), 31);
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].entry, row->core_entry);
        EXPECT_EQ(recorded.calls[0].arguments, given);
    }
}

/// Calls by a Fortran spelling, all arguments by reference.
class dfti_access : public testing::Test {
  protected:
    void SetUp() override
    {
        reset();
        operation_calls.clear();
    }

    template <class... Place>
    static int64_t call(const std::string &name, Place... places)
    {
        return call_integer(exported(name), {word_of(places)...});
    }
    template <class T>
    static int64_t word_of(T *address)
    {
        return reinterpret_cast<int64_t>(address);
    }
    static int64_t word_of(std::nullptr_t) { return 0; }
    static int64_t word_of(int64_t value) { return value; }

    fake_descriptor descriptor{3};
    DFTI_DESCRIPTOR_HANDLE handle = descriptor.handle();
};

TEST_F(dfti_access, vectors_are_not_reversed)
{
    descriptor.lengths = {10, 20, 30};
    descriptor.input_strides = {1, 2, 3, 4};
    descriptor.output_strides = {5, 6, 7, 8};
    const std::pair<int32_t, words> cases[] = {
        {2, {10, 20, 30, -1, -1}}, {12, {1, 2, 3, 4, -1}}, {13, {5, 6, 7, 8, -1}}};
    for (const auto &[parameter, expected] : cases) {
        words place(5, -1);
        EXPECT_EQ(call("dfti_get_value_intvec_", &handle, &parameter, place.data()), 0);
        EXPECT_EQ(place, expected) << parameter;
    }
    const words given = {9, 8, 7, 6};
    const int32_t input = 12, output = 13;
    descriptor.result = 4;
    EXPECT_EQ(call("DFTI_SET_VALUE_INTVEC", &handle, &input, given.data()), 4);
    EXPECT_EQ(call("dfti_set_value_intvec__", &handle, &output, given.data()), 4);
    EXPECT_EQ(operation_calls, (std::vector<operation_call>{{"set_input_strides", handle, given},
                                                            {"set_output_strides", handle, given}}));
}

TEST_F(dfti_access, scales)
{
    const int32_t forward = 4, backward = 5;
    const float single = 0.1f;
    const double real = 0.3;
    EXPECT_EQ(call("dfti_set_value_sglval_", &handle, &forward, &single), 0);
    EXPECT_EQ(call("dfti_set_value_dblval_", &handle, &backward, &real), 0);
    EXPECT_EQ(operation_calls,
              (std::vector<operation_call>{{"set_scale", handle, {4, recorded_bits(0.1f)}},
                                           {"set_scale", handle, {5, recorded_bits(0.3)}}}));
    descriptor.head.backward_scale = 0.3;
    float got[2] = {-1, -1};
    EXPECT_EQ(call("dfti_get_value_sglval_", &handle, &backward, got), 0);
    EXPECT_EQ(got[0], 0.3f);
    EXPECT_EQ(got[1], -1);
}

TEST_F(dfti_access, text_is_padded_and_trimmed)
{
    const int32_t name = 20, version = 23;
    EXPECT_EQ(call("dfti_set_value_chars_", &handle, &name, "a name  of it   ", int64_t{16}), 0);
    EXPECT_EQ(descriptor.name, "a name  of it");
    char text[16] = "...............";
    EXPECT_EQ(call("dfti_get_value_chars_", &handle, &name, text, int64_t{12}), 0);
    EXPECT_EQ(std::string(text), "a name  o   ...") << "nine letters";
    std::fill_n(text, 15, '-');
    EXPECT_EQ(call("dfti_get_value_chars_", &handle, &name, text, int64_t{3}), 0);
    EXPECT_EQ(std::string(text), "a n------------") << "a name that is cut";
    EXPECT_EQ(call("dfti_set_value_chars_", &handle, &name, "   ", int64_t{3}), 0);
    EXPECT_EQ(descriptor.name, "");

    recorded.on_call = [](const core_call &each) {
        std::copy_n("version", 8, reinterpret_cast<char *>(each.arguments[0]));
    };
    EXPECT_EQ(call("dfti_get_value_chars_", nullptr, &version, text, int64_t{9}), 0);
    EXPECT_EQ(std::string(text), "version  ------") << "which needs no descriptor";
}

TEST_F(dfti_access, nulls_then_descriptors_then_parameters)
{
    fake_descriptor freed;
    freed.head.tag = 0;
    DFTI_DESCRIPTOR_HANDLE none = nullptr, dead = freed.handle();
    int64_t place[16] = {};
    for (const std::string &entry : served_here) {
        SCOPED_TRACE(entry);
        const bool scale = entry.ends_with("lval"), text = entry.ends_with("chars");
        for (const int32_t parameter : {0, 1, 2, 3, 4, 5, 6, 7, 12, 13, 14, 20, 22, 23, 27, 28, 29}) {
            const bool lengths = parameter == 2 && entry == "xkl_dft_dfti_get_value_intvec";
            const bool asks_version = parameter == 23 && entry == "xkl_dft_dfti_get_value_chars";
            const bool good = scale  ? parameter == 4 || parameter == 5
                              : text ? parameter == 20 || asks_version
                                     : parameter == 12 || parameter == 13 || lengths;
            EXPECT_EQ(call(entry, &handle, &parameter, place, int64_t{9}), good ? 0 : 3) << parameter;
            EXPECT_EQ(call(entry, &handle, &parameter, nullptr, int64_t{9}), 3) << parameter;
            if (asks_version)
                continue;
            EXPECT_EQ(call(entry, nullptr, &parameter, place, int64_t{9}), 3) << parameter;
            EXPECT_EQ(call(entry, &none, &parameter, place, int64_t{9}), 5) << parameter;
            EXPECT_EQ(call(entry, &dead, &parameter, place, int64_t{9}), 5) << parameter;
        }
        EXPECT_EQ(call(entry, &handle, nullptr, place, int64_t{9}), 3);
    }
}

} // namespace
