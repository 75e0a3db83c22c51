// Column-major matrices for the tests of LAPACK, and how the field judges results: by residuals in units of
// the machine's precision, relative to the norms and the size of the problem.
#pragma once

#include "element_types.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace lapack_tests {

using namespace element_types;

/// Column-major, without gaps.
template <class T>
struct matrix {
    int64_t rows, columns;
    std::vector<T> elements;

    matrix(int64_t m, int64_t n) : rows(m), columns(n), elements(static_cast<size_t>(m * n)) {}

    T &operator()(int64_t i, int64_t j) { return elements[static_cast<size_t>(i + j * rows)]; }
    T operator()(int64_t i, int64_t j) const { return elements[static_cast<size_t>(i + j * rows)]; }
    T *data() { return elements.data(); }

    static matrix random(int64_t m, int64_t n)
    {
        static std::mt19937 engine(20);
        std::uniform_real_distribution<real_of<T>> part(-1, 1);
        matrix result(m, n);
        for (T &each : result.elements) {
            if constexpr (is_complex<T>)
                each = T(part(engine), part(engine));
            else
                each = part(engine);
        }
        return result;
    }
};

template <class T>
matrix<T> adjoint(const matrix<T> &a)
{
    matrix<T> result(a.columns, a.rows);
    for (int64_t j = 0; j < a.columns; ++j)
        for (int64_t i = 0; i < a.rows; ++i)
            result(j, i) = conjugate(a(i, j));
    return result;
}

template <class T>
matrix<T> operator*(const matrix<T> &a, const matrix<T> &b)
{
    matrix<T> c(a.rows, b.columns);
    for (int64_t j = 0; j < b.columns; ++j)
        for (int64_t k = 0; k < a.columns; ++k)
            for (int64_t i = 0; i < a.rows; ++i)
                c(i, j) += a(i, k) * b(k, j);
    return c;
}

template <class T>
matrix<T> operator-(matrix<T> a, const matrix<T> &b)
{
    std::transform(a.elements.begin(), a.elements.end(), b.elements.begin(), a.elements.begin(),
                   std::minus<>());
    return a;
}

template <class T, class D>
matrix<T> scaled_columns(matrix<T> a, const std::vector<D> &by)
{
    for (int64_t j = 0; j < a.columns; ++j)
        for (int64_t i = 0; i < a.rows; ++i)
            a(i, j) *= by[static_cast<size_t>(j)];
    return a;
}

template <class T>
matrix<T> identity(int64_t n)
{
    matrix<T> result(n, n);
    for (int64_t i = 0; i < n; ++i)
        result(i, i) = 1;
    return result;
}

template <class T>
matrix<T> hermitian(int64_t n, real_of<T> shift)
{
    matrix<T> a = matrix<T>::random(n, n);
    for (int64_t j = 0; j < n; ++j) {
        a(j, j) = std::real(a(j, j)) + shift;
        for (int64_t i = 0; i < j; ++i)
            a(j, i) = conjugate(a(i, j));
    }
    return a;
}

/// The largest column sum.
template <class T>
double norm(const matrix<T> &a)
{
    double largest = 0;
    for (int64_t j = 0; j < a.columns; ++j) {
        double sum = 0;
        for (int64_t i = 0; i < a.rows; ++i)
            sum += std::abs(a(i, j));
        largest = std::max(largest, sum);
    }
    return largest;
}

/// A difference in units of precision, for data of this size and problems of this order.
template <class T>
double in_units(const matrix<T> &difference, double size, int64_t order)
{
    return norm(difference) /
           (size * static_cast<double>(order) * std::numeric_limits<real_of<T>>::epsilon());
}

/// Columns from one up to another.
template <class T>
matrix<T> columns(const matrix<T> &a, int64_t from, int64_t to)
{
    matrix<T> result(a.rows, to - from);
    for (int64_t j = from; j < to; ++j)
        for (int64_t i = 0; i < a.rows; ++i)
            result(i, j - from) = a(i, j);
    return result;
}

/// Rows from one up to another.
template <class T>
matrix<T> rows(const matrix<T> &a, int64_t from, int64_t to)
{
    return adjoint(columns(adjoint(a), from, to));
}

inline constexpr double threshold = 10; // the reference's own programs take 20 and 30

} // namespace lapack_tests
