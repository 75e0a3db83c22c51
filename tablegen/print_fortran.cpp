// Explicit interfaces for Fortran. Arrays are declared assumed-size, so that any rank can be passed by
// sequence association as programs have always done, and lines are broken at commas to stay within the
// standard's 132 columns.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

std::string wrapped(const std::string &text)
{
    std::string result, line;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t comma = text.find(", ", from);
        const std::string word = text.substr(from, comma == std::string::npos ? comma : comma + 2 - from);
        if (line.size() + word.size() > 100) {
            result += line + "&\n            ";
            line.clear();
        }
        line += word;
        from += word.size();
    }
    return result + line;
}

void print_interface(std::ostream &out, const routine &row)
{
    const bool function = row.result != "-";
    const std::string kind = function ? "function" : "subroutine";
    if (!row.about.empty())
        out << "    ! " << row.about << "\n";
    out << "    " << wrapped(kind + " " + row.lower() + "(" + argument_names(row.arguments) + ")") << "\n";
    for (const argument &each : row.arguments) {
        std::string shape;
        const std::string declaration = fortran_declaration(each, row.element, shape);
        out << "      " << declaration << each.name << shape << "\n";
    }
    if (function)
        out << "      " << fortran_result(row) << " :: " << row.lower() << "\n";
    out << "    end " << kind << " " << row.lower() << "\n";
}

} // namespace

void print_fortran_module(std::ostream &out, const routines &rows)
{
    const std::string module = "xkl_" + rows.front().family;
    out << "! " << module << ".f90: explicit interfaces of the library's routines, 64-bit integers.\n"
        << "! Compile this file with the program that uses it: module files belong to one compiler.\n"
        << "! Arrays of addresses (batch routines) are integer(8) arrays filled from c_loc or loc.\n"
        << "module " << module << "\n  implicit none\n  interface\n";
    for (const routine &row : rows)
        print_interface(out, row);
    out << "  end interface\nend module " << module << "\n";
}

} // namespace tablegen
