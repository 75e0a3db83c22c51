// The frames of the classic sparse BLAS and of the sparse solvers over the recording core: what is installed,
// what arrives, in which order, and what comes back.
#include "recorder.h"
#include "routine_call.h"

#include "xkl_service.h"
#include "xkl_solvers.h"
#include "xkl_spblas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <span>

namespace {

using steps = std::vector<std::string>;

std::span<const routine_row> rows_of(const std::string &family)
{
    if (family == "spblas")
        return {spblas_rows, static_cast<std::size_t>(spblas_row_count)};
    if (family == "solvers")
        return {solvers_rows, static_cast<std::size_t>(solvers_row_count)};
    return {rci_rows, static_cast<std::size_t>(rci_row_count)};
}

/// Arguments that the checks of the classic sparse BLAS accept. Nothing else may be read through them.
class good_arguments {
  public:
    explicit good_arguments(const routine_row &row) : kinds_(split(row.kinds))
    {
        const auto names = split(row.names);
        for (std::size_t i = 0; i < names.size(); ++i)
            addresses_.push_back(address(names[i], 64 * static_cast<int64_t>(i + 1)));
    }

    const words &addresses() const { return addresses_; }

    /// What the core gets: a length of 1 for each character, and a 32-bit 1 if the frame appends it.
    words expected(const std::string &frame) const
    {
        words all = addresses_;
        for (const std::string &kind : kinds_)
            if (kind == "c" || kind == "C")
                all.push_back(1);
        if (frame == "appending")
            all.push_back(1);
        return all;
    }

  private:
    static int64_t address(const std::string &name, int64_t unreadable)
    {
        static const std::map<std::string, const void *> read = {
            {"transa", "n"},      {"trans", "t"},  {"uplo", "U"},  {"diag", "n"},
            {"matdescra", "TLN"}, {"m", &size},    {"n", &size},   {"k", &size},
            {"lb", &size},        {"mblk", &size}, {"nnz", &size}, {"request", &size},
            {"nzmax", &size},     {"ldc", &size},  {"job", jobs},  {"ndiag", &size}};
        const auto found = read.find(name);
        return found == read.end() ? unreadable : reinterpret_cast<int64_t>(found->second);
    }

    static constexpr int64_t size = 2;
    static constexpr int64_t jobs[6] = {1, 0, 1, -5, 0, 3};

    std::vector<std::string> kinds_;
    words addresses_;
};

/// What a frame does before the core call.
steps before_core(const std::string &frame)
{
    if (frame == "guarded")
        return {"register"};
    if (frame == "solver")
        return {"register", "xkl_serv_set_progress_interface", "xkl_serv_set_pardiso_pivot"};
    if (frame == "cluster")
        return {"xkl_serv_set_progress_interface"};
    return {};
}

class sparse_frame : public testing::TestWithParam<const routine_row *> {
  protected:
    const routine_row &row = *GetParam();
    const std::string frame = row.frame, result = row.result;

    /// The part of a returned register that the caller looks at.
    int64_t seen(int64_t value) const
    {
        return result == "-" ? 0 : result == "int4" ? static_cast<int32_t>(value) : value;
    }

    int64_t expected_result() const
    {
        return seen(result == "widened" ? static_cast<int32_t>(wide) : wide);
    }

    static constexpr int64_t wide = -7 - (int64_t{3} << 32); // its lower half is negative, too
};

TEST_P(sparse_frame, every_spelling_forwards_all_arguments)
{
    const good_arguments arguments(row);
    steps spellings = split(row.spellings);
    spellings.push_back(row.body);
    for (const std::string &spelling : spellings) {
        SCOPED_TRACE(spelling);
        reset();
        recorded.integer_result = wide;
        recorded.verbose = 1; // these families leave no trace lines
        const int64_t value = call_integer(exported(spelling), arguments.addresses());
        EXPECT_EQ(seen(value), expected_result());
        steps expected = before_core(frame);
        expected.push_back(row.core_entry);
        EXPECT_EQ(recorded.order, expected);
        ASSERT_FALSE(recorded.calls.empty());
        EXPECT_EQ(recorded.calls.back().arguments, arguments.expected(frame));
        EXPECT_EQ(exported(spelling), exported(row.body));
    }
    EXPECT_TRUE(recorded.lines.empty() && recorded.reports.empty());
}

std::vector<const routine_row *> addresses_of_rows(const std::string &family)
{
    std::vector<const routine_row *> rows;
    for (const routine_row &row : rows_of(family))
        rows.push_back(&row);
    return rows;
}

const auto row_name = [](const auto &info) { return std::string(info.param->name); };
INSTANTIATE_TEST_SUITE_P(spblas, sparse_frame, testing::ValuesIn(addresses_of_rows("spblas")), row_name);
INSTANTIATE_TEST_SUITE_P(solvers, sparse_frame, testing::ValuesIn(addresses_of_rows("solvers")), row_name);
INSTANTIATE_TEST_SUITE_P(rci, sparse_frame, testing::ValuesIn(addresses_of_rows("rci")), row_name);

struct expected_rows {
    const char *names; // as a regular expression
    int count;
    std::size_t arguments;
    const char *frame;
};

/// Every row of a family belongs to one group, and each group has its rows.
void expect_groups(const std::string &family, const std::vector<expected_rows> &groups)
{
    std::size_t counted = 0;
    for (const expected_rows &group : groups) {
        int found = 0;
        for (const routine_row &row : rows_of(family))
            if (std::regex_match(row.name, std::regex(group.names))) {
                ++found;
                EXPECT_EQ(split(row.kinds).size(), group.arguments) << row.name;
                EXPECT_STREQ(row.frame, group.frame) << row.name;
            }
        EXPECT_EQ(found, group.count) << group.names;
        counted += static_cast<std::size_t>(found);
    }
    EXPECT_EQ(counted, rows_of(family).size());
}

TEST(sparse_tables, solvers_have_their_members)
{
    expect_groups("solvers", {
                                 {"PARDISO(_(S|D|SC|DC))?(_64)?", 10, 16, "solver"},
                                 {"PARDISO_(S|D|SC|DC)(_64)?_2D", 8, 16, "solver"},
                                 {"PARDISOINIT", 1, 3, "solver"},
                                 {"PARDISO_GETDIAG(_[DZ])?", 3, 5, "solver"},
                                 {"PARDISO_EXPORT(_[SDCZ])?", 5, 7, "solver"},
                                 {"PARDISO_HANDLE_(STORE|RESTORE)(_64)?", 4, 3, "solver"},
                                 {"PARDISO_HANDLE_DELETE(_64)?", 2, 2, "solver"},
                                 {"SPARSE_MATRIX_CHECKER(_INIT)?", 2, 1, "solver"},
                                 {"XKL_CVT_TO_NULL_TERMINATED_STR", 1, 4, "solver"},
                                 {"DSS_(CREATE|DELETE)", 2, 2, "solver"},
                                 {"DSS_DEFINE_STRUCTURE", 1, 7, "solver"},
                                 {"DSS_REORDER", 1, 3, "solver"},
                                 {"DSS_FACTOR_(REAL|COMPLEX)(_[SD])?", 6, 3, "solver"},
                                 {"DSS_SOLVE_(REAL|COMPLEX)(_[SD])?", 6, 5, "solver"},
                                 {"DSS_STATISTICS", 1, 4, "solver"},
                                 {"CLUSTER_SPARSE_SOLVER(_(S|D|SC|DC))?(_64)?", 10, 17, "cluster"},
                                 {"CLUSTER_SPARSE_SOLVER_(S|D|SC|DC)(_64)?_2D", 7, 17, "cluster"},
                                 {"CLUSTER_SPARSE_SOLVER_sc_64_2D", 1, 17, "cluster"},
                                 {"CLUSTER_SPARSE_SOLVER_SET_PTR(_(S|D|SC|DC|I))?", 6, 6, "cluster"},
                                 {"CLUSTER_SPARSE_SOLVER_SET_CSR_PTRS(_(S|D|SC|DC))?", 5, 7, "cluster"},
                                 {"CLUSTER_SPARSE_SOLVER_(GET_CSR_SIZE|EXPORT)(_F)?", 4, 6, "cluster"},
                             });
}

TEST(sparse_tables, iterative_solvers_have_their_members)
{
    expect_groups("rci", {
                             {"D(CG|FGMRES)(_INIT|_CHECK)?", 6, 7, "through"},
                             {"D(CG|FGMRES)_GET", 2, 8, "through"},
                             {"DCGMRHS(_CHECK)?", 2, 8, "through"},
                             {"DCGMRHS_(INIT|GET)", 2, 9, "through"},
                             {"DCSRILU0", 1, 8, "through"},
                             {"DCSRILUT", 1, 12, "through"},
                             {"[SD]TRNLSP_INIT", 2, 8, "through"},
                             {"[SD]TRNLSPBC_INIT", 2, 10, "through"},
                             {"[SD]TRNLSP_CHECK", 2, 7, "through"},
                             {"[SD]TRNLSPBC_CHECK", 2, 9, "through"},
                             {"[SD]TRNLSP(BC)?_SOLVE", 4, 4, "through"},
                             {"[SD]TRNLSP(BC)?_GET", 4, 5, "through"},
                             {"[SD](TRNLSP|TRNLSPBC|JACOBI)_DELETE", 6, 1, "through"},
                             {"[SD]JACOBI(_INIT)?", 4, 6, "through"},
                             {"[SD]JACOBIX", 2, 7, "through"},
                             {"[SD]JACOBI_SOLVE", 2, 4, "through"},
                             {"FEASTINIT", 1, 1, "through"},
                             {"[SD]FEAST_SRCI|[CZ]FEAST_HRCI", 4, 18, "through"},
                             {"[SD]FEAST_SRCI_PFILTER", 2, 19, "through"},
                             {"[SD]FEAST_SYEV|[CZ]FEAST_HEEV", 4, 15, "appending"},
                             {"[SD]FEAST_S(CSR|B)EV|[CZ]FEAST_H(CSR|B)EV", 8, 16, "appending"},
                             {"[SD]FEAST_SYGV|[CZ]FEAST_HEGV", 4, 17, "appending"},
                             {"[SD]FEAST_S(CSR|B)GV|[CZ]FEAST_H(CSR|B)GV", 8, 19, "appending"},
                         });
}

TEST(sparse_tables, classic_routines_have_their_members)
{
    const std::string type = "XKL_[SDCZ]", described = "(CSR|CSC|COO|DIA|BSR|SKY)";
    const std::string plain = "XKL_([SDCZ](CSR|COO|DIA|BSR)|CSPBLAS_[SDCZ](CSR|COO|BSR))";
    const std::string sums = type + "CSR(ADD|MULTCSR|MULTD)",
                      converters = type + "(CSR(COO|CSC|DIA|SKY|BSR)|DNSCSR)";
    std::map<std::string, int> found;
    for (const routine_row &row : rows_of("spblas"))
        for (const std::string &names :
             {type + described + "(MV|MM|SV|SM)", plain + "(GEMV|SYMV|TRSV)", sums, converters})
            found[names] +=
                std::regex_match(row.name, std::regex(names)) && std::string(row.frame) == "guarded";
    std::vector<int> counts;
    for (const auto &[names, count] : found)
        counts.push_back(count);
    std::sort(counts.begin(), counts.end());
    EXPECT_EQ(counts, (std::vector<int>{12, 24, 84, 96}));
    EXPECT_EQ(rows_of("spblas").size(), 216u);
}

TEST(solver_frame, installs_this_librarys_callbacks)
{
    reset();
    pardiso(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(registered_handler(), &cdecl_xerbla);
    ASSERT_EQ(recorded.calls.size(), 3u);
    EXPECT_EQ(recorded.calls[0].arguments, (words{reinterpret_cast<int64_t>(cdecl_progress)}));
    EXPECT_EQ(recorded.calls[1].arguments, (words{reinterpret_cast<int64_t>(cdecl_pardiso_pivot)}));
    EXPECT_EQ(recorded.calls[2].arguments, words(16, 0)) << "nothing is read or checked";
}

TEST(solver_frame, cluster_calls_leave_reporter_and_pivots_alone)
{
    reset();
    CLUSTER_SPARSE_SOLVER_sc_64_2D__(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                     nullptr);
    EXPECT_EQ(registered_handler(), nullptr);
    ASSERT_EQ(recorded.calls.size(), 2u);
    EXPECT_EQ(recorded.calls[0].arguments, (words{reinterpret_cast<int64_t>(cdecl_progress)}));
    EXPECT_EQ(recorded.calls[1].entry, "xkl_pds_cluster_sparse_solver_sc_64_2d");
}

TEST(solver_frame, text_keeps_its_hidden_length)
{
    reset();
    int8_t copy[8];
    const int64_t length = 8;
    xkl_cvt_to_null_terminated_str_(copy, &length, "inertia", 7);
    EXPECT_EQ(recorded.calls.back().arguments.at(3), 7);
}

} // namespace
