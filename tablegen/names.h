// The names that follow from a routine's name: spellings, core entry, checker, reported literal.
#pragma once

#include "table.h"

namespace tablegen {

/// The body's own symbol, to which all other spellings are bound.
std::string body_symbol(const routine &row);

/// Every exported spelling but the body's own.
std::vector<std::string> other_spellings(const routine &row);

/// The spellings that programs use, the plain lower-case one first: those of the public header.
std::vector<std::string> public_spellings(const routine &row);

/// The mixed-case C spelling where it is a body of its own, because it takes values that the Fortran
/// spellings read through addresses; otherwise empty.
std::string mixed_body(const routine &row);

std::string core_entry(const routine &row);
std::string checker(const routine &row);

/// The name that a report carries, with its blanks.
std::string reported_name(const routine &row);

/// The trace line's format: `DGEMM(%c,%c,%lli,...)`.
std::string trace_format(const routine &row);
std::string trace_kinds(const routine &row);
/// The same for the two bodies of a valued frame: `XKL_DOMATCOPY(%c, %c, %d, ...)`, or with %zu by value.
std::string valued_format(const routine &row, bool by_value);

/// All exported names of a routine, its checker included.
std::vector<std::string> exported_names(const routine &row);

/// The arguments as the core receives them: a result address first where the result goes there.
std::vector<argument> all_arguments(const routine &row);
int hidden_lengths(const routine &row);

} // namespace tablegen
