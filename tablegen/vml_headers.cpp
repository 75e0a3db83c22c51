// What programs compile against: the C header and the Fortran module of vector math.
#include "table_lines.h"
#include "vml_printers.h"

#include "constants.h"
#include "vml_accuracy.h"

#include <ostream>
#include <set>

namespace tablegen {
namespace {

const char header_text[] =
    R"(/* xkl_vml.h: mathematical functions of vectors, element by element.
 *
 * vdExp(n, a, r) computes r[i] = exp(a[i]) for i = 0 to n-1; the letter behind v is the type: s float, d
 * double, c and z their complex pairs. A function whose name ends in I has an increment behind each
 * vector: element i is a[i*inca]. Up to 2^31-1 elements an increment may be anything; longer vectors are
 * computed in blocks of 2^31-1 elements, which start at that multiple of an element whatever the
 * increment. Results may overwrite an argument in place (r == a); vectors that overlap otherwise give
 * undefined results.
 *
 * vmdExp takes a mode (accuracy, treatment of errors; xkl_vml_types.h) for this call alone; the others
 * follow the calling thread's mode, which vmlSetMode sets. The _64 spellings are the same routines. The
 * spellings that end in _ are for Fortran and read every argument through its address. Complex scalars go
 * by address in both languages.
 *
 * A negative n, or a null pointer among the vectors when n > 0, is reported to xerbla with the routine's
 * name and the argument's place in the C list, from 1, and leaves the status VML_STATUS_BADSIZE or
 * VML_STATUS_BADMEM; nothing is then computed. The Pack and Unpack functions check n alone; their
 * increments, indices and masks are 64-bit integers. n = 0 does nothing. An element outside a function's
 * domain leaves a status too, as the mode says.
 *
 * How accurate a result is follows from the mode. The error that a function promises stands beside it, in
 * units in the last place (ULP), for complex results in those of the magnitude, for Bessel functions near
 * their zeros in those of the waves, for the modes VML_HA, VML_LA and VML_EP. A NaN as an argument gives
 * a NaN and no status, if nothing else is said. Domains and special values stand beside the functions, too:
 * "domain" is where no status is left; ERRDOM, SING, OVERFLOW and UNDERFLOW are the VML_STATUS_ values of
 * the elements that they stand with.
 *
 * The first call that computes opens the kernel library. Where that or one of its kernels is missing, a
 * message says so and the process ends with code 2. */
#ifndef XKL_VML_H
#define XKL_VML_H

#include "xkl_types.h"
#include "xkl_vml_types.h"

#ifdef __cplusplus
extern "C" {
#endif
)";

/// Fortran lists are the same for a class and type; they are declared once each.
std::string fortran_type(const vml_form &form, const vml_entry &entry)
{
    const vml_function &function = *form.function;
    const std::string list =
        function.kind == vml_class::pack ? function.name : vml_class_name(function.kind);
    return std::string("xkl_vml_") + function.element + "_" + list + (form.strided ? "_strided" : "") +
           (entry.in_mode ? "_mode" : "");
}

class header_printer {
  public:
    explicit header_printer(std::ostream &out) : out_(out) {}

    void form(const vml_form &form)
    {
        const std::vector<vml_entry> entries = vml_entries(form);
        for (const vml_entry &each : entries)
            if (!each.fortran)
                out_ << "void " << each.name << "(" << vml_declared(vml_entry_arguments(form, each))
                     << ");\n";
        for (const bool in_mode : {false, true})
            fortran(form, entries, in_mode);
    }

  private:
    void fortran(const vml_form &form, const std::vector<vml_entry> &entries, bool in_mode)
    {
        std::string names, type;
        for (const vml_entry &each : entries)
            if (each.fortran && each.in_mode == in_mode) {
                type = fortran_type(form, each);
                if (declared_.insert(type).second)
                    out_ << "typedef void " << type << "(" << vml_declared(vml_entry_arguments(form, each))
                         << ");\n";
                names += (names.empty() ? " " : ", ") + each.name;
            }
        out_ << "extern " << type << names << ";\n";
    }

    std::ostream &out_;
    std::set<std::string> declared_;
};

std::string fortran_element(char element)
{
    switch (element) {
    case 's':
        return "real(4)";
    case 'd':
        return "real(8)";
    case 'c':
        return "complex(4)";
    default:
        return "complex(8)";
    }
}

/// `real(8), intent(in) :: a(*)`
std::string fortran_argument(const vml_argument &argument)
{
    std::string type = "integer(8)";
    for (const char element : {'s', 'd', 'c', 'z'})
        if (argument.type.find(vml_type(element) + " ") != std::string::npos)
            type = fortran_element(element);
    const bool vector = argument.type.ends_with('*'), read = argument.type.starts_with("const") || !vector;
    return type + (read ? ", intent(in) :: " : ", intent(inout) :: ") + argument.name +
           (vector ? "(*)" : "");
}

/// A kind of setting as C interoperates with it.
std::string fortran_setting(const std::string &kind, bool result)
{
    return kind == "callback" ? "type(c_funptr)" : result ? "integer(c_int32_t)" : "integer(c_int64_t)";
}

/// The C spelling, whose callback is a value.
void print_setting_interface(std::ostream &out, const vml_setting &setting)
{
    const std::string name = "vml" + setting.name;
    out << "    ! " << setting.about << "\n    function " << name << "(" << setting.argument
        << ") bind(C, name=\"" << name << "\") result(answer)\n      import\n";
    if (!setting.argument.empty())
        out << "      " << fortran_setting(setting.argument, false) << ", value :: " << setting.argument
            << "\n";
    out << "      " << fortran_setting(setting.result, true) << " :: answer\n    end function " << name
        << "\n";
}

/// The record that a callback gets.
const char fortran_error_type[] = R"(  type, bind(C) :: xkl_vml_error
    integer(c_int32_t) :: status, reserved
    integer(c_int64_t) :: index
    real(c_double) :: a(2), b(2), r1(2), r2(2)
    type(c_ptr) :: name
  end type xkl_vml_error
)";

void print_interface(std::ostream &out, const vml_form &form, bool in_mode)
{
    const vml_entry entry{(in_mode ? "vm" : "v") + to_lower(form.name()), "", false, in_mode, false};
    const std::vector<vml_argument> arguments = vml_entry_arguments(form, entry);
    const std::string own = vml_type(form.function->element) + " ";
    out << "    subroutine " << entry.name << "(" << vml_passed(arguments) << ")\n";
    for (const vml_argument &each : arguments) {
        const bool one = form.function->kind == vml_class::scalar && each.name == "b";
        out << "      " << fortran_argument(one ? vml_argument{own, "b"} : each) << "\n";
    }
    out << "    end subroutine " << entry.name << "\n";
}

} // namespace

void print_vml_header(std::ostream &out, const vml_functions &functions,
                      const std::vector<vml_setting> &settings, const std::string &errors)
{
    const vml_accuracy accuracy = read_vml_accuracy(errors);
    out << header_text;
    for (const vml_setting &setting : settings) {
        out << comment(setting.about, "\n/** ", "\n *  ", " */\n");
        for (const vml_entry &entry : vml_setting_entries(setting))
            out << vml_setting_result(setting, entry) << entry.name << "("
                << vml_setting_parameter(setting, entry) << ");\n";
    }
    header_printer printer(out);
    std::string row;
    for (const vml_form &form : vml_forms(functions)) {
        if (form.function->place != row) {
            row = form.function->place;
            const std::string errors_of_row = vml_error_lines(accuracy, functions, row);
            out << comment(form.function->about + (errors_of_row.empty() ? "" : "\n" + errors_of_row),
                           "\n/** ", "\n *  ", " */\n");
        }
        printer.form(form);
    }
    out << "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
}

void print_vml_fortran(std::ostream &out, const vml_functions &functions,
                       const std::vector<vml_setting> &settings, const std::string &constants)
{
    out << "! xkl_vml.f90: constants and explicit interfaces of the vector math routines, 64-bit "
           "integers.\n"
        << "! Compile this file with the program that uses it: module files belong to one compiler.\n"
        << "! xkl_vml.h describes the functions, xkl_vml_types.h the constants. A callback is a function "
           "with\n"
        << "! bind(C), of one argument of type(xkl_vml_error) and a result of integer(c_int): its c_funloc "
           "is set.\n"
        << "module xkl_vml\n  use, intrinsic :: iso_c_binding\n  implicit none\n";
    print_header_constants(out, constants);
    out << fortran_error_type << "  interface\n";
    for (const vml_setting &setting : settings)
        print_setting_interface(out, setting);
    std::string row;
    for (const vml_form &form : vml_forms(functions)) {
        if (form.function->place != row)
            out << comment(form.function->about, "    ! ", "\n    ! ", "\n");
        row = form.function->place;
        for (const bool in_mode : {false, true})
            print_interface(out, form, in_mode);
    }
    out << "  end interface\nend module xkl_vml\n";
}

} // namespace tablegen
