// What is printed from the LAPACKE tables.
#pragma once

#include "lapacke_table.h"

#include <iosfwd>
#include <set>

namespace tablegen {

/// Bodies: those of the plain names, or the twins with _64.
void print_lapacke(std::ostream &out, const std::vector<lapacke_routine> &rows, bool twins);
void print_lapacke_header(std::ostream &out, const std::vector<lapacke_routine> &rows);
void print_lapacke_test_rows(std::ostream &out, const std::vector<lapacke_routine> &rows);

/// All exported names.
std::set<std::string> lapacke_names(const std::vector<lapacke_routine> &rows);

/// The parameters of a C function, the layout first.
std::string c_parameter_list(const lapacke_routine &row, const std::vector<c_parameter> &parameters);

} // namespace tablegen
