// Products that OpenBLAS doesn't have: one triangle of a product, a real matrix by complex ones, two
// products with one matrix, triangular ones out of place and packed. Sizes lie around the blocks in which
// the routines work.
#include "blas_reference.h"

namespace {
using namespace blas_test;

BLAS_ENTRY(, gemmt);
BLAS_ENTRY(, trmm_oop);
BLAS_ENTRY(, trsm_oop);

struct shape {
    int64_t m, n, k = 0;
};

template <class T>
struct products : ::testing::Test {
    const T alpha = scalar<T>(1.25, -.5), betas[2] = {T(0), scalar<T>(-.5, .75)};
};
TYPED_TEST_SUITE(products, all_types);

TYPED_TEST(products, one_triangle)
{
    using T = TypeParam;
    for (const auto &[n, unused, k] :
         {shape{1, 0, 1}, {7, 0, 3}, {49, 0, 4}, {117, 0, 20}, {6, 0, 0}, {0, 0, 4}})
        for (const char *o : {"UNN", "lTC", "UCT", "lNT", "uCN"})
            for (const T &beta : this->betas) {
                const char uplo = o[0] == 'l' ? 'L' : 'U';
                const matrix<T> a = o[1] == 'N' ? matrix<T>(n, k) : matrix<T>(k, n);
                const matrix<T> b = o[2] == 'N' ? matrix<T>(k, n) : matrix<T>(n, k), old(n, n);
                matrix<T> c = triangle(output(old, beta), uplo, 'N', T(5), T(0));
                gemmt<T>(o, o + 1, o + 2, &n, &k, &this->alpha, a.data(), &a.ld, b.data(), &b.ld, &beta,
                         c.data(), &c.ld, 1, 1, 1);
                c.for_each([&](int64_t i, int64_t j, T &element) {
                    if (i != j && (uplo == 'U') == (i > j)) {
                        EXPECT_EQ(element, T(5)) << o;
                        element = beta * old(i, j); // what an update by nothing leaves
                    }
                });
                wide_matrix product = op(a, o[1]) * op(b, o[2]);
                for (int64_t j = 0; j < n; ++j)
                    for (int64_t i = 0; i < n; ++i)
                        if (i != j && (uplo == 'U') == (i > j))
                            product(i, j) = 0;
                expect_update(c, this->alpha, product, beta, old, 2 * k, o);
            }
}

/// A triangle whose inverse stays small
template <class T>
matrix<T> tame(int64_t order)
{
    matrix<T> a(order, order);
    a.for_each([&](int64_t i, int64_t j, T &element) {
        element = element * T(i == j ? .25 : 1. / static_cast<double>(order)) + T(i == j);
    });
    return a;
}

constexpr const char *triangular_options[] = {"LUNN", "LUTN", "LUCU", "LLNU", "LLTN", "LLCN",
                                              "RUNN", "RUTU", "RUCN", "RLNN", "RLTU", "RLCN"};

/// op(A)*B or B*op(A)
wide_matrix beside(char side, const wide_matrix &a, const wide_matrix &b)
{
    return side == 'L' ? a * b : b * a;
}

TYPED_TEST(products, triangular_out_of_place)
{
    using T = TypeParam;
    for (const auto &[m, n, unused] : {shape{1, 1}, {5, 7}, {65, 34}, {33, 130}})
        for (const char *o : triangular_options)
            for (const T &beta : this->betas) {
                const matrix<T> whole = tame<T>(o[0] == 'L' ? m : n), b(m, n), old(m, n);
                const matrix<T> a = triangle(whole, o[1], o[3], not_a_number<T>(), not_a_number<T>());
                const wide_matrix factor = op(triangle(whole, o[1], o[3], T(0), T(1)), o[2]);
                const matrix<T> old_b = b;
                matrix<T> c = output(old, beta);
                trmm_oop<T>(o, o + 1, o + 2, o + 3, &m, &n, &this->alpha, a.data(), &a.ld, b.data(), &b.ld,
                            &beta, c.data(), &c.ld, 1, 1, 1, 1);
                expect_update(c, this->alpha, beside(o[0], factor, op(b, 'N')), beta, old, 2 * whole.rows,
                              o);
                c = output(old, beta);
                trsm_oop<T>(o, o + 1, o + 2, o + 3, &m, &n, &this->alpha, a.data(), &a.ld, b.data(), &b.ld,
                            &beta, c.data(), &c.ld, 1, 1, 1, 1);
                // Multiplied back, what was added to beta*C must be alpha*B.
                wide_matrix added = op(c, 'N');
                const wide_matrix before = op(old, 'N');
                for (int64_t at = 0; beta != T(0) && at < m * n; ++at)
                    added.elements[at] -= widen(beta) * before.elements[at];
                const wide_matrix back = beside(o[0], factor, added);
                for (int64_t at = 0; at < m * n; ++at)
                    expect_close(b(at % b.rows, at / b.rows), back.elements[at] / widen(this->alpha),
                                 4 * whole.rows, o);
                EXPECT_TRUE(c.canaries_live()) << o;
                EXPECT_EQ(b, old_b) << o;
            }
}

TYPED_TEST(products, triangular_onto_itself_and_without_product)
{
    using T = TypeParam;
    const int64_t m = 9, n = 4;
    const T zero = 0, one = 1;
    const matrix<T> a = tame<T>(m), b(m, n);
    matrix<T> c = b;
    trmm_oop<T>("L", "U", "N", "N", &m, &n, &this->alpha, a.data(), &a.ld, c.data(), &c.ld, &zero, c.data(),
                &c.ld, 1, 1, 1, 1);
    expect_update(c, this->alpha, op(triangle(a, 'U', 'N', zero, zero), 'N') * op(b, 'N'), zero, b, 2 * m,
                  "onto");
    trsm_oop<T>("L", "U", "N", "N", &m, &n, &one, a.data(), &a.ld, c.data(), &c.ld, &zero, c.data(), &c.ld,
                1, 1, 1, 1);
    expect_update(c, this->alpha, op(b, 'N'), zero, b, 4 * m, "and back");
    for (const auto routine : {trmm_oop<T>, trsm_oop<T>}) {
        c = output(b, zero);
        routine("L", "U", "N", "N", &m, &n, &zero, nullptr, &a.ld, nullptr, &c.ld, &zero, c.data(), &c.ld,
                1, 1, 1, 1);
        expect_update(c, zero, op(b, 'N'), zero, b, 1, "alpha 0");
    }
}

template <class T>
using packed_products = products<T>;
TYPED_TEST_SUITE(packed_products, real_types);

TYPED_TEST(packed_products, triangular)
{
    using T = TypeParam;
    constexpr auto ptrmm = pick<T>(xkl_blas_sptrmm, xkl_blas_dptrmm, 0, 0);
    for (const auto &[m, n, unused] : {shape{1, 1}, {5, 7}, {64, 3}, {65, 70}, {131, 129}})
        for (const char *o : triangular_options) {
            const matrix<T> a(o[0] == 'L' ? m : n, o[0] == 'L' ? m : n), old(m, n);
            std::vector<T> packed;
            for (int64_t j = 0; j < a.columns; ++j)
                for (int64_t i = o[1] == 'U' ? 0 : j; i < (o[1] == 'U' ? j + 1 : a.rows); ++i)
                    packed.push_back(i == j && o[3] == 'U' ? not_a_number<T>() : a(i, j));
            matrix<T> b = old;
            ptrmm(o, o + 1, o + 2, o + 3, &m, &n, &this->alpha, packed.data(), b.data(), &b.ld, 1, 1, 1, 1);
            const wide_matrix factor = op(triangle(a, o[1], o[3], T(0), T(1)), o[2]);
            expect_update(b, this->alpha, beside(o[0], factor, op(old, 'N')), T(0), old, a.rows, o);
        }
}

template <class T>
using mixed_products = products<T>;
TYPED_TEST_SUITE(mixed_products, complex_types);

TYPED_TEST(mixed_products, real_matrix_by_complex_matrix)
{
    using T = TypeParam;
    using R = real_of<T>;
    constexpr auto gemm = pick<T>(0, 0, xkl_blas_scgemm, xkl_blas_dzgemm);
    for (const auto &[m, n, k] :
         {shape{1, 1, 1}, {5, 3, 9}, {65, 33, 130}, {513, 40, 7}, {3, 4, 0}, {0, 4, 2}})
        for (const char *o : {"NN", "NT", "NC", "TN", "TC", "CT"})
            for (const T &beta : this->betas) {
                const matrix<R> a = o[0] == 'N' ? matrix<R>(m, k) : matrix<R>(k, m);
                const matrix<T> b = o[1] == 'N' ? matrix<T>(k, n) : matrix<T>(n, k), old(m, n);
                matrix<T> c = output(old, beta);
                gemm(o, o + 1, &m, &n, &k, &this->alpha, a.data(), &a.ld, b.data(), &b.ld, &beta, c.data(),
                     &c.ld, 1, 1);
                expect_update(c, this->alpha, op(a, o[0]) * op(b, o[1]), beta, old, 2 * k, o);
            }
}

// The last number of a shape stands for a pair of increments.
constexpr shape vector_shapes[] = {{1, 1, 0},     {7, 4, 1},   {40, 1100, 2},
                                   {600, 130, 1}, {600, 0, 0}, {0, 6, 0}};
constexpr int64_t increments[][2] = {{1, 1}, {-1, 2}, {3, -2}};

TYPED_TEST(mixed_products, real_matrix_by_complex_vector)
{
    using T = TypeParam;
    constexpr auto gemv = pick<T>(0, 0, xkl_blas_scgemv, xkl_blas_dzgemv);
    for (const auto &[m, n, pair] : vector_shapes)
        for (const char trans : {'N', 'T', 'C'})
            for (const T &beta : this->betas) {
                const auto &[incx, incy] = increments[pair];
                const matrix<real_of<T>> a(m, n);
                const strided<T> x(trans == 'N' ? n : m, incx), old(trans == 'N' ? m : n, incy);
                strided<T> y = m * n > 0 ? output(old, beta) : old;
                gemv(&trans, &m, &n, &this->alpha, a.data(), &a.ld, x.data(), &incx, &beta, y.data(), &incy,
                     1);
                if (m * n > 0)
                    expect_update(y, this->alpha, op(a, trans) * op(x), beta, old, 2 * x.n, "y");
                else
                    EXPECT_EQ(y, old);
            }
}

TYPED_TEST(products, two_vectors_with_one_matrix)
{
    using T = TypeParam;
    constexpr auto gem2v = pick<T>(xkl_blas_sgem2vu, xkl_blas_dgem2vu, xkl_blas_cgem2vc, xkl_blas_zgem2vc);
    for (const auto &[m, n, pair] : vector_shapes)
        for (const T &beta : this->betas) {
            const auto &[incx, incy] = increments[pair];
            const matrix<T> a(m, n);
            const strided<T> x1(n, incx), x2(m, incy), old1(m, incx), old2(n, incy);
            strided<T> y1 = m * n > 0 ? output(old1, beta) : old1,
                       y2 = m * n > 0 ? output(old2, beta) : old2;
            gem2v(&m, &n, &this->alpha, a.data(), &a.ld, x1.data(), &incx, x2.data(), &incy, &beta,
                  y1.data(), &incx, y2.data(), &incy);
            if (m * n == 0) {
                EXPECT_TRUE(y1 == old1 && y2 == old2);
                continue;
            }
            expect_update(y1, this->alpha, op(a, 'N') * op(x1), beta, old1, 2 * n, "y1");
            expect_update(y2, this->alpha, op(a, 'C') * op(x2), beta, old2, 2 * m, "y2");
        }
}

} // namespace
