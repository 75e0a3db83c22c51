// Sweeps, and products and sums of sparse matrices, against dense computations.
#include "inspector_matrix.h"

namespace {
using namespace inspector_test;

SPARSE_ROUTINE(symgs);
SPARSE_ROUTINE(symgs_mv);
SPARSE_ROUTINE(lu_smoother);
SPARSE_ROUTINE(sorv);
SPARSE_ROUTINE(add);
SPARSE_ROUTINE(spmmd);
SPARSE_ROUTINE(sp2md);
SPARSE_ROUTINE(syrkd);
SPARSE_ROUTINE(syprd);
SPARSE_ROUTINE(do_sp2m);
SPARSE_ROUTINE(do_sp2m_allocate_C_handle);
SPARSE_ROUTINE(update_C_handle_data_for_matmat);

constexpr matrix_descr symmetric{SPARSE_MATRIX_TYPE_SYMMETRIC, SPARSE_FILL_MODE_LOWER,
                                 SPARSE_DIAG_NON_UNIT};
constexpr matrix_descr hermitian{SPARSE_MATRIX_TYPE_HERMITIAN, SPARSE_FILL_MODE_UPPER,
                                 SPARSE_DIAG_NON_UNIT};
constexpr matrix_descr lower{SPARSE_MATRIX_TYPE_TRIANGULAR, SPARSE_FILL_MODE_LOWER, SPARSE_DIAG_UNIT};

template <class T>
struct inspector_results : ::testing::Test {
    const T alpha = scalar<T>(.75, -.5), beta = scalar<T>(-.5, .25), zero = T(0);
};
TYPED_TEST_SUITE(inspector_results, all_types);

/// One relaxation sweep, from its definition
void relax(const grid &a, grid &x, const grid &b, wide omega, bool rising)
{
    for (int64_t step = 0; step < a.rows; ++step) {
        const int64_t i = rising ? step : a.rows - 1 - step;
        wide rest = b(i, 0);
        for (int64_t j = 0; j < a.cols; ++j)
            if (j != i)
                rest -= a(i, j) * x(j, 0);
        x(i, 0) = (1.L - omega) * x(i, 0) + omega * rest / a(i, i);
    }
}

/// Solves with the lower or upper triangle of a, its diagonal replaced
grid solve_triangle(const grid &a, const grid &diagonal, grid b, bool below)
{
    for (int64_t step = 0; step < a.rows; ++step) {
        const int64_t i = below ? step : a.rows - 1 - step;
        for (int64_t j = 0; j < a.cols; ++j)
            if (below ? j < i : j > i)
                b(i, 0) -= a(i, j) * b(j, 0);
        b(i, 0) /= diagonal(i, 0);
    }
    return b;
}

template <class T>
void expect_vector(const std::vector<T> &found, const grid &expected, const std::string &what)
{
    for (size_t i = 0; i < found.size(); ++i)
        expect_near(found[i], expected(static_cast<int64_t>(i), 0), 2000,
                    what + " at " + std::to_string(i));
}

template <class T>
grid column_of(const std::vector<T> &v, wide factor = 1)
{
    grid result(static_cast<int64_t>(v.size()), 1);
    for (size_t i = 0; i < v.size(); ++i)
        result(static_cast<int64_t>(i), 0) = factor * widen(v[i]);
    return result;
}

TYPED_TEST(inspector_results, relaxation_sweeps)
{
    using T = TypeParam;
    const T omega = scalar<T>(1.25, 0);
    for (const stored_as &how : all_storages())
        for (const matrix_descr &descr : {general, symmetric, hermitian})
            for (const bool optimized : {false, true}) {
                const std::string what = name_of(how) + " kind " + std::to_string(descr.type);
                const sparse<T> a(9, 9, random_elements<T>(9, 9, true), how);
                if (optimized) {
                    ASSERT_EQ(xkl_sparse_set_sorv_hint(SPARSE_SOR_FORWARD, a.handle, descr, 10), 0);
                    ASSERT_EQ(xkl_sparse_set_symgs_hint(a.handle, SPARSE_OPERATION_TRANSPOSE, descr, 10),
                              0);
                    ASSERT_EQ(xkl_sparse_optimize(a.handle), 0);
                }
                const auto b = random_vector<T>(9), start = random_vector<T>(9);
                const grid right = column_of(b), whole = a.dense(SPARSE_OPERATION_NON_TRANSPOSE, descr);
                for (const auto type : {SPARSE_SOR_FORWARD, SPARSE_SOR_BACKWARD, SPARSE_SOR_SYMMETRIC}) {
                    auto x = start;
                    grid expected = column_of(start, widen(this->alpha));
                    if (type != SPARSE_SOR_BACKWARD)
                        relax(whole, expected, right, widen(omega), true);
                    if (type != SPARSE_SOR_FORWARD)
                        relax(whole, expected, right, widen(omega), false);
                    ASSERT_EQ(
                        sorv<T>(type, descr, a.handle, pass(omega), pass(this->alpha), x.data(), b.data()),
                        0);
                    expect_vector(x, expected, what + " sorv");
                }
                for (const auto operation : operations) {
                    const grid op = a.dense(operation, descr);
                    grid expected = column_of(start, widen(this->alpha));
                    relax(op, expected, right, 1, true);
                    relax(op, expected, right, 1, false);
                    auto x = start, again = start, y = start;
                    ASSERT_EQ(symgs<T>(operation, a.handle, descr, pass(this->alpha), b.data(), x.data()),
                              0);
                    expect_vector(x, expected, what + " symgs");
                    ASSERT_EQ(symgs_mv<T>(operation, a.handle, descr, pass(this->alpha), b.data(),
                                          again.data(), y.data()),
                              0);
                    EXPECT_EQ(again, x);
                    expect_vector(y, op * expected, what + " symgs_mv");
                }
            }
}

TYPED_TEST(inspector_results, smoothing_steps)
{
    using T = TypeParam;
    for (const stored_as &how : all_storages())
        for (const auto operation : operations)
            for (const bool given : {false, true}) {
                const sparse<T> a(9, 9, random_elements<T>(9, 9, true), how);
                const grid op = under(a.dense(), operation);
                std::vector<T> diagonal, inverse;
                grid d(9, 1), e(9, 1); // e: what is divided by
                for (int64_t i = 0; i < 9; ++i) {
                    diagonal.push_back(scalar<T>(5, 1) + T(static_cast<real_of<T>>(i)));
                    inverse.push_back(T(1) / (diagonal.back() + scalar<T>(.125, 0)));
                    d(i, 0) = given ? widen(diagonal.back()) : op(i, i);
                    e(i, 0) = given ? wide(1) / widen(inverse.back()) : op(i, i);
                }
                const auto b = random_vector<T>(9), start = random_vector<T>(9);
                auto x = start;
                ASSERT_EQ(lu_smoother<T>(operation, a.handle, general, given ? diagonal.data() : nullptr,
                                         given ? inverse.data() : nullptr, x.data(), b.data()),
                          0);
                grid rest = column_of(b);
                const grid product = op * column_of(start);
                for (int64_t i = 0; i < 9; ++i)
                    rest(i, 0) -= product(i, 0);
                grid z = solve_triangle(op, e, rest, true);
                for (int64_t i = 0; i < 9; ++i)
                    z(i, 0) *= d(i, 0);
                z = solve_triangle(op, e, z, false);
                for (int64_t i = 0; i < 9; ++i)
                    z(i, 0) += widen(start[static_cast<size_t>(i)]);
                expect_vector(x, z, name_of(how));
            }
}

/// Storages paired so that each meets another one
std::vector<std::pair<stored_as, stored_as>> pairs()
{
    const auto all = all_storages();
    std::vector<std::pair<stored_as, stored_as>> result;
    for (size_t i = 0; i < all.size(); ++i)
        result.push_back({all[i], all[(i + 3) % all.size()]});
    return result;
}

grid upper_of(grid a)
{
    for (int64_t i = 0; i < a.rows; ++i)
        for (int64_t j = 0; j < i; ++j)
            a(i, j) = 0;
    return a;
}

TYPED_TEST(inspector_results, sparse_sums_and_products)
{
    using T = TypeParam;
    for (const auto &[how_a, how_b] : pairs())
        for (const auto operation : operations) {
            const bool plain = operation == SPARSE_OPERATION_NON_TRANSPOSE;
            const std::string what =
                name_of(how_a) + ", " + name_of(how_b) + " operation " + std::to_string(operation);
            const sparse<T> a(plain ? 6 : 9, plain ? 9 : 6,
                              random_elements<T>(plain ? 6 : 9, plain ? 9 : 6, false), how_a);
            const sparse<T> b(9, 12, random_elements<T>(9, 12, false), how_b),
                same(6, 9, random_elements<T>(6, 9, false), how_b),
                square(9, 9, random_elements<T>(9, 9, true), how_b);
            const grid op = under(a.dense(), operation);
            sparse_matrix_t c = nullptr;
            ASSERT_EQ(xkl_sparse_spmm(operation, a.handle, b.handle, &c), 0) << what;
            expect_rows<T>(c, op * b.dense(), 100, what + " spmm");
            EXPECT_EQ(xkl_sparse_destroy(c), 0);

            ASSERT_EQ(add<T>(operation, a.handle, pass(this->alpha), same.handle, &c), 0) << what;
            grid expected = same.dense();
            for (int64_t i = 0; i < 6; ++i)
                for (int64_t j = 0; j < 9; ++j)
                    expected(i, j) += widen(this->alpha) * op(i, j);
            expect_rows<T>(c, expected, 100, what + " add");
            EXPECT_EQ(xkl_sparse_destroy(c), 0);

            const grid mirrored =
                under(op, operation == SPARSE_OPERATION_TRANSPOSE ? SPARSE_OPERATION_TRANSPOSE
                                                                  : SPARSE_OPERATION_CONJUGATE_TRANSPOSE);
            ASSERT_EQ(xkl_sparse_syrk(operation, a.handle, &c), 0) << what;
            expect_rows<T>(c, upper_of(op * mirrored), 100, what + " syrk");
            EXPECT_EQ(xkl_sparse_destroy(c), 0);

            for (const matrix_descr &descr : {symmetric, hermitian}) {
                ASSERT_EQ(
                    xkl_sparse_sypr(operation, a.handle, square.handle, descr, &c, SPARSE_STAGE_FULL_MULT),
                    0)
                    << what;
                expect_rows<T>(
                    c, upper_of(op * square.dense(SPARSE_OPERATION_NON_TRANSPOSE, descr) * mirrored), 200,
                    what + " sypr");
                EXPECT_EQ(xkl_sparse_destroy(c), 0);
            }
        }
}

TYPED_TEST(inspector_results, products_with_descriptions_in_stages)
{
    using T = TypeParam;
    for (const auto &[how_a, how_b] : pairs())
        for (const auto op_a : operations)
            for (const auto op_b : operations) {
                const std::string what = name_of(how_a) + ", " + name_of(how_b);
                const sparse<T> a(9, 9, random_elements<T>(9, 9, true), how_a),
                    b(9, 9, random_elements<T>(9, 9, true), how_b);
                const grid expected = a.dense(op_a, lower) * b.dense(op_b, hermitian);
                sparse_matrix_t c = nullptr;
                const auto ask = [&](sparse_request_t request) {
                    return xkl_sparse_sp2m(op_a, lower, a.handle, op_b, hermitian, b.handle, request, &c);
                };
                ASSERT_EQ(ask(SPARSE_STAGE_NNZ_COUNT), 0) << what;
                ASSERT_EQ(ask(SPARSE_STAGE_FINALIZE_MULT_NO_VAL), 0) << what;
                ASSERT_EQ(ask(SPARSE_STAGE_FINALIZE_MULT), 0) << what;
                expect_rows<T>(c, expected, 200, what + " three stages");
                ASSERT_EQ(ask(SPARSE_STAGE_FINALIZE_MULT), 0) << what; // values again
                expect_rows<T>(c, expected, 200, what + " again");
                EXPECT_EQ(xkl_sparse_destroy(c), 0);

                ASSERT_EQ(ask(SPARSE_STAGE_FULL_MULT_NO_VAL), 0) << what;
                int32_t sorted = 2;
                EXPECT_EQ(xkl_sparse_get_sorted_property(c, &sorted), SPARSE_STATUS_NOT_INITIALIZED)
                    << "no values yet";
                ASSERT_EQ(ask(SPARSE_STAGE_FINALIZE_MULT), 0) << what;
                expect_rows<T>(c, expected, 200, what + " pattern first");
                EXPECT_EQ(xkl_sparse_destroy(c), 0);

                ASSERT_EQ(do_sp2m<T>(op_a, lower, a.handle, op_b, hermitian, b.handle,
                                     SPARSE_STAGE_FULL_MULT, &c),
                          0);
                expect_rows<T>(c, expected, 200, what + " inner");
                EXPECT_EQ(xkl_sparse_destroy(c), 0);

                for (const auto layout : layouts) {
                    operand<T> d(9, 9, layout);
                    const operand<T> before = d;
                    grid sum = expected;
                    for (int64_t i = 0; i < 9; ++i)
                        for (int64_t j = 0; j < 9; ++j)
                            sum(i, j) = widen(this->alpha) * sum(i, j) + widen(this->beta) * widen(d(i, j));
                    ASSERT_EQ(sp2md<T>(op_a, lower, a.handle, op_b, hermitian, b.handle, pass(this->alpha),
                                       pass(this->beta), d.data(), layout, d.ld),
                              0);
                    expect_like(d, before, sum, 200, what + " sp2md");
                }
            }
}

TYPED_TEST(inspector_results, dense_results)
{
    using T = TypeParam;
    for (const auto &[how_a, how_b] : pairs())
        for (const auto operation : operations)
            for (const auto layout : layouts) {
                const bool plain = operation == SPARSE_OPERATION_NON_TRANSPOSE;
                const std::string what = name_of(how_a) + " operation " + std::to_string(operation);
                const int64_t rows = plain ? 6 : 9, cols = plain ? 9 : 6;
                const sparse<T> a(rows, cols, random_elements<T>(rows, cols, false), how_a),
                    b(9, 12, random_elements<T>(9, 12, false), how_b);
                const grid op = under(a.dense(), operation);
                operand<T> c(6, 12, layout);
                const operand<T> before = c;
                ASSERT_EQ(spmmd<T>(operation, a.handle, b.handle, layout, c.data(), c.ld), 0) << what;
                expect_like(c, before, op * b.dense(), 100, what + " spmmd");

                const bool turned = operation == SPARSE_OPERATION_TRANSPOSE;
                const grid mirrored =
                    under(op, turned ? SPARSE_OPERATION_TRANSPOSE : SPARSE_OPERATION_CONJUGATE_TRANSPOSE);
                operand<T> middle(9, 9, layout), s(6, 6, layout), p(6, 6, layout);
                grid whole(9, 9);
                for (int64_t i = 0; i < 9; ++i)
                    for (int64_t j = i; j < 9; ++j) {
                        if (i == j)
                            middle(i, i) = T(std::real(middle(i, i)));
                        whole(i, j) = widen(middle(i, j));
                        whole(j, i) = turned ? whole(i, j) : std::conj(whole(i, j));
                    }
                const operand<T> old_s = s, old_p = p;
                grid square = op * mirrored, triple = op * whole * mirrored;
                for (int64_t i = 0; i < 6; ++i)
                    for (int64_t j = 0; j < 6; ++j) {
                        square(i, j) =
                            j < i ? widen(s(i, j))
                                  : widen(this->alpha) * square(i, j) + widen(this->beta) * widen(s(i, j));
                        triple(i, j) =
                            j < i ? widen(p(i, j))
                                  : widen(this->alpha) * triple(i, j) + widen(this->beta) * widen(p(i, j));
                    }
                ASSERT_EQ(syrkd<T>(operation, a.handle, pass(this->alpha), pass(this->beta), s.data(),
                                   layout, s.ld),
                          0);
                expect_like(s, old_s, square, 100, what + " syrkd");
                ASSERT_EQ(syprd<T>(operation, a.handle, middle.data(), layout, middle.ld, pass(this->alpha),
                                   pass(this->beta), p.data(), layout, p.ld),
                          0);
                expect_like(p, old_p, triple, 200, what + " syprd");
            }
}

/// A program that computes the product itself in the handle that the inner routines give it
TYPED_TEST(inspector_results, a_result_filled_by_the_caller)
{
    using T = TypeParam;
    const sparse<T> a(6, 9, random_elements<T>(6, 9, false), {stored_as::csr, SPARSE_INDEX_BASE_ONE});
    const auto plain = SPARSE_OPERATION_NON_TRANSPOSE, turned = SPARSE_OPERATION_TRANSPOSE;
    sparse_matrix_t c = nullptr;
    ASSERT_EQ(do_sp2m_allocate_C_handle<T>(plain, a.handle, turned, a.handle, &c), 0);
    sparse_index_base_t base{};
    int64_t rows = 0, cols = 0, *starts = nullptr, *ends = nullptr, *minor = nullptr;
    T *values = nullptr;
    const auto look = [&] {
        return export_csr<T>(c, &base, &rows, &cols, &starts, &ends, &minor, &values);
    };
    const auto update = [&](sparse_request_t request) {
        return update_C_handle_data_for_matmat<T>(plain, a.handle, turned, a.handle, request, c);
    };
    ASSERT_EQ(look(), 0);
    EXPECT_EQ(rows, 6);
    EXPECT_EQ(cols, 6);
    for (int64_t i = 0; i < 6; ++i)
        ends[i] = starts[i] + 1;
    ASSERT_EQ(update(SPARSE_STAGE_NNZ_COUNT), 0);
    ASSERT_EQ(look(), 0);
    for (int64_t i = 0; i < 6; ++i) {
        minor[i] = 7 + i;
        values[i] = T(2);
    }
    EXPECT_EQ(update(SPARSE_STAGE_FINALIZE_MULT), SPARSE_STATUS_INVALID_VALUE) << "columns outside of it";
    for (int64_t i = 0; i < 6; ++i)
        minor[i] = 6 - i;
    ASSERT_EQ(update(SPARSE_STAGE_FINALIZE_MULT), 0);
    const grid found = rows_of<T>(c);
    for (int64_t i = 0; i < 6; ++i)
        EXPECT_EQ(found(i, 5 - i), wide(2));
    EXPECT_EQ(do_sp2m_allocate_C_handle<T>(plain, a.handle, plain, a.handle, &c),
              SPARSE_STATUS_INVALID_VALUE);
    EXPECT_EQ(xkl_sparse_destroy(c), 0);
}

} // namespace
