// What optimize chooses, as its verbose lines tell it, and that the choices multiply and solve alike.
#include "inspector_matrix.h"

#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {
using namespace inspector_test;

SPARSE_ROUTINE(mv);

constexpr auto plain = SPARSE_OPERATION_NON_TRANSPOSE, turned = SPARSE_OPERATION_TRANSPOSE;
constexpr matrix_descr lower{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_LOWER, SPARSE_DIAG_NON_UNIT};

/// A band matrix in rows that are not in order; one row reaches further when it is to be uneven
template <class T>
struct band {
    std::vector<int64_t> starts{0}, columns;
    std::vector<T> values;
    sparse_matrix_t handle = nullptr;

    explicit band(int64_t n, bool uneven = false, int64_t distance = 1)
    {
        for (int64_t i = 0; i < n; ++i) {
            std::vector<int64_t> row{i, i - distance, i + distance};
            for (int64_t j = 0; uneven && i == 3 && j < n; j += 2)
                row.push_back(j);
            for (const int64_t j : row)
                if (j >= 0 && j < n) {
                    columns.push_back(j);
                    values.push_back(i == j ? scalar<T>(4, 0) : random_element<T>());
                }
            starts.push_back(static_cast<int64_t>(columns.size()));
        }
        EXPECT_EQ(create_csr<T>(&handle, SPARSE_INDEX_BASE_ZERO, n, n, starts.data(), starts.data() + 1,
                                columns.data(), values.data()),
                  0);
    }
    ~band() { xkl_sparse_destroy(handle); }

    /// The lines that optimize prints
    std::string optimize(verbose_mode_t mode = SPARSE_VERBOSE_BASIC)
    {
        const std::string path = testing::TempDir() + "xkl_optimize_" + std::to_string(getpid());
        EXPECT_EQ(XKL_Verbose_Output_File(path.c_str()), 0);
        EXPECT_EQ(xkl_sparse_set_verbose_mode(mode), 0);
        EXPECT_EQ(xkl_sparse_optimize(handle), 0);
        EXPECT_EQ(xkl_sparse_set_verbose_mode(SPARSE_VERBOSE_OFF), 0);
        EXPECT_EQ(XKL_Verbose_Output_File(nullptr), 0);
        std::ifstream file(path);
        std::stringstream text;
        text << file.rdbuf();
        unlink(path.c_str());
        return text.str();
    }
};

bool tells(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

TEST(inspector_optimize, even_rows_become_slices_and_uneven_ones_rows)
{
    band<float> singles(100);
    band<double> doubles(100), uneven(100, true);
    band<std::complex<double>> complex(100);
    EXPECT_PRED2(tells, singles.optimize(), "slices of rows");
    EXPECT_PRED2(tells, doubles.optimize(), "slices of rows");
    EXPECT_PRED2(tells, uneven.optimize(), "rows with 32-bit columns");
    EXPECT_PRED2(tells, complex.optimize(), "rows with 32-bit columns");
}

TEST(inspector_optimize, copies_must_pay_and_be_allowed)
{
    band<double> a(100);
    ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, plain, general, 5), 0);
    EXPECT_PRED2(tells, a.optimize(), "as stored");
    ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, turned, general, 5), 0);
    EXPECT_PRED2(tells, a.optimize(), "operation 11, kind 20: slices of rows");
    ASSERT_EQ(xkl_sparse_set_memory_hint(a.handle, SPARSE_MEMORY_NONE), 0);
    const std::string text = a.optimize(SPARSE_VERBOSE_EXTENDED);
    EXPECT_PRED2(tells, text, "as stored");
    EXPECT_PRED2(tells, text, "copies not allowed");
    EXPECT_FALSE(tells(text, "slices")) << text;
    EXPECT_TRUE(xkl_sparse_set_verbose_mode(SPARSE_VERBOSE_OFF) == 0 &&
                a.optimize(SPARSE_VERBOSE_OFF).empty());
}

TEST(inspector_optimize, the_matrix_itself_is_sorted_where_it_may_be)
{
    band<double> a(100);
    const auto before = a.columns;
    a.optimize();
    EXPECT_EQ(a.columns, before);
    ASSERT_EQ(xkl_sparse_set_inplace_copy(a.handle, 1), 0);
    a.optimize();
    EXPECT_NE(a.columns, before);
    int32_t sorted = 0;
    ASSERT_EQ(xkl_sparse_get_sorted_property(a.handle, &sorted), 0);
    EXPECT_EQ(sorted, 1);
}

/// Rows that depend on the row a thousand before them: four groups, which threads share
TEST(inspector_optimize, solves_go_by_groups)
{
    const int64_t n = 4000;
    band<double> a(n, false, 1000);
    const auto x = random_vector<double>(n);
    std::vector<double> y(x.size()), z(x.size());
    for (const auto operation : {plain, turned}) {
        ASSERT_EQ(xkl_sparse_d_trsv(operation, 1, a.handle, lower, x.data(), y.data()), 0);
        ASSERT_EQ(xkl_sparse_set_sv_hint(a.handle, operation, lower, 100), 0);
        const std::string text = a.optimize(SPARSE_VERBOSE_EXTENDED);
        EXPECT_PRED2(tells, text, ", 4 groups");
        ASSERT_EQ(xkl_sparse_d_trsv(operation, 1, a.handle, lower, x.data(), z.data()), 0);
        for (size_t i = 0; i < x.size(); ++i)
            expect_near(z[i], wide(y[i]), 10, "solution");
    }
}

/// What stands beside the square has no row that a solve could wait for.
TEST(inspector_optimize, rectangles_are_not_prepared_for_solves)
{
    constexpr int64_t cols = 50'000'000;
    int64_t starts[] = {0, 2, 3}, columns[] = {0, cols - 1, 1};
    double values[] = {1, 2, 3}, x[] = {1, 1}, y[] = {7, 7};
    const matrix_descr upper{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_UPPER, SPARSE_DIAG_NON_UNIT};
    sparse_matrix_t a = nullptr;
    ASSERT_EQ(
        xkl_sparse_d_create_csr(&a, SPARSE_INDEX_BASE_ZERO, 2, cols, starts, starts + 1, columns, values),
        0);
    for (const auto operation : {plain, turned}) {
        ASSERT_EQ(xkl_sparse_set_sv_hint(a, operation, upper, 100), 0);
        EXPECT_EQ(xkl_sparse_optimize(a), 0);
        EXPECT_EQ(xkl_sparse_d_trsv(operation, 1, a, upper, x, y), SPARSE_STATUS_INVALID_VALUE);
    }
    EXPECT_EQ(xkl_sparse_destroy(a), 0);
}

/// One plan serves all that was announced for an operation, and later announcements replace it.
TEST(inspector_optimize, announcements_for_one_operation_share_a_plan)
{
    band<double> a(100);
    ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, turned, lower, 100), 0);
    ASSERT_EQ(xkl_sparse_set_sv_hint(a.handle, turned, lower, 100), 0);
    ASSERT_EQ(xkl_sparse_set_mm_hint(a.handle, turned, lower, SPARSE_LAYOUT_ROW_MAJOR, 3, 100), 0);
    const std::string text = a.optimize();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n') - tells(text, "threads"), 1) << text;
    std::vector<double> x = random_vector<double>(100), y(100), z(100);
    ASSERT_EQ(xkl_sparse_d_trsv(turned, 1, a.handle, lower, x.data(), y.data()), 0);
    ASSERT_EQ(xkl_sparse_d_mv(turned, 1, a.handle, lower, y.data(), 0, z.data()), 0);
    for (size_t i = 0; i < x.size(); ++i)
        expect_near(z[i], wide(x[i]), 50, "inverse");
    for (int64_t calls = 0; calls < 40; ++calls) // more than a handle keeps
        ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, operations[calls % 3],
                                         descriptions(true, false)[static_cast<size_t>(calls) % 17], calls),
                  0);
    a.optimize();
    ASSERT_EQ(xkl_sparse_d_mv(turned, 1, a.handle, lower, y.data(), 0, z.data()), 0);
    for (size_t i = 0; i < x.size(); ++i)
        expect_near(z[i], wide(x[i]), 50, "inverse again");
}

/// Filled-up places multiply nothing: infinities in x reach the rows that have an element there, and no
/// others.
template <class T>
void expect_no_strays()
{
    band<T> a(101);
    std::vector<T> x(101, std::numeric_limits<T>::infinity()), y(101);
    x[0] = x[1] = T(1);
    a.optimize();
    ASSERT_EQ(mv<T>(plain, T(1), a.handle, general, x.data(), T(0), y.data()), 0);
    EXPECT_TRUE(std::isfinite(y[0])); // the short row of its slice
    EXPECT_TRUE(std::isinf(y[1]));
}

TEST(inspector_optimize, filled_up_places_read_nothing)
{
    expect_no_strays<float>();
    expect_no_strays<double>();
}

} // namespace
