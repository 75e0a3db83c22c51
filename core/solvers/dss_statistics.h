// What dss_statistics tells of a solution by steps.
#pragma once

#include "solvers/registry.h"
#include "solvers/system.h"
#include "solvers/turn.h"

namespace xkl::core::solvers {

struct dss_solution {
    enum progress { created, structured, ordered, factored };

    turns calls;
    progress state = created;
    bool single = false, refine = true;
    int64_t base = 1;
    bool is_complex = false, triangle = false, symmetric_places = false;
    int64_t n = 0;
    std::vector<int64_t> rows, columns; // the caller's may be gone by the factorization
    std::vector<int64_t> order;         // counts from base
    int64_t mtype = 0;
    int64_t iparm[control_entries] = {};
    std::unique_ptr<any_system> system;
    int64_t peak_memory = 0, factor_memory = 0; // KB
    double reorder_seconds = 0, factor_seconds = 0, solve_seconds = 0;
};

// Writes what each of the comma-separated words asks for, one behind the other; nothing unless all can be
// told.
int64_t tell_statistics(const dss_solution &s, const char *words, double *values);

} // namespace xkl::core::solvers
