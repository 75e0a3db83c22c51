// Batches against the plain routine, matrix by matrix: groups of unequal and of zero size, few and many
// matrices, and several callers at once. The cases are large enough in sum to be shared by threads.
#include "blas_reference.h"

#include "service/service_entries.h"

#include <thread>

namespace {
using namespace blas_test;

BLAS_ENTRY(, gemm);
BLAS_ENTRY(, gemv);
BLAS_ENTRY(, trsm);
BLAS_ENTRY(, syrk);
BLAS_ENTRY(, axpy);
BLAS_ENTRY(, gemm_batch);
BLAS_ENTRY(, gemv_batch);
BLAS_ENTRY(, trsm_batch);
BLAS_ENTRY(, syrk_batch);
BLAS_ENTRY(, dgmm_batch);
BLAS_ENTRY(, axpy_batch);
BLAS_ENTRY(, copy_batch);
BLAS_ENTRY(, gemm_batch_strided);
BLAS_ENTRY(, gemv_batch_strided);
BLAS_ENTRY(, trsm_batch_strided);
BLAS_ENTRY(, syrk_batch_strided);
BLAS_ENTRY(, dgmm_batch_strided);
BLAS_ENTRY(, axpy_batch_strided);
BLAS_ENTRY(, copy_batch_strided);

/// What the matrices of a group have in common. All are square, so that one list serves every routine.
constexpr int64_t groups = 6, sizes[groups] = {3, 0, 150, 1, 0, 7}, order[groups] = {20, 9, 12, 70, 4, 1},
                  ld[groups] = {22, 9, 13, 70, 5, 1}, inc[groups] = {1, 1, -2, 3, 1, -1},
                  ones[groups] = {1, 1, 1, 1, 1, 1};
constexpr char trans[] = "NTCNTC", plain[] = "NTTNTN", side[] = "LRRLLR", uplo[] = "ULULUL",
               diag[] = "UUUUUU";

/// Matrices of all groups, each in its own piece of one array
template <class T>
struct pieces {
    std::vector<T> elements;
    std::vector<T *> addresses;
    std::vector<int64_t> group;

    pieces()
    {
        std::vector<int64_t> starts;
        int64_t length = 0;
        for (int64_t g = 0; g < groups; ++g)
            for (int64_t i = 0; i < sizes[g]; ++i) {
                group.push_back(g);
                starts.push_back(length);
                length += std::max(ld[g], std::abs(inc[g])) * order[g];
            }
        elements.resize(length);
        // Small enough that triangular solutions don't grow.
        std::generate(elements.begin(), elements.end(), [] { return random_element<T>() * T(.0625); });
        for (const int64_t start : starts)
            addresses.push_back(elements.data() + start);
    }
    pieces(const pieces &other) : elements(other.elements), addresses(other.addresses), group(other.group)
    {
        for (T *&each : addresses)
            each += elements.data() - other.elements.data();
    }
    const T *const *in() const { return addresses.data(); }
    T *const *out() { return addresses.data(); }
    int64_t count() const { return static_cast<int64_t>(addresses.size()); }
};

template <class T>
struct batches : ::testing::Test {
    pieces<T> a, b, c, old = c;
    std::vector<T> alpha, beta;

    batches()
    {
        for (int64_t g = 0; g < groups; ++g) {
            alpha.push_back(random_element<T>());
            beta.push_back(g == 2 ? T(0) : random_element<T>());
        }
    }
    void SetUp() override { xkl_serv_set_num_threads(4); }
    void TearDown() override { xkl_serv_set_num_threads(0); }

    /// What makes matrix i of group g by itself
    auto plain_product()
    {
        return [this](int64_t g, int64_t i, T *to) {
            gemm<T>(trans + g, plain + g, order + g, order + g, order + g, &alpha[g], a.in()[i], ld + g,
                    b.in()[i], ld + g, &beta[g], to, ld + g, 1, 1);
        };
    }
    /// Compares with what the plain routine makes of the old matrices.
    template <class Routine>
    void expect_each(const char *what, const Routine &routine)
    {
        pieces<T> expected = old;
        for (int64_t i = 0; i < c.count(); ++i)
            routine(c.group[i], i, expected.out()[i]);
        for (size_t at = 0; at < c.elements.size(); ++at)
            expect_close(c.elements[at], widen(expected.elements[at]), 70, what);
    }
};
TYPED_TEST_SUITE(batches, all_types);

TYPED_TEST(batches, groups_of_products_for_several_callers_at_once)
{
    std::vector<pieces<TypeParam>> outputs(3, this->c);
    std::vector<std::thread> callers;
    for (pieces<TypeParam> &each : outputs)
        callers.emplace_back([&] {
            gemm_batch<TypeParam>(trans, plain, order, order, order, this->alpha.data(), this->a.in(), ld,
                                  this->b.in(), ld, this->beta.data(), each.out(), ld, &groups, sizes, 0, 1,
                                  1);
        });
    for (std::thread &each : callers)
        each.join();
    for (const pieces<TypeParam> &each : outputs) {
        this->c.elements = each.elements;
        this->expect_each("gemm_batch", this->plain_product());
    }
}

TYPED_TEST(batches, groups_of_symmetric_products)
{
    syrk_batch<TypeParam>(uplo, plain, order, order, this->alpha.data(), this->a.in(), ld,
                          this->beta.data(), this->c.out(), ld, &groups, sizes, 0, 1, 1);
    this->expect_each("syrk_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        syrk<TypeParam>(uplo + g, plain + g, order + g, order + g, &this->alpha[g], this->a.in()[i], ld + g,
                        &this->beta[g], to, ld + g, 1, 1);
    });
}

TYPED_TEST(batches, groups_of_solutions)
{
    trsm_batch<TypeParam>(side, uplo, trans, diag, order, order, this->alpha.data(), this->a.in(), ld,
                          this->c.out(), ld, &groups, sizes, 0, 1, 1, 1, 1);
    this->expect_each("trsm_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        trsm<TypeParam>(side + g, uplo + g, trans + g, diag + g, order + g, order + g, &this->alpha[g],
                        this->a.in()[i], ld + g, to, ld + g, 1, 1, 1, 1);
    });
}

TYPED_TEST(batches, groups_of_vector_operations)
{
    gemv_batch<TypeParam>(trans, order, order, this->alpha.data(), this->a.in(), ld, this->b.in(), inc,
                          this->beta.data(), this->c.out(), inc, &groups, sizes, 0, 1);
    this->expect_each("gemv_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        gemv<TypeParam>(trans + g, order + g, order + g, &this->alpha[g], this->a.in()[i], ld + g,
                        this->b.in()[i], inc + g, &this->beta[g], to, inc + g, 1);
    });
    this->old.elements = this->c.elements;
    axpy_batch<TypeParam>(order, this->alpha.data(), this->a.in(), inc, this->c.out(), ones, &groups, sizes,
                          0);
    this->expect_each("axpy_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        axpy<TypeParam>(order + g, &this->alpha[g], this->a.in()[i], inc + g, to, ones + g);
    });
    this->old.elements = this->c.elements;
    copy_batch<TypeParam>(order, this->b.in(), ones, this->c.out(), inc, &groups, sizes, 0);
    this->expect_each("copy_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        const int64_t step = std::abs(inc[g]);
        for (int64_t u = 0; u < order[g]; ++u)
            to[inc[g] > 0 ? u * step : (order[g] - 1 - u) * step] = this->b.in()[i][u];
    });
}

/// C := diag(x)*A or A*diag(x), by its definition
template <class T>
void expected_dgmm(char left_or_right, int64_t n, const T *a, int64_t lda, const T *x, int64_t incx, T *c,
                   int64_t ldc)
{
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < n; ++i) {
            const int64_t u = left_or_right == 'L' ? i : j;
            c[i + j * ldc] = x[incx > 0 ? u * incx : (u - n + 1) * incx] * a[i + j * lda];
        }
}

TYPED_TEST(batches, groups_of_diagonal_products)
{
    dgmm_batch<TypeParam>(side, order, order, this->a.in(), ld, this->b.in(), inc, this->c.out(), ld,
                          &groups, sizes, 0, 1);
    this->expect_each("dgmm_batch", [this](int64_t g, int64_t i, TypeParam *to) {
        expected_dgmm(side[g], order[g], this->a.in()[i], ld[g], this->b.in()[i], inc[g], to, ld[g]);
    });
}

TYPED_TEST(batches, nothing_happens_without_groups)
{
    for (const int64_t none : {int64_t{0}, int64_t{-1}}) {
        axpy_batch<TypeParam>(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &none, nullptr, 0);
        copy_batch<TypeParam>(nullptr, nullptr, nullptr, nullptr, nullptr, &none, nullptr, 0);
        gemm_batch_strided<TypeParam>("N", "N", ld, ld, ld, nullptr, nullptr, ld, ld, nullptr, ld, ld,
                                      nullptr, nullptr, ld, ld, &none, 1, 1);
    }
    const int64_t negative[] = {-2, 0}, two = 2, minus[] = {-5, 5};
    axpy_batch<TypeParam>(minus, this->alpha.data(), nullptr, ones, nullptr, ones, &two, negative, 0);
}

TYPED_TEST(batches, at_strides)
{
    using T = TypeParam;
    const int64_t n = 12, lda = 13, stride = 160, count = 150, once = 0, step = -2;
    const auto part = [&](int64_t i) { return i * stride; };
    std::vector<T> c(stride * count), expected;
    std::generate(c.begin(), c.end(), [] { return random_element<T>(); });
    const T *a = this->a.elements.data(), *b = this->b.elements.data();
    const T alpha = random_element<T>(), beta = random_element<T>();
    const auto expect_each = [&](const char *what, const auto &routine) {
        for (int64_t i = 0; i < count; ++i)
            routine(i, expected.data() + part(i));
        for (size_t at = 0; at < c.size(); ++at)
            expect_close(c[at], widen(expected[at]), 40, what);
        expected = c;
    };
    expected = c;
    gemm_batch_strided<T>("N", "T", &n, &n, &n, &alpha, a, &lda, &stride, b, &lda, &once, &beta, c.data(),
                          &lda, &stride, &count, 1, 1);
    expect_each("gemm", [&](int64_t i, T *to) {
        gemm<T>("N", "T", &n, &n, &n, &alpha, a + part(i), &lda, b, &lda, &beta, to, &lda, 1, 1);
    });
    syrk_batch_strided<T>("L", "N", &n, &n, &alpha, a, &lda, &stride, &beta, c.data(), &lda, &stride,
                          &count, 1, 1);
    expect_each("syrk", [&](int64_t i, T *to) {
        syrk<T>("L", "N", &n, &n, &alpha, a + part(i), &lda, &beta, to, &lda, 1, 1);
    });
    trsm_batch_strided<T>("R", "U", "T", "U", &n, &n, &alpha, a, &lda, &once, c.data(), &lda, &stride,
                          &count, 1, 1, 1, 1);
    expect_each("trsm", [&](int64_t, T *to) {
        trsm<T>("R", "U", "T", "U", &n, &n, &alpha, a, &lda, to, &lda, 1, 1, 1, 1);
    });
    gemv_batch_strided<T>("T", &n, &n, &alpha, a, &lda, &once, b, &step, &stride, &beta, c.data(), ones,
                          &stride, &count, 1);
    expect_each("gemv", [&](int64_t i, T *to) {
        gemv<T>("T", &n, &n, &alpha, a, &lda, b + part(i), &step, &beta, to, ones, 1);
    });
    dgmm_batch_strided<T>("R", &n, &n, a, &lda, &stride, b, &step, &once, c.data(), &lda, &stride, &count,
                          1);
    expect_each("dgmm",
                [&](int64_t i, T *to) { expected_dgmm('R', n, a + part(i), lda, b, step, to, lda); });
    axpy_batch_strided<T>(&n, &alpha, a, &step, &once, c.data(), ones, &stride, &count);
    expect_each("axpy", [&](int64_t, T *to) { axpy<T>(&n, &alpha, a, &step, to, ones); });
    copy_batch_strided<T>(&n, b, ones, &stride, c.data(), ones, &stride, &count);
    expect_each("copy", [&](int64_t i, T *to) { std::copy_n(b + part(i), n, to); });
}

template <class T>
using complex_batches = batches<T>;
TYPED_TEST_SUITE(complex_batches, complex_types);

TYPED_TEST(complex_batches, products_with_three_real_ones)
{
    pick<TypeParam>(0, 0, xkl_blas_cgemm3m_batch, xkl_blas_zgemm3m_batch)(
        trans, plain, order, order, order, this->alpha.data(), this->a.in(), ld, this->b.in(), ld,
        this->beta.data(), this->c.out(), ld, &groups, sizes, 0, 1, 1);
    this->expect_each("gemm3m_batch", this->plain_product());
}

} // namespace
