// Explicit interfaces for Fortran. Arrays are declared assumed-size, so that any rank can be passed by
// sequence association as programs have always done, and lines are broken at commas to stay within the
// standard's 132 columns.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <ostream>
#include <regex>

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

/// Routines whose name takes no underscore: those that are all capitals, and those of one spelling.
bool is_bound(const routine &row)
{
    return row.is_reading() || row.spellings == "single";
}

std::string binding(const routine &row)
{
    const std::string name = row.is_reading() ? mixed_body(row) : body_symbol(row);
    return is_bound(row) ? " &\n            bind(c, name='" + name + "')" : "";
}

/// Types that the interfaces of a module name.
const std::map<std::string, const char *> derived_types = {
    {"spblas", "  type, bind(c) :: sparse_matrix_t\n"
               "    type(c_ptr) :: ptr = c_null_ptr\n"
               "  end type sparse_matrix_t\n"
               "  type, bind(c) :: matrix_descr\n"
               "    integer(c_int32_t) :: type, mode, diag\n"
               "  end type matrix_descr\n"},
    {"solvers", "  type, bind(c) :: sparse_struct\n"
                "    integer(c_int64_t) :: n\n"
                "    type(c_ptr) :: csr_ia, csr_ja\n"
                "    integer(c_int32_t) :: indexing, matrix_structure, print_style, message_level\n"
                "    integer(c_int64_t) :: check_result(3)\n"
                "  end type sparse_struct\n"}};

/// The same type by the name of C's, which compilers want to see in what is bound to C.
std::string interoperable(std::string type)
{
    static const std::map<std::string, std::string> kinds = {{"integer(4)", "integer(c_int32_t)"},
                                                             {"integer(8)", "integer(c_int64_t)"},
                                                             {"real(4)", "real(c_float)"},
                                                             {"real(8)", "real(c_double)"},
                                                             {"complex(4)", "complex(c_float_complex)"},
                                                             {"complex(8)", "complex(c_double_complex)"}};
    const std::string plain_character = "character,";
    if (type.starts_with(plain_character))
        return "character(c_char)," + type.substr(plain_character.size());
    const auto end = type.find(')') + 1;
    const auto found = kinds.find(type.substr(0, end));
    return found == kinds.end() ? type : found->second + type.substr(end);
}

bool needs_import(const std::string &declaration)
{
    return declaration.starts_with("type(") && !declaration.starts_with("type(*)");
}

/// The constants of a C header: `#define NAME (-1)` and `NAME = 1` in enumerations, which are 32-bit.
void print_constants(std::ostream &out, const std::string &header)
{
    static const std::regex definition(R"(#define (XKL_\w+) \(?(-?\d+)\)?.*)"),
        value(R"( +(\w+) = (\d+).*)");
    std::ifstream in(header);
    if (!in)
        throw table_error(header + ": can't be opened; it is the header whose constants Fortran gets");
    std::smatch found;
    for (std::string line; std::getline(in, line);) {
        const bool wide = std::regex_match(line, found, definition);
        if (wide || std::regex_match(line, found, value))
            out << "  integer(" << (wide ? 8 : 4) << "), parameter :: " << found[1] << " = " << found[2]
                << (wide ? "_8" : "") << "\n";
    }
}

void print_interface(std::ostream &out, const routine &row)
{
    const bool function = is_fortran_function(row);
    const std::string kind = function ? "function" : "subroutine";
    const auto typed = [&](const std::string &type) { return is_bound(row) ? interoperable(type) : type; };
    std::vector<argument> arguments = row.arguments;
    std::erase_if(arguments, is_hidden);
    if (!row.about.empty())
        out << "    ! " << row.about << "\n";
    out << "    " << wrapped(kind + " " + row.lower() + "(" + argument_names(arguments) + ")")
        << binding(row) << "\n";
    std::string shape;
    const auto has_derived_type = [&](const argument &each) {
        return needs_import(fortran_declaration(each, row.element, shape));
    };
    if (row.spellings == "single")
        out << "      use, intrinsic :: iso_c_binding\n";
    else if (row.is_reading() || std::any_of(arguments.begin(), arguments.end(), has_derived_type))
        out << "      import\n";
    for (const argument &each : arguments) {
        const std::string declaration = fortran_declaration(each, row.element, shape);
        out << "      " << typed(declaration) << each.name << shape << "\n";
    }
    if (function)
        out << "      " << typed(fortran_result(row)) << " :: " << row.lower() << "\n";
    out << "    end " << kind << " " << row.lower() << "\n";
}

} // namespace

void print_fortran_module(std::ostream &out, const routines &rows, const std::string &constants)
{
    const std::string module = "xkl_" + rows.front().family;
    out << "! " << module << ".f90: explicit interfaces of the library's routines, 64-bit integers.\n"
        << "! Compile this file with the program that uses it: module files belong to one compiler.\n"
        << "! Arrays of addresses (batch routines) are integer(8) arrays filled from c_loc or loc.\n"
        << "module " << module << "\n";
    const auto types = derived_types.find(rows.front().family);
    if (types != derived_types.end())
        out << "  use, intrinsic :: iso_c_binding, only: c_ptr, c_null_ptr, c_int32_t, c_int64_t, &\n"
               "    c_float, c_double, c_float_complex, c_double_complex\n";
    out << "  implicit none\n";
    if (types != derived_types.end())
        out << types->second;
    if (!constants.empty())
        print_constants(out, constants);
    out << "  interface\n";
    for (const routine &row : rows)
        print_interface(out, row);
    out << "  end interface\nend module " << module << "\n";
}

} // namespace tablegen
