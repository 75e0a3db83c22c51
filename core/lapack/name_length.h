// How long a routine's name is that came without its length.
#pragma once

#include <cstdint>

namespace xkl::core {

// Frames hand every character argument on with the length 1. Routines that take a name need the true one:
// callers from C end their text with a zero, callers from Fortran with nothing at all, and what stands
// behind their constant is often the next one, as in "DGETRFDORMQR".
//
// So the name is the longest of a LAPACK routine that the text starts with, in letters of either case. Text
// that starts with none counts as far as its letters, digits and underscores reach. No page is touched that
// cannot be read.
int64_t name_length(const char *text) noexcept;

} // namespace xkl::core
