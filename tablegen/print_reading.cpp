// Definitions of reading frames: the C name takes values and jumps to the core; the Fortran name reads them
// through addresses first.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

struct fortran_lists {
    std::string parameters, passed;
};

fortran_lists fortran_lists_of(const routine &row)
{
    fortran_lists lists;
    for (const argument &each : row.arguments) {
        const std::string separator = lists.passed.empty() ? "" : ", ";
        lists.parameters += separator + c_type(each, row.element) + each.name;
        lists.passed += separator + (is_read_value(each, row.element) ? "*" : "") + each.name;
    }
    return lists;
}

/// One jump, written out and without a list: a compiler would copy what lies on the stack, and clear upper
/// halves of registers.
void print_jump(std::ostream &out, const routine &row, const std::string &name)
{
    out << "extern \"C\" [[gnu::naked]] void " << name << "()\n{\n    asm(\"jmp " << core_entry(row)
        << "@PLT\");\n}\n";
}

void print_bodies(std::ostream &out, const routine &row)
{
    const std::string body = body_symbol(row), fortran = mixed_body(row), result = c_result(row);
    const fortran_lists lists = fortran_lists_of(row);
    out << "\n// " << row.name << ": " << row.place << "\n";
    for (const std::string &name : public_spellings(row))
        print_jump(out, row, name);
    out << "extern \"C\" " << result << " " << fortran << "(" << lists.parameters << ")\n{\n    return "
        << core_entry(row) << "(" << lists.passed << ");\n}\n";
    for (const std::string &name : other_spellings(row))
        out << "extern \"C\" decltype(" << fortran << ") " << fortran << name.substr(body.size())
            << " __attribute__((alias(\"" << fortran << "\")));\n";
}

} // namespace

/// The public header stays away: it has the lists that the C names are defined without.
void print_reading_frames(std::ostream &out, const routines &rows)
{
    out << "#include \"core_" << rows.front().family << ".h\"\n";
    for (const routine &row : rows)
        print_bodies(out, row);
}

} // namespace tablegen
