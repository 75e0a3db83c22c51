// The gfortran companion: functions that return the complex value which the bodies put at their first
// address.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {

void print_companion(std::ostream &out, const routines &rows)
{
    out << "#include \"blas_frames.h\"\n#include \"gf/value_result.h\"\n";
    for (const routine &row : rows) {
        if (row.result != "first")
            continue;
        routine plain = row;
        plain.result = "complex";
        const std::string type = c_result(plain);
        const auto names = public_spellings(row);
        const std::string body = "value_" + row.lower();
        out << "\n// " << row.name << ": " << row.place << "\nextern \"C\" " << type << " " << body << "("
            << parameter_list(plain) << ")\n{\n    return xkl::value_result<" << type << ">("
            << body_symbol(row) << ", " << argument_names(row.arguments) << ");\n}\n";
        // The headers declare these names with the result's address first; here they are other functions.
        for (const std::string &name : names)
            out << "asm(\".globl " << name << "\\n.set " << name << ", " << body << "\");\n";
    }
}

void print_companion_exports(std::ostream &out, const routines &rows)
{
    out << "{\n  global:\n";
    for (const routine &row : rows)
        if (row.result == "first")
            for (const std::string &name : public_spellings(row))
                out << "    " << name << ";\n";
    out << "  local: *;\n};\n";
}

} // namespace tablegen
