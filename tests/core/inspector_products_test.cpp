// Products and solves on handles against dense computations, in every storage, base, description, operation
// and layout, before and after optimize.
#include "inspector_matrix.h"

namespace {
using namespace inspector_test;

SPARSE_ROUTINE(mv);
SPARSE_ROUTINE(dotmv);
SPARSE_ROUTINE(mm);
SPARSE_ROUTINE(trsv);
SPARSE_ROUTINE(trsm);

template <class T>
struct inspector_products : ::testing::Test {
    const T alpha = scalar<T>(.75, -.5), beta = scalar<T>(-.5, .25), zero = T(0);

    /// Calls check with each storage, description and operation, before and after optimize
    template <class Hint, class Check>
    void in_all_ways(int64_t rows, int64_t cols, bool with_diagonal, const Hint &hint, const Check &check)
    {
        for (const stored_as &how : all_storages()) {
            const sparse<T> a(rows, cols, random_elements<T>(rows, cols, with_diagonal), how);
            for (const matrix_descr &descr : descriptions(rows == cols, how.form == stored_as::bsr))
                for (const auto operation : operations) {
                    const std::string what = name_of(how) + " kind " + std::to_string(descr.type) +
                                             " mode " + std::to_string(descr.mode) + " diag " +
                                             std::to_string(descr.diag) + " operation " +
                                             std::to_string(operation);
                    check(a, descr, operation, what);
                    ASSERT_FALSE(this->HasFatalFailure()) << what;
                    ASSERT_EQ(hint(a.handle, operation, descr), SPARSE_STATUS_SUCCESS) << what;
                    ASSERT_EQ(xkl_sparse_optimize(a.handle), SPARSE_STATUS_SUCCESS) << what;
                    check(a, descr, operation, what + " optimized");
                    ASSERT_FALSE(this->HasFatalFailure()) << what;
                }
        }
    }
};
TYPED_TEST_SUITE(inspector_products, all_types);

sparse_status_t product_hint(sparse_matrix_t a, sparse_operation_t operation, const matrix_descr &descr)
{
    return xkl_sparse_set_mv_hint(a, operation, descr, 100);
}

sparse_status_t solve_hint(sparse_matrix_t a, sparse_operation_t operation, const matrix_descr &descr)
{
    return xkl_sparse_set_sv_hint(a, operation, descr, 100);
}

TYPED_TEST(inspector_products, with_a_vector)
{
    using T = TypeParam;
    for (const auto &[rows, cols] : {std::pair<int64_t, int64_t>{12, 12}, {6, 9}, {9, 6}})
        this->in_all_ways(rows, cols, false, product_hint,
                          [&](const sparse<T> &a, const matrix_descr &descr, sparse_operation_t operation,
                              const std::string &what) {
                              const grid op = a.dense(operation, descr);
                              operand<T> x(op.cols, 1, SPARSE_LAYOUT_COLUMN_MAJOR),
                                  y(op.rows, 1, SPARSE_LAYOUT_COLUMN_MAJOR);
                              const operand<T> before = y;
                              grid expected = op * x.dense();
                              for (int64_t i = 0; i < op.rows; ++i)
                                  expected(i, 0) = widen(this->alpha) * expected(i, 0) +
                                                   widen(this->beta) * widen(y(i, 0));
                              T d(99);
                              ASSERT_EQ(mv<T>(operation, pass(this->alpha), a.handle, descr, x.data(),
                                              pass(this->beta), y.data()),
                                        0);
                              expect_like(y, before, expected, 100, what);
                              y = before;
                              ASSERT_EQ(dotmv<T>(operation, pass(this->alpha), a.handle, descr, x.data(),
                                                 pass(this->beta), y.data(), &d),
                                        0);
                              expect_like(y, before, expected, 100, what);
                              wide dot = 0;
                              for (int64_t i = 0; i < std::min(op.rows, op.cols); ++i)
                                  dot += std::conj(widen(x(i, 0))) * expected(i, 0);
                              expect_near(d, dot, 300, what + " dot");

                              // What beta = 0 replaces is not read, nor x with alpha = 0.
                              for (int64_t i = 0; i < op.rows; ++i) {
                                  y(i, 0) = scalar<T>(NAN, NAN);
                                  expected(i, 0) -= widen(this->beta) * widen(operand<T>(before)(i, 0));
                              }
                              ASSERT_EQ(mv<T>(operation, pass(this->alpha), a.handle, descr, x.data(),
                                              pass(this->zero), y.data()),
                                        0);
                              expect_like(y, before, expected, 100, what + " beta 0");
                              ASSERT_EQ(mv<T>(operation, pass(this->zero), a.handle, descr, x.data(),
                                              pass(this->zero), y.data()),
                                        0);
                              expect_like(y, before, grid(op.rows, 1), 0, what + " alpha 0");
                          });
}

TYPED_TEST(inspector_products, with_many_vectors)
{
    using T = TypeParam;
    const auto hint = [](sparse_matrix_t a, sparse_operation_t operation, const matrix_descr &descr) {
        return xkl_sparse_set_mm_hint(a, operation, descr, SPARSE_LAYOUT_ROW_MAJOR, 11, 100);
    };
    for (const auto &[rows, cols] : {std::pair<int64_t, int64_t>{9, 9}, {6, 9}})
        this->in_all_ways(rows, cols, false, hint,
                          [&](const sparse<T> &a, const matrix_descr &descr, sparse_operation_t operation,
                              const std::string &what) {
                              const grid op = a.dense(operation, descr);
                              for (const auto layout : layouts)
                                  for (const int64_t columns : {1, 11}) {
                                      operand<T> x(op.cols, columns, layout), y(op.rows, columns, layout);
                                      const operand<T> before = y;
                                      grid expected = op * x.dense();
                                      for (int64_t i = 0; i < op.rows; ++i)
                                          for (int64_t j = 0; j < columns; ++j)
                                              expected(i, j) = widen(this->alpha) * expected(i, j) +
                                                               widen(this->beta) * widen(y(i, j));
                                      ASSERT_EQ(mm<T>(operation, pass(this->alpha), a.handle, descr, layout,
                                                      x.data(), columns, x.ld, pass(this->beta), y.data(),
                                                      y.ld),
                                                0);
                                      expect_like(y, before, expected, 100, what);
                                  }
                          });
}

/// Whether a description is one to solve with
bool solvable(const matrix_descr &descr)
{
    return descr.type != SPARSE_MATRIX_TYPE_GENERAL && descr.type != SPARSE_MATRIX_TYPE_SYMMETRIC &&
           descr.type != SPARSE_MATRIX_TYPE_HERMITIAN;
}

TYPED_TEST(inspector_products, triangular_solves)
{
    using T = TypeParam;
    this->in_all_ways(
        12, 12, true, solve_hint,
        [&](const sparse<T> &a, const matrix_descr &descr, sparse_operation_t operation,
            const std::string &what) {
            const grid op = a.dense(operation, descr);
            for (const auto layout : layouts)
                for (const int64_t columns : {1, 7}) {
                    operand<T> x(12, columns, layout), y(12, columns, layout);
                    const operand<T> before = y;
                    const int64_t ld = x.ld;
                    const auto solved = trsm<T>(operation, pass(this->alpha), a.handle, descr, layout,
                                                x.data(), columns, ld, y.data(), y.ld);
                    if (!solvable(descr)) {
                        EXPECT_EQ(solved, SPARSE_STATUS_NOT_SUPPORTED) << what;
                        EXPECT_EQ(y.elements, before.elements) << what;
                        continue;
                    }
                    ASSERT_EQ(solved, SPARSE_STATUS_SUCCESS) << what;
                    const grid back = op * y.dense();
                    for (int64_t i = 0; i < 12; ++i)
                        for (int64_t j = 0; j < columns; ++j)
                            expect_near(T(scalar<T>(double(back(i, j).real()), double(back(i, j).imag()))),
                                        widen(this->alpha) * widen(x(i, j)), 2000, what);
                    if (columns == 1 && layout == SPARSE_LAYOUT_COLUMN_MAJOR) {
                        operand<T> again = x; // in place
                        ASSERT_EQ(trsv<T>(operation, pass(this->alpha), a.handle, descr, again.data(),
                                          again.data()),
                                  0);
                        for (int64_t i = 0; i < 12; ++i)
                            expect_near(again(i, 0), widen(y(i, 0)), 10, what);
                    }
                }
        });
}

TYPED_TEST(inspector_products, a_missing_pivot_fails_and_is_told)
{
    using T = TypeParam;
    const matrix_descr lower{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_LOWER, SPARSE_DIAG_NON_UNIT};
    for (const stored_as &how : all_storages()) {
        auto elements = random_elements<T>(9, 9, true);
        elements.erase({4, 4});
        const sparse<T> a(9, 9, elements, how);
        const auto x = random_vector<T>(9);
        std::vector<T> y(9, T(3));
        EXPECT_EQ(
            trsv<T>(SPARSE_OPERATION_TRANSPOSE, pass(this->alpha), a.handle, lower, x.data(), y.data()),
            SPARSE_STATUS_EXECUTION_FAILED)
            << name_of(how);
        EXPECT_EQ(y, std::vector<T>(9, T(3))) << name_of(how);
        int64_t info = -1;
        EXPECT_EQ(xkl_sparse_get_error_info(a.handle, &info), SPARSE_STATUS_SUCCESS);
        EXPECT_EQ(info, 4 + how.base) << name_of(how);
    }
}

/// Large enough for several threads: a five-point stencil, whose products and solves must not depend on the
/// plan
TYPED_TEST(inspector_products, large_matrices_on_all_threads)
{
    using T = TypeParam;
    const int64_t side = 300, n = side * side;
    std::vector<int64_t> starts{0}, columns;
    std::vector<T> values;
    for (int64_t i = 0; i < n; ++i) {
        for (const int64_t j : {i - side, i - 1, i, i + 1, i + side})
            if (j >= 0 && j < n) {
                columns.push_back(j);
                values.push_back(scalar<T>(i == j ? 8 : -1, i == j ? 0 : .25));
            }
        starts.push_back(static_cast<int64_t>(columns.size()));
    }
    sparse_matrix_t a = nullptr;
    ASSERT_EQ(create_csr<T>(&a, SPARSE_INDEX_BASE_ZERO, n, n, starts.data(), starts.data() + 1,
                            columns.data(), values.data()),
              0);
    const auto x = random_vector<T>(n);
    std::vector<T> y(x.size()), z(x.size());
    const T one = T(1), none = T(0);
    const matrix_descr upper{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_UPPER, SPARSE_DIAG_NON_UNIT};
    for (const auto operation : operations) {
        std::vector<std::vector<T>> results;
        for (const bool optimized : {false, true}) {
            if (optimized) {
                ASSERT_EQ(xkl_sparse_set_mv_hint(a, operation, general, 50), 0);
                ASSERT_EQ(xkl_sparse_set_sv_hint(a, operation, upper, 50), 0);
                ASSERT_EQ(xkl_sparse_optimize(a), 0);
            }
            ASSERT_EQ(mv<T>(operation, pass(one), a, general, x.data(), pass(none), y.data()), 0);
            ASSERT_EQ(trsv<T>(operation, pass(one), a, upper, x.data(), z.data()), 0);
            results.push_back(y);
            results.push_back(z);
            ASSERT_EQ(mv<T>(operation, pass(one), a, upper, z.data(), pass(none), y.data()), 0);
            for (size_t i = 0; i < x.size(); ++i)
                expect_near(y[i], widen(x[i]), 50, "inverse " + std::to_string(i));
        }
        for (size_t i = 0; i < x.size(); ++i) {
            expect_near(results[2][i], widen(results[0][i]), 50, "product");
            expect_near(results[3][i], widen(results[1][i]), 50, "solution");
            wide sum = 0;
            const auto at = static_cast<int64_t>(i);
            for (const int64_t j : {at - side, at - 1, at, at + 1, at + side})
                if (j >= 0 && j < n) {
                    const wide element(at == j ? 8 : -1, at == j || !is_complex<T> ? 0 : .25L);
                    sum +=
                        (operation == SPARSE_OPERATION_CONJUGATE_TRANSPOSE ? std::conj(element) : element) *
                        widen(x[static_cast<size_t>(j)]);
                }
            expect_near(results[0][i], sum, 50, "product by hand");
        }
    }
    xkl_sparse_destroy(a);
}

} // namespace
