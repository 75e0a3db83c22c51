// Defaults of iparm and the judgement of its values.
#include "solvers/controls.h"

#include <algorithm>

namespace xkl::core::solvers {
namespace {

struct allowed {
    control entry;
    int64_t low, high; // values that mean something
    bool done;         // carried out by this core; otherwise only 0 is
};

constexpr allowed read_by_analysis[] = {
    {ordering, 0, 3, true},
    {iteration, 0, INT64_MAX, false},
    {user_order, 0, 2, true},
    {scaling, 0, 1, true},
    {matching, 0, 1, true},
    {pivots, 0, 3, true},
    {check_matrix, 0, 1, true},
    {single_precision, 0, 1, true},
    {partial, 0, 3, true},
    {zero_based, 0, 1, true},
    {schur, -2, 2, true},
    {low_rank, 0, 1, false},
    {inverse_diagonal, 0, 1, false},
    {keep_diagonal, 0, 1, true},
};

constexpr allowed read_by_solve[] = {
    {solution_in_b, 0, 1, true},
    {operation, 0, 2, true},
    {partial, 0, 3, true},
    {iteration, 0, INT64_MAX, false},
};

template <size_t N>
int64_t check(const int64_t *iparm, const allowed (&entries)[N])
{
    for (const allowed &a : entries)
        if (iparm[a.entry] < a.low || iparm[a.entry] > a.high)
            return XKL_PARDISO_INPUT_ERROR;
    for (const allowed &a : entries)
        if (!a.done && iparm[a.entry] != 0)
            return XKL_PARDISO_NOT_SUPPORTED;
    return XKL_PARDISO_SUCCESS;
}

} // namespace

void set_defaults(const matrix_kind &kind, int64_t *iparm)
{
    const bool unsymmetric = kind.form == symmetry::none;
    std::fill_n(iparm, control_entries, 0);
    iparm[use_values] = 1;
    iparm[ordering] = 2;
    iparm[pivot_exponent] = unsymmetric ? 13 : 8;
    iparm[scaling] = unsymmetric;
    iparm[matching] = unsymmetric;
    iparm[nonzeros] = -1;
    iparm[pivots] = 1;
}

int64_t check_for_analysis(const int64_t *iparm)
{
    if (const int64_t error = check(iparm, read_by_analysis))
        return error;
    const bool schur_and_more = iparm[schur] != 0 && (iparm[user_order] == 1 || iparm[partial] != 0);
    const bool order_and_places = iparm[user_order] != 0 && iparm[partial] != 0;
    if (schur_and_more || order_and_places)
        return XKL_PARDISO_INPUT_ERROR; // perm has one meaning at a time
    if (iparm[ordering] == 1 || iparm[storage] < 0 || iparm[out_of_core] >= 2 ||
        (iparm[schur] != 0 && iparm[keep_diagonal] != 0))
        return XKL_PARDISO_NOT_SUPPORTED;
    return iparm[out_of_core] < 0 ? XKL_PARDISO_INPUT_ERROR : XKL_PARDISO_SUCCESS;
}

int64_t check_for_solve(const int64_t *iparm)
{
    return check(iparm, read_by_solve);
}

} // namespace xkl::core::solvers
