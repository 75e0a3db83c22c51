// Problems for any LAPACKE function, made from the names of its arguments: matrices that its routine can
// work with, the same in both layouts.
#pragma once

#include "lapacke_call.h"

namespace lapacke {

/// Gives `made` data for the layout that it has. Problems of different seeds have different numbers.
void pose(call &made, int set, unsigned seed);

/// Where the element at place `at` of an array would be if the call were column-major, so that the
/// outcomes of both layouts can be compared.
int64_t place_by_columns(call &made, std::size_t argument, int64_t at);

} // namespace lapacke
