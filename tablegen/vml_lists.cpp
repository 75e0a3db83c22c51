// Exported names of vector math, and what its tests and measurements stand on: rows to walk, a core whose
// threaders record or do nothing, and a kernel library whose kernels are marks.
#include "vml_printers.h"

#include <ostream>

namespace tablegen {
namespace {

/// A word for each argument, whatever its type: `word(kernel), word(count)`.
std::string words(const std::vector<vml_argument> &arguments)
{
    std::string text;
    for (const vml_argument &each : arguments)
        text += (text.empty() ? "word(" : ", word(") + each.name + ")";
    return text;
}

void print_recording_pack(std::ostream &out, const vml_form &form, int index)
{
    const std::string name = form.name() + "_" + std::to_string(index);
    std::vector<vml_argument> arguments = vml_kernel_arguments(form);
    arguments.insert(arguments.begin(), {"int64_t ", "n"});
    arguments.push_back({"int ", "last"});
    out << "static void " << name << "(" << vml_declared(arguments) << ")\n{\n    record(\"" << name
        << "\", {" << words(arguments) << "});\n}\n";
}

} // namespace

std::set<std::string> vml_exported_names(const vml_functions &functions,
                                         const std::vector<vml_setting> &settings)
{
    std::set<std::string> names;
    for (const vml_form &form : vml_forms(functions))
        for (const vml_entry &entry : vml_entries(form))
            names.insert(entry.name);
    for (const vml_setting &setting : settings)
        for (const vml_entry &entry : vml_setting_entries(setting))
            names.insert(entry.name);
    return names;
}

void print_vml_test_rows(std::ostream &out, const vml_functions &functions)
{
    const std::vector<vml_form> forms = vml_forms(functions);
    out << "#include \"vml_rows.h\"\n\nconst vml_row vml_rows[] = {\n";
    for (const vml_form &form : forms)
        out << "    {\"" << form.name() << "\", \"" << form.function->name << "\", '"
            << form.function->element << "', \"" << vml_class_name(form.function->kind) << "\", "
            << (form.strided ? "true" : "false") << "},\n";
    out << "};\nconst int vml_row_count = " << forms.size() << ";\n";
}

void print_vml_recording_core(std::ostream &out, const vml_functions &functions)
{
    out << "#include \"core_vml.h\"\n#include \"recorder.h\"\n#include \"vml_recorder.h\"\n";
    for (const vml_form &form : vml_one_form_each_threader(functions))
        out << "\nextern \"C\" " << vml_threader_prototype(form) << "\n{\n    record(\""
            << vml_threader(form) << "\", {word(kernel), word(count), " << words(vml_kernel_arguments(form))
            << ", word(library), word(cost)});\n}\n";
}

void print_vml_null_core(std::ostream &out, const vml_functions &functions)
{
    for (const vml_form &form : vml_one_form_each_threader(functions))
        out << "void " << vml_threader(form) << "(void) {}\n";
}

void print_vml_recording_kernels(std::ostream &out, const vml_functions &functions)
{
    out << "#include \"recorder.h\"\n#include \"vml_recorder.h\"\n#include \"xkl_types.h\"\n";
    int serial = 0;
    for (const vml_form &form : vml_forms(functions)) {
        const std::string name = form.name(), symbol = "xkl_vml_kernel_" + name;
        std::string codes, costs;
        out << "\n";
        for (int index = 0; index < 3; ++index) {
            const bool pack = form.function->kind == vml_class::pack;
            if (pack)
                print_recording_pack(out, form, index);
            codes += (index ? ", " : "") +
                     (pack ? "reinterpret_cast<const void *>(&" + name + "_" : "\"" + name + " ") +
                     std::to_string(index) + (pack ? ")" : "\"");
            costs += (index ? ", " : "") + std::to_string(3 * serial + index);
        }
        out << "extern \"C\" {\nextern const void *const " << symbol << "_ttab[3];\nextern const float "
            << symbol << "_ctab[3];\nconst void *const " << symbol << "_ttab[3] = {" << codes
            << "};\nconst float " << symbol << "_ctab[3] = {" << costs << "};\n}\n";
        ++serial;
    }
}

} // namespace tablegen
