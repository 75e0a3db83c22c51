// What handles hold and what becomes of it: storages, changes, order; statuses of bad calls, which change
// nothing; no memory; many readers at once.
#include "inspector_matrix.h"

#include <atomic>
#include <thread>

namespace {
using namespace inspector_test;

SPARSE_ROUTINE(set_coo_data_arrays);
SPARSE_ROUTINE(set_csr_data_arrays);
SPARSE_ROUTINE(set_bsr_data_arrays);
SPARSE_ROUTINE(set_value);
SPARSE_ROUTINE(update_values);
SPARSE_ROUTINE(do_order);
SPARSE_ROUTINE(do_get_sorted_property);
SPARSE_ROUTINE(do_set_inplace_copy);
SPARSE_ROUTINE(do_set_is_sycl_cpu);
SPARSE_ROUTINE(mv);

constexpr auto plain = SPARSE_OPERATION_NON_TRANSPOSE;

/// The matrix that a handle stands for, by products with unit vectors
template <class T>
grid matrix_of(sparse_matrix_t a, int64_t rows, int64_t cols)
{
    grid result(rows, cols);
    const T one(1), zero(0);
    for (int64_t j = 0; j < cols; ++j) {
        std::vector<T> x(static_cast<size_t>(cols)), y(static_cast<size_t>(rows));
        x[static_cast<size_t>(j)] = one;
        EXPECT_EQ(mv<T>(plain, pass(one), a, general, x.data(), pass(zero), y.data()), 0);
        for (int64_t i = 0; i < rows; ++i)
            result(i, j) = widen(y[static_cast<size_t>(i)]);
    }
    return result;
}

template <class T>
void expect_equal(sparse_matrix_t a, const grid &expected, const std::string &what)
{
    const grid found = matrix_of<T>(a, expected.rows, expected.cols);
    for (size_t i = 0; i < found.elements.size(); ++i)
        ASSERT_LE(std::abs(found.elements[i] - expected.elements[i]),
                  4 * std::numeric_limits<real_of<T>>::epsilon())
            << what << " at " << i;
}

template <class T>
struct inspector_handles : ::testing::Test {
};
TYPED_TEST_SUITE(inspector_handles, all_types);

TYPED_TEST(inspector_handles, conversions_keep_the_matrix)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages())
        for (const auto operation : operations) {
            const sparse<T> a(6, 9, random_elements<T>(6, 9, false), how);
            const grid op = under(a.dense(), operation);
            sparse_matrix_t made[5] = {};
            ASSERT_EQ(xkl_sparse_convert_coo(a.handle, operation, &made[0]), 0);
            ASSERT_EQ(xkl_sparse_convert_csr(a.handle, operation, &made[1]), 0);
            ASSERT_EQ(xkl_sparse_convert_csc(a.handle, operation, &made[2]), 0);
            ASSERT_EQ(xkl_sparse_convert_bsr(a.handle, 3, SPARSE_LAYOUT_COLUMN_MAJOR, operation, &made[3]),
                      0);
            ASSERT_EQ(xkl_sparse_copy(a.handle, general, &made[4]), 0);
            for (int i = 0; i < 4; ++i)
                expect_equal<T>(made[i], op, name_of(how) + " made " + std::to_string(i));
            expect_equal<T>(made[4], a.dense(), name_of(how) + " copy");

            // Blocks that do not divide the matrix reach over it.
            sparse_matrix_t wide_blocks = nullptr;
            ASSERT_EQ(xkl_sparse_convert_bsr(a.handle, 4, SPARSE_LAYOUT_ROW_MAJOR, operation, &wide_blocks),
                      0);
            sparse_index_base_t base{};
            sparse_layout_t layout{};
            int64_t rows = 0, cols = 0, block = 0, nnz = 0, *starts = nullptr, *ends = nullptr,
                    *minor = nullptr;
            T *values = nullptr;
            ASSERT_EQ(export_bsr<T>(wide_blocks, &base, &layout, &rows, &cols, &block, &starts, &ends,
                                    &minor, &values),
                      0);
            EXPECT_EQ(base, how.base);
            EXPECT_EQ(layout, SPARSE_LAYOUT_ROW_MAJOR);
            EXPECT_EQ(block, 4);
            EXPECT_EQ(rows, (op.rows + 3) / 4);
            EXPECT_EQ(cols, (op.cols + 3) / 4);
            grid padded(4 * rows, 4 * cols);
            for (int64_t i = 0; i < op.rows; ++i)
                for (int64_t j = 0; j < op.cols; ++j)
                    padded(i, j) = op(i, j);
            expect_equal<T>(wide_blocks, padded, name_of(how) + " padded");
            ASSERT_EQ(export_coo<T>(made[0], &base, &rows, &cols, &nnz, &starts, &minor, &values), 0);
            EXPECT_EQ(rows, op.rows);
            EXPECT_EQ(cols, op.cols);
            ASSERT_EQ(export_csc<T>(made[2], &base, &rows, &cols, &starts, &ends, &minor, &values), 0);
            EXPECT_EQ(cols, op.cols);
            EXPECT_EQ(export_csr<T>(made[2], &base, &rows, &cols, &starts, &ends, &minor, &values),
                      SPARSE_STATUS_INVALID_VALUE)
                << "columns are not rows";
            for (const auto each : made)
                EXPECT_EQ(xkl_sparse_destroy(each), 0);
            EXPECT_EQ(xkl_sparse_destroy(wide_blocks), 0);
        }
}

TYPED_TEST(inspector_handles, order_sorts_the_arrays_in_place)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages()) {
        const sparse<T> a(30, 30, random_elements<T>(30, 30, true), how);
        const grid before = a.dense();
        int32_t sorted = 2;
        ASSERT_EQ(xkl_sparse_get_sorted_property(a.handle, &sorted), 0);
        EXPECT_EQ(sorted, 0);
        ASSERT_EQ(do_order<T>(a.handle), 0);
        ASSERT_EQ(do_get_sorted_property<T>(a.handle, &sorted), 0);
        EXPECT_EQ(sorted, 1) << name_of(how);
        expect_equal<T>(a.handle, before, name_of(how));
        if (how.form == stored_as::csr) {
            for (size_t i = 0; i < a.starts.size(); ++i)
                EXPECT_TRUE(std::is_sorted(a.minor.begin() + a.starts[i] - how.base,
                                           a.minor.begin() + a.ends[i] - how.base));
        }
    }
}

TYPED_TEST(inspector_handles, values_change_under_a_plan)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages()) {
        const auto elements = random_elements<T>(9, 9, true);
        const sparse<T> a(9, 9, elements, how);
        grid expected = a.dense();
        const auto prepare = [&] {
            ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, plain, general, 100), 0);
            ASSERT_EQ(xkl_sparse_optimize(a.handle), 0);
        };
        prepare();
        const T value = scalar<T>(7, -3);
        ASSERT_EQ(set_value<T>(a.handle, 4 + how.base, 4 + how.base, pass(value)), 0) << name_of(how);
        expected(4, 4) = widen(value);
        expect_equal<T>(a.handle, expected, name_of(how) + " set");
        prepare();
        std::vector<int64_t> rows{how.base, 8 + how.base}, cols = rows;
        const std::vector<T> two{scalar<T>(-2, 1), scalar<T>(3, 5)};
        ASSERT_EQ(update_values<T>(a.handle, 2, rows.data(), cols.data(), two.data()), 0);
        expected(0, 0) = widen(two[0]);
        expected(8, 8) = widen(two[1]);
        expect_equal<T>(a.handle, expected, name_of(how) + " two");

        // An element that is not stored stops all of them, and is told.
        cols[1] = 9 + how.base;
        const std::vector<T> other(2, T(100));
        EXPECT_EQ(update_values<T>(a.handle, 2, rows.data(), cols.data(), other.data()),
                  SPARSE_STATUS_INVALID_VALUE);
        EXPECT_EQ(set_value<T>(a.handle, -1, 0, pass(value)), SPARSE_STATUS_INVALID_VALUE);
        int64_t info = -1;
        EXPECT_EQ(xkl_sparse_get_error_info(a.handle, &info), 0);
        EXPECT_EQ(info, 1);
        expect_equal<T>(a.handle, expected, name_of(how) + " refused");

        std::vector<T> all;
        for (size_t k = 0; k < a.values.size(); ++k)
            if (std::abs(a.values[k]) < real_of<T>(1e20)) // not in a gap
                all.push_back(a.values[k] * scalar<T>(2, 0));
        prepare();
        ASSERT_EQ(update_values<T>(a.handle, 0, nullptr, nullptr, all.data()), 0);
        for (wide &each : expected.elements)
            each *= 2;
        expect_equal<T>(a.handle, expected, name_of(how) + " all");
    }
}

TYPED_TEST(inspector_handles, other_arrays_take_the_place_of_the_first)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages()) {
        if (how.form == stored_as::csc)
            continue; // as compressed rows
        const sparse<T> a(9, 9, random_elements<T>(9, 9, true), how);
        sparse<T> b(6, 12, random_elements<T>(6, 12, false), how);
        sparse_matrix_t c = nullptr; // owns its arrays, which must go
        ASSERT_EQ(xkl_sparse_copy(a.handle, general, &c), 0);
        ASSERT_EQ(xkl_sparse_optimize(c), 0);
        const auto rows = b.rows / how.block, cols = b.cols / how.block;
        if (how.form == stored_as::coo)
            ASSERT_EQ(set_coo_data_arrays<T>(c, how.base, rows, cols, static_cast<int64_t>(b.minor.size()),
                                             b.starts.data(), b.minor.data(), b.values.data()),
                      0);
        else if (how.form == stored_as::csr)
            ASSERT_EQ(set_csr_data_arrays<T>(c, how.base, rows, cols, b.starts.data(), b.ends.data(),
                                             b.minor.data(), b.values.data()),
                      0);
        else
            ASSERT_EQ(set_bsr_data_arrays<T>(c, how.base, how.layout, rows, cols, how.block,
                                             b.starts.data(), b.ends.data(), b.minor.data(),
                                             b.values.data()),
                      0);
        expect_equal<T>(c, b.dense(), name_of(how));
        EXPECT_EQ(xkl_sparse_destroy(c), 0);
    }
}

/// A diagonal matrix, and calls that can't be right
struct bad_calls : ::testing::Test {
    int64_t starts[3] = {0, 1, 2}, columns[2] = {0, 1};
    double values[2] = {2, 4}, x[2] = {1, 1}, y[2] = {5, 5};
    sparse_matrix_t const untouched = reinterpret_cast<sparse_matrix_t>(starts);
    sparse_matrix_t a = nullptr;

    void SetUp() override { ASSERT_EQ(create(a, 0, 2, starts, columns, values), SPARSE_STATUS_SUCCESS); }
    void TearDown() override { EXPECT_EQ(xkl_sparse_destroy(a), SPARSE_STATUS_SUCCESS); }

    sparse_status_t create(sparse_matrix_t &made, int base, int64_t rows, int64_t *first, int64_t *minor,
                           double *numbers)
    {
        return xkl_sparse_d_create_csr(&made, static_cast<sparse_index_base_t>(base), rows, 2, first,
                                       starts + 1, minor, numbers);
    }
};

TEST_F(bad_calls, create_no_handle)
{
    sparse_matrix_t made = untouched;
    EXPECT_EQ(create(made, 2, 2, starts, columns, values), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(create(made, 0, -1, starts, columns, values), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(create(made, 1, 2, starts, columns, values), SPARSE_STATUS_INVALID_VALUE)
        << "a row starts before the first place";
    EXPECT_EQ(create(made, 0, 2, nullptr, columns, values), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(create(made, 0, 2, starts, nullptr, values), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(create(made, 0, 2, starts, columns, nullptr), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(
        xkl_sparse_d_create_csr(nullptr, SPARSE_INDEX_BASE_ZERO, 2, 2, starts, starts + 1, columns, values),
        SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(xkl_sparse_d_create_coo(&made, SPARSE_INDEX_BASE_ZERO, 2, 2, -1, starts, columns, values),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_create_bsr(&made, SPARSE_INDEX_BASE_ZERO, SPARSE_LAYOUT_ROW_MAJOR, 2, 2, 0,
                                      starts, starts + 1, columns, values),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_create_bsr(&made, SPARSE_INDEX_BASE_ZERO, static_cast<sparse_layout_t>(5), 2, 2,
                                      1, starts, starts + 1, columns, values),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(made, untouched);
}

TEST_F(bad_calls, of_operations_write_nothing)
{
    const auto product = [&](sparse_matrix_t m, int operation, const matrix_descr &descr,
                             const double *from, double *to) {
        return xkl_sparse_d_mv(static_cast<sparse_operation_t>(operation), 1, m, descr, from, 0, to);
    };
    const auto kind = [](int type, int mode, int diag) {
        return matrix_descr{static_cast<sparse_matrix_type_t>(type), static_cast<sparse_fill_mode_t>(mode),
                            static_cast<sparse_diag_type_t>(diag)};
    };
    EXPECT_EQ(product(nullptr, plain, general, x, y), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(product(a, 13, general, x, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(product(a, plain, kind(27, 40, 50), x, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(product(a, plain, kind(21, 42, 50), x, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(product(a, plain, kind(23, 40, 52), x, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(product(a, plain, kind(25, 40, 50), x, y), SPARSE_STATUS_NOT_SUPPORTED) << "no blocks";
    EXPECT_EQ(product(a, plain, general, nullptr, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(product(a, plain, general, x, nullptr), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_s_mv(plain, 1, a, general, nullptr, 0, nullptr), SPARSE_STATUS_INVALID_VALUE)
        << "another type";
    EXPECT_EQ(xkl_sparse_d_mm(plain, 1, a, general, SPARSE_LAYOUT_COLUMN_MAJOR, x, 1, 1, 0, y, 2),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_mm(plain, 1, a, general, SPARSE_LAYOUT_ROW_MAJOR, x, -1, 2, 0, y, 2),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(
        xkl_sparse_d_trsm(plain, 1, a, kind(23, 40, 50), static_cast<sparse_layout_t>(0), x, 1, 2, y, 2),
        SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_symgs(plain, a, general, 1, nullptr, y), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_sorv(static_cast<sparse_sor_type_t>(113), general, a, 1, 1, y, x),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_spmmd(plain, a, a, SPARSE_LAYOUT_ROW_MAJOR, y, 1), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_d_syrkd(plain, a, 1, 0, nullptr, SPARSE_LAYOUT_ROW_MAJOR, 2),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(y[0] + y[1], 10);
}

TEST_F(bad_calls, make_no_result)
{
    sparse_matrix_t c = untouched;
    EXPECT_EQ(xkl_sparse_spmm(plain, a, nullptr, &c), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(xkl_sparse_spmm(plain, a, a, nullptr), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(xkl_sparse_d_add(plain, a, 1, nullptr, &c), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(xkl_sparse_sypr(plain, a, a, general, &c, SPARSE_STAGE_FULL_MULT),
              SPARSE_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(xkl_sparse_sp2m(plain, general, a, plain, general, a, static_cast<sparse_request_t>(95), &c),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_convert_bsr(a, 0, SPARSE_LAYOUT_ROW_MAJOR, plain, &c),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_convert_csr(a, static_cast<sparse_operation_t>(9), &c),
              SPARSE_STATUS_INVALID_VALUE);
    columns[1] = 2;
    EXPECT_EQ(xkl_sparse_convert_csr(a, plain, &c), SPARSE_STATUS_INVALID_VALUE)
        << "a column outside of the matrix";
    columns[1] = 1;
    EXPECT_EQ(c, untouched);
}

TEST_F(bad_calls, of_hints_and_settings)
{
    EXPECT_EQ(xkl_sparse_set_mv_hint(a, plain, general, -1), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_set_mm_hint(a, plain, general, static_cast<sparse_layout_t>(1), 2, 3),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_set_memory_hint(a, static_cast<sparse_memory_usage_t>(82)),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_set_inplace_copy(a, 2), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_set_is_sycl_cpu(nullptr, 1), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(do_set_is_sycl_cpu<double>(a, 1), SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(do_set_inplace_copy<float>(a, 1), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_set_verbose_mode(static_cast<verbose_mode_t>(1)), SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_optimize(nullptr), SPARSE_STATUS_NOT_INITIALIZED);
    EXPECT_EQ(xkl_sparse_destroy(nullptr), SPARSE_STATUS_NOT_INITIALIZED);
}

TEST(inspector_statuses, matrices_without_elements)
{
    int64_t starts[] = {0, 0, 0};
    const double x[] = {1, 1};
    double y[] = {5, 5};
    sparse_matrix_t a = nullptr, c = nullptr;
    ASSERT_EQ(
        xkl_sparse_d_create_csr(&a, SPARSE_INDEX_BASE_ZERO, 2, 2, starts, starts + 1, nullptr, nullptr), 0);
    ASSERT_EQ(xkl_sparse_optimize(a), 0);
    ASSERT_EQ(xkl_sparse_d_mv(plain, 1, a, general, x, 2, y), 0);
    EXPECT_EQ(y[0] + y[1], 20);
    ASSERT_EQ(xkl_sparse_spmm(plain, a, a, &c), 0);
    EXPECT_EQ(xkl_sparse_destroy(c), 0);
    ASSERT_EQ(xkl_sparse_convert_coo(a, plain, &c), 0);
    EXPECT_EQ(xkl_sparse_destroy(c), 0);
    EXPECT_EQ(xkl_sparse_destroy(a), 0);
    ASSERT_EQ(xkl_sparse_d_create_coo(&a, SPARSE_INDEX_BASE_ONE, 0, 0, 0, nullptr, nullptr, nullptr), 0);
    ASSERT_EQ(xkl_sparse_convert_csr(a, plain, &c), 0);
    ASSERT_EQ(xkl_sparse_d_mv(plain, 1, c, general, x, 0, y), 0);
    EXPECT_EQ(xkl_sparse_destroy(c), 0);
    EXPECT_EQ(xkl_sparse_destroy(a), 0);
}

/// A diagonal matrix so large that a few megabytes do not hold a copy
struct large_matrix {
    static constexpr int64_t n = 300000;
    std::vector<int64_t> starts, columns;
    std::vector<double> values;
    sparse_matrix_t handle = nullptr;

    large_matrix() : values(n, 2)
    {
        for (int64_t i = 0; i <= n; ++i)
            starts.push_back(i);
        columns.assign(starts.rbegin() + 1, starts.rend());
        EXPECT_EQ(xkl_sparse_d_create_csr(&handle, SPARSE_INDEX_BASE_ZERO, n, n, starts.data(),
                                          starts.data() + 1, columns.data(), values.data()),
                  0);
    }
    ~large_matrix() { EXPECT_EQ(xkl_sparse_destroy(handle), 0); }
};

TEST(inspector_statuses, no_memory_is_told_and_nothing_is_lost)
{
    large_matrix a;
    int32_t blocks_before = 0, blocks_after = 0;
    const auto bytes_before = xkl_mem_stat(&blocks_before);
    const int32_t all = XKL_MEM_ALL;
    const size_t two_megabytes = 2, none = 0;
    ASSERT_EQ(xkl_set_memory_limit(&all, &two_megabytes), 1);
    auto *const untouched = reinterpret_cast<sparse_matrix_t>(a.starts.data());
    sparse_matrix_t c = untouched;
    std::vector<double> x(large_matrix::n, 1), y(x.size(), 5);
    const matrix_descr lower{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_LOWER, SPARSE_DIAG_NON_UNIT};
    EXPECT_EQ(xkl_sparse_copy(a.handle, general, &c), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_convert_csc(a.handle, plain, &c), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_convert_bsr(a.handle, 2, SPARSE_LAYOUT_ROW_MAJOR, plain, &c),
              SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_spmm(plain, a.handle, a.handle, &c), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_d_add(SPARSE_OPERATION_TRANSPOSE, a.handle, 1, a.handle, &c),
              SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_syrk(plain, a.handle, &c), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_optimize(a.handle), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_d_trsv(plain, 1, a.handle, lower, x.data(), y.data()), SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(xkl_sparse_d_symgs(plain, a.handle, general, 1, x.data(), y.data()),
              SPARSE_STATUS_ALLOC_FAILED);
    EXPECT_EQ(y, std::vector<double>(x.size(), 5));
    EXPECT_EQ(xkl_sparse_d_mv(plain, 1, a.handle, general, x.data(), 0, y.data()), SPARSE_STATUS_SUCCESS);
    EXPECT_EQ(y, std::vector<double>(x.size(), 2));
    EXPECT_EQ(c, untouched);
    ASSERT_EQ(xkl_set_memory_limit(&all, &none), 1);
    EXPECT_EQ(xkl_mem_stat(&blocks_after), bytes_before);
    EXPECT_EQ(blocks_after, blocks_before);
}

TEST(inspector_threads, eight_readers_of_one_handle)
{
    const sparse<double> a(60, 60, random_elements<double>(60, 60, true),
                           {stored_as::csr, SPARSE_INDEX_BASE_ONE});
    const matrix_descr upper{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_UPPER, SPARSE_DIAG_NON_UNIT};
    ASSERT_EQ(xkl_sparse_set_mv_hint(a.handle, SPARSE_OPERATION_TRANSPOSE, general, 100), 0);
    ASSERT_EQ(xkl_sparse_optimize(a.handle), 0);
    ASSERT_EQ(xkl_sparse_qr_reorder(a.handle, general), 0);
    ASSERT_EQ(xkl_sparse_d_qr_factorize(a.handle, nullptr), 0);
    const auto x = random_vector<double>(60);
    const auto results = [&] {
        std::vector<double> y(x.size()), z(x.size()), w(x.size()), v(x.size());
        int failed =
            xkl_sparse_d_mv(SPARSE_OPERATION_TRANSPOSE, 1, a.handle, general, x.data(), 0, y.data());
        failed += xkl_sparse_d_trsv(plain, 1, a.handle, upper, y.data(), z.data());
        failed += xkl_sparse_d_symgs(plain, a.handle, general, 0, z.data(), w.data());
        failed += xkl_sparse_d_qr_solve(plain, a.handle, nullptr, SPARSE_LAYOUT_COLUMN_MAJOR, 1, v.data(),
                                        60, w.data(), 60);
        sparse_matrix_t c = nullptr;
        failed += xkl_sparse_spmm(plain, a.handle, a.handle, &c);
        failed += xkl_sparse_destroy(c);
        failed += xkl_sparse_d_trsv(plain, 1, a.handle, general, y.data(), z.data()) !=
                  SPARSE_STATUS_NOT_SUPPORTED;
        EXPECT_EQ(failed, 0);
        return v;
    };
    const auto expected = results();
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i)
        readers.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                wrong += results() != expected;
        });
    for (std::thread &each : readers)
        each.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
