// Definitions of reading frames: the C name takes values and jumps to the core; the Fortran name reads them
// through addresses first.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

void print_alias(std::ostream &out, const std::string &body, const std::string &name)
{
    out << "extern \"C\" decltype(" << body << ") " << name << " __attribute__((alias(\"" << body
        << "\")));\n";
}

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

} // namespace

void print_reading_bodies(std::ostream &out, const routine &row)
{
    const std::string body = body_symbol(row), fortran = mixed_body(row);
    const fortran_lists lists = fortran_lists_of(row);
    out << "\n// " << row.name << ": " << row.place << "\nextern \"C\" " << c_result(row) << " " << body
        << "(" << parameter_list(row) << ")\n{\n    return " << core_entry(row) << "("
        << argument_names(row.arguments) << ");\n}\nextern \"C\" " << c_result(row) << " " << fortran << "("
        << lists.parameters << ")\n{\n    return " << core_entry(row) << "(" << lists.passed << ");\n}\n";
    for (const std::string &name : other_spellings(row)) {
        print_alias(out, body, name);
        print_alias(out, fortran, fortran + name.substr(body.size()));
    }
}

} // namespace tablegen
