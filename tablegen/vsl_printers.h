// What is printed from the tables of random streams and tasks.
#pragma once

#include "vsl_table.h"

#include <iosfwd>
#include <set>

namespace tablegen {

using vsl_routines = std::vector<vsl_routine>;

/// The interface library's generators and stream routines; its tasks.
void print_vsl_frames(std::ostream &out, const vsl_routines &routines);
void print_vsl_tasks(std::ostream &out, const vsl_routines &routines);

void print_vsl_header(std::ostream &out, const vsl_routines &routines);
/// `constants`: the header that has them, whose names and values the module has too.
void print_vsl_fortran(std::ostream &out, const vsl_routines &routines, const std::string &constants);
std::set<std::string> vsl_exported_names(const vsl_routines &routines);

/// What table-driven tests walk, and the kernels that they run on.
void print_vsl_test_rows(std::ostream &out, const vsl_routines &routines);
void print_vsl_recording_kernels(std::ostream &out, const vsl_routines &routines);

/// `double *r, double a`
std::string vsl_declared(const std::vector<vsl_argument> &arguments, char element);

} // namespace tablegen
