// How a transform of a register becomes one of a vector. A transform is an object F, built from the
// distribution's parameters, with `value(u)`: the numbers that one register of uniform ones in (0, 1)
// gives. The last register of a vector is filled up and goes through the same code, so a number doesn't
// depend on how many come with it. Results may overwrite arguments in place.
#pragma once

#include "base_library.h"
#include "extended.h"
#include "packs.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

template <class F, class R, class... P>
void one_each(int64_t n, const R *u, R *r, P... parameters)
{
    const F f{parameters...};
    int64_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>)
        store(r + i, f.value(load(u + i)));
    if (const int rest = static_cast<int>(n - i))
        store_part(r + i, f.value(load_part(u + i, rest)), rest);
}

/// Numbers that take two uniform ones each, which lie beside each other
template <class F, class R, class... P>
void from_pairs(int64_t n, const R *u, R *r, P... parameters)
{
    const F f{parameters...};
    const auto *const pairs = reinterpret_cast<const complex<R> *>(u);
    int64_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>) {
        const complex_vec<R> pair = load(pairs + i);
        store(r + i, f.value(pair.re, pair.im));
    }
    if (const int rest = static_cast<int>(n - i)) {
        const complex_vec<R> pair = load_part(pairs + i, rest);
        store_part(r + i, f.value(pair.re, pair.im), rest);
    }
}

/// Pairs of numbers from pairs of uniform ones; n counts pairs.
template <class F, class R, class... P>
void pairs_from_pairs(int64_t n, const R *u, R *r, P... parameters)
{
    const F f{parameters...};
    const auto *const pairs = reinterpret_cast<const complex<R> *>(u);
    auto *const results = reinterpret_cast<complex<R> *>(r);
    int64_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>) {
        const complex_vec<R> pair = load(pairs + i);
        store(results + i, f.pair(pair.re, pair.im));
    }
    if (const int rest = static_cast<int>(n - i)) {
        const complex_vec<R> pair = load_part(pairs + i, rest);
        store_part(results + i, f.pair(pair.re, pair.im), rest);
    }
}

/// The natural logarithm of a normal number, within 4 ULP
template <class V>
XKL_HOT V logarithm(V x)
{
    if constexpr (sizeof(element<V>) == 8 && register_bytes < 64)
        return glibc::log(x);
    else
        return sleef::log_u35(x);
}

} // namespace XKL_ISA
} // namespace xkl::kernels
