// Prints the FFTW3 interface: its definitions, its C header and its Fortran includes.
#include "fftw_printers.h"

#include <ostream>

namespace tablegen {
namespace {

std::string c_parameters(const fftw_routine &row, const fftw_family &family)
{
    std::string text;
    for (const argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + fftw_spelled(fftw_kind_named(each.kind).c, family) + each.name;
    return text.empty() ? "void" : text;
}

std::string c_prototype(const fftw_routine &row, const fftw_family &family)
{
    const std::string result =
        row.result == "-" ? "void " : fftw_spelled(fftw_kind_named(row.result).c, family);
    return result + family.prefix + row.name + "(" + c_parameters(row, family) + ")";
}

std::string names_of(const std::vector<argument> &arguments)
{
    std::string text;
    for (const argument &each : arguments)
        text += (text.empty() ? "" : ", ") + each.name;
    return text;
}

/// The values in arrays of their own, one for lengths and one for kinds that follow each other, and the number of
/// lengths first.
std::string in_arrays(const std::vector<argument> &arguments, const std::vector<std::string> &values)
{
    size_t lengths = 0;
    std::string text, before;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string &kind = arguments[i].kind;
        const bool gathered = kind == "length" || kind == "kind";
        const bool last = i + 1 == arguments.size() || arguments[i + 1].kind != kind;
        lengths += kind == "length";
        text += text.empty() ? "" : ", ";
        text += (gathered && kind != before ? "xkl::fftw::in_a_row{" : "") + values[i] +
                (gathered && last ? "}.numbers()" : "");
        before = kind;
    }
    return (lengths ? std::to_string(lengths) + ", " : "") + text;
}

/// A call of the routine's template; of that for any number of dimensions, if their lengths are given one by one.
/// Pointers come back from it without their type.
std::string call_of(const fftw_routine &row, const fftw_family &family, const std::string &name,
                    const std::vector<std::string> &values)
{
    const bool one_by_one = !row.arguments.empty() && row.arguments.front().kind == "length";
    const std::string call = "xkl::fftw::" + (one_by_one ? name.substr(0, name.rfind('_')) : name) + "<" +
                             family.real + ">(" + in_arrays(row.arguments, values) + ")";
    if (row.result == "-" || row.result == "int" || row.result == "double")
        return call;
    std::string type = fftw_spelled(fftw_kind_named(row.result).c, family);
    while (type.ends_with(" "))
        type.pop_back();
    return "static_cast<" + type + ">(" + call + ")";
}

void print_c_frame(std::ostream &out, const fftw_routine &row, const fftw_family &family)
{
    std::vector<std::string> values;
    for (const argument &each : row.arguments)
        values.push_back(each.name);
    out << "\n"
        << c_prototype(row, family) << "\n{\n    " << (row.result == "-" ? "" : "return ")
        << call_of(row, family, row.name, values) << ";\n}\n";
}

/// Dimensions by address have 64 bits: they go to the planner that takes those.
std::string name_handed_to(const fftw_routine &row)
{
    const std::string start = "plan_guru_";
    return row.name.starts_with(start) ? "plan_guru64_" + row.name.substr(start.size()) : row.name;
}

void print_fortran_frame(std::ostream &out, const fftw_routine &row, const fftw_family &family)
{
    std::string parameters;
    for (const argument &each : fftw_by_address(row))
        parameters += (parameters.empty() ? "" : ", ") + fftw_spelled(each.kind, family) + each.name;
    std::vector<std::string> values;
    for (const argument &each : row.arguments)
        values.push_back(fftw_handed_on(each));
    out << "\nvoid " << family.fortran_prefix << row.name << "_(" << parameters << ")\n{\n    "
        << (row.result == "-" ? "" : "*result = ") << call_of(row, family, name_handed_to(row), values)
        << ";\n}\n";
}

/// Breaks a statement of free-form Fortran behind commas.
std::string folded(const std::string &statement)
{
    constexpr size_t width = 120;
    std::string text, line;
    size_t start = 0;
    while (start < statement.size()) {
        size_t end = statement.find(',', start);
        end = end == std::string::npos ? statement.size() : end + 1;
        if (line.size() + end - start > width) {
            text += line + " &\n";
            line = "       ";
        }
        line += statement.substr(start, end - start);
        start = end;
    }
    return text + line + "\n";
}

void print_interface(std::ostream &out, const fftw_routine &row, const fftw_family &family)
{
    const std::string name = family.prefix + row.name;
    const bool function = row.result != "-";
    out << folded(std::string("    ") + (function ? "function " : "subroutine ") + name + "(" +
                  names_of(row.arguments) + ") bind(C, name='" + name + "')")
        << "      import\n";
    if (function) {
        std::string type = fftw_spelled(fftw_kind_named(row.result).fortran, family);
        if (row.result == "reals" || row.result == "pointer" || row.result == "plan")
            type = "type(C_PTR)";
        out << "      " << type.substr(0, type.find(", value")) << " :: " << name << "\n";
    }
    for (const argument &each : row.arguments)
        out << "      " << fftw_spelled(fftw_kind_named(each.kind).fortran, family) << " :: " << each.name
            << "\n";
    out << "    end " << (function ? "function " : "subroutine ") << name << "\n";
}

void print_dimension_type(std::ostream &out, const std::string &name, const char *integer)
{
    out << "  type, bind(C) :: " << name << "\n";
    for (const char *part : {"n", "is", "os"})
        out << "    integer(" << integer << ") :: " << part << "\n";
    out << "  end type " << name << "\n";
}

} // namespace

void print_fftw_frames(std::ostream &out, const fftw_table &table)
{
    out << "#include \"fftw/frames.h\"\n\nextern \"C\" {\n";
    for (const fftw_family &family : fftw_families())
        for (const fftw_routine &row : table.routines) {
            print_c_frame(out, row, family);
            if (row.by_address)
                print_fortran_frame(out, row, family);
        }
    out << "\n} // extern \"C\"\n";
}

void print_fftw_header(std::ostream &out, const fftw_table &table)
{
    out << "/* fftw3_routines.h: constants and routines of fftw3.h, which includes this file. */\n"
           "#ifndef FFTW3_ROUTINES_H\n#define FFTW3_ROUTINES_H\n\n#include \"fftw3.h\"\n\n";
    for (const fftw_constant &each : table.constants)
        if (each.group == "constant")
            out << "/* " << each.about << " */\n#define " << each.name
                << (each.value.starts_with("-") ? " (" + each.value + ")" : " " + each.value)
                << (each.name == "FFTW_FORWARD" || each.name == "FFTW_BACKWARD" ? "" : "U") << "\n";
    out << "\n/* Kinds of transforms of real data. */\ntypedef enum {\n";
    for (const fftw_constant &each : table.constants)
        if (each.group == "kind")
            out << "    " << each.name << " = " << each.value << ", /* " << each.about << " */\n";
    out << "} fftw_r2r_kind;\ntypedef fftw_r2r_kind fftwf_r2r_kind;\n\n"
           "#ifdef __cplusplus\nextern \"C\" {\n#endif\n\n";
    for (const fftw_family &family : fftw_families())
        for (const fftw_constant &each : table.constants)
            if (each.group == "data")
                out << "extern const char " << family.prefix << each.name << "[];\n";
    const std::string *about = nullptr;
    for (const fftw_routine &row : table.routines) {
        if (!about || *about != row.about)
            out << "\n/* " << row.about << ". */\n";
        about = &row.about;
        for (const fftw_family &family : fftw_families())
            out << c_prototype(row, family) << ";\n";
    }
    out << "\n#ifdef __cplusplus\n}\n#endif\n\n#endif\n";
}

void print_fftw_fortran_constants(std::ostream &out, const fftw_table &table)
{
    out << "! fftw3.f: constants for the routines dfftw_... and sfftw_..., in fixed or free form. They "
           "take 64-bit\n"
           "! integers, so these are some, whatever the options of the compiler; plans are 64-bit integers "
           "too.\n";
    for (const fftw_constant &each : table.constants)
        if (each.group != "data")
            out << "      integer*8 " << each.name << "\n      parameter (" << each.name << "="
                << each.value << ")\n";
}

void print_fftw_fortran(std::ostream &out, const fftw_table &table)
{
    out << "! fftw3.f03: explicit interfaces of the C routines, for include behind\n"
           "! `use, intrinsic :: iso_c_binding`. The module xkl_fftw3 includes it.\n"
           "  integer, parameter :: C_FFTW_R2R_KIND = C_INT32_T\n";
    for (const fftw_constant &each : table.constants)
        if (each.group != "data")
            out << "  integer(C_INT), parameter :: " << each.name << " = " << each.value << "\n";
    for (const fftw_family &family : fftw_families()) {
        print_dimension_type(out, family.prefix + "iodim", "C_INT");
        print_dimension_type(out, family.prefix + "iodim64", "C_INTPTR_T");
    }
    out << "  interface\n";
    for (const fftw_family &family : fftw_families())
        for (const fftw_routine &row : table.routines)
            print_interface(out, row, family);
    out << "  end interface\n";
}

} // namespace tablegen
