// The constants of a C header as Fortran has them.
#pragma once

#include <iosfwd>
#include <string>

namespace tablegen {

/// A 64-bit parameter for each `#define` of the header whose value is made of literals, earlier constants,
/// `+`, `|` and `<<`. The module uses iso_c_binding.
void print_header_constants(std::ostream &out, const std::string &header);

} // namespace tablegen
