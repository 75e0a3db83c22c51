// The cluster solver: one process is served, several are told so.
#include "solvers/cluster.h"

#include "service/service_entries.h"

#include <cstdlib>

namespace xkl::core::solvers {
namespace {

// iparm of the cluster solver: how the matrix is spread, and which rows this process has.
constexpr int distribution = 39, first_row = 40, last_row = 41;

// What the starters of parallel jobs tell their processes.
bool several_processes()
{
    for (const char *name : {"OMPI_COMM_WORLD_SIZE", "PMI_SIZE", "MPI_LOCALNRANKS"}) {
        char text[16];
        if (xkl_serv_getenv(name, text, sizeof text) > 0 && std::atoi(text) > 1)
            return true;
    }
    return false;
}

} // namespace

int64_t run_cluster_phases(const argument_list &arguments, elements form)
{
    if (several_processes()) {
        if (arguments.msglvl && *arguments.msglvl == 1)
            xkl_serv_printf_s(
                "XKL: cluster_sparse_solver works on one process only; start the program alone\n");
        return XKL_PARDISO_NOT_SUPPORTED;
    }
    const int64_t *iparm = arguments.iparm;
    if (iparm && iparm[use_values] != 0 && iparm[distribution] != 0 && arguments.n) {
        const int64_t base = iparm[zero_based] == 1 ? 0 : 1;
        if (iparm[distribution] < 0 || iparm[distribution] > 3)
            return XKL_PARDISO_INPUT_ERROR;
        if (iparm[first_row] != base || iparm[last_row] != *arguments.n - 1 + base)
            return XKL_PARDISO_NOT_SUPPORTED;
    }
    return run_phases(arguments, form);
}

} // namespace xkl::core::solvers
