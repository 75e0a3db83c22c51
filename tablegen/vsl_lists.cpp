// Exported names of random streams and tasks, and what their tests stand on: rows to walk, and kernels that
// record.
#include "vsl_printers.h"

#include <ostream>

namespace tablegen {
namespace {

/// `a:real b:real:above<0>`
std::string described(const vsl_routine &row)
{
    std::string text;
    for (const vsl_argument &each : row.arguments)
        text += (text.empty() ? "" : " ") + each.name + ":" + each.kind +
                (each.check.empty() ? "" : ":" + each.check);
    return text;
}

void print_kernel(std::ostream &out, const vsl_routine &row)
{
    std::string parameters, words;
    int serial = 0;
    const auto add = [&](const std::string &type) {
        const std::string name = "a" + std::to_string(serial++);
        parameters += (parameters.empty() ? "" : ", ") + type + name;
        words += (words.empty() ? "word(" : ", word(") + name + ")";
    };
    for (const vsl_argument &each : row.list())
        for (const std::string &type : vsl_kernel_types(each, row.element))
            add(type);
    out << "\nextern \"C\" int32_t " << row.kernel << "(" << parameters << ")\n{\n    record(\""
        << row.kernel << "\", {" << words << "});\n    return next_status();\n}\n";
}

} // namespace

std::set<std::string> vsl_exported_names(const vsl_routines &routines)
{
    std::set<std::string> names;
    for (const vsl_routine &row : routines) {
        names.insert(row.name);
        if (!row.other.empty())
            names.insert(row.other);
        for (const std::string &name : vsl_fortran_names(row))
            names.insert(name);
    }
    return names;
}

void print_vsl_test_rows(std::ostream &out, const vsl_routines &routines)
{
    static const char *const frames[] = {"generate", "stream", "task", "own"};
    out << "#include \"vsl_rows.h\"\n\nconst vsl_row vsl_rows[] = {\n";
    for (const vsl_routine &row : routines)
        out << "    {\"" << row.name << "\", \"" << row.other << "\", \"" << row.kernel << "\", "
            << (row.element ? "'" + std::string(1, row.element) + "'" : "'-'") << ", \""
            << frames[static_cast<int>(row.is)] << "\", " << row.methods << ", "
            << (row.accurate ? "true" : "false") << ", \"" << described(row) << "\"},\n";
    out << "};\nconst int vsl_row_count = " << routines.size() << ";\n";
}

void print_vsl_recording_kernels(std::ostream &out, const vsl_routines &routines)
{
    out << "#include \"recorder.h\"\n#include \"vml_recorder.h\"\n#include \"vsl_recorder.h\"\n"
        << "#include \"xkl_vsl_types.h\"\n";
    for (const vsl_routine &row : vsl_kernels(routines))
        print_kernel(out, row);
}

} // namespace tablegen
