// Compact factorizations against the routines for one matrix: for every format and layout, for orders below,
// at and above the width of a panel, for numbers of matrices that leave lanes empty and for one that threads
// share.
#include "compact_family.h"

#include "core_lapack.h"
#include "service/service_entries.h"

namespace {
using namespace blas_test;

#define LAPACK_ENTRY(name)                                                                                 \
    template <class T>                                                                                     \
    constexpr auto name =                                                                                  \
        pick<T>(xkl_lapack_s##name, xkl_lapack_d##name, xkl_lapack_c##name, xkl_lapack_z##name)
LAPACK_ENTRY(getrfnp);
LAPACK_ENTRY(getrinp);
LAPACK_ENTRY(potrf);
LAPACK_ENTRY(geqrf);
LAPACK_ENTRY(getrfnp_compact);
LAPACK_ENTRY(getrinp_compact);
LAPACK_ENTRY(potrf_compact);
LAPACK_ENTRY(geqrf_compact);

struct shape {
    int64_t m, n, nm;
};

/// visit(format, layout, shape) for all of them
template <class Visit>
void for_all(std::initializer_list<shape> shapes, const Visit &visit)
{
    for (const int32_t format : formats)
        for (const int32_t layout : layouts)
            for (const shape &each : shapes)
                visit(format, layout, each);
}

/// Random matrices with a diagonal that outweighs the rest, so that all comparisons are of well-conditioned
/// results of size 1
template <class T>
family<T> dominant(int32_t layout, int32_t format, const shape &size)
{
    family<T> a(layout, format, size.m, size.n, size.nm);
    for (int64_t matrix = 0; matrix < size.nm; ++matrix)
        for (int64_t j = 0; j < size.n; ++j)
            for (int64_t i = 0; i < size.m; ++i)
                a.at(matrix, i, j) =
                    i == j ? T(2) : a.at(matrix, i, j) / static_cast<real_of<T>>(size.m + size.n);
    return a;
}

template <class T>
void expect_same(const matrix<T> &actual, const matrix<T> &expected, const char *what)
{
    for (int64_t j = 0; j < actual.columns; ++j)
        for (int64_t i = 0; i < actual.rows; ++i)
            expect_close(actual(i, j), widen(expected(i, j)), actual.rows + actual.columns, what, i, j);
}

template <class T>
struct compact_factor : ::testing::Test {
};
TYPED_TEST_SUITE(compact_factor, all_types);

TYPED_TEST(compact_factor, lu_and_inverse)
{
    using T = TypeParam;
    for_all({{1, 1, 1},
             {2, 2, 17},
             {4, 4, 3},
             {5, 5, 3},
             {13, 13, 2},
             {3, 9, 5},
             {9, 3, 5},
             {7, 0, 2},
             {8, 8, 2000},
             {1, 1, 0}},
            [](int32_t format, int32_t layout, const shape &size) {
                const auto &[m, n, nm] = size;
                family<T> a = dominant<T>(layout, format, size), factors = a;
                if (nm == 0)
                    return getrfnp_compact<T>(layout, m, n, nullptr, a.ld, nullptr, format, nm);
                auto packed = a.packed();
                int64_t info = -7;
                getrfnp_compact<T>(layout, m, n, packed.data(), a.ld, &info, format, nm);
                EXPECT_EQ(info, 0);
                factors.unpack(packed);
                family<T> inverses = factors;
                std::vector<real_of<T>> work(1);
                if (m == n) {
                    getrinp_compact<T>(layout, n, packed.data(), a.ld, work.data(), 1, &info, format, nm);
                    EXPECT_EQ(info, 0);
                    inverses.unpack(packed);
                }
                for (int64_t i = 0; i < nm; ++i) {
                    matrix<T> expected = a.plain(i);
                    getrfnp<T>(&m, &n, expected.data(), &expected.ld, &info);
                    expect_same(factors.plain(i), expected, "factors");
                    if (m != n)
                        continue;
                    std::vector<T> space(n);
                    getrinp<T>(&n, expected.data(), &expected.ld, space.data(), &n, &info);
                    expect_same(inverses.plain(i), expected, "inverse");
                }
            });
}

/// The other triangle holds random numbers, and so do the diagonal's imaginary parts: neither counts.
TYPED_TEST(compact_factor, cholesky)
{
    using T = TypeParam;
    for (const int32_t uplo : {CblasUpper, CblasLower})
        for_all({{1, 1, 1}, {2, 2, 17}, {4, 4, 3}, {5, 5, 9}, {13, 13, 2}},
                [uplo](int32_t format, int32_t layout, const shape &size) {
                    const int64_t n = size.n;
                    family<T> a = dominant<T>(layout, format, size), factors = a;
                    for (int64_t at = 0; at < n * size.nm; ++at)
                        a.at(at / n, at % n, at % n) = scalar<T>(2, .75);
                    auto packed = a.packed();
                    int64_t info = -7;
                    potrf_compact<T>(layout, uplo, n, packed.data(), a.ld, &info, format, size.nm);
                    EXPECT_EQ(info, 0);
                    factors.unpack(packed);
                    for (int64_t i = 0; i < size.nm; ++i) {
                        matrix<T> expected = a.plain(i);
                        const matrix<T> actual = factors.plain(i);
                        potrf<T>(uplo == CblasUpper ? "U" : "L", &n, expected.data(), &expected.ld, &info,
                                 1);
                        expect_same(actual, expected, "factor");
                        for (int64_t j = 0; j < n; ++j) {
                            EXPECT_EQ(std::imag(actual(j, j)), 0);
                            for (int64_t k = j + 1; k < n; ++k)
                                EXPECT_EQ((uplo == CblasUpper ? actual(k, j) : actual(j, k)),
                                          (uplo == CblasUpper ? expected(k, j) : expected(j, k)));
                        }
                    }
                });
}

TYPED_TEST(compact_factor, qr)
{
    using T = TypeParam;
    for_all({{1, 1, 1}, {2, 2, 17}, {4, 4, 3}, {6, 5, 9}, {13, 13, 2}, {3, 9, 5}, {9, 3, 5}, {1, 4, 2}},
            [](int32_t format, int32_t layout, const shape &size) {
                const auto &[m, n, nm] = size;
                const int64_t lanes = xkl_compact_lanes(format, sizeof(real_of<T>)), steps = std::min(m, n),
                              parts = is_complex<T> ? 2 : 1, packs = (nm - 1) / lanes + 1;
                family<T> a = dominant<T>(layout, format, size), factors = a;
                for (int64_t i = 0; i < m; ++i)
                    a.at(0, i, 0) = T(i == 0); // nothing to reflect in this column
                auto packed = a.packed();
                std::vector<real_of<T>> tau(packs * steps * lanes * parts + 1, -77), work(1);
                int64_t info = -7;
                geqrf_compact<T>(layout, m, n, packed.data(), a.ld, tau.data(), work.data(), -1, &info,
                                 format, nm);
                EXPECT_EQ(tau[0], -77);
                EXPECT_GE(work[0], 1);
                geqrf_compact<T>(layout, m, n, packed.data(), a.ld, tau.data(), work.data(), 1, &info,
                                 format, nm);
                EXPECT_EQ(info, 0);
                EXPECT_EQ(tau.back(), -77);
                factors.unpack(packed);
                for (int64_t i = 0; i < nm; ++i) {
                    matrix<T> expected = a.plain(i);
                    const int64_t lwork = 64 * n;
                    std::vector<T> taus(steps), space(lwork);
                    geqrf<T>(&m, &n, expected.data(), &expected.ld, taus.data(), space.data(), &lwork,
                             &info);
                    expect_same(factors.plain(i), expected, "reflectors");
                    for (int64_t k = 0; k < steps; ++k) {
                        const real_of<T> *place =
                            tau.data() + (i / lanes * steps + k) * lanes * parts + i % lanes;
                        expect_close(scalar<T>(place[0], is_complex<T> ? place[lanes] : 0), widen(taus[k]),
                                     m, "tau", k);
                    }
                }
            });
}

/// Columns whose squares leave the range, and one of zeros
TYPED_TEST(compact_factor, qr_near_the_range)
{
    using T = TypeParam;
    using real = real_of<T>;
    const int64_t m = 3, n = 1, nm = 4;
    const real largest = std::numeric_limits<real>::max() / 8, least = std::numeric_limits<real>::min(),
               sizes[] = {largest, least, least / 64, 0};
    for (const int32_t format : formats) {
        family<T> a(CblasColMajor, format, m, n, nm), factors = a;
        for (int64_t i = 0; i < nm * m; ++i)
            a.at(i / m, i % m, 0) = T(sizes[i / m] * (i % m == 1 ? 2 : 1));
        auto packed = a.packed();
        const int64_t lanes = xkl_compact_lanes(format, sizeof(real)), parts = is_complex<T> ? 2 : 1;
        std::vector<real> tau(nm * lanes * parts), work(1);
        geqrf_compact<T>(CblasColMajor, m, n, packed.data(), a.ld, tau.data(), work.data(), 1, nullptr,
                         format, nm);
        factors.unpack(packed);
        for (int64_t i = 0; i < 3; ++i) {
            expect_close(factors.at(i, 0, 0) / T(sizes[i]), wide(-std::sqrt(6.L)), 64, "norm");
            expect_close(factors.at(i, 1, 0), wide(2 / (1 + std::sqrt(6.L))), 64, "reflector");
        }
        for (int64_t i = 0; i < m; ++i)
            EXPECT_EQ(factors.at(3, i, 0), T(0));
        EXPECT_EQ(tau[3 / lanes * lanes * parts + 3 % lanes], 0);
    }
}

// Written by the handler in the test below.
std::string refused_name;
int64_t refused_position;

TYPED_TEST(compact_factor, bad_arguments_are_refused)
{
    using T = TypeParam;
    xkl_serv_set_xerbla_interface([](const char *name, const int64_t *position, int64_t length) {
        refused_name.assign(name, static_cast<size_t>(length));
        refused_position = *position;
    });
    const int32_t by_columns = CblasColMajor, by_rows = CblasRowMajor, upper = CblasUpper,
                  format = XKL_COMPACT_256;
    int64_t info = 0;
    real_of<T> a[64] = {};
    const auto expect_refusal = [&](std::string name, int64_t position) {
        name.replace(name.find('?'), 1, pick<T>("S", "D", "C", "Z"));
        EXPECT_EQ(refused_name, name);
        EXPECT_EQ(refused_position, position) << name;
        EXPECT_EQ(info, -position) << name;
    };
    const struct {
        int32_t layout;
        int64_t m, n, lda;
        int32_t format;
        int64_t nm;
        int lu, qr; // positions in XKL_?GETRFNP_COMPACT and XKL_?GEQRF_COMPACT
    } refused[] = {{0, 1, 1, 1, format, 1, 1, 1},           {by_rows, -1, 1, 1, format, 1, 2, 2},
                   {by_rows, 1, -1, 1, format, 1, 3, 3},    {by_columns, 3, 2, 2, format, 1, 5, 5},
                   {by_rows, 2, 3, 2, format, 1, 5, 5},     {by_rows, 3, 2, 2, format + 2, 1, 7, 10},
                   {by_columns, 2, 3, 2, format, -1, 8, 11}};
    for (const auto &[layout, m, n, lda, in_format, nm, lu, qr] : refused) {
        getrfnp_compact<T>(layout, m, n, a, lda, &info, in_format, nm);
        expect_refusal("XKL_?GETRFNP_COMPACT", lu);
        geqrf_compact<T>(layout, m, n, a, lda, a, a, 1, &info, in_format, nm);
        expect_refusal("XKL_?GEQRF_COMPACT", qr);
        refused_position = 0;
        getrfnp_compact<T>(layout, m, n, a, lda, nullptr, in_format, nm);
        EXPECT_EQ(refused_position, lu);
    }
    geqrf_compact<T>(by_rows, 1, 1, a, 1, a, a, 0, &info, format, 1);
    expect_refusal("XKL_?GEQRF_COMPACT", 8);
    potrf_compact<T>(by_rows, upper - 1, 1, a, 1, &info, format, 1);
    expect_refusal("XKL_?POTRF_COMPACT", 2);
    potrf_compact<T>(by_rows, upper, 2, a, 1, &info, format, 1);
    expect_refusal("XKL_?POTRF_COMPACT", 5);
    getrinp_compact<T>(by_rows, 2, a, 1, a, 1, &info, format, 1);
    expect_refusal("XKL_?GETRINP_COMPACT", 4);
    getrinp_compact<T>(by_rows, 2, a, 2, a, 0, &info, format, 1);
    expect_refusal("XKL_?GETRINP_COMPACT", 6);
    getrinp_compact<T>(by_rows, 2, a, 2, a, 1, &info, format, -1);
    expect_refusal("XKL_?GETRINP_COMPACT", 9);
    EXPECT_EQ(std::count(a, a + 64, 0), 64);
    xkl_serv_set_xerbla_interface(nullptr);
}

} // namespace
