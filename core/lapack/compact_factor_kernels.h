// Factorizations of compact matrices, for any width of registers; compiled as blas/compact_kernels.h is, and
// with its rules. They are recursions that end in panels of a few columns: what is between them is products
// and solves, which keep their results in registers.
#pragma once

#include "compact_qr_kernels.h"

namespace xkl::core {
namespace {

constexpr int64_t narrow = 4; // columns of a panel

/// Lower triangle and upper triangle of a panel, column after column
template <class Lanes>
void lu_panel(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t columns)
{
    for (int64_t j = 0; j < columns; ++j) {
        Lanes reciprocal;
        reciprocal.clear();
        for (int64_t i = 0; i < m; ++i) {
            Lanes x = element_of<Lanes>(a, i, j);
            for (int64_t k = 0; k < i && k < j; ++k)
                x.subtract_product(element_of<Lanes>(a, i, k), element_of<Lanes>(a, k, j));
            if (i > j)
                x.divide_by(reciprocal);
            x.store(place(a, i, j));
            if (i == j) {
                reciprocal = x;
                reciprocal.become_divisor();
            }
        }
    }
}

/// The first `steps` steps, what is behind them updated
template <class Lanes>
void lu_steps(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t n, int64_t steps)
{
    if (steps < n) {
        const auto right = part(a, 0, steps);
        lu_steps<Lanes>(a, m, steps, steps);
        solve_left<Lanes>(triangle::unit_lower, 1, steps, n - steps, a, right);
        add_product<Lanes>(-1, m - steps, n - steps, steps, part(a, steps, 0), right,
                           part(a, steps, steps));
    } else if (steps <= narrow) {
        lu_panel<Lanes>(a, m, steps);
    } else {
        const int64_t half = steps / 2;
        lu_steps<Lanes>(a, m, n, half);
        lu_steps<Lanes>(part(a, half, half), m - half, n - half, steps - half);
    }
}

template <class Lanes>
void lu(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t n)
{
    lu_steps<Lanes>(a, m, n, m < n ? m : n);
}

/// The first columns of a lower factor, m rows of them; of the diagonal only the real part counts.
template <class Lanes>
void cholesky_panel(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t columns)
{
    using vector = typename Lanes::lanes;
    for (int64_t j = 0; j < columns; ++j) {
        vector reciprocal = {};
        for (int64_t i = j; i < m; ++i) {
            Lanes x = element_of<Lanes>(a, i, j);
            for (int64_t k = 0; k < j; ++k)
                x.subtract_product(element_of<Lanes>(a, i, k), conjugate_of<Lanes>(a, j, k));
            if (i > j) {
                x.stretch(reciprocal);
            } else {
                const vector root = square_root<typename Lanes::scalar>(x.real());
                reciprocal = 1 / root;
                x.assign(root, vector{});
            }
            x.store(place(a, i, j));
        }
    }
}

/// C := C - A*B**H, of which the lower triangle of the square C is wanted
template <class Lanes>
void subtract_lower(const compact_view<typename Lanes::scalar> &c, int64_t n, int64_t k,
                    const compact_view<typename Lanes::scalar> &a)
{
    const int64_t half = n / 2;
    if (n > 1) {
        subtract_lower<Lanes>(c, half, k, a);
        subtract_lower<Lanes>(part(c, half, half), n - half, k, part(a, half, 0));
        add_product<Lanes>(-1, n - half, half, k, part(a, half, 0), conjugated(transposed(a)),
                           part(c, half, 0));
    } else {
        add_product<Lanes>(-1, 1, 1, k, a, conjugated(transposed(a)), c);
    }
}

/// The first `columns` columns of the factor, m rows of them
template <class Lanes>
void cholesky_columns(const compact_view<typename Lanes::scalar> &a, int64_t m, int64_t columns)
{
    if (columns <= narrow)
        return cholesky_panel<Lanes>(a, m, columns);
    const int64_t half = columns / 2, rest = columns - half;
    const auto behind = part(a, half, half);
    cholesky_columns<Lanes>(a, m, half);
    subtract_lower<Lanes>(behind, rest, half, part(a, half, 0));
    add_product<Lanes>(-1, m - columns, rest, half, part(a, columns, 0),
                       conjugated(transposed(part(a, half, 0))), part(behind, rest, 0));
    cholesky_columns<Lanes>(behind, m - half, rest);
}

template <class Lanes>
void cholesky(const compact_view<typename Lanes::scalar> &a, int64_t n)
{
    cholesky_columns<Lanes>(a, n, n);
}

/// inv(A) = inv(U)*inv(L) in place. With halves of the rows and columns, the off-diagonal blocks of both
/// inverses come first; their product completes the first block, and what then becomes of them the last one.
template <class Lanes>
void inverse(const compact_view<typename Lanes::scalar> &a, int64_t n)
{
    if (n == 1) {
        Lanes x = element_of<Lanes>(a, 0, 0);
        x.become_divisor();
        return x.store(place(a, 0, 0));
    }
    const int64_t half = n / 2, rest = n - half;
    const auto upper = part(a, 0, half), lower = part(a, half, 0), last = part(a, half, half);
    solve_left<Lanes>(triangle::upper, -1, half, rest, a, upper);
    solve_right<Lanes>(triangle::upper, 1, half, rest, last, upper);
    solve_left<Lanes>(triangle::unit_lower, -1, rest, half, last, lower);
    solve_right<Lanes>(triangle::unit_lower, 1, rest, half, a, lower);
    inverse<Lanes>(a, half);
    add_product<Lanes>(1, half, half, rest, upper, lower, a);
    solve_right<Lanes>(triangle::unit_lower, 1, half, rest, last, upper);
    solve_left<Lanes>(triangle::upper, 1, rest, half, last, lower);
    inverse<Lanes>(last, rest);
}

template <class Lanes>
constexpr compact_factorizations<typename Lanes::scalar> factorizations = {lu<Lanes>, cholesky<Lanes>,
                                                                           qr<Lanes>, inverse<Lanes>};
template <int bytes>
constexpr compact_factor_kernels factor_kernels_of_width = {
    factorizations<factor_lanes<float, bytes>>, factorizations<complex_factor_lanes<float, bytes>>,
    factorizations<factor_lanes<double, bytes>>, factorizations<complex_factor_lanes<double, bytes>>};

} // namespace
} // namespace xkl::core
