// ?LATM4, held to what its documentation promises of each type of matrix.
#include "blas_reference.h"

#include "xkl.h"

namespace {
using namespace blas_test;

template <class T>
constexpr auto latm4 = pick<T>(slatm4_, dlatm4_, clatm4_, zlatm4_);

template <class T>
struct test_matrices : ::testing::Test {
    using real = real_of<T>;
    int64_t seed[4] = {7, 11, 1009, 2001};

    /// n = 9, the first diagonal entry and the last two zero, magnitude 2, condition 1/4
    matrix<T> made(int64_t type, int64_t sign, double above, int64_t n = 9)
    {
        const int64_t nz1 = 1, nz2 = 2, uniform = 2;
        const real magnitude = 2, rcond = .25, triang = static_cast<real>(above);
        matrix<T> a(n, n);
        latm4<T>(&type, &n, &nz1, &nz2, &sign, &magnitude, &rcond, &triang, &uniform, seed, a.data(),
                 &a.ld);
        EXPECT_TRUE(a.canaries_live());
        return a;
    }
};
TYPED_TEST_SUITE(test_matrices, all_types);

TYPED_TEST(test_matrices, diagonals)
{
    using T = TypeParam;
    const struct {
        int64_t type;
        std::vector<double> diagonal, below;
    } expected[] = {{0, std::vector<double>(9, 0), std::vector<double>(8, 0)},
                    {1, std::vector<double>(9, 1), std::vector<double>(8, 0)},
                    {2, std::vector<double>(9, 0), std::vector<double>(8, 1)},
                    {3, {0, 0, 0, 0, 0, 1, 1, 1, 1}, {1, 1, 1, 1, 0, 0, 0, 0}},
                    {4, {0, 1, 2, 3, 4, 5, 6, 0, 0}, std::vector<double>(8, 0)},
                    {5, {0, 1, .25, .25, .25, .25, .25, 0, 0}, std::vector<double>(8, 0)},
                    {6, {0, 1, 1, 1, 1, 1, .25, 0, 0}, std::vector<double>(8, 0)},
                    {8, {0, 1, .85, .7, .55, .4, .25, 0, 0}, std::vector<double>(8, 0)}};
    for (const auto &[type, diagonal, below] : expected)
        for (const int64_t direction : {1, -1}) {
            const matrix<T> a = this->made(direction * type, 0, 0);
            for (int64_t j = 0; j < 9; ++j)
                for (int64_t i = 0; i < 9; ++i) {
                    // from the other end when the type is negative
                    const int64_t at = direction > 0 ? i : 8 - i, beside = direction > 0 ? j : 7 - j;
                    const double value = i == j ? diagonal[at] : i == j + 1 ? below[beside] : 0;
                    expect_close(a(i, j), wide(2 * value), 1, "entry", i, j);
                }
        }
    const matrix<T> geometric = this->made(7, 0, 0), even = this->made(3, 0, 0, 8);
    for (int64_t i = 0; i < 6; ++i)
        expect_close(geometric(i + 1, i + 1), wide(2 * std::pow(.25, static_cast<double>(i) / 5)), 4,
                     "power");
    EXPECT_EQ(even(7, 7), T(0));
    EXPECT_EQ(even(6, 6), T(2));
    EXPECT_EQ(even(3, 2), T(2));
    EXPECT_EQ(even(4, 3), T(0));
}

TYPED_TEST(test_matrices, random_diagonals)
{
    using T = TypeParam;
    const matrix<T> limited = this->made(9, 0, 0), any = this->made(10, 0, 0);
    for (int64_t i = 1; i < 7; ++i) {
        EXPECT_GE(std::abs(limited(i, i)), .5);
        EXPECT_LE(std::abs(limited(i, i)), 2);
        EXPECT_NE(any(i, i), any(i % 6 + 1, i % 6 + 1));
        EXPECT_LE(std::abs(std::real(any(i, i))), 2);
    }
    EXPECT_EQ(limited(0, 0), T(0));
    EXPECT_EQ(any(7, 7), T(0));
}

TYPED_TEST(test_matrices, signs_and_what_is_above)
{
    using T = TypeParam;
    const matrix<T> plain = this->made(4, 0, 0), turned = this->made(4, 1, .5),
                    jordan = this->made(2, 2, .5);
    int64_t changed = 0;
    for (int64_t j = 0; j < 9; ++j)
        for (int64_t i = 0; i < 9; ++i) {
            if (i == j) {
                EXPECT_NEAR(std::abs(turned(i, i)), std::abs(plain(i, i)), 1e-5);
                changed += turned(i, i) != plain(i, i);
            } else if (i > j) {
                EXPECT_EQ(turned(i, j), T(0));
                EXPECT_NEAR(std::abs(jordan(i, j)), i == j + 1 ? 2 : 0, 1e-5);
            } else {
                EXPECT_LE(std::abs(std::real(turned(i, j))), .5);
                EXPECT_NE(turned(i, j), T(0));
            }
        }
    EXPECT_GT(changed, 0);
}

/// Rotations around two diagonal entries keep their product, up to its sign, and the sum of squares.
TYPED_TEST(test_matrices, blocks_on_the_diagonal)
{
    using T = TypeParam;
    if (is_complex<T>)
        GTEST_SKIP() << "complex matrices need no blocks";
    const matrix<T> plain = this->made(4, 0, 0, 40);
    for (const int64_t type : {4, -4}) {
        const matrix<T> a = this->made(type, 2, .125, 40);
        int64_t blocks = 0;
        for (int64_t i = 0; i + 1 < 40; ++i) {
            if (a(i + 1, i) == T(0))
                continue;
            ++blocks;
            const int64_t first = type > 0 ? i : 38 - i;
            EXPECT_EQ(first % 2, 0);
            const double d1 = std::abs(plain(first, first)), d2 = std::abs(plain(first + 1, first + 1));
            const wide det =
                widen(a(i, i)) * widen(a(i + 1, i + 1)) - widen(a(i, i + 1)) * widen(a(i + 1, i));
            long double squares = 0;
            for (const T &each : {a(i, i), a(i + 1, i), a(i, i + 1), a(i + 1, i + 1)})
                squares += std::norm(widen(each));
            EXPECT_NEAR(std::abs(det) / (d1 * d2), 1, 1e-4);
            EXPECT_NEAR(squares / (d1 * d1 + d2 * d2), 1, 1e-4);
        }
        EXPECT_GT(blocks, 3);
        EXPECT_LT(blocks, 19);
    }
}

} // namespace
