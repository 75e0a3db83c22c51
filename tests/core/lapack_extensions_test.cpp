// Routines beyond the standard set, called as programs call them: residuals in units of the machine's
// precision, what must be left alone, zero pivots, and reports of bad arguments.
#include "blas_reference.h"

#include "lapack_reports.h"

#include <functional>

namespace {
using namespace blas_test;

#define ROUTINE(prefix, name)                                                                              \
    template <class T>                                                                                     \
    constexpr auto prefix##name =                                                                          \
        pick<T>(prefix##s##name##_, prefix##d##name##_, prefix##c##name##_, prefix##z##name##_)
ROUTINE(xkl_, getrfnp);
ROUTINE(xkl_, getrfnpi);
ROUTINE(xkl_, getrinp);
ROUTINE(xkl_, tppack);
ROUTINE(xkl_, tpunpack);
ROUTINE(xkl_, spffrt2);
ROUTINE(xkl_, spffrtx);
ROUTINE(, dtsvb);
ROUTINE(, dttrfb);
ROUTINE(, dttrsb);
ROUTINE(, gtsv);

template <class T>
struct extensions : ::testing::Test {
};
TYPED_TEST_SUITE(extensions, all_types);

/// The largest difference, relative to the largest element there was, in units of precision a row
template <class T>
long double in_units(const wide_matrix &actual, const wide_matrix &expected)
{
    long double difference = 0, largest = std::numeric_limits<real_of<T>>::min();
    for (size_t at = 0; at < expected.elements.size(); ++at) {
        difference = std::max(difference, std::abs(actual.elements[at] - expected.elements[at]));
        largest = std::max(largest, std::abs(expected.elements[at]));
    }
    const auto rows = static_cast<long double>(std::max<int64_t>(expected.rows, 1));
    return difference / (largest * rows * std::numeric_limits<real_of<T>>::epsilon());
}
constexpr long double threshold = 10;

/// A matrix that needs no pivoting
template <class T>
matrix<T> dominant(int64_t m, int64_t n)
{
    matrix<T> a(m, n);
    for (int64_t i = 0; i < std::min(m, n); ++i)
        a(i, i) += static_cast<real_of<T>>(2 * std::max(m, n));
    return a;
}

/// What `steps` steps of elimination left, multiplied back: L*U, and the updated rest where it stands
template <class T>
wide_matrix multiplied_back(const matrix<T> &factored, int64_t steps)
{
    wide_matrix lower(factored.rows, steps), upper(steps, factored.columns);
    for (int64_t k = 0; k < steps; ++k) {
        lower(k, k) = 1;
        for (int64_t i = k + 1; i < factored.rows; ++i)
            lower(i, k) = widen(factored(i, k));
        for (int64_t j = k; j < factored.columns; ++j)
            upper(k, j) = widen(factored(k, j));
    }
    wide_matrix whole = lower * upper;
    for (int64_t j = steps; j < factored.columns; ++j)
        for (int64_t i = steps; i < factored.rows; ++i)
            whole(i, j) += widen(factored(i, j));
    return whole;
}

TYPED_TEST(extensions, factors_without_pivoting)
{
    using T = TypeParam;
    for (const auto &[m, n] : {std::pair<int64_t, int64_t>{0, 0},
                               {3, 0},
                               {0, 2},
                               {1, 1},
                               {5, 3},
                               {3, 5},
                               {16, 16},
                               {17, 17},
                               {33, 32},
                               {16, 40},
                               {130, 129},
                               {150, 20},
                               {20, 150}}) {
        const matrix<T> a = dominant<T>(m, n);
        matrix<T> lu = a;
        int64_t info = -7;
        xkl_getrfnp<T>(&m, &n, lu.data(), &lu.ld, &info);
        EXPECT_EQ(info, 0);
        EXPECT_LT(in_units<T>(multiplied_back(lu, std::min(m, n)), op(a, 'N')), threshold) << m << ' ' << n;
        EXPECT_TRUE(lu.canaries_live());
        for (const int64_t part : {int64_t(0), std::min<int64_t>(1, std::min(m, n)), std::min(m, n) / 2}) {
            matrix<T> begun = a;
            xkl_getrfnpi<T>(&m, &n, &part, begun.data(), &begun.ld, &info);
            EXPECT_EQ(info, 0);
            EXPECT_LT(in_units<T>(multiplied_back(begun, part), op(a, 'N')), threshold) << m << ' ' << part;
            EXPECT_TRUE(begun.canaries_live());
        }
    }
}

TYPED_TEST(extensions, inverts_without_pivoting)
{
    using T = TypeParam;
    for (const int64_t n : {0, 1, 2, 17, 64, 65, 150}) {
        const matrix<T> a = dominant<T>(n, n);
        matrix<T> lu = a;
        int64_t info = -7, best = -1;
        T size;
        xkl_getrfnp<T>(&n, &n, lu.data(), &lu.ld, &info);
        xkl_getrinp<T>(&n, nullptr, &lu.ld, &size, &best, &info);
        best = static_cast<int64_t>(std::real(size));
        ASSERT_GE(best, std::max<int64_t>(n, 1));
        for (const int64_t lwork : {std::max<int64_t>(n, 1), 3 * n + 1, best, 2 * best}) {
            matrix<T> inverse = lu;
            std::vector<T> work(lwork + 1, T(-77));
            xkl_getrinp<T>(&n, inverse.data(), &inverse.ld, work.data(), &lwork, &info);
            EXPECT_EQ(info, 0);
            EXPECT_EQ(work[lwork], T(-77));
            EXPECT_TRUE(inverse.canaries_live());
            wide_matrix identity(n, n);
            for (int64_t i = 0; i < n; ++i)
                identity(i, i) = 1;
            EXPECT_LT(in_units<T>(op(a, 'N') * op(inverse, 'N'), identity), threshold) << n << ' ' << lwork;
        }
    }
}

TYPED_TEST(extensions, zero_pivots_are_named)
{
    using T = TypeParam;
    const int64_t n = 40, lwork = n;
    for (const int64_t zero : {0, 1, 15, 16, 20, 39}) {
        matrix<T> a(n, n);
        a.for_each([&](int64_t i, int64_t j, T &element) { element = T(i == j && i != zero); });
        matrix<T> swapped = a; // regular, but not without pivoting
        const int64_t other = zero == 39 ? 38 : zero + 1;
        swapped(zero, other) = swapped(other, zero) = T(1);
        if (zero == 39)
            swapped(38, 38) = T(0);
        int64_t info = 0;
        xkl_getrfnp<T>(&n, &n, swapped.data(), &swapped.ld, &info);
        EXPECT_EQ(info, zero == 39 ? 39 : zero + 1);
        for (const T &each : std::vector<T>(swapped.data(), swapped.data() + n))
            EXPECT_TRUE(std::isfinite(std::abs(each)));
        std::vector<T> work(n);
        xkl_getrinp<T>(&n, a.data(), &a.ld, work.data(), &lwork, &info);
        EXPECT_EQ(info, zero + 1);
    }
}

/// Element (i,j), counted from 0, of a packed triangle
int64_t packed_place(char uplo, int64_t n, int64_t i, int64_t j)
{
    return uplo == 'U' ? i + j * (j + 1) / 2 : i + j * (2 * n - j - 1) / 2;
}

TYPED_TEST(extensions, blocks_of_packed_triangles)
{
    using T = TypeParam;
    const int64_t n = 5, elements = n * (n + 1) / 2;
    const matrix<T> packed(1, elements, 1);
    for (const char uplo : {'U', 'L'})
        for (const char trans : {'N', 'T', 'c'})
            for (int64_t at = 0; at < n * n; ++at) {
                const int64_t i = at % n + 1, j = at / n + 1;
                if (uplo == 'U' ? i > j : i < j)
                    continue;
                for (int64_t size = 0; size < (n - i + 2) * (n - j + 2); ++size) {
                    const int64_t rows = size % (n - i + 2), columns = size / (n - i + 2);
                    const bool plain = trans == 'N';
                    matrix<T> full(plain ? rows : columns, plain ? columns : rows);
                    const matrix<T> old = full;
                    matrix<T> filled = packed;
                    int64_t info = -7;
                    xkl_tppack<T>(&uplo, &trans, &n, filled.data(), &i, &j, &rows, &columns, full.data(),
                                  &full.ld, &info);
                    ASSERT_EQ(info, 0);
                    xkl_tpunpack<T>(&uplo, &trans, &n, packed.data(), &i, &j, &rows, &columns, full.data(),
                                    &full.ld, &info);
                    ASSERT_EQ(info, 0);
                    EXPECT_TRUE(full.canaries_live() && filled.canaries_live());
                    matrix<T> expected = packed;
                    for (int64_t v = 0; v < columns; ++v)
                        for (int64_t u = 0; u < rows; ++u) {
                            const int64_t row = i - 1 + u, column = j - 1 + v;
                            const bool inside = uplo == 'U' ? row <= column : row >= column;
                            const int64_t place = packed_place(uplo, n, row, column);
                            const auto turned = [&](T x) {
                                return trans == 'c' ? scalar<T>(std::real(x), -std::imag(x)) : x;
                            };
                            const T before = plain ? old(u, v) : old(v, u);
                            EXPECT_EQ((plain ? full(u, v) : full(v, u)),
                                      inside ? turned(packed.data()[place]) : before);
                            if (inside)
                                expected.data()[place] = turned(before);
                        }
                    EXPECT_TRUE(filled == expected);
                }
            }
}

TYPED_TEST(extensions, packed_partial_factorizations)
{
    using T = TypeParam;
    for (const int64_t n : {0, 1, 2, 31, 32, 33, 150})
        for (const int64_t steps : {int64_t(0), std::min<int64_t>(1, n), n / 2, n})
            for (const bool unit : {false, true}) {
                matrix<T> a(1, n * (n + 1) / 2, 1), work(2, n);
                const auto element = [n](const matrix<T> &of, int64_t i, int64_t j) {
                    return widen(of(0, packed_place('L', n, i, j)));
                };
                for (int64_t i = 0; i < n; ++i)
                    a(0, packed_place('L', n, i, i)) += static_cast<real_of<T>>(2 * n);
                matrix<T> factored = a;
                (unit ? xkl_spffrtx<T> : xkl_spffrt2<T>)(factored.data(), &n, &steps, work.data(),
                                                         work.data() + n);
                EXPECT_TRUE(factored.canaries_live() && work.canaries_live());
                wide_matrix back(n, n), original(n, n);
                for (int64_t j = 0; j < n; ++j)
                    for (int64_t i = j; i < n; ++i) {
                        original(i, j) = element(a, i, j);
                        if (j >= steps)
                            back(i, j) = element(factored, i, j);
                        for (int64_t k = 0; k < steps && k <= j; ++k) {
                            const wide d = element(factored, k, k), middle = unit ? d : wide(1) / d;
                            const auto l = [&](int64_t row) {
                                return unit && row == k ? wide(1) : element(factored, row, k);
                            };
                            back(i, j) += l(i) * middle * l(j);
                        }
                    }
                EXPECT_LT(in_units<T>(back, original), threshold) << n << ' ' << steps << unit;
            }
}

/// Diagonals of a dominant tridiagonal matrix
template <class T>
struct diagonals {
    int64_t n;
    matrix<T> dl, d, du;

    explicit diagonals(int64_t order)
        : n(order), dl(std::max<int64_t>(n - 1, 0), 1), d(n, 1), du(dl.rows, 1)
    {
        du.for_each([](int64_t, int64_t, T &element) { element = random_element<T>(); });
        d.for_each([](int64_t, int64_t, T &element) { element += scalar<T>(4, 1); });
    }
    /// op(A)*X
    wide_matrix times(const matrix<T> &x, char trans = 'N') const
    {
        const auto element = [trans](const T &each) {
            return trans == 'C' ? std::conj(widen(each)) : widen(each);
        };
        const auto &below = trans == 'N' ? dl : du, &above = trans == 'N' ? du : dl;
        wide_matrix product(n, x.columns);
        for (int64_t j = 0; j < x.columns; ++j)
            for (int64_t i = 0; i < n; ++i) {
                product(i, j) = element(d(i, 0)) * widen(x(i, j));
                if (i > 0)
                    product(i, j) += element(below(i - 1, 0)) * widen(x(i - 1, j));
                if (i + 1 < n)
                    product(i, j) += element(above(i, 0)) * widen(x(i + 1, j));
            }
        return product;
    }
};

TYPED_TEST(extensions, tridiagonal_systems)
{
    using T = TypeParam;
    for (const int64_t n : {0, 1, 2, 3, 4, 5, 64, 1001})
        for (const int64_t nrhs : {0, 1, 4, 14}) {
            const diagonals<T> a(n);
            const matrix<T> b(n, nrhs);
            diagonals<T> factors = a, pivoted = a;
            matrix<T> x = b, expected = b;
            int64_t info = -7;
            dtsvb<T>(&n, &nrhs, factors.dl.data(), factors.d.data(), factors.du.data(), x.data(), &x.ld,
                     &info);
            EXPECT_EQ(info, 0);
            EXPECT_TRUE(x.canaries_live() && factors.dl.canaries_live() && factors.d.canaries_live() &&
                        factors.du.canaries_live());
            EXPECT_LT(in_units<T>(a.times(x), op(b, 'N')), threshold) << n;
            if (nrhs > 0) { // without a right-hand side the reference writes behind dl
                gtsv<T>(&n, &nrhs, pivoted.dl.data(), pivoted.d.data(), pivoted.du.data(), expected.data(),
                        &expected.ld, &info);
                EXPECT_LT(in_units<T>(op(x, 'N'), op(expected, 'N')), threshold) << n;
            }

            diagonals<T> apart = a;
            dttrfb<T>(&n, apart.dl.data(), apart.d.data(), apart.du.data(), &info);
            EXPECT_EQ(info, 0);
            EXPECT_TRUE(apart.dl == factors.dl && apart.d == factors.d && apart.du == factors.du);
            for (const char trans : {'N', 't', 'C'}) {
                x = b;
                dttrsb<T>(&trans, &n, &nrhs, apart.dl.data(), apart.d.data(), apart.du.data(), x.data(),
                          &x.ld, &info);
                EXPECT_EQ(info, 0);
                EXPECT_TRUE(x.canaries_live());
                EXPECT_LT(in_units<T>(a.times(x, trans), op(b, 'N')), threshold) << n << trans;
            }
        }
}

TYPED_TEST(extensions, tridiagonal_zero_pivots)
{
    using T = TypeParam;
    const int64_t n = 5, one = 1;
    struct example {
        T diagonal[5];
        int64_t zero;
    };
    // Off the diagonal all is one: 1, 2-1, and in the middle what both ends leave of it.
    for (const auto &[diagonal, zero] : {example{{T(0), T(2), T(9), T(2), T(1)}, 1},
                                         {{T(1), T(1), T(9), T(2), T(1)}, 2},
                                         {{T(1), T(2), T(2), T(2), T(1)}, 3},
                                         {{T(1), T(2), T(9), T(1), T(1)}, 4},
                                         {{T(1), T(2), T(9), T(2), T(0)}, 5}}) {
        std::vector<T> dl(4, T(1)), d(diagonal, diagonal + n), du(4, T(1)), b(5, T(3));
        int64_t info = 0;
        dtsvb<T>(&n, &one, dl.data(), d.data(), du.data(), b.data(), &n, &info);
        EXPECT_EQ(info, zero);
        EXPECT_EQ(b, std::vector<T>(5, T(3)));
    }
}

/// An integer of 32 bits and what lies beside it
struct narrow_info {
    int32_t info = -77, beside = 123456;
};

TEST(extensions, callers_with_32_bit_integers)
{
    const diagonals<double> a(6);
    const matrix<double> b(6, 2);
    diagonals<double> factors = a;
    matrix<double> x = b;
    const int32_t n = 6, nrhs = 2, ldb = static_cast<int32_t>(b.ld), negative = -1;
    narrow_info solved, factored, again, refused;
    ddtsvb_4dfl(&n, &nrhs, factors.dl.data(), factors.d.data(), factors.du.data(), x.data(), &ldb,
                &solved.info);
    EXPECT_LT(in_units<double>(a.times(x), op(b, 'N')), threshold);
    factors = a;
    x = b;
    ddttrfb_4dfl(&n, factors.dl.data(), factors.d.data(), factors.du.data(), &factored.info);
    ddttrsb_4dfl("T", &n, &nrhs, factors.dl.data(), factors.d.data(), factors.du.data(), x.data(), &ldb,
                 &again.info);
    EXPECT_LT(in_units<double>(a.times(x, 'T'), op(b, 'N')), threshold);
    const auto previous = xkl_set_xerbla([](const char *, const int64_t *, int64_t) {});
    ddtsvb_4dfl(&negative, &nrhs, nullptr, nullptr, nullptr, nullptr, &ldb, &refused.info);
    xkl_set_xerbla(previous);
    EXPECT_EQ(refused.info, -1);
    for (const narrow_info &each : {solved, factored, again, refused})
        EXPECT_EQ(each.beside, 123456);
    EXPECT_EQ(solved.info | factored.info | again.info, 0);
}

template <class T>
struct extension_reports : lapack_tests::reports {
    int64_t info = 0;
    T a[9] = {};

    void expect_refusal(std::string routine, int64_t place) const
    {
        routine.replace(routine.find('?'), 1, pick<T>("S", "D", "C", "Z"));
        EXPECT_EQ(name, routine);
        EXPECT_EQ(position, place) << routine;
        EXPECT_EQ(info, -place) << routine;
    }
};
TYPED_TEST_SUITE(extension_reports, all_types);

TYPED_TEST(extension_reports, bad_arguments)
{
    using T = TypeParam;
    T *const a = this->a;
    int64_t &info = this->info;
    using list = std::vector<int64_t>; // n's, and the like, in order
    const auto lu = [&](const list &v) { xkl_getrfnp<T>(&v[0], &v[1], a, &v[2], &info); };
    const auto part = [&](const list &v) { xkl_getrfnpi<T>(&v[0], &v[1], &v[2], a, &v[3], &info); };
    const auto invert = [&](const list &v) { xkl_getrinp<T>(&v[0], a, &v[1], a, &v[2], &info); };
    const auto upper = [&](const list &v) {
        xkl_tppack<T>("U", "N", &v[0], a, &v[1], &v[2], &v[3], &v[4], a, &v[5], &info);
    };
    const auto lower = [&](const list &v) {
        xkl_tpunpack<T>("L", "T", &v[0], a, &v[1], &v[2], &v[3], &v[4], a, &v[5], &info);
    };
    const auto solve = [&](const list &v) { dttrsb<T>("N", &v[0], &v[1], a, a, a, a, &v[2], &info); };
    struct bad_call {
        std::function<void(const list &)> routine;
        list arguments;
        const char *name;
        int64_t position;
    };
    for (const auto &[routine, arguments, name, position] :
         std::vector<bad_call>{{lu, {-1, -1, 0}, "XKL_?GETRFNP", 1},
                               {lu, {1, -1, 0}, "XKL_?GETRFNP", 2},
                               {lu, {0, 1, 0}, "XKL_?GETRFNP", 4},
                               {part, {3, 2, 3, 3}, "XKL_?GETRFNPI", 3},
                               {part, {3, 2, -1, 3}, "XKL_?GETRFNPI", 3},
                               {part, {3, 2, 2, 2}, "XKL_?GETRFNPI", 5},
                               {invert, {-1, 1, 1}, "XKL_?GETRINP", 1},
                               {invert, {2, 1, 2}, "XKL_?GETRINP", 3},
                               {invert, {2, 2, 1}, "XKL_?GETRINP", 5},
                               {upper, {-1, 1, 1, 0, 0, 1}, "XKL_?TPPACK", 3},
                               {upper, {3, 0, 1, 1, 1, 3}, "XKL_?TPPACK", 5},
                               {upper, {3, 2, 1, 1, 1, 3}, "XKL_?TPPACK", 6},
                               {upper, {3, 1, 4, 1, 0, 3}, "XKL_?TPPACK", 6},
                               {upper, {3, 2, 2, 3, 1, 3}, "XKL_?TPPACK", 7},
                               {upper, {3, 1, 3, 1, 2, 3}, "XKL_?TPPACK", 8},
                               {upper, {3, 1, 2, 3, 2, 2}, "XKL_?TPPACK", 10},
                               {lower, {3, 1, 2, 1, 1, 3}, "XKL_?TPUNPACK", 6},
                               {lower, {3, 2, 1, 1, 3, 2}, "XKL_?TPUNPACK", 10},
                               {solve, {-1, 1, 1}, "?DTTRSB", 2},
                               {solve, {2, -1, 2}, "?DTTRSB", 3},
                               {solve, {2, 1, 1}, "?DTTRSB", 8}}) {
        routine(arguments);
        this->expect_refusal(name, position);
    }
}

TYPED_TEST(extension_reports, bad_letters)
{
    using T = TypeParam;
    const int64_t one = 1;
    T *const a = this->a;
    int64_t *const info = &this->info;
    xkl_tppack<T>("X", "N", &one, a, &one, &one, &one, &one, a, &one, info);
    this->expect_refusal("XKL_?TPPACK", 1);
    xkl_tpunpack<T>("L", "X", &one, a, &one, &one, &one, &one, a, &one, info);
    this->expect_refusal("XKL_?TPUNPACK", 2);
    dttrsb<T>("X", &one, &one, a, a, a, a, &one, info);
    this->expect_refusal("?DTTRSB", 1);
}

TYPED_TEST(extension_reports, of_routines_without_info)
{
    const int64_t one = 1, two = 2;
    this->info = -3; // not theirs
    xkl_spffrt2<TypeParam>(this->a, &one, &two, this->a, this->a);
    this->expect_refusal("XKL_?SPFFRT2", 3);
    xkl_spffrtx<TypeParam>(this->a, &one, &two, this->a, this->a);
    this->expect_refusal("XKL_?SPFFRTX", 3);
}

} // namespace
