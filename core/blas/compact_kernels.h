// The arithmetic on compact matrices, for any width of registers. It is compiled once for each instruction
// set, under internal names: a linker that merged equal names would mix instruction sets. For the same
// reason it uses nothing of the standard library that could become a function of its own.
#pragma once

#include "compact.h"

namespace xkl::core {
namespace {

/// One real element of every matrix of a pack
template <class R, int bytes>
struct real_lanes {
    using scalar = R;
    typedef R lanes __attribute__((vector_size(bytes)));
    typedef R stored __attribute__((vector_size(bytes), aligned(alignof(R)), may_alias));
    lanes value;

    [[gnu::always_inline]] void clear() { value = lanes{}; }
    [[gnu::always_inline]] void load(const R *from, bool)
    {
        value = *reinterpret_cast<const stored *>(from);
    }
    [[gnu::always_inline]] void store(R *to) const { *reinterpret_cast<stored *>(to) = value; }
    [[gnu::always_inline]] void add(const real_lanes &a) { value += a.value; }
    [[gnu::always_inline]] void add_product(const real_lanes &a, const real_lanes &b)
    {
        value += a.value * b.value;
    }
    [[gnu::always_inline]] void subtract_product(const real_lanes &a, const real_lanes &b)
    {
        value -= a.value * b.value;
    }
    [[gnu::always_inline]] void scale(const R *factor) { value *= factor[0]; }
    /// Prepares a divisor for divide_by.
    [[gnu::always_inline]] void become_divisor() {}
    [[gnu::always_inline]] void divide_by(const real_lanes &divisor) { value /= divisor.value; }
};

/// One complex element of every matrix of a pack
template <class R, int bytes>
struct complex_lanes {
    using scalar = R;
    using part = real_lanes<R, bytes>;
    using lanes = typename part::lanes;
    lanes re, im;

    [[gnu::always_inline]] void clear() { re = im = lanes{}; }
    [[gnu::always_inline]] void load(const R *from, bool conjugated)
    {
        re = *reinterpret_cast<const typename part::stored *>(from);
        im = *reinterpret_cast<const typename part::stored *>(from + bytes / sizeof(R));
        if (conjugated)
            im = -im;
    }
    [[gnu::always_inline]] void store(R *to) const
    {
        *reinterpret_cast<typename part::stored *>(to) = re;
        *reinterpret_cast<typename part::stored *>(to + bytes / sizeof(R)) = im;
    }
    [[gnu::always_inline]] void add(const complex_lanes &a)
    {
        re += a.re;
        im += a.im;
    }
    [[gnu::always_inline]] void add_product(const complex_lanes &a, const complex_lanes &b)
    {
        re += a.re * b.re;
        re -= a.im * b.im;
        im += a.re * b.im;
        im += a.im * b.re;
    }
    [[gnu::always_inline]] void subtract_product(const complex_lanes &a, const complex_lanes &b)
    {
        re -= a.re * b.re;
        re += a.im * b.im;
        im -= a.re * b.im;
        im -= a.im * b.re;
    }
    [[gnu::always_inline]] void scale(const R *factor)
    {
        const lanes old = re;
        re = old * factor[0] - im * factor[1];
        im = old * factor[1] + im * factor[0];
    }
    /// The reciprocal, through parts of size 1 so that no square leaves the range
    [[gnu::always_inline]] void become_divisor()
    {
        const lanes x = re < 0 ? -re : re, y = im < 0 ? -im : im;
        const lanes size = x > y ? x : y;
        const lanes u = re / size, v = im / size;
        const lanes norm = (u * u + v * v) * size;
        re = u / norm;
        im = -v / norm;
    }
    [[gnu::always_inline]] void divide_by(const complex_lanes &reciprocal)
    {
        const lanes old = re;
        re = old * reciprocal.re - im * reciprocal.im;
        im = old * reciprocal.im + im * reciprocal.re;
    }
};

template <class R>
bool is_zero(const R *factor)
{
    return factor[0] == 0 && factor[1] == 0;
}

/// rows by columns elements of a product, which stay in registers while the inner index runs
template <class Lanes, int rows, int columns>
[[gnu::always_inline]] inline void multiply_tile(const compact_product<typename Lanes::scalar> &task,
                                                 int64_t pack, int64_t i, int64_t j)
{
    using R = typename Lanes::scalar;
    const R *a = task.a.first + pack * task.a.pack + i * task.a.row;
    const R *b = task.b.first + pack * task.b.pack + j * task.b.column;
    Lanes sum[rows][columns];
#pragma GCC unroll 4
    for (int u = 0; u < rows; ++u)
#pragma GCC unroll 4
        for (int v = 0; v < columns; ++v)
            sum[u][v].clear();
    for (int64_t p = 0; p < task.k; ++p, a += task.a.column, b += task.b.row) {
        Lanes right[columns];
#pragma GCC unroll 4
        for (int v = 0; v < columns; ++v)
            right[v].load(b + v * task.b.column, task.b.conjugated);
#pragma GCC unroll 4
        for (int u = 0; u < rows; ++u) {
            Lanes left;
            left.load(a + u * task.a.row, task.a.conjugated);
#pragma GCC unroll 4
            for (int v = 0; v < columns; ++v)
                sum[u][v].add_product(left, right[v]);
        }
    }
    R *c = task.c.first + pack * task.c.pack + i * task.c.row + j * task.c.column;
    const bool keep = !is_zero(task.beta);
#pragma GCC unroll 4
    for (int u = 0; u < rows; ++u)
#pragma GCC unroll 4
        for (int v = 0; v < columns; ++v) {
            R *place = c + u * task.c.row + v * task.c.column;
            sum[u][v].scale(task.alpha);
            if (keep) {
                Lanes old;
                old.load(place, false);
                old.scale(task.beta);
                sum[u][v].add(old);
            }
            sum[u][v].store(place);
        }
}

template <class Lanes, int rows>
void multiply_rows(const compact_product<typename Lanes::scalar> &task, int64_t pack, int64_t i)
{
    int64_t j = 0;
    for (; j + 2 <= task.n; j += 2)
        multiply_tile<Lanes, rows, 2>(task, pack, i, j);
    if (j < task.n)
        multiply_tile<Lanes, rows, 1>(task, pack, i, j);
}

template <class Lanes, int rows>
void multiply(const compact_product<typename Lanes::scalar> &task, int64_t pack)
{
    int64_t i = 0;
    for (; i + rows <= task.m; i += rows)
        multiply_rows<Lanes, rows>(task, pack, i);
    for (; i < task.m; ++i)
        multiply_rows<Lanes, 1>(task, pack, i);
}

/// Row i of the solution, columns j..: the rows above it are done.
template <class Lanes, int columns>
[[gnu::always_inline]] inline void solve_tile(const compact_solution<typename Lanes::scalar> &task,
                                              const typename Lanes::scalar *a, typename Lanes::scalar *b,
                                              int64_t i, int64_t j, const Lanes &divisor)
{
    Lanes x[columns];
    b += j * task.b.column;
    auto *place = b + i * task.b.row;
#pragma GCC unroll 4
    for (int v = 0; v < columns; ++v) {
        x[v].load(place + v * task.b.column, false);
        x[v].scale(task.alpha);
    }
    for (int64_t p = 0; p < i; ++p) {
        Lanes left;
        left.load(a + p * task.a.column, task.a.conjugated);
#pragma GCC unroll 4
        for (int v = 0; v < columns; ++v) {
            Lanes done;
            done.load(b + p * task.b.row + v * task.b.column, false);
            x[v].subtract_product(left, done);
        }
    }
#pragma GCC unroll 4
    for (int v = 0; v < columns; ++v) {
        if (!task.unit)
            x[v].divide_by(divisor);
        x[v].store(place + v * task.b.column);
    }
}

template <class Lanes>
void solve(const compact_solution<typename Lanes::scalar> &task, int64_t pack)
{
    auto *b = task.b.first + pack * task.b.pack;
    for (int64_t i = 0; i < task.m; ++i) {
        const auto *a = task.a.first + pack * task.a.pack + i * task.a.row;
        Lanes divisor;
        divisor.clear();
        if (!task.unit) {
            divisor.load(a + i * task.a.column, task.a.conjugated);
            divisor.become_divisor();
        }
        int64_t j = 0;
        for (; j + 4 <= task.n; j += 4)
            solve_tile<Lanes, 4>(task, a, b, i, j, divisor);
        for (; j < task.n; ++j)
            solve_tile<Lanes, 1>(task, a, b, i, j, divisor);
    }
}

// Four by two real tiles and two by two complex ones fill the sixteen registers.
template <class R, int bytes>
constexpr compact_routines<R> real_routines = {multiply<real_lanes<R, bytes>, 4>,
                                               solve<real_lanes<R, bytes>>};
template <class R, int bytes>
constexpr compact_routines<R> complex_routines = {multiply<complex_lanes<R, bytes>, 2>,
                                                  solve<complex_lanes<R, bytes>>};
template <int bytes>
constexpr compact_kernels kernels_of_width = {real_routines<float, bytes>, complex_routines<float, bytes>,
                                              real_routines<double, bytes>,
                                              complex_routines<double, bytes>};

} // namespace
} // namespace xkl::core
