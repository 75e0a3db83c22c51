// Products that OpenBLAS doesn't have: one triangle of a product, a real matrix by complex ones, two
// products with one matrix, triangular ones out of place and packed. Sizes lie around the blocks in which
// the routines work.
#include "blas_reference.h"

#include <tuple>

namespace {
using namespace blas_test;

BLAS_ENTRY(, gemmt);
BLAS_ENTRY(, trmm_oop);
BLAS_ENTRY(, trsm_oop);

template <class T>
struct products : ::testing::Test {
    const T alpha = scalar<T>(1.25, -.5), beta = scalar<T>(-.5, .75);
    static std::string letters(std::initializer_list<char> options) { return std::string(options); }
};
TYPED_TEST_SUITE(products, all_types);

/// The old C as beta sees it: with a beta of 0 it isn't read, so that NaN may stand there.
template <class T>
wide kept(const T &beta, const matrix<T> &old, int64_t i, int64_t j)
{
    return beta == T(0) ? wide(0) : widen(beta) * widen(old(i, j));
}

template <class T>
matrix<T> output(int64_t m, int64_t n, const T &beta)
{
    matrix<T> c(m, n);
    if (beta == T(0))
        c.fill(not_a_number<T>());
    return c;
}

TYPED_TEST(products, one_triangle)
{
    using T = TypeParam;
    const std::tuple<int64_t, int64_t> sizes[] = {{1, 1},    {7, 3}, {48, 5}, {49, 4},
                                                  {117, 20}, {6, 0}, {0, 4}};
    for (const auto &[n, k] : sizes)
        for (const char uplo : {'U', 'l'})
            for (const char transa : {'N', 'T', 'C'})
                for (const char transb : {'N', 'T', 'C'})
                    for (const T &beta : {T(0), this->beta}) {
                        const matrix<T> a(transa == 'N' ? n : k, transa == 'N' ? k : n);
                        const matrix<T> b(transb == 'N' ? k : n, transb == 'N' ? n : k);
                        matrix<T> c = output(n, n, beta);
                        const auto outside = [&](int64_t i, int64_t j) {
                            return uplo == 'U' ? i > j : i < j;
                        };
                        for (int64_t j = 0; j < n; ++j)
                            for (int64_t i = 0; i < n; ++i)
                                if (outside(i, j))
                                    c(i, j) = T(5);
                        const matrix<T> old = c;
                        gemmt<T>(&uplo, &transa, &transb, &n, &k, &this->alpha, a.data(), &a.ld, b.data(),
                                 &b.ld, &beta, c.data(), &c.ld, 1, 1, 1);
                        expect_matrix(c, 2 * k, this->letters({uplo, transa, transb}),
                                      [&](int64_t i, int64_t j) {
                                          if (outside(i, j))
                                              return wide(5);
                                          const wide product = inner(
                                              k, [&](int64_t p) { return op(a, transa, i, p); },
                                              [&](int64_t p) { return op(b, transb, p, j); });
                                          return widen(this->alpha) * product + kept(beta, old, i, j);
                                      });
                    }
}

/// inv(op(A)) or op(A), from the left or the right, times B: element (i, j)
template <class T>
std::vector<wide> triangular_product(bool solve, char side, const matrix<T> &a, char trans,
                                     const matrix<T> &b)
{
    const int64_t order = a.rows, m = b.rows, n = b.columns, across = side == 'L' ? n : m;
    std::vector<wide> result(m * n);
    const bool lower = widen(a(order - 1, 0)) != wide(0) ? trans == 'N' : trans != 'N';
    for (int64_t v = 0; v < across; ++v) {
        const auto x = [&](int64_t u) -> wide & {
            return side == 'L' ? result[u + v * m] : result[v + u * m];
        };
        const auto right = [&](int64_t u) { return widen(side == 'L' ? b(u, v) : b(v, u)); };
        const auto left = [&](int64_t u, int64_t p) {
            return side == 'L' ? op(a, trans, u, p) : op(a, trans, p, u);
        };
        const bool forward = lower == (side == 'L');
        for (int64_t step = 0; step < order; ++step) {
            const int64_t u = forward ? step : order - 1 - step;
            if (!solve) {
                x(u) = inner(
                    order, [&](int64_t p) { return left(u, p); }, right);
                continue;
            }
            wide rest = right(u);
            for (int64_t p = 0; p < order; ++p)
                if (forward ? p < u : p > u)
                    rest -= left(u, p) * x(p);
            x(u) = rest / left(u, u);
        }
    }
    return result;
}

/// A triangle whose inverse stays small
template <class T>
matrix<T> tame(int64_t order)
{
    matrix<T> a(order, order);
    for (int64_t i = 0; i < order; ++i) {
        for (int64_t j = 0; j < order; ++j)
            a(i, j) *= T(i == j ? .25 : 1. / static_cast<double>(order));
        a(i, i) += T(1);
    }
    return a;
}

/// The same with NaN where the triangle isn't read
template <class T>
matrix<T> unread_spoiled(const matrix<T> &a, char uplo, char diag)
{
    matrix<T> spoiled = a;
    for (int64_t j = 0; j < a.columns; ++j)
        for (int64_t i = 0; i < a.rows; ++i)
            if (i == j ? diag == 'U' : (uplo == 'U') != (i < j))
                spoiled(i, j) = not_a_number<T>();
    return spoiled;
}

constexpr const char *triangular_options[] = {"LUNN", "LUTN", "LUCU", "LLNU", "LLTN", "LLCN",
                                              "RUNN", "RUTU", "RUCN", "RLNN", "RLTU", "RLCN"};
constexpr std::tuple<int64_t, int64_t> triangular_sizes[] = {{1, 1}, {5, 7}, {65, 34}, {33, 130}};

template <class T>
void check_out_of_place(bool solve, const T &alpha, const T &beta)
{
    for (const auto &[m, n] : triangular_sizes)
        for (const char *o : triangular_options) {
            const matrix<T> whole = tame<T>(o[0] == 'L' ? m : n), a = unread_spoiled(whole, o[1], o[3]),
                            b(m, n);
            matrix<T> c = output(m, n, beta);
            const matrix<T> old = c, old_b = b;
            (solve ? trsm_oop<T> : trmm_oop<T>)(o, o + 1, o + 2, o + 3, &m, &n, &alpha, a.data(), &a.ld,
                                                b.data(), &b.ld, &beta, c.data(), &c.ld, 1, 1, 1, 1);
            const auto x = triangular_product(solve, o[0], triangle(whole, o[1], o[3]), o[2], b);
            expect_matrix(c, 2 * whole.rows, o, [&](int64_t i, int64_t j) {
                return widen(alpha) * x[i + j * b.rows] + kept(beta, old, i, j);
            });
            EXPECT_EQ(b, old_b) << o;
        }
}

TYPED_TEST(products, triangular_out_of_place)
{
    for (const TypeParam &beta : {TypeParam(0), this->beta})
        for (const bool solve : {false, true})
            check_out_of_place(solve, this->alpha, beta);
}

TYPED_TEST(products, triangular_out_of_place_onto_itself_and_without_product)
{
    using T = TypeParam;
    const int64_t m = 9, n = 4;
    const T zero = 0;
    const matrix<T> a = tame<T>(m), b(m, n);
    for (const bool solve : {false, true}) {
        matrix<T> c = b;
        (solve ? trsm_oop<T> : trmm_oop<T>)("L", "U", "N", "N", &m, &n, &this->alpha, a.data(), &a.ld,
                                            c.data(), &c.ld, &zero, c.data(), &c.ld, 1, 1, 1, 1);
        const auto x = triangular_product(solve, 'L', triangle(a, 'U', 'N'), 'N', b);
        expect_matrix(c, 2 * m, "in place",
                      [&](int64_t i, int64_t j) { return widen(this->alpha) * x[i + j * m]; });
        (solve ? trsm_oop<T> : trmm_oop<T>)("L", "U", "N", "N", &m, &n, &zero, nullptr, &a.ld, nullptr,
                                            &c.ld, &zero, c.data(), &c.ld, 1, 1, 1, 1);
        expect_matrix(c, 0, "alpha 0", [](int64_t, int64_t) { return wide(0); });
    }
}

template <class T>
using packed_products = products<T>;
TYPED_TEST_SUITE(packed_products, real_types);

TYPED_TEST(packed_products, triangular)
{
    using T = TypeParam;
    constexpr auto ptrmm = pick<T>(xkl_blas_sptrmm, xkl_blas_dptrmm, 0, 0);
    const std::tuple<int64_t, int64_t> sizes[] = {{1, 1}, {5, 7}, {64, 3}, {65, 70}, {131, 129}};
    for (const auto &[m, n] : sizes)
        for (const char *o : triangular_options) {
            const matrix<T> whole = tame<T>(o[0] == 'L' ? m : n), a = unread_spoiled(whole, o[1], o[3]),
                            old(m, n);
            std::vector<T> packed;
            for (int64_t j = 0; j < a.columns; ++j)
                for (int64_t i = o[1] == 'U' ? 0 : j; i < (o[1] == 'U' ? j + 1 : a.rows); ++i)
                    packed.push_back(a(i, j));
            matrix<T> b = old;
            ptrmm(o, o + 1, o + 2, o + 3, &m, &n, &this->alpha, packed.data(), b.data(), &b.ld, 1, 1, 1, 1);
            const auto x = triangular_product(false, o[0], triangle(whole, o[1], o[3]), o[2], old);
            expect_matrix(b, 2 * whole.rows, o,
                          [&](int64_t i, int64_t j) { return widen(this->alpha) * x[i + j * old.rows]; });
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
    const std::tuple<int64_t, int64_t, int64_t> sizes[] = {
        {1, 1, 1}, {5, 3, 9}, {65, 33, 130}, {513, 40, 7}, {3, 4, 0}};
    for (const auto &[m, n, k] : sizes)
        for (const char transa : {'N', 'T', 'C'})
            for (const char transb : {'N', 'T', 'C'})
                for (const T &beta : {T(0), this->beta}) {
                    const matrix<R> a(transa == 'N' ? m : k, transa == 'N' ? k : m);
                    const matrix<T> b(transb == 'N' ? k : n, transb == 'N' ? n : k);
                    matrix<T> c = output(m, n, beta);
                    const matrix<T> old = c;
                    gemm(&transa, &transb, &m, &n, &k, &this->alpha, a.data(), &a.ld, b.data(), &b.ld,
                         &beta, c.data(), &c.ld, 1, 1);
                    expect_matrix(c, 2 * k, this->letters({transa, transb}), [&](int64_t i, int64_t j) {
                        const wide product = inner(
                            old.rows == 0 ? 0 : (transa == 'N' ? a.columns : a.rows),
                            [&](int64_t p) { return op(a, transa, i, p); },
                            [&](int64_t p) { return op(b, transb, p, j); });
                        return widen(this->alpha) * product + kept(beta, old, i, j);
                    });
                }
}

/// y against alpha*op(A)*x + beta*old
template <class T, class M>
void expect_matrix_vector(const strided<T> &y, const T &alpha, const matrix<M> &a, char trans,
                          const strided<T> &x, const T &beta, const strided<T> &old)
{
    for (int64_t i = 0; i < y.n; ++i) {
        const wide product = inner(
            x.n, [&](int64_t p) { return op(a, trans, i, p); }, [&](int64_t p) { return widen(x[p]); });
        expect_close(y[i], widen(alpha) * product + (beta == T(0) ? wide(0) : widen(beta) * widen(old[i])),
                     2 * x.n, std::string("y, ") + trans);
    }
    EXPECT_TRUE(y.gaps_are_whole());
}

template <class T>
strided<T> output_vector(int64_t n, int64_t inc, const T &beta)
{
    strided<T> y(n, inc);
    for (int64_t i = 0; beta == T(0) && i < n; ++i)
        y[i] = not_a_number<T>();
    return y;
}

constexpr std::tuple<int64_t, int64_t> vector_sizes[] = {{1, 1}, {7, 4}, {40, 1100}, {600, 130}};
constexpr std::tuple<int64_t, int64_t> increments[] = {{1, 1}, {-1, 2}, {3, -2}};

TYPED_TEST(mixed_products, real_matrix_by_complex_vector)
{
    using T = TypeParam;
    constexpr auto gemv = pick<T>(0, 0, xkl_blas_scgemv, xkl_blas_dzgemv);
    for (const auto &[m, n] : vector_sizes)
        for (const auto &[incx, incy] : increments)
            for (const char trans : {'N', 'T', 'C'})
                for (const T &beta : {T(0), this->beta}) {
                    const matrix<real_of<T>> a(m, n);
                    strided<T> x(trans == 'N' ? n : m, incx),
                        y = output_vector(trans == 'N' ? m : n, incy, beta);
                    const strided<T> old = y;
                    gemv(&trans, &m, &n, &this->alpha, a.data(), &a.ld, x.data(), &incx, &beta, y.data(),
                         &incy, 1);
                    expect_matrix_vector(y, this->alpha, a, trans, x, beta, old);
                }
}

TYPED_TEST(products, two_vectors_with_one_matrix)
{
    using T = TypeParam;
    constexpr auto gem2v = pick<T>(xkl_blas_sgem2vu, xkl_blas_dgem2vu, xkl_blas_cgem2vc, xkl_blas_zgem2vc);
    for (const auto &[m, n] : vector_sizes)
        for (const auto &[incx, incy] : increments)
            for (const T &beta : {T(0), this->beta}) {
                const matrix<T> a(m, n);
                strided<T> x1(n, incx), x2(m, incy), y1 = output_vector(m, incx, beta),
                                                     y2 = output_vector(n, incy, beta);
                const strided<T> old1 = y1, old2 = y2;
                gem2v(&m, &n, &this->alpha, a.data(), &a.ld, x1.data(), &incx, x2.data(), &incy, &beta,
                      y1.data(), &incx, y2.data(), &incy);
                expect_matrix_vector(y1, this->alpha, a, 'N', x1, beta, old1);
                expect_matrix_vector(y2, this->alpha, a, 'C', x2, beta, old2);
            }
}

} // namespace
