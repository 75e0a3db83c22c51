// The tables of random streams, their generators, and convolution and correlation tasks: what a row says.
#pragma once

#include "table.h"

namespace tablegen {

/// One `name:kind:check` of a row.
struct vsl_argument {
    std::string name;
    std::string kind;   // int, real, stream...: vsl_kinds.cpp
    std::string check;  // a rule of src/vsl/checks.h as C++ writes it: positive, above<0>; may be empty
    bool width = false; // `*`: a number of the generator has that many elements
};

/// One routine in one type.
struct vsl_routine {
    enum class frame { generate, stream, task, own };

    std::string name;  // vdRngGaussian
    std::string other; // a second spelling, may be empty
    char element = 0;  // s, d, c, z, i, u, l; 0 for a routine without elements
    frame is = frame::own;
    std::string kernel; // generate, stream: what the kernel library is asked for
    int methods = 0;    // generate: how many there are
    bool accurate = false;
    std::string rule;      // task: the template of src/vsl/tasks.h
    std::string task_kind; // task: convolution, correlation
    std::vector<vsl_argument> arguments;
    std::string about; // for the public header, in lines
    std::string place; // file:line of the row

    /// The list in C: a generator's starts with method, stream, n and r.
    std::vector<vsl_argument> list() const;
};

std::vector<vsl_routine> read_vsl_tables(const std::vector<std::string> &files);

/// Kernels by name, each once: two routines share one.
std::vector<vsl_routine> vsl_kernels(const std::vector<vsl_routine> &routines);

/// vslsconvnewtask, ahead of the two spellings that share its body; a task's routine has them for Fortran.
std::vector<std::string> vsl_fortran_names(const vsl_routine &row);

bool vsl_kind_exists(const std::string &kind);

/// `const double *` for reals of a d routine, with the blank that C wants ahead of a name.
std::string vsl_c_type(const vsl_argument &argument, char element);
/// The same for the Fortran spellings of tasks.
std::string vsl_address_type(const vsl_argument &argument, char element);
/// Whether those read the argument through its address: `int64_t` for `const int64_t *`
bool vsl_is_value(const vsl_argument &argument);

/// What the kernel receives, in C types: a seed is two arguments.
std::vector<std::string> vsl_kernel_types(const vsl_argument &argument, char element);

/// `argument<real, positive>`: what the frame knows of it, src/vsl/arguments.h
std::string vsl_argument_class(const vsl_argument &argument);

/// `%s(%d,%p,%d,%p,%lf,%lf)`
std::string vsl_trace_format(const vsl_routine &row);

/// `real(c_double), value :: a`, by bind(C); for tasks by address.
std::string vsl_fortran_declaration(const vsl_argument &argument, char element, bool bound);

} // namespace tablegen
