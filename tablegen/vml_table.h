// The table of vector math functions: what a row says, and the names that follow from it. A row stands
// for one function a type, and each of these for a kernel table, or for two where there is a strided
// form.
#pragma once

#include "table.h"

namespace tablegen {

/// What a function takes and gives; the argument lists in vml_table.cpp follow from it.
enum class vml_class {
    one_in_one_out, // 1i_1o: a, r
    two_in_one_out, // 2i_1o: a, b, r
    one_in_two_out, // 1i_2o: a, r1, r2
    scalar,         // a, r and one scalar for all elements
    linear_frac,    // a, b, r and four scalars
    to_real,        // complex a, real r
    to_complex,     // real a, complex r
    pack // source, increment or indices or mask, destination; has neither strided form nor threader
};

/// One function in one type.
struct vml_function {
    std::string name; // Exp
    char element = 0; // s, d, c, z: the first letter of the entry points
    vml_class kind = vml_class::one_in_one_out;
    std::string about; // for the public header, in lines
    std::string place; // file:line of the row

    bool is_complex() const { return element == 'c' || element == 'z'; }
    bool has_strided_form() const { return kind != vml_class::pack; }
};

/// A function in its plain or its strided form: what a kernel table is for.
struct vml_form {
    const vml_function *function;
    bool strided = false;

    /// dExp, dExpI
    std::string name() const;
};

/// One argument of a kernel or threader, `type` as C writes it, with its blank: `const double *`.
struct vml_argument {
    enum class role { vector, increment, scalar, other };
    std::string type, name;
    role is = role::vector;
};

std::vector<vml_function> read_vml_table(const std::string &file);

/// Every form of every function in the order of the rows: one each kernel table.
std::vector<vml_form> vml_forms(const std::vector<vml_function> &functions);

/// `double` for d, `XKL_Complex16` for z.
std::string vml_type(char element);
/// s for s and c, d for d and z.
char vml_real_letter(char element);

/// `xkl_vml_serv_threader_d_1i_1o`; empty for the pack class.
std::string vml_threader(const vml_form &form);

/// What a kernel takes behind its count, in this order: vectors, each with its increment in strided
/// forms, then scalars.
std::vector<vml_argument> vml_kernel_arguments(const vml_form &form);

/// `const double *a, double *r`
std::string vml_declared(const std::vector<vml_argument> &arguments);
/// `a, r`
std::string vml_passed(const std::vector<vml_argument> &arguments);

} // namespace tablegen
