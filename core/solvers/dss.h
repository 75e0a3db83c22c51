// Direct solution by steps: the dss_ routines, on the systems that pardiso works with.
#pragma once

#include "xkl_solver_types.h"

#include <complex>

namespace xkl::core {

int64_t dss_create(void **handle, const int64_t *opt);
int64_t dss_delete(void **handle, const int64_t *opt);
int64_t dss_define_structure(void **handle, const int64_t *opt, const int64_t *rowindex,
                             const int64_t *nrows, const int64_t *ncols, const int64_t *columns,
                             const int64_t *nnonzeros);
int64_t dss_reorder(void **handle, const int64_t *opt, int64_t *perm);
int64_t dss_statistics(void **handle, const int64_t *opt, const char *words, double *values);

namespace solvers {

// What the name of a routine says about elements: real or complex, and whether it fixes their size.
struct dss_elements {
    bool is_complex;
    int bytes; // of the real type; 0: as dss_create was told
};

int64_t dss_factor(void **handle, const int64_t *opt, const void *values, dss_elements form);
int64_t dss_solve(void **handle, const int64_t *opt, const void *rhs, const int64_t *nrhs, void *solution,
                  dss_elements form);

template <bool Complex, int Bytes, class A>
int64_t dss_factor_form(void **handle, const int64_t *opt, const A *values)
{
    return dss_factor(handle, opt, values, {Complex, Bytes});
}

template <bool Complex, int Bytes, class A>
int64_t dss_solve_form(void **handle, const int64_t *opt, const A *rhs, const int64_t *nrhs, A *solution)
{
    return dss_solve(handle, opt, rhs, nrhs, solution, {Complex, Bytes});
}

} // namespace solvers

inline constexpr auto dss_factor_real = solvers::dss_factor_form<false, 0, void>;
inline constexpr auto dss_factor_real_s = solvers::dss_factor_form<false, 4, float>;
inline constexpr auto dss_factor_real_d = solvers::dss_factor_form<false, 8, double>;
inline constexpr auto dss_factor_complex = solvers::dss_factor_form<true, 0, void>;
inline constexpr auto dss_factor_complex_s = solvers::dss_factor_form<true, 4, std::complex<float>>;
inline constexpr auto dss_factor_complex_d = solvers::dss_factor_form<true, 8, std::complex<double>>;
inline constexpr auto dss_solve_real = solvers::dss_solve_form<false, 0, void>;
inline constexpr auto dss_solve_real_s = solvers::dss_solve_form<false, 4, float>;
inline constexpr auto dss_solve_real_d = solvers::dss_solve_form<false, 8, double>;
inline constexpr auto dss_solve_complex = solvers::dss_solve_form<true, 0, void>;
inline constexpr auto dss_solve_complex_s = solvers::dss_solve_form<true, 4, std::complex<float>>;
inline constexpr auto dss_solve_complex_d = solvers::dss_solve_form<true, 8, std::complex<double>>;

} // namespace xkl::core
