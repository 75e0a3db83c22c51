// Convolution and correlation tasks over the recording core: every routine in every type, kind and spelling.
#include "routine_call.h"
#include "vml_recorder.h"
#include "vsl_call.h"
#include "vsl_recorder.h"
#include "xkl_vsl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <deque>

namespace {

constexpr int64_t high = int64_t{5} << 32; // lost on the way to the core
constexpr int alignment = 128;

/// One spelling of a routine.
struct spelling {
    std::string name;
    bool fortran;
};

std::vector<spelling> spellings(const std::string &name)
{
    std::string lower = name, upper = name;
    std::ranges::transform(name, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    std::ranges::transform(name, upper.begin(), [](unsigned char c) { return std::toupper(c); });
    return {{name, false}, {lower, true}, {lower + "_", true}, {upper + "_", true}};
}

/// A routine's arguments, given as C takes them; Fortran gets addresses of the values.
class argument_list {
  public:
    void value(int64_t value) { add(value, true); }
    void address(const void *place) { add(word(place), false); }

    int32_t call(const spelling &by) const
    {
        std::vector<vsl_value> values;
        for (const auto &[given, is_value] : arguments_)
            values.push_back({false, 0, is_value && by.fortran ? word(&given) : given});
        return vsl_call(exported(by.name), values, false);
    }

  private:
    void add(int64_t word, bool value) { arguments_.emplace_back(word, value); }
    std::deque<std::pair<int64_t, bool>> arguments_;
};

struct typed_kind {
    std::string prefix; // vslsConv
    int64_t kind, domain, precision;
};

std::vector<typed_kind> typed_kinds()
{
    std::vector<typed_kind> all;
    for (const int64_t kind : {1, 2})
        for (const char type : {'s', 'd', 'c', 'z'})
            all.push_back({std::string("vsl") + type + (kind == 1 ? "Conv" : "Corr"), kind,
                           type == 'c' || type == 'z' ? 2 : 1, type == 'd' || type == 'z' ? 2 : 1});
    return all;
}

void for_each_call(const std::string &routine,
                   const std::function<void(const typed_kind &, const spelling &)> &check)
{
    for (const typed_kind &each : typed_kinds())
        for (const spelling &by : spellings(each.prefix + routine)) {
            SCOPED_TRACE(by.name);
            reset();
            recorded.serves_memory = true;
            vsl_recorded = {};
            vsl_recorded.statuses = {-2301};
            check(each, by);
        }
}

/// The core's call, without those for memory.
core_call core_entry_call()
{
    core_call found;
    int count = 0;
    for (const core_call &each : recorded.calls)
        if (each.entry.starts_with("xkl_conv")) {
            found = each;
            ++count;
        }
    EXPECT_EQ(count, 1);
    return found;
}

/// Memory was asked for in these sizes, and all of it released behind the core's call.
void expect_memory(const std::vector<std::size_t> &sizes)
{
    ASSERT_EQ(recorded.blocks.size(), sizes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        EXPECT_EQ(recorded.blocks[i].size, sizes[i]);
        EXPECT_EQ(recorded.blocks[i].alignment, alignment);
        EXPECT_FALSE(recorded.blocks[i].live);
    }
    const auto entry = std::ranges::find_if(
        recorded.calls, [](const core_call &each) { return each.entry.starts_with("xkl_conv"); });
    EXPECT_EQ(entry - recorded.calls.begin(), static_cast<std::ptrdiff_t>(sizes.size()));
}

const int64_t xshape[] = {high + 4, 5, -6}, yshape[] = {7, high - 8, 9},
              zshape[] = {10, 11, high + 0x80000000}, stride[] = {1, high + 4, 20};
const narrowed_array narrow_x{{4, 5, -6}}, narrow_y{{7, -8, 9}}, narrow_z{{10, 11, INT32_MIN}},
    narrow_stride{{1, 4, 20}};
char data[4]; // never read

TEST(vsl_tasks, are_made_with_narrowed_shapes)
{
    for (const bool with_x : {false, true})
        for_each_call(with_x ? "NewTaskX" : "NewTask", [&](const typed_kind &of, const spelling &by) {
            VSLConvTaskPtr task = nullptr;
            argument_list list;
            list.address(&task);
            list.value(high + 2); // mode
            list.value(3);
            list.address(xshape), list.address(yshape), list.address(zshape);
            if (with_x)
                list.address(data), list.address(stride);
            EXPECT_EQ(list.call(by), -2301);
            words expected = {word(&task), of.kind, 1, 2, of.domain, of.precision, 3};
            if (with_x)
                expected.push_back(word(&data[0]));
            EXPECT_EQ(core_entry_call().entry, with_x ? "xkl_conv_newtaskx" : "xkl_conv_newtask");
            EXPECT_EQ(core_entry_call().arguments, expected);
            std::vector<narrowed_array> arrays = {narrow_x, narrow_y, narrow_z};
            if (with_x)
                arrays.push_back(narrow_stride);
            EXPECT_EQ(vsl_recorded.arrays, arrays);
            expect_memory(std::vector<std::size_t>(arrays.size(), 12));
        });
}

TEST(vsl_tasks, keep_null_shapes)
{
    for_each_call("NewTask", [&](const typed_kind &, const spelling &by) {
        VSLConvTaskPtr task = nullptr;
        argument_list list;
        list.address(&task);
        list.value(0);
        list.value(3);
        list.address(xshape), list.address(nullptr), list.address(zshape);
        EXPECT_EQ(list.call(by), -2301);
        EXPECT_EQ(vsl_recorded.arrays, (std::vector<narrowed_array>{narrow_x, {}, narrow_z}));
        expect_memory({12, 12});
    });
}

TEST(vsl_tasks, ask_for_memory_before_they_look_at_dims)
{
    for (const int64_t dims : {int64_t{0}, int64_t{-1}, int64_t{-0x100000000}}) {
        reset();
        recorded.serves_memory = true;
        recorded.failing_allocations = dims < 0 ? 3 : 0; // no memory has so many bytes
        VSLConvTaskPtr task = nullptr;
        EXPECT_EQ(vsldConvNewTask(&task, 1, dims, xshape, yshape, zshape), 0);
        std::vector<int64_t> sizes;
        for (const core_call &each : recorded.calls)
            if (each.entry == "xkl_serv_malloc")
                sizes.push_back(each.arguments[0]);
        EXPECT_EQ(sizes, (std::vector<int64_t>(3, dims * 4)));
        EXPECT_EQ(core_entry_call().arguments[6], static_cast<int32_t>(dims));
    }
}

TEST(vsl_tasks, leave_a_failed_allocation_to_the_core)
{
    reset();
    vsl_recorded = {};
    recorded.serves_memory = true;
    recorded.good_allocations = 1;
    recorded.failing_allocations = 1;
    VSLConvTaskPtr task = nullptr;
    vsl_recorded.statuses = {-2305};
    EXPECT_EQ(vsldConvNewTask(&task, 1, 3, xshape, yshape, zshape), -2305);
    EXPECT_EQ(vsl_recorded.arrays, (std::vector<narrowed_array>{narrow_x, {}, narrow_z}));
    EXPECT_EQ(recorded.allocated, 0);
}

TEST(vsl_tasks, are_made_for_vectors)
{
    for (const bool with_x : {false, true})
        for_each_call(with_x ? "NewTaskX1D" : "NewTask1D", [&](const typed_kind &of, const spelling &by) {
            VSLConvTaskPtr task = nullptr;
            argument_list list;
            list.address(&task);
            for (const int64_t value : {high + 1, high + 100, high + 200, high + 299})
                list.value(value); // mode, shapes
            if (with_x)
                list.address(data), list.value(high - 2);
            EXPECT_EQ(list.call(by), -2301);
            words expected = {word(&task), of.kind, 1, 1, of.domain, of.precision, 1};
            if (with_x)
                expected.push_back(word(&data[0]));
            EXPECT_EQ(core_entry_call().entry, with_x ? "xkl_conv_newtaskx" : "xkl_conv_newtask");
            EXPECT_EQ(core_entry_call().arguments, expected);
            std::vector<narrowed_array> arrays = {{{100}}, {{200}}, {{299}}};
            if (with_x)
                arrays.push_back({{-2}});
            EXPECT_EQ(vsl_recorded.arrays, arrays);
            EXPECT_TRUE(recorded.blocks.empty());
        });
}

TEST(vsl_tasks, are_executed_with_narrowed_strides)
{
    recorded_task task;
    task.dimensions = 3;
    for (const bool with_x : {true, false})
        for_each_call(with_x ? "Exec" : "ExecX", [&](const typed_kind &, const spelling &by) {
            argument_list list;
            list.value(word(&task));
            if (with_x)
                list.address(data), list.address(stride);
            list.address(data + 1), list.address(xshape), list.address(data + 2), list.address(yshape);
            EXPECT_EQ(list.call(by), -2301);
            words expected = {word(&task), word(&data[1]), word(&data[2])};
            std::vector<narrowed_array> arrays = {narrow_x, narrow_y};
            if (with_x) {
                expected.insert(expected.begin() + 1, word(&data[0]));
                arrays.insert(arrays.begin(), narrow_stride);
            }
            EXPECT_EQ(core_entry_call().entry, with_x ? "xkl_conv_exec" : "xkl_conv_execx");
            EXPECT_EQ(core_entry_call().arguments, expected);
            EXPECT_EQ(vsl_recorded.arrays, arrays);
            expect_memory(std::vector<std::size_t>(arrays.size(), 12));
        });
}

TEST(vsl_tasks, are_executed_for_vectors)
{
    recorded_task task;
    task.dimensions = 1;
    for (const bool with_x : {true, false})
        for_each_call(with_x ? "Exec1D" : "ExecX1D", [&](const typed_kind &, const spelling &by) {
            argument_list list;
            list.value(word(&task));
            if (with_x)
                list.address(data), list.value(high + 1);
            list.address(data + 1), list.value(high - 2), list.address(data + 2), list.value(high + 3);
            EXPECT_EQ(list.call(by), -2301);
            words expected = {word(&task), word(&data[1]), word(&data[2])};
            std::vector<narrowed_array> arrays = {{{-2}}, {{3}}};
            if (with_x) {
                expected.insert(expected.begin() + 1, word(&data[0]));
                arrays.insert(arrays.begin(), {{1}});
            }
            EXPECT_EQ(core_entry_call().entry, with_x ? "xkl_conv_exec" : "xkl_conv_execx");
            EXPECT_EQ(core_entry_call().arguments, expected);
            EXPECT_EQ(vsl_recorded.arrays, arrays);
            EXPECT_TRUE(recorded.blocks.empty());
        });
}

TEST(vsl_tasks, without_a_task_leave_the_report_to_the_core)
{
    reset();
    recorded.serves_memory = true;
    EXPECT_EQ(vslsConvExec(nullptr, nullptr, stride, nullptr, stride, nullptr, stride), 0);
    EXPECT_EQ(core_entry_call().arguments, (words{0, 0, 0, 0}));
    EXPECT_EQ(vslConvSetStart(nullptr, stride), 0);
    EXPECT_EQ(recorded.allocated, 0);
}

/// vslConvSetMode and its kin, which have no type.
void for_each_untyped(const std::string &routine, const std::function<void(const spelling &)> &check)
{
    for (const char *kind : {"Conv", "Corr"})
        for (const spelling &by : spellings(std::string("vsl") + kind + routine)) {
            SCOPED_TRACE(by.name);
            reset();
            recorded.serves_memory = true;
            vsl_recorded = {};
            vsl_recorded.statuses = {-2212};
            check(by);
        }
}

TEST(vsl_tasks, are_edited)
{
    recorded_task task;
    task.dimensions = 3;
    const std::vector<std::pair<const char *, int64_t>> scalars = {{"SetMode", 3},
                                                                   {"SetInternalPrecision", 9}},
                                                        arrays = {{"SetStart", 5}, {"SetDecimation", 6}};
    for (const auto &[routine, code] : scalars)
        for_each_untyped(routine, [&, code = code](const spelling &by) {
            argument_list list;
            list.value(word(&task));
            list.value(high + 2);
            EXPECT_EQ(list.call(by), -2212);
            EXPECT_EQ(core_entry_call().arguments, (words{word(&task), code}));
            EXPECT_EQ(vsl_recorded.arrays, (std::vector<narrowed_array>{{{2}}}));
        });
    for (const auto &[routine, code] : arrays)
        for_each_untyped(routine, [&, code = code](const spelling &by) {
            argument_list list;
            list.value(word(&task));
            list.address(zshape);
            EXPECT_EQ(list.call(by), -2212);
            EXPECT_EQ(core_entry_call().arguments, (words{word(&task), code}));
            EXPECT_EQ(vsl_recorded.arrays, (std::vector<narrowed_array>{narrow_z}));
            expect_memory({12});
        });
}

TEST(vsl_tasks, are_copied_and_ended)
{
    recorded_task task;
    VSLConvTaskPtr copy = nullptr;
    for_each_untyped("CopyTask", [&](const spelling &by) {
        argument_list list;
        list.address(&copy);
        list.value(word(&task));
        EXPECT_EQ(list.call(by), -2212);
        EXPECT_EQ(core_entry_call().entry, "xkl_conv_copytask");
        EXPECT_EQ(core_entry_call().arguments, (words{word(&copy), word(&task)}));
    });
    for_each_untyped("DeleteTask", [&](const spelling &by) {
        argument_list list;
        list.address(&copy);
        EXPECT_EQ(list.call(by), -2212);
        EXPECT_EQ(core_entry_call().entry, "xkl_conv_deletetask");
        EXPECT_EQ(core_entry_call().arguments, words{word(&copy)});
    });
}

} // namespace
