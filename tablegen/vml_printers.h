// What is printed from the table of vector math functions.
#pragma once

#include "vml_entries.h"
#include "vml_kernels.h"
#include "vml_table.h"

#include <iosfwd>
#include <set>

namespace tablegen {

using vml_functions = std::vector<vml_function>;

/// Prototypes of the threaders: what the interface library imports from its core.
void print_vml_core_header(std::ostream &out, const vml_functions &functions);
/// The threaders of the default core, over the templates of core/vml.
void print_vml_threaders(std::ostream &out, const vml_functions &functions);
/// The kernels whose templates are in a header of kernels/; compiled once per instruction set.
void print_vml_kernels(std::ostream &out, const vml_functions &functions,
                       const std::vector<vml_kernel> &kernels, const std::string &header);
/// The kernel library's tables.
void print_vml_kernel_tables(std::ostream &out, const vml_functions &functions,
                             const std::vector<vml_kernel> &kernels);
/// What tests of the kernels walk: every form that has a kernel.
void print_vml_kernel_rows(std::ostream &out, const vml_functions &functions,
                           const std::vector<vml_kernel> &kernels);

/// The interface library's entry points of the functions of some types (`sd`).
void print_vml_frames(std::ostream &out, const vml_functions &functions, const std::string &types);
/// Its operations on mode, status and callback.
void print_vml_settings(std::ostream &out, const std::vector<vml_setting> &settings);
/// `errors` and `constants` are files: the table of promised errors, the C header of the constants.
void print_vml_header(std::ostream &out, const vml_functions &functions,
                      const std::vector<vml_setting> &settings, const std::string &errors);
void print_vml_fortran(std::ostream &out, const vml_functions &functions,
                       const std::vector<vml_setting> &settings, const std::string &constants);
std::set<std::string> vml_exported_names(const vml_functions &functions,
                                         const std::vector<vml_setting> &settings);

/// What table-driven tests walk, and the cores and kernels that they and measurements run on.
void print_vml_test_rows(std::ostream &out, const vml_functions &functions);
void print_vml_recording_core(std::ostream &out, const vml_functions &functions);
void print_vml_recording_kernels(std::ostream &out, const vml_functions &functions);
void print_vml_null_core(std::ostream &out, const vml_functions &functions);

/// Functions of one class and type share a threader; this is one form for each.
std::vector<vml_form> vml_one_form_each_threader(const vml_functions &functions);
/// `void xkl_vml_serv_threader_d_1i_1o(const void *kernel, ...)`
std::string vml_threader_prototype(const vml_form &form);

} // namespace tablegen
