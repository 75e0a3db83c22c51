// Compact routines: packed, computed on and taken apart, they must give what plain matrices give, for every
// format, layout and option, and for numbers of matrices that leave lanes empty.
#include "compact_family.h"

#include "service/service_entries.h"

namespace {
using namespace blas_test;

BLAS_ENTRY(xkl_, gemm_compact);
BLAS_ENTRY(xkl_, trsm_compact);

constexpr int32_t transpositions[] = {CblasNoTrans, CblasTrans, CblasConjTrans};

char letter(int32_t trans)
{
    return "NTC"[trans - CblasNoTrans];
}

template <class T>
struct compact : ::testing::Test {
    const T alpha = scalar<T>(1.25, -.5), beta = scalar<T>(-.5, .75);
};
TYPED_TEST_SUITE(compact, all_types);

TYPED_TEST(compact, lanes_are_neighbours)
{
    using T = TypeParam;
    family<T> all(CblasColMajor, XKL_COMPACT_256, 3, 2, 3);
    const std::vector<real_of<T>> place = all.packed();
    const int64_t lanes = 32 / sizeof(real_of<T>), parts = is_complex<T> ? 2 : 1;
    for (int64_t i = 0; i < all.nm; ++i) {
        EXPECT_EQ(place[(1 * all.ld + 2) * lanes * parts + i], std::real(all.at(i, 2, 1)));
        if (is_complex<T>) {
            EXPECT_EQ(place[(1 * all.ld + 2) * lanes * parts + lanes + i], std::imag(all.at(i, 2, 1)));
        }
    }
}

TYPED_TEST(compact, products)
{
    using T = TypeParam;
    struct shape {
        int64_t m, n, k, nm;
    };
    for (const int32_t format : formats)
        for (const int32_t layout : layouts)
            for (const int32_t transa : transpositions)
                for (const int32_t transb : transpositions)
                    for (const auto &[m, n, k, nm] : {shape{1, 1, 1, 1}, {5, 3, 4, 17}, {4, 2, 0, 3}}) {
                        const bool a_stands = transa == CblasNoTrans, b_stands = transb == CblasNoTrans;
                        const T beta = k == 4 ? this->beta : T(0);
                        family<T> a(layout, format, a_stands ? m : k, a_stands ? k : m, nm);
                        family<T> b(layout, format, b_stands ? k : n, b_stands ? n : k, nm);
                        family<T> c(layout, format, m, n, nm), old = c;
                        auto result = c.packed();
                        if (beta == T(0))
                            std::fill(result.begin(), result.end() - 1, not_a_number<real_of<T>>());
                        xkl_gemm_compact<T>(&layout, &transa, &transb, &m, &n, &k, &this->alpha,
                                            a.packed().data(), &a.ld, b.packed().data(), &b.ld, &beta,
                                            result.data(), &c.ld, &format, &nm);
                        c.unpack(result);
                        for (int64_t i = 0; i < nm; ++i)
                            expect_update(c.plain(i), this->alpha,
                                          op(a.plain(i), letter(transa)) * op(b.plain(i), letter(transb)),
                                          beta, old.plain(i), 2 * k, "product");
                    }
}

/// The solution, checked by multiplying back: op(A)*X or X*op(A) is alpha*B.
TYPED_TEST(compact, solutions)
{
    using T = TypeParam;
    const int64_t m = 5, n = 6, nm = 19;
    for (const int32_t format : formats)
        for (const int32_t layout : layouts)
            for (const int32_t trans : transpositions)
                for (const int32_t choice : {0, 1, 2, 3, 4, 5, 6, 7}) {
                    const int32_t side = choice & 1 ? CblasLeft : CblasRight,
                                  diag = choice & 2 ? CblasUnit : CblasNonUnit,
                                  uplo = choice & 4 ? CblasUpper : CblasLower;
                    const int64_t order = side == CblasLeft ? m : n;
                    family<T> a(layout, format, order, order, nm), b(layout, format, m, n, nm), old = b;
                    for (int64_t i = 0; i < nm * order; ++i)
                        a.at(i / order, i % order, i % order) += T(2);
                    auto x = b.packed();
                    xkl_trsm_compact<T>(&layout, &side, &uplo, &trans, &diag, &m, &n, &this->alpha,
                                        a.packed().data(), &a.ld, x.data(), &b.ld, &format, &nm);
                    b.unpack(x);
                    for (int64_t i = 0; i < nm; ++i) {
                        const wide_matrix factor = op(triangle(a.plain(i), uplo == CblasUpper ? 'U' : 'L',
                                                               diag == CblasUnit ? 'U' : 'N', T(0), T(1)),
                                                      letter(trans));
                        const wide_matrix solution = op(b.plain(i), 'N');
                        const wide_matrix back = side == CblasLeft ? factor * solution : solution * factor;
                        for (int64_t at = 0; at < m * n; ++at)
                            expect_close(old.at(i, at % m, at / m), back.elements[at] / widen(this->alpha),
                                         200, "solution");
                    }
                }
}

TYPED_TEST(compact, a_diagonal_near_the_range_divides)
{
    using T = TypeParam;
    const auto large = std::numeric_limits<real_of<T>>::max() / 4;
    const int64_t one = 1;
    for (const int32_t format : formats)
        for (const auto size : {large, 1 / large}) {
            family<T> a(CblasColMajor, format, 1, 1, 1), b = a;
            a.at(0, 0, 0) = scalar<T>(1, 1) * T(size);
            b.at(0, 0, 0) = scalar<T>(2, -2) * T(size);
            auto x = b.packed();
            const int32_t options[] = {CblasColMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit};
            const T alpha = 1;
            xkl_trsm_compact<T>(options, options + 1, options + 2, options + 3, options + 4, &one, &one,
                                &alpha, a.packed().data(), &a.ld, x.data(), &b.ld, &format, &one);
            b.unpack(x);
            expect_close(b.at(0, 0, 0), is_complex<T> ? wide(0, -2) : wide(2), 4, "quotient");
        }
}

// Written by the handler in the test below.
std::string refused_name;
int64_t refused_position;

TYPED_TEST(compact, unknown_options_are_refused_and_empty_ones_pass)
{
    using T = TypeParam;
    xkl_serv_set_xerbla_interface([](const char *name, const int64_t *position, int64_t length) {
        refused_name.assign(name, length);
        refused_position = *position;
    });
    const int32_t layout = CblasColMajor, side = CblasLeft, uplo = CblasUpper, trans = CblasNoTrans,
                  diag = CblasNonUnit, format = XKL_COMPACT_128, wrong = 0;
    const int64_t one = 1, none = -1;
    xkl_gemm_compact<T>(&layout, &trans, &wrong, &one, &one, &one, &this->alpha, nullptr, &one, nullptr,
                        &one, &this->beta, nullptr, &one, &format, &one);
    EXPECT_EQ(refused_position, 3);
    EXPECT_EQ(refused_name, (pick<T>("XKL_SGEMM_COMPACT ", "XKL_DGEMM_COMPACT ", "XKL_CGEMM_COMPACT ",
                                     "XKL_ZGEMM_COMPACT ")));
    xkl_trsm_compact<T>(&layout, &side, &uplo, &trans, &diag, &one, &one, &this->alpha, nullptr, &one,
                        nullptr, &one, &wrong, &one);
    EXPECT_EQ(refused_position, 13);
    xkl_gepack_compact<T>(&wrong, &one, &one, nullptr, &one, nullptr, &one, &format, &one);
    EXPECT_EQ(refused_position, 1);
    xkl_geunpack_compact<T>(&layout, &one, &one, nullptr, &one, nullptr, &one, &wrong, &one);
    EXPECT_EQ(refused_position, 8);
    refused_position = 0;
    xkl_gemm_compact<T>(&layout, &trans, &trans, &one, &none, &one, &this->alpha, nullptr, &one, nullptr,
                        &one, &this->beta, nullptr, &one, &format, &one);
    xkl_trsm_compact<T>(&layout, &side, &uplo, &trans, &diag, &one, &one, &this->alpha, nullptr, &one,
                        nullptr, &one, &format, &none);
    xkl_gepack_compact<T>(&layout, &none, &one, nullptr, &one, nullptr, &one, &format, &one);
    xkl_geunpack_compact<T>(&layout, &one, &one, nullptr, &one, nullptr, &one, &format, &none);
    EXPECT_EQ(refused_position, 0);
    xkl_serv_set_xerbla_interface(nullptr);
}

TEST(compact, the_processors_format_is_one_of_the_three)
{
    const int64_t format = xkl_blas_xkl_get_format_compact();
    EXPECT_TRUE(format == XKL_COMPACT_128 || format == XKL_COMPACT_256 || format == XKL_COMPACT_512);
}

} // namespace
