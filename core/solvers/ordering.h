// The order in which unknowns are eliminated: it decides how many elements the factors have. An order lists
// the unknowns, the first one to be eliminated first.
#pragma once

#include "solvers/matrix.h"

namespace xkl::core::solvers {

// By minimum degree: cheap, and the better one for small systems.
std::vector<int64_t> minimum_degree(const pattern &a);

// By nested dissection: the better one for large systems. Empty when it failed.
std::vector<int64_t> nested_dissection(const pattern &a);

// The columns of an unsymmetric matrix by their degree in A^T * A, whatever rows the pivots come from.
std::vector<int64_t> column_degree(const pattern &a);

// No order of its own
std::vector<int64_t> as_they_stand(int64_t n);

std::vector<int64_t> inverse(const std::vector<int64_t> &order);
bool is_permutation(const std::vector<int64_t> &order);

} // namespace xkl::core::solvers
