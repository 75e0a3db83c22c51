// What a handle pt stands for, and the one road that all routines with pardiso's list take.
#pragma once

#include "solvers/registry.h"
#include "solvers/system.h"
#include "solvers/turn.h"

#include <new>
#include <stdexcept>

namespace xkl::core::solvers {

struct handle {
    turns calls;
    std::vector<std::unique_ptr<any_system>> systems; // by matrix number
    export_arrays exported;
};

// Never destroyed: a thread may still solve while the process ends.
registry<handle> &handles();

// What the name of the routine says about elements.
enum class elements { by_control, s, d, c, z };

struct argument_list {
    void **pt;
    const int64_t *maxfct, *mnum, *mtype, *phase, *n;
    const void *a;
    const int64_t *ia, *ja;
    int64_t *perm;
    const int64_t *nrhs;
    int64_t *iparm;
    const int64_t *msglvl;
    void *b, *x;
};

int64_t run_phases(const argument_list &arguments, elements form);

// Runs work and gives its error code, or the one of memory that ran out. What a program's callback throws
// passes.
template <class Work>
int64_t within_memory(const Work &work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        return XKL_PARDISO_OUT_OF_MEMORY;
    } catch (const std::length_error &) {
        return XKL_PARDISO_OUT_OF_MEMORY;
    }
}

} // namespace xkl::core::solvers
