// The orthogonal factorization: least squares by its normal equations, the steps by what they make
// together.
#include "inspector_matrix.h"

namespace {
using namespace inspector_test;

template <class T>
constexpr auto qr = pick<T>(xkl_sparse_s_qr, xkl_sparse_d_qr, nullptr, nullptr);
template <class T>
constexpr auto qr_factorize = pick<T>(xkl_sparse_s_qr_factorize, xkl_sparse_d_qr_factorize, nullptr,
                                      nullptr);
template <class T>
constexpr auto qr_solve = pick<T>(xkl_sparse_s_qr_solve, xkl_sparse_d_qr_solve, nullptr, nullptr);
template <class T>
constexpr auto qr_qmult = pick<T>(xkl_sparse_s_qr_qmult, xkl_sparse_d_qr_qmult, nullptr, nullptr);
template <class T>
constexpr auto qr_rsolve = pick<T>(xkl_sparse_s_qr_rsolve, xkl_sparse_d_qr_rsolve, nullptr, nullptr);

constexpr auto plain = SPARSE_OPERATION_NON_TRANSPOSE, turned = SPARSE_OPERATION_TRANSPOSE;

template <class T>
struct inspector_qr : ::testing::Test {
};
TYPED_TEST_SUITE(inspector_qr, real_types);

/// Elements whose columns are far from dependent
template <class T>
elements_of<T> tall_elements()
{
    return random_elements<T>(15, 9, true);
}

/// The remainder is orthogonal to the columns.
template <class T>
void expect_least_squares(const grid &a, operand<T> &x, operand<T> &b, const std::string &what)
{
    grid rest = a * x.dense();
    for (int64_t i = 0; i < rest.rows; ++i)
        for (int64_t j = 0; j < rest.cols; ++j)
            rest(i, j) -= widen(b(i, j));
    const grid projected = under(a, turned) * rest;
    for (const wide each : projected.elements)
        expect_near(static_cast<T>(each.real()), wide(0), 2000, what);
}

TYPED_TEST(inspector_qr, least_squares_in_every_storage)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages())
        for (const auto layout : layouts) {
            const sparse<T> a(15, 9, tall_elements<T>(), how);
            operand<T> x(9, 3, layout), b(15, 3, layout);
            const operand<T> old = x;
            ASSERT_EQ(xkl_sparse_set_qr_hint(a.handle, SPARSE_QR_WITH_PIVOTS), 0);
            ASSERT_EQ(qr<T>(plain, a.handle, general, layout, 3, x.data(), x.ld, b.data(), b.ld), 0);
            expect_least_squares(a.dense(), x, b, name_of(how));
            expect_like(x, old, x.dense(), 0, name_of(how));

            // The shortest solution with the transpose lies in the range of A.
            operand<T> shortest(15, 3, layout), right(9, 3, layout), again(9, 3, layout);
            ASSERT_EQ(qr<T>(turned, a.handle, general, layout, 3, shortest.data(), shortest.ld,
                            right.data(), right.ld),
                      0);
            const grid product = under(a.dense(), turned) * shortest.dense();
            for (int64_t i = 0; i < 9; ++i)
                for (int64_t j = 0; j < 3; ++j)
                    expect_near(static_cast<T>(product(i, j).real()), widen(right(i, j)), 2000,
                                name_of(how));
            ASSERT_EQ(qr_solve<T>(plain, a.handle, nullptr, layout, 3, again.data(), again.ld,
                                  shortest.data(), shortest.ld),
                      0);
            const grid back = a.dense() * again.dense();
            for (int64_t i = 0; i < 15; ++i)
                expect_near(static_cast<T>(back(i, 0).real()), widen(shortest(i, 0)), 2000,
                            name_of(how) + " range");
        }
}

TYPED_TEST(inspector_qr, steps_make_the_solution)
{
    using T = TypeParam;
    const auto layout = SPARSE_LAYOUT_COLUMN_MAJOR;
    const sparse<T> a(15, 9, tall_elements<T>(), {stored_as::csr, SPARSE_INDEX_BASE_ZERO});
    operand<T> x(9, 2, layout), b(15, 2, layout), q(15, 2, layout), y(9, 2, layout), back(15, 2, layout);
    EXPECT_EQ(qr_factorize<T>(a.handle, nullptr), SPARSE_STATUS_NOT_INITIALIZED) << "not reordered";
    ASSERT_EQ(xkl_sparse_qr_reorder(a.handle, general), 0);
    EXPECT_EQ(qr_solve<T>(plain, a.handle, nullptr, layout, 2, x.data(), x.ld, b.data(), b.ld),
              SPARSE_STATUS_NOT_INITIALIZED)
        << "not factorized";
    ASSERT_EQ(qr_factorize<T>(a.handle, nullptr), 0);
    ASSERT_EQ(qr_solve<T>(plain, a.handle, nullptr, layout, 2, x.data(), x.ld, b.data(), b.ld), 0);
    ASSERT_EQ(qr_qmult<T>(turned, a.handle, layout, 2, q.data(), q.ld, b.data(), b.ld), 0);
    ASSERT_EQ(qr_rsolve<T>(plain, a.handle, layout, 2, y.data(), y.ld, q.data(), q.ld), 0);
    ASSERT_EQ(qr_qmult<T>(plain, a.handle, layout, 2, back.data(), back.ld, q.data(), q.ld), 0);
    for (int64_t j = 0; j < 2; ++j) {
        for (int64_t i = 0; i < 9; ++i)
            expect_near(y(i, j), widen(x(i, j)), 500, "solution");
        for (int64_t i = 0; i < 15; ++i)
            expect_near(back(i, j), widen(b(i, j)), 500, "orthogonal");
    }

    // Other values in the same pattern
    auto doubled = a.values;
    for (T &each : doubled)
        each *= 2;
    ASSERT_EQ(qr_solve<T>(plain, a.handle, doubled.data(), layout, 2, y.data(), y.ld, b.data(), b.ld), 0);
    for (int64_t i = 0; i < 9; ++i)
        expect_near(2 * y(i, 0), widen(x(i, 0)), 500, "other values");
    EXPECT_EQ(qr_solve<T>(plain, a.handle, nullptr, layout, 2, x.data(), 8, b.data(), b.ld),
              SPARSE_STATUS_INVALID_VALUE);
}

TEST(inspector_qr_statuses, what_is_not_done_says_so)
{
    const std::vector<std::complex<double>> unused(9);
    const sparse<std::complex<double>> complex(9, 9, random_elements<std::complex<double>>(9, 9, true),
                                               {stored_as::csr, SPARSE_INDEX_BASE_ZERO});
    EXPECT_EQ(xkl_sparse_qr_reorder(complex.handle, general), SPARSE_STATUS_NOT_SUPPORTED);
    const sparse<double> wide_matrix(6, 9, random_elements<double>(6, 9, true),
                                     {stored_as::csr, SPARSE_INDEX_BASE_ZERO});
    double x[9], b[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(
        xkl_sparse_d_qr(plain, wide_matrix.handle, general, SPARSE_LAYOUT_COLUMN_MAJOR, 1, x, 9, b, 6), 0);
    const grid a = wide_matrix.dense();
    for (int64_t i = 0; i < 6; ++i) {
        wide sum = 0;
        for (int64_t j = 0; j < 9; ++j)
            sum += a(i, j) * wide(x[j]);
        expect_near(b[i], sum, 2000, "one of the solutions");
    }
    EXPECT_EQ(xkl_sparse_d_qr(SPARSE_OPERATION_TRANSPOSE, wide_matrix.handle, general,
                              SPARSE_LAYOUT_COLUMN_MAJOR, 1, x, 6, b, 9),
              SPARSE_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(xkl_sparse_set_qr_hint(wide_matrix.handle, static_cast<sparse_qr_hint_t>(1)),
              SPARSE_STATUS_INVALID_VALUE);
}

} // namespace
