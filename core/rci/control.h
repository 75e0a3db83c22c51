// What the iterative solvers share: their control arrays, by name, and the lines that tell of mistakes in
// them. The arrays are the caller's, and everything that a solution must remember from one step to the next
// lies in them: the solvers keep nothing.
#pragma once

#include "blas/elements.h"
#include "service/service_entries.h"
#include "xkl_solver_types.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace xkl::core::iss {

/// Places in ipar, counted from 0; docs/sparse.md explains them, counted from 1. What is not named is left
/// alone.
enum ipar_place : int {
    order = 0,
    output = 1,
    stage = 2,
    iterations = 3,
    most_iterations = 4,
    tell_errors = 5,
    tell_warnings = 6,
    test_iterations = 7,
    test_residual = 8,
    ask_caller = 9,
    preconditioned = 10,
    test_norm = 11,   // FGMRES: the norm of the next vector is compared here, not by the caller
    solution_to = 12, // FGMRES: where _GET writes: 0 x, above b, below nowhere
    inner_iterations = 13,
    restart = 14,
    source = 21,      // place in tmp, from 1, of the vector to multiply or to precondition
    destination = 22, // and of the result
    current_side = 23,
    solution_taken = 24 // FGMRES: _GET has moved x on
};

/// Places in dpar, counted from 0
enum dpar_place : int {
    relative_tolerance = 0,
    absolute_tolerance = 1,
    initial_residual = 2, // conjugate gradients: squares of norms; FGMRES: norms
    tolerance = 3,
    residual = 4,
    last_residual = 5,
    alpha = 6,     // conjugate gradients
    next_norm = 6, // FGMRES
    beta = 7,      // conjugate gradients
    zero_norm = 7, // FGMRES
    rho = 8        // conjugate gradients: the residual times itself, preconditioned
};

inline constexpr int control_length = 128;
inline constexpr int64_t screen = 6;

/// What all solvers start from
template <class T>
void set_defaults(int64_t n, int64_t *ipar, T *dpar)
{
    for (int i = 0; i < control_length; ++i) {
        ipar[i] = 0;
        dpar[i] = 0;
    }
    ipar[order] = n;
    ipar[output] = screen;
    ipar[stage] = 1;
    ipar[most_iterations] = n < 150 ? n : 150;
    ipar[tell_errors] = ipar[tell_warnings] = 1;
    ipar[test_iterations] = ipar[ask_caller] = 1;
    dpar[relative_tolerance] = T(1e-6);
}

/// What a look at the control arrays found
class findings {
  public:
    findings(const char *routine, const int64_t *ipar) : routine_(routine), ipar_(ipar) {}

    void error(const char *text)
    {
        failed_ = true;
        tell(tell_errors, "error", text);
    }
    void warning(const char *text)
    {
        warned_ = true;
        tell(tell_warnings, "warning", text);
    }
    void corrected(const char *text)
    {
        corrected_ = true;
        tell(tell_warnings, "corrected", text);
    }
    int64_t request() const
    {
        return failed_                 ? XKL_ISS_CHECK_FAILED
               : warned_ && corrected_ ? XKL_ISS_CHECK_WARNED_AND_CORRECTED
               : warned_               ? XKL_ISS_CHECK_WARNING
               : corrected_            ? XKL_ISS_CHECK_CORRECTED
                                       : XKL_ISS_DONE;
    }

  private:
    void tell(ipar_place when, const char *kind, const char *text) const
    {
        if (ipar_[when] != 0)
            xkl_serv_printf_s("%s: %s: %s\n", routine_, kind, text);
    }

    const char *routine_;
    const int64_t *ipar_;
    bool failed_ = false, warned_ = false, corrected_ = false;
};

/// Mistakes that all solvers look for
template <class T>
void look_for_mistakes(findings &found, int64_t n, int64_t *ipar, const T *dpar)
{
    if (n <= 0)
        found.error("n must be positive");
    if (ipar[order] != n) {
        ipar[order] = n;
        found.corrected("ipar(1) was not n");
    }
    if (ipar[test_iterations] != 0 && ipar[most_iterations] < 0)
        found.error("ipar(5), the largest number of iterations, must not be negative");
    if (!(dpar[relative_tolerance] >= 0) || !(dpar[absolute_tolerance] >= 0))
        found.error("dpar(1) and dpar(2), the tolerances, must not be negative");
    if (ipar[test_iterations] == 0 && ipar[test_residual] == 0 && ipar[ask_caller] == 0)
        found.warning("ipar(8), ipar(9) and ipar(10) are 0: nothing ends the iteration");
}

template <class T>
T inner_product(int64_t n, const T *x, const T *y)
{
    T sum = 0;
    for (int64_t i = 0; i < n; ++i)
        sum += x[i] * y[i];
    return sum;
}

} // namespace xkl::core::iss
