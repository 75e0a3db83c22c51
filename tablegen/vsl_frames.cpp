// The bodies of random streams' and tasks' routines: rows as types, and calls of the frames.
#include "vsl_printers.h"

#include <ostream>

namespace tablegen {
namespace {

std::string passed(const std::vector<vsl_argument> &arguments)
{
    std::string text;
    for (const vsl_argument &each : arguments)
        text += (text.empty() ? "" : ", ") + each.name;
    return text;
}

/// The index of the argument that tells how many elements a number has, or none.
int width_of(const vsl_routine &row)
{
    for (std::size_t i = 0; i < row.arguments.size(); ++i)
        if (row.arguments[i].width)
            return static_cast<int>(i);
    return -1;
}

bool creates_by_identifier(const vsl_routine &row)
{
    for (const vsl_argument &each : row.arguments)
        if (each.kind == "brng")
            return true;
    return false;
}

void print_row(std::ostream &out, const vsl_routine &row)
{
    std::string classes;
    for (const vsl_argument &each : row.arguments)
        classes += (classes.empty() ? "" : ", ") + vsl_argument_class(each);
    out << "namespace {\nstruct " << row.name << "_row {\n    static constexpr char name[] = \"" << row.name
        << "\", kernel_name[] = \"" << row.kernel << "\",\n                          format[] = \""
        << vsl_trace_format(row) << "\";\n    using parameters = arguments<" << classes << ">;\n";
    if (row.is == vsl_routine::frame::generate)
        out << "    static constexpr uint64_t methods = " << row.methods
            << ";\n    static constexpr bool accurate = " << (row.accurate ? "true" : "false")
            << ";\n    static constexpr int width = " << width_of(row) << ";\n";
    else
        out << "    static constexpr bool creates = " << (creates_by_identifier(row) ? "true" : "false")
            << ";\n";
    out << "    static inline constinit fetched<void> kernel{nullptr};\n"
        << "    static inline constinit verbose_flag flag;\n};\n}\n";
}

void print_body(std::ostream &out, const vsl_routine &row)
{
    const bool generates = row.is == vsl_routine::frame::generate;
    out << "extern \"C\" {\nint32_t " << row.name << "(" << vsl_declared(row.list(), row.element)
        << ")\n{\n    return " << (generates ? "generate<" : "stream_routine<") << row.name << "_row>("
        << passed(row.list()) << ");\n}\n";
    if (!row.other.empty())
        out << "decltype(" << row.name << ") " << row.other << " __attribute__((alias(\"" << row.name
            << "\")));\n";
    out << "}\n";
}

/// `task, *mode, xshape`: values through their addresses.
std::string read_through(const vsl_routine &row)
{
    std::string text;
    for (const vsl_argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + std::string(vsl_is_value(each) ? "*" : "") + each.name;
    return text;
}

std::string by_address(const vsl_routine &row)
{
    std::string text;
    for (const vsl_argument &each : row.arguments)
        text += (text.empty() ? "" : ", ") + vsl_address_type(each, row.element) + each.name;
    return text;
}

} // namespace

std::string vsl_declared(const std::vector<vsl_argument> &arguments, char element)
{
    std::string text;
    for (const vsl_argument &each : arguments)
        text += (text.empty() ? "" : ", ") + vsl_c_type(each, element) + each.name;
    return text.empty() ? "void" : text;
}

void print_vsl_frames(std::ostream &out, const vsl_routines &routines)
{
    out << "#include \"vsl/frames.h\"\n#include \"xkl_vsl.h\"\n\nusing namespace xkl;\nusing namespace "
           "xkl::vsl;\n";
    for (const vsl_routine &row : routines) {
        if (row.is != vsl_routine::frame::generate && row.is != vsl_routine::frame::stream)
            continue;
        out << "\n// " << row.place << "\n";
        print_row(out, row);
        print_body(out, row);
    }
}

void print_vsl_tasks(std::ostream &out, const vsl_routines &routines)
{
    out << "#include \"vsl/tasks.h\"\n#include \"xkl_vsl.h\"\n\nusing namespace xkl::vsl;\n";
    for (const vsl_routine &row : routines) {
        if (row.is != vsl_routine::frame::task)
            continue;
        const std::string rule =
            row.rule + (row.element ? "<task_kind::" + row.task_kind + ", '" + row.element + "'>" : "");
        const std::vector<std::string> fortran = vsl_fortran_names(row);
        out << "\n// " << row.place << "\nextern \"C\" {\nint32_t " << row.name << "("
            << vsl_declared(row.arguments, row.element) << ")\n{\n    return " << rule << "("
            << passed(row.arguments) << ");\n}\nint32_t " << fortran[0] << "(" << by_address(row)
            << ")\n{\n    return " << rule << "(" << read_through(row) << ");\n}\n";
        for (std::size_t i = 1; i < fortran.size(); ++i)
            out << "decltype(" << fortran[0] << ") " << fortran[i] << " __attribute__((alias(\""
                << fortran[0] << "\")));\n";
        out << "}\n";
    }
}

} // namespace tablegen
