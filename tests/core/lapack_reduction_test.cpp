// Reduction to tridiagonal form by way of a band: the matrix must come back from T and Q, and nothing may be
// written beyond what the shortest workspace and a tau of any length hold.
#include "lapack/call.h"
#include "lapack_matrix.h"

#include "xkl.h"

#include <gtest/gtest.h>

namespace {

using namespace lapack_tests;
using xkl::core::call;

template <class T>
class reduction : public testing::Test {
};
using types = testing::Types<float, double, complex8, complex16>;
TYPED_TEST_SUITE(reduction, types);

template <class T>
struct outcome {
    std::vector<real_of<T>> d, e;
    matrix<T> z;
};

/// With as much workspace as asked for, or the least.
template <class T>
outcome<T> reduced(char jobz, char uplo, int64_t kd, matrix<T> a, const matrix<T> &z, bool least)
{
    const auto routine = pick<T>(ssyrdb_, dsyrdb_, cherdb_, zherdb_);
    const int64_t n = a.rows, ld = std::max<int64_t>(n, 1);
    outcome<T> result{std::vector<real_of<T>>(static_cast<size_t>(ld)),
                      std::vector<real_of<T>>(static_cast<size_t>(ld)), z};
    T best{}, tau(-77);
    int64_t info = -7;
    const auto run = [&](T *work, int64_t lwork) {
        call(routine, jobz, uplo, n, kd, a.data(), ld, result.d.data(), result.e.data(), &tau,
             result.z.data(), ld, work, lwork, &info);
        EXPECT_EQ(info, 0);
    };
    run(&best, -1);
    const int64_t allowed = n <= 1 ? 1 : (2 * kd + 1) * n + kd;
    EXPECT_GE(std::real(best), allowed);
    const int64_t lwork = least ? allowed : static_cast<int64_t>(std::real(best));
    std::vector<T> work(static_cast<size_t>(lwork) + 1, T(-77));
    run(work.data(), lwork);
    EXPECT_EQ(work.back(), T(-77));
    EXPECT_EQ(tau, T(-77));
    EXPECT_EQ(work[0], best);
    return result;
}

template <class T>
matrix<T> tridiagonal(const outcome<T> &of, int64_t n)
{
    matrix<T> t(n, n);
    for (int64_t i = 0; i < n; ++i) {
        t(i, i) = of.d[static_cast<size_t>(i)];
        if (i + 1 < n)
            t(i, i + 1) = t(i + 1, i) = of.e[static_cast<size_t>(i)];
    }
    return t;
}

TYPED_TEST(reduction, is_undone_by_its_vectors)
{
    using T = TypeParam;
    for (const int64_t n : {0, 1, 2, 5, 70})
        for (const int64_t kd : {1, 3, 100})
            for (const char uplo : {'U', 'l'})
                for (const bool least : {true, false}) {
                    SCOPED_TRACE(testing::Message() << uplo << n << ", band " << kd);
                    const auto a = hermitian<T>(n, 0), given = matrix<T>::random(n, n);
                    const auto vectors = reduced('V', uplo, kd, a, matrix<T>(n, n), least);
                    const auto product = reduced('u', uplo, kd, a, given, least);
                    const auto values = reduced('N', uplo, kd, a, given, least);
                    if (n == 0)
                        continue;
                    const auto &q = vectors.z;
                    const auto t = tridiagonal(vectors, n);
                    EXPECT_LT(in_units(q * t * adjoint(q) - a, norm(a), n), threshold);
                    EXPECT_LT(in_units(adjoint(q) * q - identity<T>(n), 1, n), threshold);
                    EXPECT_LT(in_units(product.z - given * q, norm(given), n), threshold);
                    EXPECT_EQ(values.z.elements, given.elements) << "no vectors were asked for";
                    EXPECT_LT(in_units(tridiagonal(values, n) - t, norm(a), n), threshold);
                }
}

} // namespace
