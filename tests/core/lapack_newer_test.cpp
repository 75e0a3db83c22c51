// The small routines that LAPACK has since version 3.12, in all types: reflectors whose 1 is not stored,
// solutions from factors.
#include "lapack/call.h"
#include "lapack_matrix.h"
#include "lapack_reports.h"

namespace {

using namespace lapack_tests;
using xkl::core::call;

template <class T>
class newer : public testing::Test {
};
TYPED_TEST_SUITE(newer, all_types);

/// I - tau*v*v', v with a 1 as its first or last element.
template <class T>
matrix<T> reflector(matrix<T> v, bool one_is_first, T tau)
{
    v(one_is_first ? 0 : v.rows - 1, 0) = 1;
    auto result = identity<T>(v.rows);
    for (int64_t j = 0; j < v.rows; ++j)
        for (int64_t i = 0; i < v.rows; ++i)
            result(i, j) -= tau * v(i, 0) * conjugate(v(j, 0));
    return result;
}

/// As it lies in memory, backwards for a negative increment, with something else between the elements and
/// in the place of the 1.
template <class T>
std::vector<T> stored(const matrix<T> &v, int64_t inc, bool one_is_first)
{
    const int64_t step = std::abs(inc);
    std::vector<T> result(static_cast<size_t>((v.rows - 1) * step + 1), T(100));
    for (int64_t i = 0; i < v.rows; ++i)
        if (i != (one_is_first ? 0 : v.rows - 1))
            result[static_cast<size_t>((inc > 0 ? i : v.rows - 1 - i) * step)] = v(i, 0);
    return result;
}

TYPED_TEST(newer, reflects_from_either_side)
{
    using T = TypeParam;
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{1, 1}, {1, 6}, {7, 1}, {6, 9}, {40, 33}})
        for (const char side : {'L', 'r'})
            for (const int64_t inc : {1, 3, -2})
                for (const bool one_is_first : {true, false}) {
                    SCOPED_TRACE(testing::Message() << side << m << " by " << n << ", increment " << inc);
                    const bool left = side == 'L';
                    const auto v = matrix<T>::random(left ? m : n, 1), c = matrix<T>::random(m, n);
                    const T tau = matrix<T>::random(1, 1)(0, 0);
                    const auto in_memory = stored(v, inc, one_is_first);
                    std::vector<T> work(static_cast<size_t>(left ? n : m));
                    auto result = c;
                    const auto routine = one_is_first ? pick<T>(slarf1f_, dlarf1f_, clarf1f_, zlarf1f_)
                                                      : pick<T>(slarf1l_, dlarf1l_, clarf1l_, zlarf1l_);
                    call(routine, side, m, n, const_cast<T *>(in_memory.data()), inc, tau, result.data(), m,
                         work.data());
                    const auto h = reflector(v, one_is_first, tau);
                    const auto expected = left ? h * c : c * h;
                    EXPECT_LT(in_units(result - expected, norm(h) * norm(c), std::max(m, n)), threshold);
                }
}

TYPED_TEST(newer, makes_blocks_of_reflectors)
{
    using T = TypeParam;
    const int64_t n = 9, k = 4;
    auto v = matrix<T>::random(n, k);
    const auto tau = matrix<T>::random(k, 1);
    auto t = matrix<T>(k, k), product = identity<T>(n);
    call(pick<T>(slarft_lvl2_, dlarft_lvl2_, clarft_lvl2_, zlarft_lvl2_), 'F', 'C', n, k, v.data(), n,
         const_cast<T *>(tau.elements.data()), t.data(), k);
    for (int64_t j = 0; j < k; ++j) {
        for (int64_t i = 0; i < j; ++i)
            v(i, j) = 0;
        v(j, j) = 1;
        product =
            product * (identity<T>(n) - scaled_columns(columns(v, j, j + 1), std::vector<T>{tau(j, 0)}) *
                                            adjoint(columns(v, j, j + 1)));
    }
    EXPECT_LT(in_units(identity<T>(n) - v * t * adjoint(v) - product, norm(product), n), threshold);
}

TYPED_TEST(newer, solves_with_factors)
{
    using T = TypeParam;
    const auto factor = [](auto routine, matrix<T> &a, std::vector<T> &tau, std::vector<T> &work) {
        int64_t info;
        call(routine, a.rows, a.columns, a.data(), a.rows, tau.data(), work.data(),
             static_cast<int64_t>(work.size()), &info);
        ASSERT_EQ(info, 0);
    };
    for (const int64_t n : {1, 6, 70}) {
        const int64_t m = 2 * n + 5, nrhs = 3;
        std::vector<T> tau(static_cast<size_t>(n)), work(static_cast<size_t>(64 * m));
        int64_t info;
        // The residual of the best fit is orthogonal to the columns.
        const auto tall = matrix<T>::random(m, n), b = matrix<T>::random(m, nrhs);
        auto qr = tall, solution = b;
        factor(pick<T>(sgeqrf_, dgeqrf_, cgeqrf_, zgeqrf_), qr, tau, work);
        call(pick<T>(sgeqrs_, dgeqrs_, cgeqrs_, zgeqrs_), m, n, nrhs, qr.data(), m, tau.data(),
             solution.data(), m, work.data(), nrhs, &info);
        ASSERT_EQ(info, 0);
        const auto x = rows(solution, 0, n);
        EXPECT_LT(in_units(adjoint(tall) * (tall * x - b), norm(tall) * norm(tall) * norm(x), m),
                  threshold);

        // The shortest solution is the one that is a combination of the rows.
        const auto wide = matrix<T>::random(n, m), expected = adjoint(wide) * matrix<T>::random(n, nrhs);
        const auto right = wide * expected;
        auto lq = wide;
        auto shortest = matrix<T>::random(m, nrhs);
        for (int64_t j = 0; j < nrhs; ++j)
            for (int64_t i = 0; i < n; ++i)
                shortest(i, j) = right(i, j);
        factor(pick<T>(sgelqf_, dgelqf_, cgelqf_, zgelqf_), lq, tau, work);
        call(pick<T>(sgelqs_, dgelqs_, cgelqs_, zgelqs_), n, m, nrhs, lq.data(), n, tau.data(),
             shortest.data(), m, work.data(), nrhs, &info);
        ASSERT_EQ(info, 0);
        EXPECT_LT(in_units(wide * shortest - right, norm(wide) * norm(shortest), m), threshold);
        const double tolerance = std::sqrt(std::numeric_limits<real_of<T>>::epsilon());
        EXPECT_LT(norm(shortest - expected), tolerance * norm(expected));
    }
}

using newer_reports = reports;

TEST_F(newer_reports, name_the_argument)
{
    struct sizes {
        int64_t position, m, n, nrhs, lda, ldb, lwork;
    };
    std::vector<double> a(100), tau(10), b(100), work(10);
    const auto expect_refused = [&](auto routine, const char *its_name, const sizes &with) {
        int64_t info = 0;
        forget();
        call(routine, with.m, with.n, with.nrhs, a.data(), with.lda, tau.data(), b.data(), with.ldb,
             work.data(), with.lwork, &info);
        EXPECT_EQ(info, -with.position);
        EXPECT_EQ(position, with.position);
        EXPECT_EQ(name, its_name);
    };
    for (const sizes &each :
         {sizes{1, -1, 0, 1, 1, 1, 1}, sizes{2, 3, 4, 1, 3, 4, 1}, sizes{3, 4, 3, -1, 4, 4, 1},
          sizes{5, 4, 3, 1, 3, 4, 1}, sizes{8, 4, 3, 1, 4, 3, 1}, sizes{10, 4, 3, 2, 4, 4, 1},
          sizes{10, 0, 0, 0, 1, 1, 0}})
        expect_refused(dgeqrs_, "DGEQRS", each);
    for (const sizes &each :
         {sizes{1, -1, 0, 1, 1, 1, 1}, sizes{2, 4, 3, 1, 4, 4, 1}, sizes{3, 3, 4, -1, 3, 4, 1},
          sizes{5, 3, 4, 1, 2, 4, 1}, sizes{8, 3, 4, 1, 3, 3, 1}, sizes{10, 3, 4, 2, 3, 4, -1}})
        expect_refused(dgelqs_, "DGELQS", each);
}

} // namespace
