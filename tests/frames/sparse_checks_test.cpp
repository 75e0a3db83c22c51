// The checkers of the classic sparse BLAS against a model that goes by the names of the arguments: calls with
// random arguments, good and bad, and verdicts known by heart.
#include "recorder.h"
#include "routine_call.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <limits>
#include <map>
#include <random>
#include <set>

namespace {

constexpr unsigned seed = 20261123;
constexpr int trials = 3000; // of each routine

bool among(char given, const std::string &letters)
{
    return letters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(given)))) !=
           std::string::npos;
}

/// The values of one call by name. Arrays have no values: nothing is read of them.
struct values {
    std::map<std::string, std::string> letters;
    std::map<std::string, int64_t> integers;
    int64_t job[6];
};

bool good_for_product(const std::string &descr)
{
    switch (std::toupper(static_cast<unsigned char>(descr[0]))) {
    case 'G':
        return true;
    case 'T':
    case 'S':
    case 'H':
        return among(descr[1], "LU") && among(descr[2], "NU");
    case 'D':
        return among(descr[2], "NU");
    case 'A':
        return among(descr[1], "LU");
    default:
        return false;
    }
}

bool good_for_solve(const std::string &descr)
{
    return among(descr[0], "TD") && among(descr[1], "LU") && among(descr[2], "NU");
}

bool is_from_0_to(int64_t most, int64_t value)
{
    return value >= 0 && value <= most;
}

/// What the routine's name says about its checks.
class model {
  public:
    explicit model(const routine_row &row) : row(row), name(row.name), names(split(row.names)) {}

    const routine_row &row;
    const std::string name;
    const std::vector<std::string> names;

    bool ends_in(const std::string &operation) const { return name.ends_with(operation); }
    bool converts() const { return names[0] == "job"; }

    /// Whether the values tell that the argument is bad.
    bool is_bad(const std::string &argument, const values &given) const
    {
        static const std::set<std::string> sizes = {"m", "n", "k", "lb", "mblk"}, counts = {"nnz", "ndiag"};
        if (argument == "transa" || argument == "trans")
            return !among(given.letters.at(argument)[0], "NTC");
        if (argument == "uplo")
            return !among(given.letters.at(argument)[0], "LU");
        if (argument == "diag")
            return !among(given.letters.at(argument)[0], "NU");
        if (argument == "matdescra")
            return ends_in("MV") || ends_in("MM") ? !good_for_product(given.letters.at(argument))
                                                  : !good_for_solve(given.letters.at(argument));
        if (argument == "job")
            return bad_job(given.job);
        if (argument == "request")
            return !is_from_0_to(2, given.integers.at(argument));
        if (argument == "nzmax")
            return given.integers.at("request") == 0 && given.integers.at(argument) < 0;
        if (sizes.contains(argument) || (counts.contains(argument) && !converts()) ||
            (argument == "ldc" && ends_in("MULTD")))
            return given.integers.at(argument) < 0;
        return false;
    }

    /// The place of the first bad argument, or 0.
    int64_t first_bad(const values &given) const
    {
        for (std::size_t i = 0; i < names.size(); ++i)
            if (is_bad(names[i], given))
                return static_cast<int64_t>(i) + 1;
        return 0;
    }

    /// The places of the arguments that can be bad.
    std::set<int64_t> judged() const
    {
        values worst;
        for (const std::string &each : names) {
            worst.letters[each] = "???";
            worst.integers[each] = -1;
        }
        std::fill(std::begin(worst.job), std::end(worst.job), -1);
        std::set<int64_t> places;
        for (std::size_t i = 0; i < names.size(); ++i) {
            worst.integers["request"] = names[i] == "nzmax" ? 0 : -1;
            if (is_bad(names[i], worst))
                places.insert(static_cast<int64_t>(i) + 1);
        }
        return places;
    }

  private:
    bool bad_job(const int64_t *job) const
    {
        const bool coordinates = ends_in("CSRCOO");
        const bool room = coordinates || ends_in("CSRSKY") || ends_in("DNSCSR");
        return !is_from_0_to(coordinates ? 2 : 1, job[0]) || !is_from_0_to(1, job[1]) ||
               !is_from_0_to(1, job[2]) || (room && job[4] < 0) ||
               (coordinates && !is_from_0_to(3, job[5]));
    }
};

/// A call's values in memory. Arguments without values point to where nothing may be read.
class caller {
  public:
    caller(const model &of, values &given)
    {
        for (std::size_t i = 0; i < of.names.size(); ++i) {
            const std::string &name = of.names[i];
            const auto letter = given.letters.find(name);
            const auto integer = given.integers.find(name);
            addresses_.push_back(name == "job"                     ? as_word(given.job)
                                 : letter != given.letters.end()   ? as_word(letter->second.data())
                                 : integer != given.integers.end() ? as_word(&integer->second)
                                                                   : 64 * static_cast<int64_t>(i + 1));
        }
    }

    const words &addresses() const { return addresses_; }

  private:
    static int64_t as_word(const void *address) { return reinterpret_cast<int64_t>(address); }
    words addresses_;
};

/// What is read of a routine's arguments, by the kinds of the table.
class dice {
  public:
    dice() : bits_(seed) {}

    /// Bad arguments in about one call of two, at most places.
    values draw(const model &of)
    {
        values given;
        const std::size_t percent = below(2) ? 0 : 40;
        const auto kinds = split(of.row.kinds);
        for (std::size_t i = 0; i < of.names.size(); ++i)
            if (kinds[i] == "c")
                given.letters[of.names[i]] = letter(of.names[i], percent);
            else if (kinds[i] == "C")
                given.letters[of.names[i]] = description(percent);
            else if (kinds[i] == "i")
                given.integers[of.names[i]] = integer(percent);
        for (int64_t &entry : given.job)
            entry = below(100) < percent / 4 ? integer(50) : static_cast<int64_t>(below(2));
        if (given.integers.contains("request") && below(100) >= percent)
            given.integers["request"] = static_cast<int64_t>(below(3));
        return given;
    }

  private:
    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(bits_); }

    char one_of(const std::string &letters)
    {
        const char drawn = letters[below(letters.size())];
        return static_cast<char>(below(2) ? std::tolower(drawn) : drawn);
    }

    std::string letter(const std::string &name, std::size_t percent)
    {
        if (below(100) < percent / 2)
            return {static_cast<char>(below(256))};
        return {one_of(name == "uplo" ? "LU" : name == "diag" ? "NU" : "NTC")};
    }

    std::string description(std::size_t percent)
    {
        std::string drawn = {one_of(percent ? "GTSHDAX" : "TD"), one_of("LU"), one_of("NU"), 'F', '?', '?'};
        if (below(100) < percent / 2)
            drawn[below(3)] = static_cast<char>(below(256));
        return drawn;
    }

    int64_t integer(std::size_t percent)
    {
        static constexpr int64_t bad[] = {-1, std::numeric_limits<int64_t>::min(), -(int64_t{1} << 32), -3};
        static constexpr int64_t good[] = {
            0, 1, 2, 7, std::numeric_limits<int64_t>::max(), int64_t{1} << 32};
        return below(100) < percent / 2 ? bad[below(std::size(bad))] : good[below(std::size(good))];
    }

    std::mt19937_64 bits_;
};

class sparse_checks : public testing::TestWithParam<const routine_row *> {
  protected:
    static void SetUpTestSuite() { std::printf("random arguments of checkers: seed %u\n", seed); }

    static void expect_report(const model &of, int64_t position)
    {
        ASSERT_EQ(recorded.reports.size(), position ? 1u : 0u);
        if (position == 0)
            return;
        EXPECT_EQ(recorded.reports[0].name, of.name);
        EXPECT_EQ(recorded.reports[0].length, static_cast<int64_t>(of.name.size()));
        EXPECT_EQ(recorded.reports[0].position, position);
    }

    static void compare(const model &of, values &given, int64_t position)
    {
        const caller program(of, given);
        reset();
        recorded.integer_result = 77;
        EXPECT_EQ(call_integer(exported(of.row.checker), program.addresses()), position != 0);
        expect_report(of, position);
        EXPECT_TRUE(recorded.calls.empty());
        reset();
        recorded.integer_result = 77;
        EXPECT_EQ(call_integer(exported(of.row.body), program.addresses()), position ? 1 : 77);
        expect_report(of, position);
        EXPECT_EQ(recorded.calls.size(), position ? 0u : 1u);
        EXPECT_EQ(recorded.default_reports, position ? 1 : 0) << "the report goes down the chain";
    }
};

TEST_P(sparse_checks, agree_with_the_model)
{
    const model of(*GetParam());
    dice random;
    std::map<int64_t, int> found;
    for (int trial = 0; trial < trials && !HasFailure(); ++trial) {
        values given = random.draw(of);
        const int64_t position = of.first_bad(given);
        ++found[position];
        compare(of, given, position);
        if (HasFailure())
            ADD_FAILURE() << "trial " << trial << ", the model says " << position;
    }
    for (const int64_t place : of.judged())
        EXPECT_GT(found[place], 0) << "never first to be bad: argument " << place;
    EXPECT_GT(found[0], trials / 10) << "good calls";
}

/// One type of each row: the others differ in nothing that is read.
std::vector<const routine_row *> rows_of_one_type()
{
    std::vector<const routine_row *> rows;
    for (int i = 0; i < spblas_row_count; ++i) {
        const std::string name = spblas_rows[i].name;
        if (name.starts_with("XKL_D") || name.starts_with("XKL_CSPBLAS_Z"))
            rows.push_back(&spblas_rows[i]);
    }
    return rows;
}
INSTANTIATE_TEST_SUITE_P(classic, sparse_checks, testing::ValuesIn(rows_of_one_type()),
                         [](const auto &info) { return std::string(info.param->name); });

const routine_row &row_named(const std::string &name)
{
    for (int i = 0; i < spblas_row_count; ++i)
        if (name == spblas_rows[i].name)
            return spblas_rows[i];
    throw std::out_of_range(name);
}

struct known_verdict {
    const char *routine;
    const char *changes; // to a good call
    int64_t position;    // 0: accepted
};

constexpr known_verdict known_verdicts[] = {
    {"XKL_DCSRMV", "transa=n", 0},
    {"XKL_DCSRMV", "transa=X m=-1", 1},
    {"XKL_DCSRMV", "m=-1 k=-1", 2},
    {"XKL_DCSRMV", "k=-1 matdescra=???", 3},
    {"XKL_DCSRMV", "matdescra=G??", 0},
    {"XKL_DCSRMV", "matdescra=TL?", 5},
    {"XKL_DCSRMV", "matdescra=D?N", 0},
    {"XKL_DCSRMV", "matdescra=au?", 0},
    {"XKL_DCSRMV", "matdescra=X", 5},
    {"XKL_DCSRMV", "m=0 k=0", 0},
    {"XKL_DCSRMM", "ldb=-1 ldc=0", 0},
    {"XKL_DCSRMM", "matdescra=S?U", 6},
    {"XKL_DCSRSV", "matdescra=D?N", 4},
    {"XKL_DCSRSV", "matdescra=dln", 0},
    {"XKL_DCSRSV", "matdescra=GLN", 4},
    {"XKL_DCSRGEMV", "transa=L", 1},
    {"XKL_CSPBLAS_DCSRGEMV", "m=-5", 2},
    {"XKL_DCSRSYMV", "uplo=N", 1},
    {"XKL_DCSRTRSV", "transa=X diag=X", 2},
    {"XKL_DCSRTRSV", "diag=L m=-1", 3},
    {"XKL_DCSRTRSV", "m=-1", 4},
    {"XKL_DCSRADD", "request=3", 2},
    {"XKL_DCSRADD", "request=-1", 2},
    {"XKL_DCSRADD", "trans=X request=3", 1},
    {"XKL_DCSRADD", "request=1 nzmax=-1", 0},
    {"XKL_DCSRADD", "request=0 nzmax=-1", 16},
    {"XKL_DCSRADD", "n=-1 nzmax=-1", 5},
    {"XKL_DCSRMULTCSR", "k=-1", 6},
    {"XKL_DCSRMULTCSR", "request=0 nzmax=-1", 16},
    {"XKL_DCSRMULTD", "ldc=-1", 12},
    {"XKL_DCSRMULTD", "k=-1 ldc=-1", 4},
    {"XKL_DCSRCOO", "job=2,1,1,-9,0,3", 0},
    {"XKL_DCSRCOO", "job=3,0,0,0,0,0", 1},
    {"XKL_DCSRCOO", "job=0,-1,0,0,0,0", 1},
    {"XKL_DCSRCOO", "job=0,0,2,0,0,0", 1},
    {"XKL_DCSRCOO", "job=0,0,0,0,-1,0", 1},
    {"XKL_DCSRCOO", "job=0,0,0,0,0,4", 1},
    {"XKL_DCSRCOO", "n=-1", 2},
    {"XKL_ZDNSCSR", "n=-1", 3},
    {"XKL_DBSRMV", "lb=-1 matdescra=X", 4},
    {"XKL_DBSRSM", "matdescra=GUN", 6},
    {"XKL_DCOOMV", "nnz=-1", 9},
    {"XKL_DDIASV", "ndiag=-1", 8},
    {"XKL_DSKYMM", "n=-1", 3},
};

TEST(known_sparse_verdicts, of_all_kinds)
{
    for (const known_verdict &known : known_verdicts) {
        SCOPED_TRACE(std::string(known.routine) + " " + known.changes);
        const model of(row_named(known.routine));
        values given;
        for (const std::string &name : of.names) {
            given.letters[name] = name == "matdescra" ? "TLN" : name == "uplo" ? "L" : "N";
            given.integers[name] = 2;
        }
        const auto kinds = split(of.row.kinds);
        for (std::size_t i = 0; i < kinds.size(); ++i)
            (kinds[i] == "c" || kinds[i] == "C") ? given.integers.erase(of.names[i])
                                                 : given.letters.erase(of.names[i]);
        std::fill(std::begin(given.job), std::end(given.job), 1);
        for (const std::string &change : split(known.changes)) {
            const std::size_t sign = change.find('=');
            const std::string name = change.substr(0, sign), value = change.substr(sign + 1);
            if (name == "job")
                std::sscanf(value.c_str(), "%ld,%ld,%ld,%ld,%ld,%ld", &given.job[0], &given.job[1],
                            &given.job[2], &given.job[3], &given.job[4], &given.job[5]);
            else if (given.letters.contains(name))
                given.letters[name] = value;
            else
                given.integers[name] = std::stoll(value);
        }
        const caller program(of, given);
        reset();
        EXPECT_EQ(call_integer(exported(of.row.checker), program.addresses()), known.position != 0);
        ASSERT_EQ(recorded.reports.size(), known.position ? 1u : 0u);
        if (known.position) {
            EXPECT_EQ(recorded.reports[0].position, known.position);
            EXPECT_EQ(recorded.reports[0].name, known.routine);
        }
    }
}

TEST(known_sparse_verdicts, a_general_matrix_is_described_by_one_letter)
{
    const long page = sysconf(_SC_PAGESIZE);
    char *const pages =
        static_cast<char *>(mmap(nullptr, static_cast<std::size_t>(2 * page), PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(pages, MAP_FAILED);
    ASSERT_EQ(mprotect(pages + page, static_cast<std::size_t>(page), PROT_NONE), 0);
    pages[page - 1] = 'g';
    const int64_t size = 1;
    const auto word = [](const void *address) { return reinterpret_cast<int64_t>(address); };
    reset();
    // The checker's own arguments alone: what follows is missing.
    EXPECT_EQ(call_integer(exported("xkl_spblas_errchk_xkl_dcsrmv"),
                           {word("N"), word(&size), word(&size), 0, word(pages + page - 1), 0}),
              0);
    EXPECT_TRUE(recorded.reports.empty());
    munmap(pages, static_cast<std::size_t>(2 * page));
}

} // namespace
