// LAPACKE's helpers: NaN checks and layout copies. Each name is a body of its own, which calls the template
// of its row; the template finds the type in the arrays.
#include "kinds.h"
#include "lapacke_table.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

/// The names of a helper: its own, and the one with _64, which has the same list.
std::vector<std::string> helper_names(const routine &row)
{
    std::vector<std::string> names = other_spellings(row);
    names.insert(names.begin(), body_symbol(row));
    return names;
}

/// Layouts, letters and integers are values here, as in all of LAPACKE.
std::string helper_type(const argument &arg, char element)
{
    if (arg.kind == "e")
        return "int ";
    const std::string type = lapacke_element(arg, element);
    if (arg.kind == "c" || arg.kind == "i")
        return type + " ";
    return (arg.written ? "" : "const ") + type + " *";
}

std::string helper_declaration(const routine &row, const std::string &name)
{
    const std::string result = row.has_result() ? "lapack_logical" : "void";
    std::string text = result + " " + name + "(";
    for (const argument &each : row.arguments)
        text += (text.ends_with('(') ? "" : ", ") + helper_type(each, row.element) + each.name;
    return text + ")";
}

} // namespace

void print_helpers(std::ostream &out, const routines &rows)
{
    out << "#include \"lapacke/complex.h\"\n#include \"lapacke/helpers.h\"\n#include "
           "\"xkl_lapacke_helpers.h\"\n";
    for (const routine &row : rows) {
        out << "\n// " << row.name << ": " << row.place << "\n";
        for (const std::string &name : helper_names(row))
            out << "extern \"C\" " << helper_declaration(row, name)
                << "\n{\n    return xkl::lapacke::" << row.frame.rule << "("
                << argument_names(row.arguments) << ");\n}\n";
    }
}

void print_helper_header(std::ostream &out, const routines &rows, const std::string &header)
{
    print_prologue(
        out, header,
        "LAPACKE's helpers: NaN checks and copies from one layout into the other.\n"
        "   layout is 101 for row-major and 102 for column-major. Letters are read in either case.\n"
        "   Only the stored part of a matrix is looked at or copied: the triangle that uplo names,\n"
        "   the band, and no diagonal where diag is 'U'. The names ending in _64 are the same",
        {"xkl_lapacke_types.h"});
    std::string about;
    for (const routine &row : rows) {
        if (row.about != about)
            out << "\n/** " << row.about << " */\n";
        about = row.about;
        for (const std::string &name : helper_names(row))
            out << helper_declaration(row, name) << ";\n";
    }
    print_epilogue(out);
}

} // namespace tablegen
