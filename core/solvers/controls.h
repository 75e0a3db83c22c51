// The control array iparm: names of its entries, their defaults, and which values this core carries out.
#pragma once

#include "solvers/matrix.h"

namespace xkl::core::solvers {

// Places from 0; docs/sparse.md counts from 1.
enum control : int {
    use_values = 0, // 0: all entries are set to their defaults first
    ordering = 1,   // 0 minimum degree, 2 and 3 nested dissection
    iteration = 3,  // preconditioned iterations: none
    user_order = 4, // 1 perm is the order, 2 perm gets it
    solution_in_b = 5,
    steps_done = 6,
    steps_wanted = 7,
    pivot_exponent = 9,
    scaling = 10,
    operation = 11, // 0 A, 1 A^H, 2 A^T
    matching = 12,
    changed_pivots = 13,
    analysis_peak = 14, // KB
    analysis_kept = 15,
    factor_memory = 16,
    nonzeros = 17, // told where it is negative
    mflops = 18,   // told where it is negative
    pivots = 20,   // 0 on the diagonal only, 1 to 3 with exchanges
    positive_eigenvalues = 21,
    negative_eigenvalues = 22,
    check_matrix = 26,
    single_precision = 27,
    bad_row = 29, // of a zero pivot or of the first fault, from 1
    partial = 30,
    zero_based = 34,
    schur = 35,
    storage = 36, // 0 rows, b > 0 blocks of order b
    low_rank = 38,
    inverse_diagonal = 42,
    keep_diagonal = 55,
    out_of_core = 59,
    out_of_core_memory = 62,
};
constexpr int control_entries = 64;

void set_defaults(const matrix_kind &kind, int64_t *iparm);

// An XKL_PARDISO_ value: whether a step that reads these entries can be carried out as they ask.
int64_t check_for_analysis(const int64_t *iparm);
int64_t check_for_solve(const int64_t *iparm);

} // namespace xkl::core::solvers
