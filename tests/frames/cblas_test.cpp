// Every routine of the C interface over the recording core: what reaches the frame in either layout, which
// argument is reported under which name, and the properties that the rules do not hold.
#include "cblas_call.h"
#include "recorder.h"

#include <gtest/gtest.h>

namespace {

const std::string twins[] = {"", "_64"};
const int64_t layouts[] = {101, 102};

class cblas : public testing::Test {
  protected:
    void SetUp() override { reset(); }
};

/// The list that the frame is to get; null where a test of its own looks at the call.
const char *expected_list(c_call &call)
{
    if (!call.has_layout)
        return call.rule.by_rows ? call.rule.by_rows : call.row.names;
    if (!call.by_rows())
        return call.row.names;
    const bool conjugated = call.rule.conjugated && call.has_complex_matrix() &&
                            (!call.has("trans") || call.value("trans") == 113);
    return conjugated ? call.rule.conjugated : call.rule.by_rows;
}

std::string expected_entry(c_call &call)
{
    std::string entry = std::string("xkl_blas_") + call.row.routine;
    for (char &letter : entry)
        letter = static_cast<char>(std::tolower(letter));
    if (std::string(call.row.shape) == "gerc" && call.by_rows())
        entry.back() = 'u'; // conj(y)*x' conjugates nothing more
    return entry;
}

char expected_letter(const c_call &call, const std::string &name, int64_t option, char prefix)
{
    if (prefix == '^')
        return option != 111 ? 'N' : std::string(call.row.shape).starts_with("her") ? 'C' : 'T';
    const char *letters = name == "uplo" ? "UL" : name == "side" ? "LR" : name == "diag" ? "NU" : "NTC";
    const int64_t nth = option - options_of(name).first;
    return letters[prefix == '~' ? 1 - nth : nth];
}

/// Where a call's chunk of groups starts.
struct chunk {
    int64_t group, groups, matrix;
};

/// Compares what reached the core with the rule's list, while the arguments live.
class expectation {
  public:
    explicit expectation(c_call &call, chunk where = {0, 1, 0}) : call_(call), where_(where) {}

    void check(const core_call &seen)
    {
        EXPECT_EQ(seen.entry, expected_entry(call_));
        words hidden = {};
        if (call_.grouped)
            hidden.push_back(0);
        std::size_t i = 0;
        for (const std::string &item : parts_of(expected_list(call_))) {
            if (item == "layout")
                continue;
            SCOPED_TRACE(item);
            ASSERT_LT(i, seen.arguments.size());
            if (check_item(item, reinterpret_cast<const void *>(seen.arguments[i++])))
                hidden.push_back(1);
        }
        EXPECT_EQ(words(seen.arguments.begin() + static_cast<std::ptrdiff_t>(i), seen.arguments.end()),
                  hidden);
    }

  private:
    /// True for letters, which have hidden lengths.
    bool check_item(const std::string &item, const void *address)
    {
        const char prefix = std::isalpha(static_cast<unsigned char>(item[0])) ? 0 : item[0];
        const auto number_at = static_cast<const int64_t *>(address);
        if (prefix == '1' || prefix == '#') {
            EXPECT_EQ(*number_at, prefix == '1' ? 1 : call_.value(item.substr(1)));
            return false;
        }
        const auto parts = parts_of(item.substr(prefix ? 1 : 0), ':');
        c_argument &given = call_.at(parts[0]);
        if (given.is_option()) {
            for (int64_t g = 0; g < (call_.grouped ? where_.groups : 1); ++g)
                EXPECT_EQ(
                    static_cast<const char *>(address)[g],
                    expected_letter(call_, given.name, call_.value(given.name, where_.group + g), prefix));
            return true;
        }
        if (prefix)
            check_conjugated(given, prefix == '!', parts.size() == 1 ? 1 : call_.value(parts[1]), address);
        else if (given.kind == "i")
            EXPECT_EQ(*number_at, given.name == "group_count" ? where_.groups : given.numbers[0]);
        else if (given.is_real_value())
            EXPECT_EQ(read(address, given.element, 0), read(given.data(), given.element, 0));
        else
            EXPECT_EQ(address, reinterpret_cast<char *>(given.word()) + offset(given));
        return false;
    }

    /// A scalar or a vector's copy in logical order, or the caller's own vector; its values are those of a
    /// fresh call.
    void check_conjugated(c_argument &given, bool copied, int64_t length, const void *address)
    {
        EXPECT_EQ(address == given.data(), !copied);
        c_call fresh(call_.row);
        const void *original = fresh.at(given.name).data();
        const std::string increment = "inc" + given.name;
        const int64_t inc = call_.has(increment) ? call_.value(increment) : 1;
        for (int64_t i = 0; i < length; ++i) {
            const int64_t stored = i * std::abs(inc), logical = inc < 0 ? length - 1 - i : i;
            EXPECT_EQ(read(address, given.element, copied ? logical : stored),
                      std::conj(read(original, given.element, stored)));
        }
    }

    std::ptrdiff_t offset(const c_argument &given) const
    {
        const std::ptrdiff_t size =
            (is_single(given.element) ? 4 : 8) * (is_complex(given.element) ? 2 : 1);
        return given.kind == "P" ? 8 * where_.matrix : where_.group * (given.kind == "I" ? 8 : size);
    }

    c_call &call_;
    chunk where_;
};

void expect_report(const std::string &name, int64_t position)
{
    ASSERT_EQ(recorded.reports.size(), 1u);
    EXPECT_EQ(recorded.reports[0].name, name);
    EXPECT_EQ(recorded.reports[0].position, position);
    EXPECT_TRUE(recorded.calls.empty());
    EXPECT_EQ(recorded.allocated, 0);
}

std::string fortran_name(const cblas_row &row)
{
    return std::string(row.routine) + (std::strlen(row.routine) == 6 ? "" : " ");
}

void expect_same_memory(const std::deque<c_argument> &before, const c_call &call)
{
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(before[i].memory, call.arguments[i].memory) << before[i].name;
}

bool any(c_call &)
{
    return true;
}

TEST_F(cblas, good_calls_reach_the_frame_translated)
{
    for (const cblas_row *row : rows_with(any))
        for (const std::string &twin : twins)
            for (const int64_t layout : layouts) {
                SCOPED_TRACE(row->name + twin);
                c_call call(*row);
                call.set_layout(layout);
                const auto before = call.arguments;
                call.for_each_option([&] {
                    if (!expected_list(call))
                        return;
                    reset();
                    recorded.on_call = [&](const core_call &seen) { expectation(call).check(seen); };
                    call.make(twin);
                    if (call.is_refused())
                        return expect_report(fortran_name(*row), 2);
                    EXPECT_EQ(recorded.calls.size(), 1u);
                    EXPECT_TRUE(recorded.reports.empty());
                    EXPECT_EQ(recorded.allocated, 0);
                    expect_same_memory(before, call);
                });
            }
}

/// Makes one argument bad in one of two ways.
void spoil(c_call &call, const std::string &name, bool first_way)
{
    c_argument &given = call.at(name);
    const option_range range = options_of(name);
    const int64_t last = given.is_array_of_groups() ? call.groups - 1 : 0;
    if (given.is_array_of_groups() && first_way)
        given.missing = true;
    else if (given.is_option())
        call.set(name, first_way ? range.first - 1 : range.first + range.count, last);
    else if (name.starts_with("inc"))
        call.set(name, 0, last);
    else if ((" " + std::string(call.rule.extents)).find(" " + name + ":") != std::string::npos)
        call.set(name, first_way ? 0 : call.value(name, last) - 1, last);
    else
        call.set(name, first_way ? INT64_MIN : -1, last);
}

TEST_F(cblas, the_first_bad_argument_is_reported)
{
    for (const cblas_row *row : rows_with(any))
        for (const std::string &twin : twins)
            for (const int64_t layout : layouts)
                for (const int way : {0, 1, 2, 3}) {
                    const auto tested = parts_of(rule_of(row->shape).tests);
                    for (std::size_t i = 0; i < tested.size(); ++i) {
                        SCOPED_TRACE(row->name + twin + " " + tested[i]);
                        c_call call(*row, 3);
                        // Batches of vectors look at their arrays, and not into them.
                        if (!call.has_layout && call.grouped && way % 2 == 1 && i > 0)
                            continue;
                        call.set_layout(layout);
                        reset();
                        for (std::size_t j = i; j < (way < 2 ? i + 1 : tested.size()); ++j)
                            spoil(call, tested[j], way % 2 == 0);
                        call.make(twin);
                        expect_report(row->name, call.place(tested[i]));
                    }
                }
}

TEST_F(cblas, empty_problems_need_leading_dimensions_of_one)
{
    for (const cblas_row *row : rows_with(any))
        for (const std::string &extent : parts_of(rule_of(row->shape).extents)) {
            c_call call(*row);
            for (const std::string name : {"m", "n", "k"})
                if (call.has(name))
                    call.set(name, 0);
            for (const std::string &other : parts_of(call.rule.extents))
                call.set(parts_of(other, ':')[0], other == extent ? 0 : 8);
            reset();
            call.make();
            expect_report(row->name, call.place(parts_of(extent, ':')[0]));
        }
}

TEST_F(cblas, without_memory_for_copies_nothing_changes)
{
    for (const cblas_row *row : rows_with([](c_call &call) {
             return call.rule.conjugated && call.has_complex_matrix() && call.row.shape[0] != 't';
         })) {
        c_call call(*row);
        if (call.has("trans"))
            call.set("trans", 113);
        call.set_layout(101);
        const auto before = call.arguments;
        reset();
        recorded.failing_allocations = 1;
        call.make();
        expect_report(row->name, 1000);
        expect_same_memory(before, call);
    }
}

TEST_F(cblas, products_that_change_nothing_make_no_call)
{
    recorded.verbose = 1;
    for (const cblas_row *row :
         rows_with([](c_call &call) { return call.rule.conjugated && call.has("beta"); })) {
        SCOPED_TRACE(row->name);
        c_call call(*row);
        for (const int64_t layout : layouts) {
            call.set_layout(layout);
            write(call.at("alpha").data(), row->element, 0, 0);
            write(call.at("beta").data(), row->element, 0, 1);
            call.make();
            write(call.at("beta").data(), row->element, 0, 2);
            call.set("n", 0);
            call.make();
            call.set("n", 7);
        }
        EXPECT_TRUE(recorded.calls.empty() && recorded.lines.empty() && recorded.reports.empty());
        // Without alpha no copy is made of an x that may not be there.
        call.set_layout(101);
        call.at(call.has("x") ? "x" : "x1").missing = true;
        call.make();
        EXPECT_EQ(recorded.calls.size(), 1u);
        reset();
        recorded.verbose = 1;
    }
}

bool is_grouped(c_call &call)
{
    return call.grouped;
}

TEST_F(cblas, groups_go_in_chunks)
{
    for (const cblas_row *row : rows_with(is_grouped))
        for (const std::string &twin : twins)
            for (const int64_t layout : layouts) {
                SCOPED_TRACE(row->name + twin);
                const std::vector<chunk> chunks = {{0, 1024, 0}, {1024, 1024, 1023}, {2048, 452, 2047}};
                c_call call(*row, 2500);
                call.set_layout(layout);
                reset();
                recorded.on_call = [&](const core_call &seen) {
                    ASSERT_LE(recorded.calls.size(), chunks.size());
                    expectation(call, chunks[recorded.calls.size() - 1]).check(seen);
                };
                call.make(twin);
                EXPECT_EQ(recorded.calls.size(), chunks.size());
                EXPECT_TRUE(recorded.reports.empty());
            }
}

TEST_F(cblas, no_groups_still_need_their_arrays)
{
    recorded.verbose = 1;
    for (const cblas_row *row : rows_with(is_grouped)) {
        c_call call(*row);
        call.set("group_count", 0);
        call.at("group_size").missing = true;
        call.make();
        EXPECT_TRUE(recorded.calls.empty() && recorded.lines.empty() && recorded.reports.empty());
        for (const std::string &name : parts_of(call.rule.tests))
            if (name != "layout" && name != "group_count") {
                call.at(name).missing = true;
                call.make();
                expect_report(row->name, call.place(name));
                call.at(name).missing = false;
                reset();
            }
    }
}

TEST_F(cblas, groups_of_negative_size_are_refused_by_the_frame_if_it_tests_them)
{
    for (const cblas_row *row : rows_with(is_grouped)) {
        c_call call(*row, 2);
        call.set("group_size", -1, 1);
        reset();
        call.make();
        const int place = call.place("group_size");
        expect_report(call.has_layout ? fortran_name(*row) : row->name,
                      call.has_layout ? place - 1 : place);
    }
}

/// By rows a group with conj(A) goes by itself, with copies; those around it go together.
TEST_F(cblas, gemv_batch_conjugates_group_by_group)
{
    for (const cblas_row *row : rows_with([](c_call &call) {
             return call.row.shape == std::string("gemv_batch") && is_complex(call.row.element);
         }))
        for (const bool failing : {false, true}) {
            c_call call(*row, 5);
            call.set("trans", 113, 2);
            call.set("group_size", 0, 3);
            call.set_layout(101);
            reset();
            recorded.failing_allocations = failing;
            std::vector<int64_t> groups;
            recorded.on_call = [&](const core_call &seen) {
                const auto at = [&](std::size_t i) { return reinterpret_cast<void *>(seen.arguments[i]); };
                groups.push_back(*static_cast<int64_t *>(at(11)));
                if (groups.size() != 2)
                    return;
                EXPECT_EQ(*static_cast<char *>(at(0)), 'N');
                EXPECT_EQ(read(at(3), row->element, 0),
                          std::conj(read(call.at("alpha").data(), row->element, 2)));
                EXPECT_EQ(at(4), call.at("a").addresses.data() + 1);
                EXPECT_EQ(*static_cast<int64_t *>(at(7)), 1);
                for (std::size_t i = 0; i < 2; ++i)
                    for (int64_t j = 0; j < call.value("m", 2); ++j)
                        EXPECT_EQ(read(static_cast<void **>(at(6))[i], row->element, j),
                                  std::conj(read(call.at("x").addresses[1 + i], row->element, 2 * j)));
            };
            call.make();
            if (failing)
                expect_report(row->name, 1000);
            else
                EXPECT_EQ(groups, (std::vector<int64_t>{2, 1, 2}));
            EXPECT_EQ(recorded.allocated, 0);
        }
}

TEST_F(cblas, mixed_gemm_by_rows_multiplies_complex_matrices)
{
    for (const cblas_row *row :
         rows_with([](c_call &call) { return call.row.shape == std::string("mixed_gemm"); })) {
        c_call call(*row);
        call.set_layout(101);
        call.set("lda", 6);
        recorded.on_call = [&](const core_call &seen) {
            EXPECT_EQ(seen.entry, row->element == 'C' ? "xkl_blas_cgemm" : "xkl_blas_zgemm");
            EXPECT_EQ(*reinterpret_cast<int64_t *>(seen.arguments[9]), 4);
            for (int i = 0; i < 5 * 4; ++i)
                EXPECT_EQ(read(reinterpret_cast<void *>(seen.arguments[8]), row->element, i),
                          read(call.at("a").data(), call.at("a").element, i / 4 * 6 + i % 4));
        };
        call.make();
        EXPECT_EQ(recorded.calls.size(), 1u);
        reset();
        recorded.failing_allocations = 1;
        call.make();
        expect_report(row->name, 1000);
        reset();
        write(call.at("alpha").data(), row->element, 0, 0);
        call.at("a").missing = true; // which nothing reads now
        call.make();
        EXPECT_EQ(recorded.calls.size(), 1u);
        reset();
    }
}

TEST_F(cblas, gemv_reports_a_bad_trans_and_goes_on)
{
    for (const cblas_row *row :
         rows_with([](c_call &call) { return call.row.shape == std::string("gemv"); })) {
        c_call call(*row);
        call.set("trans", 114);
        reset();
        call.make();
        call.set("incx", 0);
        call.make();
        ASSERT_EQ(recorded.reports.size(), 4u);
        EXPECT_EQ(recorded.reports[0].name, row->name);
        EXPECT_EQ(recorded.reports[0].position, 2);
        EXPECT_EQ(recorded.reports[1].name, fortran_name(*row));
        EXPECT_EQ(recorded.reports[1].position, 1);
        EXPECT_EQ(recorded.reports[3].position, 9);
        EXPECT_TRUE(recorded.calls.empty());
    }
}

TEST_F(cblas, places_count_from_zero)
{
    for (const cblas_row *row :
         rows_with([](c_call &call) { return call.row.shape == std::string("index"); })) {
        c_call call(*row);
        reset();
        recorded.integer_result = 7;
        EXPECT_EQ(call.make<int64_t>(), 6);
        call.set("n", 0);
        EXPECT_EQ(call.make<int64_t>(), 0);
        call.set("n", 7);
        for (const int64_t incx : {0, -1}) {
            call.set("incx", incx);
            EXPECT_EQ(call.make<int64_t>(), 0);
        }
        EXPECT_EQ(recorded.calls.size(), 1u);
    }
}

TEST_F(cblas, functions_return_the_core_s_value)
{
    recorded.real_result = 2.5;
    for (const cblas_row *row : rows_with([](c_call &call) { return call.row.result[0] == 'r'; })) {
        const bool single = row->result[1] == '4' || (row->result[1] == 'e' && is_single(row->element));
        c_call call(*row);
        EXPECT_EQ(single ? static_cast<double>(call.make<float>()) : call.make<double>(), 2.5) << row->name;
    }
}

TEST_F(cblas, neither_complex_dot_products_nor_bad_arguments_leave_trace_lines)
{
    recorded.verbose = 1;
    for (const cblas_row *row :
         rows_with([](c_call &call) { return call.row.shape == std::string("dot_sub"); }))
        c_call(*row).make();
    EXPECT_EQ(recorded.calls.size(), 4u);
    for (const cblas_row *row : rows_with([](c_call &call) { return call.has_layout; })) {
        c_call call(*row);
        call.set("layout", 103);
        call.make();
    }
    EXPECT_EQ(recorded.calls.size(), 4u);
    EXPECT_EQ(static_cast<std::size_t>(recorded.default_reports), recorded.reports.size());
    EXPECT_TRUE(recorded.lines.empty());
}

} // namespace
