// Every exported checker against the table of argument tests: calls with random arguments, good and bad,
// must get the verdict that the table gives, and the frame above the checker must call the core or not
// accordingly.
#include "random_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace {

using namespace random_calls;

constexpr unsigned seed = 20240607;
constexpr int trials = 2000; // of each routine

const std::vector<conditions::tested_routine> &table()
{
    static const auto read = [] {
        auto blas = conditions::read_table(XKL_TEST_DATA "/blas_checks.tbl");
        const auto lapack = conditions::read_table(XKL_TEST_DATA "/lapack_checks.tbl");
        blas.insert(blas.end(), lapack.begin(), lapack.end());
        return blas;
    }();
    return read;
}

std::map<std::string, const routine_row *> checked_rows()
{
    std::map<std::string, const routine_row *> rows;
    for (const auto family : {blas_routines(), lapack_routines()})
        for (const routine_row &row : family)
            if (*row.checker)
                rows[row.name] = &row;
    return rows;
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

    /// What routines with info say by it.
    static void expect_info(const model &of, const caller &program, std::size_t failed)
    {
        if (of.has_info()) {
            EXPECT_EQ(program.info(), failed < of.bad.size() ? -int64_t(of.target(failed)) - 1 : 0);
        }
    }

    static void compare(const model &of, const drawn_call &call, std::size_t failed)
    {
        const bool good = failed == of.bad.size();
        caller program(of, call);
        recorded.reports.clear();
        recorded.calls.clear();
        recorded.order.clear();
        EXPECT_EQ(program.call_checker(), good ? 0 : 1);
        expect_report(of, failed);
        expect_info(of, program, failed);
        EXPECT_TRUE(recorded.calls.empty());

        recorded.reports.clear();
        const int64_t result = program.call_frame();
        expect_report(of, failed);
        expect_info(of, program, failed);
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

INSTANTIATE_TEST_SUITE_P(tables, checks, testing::ValuesIn(tested_routines()),
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
    EXPECT_EQ(checked.size(), 210u + 80u + 8u) << "BLAS, LAPACK and the tridiagonal solvers";
    EXPECT_EQ(in_table.size(), table().size()) << "a routine has rows in both tables";
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
constexpr known_verdict known_verdicts[] = {
    {"DGEMM", "m=0 lda=1 ldc=1", 0, ""},
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
    {"DGETRF", "m=-1", 1, "DGETRF"},
    {"DGETRF", "m=0 lda=1", 0, ""},
    {"DGETRF", "m=5 lda=4", 4, "DGETRF"},
    {"DPOTRF", "uplo=u", 0, ""},
    {"DPOTRF", "uplo=X n=-1", 1, "DPOTRF"},
    {"DGEQRF", "m=7 n=9 lwork=-1", 0, ""},
    {"DGEQRF", "m=3 n=4 lwork=3", 7, "DGEQRF"},
    {"DGEQRF", "m=0 lwork=1", 0, ""},
    {"DGEQRF", "m=0 lwork=0", 7, "DGEQRF"},
    {"DGESVD", "jobu=O jobvt=O", 2, "DGESVD"},
    {"DGESVD", "lwork=0", 0, ""},
    {"DGEEV", "n=-1", 3, "DGEEV "},
    {"DORMQR", "trans=C", 2, "DORMQR"},
    {"ZUNMQR", "trans=C", 0, ""},
    {"ZHEEVD", "lwork=0 liwork=-1", 0, ""},
    {"DSYEVD", "jobz=V n=0 lwork=1 liwork=0", 10, "DSYEVD"},
    {"DSYRDB", "kd=0 lda=0", 4, "DSYRDB"},
    {"ZHERDB", "jobz=N ldz=0", 11, "ZHERDB"},
};

TEST(check_table, known_verdicts)
{
    const auto rows = checked_rows();
    for (const known_verdict &known : known_verdicts) {
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
        if (arguments.has_info()) {
            EXPECT_EQ(arguments.integer(arguments.last()), -known.position);
        }
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
