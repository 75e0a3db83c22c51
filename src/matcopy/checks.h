// The argument tests of the matrix copies, one structure a shape of argument list, in the order in which they
// are made. They take values, and all comparisons are unsigned.
//
// Unlike the tests of BLAS these report as they go, because some bad arguments are reported and then
// ignored: `report(place)` reports and is 1, what a check returns for a call that goes no further.
#pragma once

#include "matcopy/checks_batch.h"
#include "matcopy/checks_single.h"
