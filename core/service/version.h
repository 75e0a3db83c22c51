// The version as text, for the trace header and the version entries.
#pragma once

#include <string>

namespace xkl::core {

// One line: product, version, kernels, processor. Not kept: the kernels may change until the first
// computation.
std::string version_line();

} // namespace xkl::core
