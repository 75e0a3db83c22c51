// Products and solves of the classic sparse BLAS in every storage and type, with every kind of matrix,
// triangle, diagonal, base and transposition, against dense matrices in extended precision.
#include "spblas_matrix.h"

#include "xkl_service.h"

namespace {
using namespace spblas_test;

/// The matrix in every storage that can hold it
template <class T>
std::vector<stored_matrix<T>> in_storages(const sample<T> &a)
{
    std::vector<stored_matrix<T>> all = {in_rows(a, true), in_columns(a), by_elements(a), by_diagonals(a),
                                         in_blocks(a, 2, true)};
    if (std::toupper(a.is.kind) != 'G')
        all.push_back(in_skyline(a));
    return all;
}

/// A call of one of MV, MM, SV and SM, and what it leaves
template <class T>
struct operation {
    stored_matrix<T> a;
    description is;
    char trans;
    T alpha, beta;
    dense_operand<T> x, y;

    void run(const std::string &which)
    {
        const bool multiplies = which[0] == 'M', wide_operands = which[1] == 'M';
        const std::string text = is.text();
        const int64_t n = x.width();
        addresses given{&trans, &a.m};
        const auto append = [&](std::initializer_list<const void *> more) {
            given.insert(given.end(), more);
        };
        if (wide_operands)
            append({&n});
        if (multiplies)
            append({&a.k});
        if (a.lb)
            append({&a.lb});
        append({&alpha, text.data()});
        for (const void *each : a.arrays())
            append({each});
        append({x.elements.data()});
        if (wide_operands)
            append({&x.elements.ld});
        if (multiplies)
            append({&beta});
        append({y.elements.data()});
        if (wide_operands)
            append({&y.elements.ld});
        EXPECT_EQ(call(name_of<T>("XKL_?" + a.storage + which), given), 0);
    }
};

template <class T>
void expect_product(const dense_operand<T> &y, const T &alpha, const wide_matrix &product, const T &beta,
                    const dense_operand<T> &old, int64_t terms)
{
    for (int64_t i = 0; i < y.rows(); ++i)
        for (int64_t q = 0; q < y.width(); ++q) {
            const wide kept = beta == T(0) ? wide(0) : widen(beta) * widen(old(i, q));
            const wide added = alpha == T(0) ? wide(0) : widen(alpha) * product(i, q);
            expect_close(y(i, q), added + kept, terms, "y", i, q);
        }
    EXPECT_TRUE(y.elements.canaries_live());
}

/// A product in every storage, and its vector's form
template <class T>
void expect_products(const sample<T> &a, char trans, T alpha, T beta, int64_t width)
{
    const wide_matrix full = op(a.described(), trans);
    for (const stored_matrix<T> &stored : in_storages(a))
        for (const char *which : {"MV", "MM"}) {
            SCOPED_TRACE(stored.storage + which + " " + trans + " " + a.is.text());
            const int64_t columns = which[1] == 'V' ? 1 : width;
            const bool by_rows = which[1] == 'M' && !a.is.from_one;
            dense_operand<T> x(full.columns, columns, by_rows);
            const dense_operand<T> old(full.rows, columns, by_rows);
            operation<T> call{stored, a.is, trans, alpha, beta, x, old};
            call.y.elements = output(old.elements, beta);
            if (alpha == T(0)) // neither x nor A counts
                call.x.elements = output(x.elements, T(0));
            call.run(which);
            expect_product(call.y, alpha, full * x.wide_elements(), beta, old, full.columns);
            if (::testing::Test::HasFailure())
                return;
        }
}

template <class T>
void expect_solves(const sample<T> &a, char trans, T alpha, int64_t width)
{
    const wide_matrix full = op(a.described(), trans);
    for (const stored_matrix<T> &stored : in_storages(a))
        for (const char *which : {"SV", "SM"}) {
            SCOPED_TRACE(stored.storage + which + " " + trans + " " + a.is.text());
            const int64_t columns = which[1] == 'V' ? 1 : width;
            const bool by_rows = which[1] == 'M' && !a.is.from_one;
            dense_operand<T> x(full.columns, columns, by_rows);
            operation<T> call{stored, a.is, trans, alpha, T(0), x, x};
            call.y.elements = output(x.elements, T(0));
            call.run(which);
            const wide_matrix back = full * call.y.wide_elements();
            for (int64_t i = 0; i < full.rows; ++i)
                for (int64_t q = 0; q < columns; ++q)
                    expect_close(scalar<T>(static_cast<double>(std::real(back(i, q))),
                                           static_cast<double>(std::imag(back(i, q)))),
                                 widen(alpha) * widen(x(i, q)), full.rows, "op(A)*y", i, q);
            EXPECT_TRUE(call.y.elements.canaries_live());
            if (::testing::Test::HasFailure())
                return;
        }
}

/// Descriptions of a kind: triangles and diagonals as far as they count, else letters that mean nothing
std::vector<description> descriptions(char kind, bool from_one)
{
    std::vector<description> all;
    const std::string letters = kind == 'G' ? "*" : "Lu",
                      diagonals = kind == 'G' || kind == 'A' ? "*" : "nU";
    for (const char uplo : kind == 'D' ? std::string("*") : letters)
        for (const char diag : diagonals)
            all.push_back({kind, uplo, diag, from_one});
    return all;
}

template <class T>
struct spblas_products : ::testing::Test {
};
TYPED_TEST_SUITE(spblas_products, all_types);

TYPED_TEST(spblas_products, multiply_as_dense_matrices_do)
{
    using T = TypeParam;
    for (const char kind : {'G', 'S', 'H', 'T', 'A', 'D', 's', 't'})
        for (const bool from_one : {false, true})
            for (const description &is : descriptions(kind, from_one))
                for (const char trans : {'N', 'T', 'c'}) {
                    const bool general = kind == 'G';
                    const sample<T> a(8, general ? 6 : 8, is);
                    expect_products(a, trans, scalar<T>(.5, -1), T(0), 3);
                    expect_products(a, trans, T(1), scalar<T>(-2, .25), 2);
                    expect_products(a, trans, T(0), T(1), 1);
                }
}

TYPED_TEST(spblas_products, solve_what_products_make)
{
    using T = TypeParam;
    for (const char kind : {'T', 'D', 't'})
        for (const bool from_one : {false, true})
            for (const char uplo : {'L', 'U'})
                for (const char diag : {'N', 'u'})
                    for (const char trans : {'N', 't', 'C'})
                        for (const T alpha : {scalar<T>(2, 1), T(0)})
                            expect_solves(sample<T>(8, 8, {kind, uplo, diag, from_one}), trans, alpha, 3);
}

/// Enough work for several threads, both where lines are shared as they are and where each thread adds to a
/// vector of its own
TYPED_TEST(spblas_products, large_ones_are_shared_among_threads)
{
    using T = TypeParam;
    for (const bool from_one : {false, true}) {
        for (const char trans : {'N', 'T'})
            expect_products(sample<T>(400, 500, {'G', '*', '*', from_one}, .6), trans, T(2), T(-1), 3);
        expect_products(sample<T>(400, 400, {'H', 'L', 'N', from_one}, .7), 'N', T(1), T(0), 2);
        expect_solves(sample<T>(300, 300, {'T', 'U', 'N', from_one}, .5), 'N', T(1), 5);
    }
}

/// A matrix that is none but in its leading square writes no element that y does not have.
TYPED_TEST(spblas_products, rectangles_have_a_leading_square)
{
    using T = TypeParam;
    for (const char kind : {'S', 'T', 'A', 'D'})
        for (const char trans : {'N', 'T'})
            for (const auto &[m, k] : {std::pair(4, 8), std::pair(8, 4)}) {
                sample<T> a(m, k, {kind, 'L', 'N', true});
                const int64_t order = std::min(m, k);
                sample<T> square = a;
                std::erase_if(square.elements,
                              [&](const auto &e) { return std::max(e.row, e.column) >= order; });
                wide_matrix full(m, k);
                square.rows = square.columns = order;
                const wide_matrix inner = square.described();
                for (int64_t i = 0; i < order; ++i)
                    for (int64_t j = 0; j < order; ++j)
                        full(i, j) = inner(i, j);
                full = op(full, trans);
                for (const stored_matrix<T> &stored : {in_rows(a, true), in_columns(a), by_elements(a),
                                                       by_diagonals(a), in_blocks(a, 2, true)}) {
                    SCOPED_TRACE(stored.storage + kind + trans + (m < k ? "wide" : "tall"));
                    dense_operand<T> x(full.columns, 1, false);
                    const dense_operand<T> old(full.rows, 1, false);
                    operation<T> call{stored, a.is, trans, T(1), T(1), x, old};
                    call.run("MV");
                    expect_product(call.y, T(1), full * x.wide_elements(), T(1), old, full.columns);
                }
            }
}

/// The routines whose names say what the matrix is: square, from 1, or with CSPBLAS from 0
template <class T>
void expect_named(const std::string &prefix, const std::string &operation, char uplo, char trans, char diag,
                  const stored_matrix<T> &a, const wide_matrix &full)
{
    SCOPED_TRACE(prefix + a.storage + operation + " " + uplo + trans + diag);
    addresses given;
    if (operation != "GEMV")
        given.push_back(&uplo);
    if (operation != "SYMV")
        given.push_back(&trans);
    if (operation == "TRSV")
        given.push_back(&diag);
    given.push_back(&a.m);
    if (a.lb)
        given.push_back(&a.lb);
    for (const void *each : a.arrays())
        given.push_back(each);
    dense_operand<T> x(full.columns, 1, false), y(full.rows, 1, false);
    y.elements = output(y.elements, T(0));
    given.push_back(x.elements.data());
    given.push_back(y.elements.data());
    EXPECT_EQ(call(name_of<T>(prefix + a.storage + operation), given), 0);
    EXPECT_TRUE(y.elements.canaries_live());
    const wide_matrix result = full * (operation == "TRSV" ? y : x).wide_elements();
    const dense_operand<T> &expected = operation == "TRSV" ? x : y;
    for (int64_t i = 0; i < full.rows; ++i)
        expect_close(expected(i, 0), result(i, 0), full.rows, "result", i);
}

TYPED_TEST(spblas_products, names_describe_matrices_too)
{
    using T = TypeParam;
    for (const bool from_one : {false, true})
        for (const std::string operation : {"GEMV", "SYMV", "TRSV"})
            for (const char uplo : {'L', 'u'})
                for (const char trans : {'n', 'T', 'C'})
                    for (const char diag : {'N', 'U'}) {
                        const bool triangular = operation == "TRSV";
                        const char kind = triangular ? 'T' : operation[0] == 'G' ? 'G' : 'S';
                        const sample<T> a(6, 6, {kind, uplo, triangular ? diag : 'N', from_one});
                        const wide_matrix full = op(a.described(), operation == "SYMV" ? 'N' : trans);
                        const std::string prefix = from_one ? "XKL_?" : "XKL_CSPBLAS_?";
                        for (const stored_matrix<T> &stored :
                             {in_rows(a, false), by_elements(a), in_blocks(a, 3, false)})
                            expect_named(prefix, operation, uplo, trans, diag, stored, full);
                        if (from_one)
                            expect_named(prefix, operation, uplo, trans, diag, by_diagonals(a), full);
                    }
}

TYPED_TEST(spblas_products, sizes_of_zero)
{
    using T = TypeParam;
    for (const char kind : {'G', 'T', 'S'})
        for (const char trans : {'N', 'T'}) {
            const description is{kind, 'L', 'N', true};
            // No rows: y is empty. Rows without columns: y is multiplied with beta.
            for (const auto &[m, k] : {std::pair(0, 0), std::pair(0, 4), std::pair(4, 0)})
                expect_products(sample<T>(m, k, is), trans, T(1), T(2), 2);
            expect_products(sample<T>(4, 4, is), trans, T(1), T(2), 0);
        }
    expect_solves(sample<T>(0, 0, {'T', 'L', 'N', true}), 'N', T(1), 2);
    stored_matrix<T> blocks = in_blocks(sample<T>(4, 4, {'G', 'L', 'N', true}), 2, true);
    const int64_t no_order = 0;
    const T one = 1;
    const char trans = 'N', general[] = "GLNF";
    EXPECT_EQ(call(name_of<T>("XKL_?BSRMV"),
                   {&trans, &blocks.m, &blocks.k, &no_order, &one, general, blocks.values.data(),
                    blocks.integers[0].data(), blocks.integers[1].data(), blocks.integers[2].data(), &one,
                    &one, nullptr}),
              0);
}

/// Skyline storage has one triangle, which is no general matrix.
TYPED_TEST(spblas_products, skylines_are_not_general)
{
    using T = TypeParam;
    static std::string reported;
    const xkl_xerbla_handler before =
        xkl_set_xerbla([](const char *name, const int64_t *position, int64_t length) {
            reported = std::string(name, static_cast<size_t>(length)) + " " + std::to_string(*position);
        });
    const sample<T> a(4, 4, {'G', 'L', 'N', true});
    for (const char *which : {"MV", "MM"}) {
        const dense_operand<T> x(4, 1, false);
        operation<T> call{in_skyline(a), a.is, 'N', T(1), T(0), x, x};
        call.run(which);
        EXPECT_EQ(reported, name_of<T>(std::string("XKL_?SKY") + which) + (which[1] == 'V' ? " 5" : " 6"));
        EXPECT_TRUE(call.y.elements == x.elements);
    }
    xkl_set_xerbla(before);
}

/// A solution may take the place of the right-hand side.
TYPED_TEST(spblas_products, solve_in_place)
{
    using T = TypeParam;
    const sample<T> a(10, 10, {'T', 'L', 'N', false});
    for (stored_matrix<T> stored : in_storages(a)) {
        dense_operand<T> x(10, 1, false), apart = x;
        operation<T> call{stored, a.is, 'N', T(3), T(0), x, apart};
        call.run("SV");
        const std::string text = a.is.text();
        const T alpha = 3;
        const char trans = 'N';
        addresses given{&trans, &stored.m};
        if (stored.lb)
            given.push_back(&stored.lb);
        given.insert(given.end(), {&alpha, text.data()});
        for (const void *each : stored.arrays())
            given.push_back(each);
        given.insert(given.end(), {x.elements.data(), x.elements.data()});
        spblas_test::call(name_of<T>("XKL_?" + stored.storage + "SV"), given);
        EXPECT_TRUE(x.elements == call.y.elements) << stored.storage;
    }
}

} // namespace
