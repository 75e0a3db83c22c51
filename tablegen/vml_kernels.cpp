// Kernels: their providers, the file for each of their headers, and the tables over all of them.
#include "vml_kernels.h"

#include "table_lines.h"
#include "vml_printers.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <sstream>

namespace tablegen {
namespace {

constexpr const char *instruction_sets[] = {"sse2", "avx2", "avx512"};

/// 1.5 for s: singles are half as wide, so twice as many go through at a time
std::string cost(const table_line &row, const std::string &text, char element)
{
    char *end = nullptr;
    const double nanoseconds = std::strtod(text.c_str(), &end);
    if (end == text.c_str() || *end || nanoseconds <= 0)
        row.fail("`" + text + "` is no cost; write nanoseconds an element, as 1.5");
    std::ostringstream out;
    out << (vml_real_letter(element) == 's' ? nanoseconds / 2 : nanoseconds);
    return out.str();
}

vml_kernel kernel_of_row(const table_line &row, char element, const std::vector<vml_function> &functions)
{
    const auto found = std::ranges::find_if(functions, [&](const vml_function &each) {
        return each.name == row.columns[0] && each.element == element;
    });
    if (found == functions.end())
        row.fail(std::string("the table has no function ") + element + row.columns[0]);
    vml_kernel result{&*found, row.columns[2], {}};
    const std::vector<std::string> costs = parts_of(row.columns[3], ',');
    if (costs.size() != std::size(result.cost))
        row.fail("a cost has three numbers: SSE2,AVX2,AVX-512");
    std::ranges::transform(costs, std::begin(result.cost),
                           [&](const std::string &each) { return cost(row, each, element); });
    return result;
}

const vml_kernel *kernel_of(const vml_function &function, const std::vector<vml_kernel> &kernels)
{
    const auto found =
        std::ranges::find_if(kernels, [&](const vml_kernel &each) { return each.function == &function; });
    return found == kernels.end() ? nullptr : &*found;
}

/// In kernels a complex element is complex<double>, and it is known by its instruction set.
std::string in_namespace(std::string type)
{
    for (const auto &[ours, theirs] :
         {std::pair{"XKL_Complex8", "complex<float>"}, {"XKL_Complex16", "complex<double>"}})
        if (const auto at = type.find(ours); at != std::string::npos)
            type.replace(at, std::string(ours).size(), theirs);
    return type;
}

std::vector<vml_argument> kernel_arguments(const vml_form &form)
{
    std::vector<vml_argument> list = vml_kernel_arguments(form);
    const bool pack = form.function->kind == vml_class::pack;
    list.insert(list.begin(), {pack ? "int64_t " : "int32_t ", "n"});
    if (pack)
        list.push_back({"int ", "reserved"});
    for (vml_argument &each : list)
        each.type = in_namespace(each.type);
    return list;
}

std::string parameter_types(const vml_form &form)
{
    std::string text;
    for (const vml_argument &each : kernel_arguments(form))
        text += (text.empty() ? "" : ", ") + each.type;
    return text;
}

/// `argument<double>{a, inca}, `
std::string bound(const char *wrapper, const std::string &type, std::initializer_list<const char *> vectors,
                  std::initializer_list<const char *> increments, bool strided)
{
    std::string text;
    for (const char *each : vectors)
        text += (text.empty() ? "" : ", ") + std::string(each);
    if (strided)
        for (const char *each : increments)
            text += ", " + std::string(each);
    return std::string(wrapper) + "<" + type + ">{" + text + "}";
}

/// What a kernel does: the call of the rule for its form.
std::string kernel_body(const vml_form &form)
{
    using enum vml_class;
    const vml_function &function = *form.function;
    const std::string own = in_namespace(vml_type(function.element)),
                      real = vml_type(vml_real_letter(function.element));
    if (function.kind == pack)
        return vml_kernel_template(function) + "(n, " + vml_passed(vml_kernel_arguments(form)) + ")";
    const std::string in = function.kind == to_complex ? real : own,
                      out = function.kind == to_real ? real : own;
    const bool strided = form.strided;
    const std::string scalars = function.kind == linear_frac ? "scalea, shifta, scaleb, shiftb"
                                : function.kind != scalar    ? ""
                                : function.is_complex()      ? "*scalar"
                                                             : "scalar";
    std::string text = (strided ? "strided(" : "contiguous(") + vml_kernel_template(function) + "<" + real +
                       ">{" + scalars + "}, \"v" + form.name() + "\", n, ";
    text += function.kind == one_in_two_out
                ? bound("two_results", out, {"r1", "r2"}, {"inc1", "inc2"}, strided)
                : bound("one_result", out, {"r"}, {"incr"}, strided);
    text += ", " + bound("argument", in, {"a"}, {"inca"}, strided);
    if (function.kind == two_in_one_out || function.kind == linear_frac)
        text += ", " + bound("argument", in, {"b"}, {"incb"}, strided);
    return text + ")";
}

const char *class_name(vml_class kind)
{
    constexpr const char *names[] = {"one_in_one_out", "two_in_one_out", "one_in_two_out", "scalar",
                                     "linear_frac",    "to_real",        "to_complex",     "pack"};
    return names[static_cast<int>(kind)];
}

/// A form's kernels and costs; without a kernel, a stand-in that names itself.
void print_table(std::ostream &out, const vml_form &form, const vml_kernel *by)
{
    const std::string name = form.name(), missing = "missing_" + name, types = parameter_types(form);
    std::string codes, costs;
    for (int set = 0; set < 3; ++set) {
        codes += (set ? ", " : "") + (by ? std::string(instruction_sets[set]) + "::" + name : missing);
        costs += (set ? ", " : "") + (by ? by->cost[set] : "1");
    }
    out << "\n// " << form.function->place << "\n";
    if (!by)
        out << "static void " << missing << "(" << types << ")\n{\n    missing_kernel(\"" << name
            << "\");\n}\n";
    const std::string table = "xkl_" + name + "_kernel *const xkl_vml_kernel_" + name + "_ttab[3]",
                      costs_table = "const float xkl_vml_kernel_" + name + "_ctab[3]";
    out << "extern \"C\" {\nusing xkl_" << name << "_kernel = void(" << types << ");\nextern " << table
        << ";\nextern " << costs_table << ";\nconstinit " << table << " = {" << codes << "};\nconstinit "
        << costs_table << " = {" << costs << "};\n}\n";
}

} // namespace

std::string vml_kernel_template(const vml_function &function)
{
    const std::string name = to_lower(function.name);
    if (function.kind == vml_class::pack)
        return name;
    return (function.is_complex() ? "complex_" : "") + name + "_function";
}

std::vector<vml_kernel> read_vml_kernels(const std::string &file,
                                         const std::vector<vml_function> &functions)
{
    std::vector<vml_kernel> kernels;
    for (const table_line &row : read_lines(file)) {
        if (row.columns.size() != 4)
            row.fail("a row has the columns name, types, header and cost");
        for (const std::string &type : parts_of(row.columns[1], ',')) {
            const vml_kernel kernel = kernel_of_row(row, type.size() == 1 ? type[0] : '?', functions);
            if (kernel_of(*kernel.function, kernels))
                row.fail(vml_form{kernel.function}.name() + " has a kernel already");
            kernels.push_back(kernel);
        }
    }
    return kernels;
}

void print_vml_kernels(std::ostream &out, const vml_functions &functions,
                       const std::vector<vml_kernel> &kernels, const std::string &header)
{
    out << "#include \"" << header << ".h\" // named by the kernels' providers.tbl\n\n"
        << "namespace xkl::kernels {\ninline namespace XKL_ISA {\n";
    bool found = false;
    for (const vml_form &form : vml_forms(functions)) {
        const vml_kernel *by = kernel_of(*form.function, kernels);
        if (!by || by->header != header)
            continue;
        found = true;
        std::string parameters = vml_declared(kernel_arguments(form));
        if (form.function->kind == vml_class::pack)
            parameters.resize(parameters.size() - std::string(" reserved").size()); // unused
        out << "\n// " << form.name() << ": " << form.function->place << "\nvoid " << form.name() << "("
            << parameters << ")\n{\n    " << kernel_body(form) << ";\n}\n";
    }
    out << "\n}\n}\n";
    if (!found)
        throw table_error("no kernel's provider is `" + header + "`");
}

void print_vml_kernel_tables(std::ostream &out, const vml_functions &functions,
                             const std::vector<vml_kernel> &kernels)
{
    const std::vector<vml_form> forms = vml_forms(functions);
    out << "#include \"complex.h\"\n#include \"missing_kernel.h\"\n\n#include <cstdint>\n\n"
        << "namespace xkl::kernels {\n";
    for (const char *set : instruction_sets) {
        out << "namespace " << set << " {\n";
        for (const vml_form &form : forms)
            if (kernel_of(*form.function, kernels))
                out << "void " << form.name() << "(" << parameter_types(form) << ");\n";
        out << "}\n";
    }
    out << "}\n\nusing namespace xkl::kernels;\n#pragma GCC visibility push(default)\n";
    for (const vml_form &form : forms)
        print_table(out, form, kernel_of(*form.function, kernels));
    out << "\n#pragma GCC visibility pop\n";
}

void print_vml_kernel_rows(std::ostream &out, const vml_functions &functions,
                           const std::vector<vml_kernel> &kernels)
{
    out << "#include \"kernel_rows.h\"\n\nconst kernel_row kernel_rows[] = {\n";
    int count = 0;
    for (const vml_form &form : vml_forms(functions)) {
        if (!kernel_of(*form.function, kernels))
            continue;
        ++count;
        out << "    {\"" << form.name() << "\", '" << form.function->element
            << "', kernel_class::" << class_name(form.function->kind) << ", "
            << (form.strided ? "true" : "false") << "},\n";
    }
    out << "};\nconst int kernel_row_count = " << count << ";\n";
}

} // namespace tablegen
