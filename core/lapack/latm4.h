// The matrices with which LAPACK's programs test generalized eigenvalue routines: a diagonal, or Jordan
// blocks beside it, of ten kinds, with random signs, 2 by 2 blocks of complex eigenvalues, and random
// numbers above. Random numbers are ?LARND's.
#pragma once

#include "call.h"

#include <algorithm>
#include <cmath>

namespace xkl::core {

/// What an entry on the diagonal or beside it, and the random numbers, depend on
template <class T>
struct test_matrix {
    using real = real_of<T>;

    int64_t type, n, first, last; // the nonzeros are those in the places first to last - 1
    real rcond;
    int64_t distribution;
    int64_t *seed;
    T *a;
    int64_t lda;

    T &at(int64_t i, int64_t j) const { return a[i + j * lda]; }
    T random() const { return call(entries::larnd<T>, distribution, seed); }
    real uniform() const { return call(entries::larnd<real>, int64_t(1), seed); } // from 0 to 1
    bool is_jordan() const { return type == 2 || type == 3; }
};

/// Nonzero k of `count` on the diagonal, counted from 0
template <class T>
T diagonal_entry(const test_matrix<T> &matrix, int64_t k, int64_t count)
{
    using real = real_of<T>;
    const real place = count > 1 ? static_cast<real>(k) / static_cast<real>(count - 1) : 0;
    switch (matrix.type) {
    case 4:
        return static_cast<real>(k + 1);
    case 5:
        return k == 0 ? 1 : matrix.rcond;
    case 6:
        return k + 1 == count ? matrix.rcond : 1;
    case 7:
        return std::pow(matrix.rcond, place);
    case 8:
        return 1 - place * (1 - matrix.rcond);
    case 9:
        return std::pow(matrix.rcond, matrix.uniform());
    case 10:
        return matrix.random();
    default:
        return 1;
    }
}

/// The diagonal, and what is below it, with magnitudes up to 1
template <class T>
void fill_band(const test_matrix<T> &matrix)
{
    const int64_t n = matrix.n, half = (n - 1) / 2, odd_half = n % 2 == 1 ? half : n / 2 - 1;
    if (matrix.is_jordan()) {
        const int64_t ones = matrix.type == 2 ? n - 1 : odd_half;
        for (int64_t i = 0; i < ones; ++i)
            matrix.at(i + 1, i) = 1;
        if (matrix.type == 3)
            for (int64_t i = odd_half + 1; i <= 2 * odd_half; ++i)
                matrix.at(i, i) = 1;
    } else {
        for (int64_t i = matrix.first; i < matrix.last; ++i)
            matrix.at(i, i) = diagonal_entry(matrix, i - matrix.first, matrix.last - matrix.first);
    }
}

template <class T>
T random_sign(const test_matrix<T> &matrix)
{
    constexpr int64_t on_the_unit_circle = 5;
    if constexpr (element<T>::is_complex)
        return call(entries::larnd<T>, on_the_unit_circle, matrix.seed);
    else
        return matrix.uniform() < T(.5) ? -1 : 1;
}

template <class T>
void change_signs(const test_matrix<T> &matrix)
{
    for (int64_t i = 0; i < matrix.n; ++i) {
        if (matrix.at(i, i) != T(0))
            matrix.at(i, i) = product(matrix.at(i, i), random_sign(matrix));
        if (i + 1 < matrix.n && matrix.at(i + 1, i) != T(0))
            matrix.at(i + 1, i) = product(matrix.at(i + 1, i), random_sign(matrix));
    }
}

/// Turns every other pair of nonzeros, at random, into a full block: two rotations around diag(d1,d2).
template <class T>
void make_blocks(const test_matrix<T> &matrix)
{
    const auto angle = [&] { return T(6.2831853071795864769) * matrix.uniform(); };
    for (int64_t i = (matrix.first + 1) / 2 * 2; i + 1 < matrix.last; i += 2) {
        if (matrix.uniform() < T(.5))
            continue;
        const T left = angle(), right = angle(), d1 = matrix.at(i, i), d2 = matrix.at(i + 1, i + 1);
        const T cl = std::cos(left), sl = std::sin(left), cr = std::cos(right), sr = std::sin(right);
        matrix.at(i, i) = cl * cr * d1 + sl * sr * d2;
        matrix.at(i, i + 1) = -cl * sr * d1 + sl * cr * d2;
        matrix.at(i + 1, i) = -sl * cr * d1 + cl * sr * d2;
        matrix.at(i + 1, i + 1) = sl * sr * d1 + cl * cr * d2;
    }
}

/// Mirrors the diagonal and its neighbours at the other diagonal.
template <class T>
void swap_ends(const test_matrix<T> &matrix)
{
    const int64_t n = matrix.n;
    for (int64_t i = 0; i < n / 2; ++i)
        std::swap(matrix.at(i, i), matrix.at(n - 1 - i, n - 1 - i));
    for (int64_t i = 0; i < (n - 1) / 2; ++i) {
        std::swap(matrix.at(i + 1, i), matrix.at(n - 1 - i, n - 2 - i));
        std::swap(matrix.at(i, i + 1), matrix.at(n - 2 - i, n - 1 - i));
    }
}

/// Blocks are for real matrices: the eigenvalues of complex ones need none.
template <class T>
void change_signs_or_make_blocks(const test_matrix<T> &matrix, int64_t sign)
{
    if (sign != 0)
        change_signs(matrix);
    if constexpr (!element<T>::is_complex)
        if (sign == 2 && !matrix.is_jordan())
            make_blocks(matrix);
}

template <class T>
void fill_above(const test_matrix<T> &matrix, real_of<T> magnitude)
{
    for (int64_t j = 1; j < matrix.n; ++j)
        for (int64_t i = 0; i < j; ++i) {
            const bool in_a_block = i + 1 == j && !matrix.is_jordan() && matrix.at(j, i) != T(0);
            if (!in_a_block)
                matrix.at(i, j) = magnitude * matrix.random();
        }
}

template <class T>
void latm4(const int64_t *itype, const int64_t *n, const int64_t *nz1, const int64_t *nz2,
           const int64_t *sign, const real_of<T> *amagn, const real_of<T> *rcond, const real_of<T> *triang,
           const int64_t *idist, int64_t *iseed, T *a, const int64_t *lda)
{
    const int64_t order = *n, type = std::abs(*itype), distance = *lda;
    for (int64_t j = 0; j < order; ++j)
        std::fill_n(a + j * distance, order, T(0));
    if (type == 0 || order <= 0)
        return;
    const bool with_zeros = type > 3;
    const int64_t first = with_zeros ? std::clamp<int64_t>(*nz1, 0, order) : 0,
                  last = with_zeros ? order - std::clamp<int64_t>(*nz2, 0, order) : order;
    const test_matrix<T> matrix = {type, order, first, last, *rcond, *idist, iseed, a, distance};
    fill_band(matrix);
    for (int64_t j = 0; j < order; ++j)
        for (int64_t i = j; i < std::min(order, j + 2); ++i)
            matrix.at(i, j) *= *amagn;
    change_signs_or_make_blocks(matrix, *sign);
    if (*itype < 0)
        swap_ends(matrix);
    if (*triang != 0)
        fill_above(matrix, *triang);
}

} // namespace xkl::core
