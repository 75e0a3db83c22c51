// The control array of FEAST by name, its defaults, and what is refused. What a computation must remember
// from one step to the next lies in the array's upper places and in the caller's workspaces.
#pragma once

#include "blas/elements.h"
#include "feast_contour.h"

#include <algorithm>
#include <iterator>

namespace xkl::core::feast {

/// Places in fpm, counted from 0; docs/sparse.md explains them, counted from 1.
enum fpm_place : int {
    print = 0,
    contour_points = 1,
    double_digits = 2,
    most_loops = 3,
    start_given = 4,
    residual_decides = 5,
    single_digits = 6,
    subspace_only = 13,
    trapezoidal_rule = 15,
    flatness_percent = 17,
    // kept between steps
    stage = 20,
    point = 21,
    columns = 22,      // of the subspace
    first_column = 23, // that the caller is to multiply, from 1
    column_count = 24,
    step_of_filter = 25,
    check_a = 26,
    check_b = 27,
    dropped = 28 // kept, too: not 0 once the subspace was larger than what the filter left
};
inline constexpr int fpm_length = 128;

/// ijob: what the caller does before the next step
enum job : int64_t {
    start = -1,
    done = 0,
    factor = 10,         // ze*B - A
    solve = 11,          // with it, workc in place
    factor_adjoint = 20, // its adjoint, where the factors don't serve both
    solve_adjoint = 21,
    multiply_a = 30, // columns first_column... of q, to the same columns of work
    multiply_b = 40
};

/// info, beside 100 + i for a bad fpm(i) and -(100 + i) for a bad argument i of a driver
enum result : int64_t {
    success = 0,
    none_found = 1,
    not_converged = 2,
    subspace_too_small = 3,
    subspace_returned = 4,
    bad_fpm = 100,
    bad_interval = 200,
    bad_subspace = 201,
    bad_size = 202,
    no_memory = -1,
    singular_system = -2, // or its solution failed
    reduced_failed = -3
};

inline void set_defaults(int64_t *fpm)
{
    std::fill(fpm, fpm + fpm_length, int64_t{0});
    fpm[contour_points] = 8;
    fpm[double_digits] = 12;
    fpm[most_loops] = 20;
    fpm[single_digits] = 5;
    fpm[flatness_percent] = 100;
}

/// The first place, from 1, whose value is not supported; 0 if there is none.
inline int64_t bad_place(const int64_t *fpm)
{
    struct bounds {
        fpm_place place;
        int64_t least, most;
    };
    constexpr bounds allowed[] = {
        {print, 0, 1},           {contour_points, 1, 64}, {double_digits, 0, 16},
        {most_loops, 0, 100000}, {start_given, 0, 1},     {residual_decides, 0, 1},
        {single_digits, 0, 7},   {subspace_only, 0, 1},   {trapezoidal_rule, 0, 1},
        {check_a, 0, 0},         {check_b, 0, 0}};
    for (const bounds &each : allowed)
        if (fpm[each.place] < each.least || fpm[each.place] > each.most)
            return each.place + 1;
    const int64_t percent = fpm[flatness_percent];
    return percent < 1 || percent > 200 ? flatness_percent + 1 : 0;
}

template <class R>
int64_t refusal(int64_t n, R emin, R emax, int64_t m0, const int64_t *fpm)
{
    if (n <= 0)
        return bad_size;
    if (!(emin < emax))
        return bad_interval;
    if (m0 <= 0 || m0 > n)
        return bad_subspace;
    const int64_t place = bad_place(fpm);
    return place != 0 ? bad_fpm + place : static_cast<int64_t>(success);
}

} // namespace xkl::core::feast

namespace xkl::core {

inline void feastinit(int64_t *fpm)
{
    feast::set_defaults(fpm);
}

} // namespace xkl::core
