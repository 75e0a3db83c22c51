// Definitions of valued frames: two bodies over one checker and one core entry that take values. The Fortran
// body reads each value through its address, the C body has it already; beyond that they differ in how
// their trace lines print sizes.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

/// The arguments as values, for a body that has addresses.
std::string read_values(const routine &row)
{
    std::string text;
    for (const argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + std::string(goes_by_value(each, row.element) ? "*" : "") +
                each.name;
    return text;
}

void print_body(std::ostream &out, const routine &row, const std::string &format, const std::string &head,
                const std::string &values)
{
    out << "extern \"C\" void " << head << "\n{\n    xkl::valued_frame<row_of_" << row.lower()
        << ">(row_of_" << row.lower() << "::" << format << ", " << values << ");\n}\n";
}

} // namespace

std::string valued_parameter_list(const routine &row, bool named)
{
    std::string text;
    for (const argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + valued_type(each, row.element) + (named ? each.name : "");
    return text;
}

void print_valued_row(std::ostream &out, const routine &row)
{
    out << "struct row_of_" << row.lower() << " {\n"
        << "    static constexpr auto &core = " << core_entry(row) << ";\n"
        << "    static constexpr auto &checker = " << checker(row) << ";\n"
        << "    using check = xkl::checks::" << row.frame.rule << ";\n"
        << "    static constexpr char reported_name[] = " << quoted(reported_name(row)) << ";\n"
        << "    static constexpr char format[] = " << quoted(valued_format(row, false)) << ";\n"
        << "    static constexpr char value_format[] = " << quoted(valued_format(row, true)) << ";\n};\n";
}

void print_valued_bodies(std::ostream &out, const routine &row)
{
    const std::string values = argument_names(row.arguments);
    out << "extern \"C\" int64_t " << checker(row) << "(" << valued_parameter_list(row)
        << ")\n{\n    return xkl::check_values<row_of_" << row.lower() << ">(" << values << ");\n}\n";
    print_body(out, row, "format", body_symbol(row) + "(" + parameter_list(row) + ")", read_values(row));
    print_body(out, row, "value_format", mixed_body(row) + "(" + valued_parameter_list(row) + ")", values);
}

} // namespace tablegen
