// The options of dss_ routines, taken apart. An option is a sum: bits of its own, the two levels, and at
// most one kind, each of these with a bit that says that it is there.
#pragma once

#include "xkl_solver_types.h"

namespace xkl::core::solvers {

struct dss_options {
    int64_t error = XKL_DSS_SUCCESS;
    uint32_t flags = 0;    // the bits that stand for themselves
    int64_t kind = 0;      // one of the values of a group, 0 for none
    int message_level = 6; // fatal errors alone
    int term_level = 5;

    bool has(uint32_t flag) const { return (flags & flag) != 0; }
};

// flags: those that the routine takes; the kinds: the first and the last value of its group, 0 for none.
dss_options take_apart(const int64_t *opt, uint32_t flags, int64_t first_kind, int64_t last_kind);

} // namespace xkl::core::solvers
