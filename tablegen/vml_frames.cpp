// The interface library's side of vector math: tables, entry points, and the operations on mode, status
// and callback.
#include "vml_printers.h"

#include <ostream>

namespace tablegen {
namespace {

/// The pointers to a form's tables under the names that these have in the kernel library.
void print_tables(std::ostream &out, const vml_form &form)
{
    const std::string name = form.name(), symbol = "xkl_vml_kernel_" + name;
    const std::string hidden = "[[gnu::visibility(\"hidden\")]] constinit ";
    out << "extern \"C\" {\n"
        << hidden << "fetched<const kernel_code> " << symbol << "_ttab{nullptr};\n"
        << hidden << "fetched<const float> " << symbol << "_ctab{nullptr};\n}\n"
        << "namespace {\nnamespace " << name << " {\n"
        << "constinit fetched<index_of_class> func_adr1{nullptr};\n"
        << "constexpr kernel_tables tables{" << symbol << "_ttab, " << symbol << "_ctab, func_adr1,\n"
        << "                               \"" << vml_reported_name(form) << "\", \""
        << vml_reported_name(form) << "_64\"};\n"
        << "using function_class = " << vml_frame_class(form) << ";\n}\n}\n";
}

void print_alias(std::ostream &out, const vml_entry &entry)
{
    out << "decltype(" << entry.body << ") " << entry.name << " __attribute__((alias(\"" << entry.body
        << "\")));\n";
}

void print_entry(std::ostream &out, const vml_form &form, const vml_entry &entry)
{
    if (entry.body != entry.name)
        return print_alias(out, entry);
    out << "void " << entry.name << "(" << vml_declared(vml_entry_arguments(form, entry))
        << ")\n{\n    frame" << (entry.wide ? "_64" : "") << (entry.in_mode ? "_in_mode" : "") << "<"
        << form.name() << "::function_class>(" << form.name() << "::tables, "
        << (entry.in_mode ? "mode, " : "") << vml_passed(vml_public_arguments(form)) << ");\n}\n";
}

/// `static_cast<int32_t>(status)`, `*status`, `callback`
std::string handed_on(const vml_setting &setting, const vml_entry &entry)
{
    if (setting.argument.empty() || setting.argument == "callback")
        return setting.argument;
    if (entry.fortran)
        return "*" + setting.argument;
    return std::string("static_cast<") + (setting.argument == "mode" ? "uint32_t" : "int32_t") + ">(" +
           setting.argument + ")";
}

} // namespace

void print_vml_frames(std::ostream &out, const vml_functions &functions, const std::string &types)
{
    out << "#include \"core_vml.h\"\n#include \"vml/frames.h\"\n#include \"xkl_vml.h\"\n\n"
        << "using namespace xkl::vml;\n";
    for (const vml_form &form : vml_forms(functions)) {
        if (types.find(form.function->element) == std::string::npos)
            continue;
        out << "\n// " << form.name() << ": " << form.function->place << "\n";
        print_tables(out, form);
        out << "extern \"C\" {\n";
        for (const vml_entry &entry : vml_entries(form))
            print_entry(out, form, entry);
        out << "}\n";
    }
}

void print_vml_settings(std::ostream &out, const std::vector<vml_setting> &settings)
{
    out << "#include \"vml/settings.h\"\n#include \"xkl_vml.h\"\n";
    for (const vml_setting &setting : settings) {
        out << "\nstatic constinit xkl::vml::setting<" << vml_setting_operation(setting) << "> "
            << setting.name << "{\"xkl_vml_kernel_" << setting.name << "\"};\nextern \"C\" {\n";
        for (const vml_entry &entry : vml_setting_entries(setting)) {
            if (entry.body != entry.name)
                print_alias(out, entry);
            else
                out << vml_setting_result(setting, entry) << entry.name << "("
                    << vml_setting_parameter(setting, entry) << ")\n{\n    return " << setting.name << "("
                    << handed_on(setting, entry) << ");\n}\n";
        }
        out << "}\n";
    }
}

} // namespace tablegen
