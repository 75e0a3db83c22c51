// One matrix of a handle on its way from analysis to solution, whatever its elements' type.
#pragma once

#include "solvers/controls.h"
#include "solvers/engine.h"

#include <cstdio>

namespace xkl::core::solvers {

// The arguments of a call.
struct request {
    int64_t mtype = 0;
    matrix_kind kind{};
    bool single = false;
    int64_t n = 0; // rows, or rows of blocks
    const void *a = nullptr;
    const int64_t *ia = nullptr, *ja = nullptr;
    int64_t *perm = nullptr;
    int64_t nrhs = 0;
    int64_t *iparm = nullptr;
    int64_t msglvl = 0;
    void *b = nullptr, *x = nullptr;
};

// Where an exported Schur complement goes.
struct export_arrays {
    void *values = nullptr;
    int64_t *ia = nullptr, *ja = nullptr;
};

// What a matrix remembers of its analysis.
struct analysed_form {
    int64_t mtype = 0;
    matrix_kind kind{};
    bool single = false;
    int64_t rows = 0; // n as the caller gave it
    int64_t base = 1;
    int64_t iparm[control_entries] = {};
};

class any_system {
  public:
    virtual ~any_system() = default;
    virtual int64_t analyse(const request &call) = 0;
    virtual int64_t factor(const request &call, const export_arrays &exported) = 0;
    virtual int64_t solve(const request &call, solve_part part) = 0;
    virtual void forget_factors() = 0;
    virtual void release_factors() = 0; // their memory too
    virtual int64_t diagonals(void *of_factors, void *of_matrix) = 0;
    virtual int64_t store(std::FILE *file) = 0;
    virtual int64_t restore(std::FILE *file) = 0;

    analysed_form form;
    factor_facts facts;
    std::vector<int64_t> order; // of elimination
    bool analysed = false, factored = false;
};

std::unique_ptr<any_system> make_system(const matrix_kind &kind, bool single);

} // namespace xkl::core::solvers
