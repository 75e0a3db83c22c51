// What the generator can print. Each printer writes one kind of file and holds no rule of a family: it
// prints names, types and calls, and what the calls do stands in the templates under src/.
#pragma once

#include "table.h"

#include <iosfwd>
#include <set>

namespace tablegen {

using routines = std::vector<routine>;

// Interface library.
void print_frames(std::ostream &out, const routines &rows, const std::string &checks_header);
void print_frame_header(std::ostream &out, const routines &rows);
void print_forwarders(std::ostream &out, const routines &rows);
void print_shapes(std::ostream &out, const std::vector<shaped> &rows);
void print_helpers(std::ostream &out, const routines &rows);
void print_companion(std::ostream &out, const routines &rows);
void print_companion_exports(std::ostream &out, const routines &rows);

// What a user's program compiles against.
void print_c_header(std::ostream &out, const routines &rows, const std::string &header);
void print_cblas_header(std::ostream &out, const std::vector<shaped> &rows);
void print_helper_header(std::ostream &out, const routines &rows, const std::string &header);
void print_fortran_module(std::ostream &out, const routines &rows, const std::string &constants);
void print_dfti_module(std::ostream &out, const routines &rows, const std::string &file);

// Cores: the entries' prototypes, the default core's forwards, stand-ins and own entries, and two cores for
// tests and measurements.
void print_core_header(std::ostream &out, const routines &rows);
void print_core_forwards(std::ostream &out, const routines &rows, const std::vector<provider> &providers);
void print_core_own(std::ostream &out, const routines &rows, const std::vector<provider> &providers,
                    const std::string &header);
void print_core_calls(std::ostream &out, const routines &rows);
void print_core_manifest(std::ostream &out, const routines &rows, const std::vector<provider> &providers);
void print_null_core(std::ostream &out, const routines &rows);
void print_recording_core(std::ostream &out, const routines &rows);

// Lists.
using name_set = std::set<std::string>;
name_set exported(const routines &rows, const std::vector<shaped> &shapes);
void print_exports(std::ostream &out, const name_set &names);
void print_version_script(std::ostream &out, const name_set &names);
void print_test_rows(std::ostream &out, const routines &rows);
void print_cblas_test_rows(std::ostream &out, const std::vector<shaped> &rows);

// Shared by the printers.
void print_prologue(std::ostream &out, const std::string &header, const std::string &text,
                    const std::vector<std::string> &includes = {"xkl_types.h"});
void print_epilogue(std::ostream &out);
std::string parameter_list(const routine &row);         // const char *transa, ...
std::string visible_parameter_list(const routine &row); // with types only for what is behind the list
std::string core_parameter_list(const routine &row,
                                bool named = true);            // with the trailing 0 and hidden lengths
std::string argument_names(const std::vector<argument> &args); // transa, ...
std::string valued_parameter_list(const routine &row,
                                  bool named = true); // char ordering, ..., double alpha, ...
void print_reading_frames(std::ostream &out, const routines &rows);
std::string public_header(const std::string &family);             // xkl_blas.h
std::vector<std::string> type_headers(const std::string &family); // what it includes
void print_valued_row(std::ostream &out, const routine &row);
void print_valued_bodies(std::ostream &out, const routine &row); // with their checker
std::string cblas_name(const shaped &row);
std::vector<argument> cblas_arguments(const shaped &row);
std::string cblas_parameter_list(const shaped &row);
std::string quoted(const std::string &text);

} // namespace tablegen
