// What the factorizations of compact matrices are made of: lanes with the operations that reflectors and
// roots need besides those of products, parts of matrices, and the products and solves themselves.
#pragma once

#include "compact_factor.h"

#include <limits>

#include "blas/compact_kernels.h"

// How vectors wider than the processor's registers are passed: they never are, all of this is inlined.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace xkl::core {
namespace {

template <class V>
[[gnu::always_inline]] inline V magnitude(const V &x)
{
    return x < 0 ? -x : x;
}

/// Compiled for roots that don't set errno, the loop is an instruction.
template <class R, class V>
[[gnu::always_inline]] inline V square_root(const V &x)
{
    constexpr int64_t lanes = sizeof(V) / sizeof(R);
    R root[lanes];
    __builtin_memcpy(root, &x, sizeof x);
    for (int64_t i = 0; i < lanes; ++i)
        root[i] = sizeof(R) == 4 ? __builtin_sqrtf(root[i]) : __builtin_sqrt(root[i]);
    V result;
    __builtin_memcpy(&result, root, sizeof x);
    return result;
}

/// Divisors are reciprocals in either type here: a pivot so small that its reciprocal is infinite is no
/// pivot.
template <class R, int bytes>
struct factor_lanes : real_lanes<R, bytes> {
    using lanes = typename real_lanes<R, bytes>::lanes;
    static constexpr int tile_rows = 4, together = 4; // columns that a reflector is applied to at once

    [[gnu::always_inline]] lanes real() const { return this->value; }
    [[gnu::always_inline]] lanes imaginary() const { return lanes{}; }
    [[gnu::always_inline]] void assign(const lanes &re, const lanes &) { this->value = re; }
    [[gnu::always_inline]] lanes square() const { return this->value * this->value; }
    [[gnu::always_inline]] lanes largest_part() const { return magnitude(this->value); }
    [[gnu::always_inline]] void stretch(const lanes &by) { this->value *= by; }
    [[gnu::always_inline]] void become_divisor() { this->value = 1 / this->value; }
    [[gnu::always_inline]] void divide_by(const factor_lanes &reciprocal)
    {
        this->value *= reciprocal.value;
    }
    [[gnu::always_inline]] void subtract(const factor_lanes &a) { this->value -= a.value; }
};

template <class R, int bytes>
struct complex_factor_lanes : complex_lanes<R, bytes> {
    using lanes = typename complex_lanes<R, bytes>::lanes;
    static constexpr int tile_rows = 2, together = 2;

    [[gnu::always_inline]] lanes real() const { return this->re; }
    [[gnu::always_inline]] lanes imaginary() const { return this->im; }
    [[gnu::always_inline]] void assign(const lanes &real, const lanes &imaginary)
    {
        this->re = real;
        this->im = imaginary;
    }
    [[gnu::always_inline]] lanes square() const { return this->re * this->re + this->im * this->im; }
    [[gnu::always_inline]] lanes largest_part() const
    {
        const lanes x = magnitude(this->re), y = magnitude(this->im);
        return x > y ? x : y;
    }
    [[gnu::always_inline]] void stretch(const lanes &by)
    {
        this->re *= by;
        this->im *= by;
    }
    [[gnu::always_inline]] void subtract(const complex_factor_lanes &a)
    {
        this->re -= a.re;
        this->im -= a.im;
    }
};

template <class R>
compact_view<R> part(compact_view<R> a, int64_t i, int64_t j)
{
    a.first += i * a.row + j * a.column;
    return a;
}

template <class R>
compact_view<R> transposed(const compact_view<R> &a)
{
    return {a.first, a.column, a.row, a.pack, a.conjugated};
}

template <class R>
compact_view<R> conjugated(compact_view<R> a)
{
    a.conjugated = true;
    return a;
}

/// Rows from the last to the first
template <class R>
compact_view<R> upside_down(const compact_view<R> &a, int64_t rows)
{
    return {a.first + (rows - 1) * a.row, -a.row, a.column, a.pack, a.conjugated};
}

template <class R>
compact_view<const R> read_only(const compact_view<R> &a)
{
    return {a.first, a.row, a.column, a.pack, a.conjugated};
}

template <class R>
[[gnu::always_inline]] inline R *place(const compact_view<R> &a, int64_t i, int64_t j)
{
    return a.first + i * a.row + j * a.column;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes element_of(const compact_view<typename Lanes::scalar> &a, int64_t i,
                                               int64_t j)
{
    Lanes x;
    x.load(place(a, i, j), false);
    return x;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes conjugate_of(const compact_view<typename Lanes::scalar> &a, int64_t i,
                                                 int64_t j)
{
    Lanes x;
    x.load(place(a, i, j), true);
    return x;
}

/// C := C + alpha*A*B, C m by n, k the inner dimension
template <class Lanes>
void add_product(int alpha, int64_t m, int64_t n, int64_t k, const compact_view<typename Lanes::scalar> &a,
                 const compact_view<typename Lanes::scalar> &b,
                 const compact_view<typename Lanes::scalar> &c)
{
    using R = typename Lanes::scalar;
    multiply<Lanes, Lanes::tile_rows>(
        compact_product<R>{m, n, k, {static_cast<R>(alpha), 0}, {1, 0}, read_only(a), read_only(b), c}, 0);
}

enum class triangle { unit_lower, upper, unit_upper, lower };

/// B := alpha*inv(A)*B, B m by n
template <class Lanes>
void solve_left(triangle kind, int alpha, int64_t m, int64_t n, compact_view<typename Lanes::scalar> a,
                compact_view<typename Lanes::scalar> b)
{
    using R = typename Lanes::scalar;
    // An upper triangle read backwards is a lower one.
    if (kind == triangle::upper || kind == triangle::unit_upper) {
        a = transposed(upside_down(transposed(upside_down(a, m)), m));
        b = upside_down(b, m);
    }
    const bool unit = kind == triangle::unit_lower || kind == triangle::unit_upper;
    solve<Lanes>(compact_solution<R>{m, n, {static_cast<R>(alpha), 0}, unit, read_only(a), b}, 0);
}

/// B := alpha*B*inv(A), B m by n
template <class Lanes>
void solve_right(triangle kind, int alpha, int64_t m, int64_t n,
                 const compact_view<typename Lanes::scalar> &a,
                 const compact_view<typename Lanes::scalar> &b)
{
    const triangle turned = kind == triangle::upper ? triangle::lower : triangle::unit_upper;
    solve_left<Lanes>(turned, alpha, n, m, transposed(a), transposed(b));
}

} // namespace
} // namespace xkl::core
