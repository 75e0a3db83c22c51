// The user's callbacks as the solvers of the core call them.
#pragma once

#include <cstdint>

namespace xkl::core {

// Tells the registered progress routine how far a solver is; true asks the solver to stop.
bool report_progress(int64_t thread, int64_t step, const char *stage);

// Hands a small pivot to the registered pivot routine; true when the routine changed it.
bool perturb_pivot(double diagonal, double &pivot, double threshold);

} // namespace xkl::core
