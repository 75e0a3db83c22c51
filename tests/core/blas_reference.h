// What the tests of the core's dense routines share: matrices and vectors that notice a write outside of
// themselves, reference results in extended precision, and one name for a routine's four types.
#pragma once

#include "element_types.h"

#include "core_blas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace blas_test {

using namespace element_types;

#define BLAS_ENTRY(prefix, name)                                                                           \
    template <class T>                                                                                     \
    constexpr auto prefix##name =                                                                          \
        blas_test::pick<T>(xkl_blas_##prefix##s##name, xkl_blas_##prefix##d##name,                         \
                           xkl_blas_##prefix##c##name, xkl_blas_##prefix##z##name)

inline std::mt19937 &random_source()
{
    static std::mt19937 source(20);
    return source;
}

template <class T>
T random_element()
{
    std::uniform_real_distribution<real_of<T>> between(-1, 1);
    if constexpr (is_complex<T>)
        return {between(random_source()), between(random_source())};
    else
        return between(random_source());
}

template <class T>
T not_a_number()
{
    const auto nan = std::numeric_limits<real_of<T>>::quiet_NaN();
    if constexpr (is_complex<T>)
        return {nan, nan};
    else
        return nan;
}

/// Columns at a distance of ld, with a margin before and behind the whole; what is no element is a canary.
template <class T>
class matrix {
  public:
    int64_t rows, columns, ld;

    matrix(int64_t m, int64_t n) : matrix(m, n, std::max<int64_t>(m, 1) + margin) {}
    matrix(int64_t m, int64_t n, int64_t distance)
        : rows(m), columns(n), ld(distance), storage_(ld * n + 2 * margin, canary())
    {
        for_each([](int64_t, int64_t, T &element) { element = random_element<T>(); });
    }

    T *data() { return storage_.data() + margin; }
    const T *data() const { return storage_.data() + margin; }
    T &operator()(int64_t i, int64_t j) { return data()[i + j * ld]; }
    const T &operator()(int64_t i, int64_t j) const { return data()[i + j * ld]; }
    bool operator==(const matrix &other) const { return storage_ == other.storage_; }

    template <class Visit>
    void for_each(const Visit &visit)
    {
        for (int64_t j = 0; j < columns; ++j)
            for (int64_t i = 0; i < rows; ++i)
                visit(i, j, (*this)(i, j));
    }

    bool canaries_live() const
    {
        for (int64_t at = 0; at < static_cast<int64_t>(storage_.size()); ++at) {
            const int64_t inside = at - margin;
            const bool element = inside >= 0 && inside < ld * columns && inside % ld < rows;
            if (!element && storage_[at] != canary())
                return false;
        }
        return true;
    }

  private:
    static constexpr int64_t margin = 3;
    static T canary() { return T(-77); }
    std::vector<T> storage_;
};

/// n elements at distances inc, in the order of the BLAS: with a negative increment from the far end
template <class T>
struct strided : matrix<T> {
    int64_t n, inc;

    strided(int64_t length, int64_t increment)
        : matrix<T>(1, length, std::abs(increment)), n(length), inc(increment)
    {
    }
    T &operator[](int64_t i) { return (*this)(0, inc > 0 ? i : n - 1 - i); }
    const T &operator[](int64_t i) const { return (*this)(0, inc > 0 ? i : n - 1 - i); }
};

/// What beta meets: with a beta of 0 it isn't read, so NaN stands there.
template <class T, class M>
M output(M old, const T &beta)
{
    if (beta == T(0))
        old.for_each([](int64_t, int64_t, T &element) { element = not_a_number<T>(); });
    return old;
}

/// The triangle that uplo and diag make of A, with `outside` where it isn't read and `unit` on a diagonal
/// that isn't
template <class T>
matrix<T> triangle(matrix<T> a, char uplo, char diag, const T &outside, const T &unit)
{
    a.for_each([&](int64_t i, int64_t j, T &element) {
        if (i == j ? diag == 'U' : (uplo == 'U') != (i < j))
            element = i == j ? unit : outside;
    });
    return a;
}

/// A matrix in extended precision
struct wide_matrix {
    int64_t rows, columns;
    std::vector<wide> elements;

    wide_matrix(int64_t m, int64_t n) : rows(m), columns(n), elements(m * n) {}
    wide &operator()(int64_t i, int64_t j) { return elements[i + j * rows]; }
    const wide &operator()(int64_t i, int64_t j) const { return elements[i + j * rows]; }
};

/// op(A)
template <class T>
wide_matrix op(const matrix<T> &a, char trans)
{
    const bool stands = trans == 'N';
    wide_matrix result(stands ? a.rows : a.columns, stands ? a.columns : a.rows);
    for (int64_t j = 0; j < result.columns; ++j)
        for (int64_t i = 0; i < result.rows; ++i) {
            const wide element = widen(stands ? a(i, j) : a(j, i));
            result(i, j) = trans == 'C' ? std::conj(element) : element;
        }
    return result;
}

/// x as a column
template <class T>
wide_matrix op(const strided<T> &x)
{
    wide_matrix result(x.n, 1);
    for (int64_t i = 0; i < x.n; ++i)
        result(i, 0) = widen(x[i]);
    return result;
}

inline wide_matrix operator*(const wide_matrix &a, const wide_matrix &b)
{
    wide_matrix c(a.rows, b.columns);
    for (int64_t j = 0; j < c.columns; ++j)
        for (int64_t p = 0; p < a.columns; ++p)
            for (int64_t i = 0; i < c.rows; ++i)
                c(i, j) += a(i, p) * b(p, j);
    return c;
}

/// Expects `actual` within so many units of rounding of a value that is a sum of so many terms.
template <class T>
void expect_close(const T &actual, const wide &expected, int64_t terms, const char *what, int64_t i = 0,
                  int64_t j = 0)
{
    const long double unit = std::numeric_limits<real_of<T>>::epsilon();
    const long double bound = 8 * unit * static_cast<long double>(terms + 2) * (1 + std::abs(expected));
    EXPECT_LE(std::abs(widen(actual) - expected), bound)
        << what << " (" << i << "," << j << "): got " << actual << ", expected " << expected;
}

/// Expects alpha*product + beta*old in C, and nothing outside of it.
template <class T>
void expect_update(const matrix<T> &c, const T &alpha, const wide_matrix &product, const T &beta,
                   const matrix<T> &old, int64_t terms, const char *what)
{
    for (int64_t j = 0; j < c.columns; ++j)
        for (int64_t i = 0; i < c.rows; ++i) {
            const wide kept = beta == T(0) ? wide(0) : widen(beta) * widen(old(i, j));
            expect_close(c(i, j), widen(alpha) * product(i, j) + kept, terms, what, i, j);
        }
    EXPECT_TRUE(c.canaries_live()) << what;
}

/// The same for a vector
template <class T>
void expect_update(const strided<T> &y, const T &alpha, const wide_matrix &product, const T &beta,
                   const strided<T> &old, int64_t terms, const char *what)
{
    for (int64_t i = 0; i < y.n; ++i) {
        const wide kept = beta == T(0) ? wide(0) : widen(beta) * widen(old[i]);
        expect_close(y[i], widen(alpha) * product(i, 0) + kept, terms, what, i);
    }
    EXPECT_TRUE(y.canaries_live()) << what;
}

} // namespace blas_test
