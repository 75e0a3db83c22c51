// Vector math over the recording core and its recording kernels: every entry point of every table.
#include "vml_call.h"
#include "vml_recorder.h"

#include "routine_call.h"
#include "vml/loader.h"
#include "xkl_vml.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

constexpr int64_t block = 0x7fffffff;
constexpr uint32_t usual_mode = 0x102;
constexpr int32_t usual_status = 4;

/// Settings that a call must leave alone, or change in a known way.
void start_from(int32_t table_index)
{
    vml_recorded.table_index = table_index;
    vml_recorded.mode = usual_mode;
    vml_recorded.status = usual_status;
}

template <class T>
const T *table(const vml_row &row, const char *suffix)
{
    xkl_vml_serv_load_vml_dll();
    const std::string name = std::string("xkl_vml_kernel_") + row.form + suffix;
    const void *found = dlsym(xkl_vml_serv_get_dll_handle(), name.c_str());
    EXPECT_NE(found, nullptr) << name;
    return static_cast<const T *>(found);
}

std::vector<core_call> expected_kernel_calls(const vml_row &row, const vml_call &call, int64_t n, int index)
{
    std::vector<core_call> calls;
    const bool direct = vml_threader(row).empty();
    for (int64_t start = 0; start < n; start += block) {
        words arguments = call.handed_on(start);
        if (direct) {
            arguments.insert(arguments.begin(), n);
            arguments.push_back(2);
            calls.push_back({row.form + ("_" + std::to_string(index)), arguments});
            continue;
        }
        const int64_t count = std::min(n - start, block);
        const void *const kernel = table<const void *>(row, "_ttab")[index];
        arguments.insert(arguments.begin(), {word(kernel), count});
        arguments.push_back(word(xkl_vml_serv_get_dll_handle()));
        arguments.push_back(word(table<float>(row, "_ctab")[index]));
        calls.push_back({vml_threader(row), arguments});
    }
    return calls;
}

/// All that reaches core and kernel library, in order.
std::vector<core_call> expected_calls(const vml_row &row, const vml_spelling &spelling,
                                      const vml_call &call, int64_t n, int index)
{
    std::vector<core_call> calls = {{"GetTTableIndex", {3}}}; // the class of the recording core's processor
    if (std::string(row.function) == "LinearFrac" && index != 2)
        calls.push_back({"SetErrStatus", {1000}});
    for (const core_call &each : expected_kernel_calls(row, call, n, index))
        calls.push_back(each);
    if (spelling.in_mode) {
        calls.insert(calls.begin(), {"SetMode", {static_cast<uint32_t>(vml_call::mode)}});
        calls.push_back({"SetMode", {usual_mode}});
    }
    return calls;
}

std::string text(const std::vector<core_call> &calls)
{
    std::string lines;
    for (const core_call &each : calls) {
        lines += each.entry;
        for (const int64_t argument : each.arguments)
            lines += " " + std::to_string(argument);
        lines += "\n";
    }
    return lines;
}

void expect_computed(const vml_row &row, const vml_spelling &spelling, int64_t n, int index)
{
    start_from(index);
    const vml_call call(row, spelling, n);
    call.make();
    EXPECT_EQ(text(recorded.calls), text(expected_calls(row, spelling, call, n, index)));
    EXPECT_TRUE(recorded.reports.empty());
    EXPECT_EQ(vml_recorded.mode, usual_mode);
}

/// Nothing but the report and the status, in this order.
void expect_refused(const vml_call &call, const std::string &name, int64_t place, int32_t status)
{
    start_from(1);
    call.make();
    EXPECT_EQ(recorded.order, (std::vector<std::string>{"register", "report", "SetErrStatus"}));
    ASSERT_EQ(recorded.reports.size(), 1u);
    EXPECT_EQ(recorded.reports[0].name, name);
    EXPECT_EQ(recorded.reports[0].position, place);
    EXPECT_EQ(recorded.reports[0].length, static_cast<int64_t>(name.size()));
    EXPECT_EQ(recorded.default_reports, 1);
    EXPECT_EQ(vml_recorded.status, status);
    EXPECT_EQ(vml_recorded.mode, usual_mode);
}

TEST(vml_entries, hand_their_vectors_to_the_threader_of_their_class)
{
    EXPECT_EQ(vml_row_count, 480);
    for_each_entry(
        [](const vml_row &row, const vml_spelling &spelling) { expect_computed(row, spelling, 3, 1); });
}

TEST(vml_entries, take_kernel_and_cost_at_the_processors_index)
{
    for (const int index : {0, 2})
        for_each_entry([&](const vml_row &row, const vml_spelling &spelling) {
            expect_computed(row, spelling, 1, index);
        });
}

TEST(vml_entries, run_long_vectors_in_blocks)
{
    for (const int64_t n : {block, block + 1, 2 * block, 2 * block + 5})
        for_each_entry([&](const vml_row &row, const vml_spelling &spelling) {
            expect_computed(row, spelling, n, 2);
        });
}

void set_all_null(const vml_row &row, vml_call &call)
{
    for (std::size_t i = 0; i < vml_parameters(row).size(); ++i)
        call.set_null(i);
}

TEST(vml_entries, do_nothing_without_elements)
{
    for_each_entry([](const vml_row &row, const vml_spelling &spelling) {
        vml_call call(row, spelling, 0);
        set_all_null(row, call);
        call.make();
        EXPECT_TRUE(recorded.order.empty());
    });
}

TEST(vml_entries, report_a_negative_size_before_anything_else)
{
    for_each_entry([](const vml_row &row, const vml_spelling &spelling) {
        for (const int64_t n : {int64_t{-1}, INT64_MIN}) {
            reset();
            vml_call call(row, spelling, n);
            set_all_null(row, call);
            expect_refused(call, std::string("v") + row.form + (spelling.wide ? "_64" : ""), 1, -1);
        }
    });
}

/// The place of a result of two is the first one's.
int64_t reported_place(const vml_row &row, std::size_t parameter)
{
    const std::size_t of_two = row.strided ? 2 : 1;
    const bool second = std::string(row.class_name) == "1i_2o" && parameter == 2 * of_two;
    return static_cast<int64_t>(second ? of_two : parameter) + 2;
}

TEST(vml_entries, report_the_first_null_vector_by_its_place)
{
    for_each_entry([](const vml_row &row, const vml_spelling &spelling) {
        const std::vector<vml_parameter> parameters = vml_parameters(row);
        vml_call later_ones(row, spelling, 1);
        for (std::size_t i = parameters.size(); i-- > 0;) {
            if (!parameters[i].checked())
                continue;
            vml_call one(row, spelling, 1);
            one.set_null(i);
            later_ones.set_null(i);
            for (const vml_call *call : {&one, &later_ones}) {
                reset();
                expect_refused(*call, std::string("v") + row.form, reported_place(row, i), -2);
            }
        }
    });
}

TEST(vml_entries, leave_a_status_that_can_be_asked_for)
{
    double a = 1;
    vdExp(1, &a, nullptr);
    EXPECT_EQ(vmlGetErrStatus(), VML_STATUS_BADMEM);
    EXPECT_EQ(vmlGetErrStatus_64(), VML_STATUS_BADMEM);
    vdSinCos(1, &a, &a, nullptr);
    EXPECT_EQ(recorded.reports.back().position, 3);
}

TEST(vml_entries, read_the_size_where_it_is_used)
{
    reset();
    start_from(1);
    int64_t n = block + 7;
    recorded.on_call = [&](const core_call &call) {
        if (call.entry == "GetTTableIndex")
            n = 5; // another size from here on
    };
    double a = 1;
    vdexp_(&n, &a, &a);
    ASSERT_EQ(recorded.calls.size(), 2u);
    EXPECT_EQ(recorded.calls[1].arguments[1], 5);
}

template <class Result>
Result call_setting(const std::string &name, int64_t argument)
{
    return reinterpret_cast<Result (*)(int64_t)>(exported(name))(argument);
}

struct operation {
    const char *name;
    bool reads;   // Fortran spellings read an integer
    bool is_mode; // unsigned
    bool is_address;
};
const operation operations[] = {
    {"SetErrStatus", true, false, false},     {"GetErrStatus", false, false, false},
    {"ClearErrStatus", false, false, false},  {"SetMode", true, true, false},
    {"GetMode", false, true, false},          {"SetErrorCallBack", false, false, true},
    {"GetErrorCallBack", false, false, true}, {"ClearErrorCallBack", false, false, true},
};

/// What the kernel library answers, and what becomes of it: the upper bit tells how it was widened.
constexpr uint32_t high_mode = 0x80000001;

void check_spelling(const operation &each, const std::string &name, bool fortran, bool wide)
{
    SCOPED_TRACE(name);
    constexpr int64_t given = 0x1000000fd;
    int target = 0;
    reset();
    vml_recorded.status = -2;
    vml_recorded.mode = high_mode;
    vml_recorded.callback = &target;
    const int64_t argument = each.reads && fortran ? word(&given) : given;
    int64_t answer = 0, expected = each.is_mode ? int64_t{high_mode} : -2;
    if (wide || each.is_address)
        answer = call_setting<int64_t>(name, argument);
    else if (each.is_mode)
        answer = call_setting<uint32_t>(name, argument);
    else
        answer = call_setting<int32_t>(name, argument);
    if (each.is_address)
        expected = word(&target);
    EXPECT_EQ(answer, expected);
    ASSERT_EQ(recorded.calls.size(), 1u);
    EXPECT_EQ(recorded.calls[0].entry, each.name);
    if (std::string(each.name).starts_with("Set")) {
        EXPECT_EQ(recorded.calls[0].arguments.at(0), each.is_address ? given : int64_t{0xfd});
    }
}

TEST(vml_settings, forward_in_every_spelling)
{
    for (const operation &each : operations)
        for (const bool wide : {false, true}) {
            const std::string suffix = wide ? "_64" : "", c = std::string("vml") + each.name + suffix;
            std::string upper = c, lower = c;
            for (char &letter : upper)
                letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
            for (char &letter : lower)
                letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
            check_spelling(each, c, false, wide);
            check_spelling(each, upper + "_", true, wide);
            check_spelling(each, lower + "_", true, wide);
        }
}

} // namespace
