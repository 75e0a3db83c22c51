// The Fortran module of the Fourier transforms: a file written by hand, in which the computations'
// specific functions are filled in, one for each row that names its arrays' types. Their arrays have any
// rank, which only functions that know addresses can pass on, so each has its own view of the routine
// behind it.
#include "kinds.h"
#include "printers.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>

namespace tablegen {
namespace {

const std::string prefix = "DFTI_";

bool is_computation(const routine &row)
{
    return row.name.starts_with(prefix + "COMPUTE_");
}

/// compute_forward_dz
std::string specific_name(const routine &row)
{
    return row.lower().substr(prefix.size());
}

void print_generic(std::ostream &out, const routines &rows, const std::string &name,
                   const std::string &direction)
{
    out << "    interface " << name << "\n";
    for (const routine &row : rows)
        if (specific_name(row).starts_with("compute_" + direction))
            out << "        module procedure " << specific_name(row) << "\n";
    out << "    end interface\n\n";
}

/// `complex(8), intent(inout), contiguous, target :: x(..)`
std::string any_shape(const argument &each, char element)
{
    std::string shape, text = fortran_declaration(each, element, shape);
    text.insert(text.find(" ::"), ", contiguous, target");
    return text + each.name + "(..)";
}

void print_computation(std::ostream &out, const routine &row)
{
    const std::vector<argument> data(row.arguments.begin() + 1, row.arguments.end());
    const std::string names = argument_names(data), function = specific_name(row);
    std::string addresses;
    for (const argument &each : data)
        addresses += ", c_loc(" + each.name + ")";
    out << "    integer(4) function " << function << "(handle, " << names << ") result(status)\n"
        << "        type(DFTI_DESCRIPTOR), pointer, intent(in) :: handle\n";
    for (const argument &each : data)
        out << "        " << any_shape(each, row.element) << "\n";
    out << "        interface\n            integer(c_int32_t) function routine(handle, " << names
        << ") bind(C, name='" << row.lower() << "')\n                import\n"
        << "                type(c_ptr), intent(in) :: handle\n                type(c_ptr), value :: "
        << names << "\n            end function\n        end interface\n"
        << "        status = routine(address_of(handle)" << addresses << ")\n    end function\n\n";
}

} // namespace

void print_dfti_module(std::ostream &out, const routines &rows, const std::string &file)
{
    routines computations;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(computations), is_computation);
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened; --template names the module without its computations");
    bool has_generics = false, has_computations = false;
    for (std::string line; std::getline(in, line);) {
        if (line == "@GENERICS@") {
            print_generic(out, computations, "DftiComputeForward", "forward");
            print_generic(out, computations, "DftiComputeBackward", "backward");
            has_generics = true;
        } else if (line == "@COMPUTATIONS@") {
            for (const routine &row : computations)
                print_computation(out, row);
            has_computations = true;
        } else {
            out << line << "\n";
        }
    }
    if (!has_generics || !has_computations)
        throw table_error(file + ": has no line @GENERICS@ or no line @COMPUTATIONS@");
}

} // namespace tablegen
