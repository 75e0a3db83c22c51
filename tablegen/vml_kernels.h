// Who computes the vector math functions: the rows of kernels/providers.tbl.
#pragma once

#include "vml_table.h"

#include <array>

namespace tablegen {

/// The kernel of a function in one type.
struct vml_kernel {
    const vml_function *function;
    std::string header;              // of kernels/, which has its template
    std::array<std::string, 3> cost; // nanoseconds an element: SSE2, AVX2, AVX-512
};

std::vector<vml_kernel> read_vml_kernels(const std::string &file,
                                         const std::vector<vml_function> &functions);

/// The template of a function, in kernels/: exp_function, complex_exp_function; packi.
std::string vml_kernel_template(const vml_function &function);

} // namespace tablegen
