// Libraries that the core opens itself and that lie in its own folder.
#pragma once

#include <string>

namespace xkl::core {

// That file in the folder which the core was loaded from, wherever the program has gone since; the name
// alone where the core is part of the program.
std::string beside_core(const std::string &file);

} // namespace xkl::core
