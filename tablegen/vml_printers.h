// What is printed from the table of vector math functions.
#pragma once

#include "vml_kernels.h"
#include "vml_table.h"

#include <iosfwd>

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

} // namespace tablegen
