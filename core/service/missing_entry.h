// The end of every generated stand-in for an entry that the core cannot serve yet.
#pragma once

// Prints one line that names the entry and ends the process with code 2, as a missing kernel does: the
// caller's result would be wrong otherwise.
extern "C" [[noreturn]] void xkl_core_missing_entry(const char *entry);
