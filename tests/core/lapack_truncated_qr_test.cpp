// The QR factorization with column pivoting that stops early, in all types: against the matrix itself,
// against the factorization that doesn't stop, and in the cases in which there is nothing to factor.
#include "lapack/call.h"
#include "lapack_matrix.h"
#include "lapack_reports.h"

#include <numeric>

namespace {

using namespace lapack_tests;
using xkl::core::call;

/// A call of ?GEQP3RK, with right-hand sides behind the matrix.
template <class T>
struct truncated_qr_call {
    using real = real_of<T>;
    int64_t m, n, nrhs, kmax, k = -1, info = -1000, lda;
    real abstol = -1, reltol = -1, maxc2nrmk = -1, relmaxc2nrmk = -1;
    matrix<T> a;
    std::vector<int64_t> jpiv;
    std::vector<T> tau;

    truncated_qr_call(const matrix<T> &of, int64_t right_hand_sides)
        : m(of.rows), n(of.columns - right_hand_sides), nrhs(right_hand_sides), kmax(std::min(m, n)),
          lda(m), a(of), jpiv(static_cast<size_t>(n), -1), tau(static_cast<size_t>(kmax), T(7))
    {
    }

    void run(int64_t lwork, std::vector<T> &work)
    {
        std::vector<real> rwork(static_cast<size_t>(2 * n));
        std::vector<int64_t> iwork(static_cast<size_t>(n));
        const auto routine = pick<T>(sgeqp3rk_, dgeqp3rk_, cgeqp3rk_, zgeqp3rk_);
        if constexpr (is_complex<T>)
            call(routine, m, n, nrhs, kmax, abstol, reltol, a.data(), lda, &k, &maxc2nrmk, &relmaxc2nrmk,
                 jpiv.data(), tau.data(), work.data(), lwork, rwork.data(), iwork.data(), &info);
        else
            call(routine, m, n, nrhs, kmax, abstol, reltol, a.data(), lda, &k, &maxc2nrmk, &relmaxc2nrmk,
                 jpiv.data(), tau.data(), work.data(), lwork, iwork.data(), &info);
    }
    void run()
    {
        std::vector<T> work(1);
        run(-1, work);
        ASSERT_EQ(info, 0);
        const auto lwork = static_cast<int64_t>(std::real(work[0]));
        ASSERT_GE(lwork, least_work());
        work.resize(static_cast<size_t>(lwork));
        run(lwork, work);
    }
    void run_in_least_work()
    {
        std::vector<T> work(static_cast<size_t>(least_work()));
        run(least_work(), work);
    }
    int64_t least_work() const { return (is_complex<T> ? n : 3 * n) + nrhs - 1; }

    /// The factor Q, m by m, from the reflectors.
    matrix<T> q() const
    {
        matrix<T> result = identity<T>(m);
        std::vector<T> work(static_cast<size_t>(m));
        for (int64_t step = k - 1; step >= 0; --step)
            call(pick<T>(slarf1f_, dlarf1f_, clarf1f_, zlarf1f_), 'L', m - step, m,
                 const_cast<T *>(&a.elements[static_cast<size_t>(step + step * m)]), int64_t(1),
                 tau[static_cast<size_t>(step)], &result(step, 0), m, work.data());
        return result;
    }
    /// What Q' has made of the matrix and of the right-hand sides: reflectors are no part of it.
    matrix<T> r() const
    {
        matrix<T> result = a;
        for (int64_t j = 0; j < k; ++j)
            for (int64_t i = j + 1; i < m; ++i)
                result(i, j) = 0;
        return result;
    }
    matrix<T> permuted(const matrix<T> &of) const
    {
        matrix<T> result = of;
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < m; ++i)
                result(i, j) = of(i, jpiv[static_cast<size_t>(j)] - 1);
        return result;
    }
    /// The largest column that remains, measured.
    double remaining() const
    {
        double largest = 0;
        for (int64_t j = k; j < n; ++j) {
            double sum = 0;
            for (int64_t i = k; i < m; ++i)
                sum += std::norm(std::complex<double>(a(i, j)));
            largest = std::max(largest, std::sqrt(sum));
        }
        return largest;
    }
};

template <class T>
void expect_factors(const truncated_qr_call<T> &qr, const matrix<T> &of)
{
    const auto q = qr.q();
    EXPECT_LT(in_units(qr.permuted(of) - q * qr.r(), norm(of), qr.m), threshold);
    EXPECT_LT(in_units(adjoint(q) * q - identity<T>(qr.m), 1, qr.m), threshold);
    auto sorted = qr.jpiv;
    std::sort(sorted.begin(), sorted.end());
    for (int64_t j = 0; j < qr.n; ++j)
        EXPECT_EQ(sorted[static_cast<size_t>(j)], j + 1);
    for (size_t i = static_cast<size_t>(qr.k); i < qr.tau.size(); ++i)
        EXPECT_EQ(qr.tau[i], T(0)) << i;
}

/// Of a rank, and with columns of very different sizes.
template <class T>
matrix<T> of_rank(int64_t m, int64_t n, int64_t rank)
{
    auto right = matrix<T>::random(rank, n);
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i < rank; ++i)
            right(i, j) *= static_cast<real_of<T>>(1 + j % 7);
    return matrix<T>::random(m, rank) * right;
}

template <class T>
class truncated_qr : public testing::Test {
};
TYPED_TEST_SUITE(truncated_qr, all_types);

// The last ones are factored in blocks.
constexpr int64_t shapes[][2] = {{1, 1}, {1, 4}, {5, 1}, {7, 5}, {5, 9}, {40, 40}, {170, 150}, {140, 190}};

TYPED_TEST(truncated_qr, goes_to_the_end_as_the_one_that_does_not_stop)
{
    using T = TypeParam;
    for (const auto &[m, n] : shapes) {
        SCOPED_TRACE(testing::Message() << m << " by " << n);
        const auto a = matrix<T>::random(m, n + 2);
        truncated_qr_call<T> qr(a, 2);
        qr.run();
        ASSERT_EQ(qr.info, 0);
        EXPECT_EQ(qr.k, std::min(m, n));
        EXPECT_EQ(qr.maxc2nrmk, 0);
        EXPECT_EQ(qr.relmaxc2nrmk, 0);
        expect_factors(qr, a);

        auto other = columns(a, 0, n);
        std::vector<int64_t> jpvt(static_cast<size_t>(n));
        std::vector<T> tau(static_cast<size_t>(n)), work(static_cast<size_t>(70 * (n + 1)));
        std::vector<real_of<T>> rwork(static_cast<size_t>(2 * n));
        const auto lwork = static_cast<int64_t>(work.size());
        int64_t info;
        const auto routine = pick<T>(sgeqp3_, dgeqp3_, cgeqp3_, zgeqp3_);
        if constexpr (is_complex<T>)
            call(routine, m, n, other.data(), m, jpvt.data(), tau.data(), work.data(), lwork, rwork.data(),
                 &info);
        else
            call(routine, m, n, other.data(), m, jpvt.data(), tau.data(), work.data(), lwork, &info);
        EXPECT_EQ(qr.jpiv, jpvt);
        for (int64_t i = 0; i < std::min(m, n); ++i)
            EXPECT_NEAR(std::abs(qr.a(i, i)), std::abs(other(i, i)),
                        norm(a) * static_cast<double>(m) * std::numeric_limits<real_of<T>>::epsilon());
    }
}

TYPED_TEST(truncated_qr, finds_the_rank)
{
    using T = TypeParam;
    using real = real_of<T>;
    constexpr int64_t cases[][3] = {{30, 20, 7}, {20, 30, 1}, {200, 180, 60}, {140, 200, 131}};
    for (const auto &[m, n, rank] : cases) {
        SCOPED_TRACE(testing::Message() << m << " by " << n);
        const auto a = of_rank<T>(m, n, rank);
        for (const bool relative : {false, true}) {
            truncated_qr_call<T> qr(a, 0);
            const real small = static_cast<real>(m) * std::numeric_limits<real>::epsilon();
            (relative ? qr.reltol : qr.abstol) = relative ? small : small * static_cast<real>(norm(a));
            qr.run();
            ASSERT_EQ(qr.info, 0);
            EXPECT_EQ(qr.k, rank);
            expect_factors(qr, a);
        }
    }
}

TYPED_TEST(truncated_qr, stops_where_it_is_told)
{
    using T = TypeParam;
    using real = real_of<T>;
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{60, 50}, {200, 180}}) {
        const auto a = matrix<T>::random(m, n + 1);
        truncated_qr_call<T> whole(a, 1);
        whole.run();
        const auto at = [&](int64_t i) { return std::abs(whole.a(i, i)); };
        const auto expect_stop = [&](truncated_qr_call<T> &qr, int64_t k) {
            SCOPED_TRACE(testing::Message() << m << " by " << n << ", rank " << k);
            ASSERT_EQ(qr.info, 0);
            ASSERT_EQ(qr.k, k);
            expect_factors(qr, a);
            const double tolerance = std::sqrt(std::numeric_limits<real>::epsilon());
            EXPECT_NEAR(qr.maxc2nrmk, at(k), tolerance * at(0));
            EXPECT_NEAR(qr.maxc2nrmk, qr.remaining(), tolerance * at(0));
            EXPECT_NEAR(qr.relmaxc2nrmk, at(k) / at(0), tolerance);
        };
        for (const int64_t k : {n / 8, n - 1}) {
            truncated_qr_call<T> by_count(a, 1), by_size(a, 1), by_ratio(a, 1), by_least_work(a, 1);
            by_count.kmax = by_least_work.kmax = k;
            by_size.abstol = (at(k) + at(k - 1)) / 2;
            by_ratio.reltol = (at(k) + at(k - 1)) / 2 / at(0);
            for (auto *each : {&by_count, &by_size, &by_ratio})
                each->run();
            by_least_work.run_in_least_work();
            for (auto *each : {&by_count, &by_size, &by_ratio, &by_least_work})
                expect_stop(*each, k);
        }
    }
}

TYPED_TEST(truncated_qr, leaves_alone_what_is_small_enough)
{
    using T = TypeParam;
    using real = real_of<T>;
    const auto a = matrix<T>::random(9, 6);
    const auto expect_nothing_done = [&](truncated_qr_call<T> qr) {
        qr.run();
        EXPECT_EQ(qr.info, 0);
        EXPECT_EQ(qr.k, 0);
        EXPECT_EQ(qr.a.elements, a.elements);
        EXPECT_NEAR(qr.maxc2nrmk, qr.remaining(), 10 * std::numeric_limits<real>::epsilon());
        EXPECT_EQ(qr.relmaxc2nrmk, 1);
        EXPECT_EQ(qr.tau, std::vector<T>(qr.tau.size()));
        for (int64_t j = 0; j < qr.n; ++j)
            EXPECT_EQ(qr.jpiv[static_cast<size_t>(j)], j + 1);
    };
    truncated_qr_call<T> none(a, 1), infinite(a, 1), relative(a, 1);
    none.kmax = 0;
    infinite.abstol = std::numeric_limits<real>::infinity();
    relative.reltol = 1;
    for (const auto &each : {none, infinite, relative})
        expect_nothing_done(each);

    truncated_qr_call<T> zero(matrix<T>(4, 3), 0);
    zero.run();
    EXPECT_EQ(zero.info, 0);
    EXPECT_EQ(zero.k, 0);
    EXPECT_EQ(zero.maxc2nrmk, 0);
    EXPECT_EQ(zero.tau, std::vector<T>(3));
    truncated_qr_call<T> empty(matrix<T>(0, 3), 0);
    empty.lda = 1;
    std::vector<T> work(1);
    empty.run(1, work);
    EXPECT_EQ(empty.info, 0);
    EXPECT_EQ(empty.k, 0);
    EXPECT_EQ(work[0], T(1));
}

TYPED_TEST(truncated_qr, says_where_a_nan_or_an_infinity_is)
{
    using T = TypeParam;
    using limits = std::numeric_limits<real_of<T>>;
    auto a = matrix<T>::random(8, 5);
    a(3, 2) = limits::infinity();
    truncated_qr_call<T> infinite(a, 0), factored(a, 0);
    infinite.kmax = 0;
    infinite.run();
    EXPECT_EQ(infinite.info, 5 + 3);
    EXPECT_TRUE(std::isinf(infinite.maxc2nrmk));
    factored.run(); // that column comes first, and its reflector is NaN
    EXPECT_EQ(factored.info, 1);
    EXPECT_EQ(factored.k, 0);
    EXPECT_EQ(factored.jpiv[0], 3);
    a(6, 3) = limits::quiet_NaN();
    truncated_qr_call<T> not_a_number(a, 0);
    not_a_number.run();
    EXPECT_EQ(not_a_number.info, 4);
    EXPECT_EQ(not_a_number.k, 0);
    EXPECT_TRUE(std::isnan(not_a_number.maxc2nrmk));
    EXPECT_TRUE(std::isnan(not_a_number.relmaxc2nrmk));
}

// A block at a time, with what the caller of such a block has to keep.
TYPED_TEST(truncated_qr, can_be_put_together_from_blocks)
{
    using T = TypeParam;
    using real = real_of<T>;
    const int64_t m = 40, n = 30, nrhs = 3;
    const auto a = matrix<T>::random(m, n + nrhs);
    truncated_qr_call<T> whole(a, nrhs), pieces(a, nrhs);
    whole.reltol = real(0.5);
    whole.run();
    std::iota(pieces.jpiv.begin(), pieces.jpiv.end(), int64_t(1));
    std::vector<real> norms(n), exact(n);
    for (int64_t j = 0; j < n; ++j)
        norms[static_cast<size_t>(j)] = exact[static_cast<size_t>(j)] =
            call(pick<T>(snrm2_, dnrm2_, scnrm2_, dznrm2_), m, &pieces.a(0, j), int64_t(1));
    const auto largest = std::max_element(norms.begin(), norms.end());
    const int64_t first = largest - norms.begin() + 1;
    const real size = *largest;
    int64_t nb = 5, done = 0, k = 0, info = 0;
    std::vector<T> aux(static_cast<size_t>(nb)), f(static_cast<size_t>((n + nrhs) * nb));
    std::vector<int64_t> iwork(static_cast<size_t>(n));
    while (!done && k < n) {
        const auto behind = static_cast<size_t>(k);
        int64_t kb = -1;
        call(pick<T>(slaqp3rk_, dlaqp3rk_, claqp3rk_, zlaqp3rk_), m, n - k, nrhs, k, nb, real(-1),
             whole.reltol, first, size, &pieces.a(0, k), m, &done, &kb, &pieces.maxc2nrmk,
             &pieces.relmaxc2nrmk, &pieces.jpiv[behind], &pieces.tau[behind], &norms[behind],
             &exact[behind], aux.data(), f.data(), n + nrhs - k, iwork.data(), &info);
        ASSERT_EQ(info, 0);
        ASSERT_TRUE(done || kb > 0);
        k += kb;
    }
    pieces.k = k;
    EXPECT_EQ(k, whole.k);
    EXPECT_EQ(pieces.jpiv, whole.jpiv);
    EXPECT_LT(k, n);
    EXPECT_NEAR(pieces.maxc2nrmk, whole.maxc2nrmk, std::sqrt(std::numeric_limits<real>::epsilon()));
    expect_factors(pieces, a);
}

using truncated_qr_reports = reports;

TEST_F(truncated_qr_reports, name_the_argument)
{
    using call_type = truncated_qr_call<complex16>;
    struct mistake {
        int64_t position;
        void (*make)(call_type &);
    };
    constexpr auto nan = std::numeric_limits<double>::quiet_NaN();
    const mistake mistakes[] = {
        {1, [](call_type &qr) { qr.m = -1; }},       {2, [](call_type &qr) { qr.n = -1; }},
        {3, [](call_type &qr) { qr.nrhs = -1; }},    {4, [](call_type &qr) { qr.kmax = -1; }},
        {5, [](call_type &qr) { qr.abstol = nan; }}, {6, [](call_type &qr) { qr.reltol = nan; }},
        {8, [](call_type &qr) { qr.lda = 4; }},
    };
    const auto a = matrix<complex16>::random(5, 4);
    for (const mistake &each : mistakes) {
        call_type qr(a, 1);
        std::vector<complex16> work(100);
        each.make(qr);
        std::vector<double> rwork(20);
        std::vector<int64_t> iwork(20);
        forget();
        call(zgeqp3rk_, qr.m, qr.n, qr.nrhs, qr.kmax, qr.abstol, qr.reltol, qr.a.data(), qr.lda, &qr.k,
             &qr.maxc2nrmk, &qr.relmaxc2nrmk, qr.jpiv.data(), qr.tau.data(), work.data(), int64_t(100),
             rwork.data(), iwork.data(), &qr.info);
        EXPECT_EQ(qr.info, -each.position);
        EXPECT_EQ(position, each.position);
        EXPECT_EQ(name, "ZGEQP3RK");
        EXPECT_EQ(qr.a.elements, a.elements);
    }
    truncated_qr_call<float> qr(matrix<float>::random(5, 4), 1);
    std::vector<float> work(8);
    qr.run(8, work);
    EXPECT_EQ(qr.info, -15);
    EXPECT_EQ(name, "SGEQP3RK");
    EXPECT_EQ(position, 15);
}

} // namespace
