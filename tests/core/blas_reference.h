// What the tests of the core's dense routines share: matrices and vectors that notice a write outside of
// themselves, reference results in extended precision, and one name for a routine's four types.
#pragma once

#include <complex>

#define XKL_Complex8 std::complex<float>
#define XKL_Complex16 std::complex<double>
#include "core_blas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace blas_test {

using wide = std::complex<long double>;

template <class T>
struct real_type {
    using type = T;
};
template <class R>
struct real_type<std::complex<R>> {
    using type = R;
};
template <class T>
using real_of = typename real_type<T>::type;
template <class T>
constexpr bool is_complex = !std::is_same_v<T, real_of<T>>;

/// One of the four entries of a routine
template <class T, class S, class D, class C, class Z>
constexpr auto pick(S s, D d, C c, Z z)
{
    if constexpr (std::is_same_v<T, float>)
        return s;
    else if constexpr (std::is_same_v<T, double>)
        return d;
    else if constexpr (std::is_same_v<T, std::complex<float>>)
        return c;
    else
        return z;
}
#define BLAS_ENTRY(prefix, name)                                                                           \
    template <class T>                                                                                     \
    constexpr auto prefix##name =                                                                          \
        blas_test::pick<T>(xkl_blas_##prefix##s##name, xkl_blas_##prefix##d##name,                         \
                           xkl_blas_##prefix##c##name, xkl_blas_##prefix##z##name)

using all_types = ::testing::Types<float, double, std::complex<float>, std::complex<double>>;
using real_types = ::testing::Types<float, double>;
using complex_types = ::testing::Types<std::complex<float>, std::complex<double>>;

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

/// A scalar with an imaginary part where there is one
template <class T>
T scalar(double re, double im)
{
    if constexpr (is_complex<T>)
        return T(static_cast<real_of<T>>(re), static_cast<real_of<T>>(im));
    else
        return static_cast<T>(re);
}

template <class T>
wide widen(const T &value)
{
    return {std::real(value), std::imag(value)};
}

/// Columns with three elements of padding behind each, and the same before and behind the whole
template <class T>
class matrix {
  public:
    int64_t rows, columns, ld;

    matrix(int64_t m, int64_t n)
        : rows(m), columns(n), ld(std::max<int64_t>(m, 1) + margin), storage_(ld * n + 2 * margin, canary())
    {
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i < m; ++i)
                (*this)(i, j) = random_element<T>();
    }

    T *data() { return storage_.data() + margin; }
    const T *data() const { return storage_.data() + margin; }
    T &operator()(int64_t i, int64_t j) { return data()[i + j * ld]; }
    const T &operator()(int64_t i, int64_t j) const { return data()[i + j * ld]; }

    void fill(const T &value)
    {
        for (int64_t j = 0; j < columns; ++j)
            std::fill_n(&(*this)(0, j), rows, value);
    }

    bool padding_is_whole() const
    {
        for (int64_t at = 0; at < static_cast<int64_t>(storage_.size()); ++at) {
            const int64_t inside = at - margin;
            const bool element = inside >= 0 && inside < ld * columns && inside % ld < rows;
            if (!element && storage_[at] != canary())
                return false;
        }
        return true;
    }

    bool operator==(const matrix &other) const { return storage_ == other.storage_; }

  private:
    static constexpr int64_t margin = 3;
    static T canary() { return T(-77); }
    std::vector<T> storage_;
};

/// n elements at distances inc, in the order of the BLAS: with a negative increment from the far end
template <class T>
class strided {
  public:
    int64_t n, inc;

    strided(int64_t length, int64_t increment)
        : n(length), inc(increment), storage_(1 + std::max<int64_t>(n, 1) * std::abs(inc), T(-77))
    {
        for (int64_t i = 0; i < n; ++i)
            (*this)[i] = random_element<T>();
    }

    T *data() { return storage_.data(); }
    T &operator[](int64_t i) { return storage_[place(i)]; }
    const T &operator[](int64_t i) const { return storage_[place(i)]; }

    bool gaps_are_whole() const
    {
        for (int64_t at = 0; at < static_cast<int64_t>(storage_.size()); ++at)
            if ((at % std::abs(inc) != 0 || at / std::abs(inc) >= n) && storage_[at] != T(-77))
                return false;
        return true;
    }

  private:
    int64_t place(int64_t i) const { return inc > 0 ? i * inc : (i - (n - 1)) * inc; }
    std::vector<T> storage_;
};

/// Element (i, j) of op(A)
template <class T>
wide op(const matrix<T> &a, char trans, int64_t i, int64_t j)
{
    if (trans == 'N')
        return widen(a(i, j));
    return trans == 'C' ? std::conj(widen(a(j, i))) : widen(a(j, i));
}

/// The triangle that uplo and diag make of A, as a whole matrix
template <class T>
matrix<T> triangle(const matrix<T> &a, char uplo, char diag)
{
    matrix<T> whole = a;
    for (int64_t j = 0; j < a.columns; ++j)
        for (int64_t i = 0; i < a.rows; ++i)
            if (i == j ? diag == 'U' : (uplo == 'U') != (i < j))
                whole(i, j) = T(i == j);
    return whole;
}

/// Element (i, j) of a product whose factors are given by their elements
inline wide inner(int64_t k, const std::function<wide(int64_t)> &left,
                  const std::function<wide(int64_t)> &right)
{
    wide sum = 0;
    for (int64_t p = 0; p < k; ++p)
        sum += left(p) * right(p);
    return sum;
}

/// Expects `actual` within so many units of rounding of a value whose terms are about `terms` in number.
template <class T>
void expect_close(const T &actual, const wide &expected, int64_t terms, const std::string &what)
{
    const long double unit = std::numeric_limits<real_of<T>>::epsilon();
    const long double bound = 8 * unit * static_cast<long double>(terms + 2) * (1 + std::abs(expected));
    EXPECT_LE(std::abs(widen(actual) - expected), bound)
        << what << ": got " << actual << ", expected " << expected;
}

/// Every element of C, and the padding around them
template <class T, class Expected>
void expect_matrix(const matrix<T> &c, int64_t terms, const std::string &what, const Expected &expected)
{
    for (int64_t j = 0; j < c.columns; ++j)
        for (int64_t i = 0; i < c.rows; ++i)
            expect_close(c(i, j), expected(i, j), terms,
                         what + " (" + std::to_string(i) + "," + std::to_string(j) + ")");
    EXPECT_TRUE(c.padding_is_whole()) << what;
}

/// Arguments of routines are addresses; this gives a value one.
template <class V>
const V *by_address(const V &value)
{
    return &value;
}

} // namespace blas_test
