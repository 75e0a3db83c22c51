// What programs compile against: the C header and the Fortran module of random streams and tasks.
#include "table_lines.h"
#include "vsl_printers.h"

#include "constants.h"

#include <ostream>
#include <sstream>

namespace tablegen {
namespace {

const char header_text[] =
    R"(/* xkl_vsl.h: random number streams and generators, convolution and correlation.
 *
 * A stream is made by vslNewStream from one of the basic generators and a seed; vdRngGaussian and its kin
 * draw n numbers of a distribution from it:
 *
 *     VSLStreamStatePtr stream;
 *     vslNewStream(&stream, VSL_BRNG_MT19937, 777);
 *     vdRngGaussian(VSL_RNG_METHOD_GAUSSIAN_ICDF, stream, n, r, 0.0, 1.0);
 *     vslDeleteStream(&stream);
 *
 * All routines return a status: VSL_STATUS_OK, or one of the negative values of xkl_vsl_types.h, which also
 * has the generators and methods. A bad argument is reported to xerbla, too, with the routine's name and the
 * argument's place in the list, from 1, and nothing is then written. Integers are 64-bit; all but n of the
 * generators, seed and nskip must fit in 32 bits. n = 0 does nothing.
 *
 * The first call that gets past its checks opens the kernel library. Where that or one of its kernels is
 * missing, a message says so and the process ends with code 2.
 *
 * A task holds the sizes and the manner of a convolution or correlation, for any number of executions. The
 * routines of tasks narrow their integers to 32 bits without looking at them; the task is validated by the
 * library beneath, whose status they return, and nothing is reported to xerbla. Behind each C routine stand
 * its Fortran spellings, which take every argument by address, the task too. */
#ifndef XKL_VSL_H
#define XKL_VSL_H

#include "xkl_types.h"
#include "xkl_vsl_types.h"

#ifdef __cplusplus
extern "C" {
#endif
)";

std::string address_list(const vsl_routine &row)
{
    std::string text;
    for (const vsl_argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + vsl_address_type(each, row.element) + each.name;
    return text;
}

void print_interface(std::ostream &out, const vsl_routine &row)
{
    const bool bound = row.is != vsl_routine::frame::task;
    const std::string name = bound ? row.name : vsl_fortran_names(row).front();
    std::string list;
    for (const vsl_argument &each : row.list())
        list += (list.empty() ? "" : ", ") + each.name;
    out << "    function " << name << "(" << list << ") &\n        "
        << (bound ? "bind(C, name=\"" + row.name + "\") " : "") << "result(status)\n      import\n";
    for (const vsl_argument &each : row.list())
        out << "      " << vsl_fortran_declaration(each, row.element, bound) << "\n";
    out << "      integer(c_int32_t) :: status\n    end function " << name << "\n";
}

} // namespace

void print_vsl_header(std::ostream &out, const vsl_routines &routines)
{
    out << header_text;
    std::string about;
    for (const vsl_routine &row : routines) {
        if (row.about != about)
            out << comment(row.about, "\n/** ", "\n *  ", " */\n");
        about = row.about;
        const std::string list = vsl_declared(row.list(), row.element);
        out << "int32_t " << row.name << "(" << list << ");\n";
        if (!row.other.empty())
            out << "int32_t " << row.other << "(" << list << ");\n";
        for (const std::string &name : vsl_fortran_names(row))
            out << "int32_t " << name << "(" << address_list(row) << ");\n";
    }
    out << "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
}

void print_vsl_fortran(std::ostream &out, const vsl_routines &routines, const std::string &constants)
{
    out << "! xkl_vsl.f90: constants and explicit interfaces of random streams, convolution and "
           "correlation.\n"
        << "! Compile this file with the program that uses it: module files belong to one compiler.\n"
        << "! xkl_vsl.h describes the routines, xkl_vsl_types.h the constants. Streams and tasks are "
           "variables of\n"
        << "! type(c_ptr); names of files end with c_null_char.\n"
        << "module xkl_vsl\n  use, intrinsic :: iso_c_binding\n  implicit none\n";
    print_header_constants(out, constants);
    out << "  interface\n";
    std::string about;
    for (const vsl_routine &row : routines) {
        if (row.about != about)
            out << comment(row.about, "    ! ", "\n    ! ", "\n");
        about = row.about;
        print_interface(out, row);
    }
    out << "  end interface\nend module xkl_vsl\n";
}

} // namespace tablegen
