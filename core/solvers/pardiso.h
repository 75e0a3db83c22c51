// The entries with pardiso's list of arguments. One template serves them all: the name tells the elements'
// type, or leaves it to mtype and iparm(28).
#pragma once

#include "solvers/handle.h"

namespace xkl::core {

template <solvers::elements Form, class A>
void solve_direct(void **pt, const int64_t *maxfct, const int64_t *mnum, const int64_t *mtype,
                  const int64_t *phase, const int64_t *n, const A *a, const int64_t *ia, const int64_t *ja,
                  int64_t *perm, const int64_t *nrhs, int64_t *iparm, const int64_t *msglvl, A *b, A *x,
                  int64_t *error)
{
    const solvers::argument_list arguments{pt, maxfct, mnum, mtype, phase,  n, a, ia,
                                           ja, perm,   nrhs, iparm, msglvl, b, x};
    const int64_t result = solvers::within_memory([&] { return solvers::run_phases(arguments, Form); });
    if (error)
        *error = result;
}

inline constexpr auto pardiso = solve_direct<solvers::elements::by_control, void>;
inline constexpr auto pardiso_64 = solve_direct<solvers::elements::by_control, void>;
inline constexpr auto pardiso_s = solve_direct<solvers::elements::s, float>;
inline constexpr auto pardiso_s_2d = solve_direct<solvers::elements::s, float>;
inline constexpr auto pardiso_s_64 = solve_direct<solvers::elements::s, float>;
inline constexpr auto pardiso_s_64_2d = solve_direct<solvers::elements::s, float>;
inline constexpr auto pardiso_d = solve_direct<solvers::elements::d, double>;
inline constexpr auto pardiso_d_2d = solve_direct<solvers::elements::d, double>;
inline constexpr auto pardiso_d_64 = solve_direct<solvers::elements::d, double>;
inline constexpr auto pardiso_d_64_2d = solve_direct<solvers::elements::d, double>;
inline constexpr auto pardiso_sc = solve_direct<solvers::elements::c, std::complex<float>>;
inline constexpr auto pardiso_sc_2d = solve_direct<solvers::elements::c, std::complex<float>>;
inline constexpr auto pardiso_sc_64 = solve_direct<solvers::elements::c, std::complex<float>>;
inline constexpr auto pardiso_sc_64_2d = solve_direct<solvers::elements::c, std::complex<float>>;
inline constexpr auto pardiso_dc = solve_direct<solvers::elements::z, std::complex<double>>;
inline constexpr auto pardiso_dc_2d = solve_direct<solvers::elements::z, std::complex<double>>;
inline constexpr auto pardiso_dc_64 = solve_direct<solvers::elements::z, std::complex<double>>;
inline constexpr auto pardiso_dc_64_2d = solve_direct<solvers::elements::z, std::complex<double>>;

void pardisoinit(void **pt, const int64_t *mtype, int64_t *iparm);

} // namespace xkl::core
