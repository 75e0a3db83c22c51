// The C interface of BLAS: its argument lists follow from the Fortran rows, its steps from the shape
// templates.
#include "kinds.h"
#include "names.h"
#include "printers.h"

#include <ostream>
#include <set>

namespace tablegen {
namespace {

/// Vector routines have no matrix and so no layout.
bool has_layout(const shaped &row)
{
    static const std::set<std::string> vector_shapes = {"level1",
                                                        "index",
                                                        "dot_sub",
                                                        "axpy_batch",
                                                        "axpy_batch_strided",
                                                        "copy_batch",
                                                        "copy_batch_strided"};
    return !vector_shapes.contains(row.shape);
}

std::string element_type(char element)
{
    switch (element) {
    case 'S':
        return "float";
    case 'D':
        return "double";
    case 'C':
        return "XKL_Complex8";
    case 'Z':
        return "XKL_Complex16";
    default:
        return "void";
    }
}

std::string spaced(const std::string &type)
{
    return type.ends_with('*') || type.ends_with(' ') ? type : type + " ";
}

void print_body(std::ostream &out, const shaped &row, const std::string &suffix)
{
    const std::string name = cblas_name(row) + suffix;
    out << "extern \"C\" " << c_result(*row.base) << " " << name << "(" << cblas_parameter_list(row)
        << ")\n{\n"
        << "    return xkl::cblas::" << row.shape << "<" << name << "_row>("
        << argument_names(cblas_arguments(row)) << ");\n}\n";
}

} // namespace

std::string cblas_name(const shaped &row)
{
    return "cblas_" + row.base->lower() + (row.shape == "dot_sub" ? "_sub" : "");
}

std::vector<argument> cblas_arguments(const shaped &row)
{
    std::vector<argument> arguments = row.base->arguments;
    if (has_layout(row))
        arguments.insert(arguments.begin(), {"layout", "=CBLAS_LAYOUT", false});
    if (row.shape == "dot_sub")
        arguments.push_back({"result", "t", true});
    return arguments;
}

std::string cblas_parameter_list(const shaped &row)
{
    std::string text;
    for (const argument &each : cblas_arguments(row)) {
        const std::string type =
            each.kind.starts_with("=") ? c_type(each, 0) : cblas_type(each, row.base->element);
        text += (text.empty() ? "" : ", ") + spaced(type) + each.name;
    }
    return text;
}

void print_shapes(std::ostream &out, const std::vector<shaped> &rows)
{
    out << "#include \"blas_frames.h\"\n#include \"cblas/shapes.h\"\n#include \"xkl_cblas.h\"\n";
    for (const shaped &row : rows) {
        const std::string name = cblas_name(row);
        out << "\n// " << name << ": " << row.place << " over " << row.base->place << ", shape `"
            << row.shape << "` (src/cblas)\nnamespace {\nstruct " << name << "_row {\n"
            << "    [[maybe_unused]] static constexpr char name[] = " << quoted(name) << ";\n"
            << "    using element = " << element_type(row.base->element) << ";\n"
            << "    [[maybe_unused]] static constexpr auto &core = " << core_entry(*row.base) << ";\n"
            << "    [[maybe_unused]] static constexpr auto &frame = " << body_symbol(*row.base) << ";\n};\n"
            << "struct " << name << "_64_row : " << name
            << "_row {\n    [[maybe_unused]] static constexpr auto &frame = " << row.base->lower()
            << "_64;\n};\n}\n";
        print_body(out, row, "");
        print_body(out, row, "_64");
    }
}

} // namespace tablegen
