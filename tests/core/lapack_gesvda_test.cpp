// Truncated singular value decompositions of batches, judged by what they claim: the factors are
// orthonormal, the values those that the matrices were made with, and the residual what is missing.
#include "blas_reference.h"

#include "lapack/call.h"
#include "service/service_entries.h"

namespace {
using namespace blas_test;
using xkl::core::call;
namespace entries = xkl::core::entries;

constexpr int64_t unfound = -5;

template <class T>
struct gesvda : ::testing::Test {
    using real = real_of<T>;
    static constexpr real eps = std::numeric_limits<real>::epsilon();

    int64_t m = 40, n = 6, count = 30, lda = 43, ldu = 41, ldvt = 7;
    int64_t stridea = 0, strideu = 0, stridevt = 0, strides = 0;
    int64_t iparm[16] = {0, 1};
    real tolerance = 0;
    std::vector<int64_t> rank, info;
    std::vector<T> a, original, u, vt, work;
    std::vector<real> s, residual, values; // values: those of every matrix

    void SetUp() override { xkl_serv_set_num_threads(3); }
    void TearDown() override { xkl_serv_set_num_threads(0); }

    /// Matrices with singular values 1, ratio, ratio**2...
    void make(int64_t rows, int64_t columns, real ratio)
    {
        m = rows, n = columns;
        lda = m + 3, ldu = m + 1, ldvt = n + 1;
        stridea = lda * n + 2, strideu = ldu * n + 1, stridevt = ldvt * n + 4, strides = n + 2;
        values.assign(n, 1);
        for (int64_t i = 1; i < n; ++i)
            values[i] = values[i - 1] * ratio;
        a.assign(stridea * count, T(0));
        u.assign(strideu * count, T(9));
        vt.assign(stridevt * count, T(9));
        s.assign(strides * count, 9);
        residual.assign(count, 9);
        rank.assign(count, unfound);
        info.assign(count, unfound);
        std::vector<int64_t> seed = {1, 2, 3, 5};
        std::vector<T> space(3 * m);
        for (int64_t i = 0; i < count; ++i) {
            std::vector<real> given = values;
            int64_t made = 1;
            const int64_t mode = 0;
            call(entries::latms<T>, m, n, 'U', seed.data(), 'N', given.data(), mode, real(1), real(1),
                 m - 1, n - 1, 'N', a.data() + i * stridea, lda, space.data(), &made);
            ASSERT_EQ(made, 0);
        }
        original = a;
    }
    int64_t asked()
    {
        int64_t lwork = 0, done = 1;
        call(entries::gesvda_batch_getsizes<T>, iparm, m, n, count, &lwork, &done);
        EXPECT_EQ(done, 0);
        return lwork;
    }
    void run(int64_t lwork)
    {
        a = original;
        work.assign(std::max<int64_t>(lwork, 1), T(0));
        call(entries::gesvda_batch_strided<T>, iparm, rank.data(), m, n, a.data(), lda, stridea, s.data(),
             strides, u.data(), ldu, strideu, vt.data(), ldvt, stridevt, tolerance, residual.data(),
             work.data(), lwork, count, info.data());
    }
    const T *matrix_of(const std::vector<T> &all, int64_t stride, int64_t i)
    {
        return all.data() + i * stride;
    }

    /// norm(A - U*S*V**H) over norm(A)
    real what_is_missing(int64_t i)
    {
        long double missing = 0, whole = 0;
        for (int64_t column = 0; column < n; ++column)
            for (int64_t row = 0; row < m; ++row) {
                const wide wanted = widen(original[i * stridea + row + column * lda]);
                wide sum = 0;
                for (int64_t k = 0; k < rank[i]; ++k)
                    sum += widen(u[i * strideu + row + k * ldu]) * wide(s[i * strides + k]) *
                           widen(vt[i * stridevt + k + column * ldvt]);
                missing += std::norm(wanted - sum);
                whole += std::norm(wanted);
            }
        return static_cast<real>(std::sqrt(missing / whole));
    }
    /// How far x(first)**H * x(second) is from what it should be
    real not_orthonormal(const T *x, int64_t length, int64_t along, int64_t across, int64_t vectors)
    {
        real worst = 0;
        for (int64_t first = 0; first < vectors; ++first)
            for (int64_t second = 0; second <= first; ++second) {
                wide sum = first == second ? -1 : 0;
                for (int64_t i = 0; i < length; ++i)
                    sum += std::conj(widen(x[i * along + first * across])) *
                           widen(x[i * along + second * across]);
                worst = std::max(worst, static_cast<real>(std::abs(sum)));
            }
        return worst;
    }
    void expect_ranks(int64_t expected)
    {
        const real bound = 20 * eps * static_cast<real>(n);
        long double cut = 0, whole = 0;
        for (int64_t k = 0; k < n; ++k) {
            whole += values[k] * values[k];
            cut += k < expected ? 0 : values[k] * values[k];
        }
        for (int64_t i = 0; i < count; ++i) {
            ASSERT_EQ(info[i], 0);
            ASSERT_EQ(rank[i], expected);
            for (int64_t k = 0; k < expected; ++k)
                EXPECT_NEAR(s[i * strides + k], values[k], bound) << k;
            EXPECT_LE(not_orthonormal(matrix_of(u, strideu, i), m, 1, ldu, expected), bound);
            EXPECT_LE(not_orthonormal(matrix_of(vt, stridevt, i), n, ldvt, 1, expected), bound);
            EXPECT_NEAR(what_is_missing(i), static_cast<real>(std::sqrt(cut / whole)), bound);
            EXPECT_NEAR(residual[i], what_is_missing(i), bound);
            if (expected < n) { // nothing is written behind the rank
                EXPECT_EQ(s[i * strides + expected], 9);
                EXPECT_EQ(u[i * strideu + expected * ldu], T(9));
                EXPECT_EQ(vt[i * stridevt + expected], T(9));
            }
        }
    }
};
TYPED_TEST_SUITE(gesvda, all_types);

TYPED_TEST(gesvda, finds_the_rank_by_the_tolerance)
{
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{40, 6}, {300, 33}, {5, 5}, {7, 1}}) {
        this->make(m, n, real_of<TypeParam>(.25));
        this->tolerance = real_of<TypeParam>(.01); // .25**3 is above, .25**4 is not
        this->run(this->asked());
        this->expect_ranks(std::min<int64_t>(n, 4));
        EXPECT_EQ(this->work[0], TypeParam(static_cast<real_of<TypeParam>>(this->asked())));
    }
}

TYPED_TEST(gesvda, tells_small_values_from_nothing)
{
    // Through A**H*A everything below the root of the precision would be noise.
    this->make(60, 4, std::pow(gesvda<TypeParam>::eps, real_of<TypeParam>(.25)));
    this->tolerance = 0;
    this->run(this->asked());
    this->expect_ranks(4);
}

TYPED_TEST(gesvda, takes_the_rank_that_is_given)
{
    this->make(30, 8, real_of<TypeParam>(.5));
    this->iparm[0] = 1;
    this->tolerance = -1; // not looked at
    for (const int64_t rank : {0, 3, 8}) {
        std::fill(this->rank.begin(), this->rank.end(), rank);
        this->run(this->asked());
        this->expect_ranks(rank);
    }
}

TYPED_TEST(gesvda, works_in_the_least_space_and_without_residual)
{
    using T = TypeParam;
    this->make(50, 9, real_of<T>(.5));
    this->iparm[1] = 0;
    const int64_t asked_without = this->asked();
    this->run(2 * 81 + (is_complex<T> ? 27 : 9) + 9 + 45);
    EXPECT_EQ(this->residual, std::vector<real_of<T>>(this->count, 9));
    for (int64_t i = 0; i < this->count; ++i)
        this->residual[i] = this->what_is_missing(i);
    this->expect_ranks(9);
    this->iparm[1] = 1;
    EXPECT_GT(this->asked(), asked_without);

    this->run(-1); // the query
    EXPECT_EQ(this->work[0], T(static_cast<real_of<T>>(this->asked())));
    EXPECT_EQ(this->a, this->original);
}

TYPED_TEST(gesvda, one_matrix_as_in_a_batch)
{
    using T = TypeParam;
    this->make(40, 6, real_of<T>(.25));
    this->count = 1;
    this->tolerance = real_of<T>(.01);
    const int64_t lwork = this->asked();
    this->work.resize(lwork);
    call(entries::gesvda_batch_kernel<T>, this->iparm, this->rank.data(), this->m, this->n, this->a.data(),
         this->lda, this->s.data(), this->u.data(), this->ldu, this->vt.data(), this->ldvt, this->tolerance,
         this->residual.data(), this->work.data(), lwork, this->info.data());
    this->expect_ranks(4);
}

TYPED_TEST(gesvda, nothing_in_a_matrix)
{
    using T = TypeParam;
    this->make(10, 3, real_of<T>(.5));
    std::fill_n(this->original.begin() + 4 * this->stridea, this->lda * 3, T(0)); // matrix 4 is zero
    this->run(this->asked());
    EXPECT_EQ(this->rank[4], 0);
    EXPECT_EQ(this->residual[4], 0);
    EXPECT_EQ(this->rank[3], 3);
    EXPECT_EQ(this->info, std::vector<int64_t>(this->count, 0));

    this->n = 0;
    this->run(this->asked());
    EXPECT_EQ(this->rank, std::vector<int64_t>(this->count, 0));
    EXPECT_EQ(this->residual, std::vector<real_of<T>>(this->count, 0));
}

} // namespace
