// Every exported checker against the table of argument tests: calls with random arguments, good and bad,
// must get the verdict that the table gives, and the frame above the checker must call the core or not
// accordingly.
#include "conditions.h"
#include "recorder.h"
#include "routine_call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace {

using conditions::number;
using conditions::numbers;
using conditions::term;

constexpr unsigned seed = 20240607;
constexpr int trials = 2000; // of each routine
constexpr int64_t largest = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest = std::numeric_limits<int64_t>::min();

const std::vector<conditions::tested_routine> &table()
{
    static const auto read = conditions::read_table(XKL_TEST_DATA "/blas_checks.tbl");
    return read;
}

std::map<std::string, const routine_row *> checked_rows()
{
    std::map<std::string, const routine_row *> rows;
    for (int i = 0; i < blas_row_count; ++i)
        if (*blas_rows[i].checker)
            rows[blas_rows[i].name] = &blas_rows[i];
    return rows;
}

/// A routine, its tests ready to be evaluated.
struct model {
    model(const conditions::tested_routine &tested, const routine_row &row)
        : routine(tested), row(row), names(split(row.names)), kinds(split(row.kinds)),
          checker(exported(row.checker)), frame(exported(row.body))
    {
        for (const conditions::argument_test &test : tested.tests)
            bad.push_back(conditions::parse(test.condition, names));
        const auto found = std::find(names.begin(), names.end(), "group_count");
        group_count = static_cast<std::size_t>(found - names.begin());
    }

    bool is_letter(std::size_t i) const { return kinds[i] == "c" || kinds[i] == "C"; }
    bool is_integer(std::size_t i) const { return kinds[i] == "i" || kinds[i] == "I"; }
    bool is_array(std::size_t i) const { return kinds[i] == "C" || kinds[i] == "I"; }
    std::size_t target(std::size_t test) const { return routine.tests[test].position - 1; }

    const conditions::tested_routine &routine;
    const routine_row &row;
    const std::vector<std::string> names, kinds;
    void *const checker, *const frame;
    std::vector<term> bad;   // one a test: when the argument is bad
    std::size_t group_count; // its number, or that of the arguments if there is none
};

/// The arguments of one call: an entry each, or one for each group. Arrays and handles have only an
/// address.
struct drawn_call {
    std::vector<std::vector<int64_t>> entries;
    std::size_t groups;

    numbers of_group(std::size_t group) const
    {
        numbers values;
        for (const auto &entry : entries)
            values.push_back(entry.empty() ? number{0} : entry[std::min(group, entry.size() - 1)]);
        return values;
    }

    /// The number of the first test that fails, or that of all tests.
    std::size_t first_failure(const model &of) const
    {
        std::vector<numbers> values;
        for (std::size_t group = 0; group < std::max(groups, std::size_t{1}); ++group)
            values.push_back(of_group(group));
        const auto fails = [&](std::size_t test) {
            const std::size_t read = of.routine.tests[test].each_group ? groups : 1;
            return std::any_of(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(read),
                               [&](const numbers &of_one) { return evaluate(of.bad[test], of_one) != 0; });
        };
        std::size_t test = 0;
        while (test < of.bad.size() && !fails(test))
            ++test;
        return test;
    }
};

/// An address for the argument with the number i, behind which nothing may be read.
int64_t unreadable(std::size_t i)
{
    return static_cast<int64_t>(64 * (i + 1));
}

/// Draws calls. Good ones are made so by the table's conditions alone, test after test.
class dice {
  public:
    explicit dice(unsigned start) : bits_(start) {}

    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(bits_); }
    bool chance(std::size_t percent) { return below(100) < percent; }

    drawn_call draw(const model &of)
    {
        drawn_call call;
        const bool grouped = of.group_count < of.names.size();
        call.groups = grouped ? below(5) : 1;
        for (std::size_t i = 0; i < of.names.size(); ++i) {
            call.entries.emplace_back(of.is_array(i) ? call.groups : 1);
            for (int64_t &entry : call.entries.back())
                entry = of.is_letter(i)    ? "NnTtCcUuLlRrAaBbFfPp"[below(20)]
                        : of.is_integer(i) ? size()
                                           : unreadable(i);
        }
        if (grouped)
            call.entries[of.group_count][0] = static_cast<int64_t>(call.groups);
        return call;
    }

    /// Makes every argument good that can be; bounds beyond all integers stay broken.
    void mend(const model &of, drawn_call &call)
    {
        for (std::size_t test = 0; test < of.bad.size(); ++test) {
            std::vector<int64_t> &entries = call.entries[of.target(test)];
            if (of.target(test) == of.group_count) // drawn good
                continue;
            for (std::size_t group = 0; group < entries.size(); ++group)
                if (chance(20) || conditions::evaluate(of.bad[test], call.of_group(group)) != 0)
                    set(entries[group], of.bad[test], call.of_group(group), true);
        }
    }

    /// Makes the argument of one test bad, in one group where it has several.
    void spoil(const model &of, drawn_call &call, std::size_t test)
    {
        const std::size_t target = of.target(test);
        std::vector<int64_t> &entries = call.entries[target];
        if (entries.empty())
            return;
        const std::size_t group = below(entries.size());
        set(entries[group], of.bad[test], call.of_group(group), false);
        if (target == of.group_count)
            call.groups = 0;
    }

    /// Gives an integer a value of any size.
    void upset(const model &of, drawn_call &call)
    {
        const std::size_t i = below(of.names.size());
        std::vector<int64_t> &entries = call.entries[i];
        if (of.is_integer(i) && i != of.group_count && !entries.empty())
            entries[below(entries.size())] = anything();
    }

    /// Any integer, of any magnitude.
    int64_t anything()
    {
        static constexpr int64_t corners[] = {smallest,         smallest + 1,     -1,          0,      1,
                                              int64_t{1} << 31, int64_t{1} << 62, largest - 1, largest};
        if (chance(40))
            return corners[below(std::size(corners))];
        return static_cast<int64_t>(bits_()) >> below(64);
    }

  private:
    /// Mostly small enough to fit everywhere.
    int64_t size() { return static_cast<int64_t>(chance(95) ? below(20) : bits_() >> (1 + below(62))); }

    /// Gives the argument that a condition is about a value for which the condition does not hold, or one
    /// for which it does.
    void set(int64_t &argument, const term &condition, const numbers &values, bool good)
    {
        switch (condition.what) {
        case term::inverted:
            argument = letter(condition.parts[0].letters, good);
            break;
        case term::both:
            set(argument, condition.parts[0], values, good);
            break;
        case term::equal:
            argument = !good ? 0 : chance(50) ? 1 : anything() | 1;
            break;
        case term::less:
            argument = beside(conditions::evaluate(condition.parts[1], values), good);
            break;
        default:
            throw std::logic_error("no way to set an argument by this condition is known");
        }
    }

    /// A value at the bound or above, or below it: mostly next to it.
    int64_t beside(number bound, bool good)
    {
        const auto distance = static_cast<int64_t>(chance(70) ? 0 : below(6));
        number value = good ? bound + distance : bound - 1 - distance;
        if (!good && chance(20))
            value = chance(50) ? smallest : 0;
        return static_cast<int64_t>(std::clamp(value, number{smallest}, number{largest}));
    }

    /// A byte that is one of the letters in either case, or none of them.
    int64_t letter(const std::string &letters, bool good)
    {
        if (good)
            return letters[below(letters.size())] | (chance(50) ? 0x20 : 0);
        for (;;) {
            const char byte = chance(50) ? "NTCULRABFPX"[below(11)] : static_cast<char>(below(256));
            if (letters.find(static_cast<char>(byte & 0xdf)) == std::string::npos)
                return byte;
        }
    }

    std::mt19937_64 bits_;
};

/// A drawn call in memory, as a caller holds it: every array has exactly its entries, and is missing if
/// there are no groups.
class caller {
  public:
    caller(const model &of, const drawn_call &call) : of_(of), call_(call)
    {
        for (std::size_t i = 0; i < of.names.size(); ++i) {
            letters_.emplace_back(call.entries[i].begin(), call.entries[i].end());
            integers_.push_back(call.entries[i]);
            const void *address =
                of.is_letter(i) ? static_cast<void *>(letters_[i].data()) : integers_[i].data();
            if (of.is_array(i) && call.groups == 0)
                address = reinterpret_cast<void *>(unreadable(i));
            addresses_.push_back(of.is_letter(i) || of.is_integer(i) ? reinterpret_cast<int64_t>(address)
                                                                     : call.entries[i][0]);
        }
    }

    int64_t call_checker() const
    {
        words arguments = addresses_;
        if (of_.row.group)
            arguments.push_back(0);
        for (std::size_t i = 0; i < of_.names.size(); ++i)
            if (of_.is_letter(i))
                arguments.push_back(1);
        return call_integer(of_.checker, arguments);
    }

    int64_t call_frame() const { return call_integer(of_.frame, addresses_); }

    bool untouched() const
    {
        for (std::size_t i = 0; i < of_.names.size(); ++i)
            if (integers_[i] != call_.entries[i] ||
                !std::equal(letters_[i].begin(), letters_[i].end(), call_.entries[i].begin(),
                            [](char a, int64_t b) { return a == static_cast<char>(b); }))
                return false;
        return true;
    }

  private:
    const model &of_;
    const drawn_call &call_;
    std::vector<std::vector<char>> letters_;
    std::vector<std::vector<int64_t>> integers_;
    words addresses_;
};

std::string described(const model &of, const drawn_call &call)
{
    std::string text = of.routine.name;
    for (std::size_t i = 0; i < of.names.size(); ++i) {
        text += " " + of.names[i] + "=";
        for (const int64_t entry : call.entries[i])
            text += std::to_string(entry) + (of.is_array(i) ? "," : "");
    }
    return text;
}

class checks : public testing::TestWithParam<const conditions::tested_routine *> {
  protected:
    static void SetUpTestSuite() { std::printf("random arguments of checkers: seed %u\n", seed); }

    void SetUp() override
    {
        reset();
        recorded.forward_reports = false;
    }

    /// One report if a test failed, none otherwise, with everything in it.
    static void expect_report(const model &of, std::size_t failed)
    {
        const bool good = failed == of.bad.size();
        ASSERT_EQ(recorded.reports.size(), good ? 0u : 1u);
        if (good)
            return;
        EXPECT_EQ(recorded.reports[0].name, of.routine.reported_name);
        EXPECT_EQ(recorded.reports[0].length, static_cast<int64_t>(of.routine.reported_name.size()));
        EXPECT_EQ(recorded.reports[0].position, static_cast<int64_t>(of.routine.tests[failed].position));
    }

    static void compare(const model &of, const drawn_call &call, std::size_t failed)
    {
        const bool good = failed == of.bad.size();
        const caller program(of, call);
        recorded.reports.clear();
        recorded.calls.clear();
        recorded.order.clear();
        EXPECT_EQ(program.call_checker(), good ? 0 : 1);
        expect_report(of, failed);
        EXPECT_TRUE(recorded.calls.empty());

        recorded.reports.clear();
        const int64_t result = program.call_frame();
        expect_report(of, failed);
        ASSERT_EQ(recorded.calls.size(), good ? 1u : 0u) << "calls of the core";
        if (!good && std::string(of.row.result) != "-") {
            EXPECT_EQ(static_cast<int>(result), of.row.failed_result);
        }
        EXPECT_TRUE(program.untouched());
    }
};

TEST_P(checks, agree_with_the_table)
{
    const auto rows = checked_rows();
    ASSERT_TRUE(rows.contains(GetParam()->name)) << "is no checked routine";
    const model of(*GetParam(), *rows.at(GetParam()->name));
    dice random(seed);
    std::vector<int> first(of.bad.size() + 1); // how often each test was the first to fail, and none
    for (int trial = 0; trial < trials && !HasFailure(); ++trial) {
        drawn_call call = random.draw(of);
        const int way = trial % 5;
        for (int n = 0; way >= 3 && n < 3; ++n)
            random.upset(of, call);
        if (way != 3)
            random.mend(of, call);
        if (way == 1)
            random.spoil(of, call, trial / 5 % of.bad.size());
        for (std::size_t n = way == 2 ? 2 + random.below(3) : 0; n > 0; --n)
            random.spoil(of, call, random.below(of.bad.size()));
        const std::size_t failed = call.first_failure(of);
        ++first[failed];
        compare(of, call, failed);
        if (HasFailure())
            ADD_FAILURE() << described(of, call) << ", seed " << seed << ", trial " << trial;
    }
    for (std::size_t test = 0; test < of.bad.size() && !HasFailure(); ++test)
        EXPECT_GT(first[test], 0) << "never first to fail: " << of.routine.tests[test].condition;
    EXPECT_GT(first.back(), trials / 5) << "good calls";
}

std::vector<const conditions::tested_routine *> tested_routines()
{
    std::vector<const conditions::tested_routine *> all;
    for (const auto &routine : table())
        all.push_back(&routine);
    return all;
}

INSTANTIATE_TEST_SUITE_P(blas, checks, testing::ValuesIn(tested_routines()),
                         [](const auto &info) { return info.param->name; });

TEST(check_table, has_rows_for_every_checked_routine)
{
    std::set<std::string> in_table, checked;
    for (const auto &routine : table()) {
        in_table.insert(routine.name);
        EXPECT_FALSE(routine.tests.empty()) << routine.name;
    }
    for (const auto &[name, row] : checked_rows())
        checked.insert(name);
    EXPECT_EQ(in_table, checked);
    EXPECT_EQ(checked.size(), 210u);
}

TEST(check_table, positions_are_those_of_the_arguments_tested)
{
    const auto rows = checked_rows();
    for (const auto &routine : table()) {
        const std::vector<std::string> names = split(rows.at(routine.name)->names);
        for (const auto &test : routine.tests) {
            const std::string subject = test.condition.substr(0, test.condition.find(' '));
            ASSERT_LE(test.position, names.size()) << routine.name;
            EXPECT_EQ(names[test.position - 1], subject) << routine.name << ": " << test.condition;
        }
    }
}

struct known_verdict {
    const char *routine;
    const char *changes; // to a good call
    int position;        // 0: accepted
    const char *reported_name;
};

/// Verdicts that do not come from the table.
TEST(check_table, known_verdicts)
{
    const auto rows = checked_rows();
    for (const known_verdict &known : {
             known_verdict{"DGEMM", "m=0 lda=1 ldc=1", 0, ""},
             {"DGEMM", "transa=t", 0, ""},
             {"DGEMM", "m=5 lda=4", 8, "DGEMM "},
             {"DGER", "m=-1", 1, "DGER  "},
             {"ZHER2K", "trans=T", 2, "ZHER2K"},
             {"DSYRK", "trans=C", 0, ""},
             {"CSYRK", "trans=C", 2, "CSYRK "},
             {"DGBMV", "kl=4 ku=4", 8, "DGBMV "},
             {"DGEMMT", "uplo=N", 1, "DGEMMT"},
             {"SGEM2VU", "incy2=0", 14, "SGEM2VU"},
             {"DGEMM_BATCH", "group_count=0 m=-1", 0, ""},
             {"DGEMM_BATCH", "group_count=-1 transa=X", 14, "DGEMM_BATCH "},
             {"DGEMM_BATCH", "group_size=-1", 15, "DGEMM_BATCH "},
             {"DAXPY_BATCH_STRIDED", "stridex=0 n=-1 incx=0 stridey=1", 0, ""},
             {"DAXPY_BATCH_STRIDED", "n=3 incy=-2 stridey=4 batch_size=-1", 8, "DAXPY_BATCH_STRIDED "},
             {"DAXPY_BATCH_STRIDED", "batch_size=-1", 9, "DAXPY_BATCH_STRIDED "},
             {"GEMM_S8U8S32_PACK_GET_SIZE", "m=-1", 2, "GEMM_S8U8S32_PACK_GET_SIZE "},
             {"GEMM_BF16BF16F32_PACK", "identifier=C", 1, "GEMM_BF16BF16F32_PACK"},
         }) {
        SCOPED_TRACE(std::string(known.routine) + " " + known.changes);
        arguments_of arguments(*rows.at(known.routine));
        for (const std::string &change : split(known.changes)) {
            const std::size_t sign = change.find('=');
            const auto &names = arguments.names;
            const auto i = static_cast<std::size_t>(
                std::find(names.begin(), names.end(), change.substr(0, sign)) - names.begin());
            const std::string value = change.substr(sign + 1);
            if (std::isalpha(value[0]))
                arguments.set_letter(i, value[0]);
            else
                arguments.set_integer(i, std::stoll(value));
        }
        reset();
        const int64_t verdict =
            call_integer(exported(rows.at(known.routine)->checker), arguments.addresses());
        EXPECT_EQ(verdict, known.position != 0);
        ASSERT_EQ(recorded.reports.size(), known.position != 0 ? 1u : 0u);
        if (known.position != 0) {
            EXPECT_EQ(recorded.reports[0].position, known.position);
            EXPECT_EQ(recorded.reports[0].name, known.reported_name);
        }
    }
}

TEST(check_table, conditions_are_read_as_they_are_written)
{
    const std::vector<std::string> names = {"m", "n", "trans"};
    const auto holds = [&](const char *text) {
        return conditions::evaluate(conditions::parse(text, names), {largest, smallest, 't'});
    };
    EXPECT_TRUE(holds("trans in NT and m > n or m < 0"));
    EXPECT_TRUE(holds("trans=N ? m < 0 : m >= 0"));
    EXPECT_TRUE(holds("trans not in NC and trans!=N and n <= -1"));
    EXPECT_TRUE(holds("m*m - n*n = -2*m - 1")) << "squares of the largest integers";
    EXPECT_TRUE(holds("max(1, m, 2) - min(m, n) = m - n and abs(n) = m + 1 and m != n"));
    for (const char *wrong :
         {"k < 0", "m < ", "m < 0 n", "trans in nt", "max(m, n", "1 in N", "trans=N ? m"})
        EXPECT_THROW(conditions::parse(wrong, names), std::invalid_argument) << wrong;
}

} // namespace
