// The rule of a kernel: how a function of packs becomes a function of vectors.
//
// A function is an object F with
//   value<Accuracy>(pack...)             the results of one pack, no matter what its lanes hold
// and, if an element can have an error or needs to be put right, one of
//   harmless                             the largest magnitude of an argument that never does; perhaps with
//                                        quick_up_to and quick<Accuracy>(pack): a faster road for arguments up
//                                        to there, where less than high accuracy is wanted
//   suspicious_arguments(pack...)        the lanes that may, a bit each: cheap; may name too many, never too few
//   suspicious(pack..., results)         the same, as a mask, where the arguments alone don't tell
// and
//   settle(element..., result &...)      the exact answer for one of them, in the slow path: it may change
//                                        the result, and returns its status
// What the arguments tell is asked before the results are computed: these mostly come from a base library,
// and whatever is kept across its calls costs time. It is asked for a few packs at once, which is cheaper.
// The last pack of a vector is filled up and goes through the same code, so that an element's result
// doesn't depend on the length of its vector. Arguments are in registers before results are stored:
// results may overwrite arguments in place.
#pragma once

#include "call.h"
#include "packs.h"

namespace xkl::kernels {
inline namespace XKL_ISA {

/// Vectors of results: one, or two of equal kind
template <class T>
struct one_result {
    T *r;
    int64_t increment = 1;

    XKL_HOT void put(int64_t i, const pack<T> &y) const { store(r + i, y); }
    XKL_HOT void put_part(int64_t i, const pack<T> &y, int count) const { store_part(r + i, y, count); }
};
template <class T>
struct two_results {
    T *r1, *r2;
    int64_t increment1 = 1, increment2 = 1;

    XKL_HOT void put(int64_t i, const two<pack<T>> &y) const
    {
        store(r1 + i, y.first);
        store(r2 + i, y.second);
    }
    XKL_HOT void put_part(int64_t i, const two<pack<T>> &y, int count) const
    {
        store_part(r1 + i, y.first, count);
        store_part(r2 + i, y.second, count);
    }
};

template <class T>
struct argument {
    const T *a;
    int64_t increment = 1;
};

template <class R>
XKL_HOT void note(double (&place)[2], R value)
{
    place[0] = value;
}
template <class R>
XKL_HOT void note(double (&place)[2], complex<R> value)
{
    place[0] = value.re;
    place[1] = value.im;
}
template <class R>
requires std::is_floating_point_v<R> XKL_HOT void take_back(const double (&place)[2], R &value)
{
    value = static_cast<R>(place[0]);
}
template <class R>
XKL_HOT void take_back(const double (&place)[2], complex<R> &value)
{
    value = {static_cast<R>(place[0]), static_cast<R>(place[1])};
}

template <class A>
XKL_HOT void note_arguments(xkl_vml_error &error, A a)
{
    note(error.a, a);
}
template <class A, class B>
XKL_HOT void note_arguments(xkl_vml_error &error, A a, B b)
{
    note(error.a, a);
    note(error.b, b);
}

/// Settles one element; y is its pack of results.
template <class F, class T, class... In>
void settle_lane(call &c, const F &f, const one_result<T> &, int64_t index, int lane, pack<T> &y, In... x)
{
    T result = lane_of(y, lane);
    if (const status found = f.settle(x..., result)) {
        xkl_vml_error error{};
        note_arguments(error, x...);
        note(error.r1, result);
        c.report(found, index, error);
        take_back(error.r1, result);
    }
    set_lane(y, lane, result);
}
template <class F, class T, class... In>
void settle_lane(call &c, const F &f, const two_results<T> &, int64_t index, int lane, two<pack<T>> &y,
                 In... x)
{
    T first = lane_of(y.first, lane), second = lane_of(y.second, lane);
    if (const status found = f.settle(x..., first, second)) {
        xkl_vml_error error{};
        note_arguments(error, x...);
        note(error.r1, first);
        note(error.r2, second);
        c.report(found, index, error);
        take_back(error.r1, first);
        take_back(error.r2, second);
    }
    set_lane(y.first, lane, first);
    set_lane(y.second, lane, second);
}

template <class F, class Results, class Y, class... X>
[[gnu::cold, gnu::noinline]] Y settle(call &c, const F &f, const Results &r, int64_t first, unsigned bits,
                                      Y y, X... x)
{
    for (; bits; bits &= bits - 1) {
        const int lane = __builtin_ctz(bits);
        settle_lane(c, f, r, first + lane, lane, y, lane_of(x, lane)...);
    }
    return y;
}

template <class F, class... X>
concept judged_by_arguments = requires(const F f, X... x)
{
    f.suspicious_arguments(x...);
}
|| requires
{
    F::harmless;
};

/// The lanes whose arguments are suspicious
template <class F, class X, class... More>
XKL_HOT unsigned suspicious_lanes(const F &f, X x, More... more)
{
    if constexpr (requires { F::harmless; })
        return which_are<above>(absolute(x), F::harmless);
    else
        return f.suspicious_arguments(x, more...);
}

/// The results of one pack, of which `count` lanes hold elements, put right
template <accuracy A, class F, class Results, class... X>
XKL_HOT auto finished(call &c, const F &f, const Results &r, int64_t first, int count, X... x)
{
    auto y = f.template value<A>(x...);
    constexpr bool by_arguments = judged_by_arguments<F, X...>;
    if constexpr (by_arguments || requires { f.suspicious(x..., y); }) {
        unsigned bits;
        if constexpr (by_arguments)
            bits = suspicious_lanes(f, x...);
        else
            bits = lane_bits(f.suspicious(x..., y));
        if (bits) [[unlikely]] {
            bits &= (2u << (count - 1)) - 1;
            y = settle(c, f, r, first, bits, y, x...);
        }
    }
    return y;
}

/// Elements i to n - 1, pack by pack
template <accuracy A, class F, class Results, class T, class... Ts>
[[gnu::noinline]] void run_packs(call &c, const F &f, int64_t i, int64_t n, const Results &r, const T *a,
                                 const Ts *...others)
{
    constexpr int width = lanes<real<T>>;
    for (; i + width <= n; i += width)
        r.put(i, finished<A>(c, f, r, i, width, load(a + i), load(others + i)...));
    if (const int rest = static_cast<int>(n - i))
        r.put_part(i, finished<A>(c, f, r, i, rest, load_part(a + i, rest), load_part(others + i, rest)...),
                   rest);
}

constexpr int packs_at_once = 4;

/// The largest magnitude of an argument for which results need no look, and come from the quick road
template <accuracy A, class F>
constexpr auto quick_bound()
{
    if constexpr (requires { F::quick_up_to; })
        return A == accuracy::high ? F::harmless : F::quick_up_to;
    else
        return F::harmless;
}

/// Whether a lane of the next packs_at_once packs is suspicious
template <accuracy A, class F, class T, class... Ts>
XKL_HOT bool any_suspicious(const F &f, const T *a, const Ts *...others)
{
    constexpr int width = lanes<real<T>>;
    static_assert(packs_at_once == 4);
    if constexpr (requires { F::harmless; }) {
        constexpr auto bound = quick_bound<A, F>();
        return any_beyond(load(a), load(a + width), bound) |
               any_beyond(load(a + 2 * width), load(a + 3 * width), bound);
    } else {
        const auto lanes_of_pack = [&](int k) {
            return suspicious_lanes(f, load(a + k * width), load(others + k * width)...);
        };
        return (lanes_of_pack(0) | lanes_of_pack(1) | lanes_of_pack(2) | lanes_of_pack(3)) != 0;
    }
}

/// The results of a pack none of whose lanes is suspicious
template <accuracy A, class F, class... X>
XKL_HOT auto quick_value(const F &f, X... x)
{
    if constexpr (requires { f.template quick<A>(x...); })
        return f.template quick<A>(x...);
    else
        return f.template value<A>(x...);
}

template <accuracy A, class F, class Results, class T, class... Ts>
void run(call &c, const F &f, int64_t n, const Results &r, const T *a, const Ts *...others)
{
    int64_t i = 0;
    if constexpr (judged_by_arguments<F, pack<T>, pack<Ts>...>) {
        constexpr int width = lanes<real<T>>, step = packs_at_once * width;
        const Results results = r; // which a base library can't change
        for (; i + step <= n; i += step) {
            if (any_suspicious<A>(f, a + i, (others + i)...)) [[unlikely]]
                run_packs<A>(c, f, i, i + step, results, a, others...);
            else
#pragma GCC unroll 4
                for (int64_t k = i; k < i + step; k += width)
                    results.put(k, quick_value<A>(f, load(a + k), load(others + k)...));
        }
    }
    if (i < n)
        run_packs<A>(c, f, i, n, r, a, others...);
}

template <class F, class Results, class... Ts>
XKL_HOT void run_in_mode(call &c, const F &f, int64_t n, const Results &r, const Ts *...a)
{
    switch (c.wanted()) {
    case accuracy::high:
        return run<accuracy::high>(c, f, n, r, a...);
    case accuracy::low:
        return run<accuracy::low>(c, f, n, r, a...);
    case accuracy::enhanced_performance:
        return run<accuracy::enhanced_performance>(c, f, n, r, a...);
    }
}

template <class F, class Results, class... Ts>
XKL_HOT void contiguous(const F &f, const char *name, int32_t n, const Results &r, const argument<Ts> &...a)
{
    call c(name);
    run_in_mode(c, f, n, r, a.a...);
}

constexpr int64_t block = 256; // elements that a strided kernel gathers at a time: a multiple of all lanes

/// Part of a vector with gaps, next to each other
template <class T>
struct gathered {
    alignas(register_bytes) T elements[block];

    XKL_HOT const T *from(const argument<T> &a, int64_t first, int64_t count)
    {
        for (int64_t i = 0; i < count; ++i)
            elements[i] = a.a[(first + i) * a.increment];
        return elements;
    }
    XKL_HOT void to(T *r, int64_t increment, int64_t first, int64_t count) const
    {
        for (int64_t i = 0; i < count; ++i)
            r[(first + i) * increment] = elements[i];
    }
};

template <class F, class T, class... Ts>
XKL_HOT void strided_block(call &c, const F &f, const one_result<T> &r, int64_t first, int64_t count,
                           const Ts *...a)
{
    gathered<T> results;
    run_in_mode(c, f, count, one_result<T>{results.elements}, a...);
    results.to(r.r, r.increment, first, count);
}
template <class F, class T, class... Ts>
XKL_HOT void strided_block(call &c, const F &f, const two_results<T> &r, int64_t first, int64_t count,
                           const Ts *...a)
{
    gathered<T> results1, results2;
    run_in_mode(c, f, count, two_results<T>{results1.elements, results2.elements}, a...);
    results1.to(r.r1, r.increment1, first, count);
    results2.to(r.r2, r.increment2, first, count);
}

template <class F, class Results, class A>
void strided(const F &f, const char *name, int32_t n, const Results &r, const argument<A> &a)
{
    call c(name);
    gathered<A> as;
    for (int64_t first = 0; first < n; first += block) {
        const int64_t count = n - first < block ? n - first : block;
        c.start_block_at(first);
        strided_block(c, f, r, first, count, as.from(a, first, count));
    }
}
template <class F, class Results, class A, class B>
void strided(const F &f, const char *name, int32_t n, const Results &r, const argument<A> &a,
             const argument<B> &b)
{
    call c(name);
    gathered<A> as;
    gathered<B> bs;
    for (int64_t first = 0; first < n; first += block) {
        const int64_t count = n - first < block ? n - first : block;
        c.start_block_at(first);
        strided_block(c, f, r, first, count, as.from(a, first, count), bs.from(b, first, count));
    }
}

} // namespace XKL_ISA
} // namespace xkl::kernels
