// The threaders, their prototypes, and the kernel library's tables.
#include "vml_printers.h"

#include <ostream>
#include <set>

namespace tablegen {
namespace {

/// `strided_vector{a, inca}, one_scalar{b}`: every vector with its increment, and told from addresses of
/// scalars
std::string wrapped_arguments(const vml_form &form)
{
    std::string text;
    for (const vml_argument &each : vml_kernel_arguments(form)) {
        if (each.is == vml_argument::role::increment) {
            text.insert(text.size() - 1, ", " + each.name);
            continue;
        }
        const char *wrapper = each.is == vml_argument::role::scalar ? "one_scalar"
                              : form.strided                        ? "strided_vector"
                                                                    : "plain_vector";
        text += (text.empty() ? "" : ", ") + std::string(wrapper) + "{" + each.name + "}";
    }
    return text;
}

} // namespace

std::vector<vml_form> vml_one_form_each_threader(const vml_functions &functions)
{
    std::vector<vml_form> chosen;
    std::set<std::string> seen;
    for (const vml_form &form : vml_forms(functions))
        if (form.function->kind != vml_class::pack && seen.insert(vml_threader(form)).second)
            chosen.push_back(form);
    return chosen;
}

std::string vml_threader_prototype(const vml_form &form)
{
    return "void " + vml_threader(form) + "(const void *kernel, int32_t count, " +
           vml_declared(vml_kernel_arguments(form)) + ", void *library, float cost)";
}

void print_vml_core_header(std::ostream &out, const vml_functions &functions)
{
    out << "// The vector math threaders: what the interface library imports from its core.\n"
        << "#pragma once\n#include \"xkl_types.h\"\n#pragma GCC visibility push(default)\nextern \"C\" {\n";
    for (const vml_form &form : vml_one_form_each_threader(functions))
        out << vml_threader_prototype(form) << ";\n";
    out << "}\n#pragma GCC visibility pop\n";
}

void print_vml_threaders(std::ostream &out, const vml_functions &functions)
{
    out << "#include \"core_vml.h\"\n#include \"vml/threader.h\"\n\nusing namespace xkl::core;\n";
    for (const vml_form &form : vml_one_form_each_threader(functions))
        out << "\nextern \"C\" " << vml_threader_prototype(form)
            << "\n{\n    thread_vector(kernel, count, library, cost, " << wrapped_arguments(form)
            << ");\n}\n";
}

} // namespace tablegen
