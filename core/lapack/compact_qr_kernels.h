// QR factorization of compact matrices by reflectors H = I - tau*v*v**H, v(1) = 1, as ?GEQRF defines them.
// What is a branch in a routine for one matrix is a choice between lanes here.
#pragma once

#include "compact_factor_parts.h"

namespace xkl::core {
namespace {

/// The power of two by which a column whose largest part is this is divided: its squares stay in the range
/// then, and nothing is rounded.
template <class R, class V>
[[gnu::always_inline]] inline V size_of(const V &largest)
{
    using bits = decltype(largest < largest);
    constexpr R least = std::numeric_limits<R>::min(), infinity = std::numeric_limits<R>::infinity();
    const V normal = largest < least ? V{} + least : largest;
    return (V)((bits)normal & (bits)(V{} + infinity)); // its exponent alone
}

/// The reflector that maps the first column of the m rows of x to beta times the first unit vector: beta and
/// the rest of v replace the column. Columns that are such a multiple already have a tau of 0.
template <class Lanes>
void make_reflector(const compact_view<typename Lanes::scalar> &x, int64_t m, typename Lanes::scalar *tau)
{
    using R = typename Lanes::scalar;
    using vector = typename Lanes::lanes;
    vector largest = {}, tail = {};
    for (int64_t i = 0; i < m; ++i) {
        const vector each = element_of<Lanes>(x, i, 0).largest_part();
        largest = each > largest ? each : largest;
    }
    const vector size = size_of<R>(largest), shrink = 1 / size;
    Lanes head = element_of<Lanes>(x, 0, 0);
    head.stretch(shrink);
    for (int64_t i = 1; i < m; ++i) {
        Lanes each = element_of<Lanes>(x, i, 0);
        each.stretch(shrink);
        tail += each.square();
        each.store(place(x, i, 0));
    }
    const vector re = head.real(), im = head.imaginary();
    const auto nothing_to_do = (tail == 0) & (im == 0);
    const vector norm = square_root<R>(vector(head.square() + tail));
    const vector towards = re < 0 ? norm : -norm; // the sign that cancels nothing
    const vector beta = nothing_to_do ? vector{} + 1 : towards;

    Lanes result, divisor, factor;
    result.assign((nothing_to_do ? re : beta) * size, vector{});
    result.store(place(x, 0, 0));
    factor.assign(nothing_to_do ? vector{} : (beta - re) / beta, -im / beta);
    factor.store(tau);
    divisor.assign(nothing_to_do ? vector{} + 1 : re - beta, im);
    divisor.become_divisor();
    for (int64_t i = 1; i < m; ++i) {
        Lanes each = element_of<Lanes>(x, i, 0);
        each.divide_by(divisor);
        each.store(place(x, i, 0));
    }
}

/// Applies H**H, with v in the first column of x, to some columns of c.
template <class Lanes, int columns>
[[gnu::always_inline]] inline void reflect(const compact_view<typename Lanes::scalar> &x,
                                           const Lanes &conjugated_tau, int64_t m,
                                           const compact_view<typename Lanes::scalar> &c)
{
    Lanes along[columns]; // v**H times each column
#pragma GCC unroll 4
    for (int k = 0; k < columns; ++k)
        along[k] = element_of<Lanes>(c, 0, k);
    for (int64_t i = 1; i < m; ++i) {
        const Lanes v = conjugate_of<Lanes>(x, i, 0);
#pragma GCC unroll 4
        for (int k = 0; k < columns; ++k)
            along[k].add_product(v, element_of<Lanes>(c, i, k));
    }
#pragma GCC unroll 4
    for (int k = 0; k < columns; ++k) {
        Lanes first = element_of<Lanes>(c, 0, k), scaled;
        scaled.clear();
        scaled.add_product(conjugated_tau, along[k]);
        along[k] = scaled;
        first.subtract(scaled);
        first.store(place(c, 0, k));
    }
    for (int64_t i = 1; i < m; ++i) {
        const Lanes v = element_of<Lanes>(x, i, 0);
#pragma GCC unroll 4
        for (int k = 0; k < columns; ++k) {
            Lanes each = element_of<Lanes>(c, i, k);
            each.subtract_product(v, along[k]);
            each.store(place(c, i, k));
        }
    }
}

template <class Lanes>
void qr(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t n, typename Lanes::scalar *tau)
{
    constexpr int64_t parts = sizeof(Lanes) / sizeof(typename Lanes::scalar);
    for (int64_t k = 0; k < m && k < n; ++k, tau += parts) {
        const auto x = part(a, k, k);
        make_reflector<Lanes>(x, m - k, tau);
        Lanes factor;
        factor.load(tau, true);
        int64_t j = 1;
        for (; j + Lanes::together <= n - k; j += Lanes::together)
            reflect<Lanes, Lanes::together>(x, factor, m - k, part(x, 0, j));
        for (; j < n - k; ++j)
            reflect<Lanes, 1>(x, factor, m - k, part(x, 0, j));
    }
}

} // namespace
} // namespace xkl::core
