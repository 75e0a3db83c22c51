// The matrix copies over the recording core: both bodies, their trace lines, and their checks against a
// model that knows nothing of how the library makes them.
#include "matcopy_call.h"

#include <array>
#include <random>

namespace {

using steps = std::vector<std::string>;
using matcopy::row_of;

class copies : public testing::TestWithParam<const routine_row *> {
  protected:
    void SetUp() override { reset(); }

    const routine_row &row = *GetParam();

    /// Calls by address or by value, and returns the steps taken.
    static steps take(matcopy::call &call, bool by_value, int32_t verbose = 0,
                      const std::vector<double> &clock = {})
    {
        reset();
        recorded.verbose = verbose;
        recorded.clock = clock;
        if (by_value)
            call.by_value(call.row.mixed);
        else
            call.by_address(call.row.body);
        return recorded.order;
    }
};

TEST_P(copies, both_bodies_pass_values_to_the_core)
{
    matcopy::call call(row);
    for (const bool by_value : {false, true}) {
        for (int round = 0; round < 2; ++round) // the flag is fetched every time
            EXPECT_EQ(take(call, by_value), (steps{"register", "verbose_mode", row.core_entry}));
        ASSERT_EQ(recorded.calls.size(), 1u);
        EXPECT_EQ(recorded.calls[0].arguments, call.expected_words());
        EXPECT_TRUE(recorded.reports.empty());
    }
    for (const std::string &spelling : split(row.spellings))
        EXPECT_EQ(exported(spelling), exported(row.body));
    EXPECT_NE(exported(row.mixed), exported(row.body));
}

TEST_P(copies, traced_call_leaves_its_line)
{
    matcopy::call call(row);
    if (!call.is_batch()) {
        call.set("cols", (int64_t{1} << 33) + 5); // by address only the lower half is printed
        call.set("rows", 0);
    }
    for (const bool by_value : {false, true}) {
        EXPECT_EQ(take(call, by_value, 1, {10, 12.5}),
                  (steps{"register", "verbose_mode", "clock", row.core_entry, "clock", "line"}));
        ASSERT_EQ(recorded.lines.size(), 1u);
        EXPECT_EQ(recorded.lines[0].text, call.expected_line(by_value));
        EXPECT_EQ(recorded.lines[0].domain, 2);
        EXPECT_EQ(recorded.lines[0].seconds, 2.5);
        EXPECT_EQ(recorded.calls[0].arguments, call.expected_words());
        take(call, by_value, 1, {0, 2.5});
        EXPECT_EQ(recorded.lines[0].seconds, 2.5) << "a clock may start at 0";
    }
}

TEST_P(copies, refused_call_leaves_its_report_and_its_line)
{
    matcopy::call call(row);
    call.set("ordering", 'X');
    for (const bool by_value : {false, true}) {
        EXPECT_EQ(take(call, by_value), (steps{"register", "verbose_mode", "report"}));
        EXPECT_EQ(take(call, by_value, 1),
                  (steps{"register", "verbose_mode", "clock", "report", "clock", "line"}));
        ASSERT_EQ(recorded.reports.size(), 1u);
        EXPECT_EQ(recorded.reports[0].name, row.body) << "reports have the lower-case name";
        EXPECT_EQ(recorded.reports[0].position, 1);
        EXPECT_EQ(recorded.default_reports, 1) << "the report goes down the chain";
        EXPECT_EQ(recorded.lines[0].text, call.expected_line(by_value));
    }
}

/// When an argument is bad, and what follows.
struct argument_rule {
    enum outcome { refuse, go_on, accept };
    std::size_t position;
    outcome then;
    std::string bad;
};

/// The rules of a routine. Those of a group are asked group after group.
struct rules {
    std::vector<argument_rule> first, each_group;
};

constexpr auto refuse = argument_rule::refuse, go_on = argument_rule::go_on, accept = argument_rule::accept;

const argument_rule ordering = {1, refuse, "ordering not in CR"};
const std::string by_columns = "(ordering=C ? rows : cols)", by_rows = "(ordering=C ? cols : rows)";

std::string op(const std::string &trans)
{
    return "(" + trans + " in TC ? " + by_rows + " : " + by_columns + ")";
}

std::string below(const std::string &ld, const std::string &line)
{
    return ld + " = 0 or " + ld + " < " + line;
}

std::vector<argument_rule> copy(std::size_t ldb)
{
    return {{7, refuse, below("lda", by_columns)},
            {2, refuse, "trans not in NTCR"},
            {ldb, refuse, below("ldb", op("trans"))}};
}

std::vector<argument_rule> sum(std::size_t lda, std::size_t ldb, std::size_t ldc)
{
    return {ordering,
            {2, go_on, "transa not in NTCR"},
            {lda, refuse, "transa in NTCR and (" + below("lda", op("transa")) + ")"},
            {3, go_on, "transb not in NTCR"},
            {ldb, refuse, "transb in NTCR and (" + below("ldb", op("transb")) + ")"},
            {ldc, accept, below("ldc", by_columns)}};
}

std::vector<argument_rule> joined(std::vector<argument_rule> head, const std::vector<argument_rule> &tail)
{
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

const std::map<std::string, rules> rules_by_routine = {
    {"OMATCOPY", {joined({ordering}, copy(9)), {}}},
    {"IMATCOPY", {joined({ordering}, copy(8)), {}}},
    {"OMATCOPY2",
     {{{8, refuse, "stridea = 0"},
       {11, go_on, "strideb = 0"},
       ordering,
       {7, refuse, below("lda", "stridea * (" + by_columns + " - 1) + 1")},
       {2, accept, "trans not in NTCR"},
       {10, refuse, below("ldb", "strideb * (" + op("trans") + " - 1) + 1")}},
      {}}},
    {"OMATADD", {sum(8, 11, 13), {}}},
    {"OMATCOPY_BATCH_STRIDED",
     {joined({{8, refuse, "stridea = 0"}, {11, refuse, "strideb = 0"}, ordering}, copy(10)), {}}},
    {"IMATCOPY_BATCH_STRIDED", {joined({{9, refuse, "stride = 0"}, ordering}, copy(8)), {}}},
    {"OMATADD_BATCH_STRIDED",
     {joined({{9, refuse, "stridea = 0"}, {13, refuse, "strideb = 0"}, {16, refuse, "stridec = 0"}},
             sum(8, 12, 15)),
      {}}},
    {"OMATCOPY_BATCH", {{ordering}, copy(9)}},
    {"IMATCOPY_BATCH", {{ordering}, copy(8)}},
};

/// What is reported, and whether the call goes no further.
struct verdict {
    std::vector<int64_t> positions;
    bool refused = false, decided = false;
};

/// The rules of a routine, ready to be asked.
class model {
  public:
    explicit model(const routine_row &row) : known_(rules_by_routine.at(std::string(row.name).substr(5)))
    {
        for (const argument_rule &rule : all())
            bad_.push_back(conditions::parse(rule.bad, split(row.names)));
    }

    std::vector<argument_rule> all() const { return joined(known_.first, known_.each_group); }

    verdict judge(const matcopy::call &call) const
    {
        verdict result;
        judge(known_.first, 0, call.numbers_of(0), result);
        for (std::size_t group = 0; !known_.each_group.empty() && group < call.groups(); ++group)
            judge(known_.each_group, known_.first.size(), call.numbers_of(group), result);
        return result;
    }

  private:
    void judge(const std::vector<argument_rule> &list, std::size_t first,
               const conditions::numbers &numbers, verdict &so_far) const
    {
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (so_far.decided || conditions::evaluate(bad_[first + i], numbers) == 0)
                continue;
            so_far.positions.push_back(static_cast<int64_t>(list[i].position));
            so_far.refused = list[i].then == refuse;
            so_far.decided = list[i].then != go_on;
        }
    }

    const rules &known_;
    std::vector<conditions::term> bad_; // those of `first`, then those of a group
};

std::vector<int64_t> reported_positions()
{
    std::vector<int64_t> positions;
    for (const error_report &report : recorded.reports)
        positions.push_back(report.position);
    return positions;
}

/// Changes arguments at random: often to values near the bounds, sometimes to anything.
class dice {
  public:
    void throw_for(matcopy::call &call)
    {
        for (std::size_t i = 0; i < call.names.size(); ++i)
            for (std::size_t group = 0; group < call.entry_count(i); ++group)
                if (call.is_letter(i))
                    call.set(call.names[i], letter(call.names[i] == "ordering"), group);
                else if (call.is_size(i) && !call.names[i].starts_with("group"))
                    call.set(call.names[i], size(call.names[i]), group);
    }

  private:
    int64_t letter(bool ordering)
    {
        const std::string good = ordering ? "CcRr" : "NnTtCcRr";
        return chance(95) ? good[below(good.size())] : static_cast<int64_t>(static_cast<char>(below(256)));
    }

    int64_t size(const std::string &name)
    {
        const bool stride = name.starts_with("stride");
        if (chance(3)) // of strides only those whose product with any size the model can hold
            return std::array<int64_t, 4>{int64_t{1} << 62, int64_t{1} << 32, -1,
                                          -3}[below(stride ? 2 : 4)];
        if (stride)
            return static_cast<int64_t>(chance(95) ? 1 + below(3) : 0);
        return static_cast<int64_t>(name.starts_with("ld") ? below(chance(50) ? 5 : 12) : below(5));
    }

    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(bits_); }
    bool chance(std::size_t percent) { return below(100) < percent; }

    std::mt19937_64 bits_{20250311};
};

TEST_P(copies, checks_agree_with_the_model)
{
    const model expectations(row);
    dice random;
    std::map<std::vector<int64_t>, int> seen; // how often each sequence of reports came
    for (int trial = 0; trial < 2000 && !HasFailure(); ++trial) {
        matcopy::call call(row, trial % 3);
        random.throw_for(call);
        const verdict expected = expectations.judge(call);
        ++seen[expected.positions];
        reset();
        EXPECT_EQ(call.checker_verdict(), expected.refused);
        EXPECT_EQ(reported_positions(), expected.positions);
        for (const bool by_value : {false, true}) {
            take(call, by_value);
            EXPECT_EQ(reported_positions(), expected.positions);
            ASSERT_EQ(recorded.calls.size(), expected.refused ? 0u : 1u);
            if (!expected.refused) {
                EXPECT_EQ(recorded.calls[0].arguments, call.expected_words());
            }
        }
        if (HasFailure())
            ADD_FAILURE() << call.described() << ", trial " << trial;
    }
    for (const argument_rule &rule : expectations.all())
        EXPECT_GT(seen[{static_cast<int64_t>(rule.position)}], 0) << "never bad alone: " << rule.bad;
    EXPECT_GT(seen[{}], 200) << "good calls";
}

std::vector<const routine_row *> all_rows()
{
    std::vector<const routine_row *> rows;
    for (const routine_row &row : matcopy::routines())
        rows.push_back(&row);
    return rows;
}

INSTANTIATE_TEST_SUITE_P(matcopy, copies, testing::ValuesIn(all_rows()),
                         [](const auto &info) { return std::string(info.param->name); });

struct known_call {
    const char *routine;
    const char *changes; // to a good call
    std::vector<int64_t> positions;
    bool refused;
};

TEST(matcopy_checks, known_verdicts)
{
    for (const known_call &known : {
             known_call{"XKL_DOMATCOPY", "rows=0 cols=0 lda=0 ldb=0", {7}, true},
             {"XKL_DOMATCOPY", "rows=0 cols=0 lda=1 ldb=1", {}, false},
             {"XKL_DOMATCOPY", "ordering=R trans=T rows=3 cols=5 lda=5 ldb=3", {}, false},
             {"XKL_DOMATCOPY", "ordering=R trans=T rows=3 cols=5 lda=4 ldb=3", {7}, true},
             {"XKL_DOMATCOPY", "ordering=R trans=T rows=3 cols=5 lda=5 ldb=2", {9}, true},
             {"XKL_ZOMATCOPY", "trans=X lda=2", {7}, true},
             {"XKL_ZOMATCOPY", "trans=X ldb=2", {2}, true},
             {"XKL_SOMATCOPY", "rows=-1", {7}, true},
             {"XKL_SIMATCOPY", "trans=c ldb=3", {8}, true},
             {"XKL_DOMATCOPY2", "strideb=0", {11}, false},
             {"XKL_DOMATCOPY2", "strideb=0 ordering=N", {11, 1}, true},
             {"XKL_DOMATCOPY2", "trans=X ldb=0", {2}, false},
             {"XKL_DOMATCOPY2", "stridea=0 strideb=0", {8}, true},
             {"XKL_DOMATCOPY2", "rows=3 stridea=2 lda=4", {7}, true},
             {"XKL_DOMATCOPY2", "rows=3 stridea=2 lda=5", {}, false},
             {"XKL_DOMATCOPY2", "rows=0 stridea=2 lda=1", {}, false},
             {"XKL_DOMATCOPY2",
              "rows=4611686018427387905 stridea=4 lda=1",
              {7},
              true}, // 2^64 + 1 are needed
             {"XKL_DOMATADD", "ldc=2", {13}, false},
             {"XKL_DOMATADD", "transa=X lda=0 transb=X ldb=0 ldc=0", {2, 3, 13}, false},
             {"XKL_DOMATADD", "transa=T lda=3", {8}, true},
             {"XKL_COMATADD_BATCH_STRIDED", "stridec=0 ldc=0", {16}, true},
             {"XKL_COMATADD_BATCH_STRIDED", "ldc=0 batch_size=0", {15}, false},
         }) {
        SCOPED_TRACE(std::string(known.routine) + " " + known.changes);
        matcopy::call call(row_of(known.routine));
        for (const std::string &change : split(known.changes)) {
            const std::size_t sign = change.find('=');
            const std::string value = change.substr(sign + 1);
            call.set(change.substr(0, sign), std::isalpha(value[0]) ? value[0] : std::stoll(value));
        }
        reset();
        EXPECT_EQ(call.checker_verdict(), known.refused);
        EXPECT_EQ(reported_positions(), known.positions);
    }
}

TEST(matcopy_checks, batches_are_tested_group_by_group_and_without_groups_not_at_all)
{
    matcopy::call call(row_of("XKL_DOMATCOPY_BATCH"), 3);
    call.set("lda", 0, 2); // the first test of the last group
    call.set("ldb", 0, 1); // the last test of the one before
    reset();
    EXPECT_EQ(call.checker_verdict(), 1);
    EXPECT_EQ(reported_positions(), std::vector<int64_t>{9});
    for (const char *name : {"lda", "ldb"})
        call.set(name, 0, 0);
    call.set("group_count", 0);
    reset();
    EXPECT_EQ(call.checker_verdict(), 0);
    EXPECT_TRUE(recorded.reports.empty());
}

TEST(matcopy_trace, formats_that_programs_parse)
{
    const std::string two_sizes = "%c, %c, %zu, %zu, ", three_letters = "%c, " + two_sizes;
    for (const std::string &format : {
             "XKL_DOMATCOPY(" + two_sizes + "%f, %p, %zu, %p, %zu)",
             "XKL_DIMATCOPY(" + two_sizes + "%f, %p, %zu, %zu)",
             "XKL_DOMATCOPY2(" + two_sizes + "%f, %p, %zu, %zu, %p, %zu, %zu)",
             "XKL_DOMATADD(" + three_letters + "%f, %p, %zu, %f, %p, %zu, %p, %zu)",
             "XKL_COMATCOPY(" + two_sizes + "%p, %p, %zu, %p, %zu)",
             "XKL_DOMATCOPY_BATCH_STRIDED(" + two_sizes + "%f, %p, %zu, %zu, %p, %zu, %zu, %zu)",
             "XKL_DOMATADD_BATCH_STRIDED(" + three_letters +
                 "%f, %p, %zu, %zu, %f, %p, %zu, %zu, %p, %zu, %zu, %zu)",
             std::string("XKL_DOMATCOPY_BATCH(%c, %p, %p, %p, %p, %p, %p, %p, %p, %zu, %p)"),
             std::string("XKL_DIMATCOPY_BATCH(%c, %p, %p, %p, %p, %p, %p, %p, %zu, %p)"),
         }) {
        std::string by_address = format;
        for (std::size_t at; (at = by_address.find("%zu")) != std::string::npos;)
            by_address.replace(at, 3, "%d");
        EXPECT_EQ(row_of(format.substr(0, format.find('('))).format, by_address);
    }
}

} // namespace
