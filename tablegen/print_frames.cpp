// Definitions of the interface library: a row structure and one thin body a routine, its spellings bound to
// the body.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>

namespace tablegen {
namespace {

std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

std::string type_of(const argument &arg, char element)
{
    const std::string type = c_type(arg, element);
    return type.ends_with(' ') || type.ends_with('*') ? type : type + " ";
}

std::string parameter_type(const routine &row, const argument &arg)
{
    return row.is_reading() ? handle_type(arg, row.element) : type_of(arg, row.element);
}

void print_aliases(std::ostream &out, const routine &row)
{
    const std::string body = body_symbol(row);
    for (const std::string &name : other_spellings(row))
        out << "extern \"C\" decltype(" << body << ") " << name << " __attribute__((alias(\"" << body
            << "\")));\n";
}

/// A name that no routine has: there are routines ending in _ROW.
std::string row_structure(const routine &row)
{
    return "row_of_" + row.lower();
}

void print_row(std::ostream &out, const routine &row)
{
    if (row.is_valued())
        return print_valued_row(out, row);
    out << "struct " << row_structure(row) << " {\n"
        << "    static constexpr auto &core = " << core_entry(row) << ";\n"
        << "    static constexpr int hidden_lengths = " << hidden_lengths(row) << ";\n"
        << "    static constexpr bool group = " << (row.frame.group ? "true" : "false") << ";\n";
    if (row.has_trace())
        out << "    static constexpr char format[] = " << quoted(trace_format(row)) << ";\n"
            << "    static constexpr char kinds[] = " << quoted(trace_kinds(row)) << ";\n"
            << "    static inline constinit xkl::verbose_flag flag{};\n";
    if (row.has_checker()) {
        const bool sets_info = !row.arguments.empty() && row.arguments.back().kind == "info";
        out << "    static constexpr bool sets_info = " << (sets_info ? "true" : "false") << ";\n"
            << "    static constexpr char reported_name[] = " << quoted(reported_name(row)) << ";\n"
            << "    static constexpr auto &checker = " << checker(row) << ";\n"
            << "    using check = xkl::checks::" << row.frame.rule << ";\n";
        if (row.has_result())
            out << "    static constexpr " << c_result(row) << " failed_result = " << row.failed_result
                << ";\n";
    }
    out << "};\n";
}

void print_checker(std::ostream &out, const routine &row)
{
    out << "extern \"C\" int64_t " << checker(row) << "(" << visible_parameter_list(row) << ")\n{\n"
        << "    return xkl::report_first_bad<" << row_structure(row) << ">("
        << argument_names(all_arguments(row)) << ");\n}\n";
}

/// The one body that all spellings share, behind its checker.
void print_body(std::ostream &out, const routine &row)
{
    if (row.has_checker())
        print_checker(out, row);
    out << "extern \"C\" " << c_result(row) << " " << body_symbol(row) << "(" << parameter_list(row)
        << ")\n{\n    return xkl::" << row.frame.kind << "_frame<" << row_structure(row) << ">("
        << argument_names(all_arguments(row)) << ");\n}\n";
}

} // namespace

std::string quoted(const std::string &text)
{
    return '"' + text + '"';
}

std::string argument_names(const std::vector<argument> &args)
{
    std::vector<std::string> names;
    for (const argument &each : args)
        names.push_back(each.name);
    return joined(names);
}

std::string parameter_list(const routine &row)
{
    std::vector<std::string> parts;
    for (const argument &each : all_arguments(row))
        parts.push_back(parameter_type(row, each) + each.name);
    return parts.empty() ? "void" : joined(parts);
}

std::string visible_parameter_list(const routine &row)
{
    if (row.is_valued())
        return valued_parameter_list(row);
    std::string text = parameter_list(row);
    for (int i = hidden_lengths(row) + (row.frame.group ? 1 : 0); i > 0; --i)
        text += ", int64_t";
    return text + (row.appends_one() ? ", int32_t" : "");
}

std::string core_parameter_list(const routine &row, bool named)
{
    if (row.is_valued())
        return valued_parameter_list(row, named);
    std::vector<std::string> parts;
    const auto add = [&](const std::string &type, const std::string &name) {
        parts.push_back(named ? type + name : type);
    };
    for (const argument &each : all_arguments(row))
        add(parameter_type(row, each), each.name);
    if (row.frame.group)
        add("int64_t ", "zero");
    if (row.appends_one())
        add("int32_t ", "one");
    for (const argument &each : row.arguments)
        if (is_character(each))
            add("int64_t ", "length_" + each.name);
    return parts.empty() ? "void" : joined(parts);
}

void print_frames(std::ostream &out, const routines &rows, const std::string &checks_header)
{
    if (rows.front().is_reading())
        return print_reading_frames(out, rows);
    if (!checks_header.empty())
        out << "#include \"" << checks_header << "\"\n";
    out << "#include \"frame/frames.h\"\n#include \"" << rows.front().family << "_frames.h\"\n";
    for (const routine &row : rows) {
        if (row.frame.kind == "own" || row.frame.kind == "entry")
            continue;
        out << "\n// " << row.name << ": " << row.place << ", frame `" << row.frame.kind << "` (src/frame/"
            << row.frame.kind << ".h)\nnamespace {\n";
        print_row(out, row);
        out << "}\n";
        if (row.is_valued())
            print_valued_bodies(out, row);
        else
            print_body(out, row);
        print_aliases(out, row);
    }
}

void print_frame_header(std::ostream &out, const routines &rows)
{
    out << "// Generated from " << rows.front().family
        << "'s tables: bodies and checkers by their own names.\n"
        << "#pragma once\n#include \"" << public_header(rows.front().family) << "\"\n#include \"core_"
        << rows.front().family << ".h\"\nextern \"C\" {\n";
    for (const routine &row : rows) {
        if (body_symbol(row) != public_spellings(row).front())
            out << "decltype(" << row.lower() << ") " << body_symbol(row) << ";\n";
        if (row.has_checker())
            out << "int64_t " << checker(row) << "(" << core_parameter_list(row) << ");\n";
    }
    out << "}\n";
}

namespace {

/// The parameters of a forwarder whose values come as they are, or through addresses.
std::string forward_parameters(const routine &row, bool by_value)
{
    std::vector<std::string> parts;
    for (const argument &each : row.arguments)
        parts.push_back(
            (by_value && is_service_value(each) ? value_type(each) : type_of(each, row.element)) +
            each.name);
    return parts.empty() ? "void" : joined(parts);
}

void print_forwarder(std::ostream &out, const routine &row, const std::string &symbol, bool by_value)
{
    std::vector<std::string> passed;
    for (const argument &each : row.arguments)
        passed.push_back(is_service_value(each) && !by_value ? "*" + each.name : each.name);
    out << "extern \"C\" " << c_result(row) << " " << symbol << "(" << forward_parameters(row, by_value)
        << ")\n{\n";
    if (!row.frame.rule.empty())
        out << "    xkl::" << row.frame.rule << "(" << argument_names(row.arguments) << ");\n";
    out << "    return " << core_entry(row) << "(" << joined(passed) << ");\n}\n";
}

} // namespace

void print_forwarders(std::ostream &out, const routines &rows)
{
    out << "#include \"core_service.h\"\n#include \"service/exit.h\"\n#include \"xkl_service.h\"\n";
    for (const routine &row : rows) {
        if (row.frame.kind == "own")
            continue;
        out << "\n// " << row.name << ": " << row.place << "\n";
        if (row.frame.kind == "forward") {
            print_forwarder(out, row, body_symbol(row), false);
            print_aliases(out, row);
        }
        if (!mixed_body(row).empty())
            print_forwarder(out, row, mixed_body(row), true);
    }
}

} // namespace tablegen
