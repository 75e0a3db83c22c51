// The cluster solver where there is one process: pardiso's own road, whatever the communicator. A job of
// several processes is told that it is not supported.
#pragma once

#include "solvers/handle.h"

namespace xkl::core {

namespace solvers {

int64_t run_cluster_phases(const argument_list &arguments, elements form);

} // namespace solvers

template <solvers::elements Form, class A>
void solve_in_cluster(void **pt, const int64_t *maxfct, const int64_t *mnum, const int64_t *mtype,
                      const int64_t *phase, const int64_t *n, const A *a, const int64_t *ia,
                      const int64_t *ja, int64_t *perm, const int64_t *nrhs, int64_t *iparm,
                      const int64_t *msglvl, A *b, A *x, const int32_t *, int64_t *error)
{
    const solvers::argument_list arguments{pt, maxfct, mnum, mtype, phase,  n, a, ia,
                                           ja, perm,   nrhs, iparm, msglvl, b, x};
    const int64_t result =
        solvers::within_memory([&] { return solvers::run_cluster_phases(arguments, Form); });
    if (error)
        *error = result;
}

inline constexpr auto cluster_sparse_solver = solve_in_cluster<solvers::elements::by_control, void>;
inline constexpr auto cluster_sparse_solver_64 = solve_in_cluster<solvers::elements::by_control, void>;
inline constexpr auto cluster_sparse_solver_s = solve_in_cluster<solvers::elements::s, float>;
inline constexpr auto cluster_sparse_solver_s_2d = solve_in_cluster<solvers::elements::s, float>;
inline constexpr auto cluster_sparse_solver_s_64 = solve_in_cluster<solvers::elements::s, float>;
inline constexpr auto cluster_sparse_solver_s_64_2d = solve_in_cluster<solvers::elements::s, float>;
inline constexpr auto cluster_sparse_solver_d = solve_in_cluster<solvers::elements::d, double>;
inline constexpr auto cluster_sparse_solver_d_2d = solve_in_cluster<solvers::elements::d, double>;
inline constexpr auto cluster_sparse_solver_d_64 = solve_in_cluster<solvers::elements::d, double>;
inline constexpr auto cluster_sparse_solver_d_64_2d = solve_in_cluster<solvers::elements::d, double>;
inline constexpr auto cluster_sparse_solver_sc =
    solve_in_cluster<solvers::elements::c, std::complex<float>>;
inline constexpr auto cluster_sparse_solver_sc_2d =
    solve_in_cluster<solvers::elements::c, std::complex<float>>;
inline constexpr auto cluster_sparse_solver_sc_64 =
    solve_in_cluster<solvers::elements::c, std::complex<float>>;
inline constexpr auto cluster_sparse_solver_sc_64_2d =
    solve_in_cluster<solvers::elements::c, std::complex<float>>;
inline constexpr auto cluster_sparse_solver_dc =
    solve_in_cluster<solvers::elements::z, std::complex<double>>;
inline constexpr auto cluster_sparse_solver_dc_2d =
    solve_in_cluster<solvers::elements::z, std::complex<double>>;
inline constexpr auto cluster_sparse_solver_dc_64 =
    solve_in_cluster<solvers::elements::z, std::complex<double>>;
inline constexpr auto cluster_sparse_solver_dc_64_2d =
    solve_in_cluster<solvers::elements::z, std::complex<double>>;

// The factors are not handed out by this core: these answer XKL_PARDISO_NOT_SUPPORTED.
inline void refuse_export(int64_t *error)
{
    if (error)
        *error = XKL_PARDISO_NOT_SUPPORTED;
}

template <class A>
void set_export_array(void **, const int32_t *, A *, const int32_t *, int64_t *error, void *)
{
    refuse_export(error);
}

template <class A>
void set_export_rows(void **, const int32_t *, int64_t *, int64_t *, A *, const int32_t *, int64_t *error)
{
    refuse_export(error);
}

inline constexpr auto cluster_sparse_solver_set_ptr = set_export_array<void>;
inline constexpr auto cluster_sparse_solver_set_ptr_s = set_export_array<float>;
inline constexpr auto cluster_sparse_solver_set_ptr_d = set_export_array<double>;
inline constexpr auto cluster_sparse_solver_set_ptr_sc = set_export_array<std::complex<float>>;
inline constexpr auto cluster_sparse_solver_set_ptr_dc = set_export_array<std::complex<double>>;
inline constexpr auto cluster_sparse_solver_set_ptr_i = set_export_array<int64_t>;
inline constexpr auto cluster_sparse_solver_set_csr_ptrs = set_export_rows<void>;
inline constexpr auto cluster_sparse_solver_set_csr_ptrs_s = set_export_rows<float>;
inline constexpr auto cluster_sparse_solver_set_csr_ptrs_d = set_export_rows<double>;
inline constexpr auto cluster_sparse_solver_set_csr_ptrs_sc = set_export_rows<std::complex<float>>;
inline constexpr auto cluster_sparse_solver_set_csr_ptrs_dc = set_export_rows<std::complex<double>>;

inline void cluster_sparse_solver_get_csr_size(void *const *, const int32_t *, int64_t *, int64_t *,
                                               const int32_t *, int64_t *error)
{
    refuse_export(error);
}
inline constexpr auto cluster_sparse_solver_get_csr_size_f = cluster_sparse_solver_get_csr_size;

inline void cluster_sparse_solver_export(void **, const int32_t *, const int32_t *, int64_t *error, void *,
                                         void *)
{
    refuse_export(error);
}
inline constexpr auto cluster_sparse_solver_export_f = cluster_sparse_solver_export;

} // namespace xkl::core
