// Names and argument lists of vector math's entry points.
#include "vml_entries.h"

#include "table_lines.h"

#include <algorithm>
#include <map>

namespace tablegen {
namespace {

/// `const double *` for `double `; addresses stay.
std::string by_address(const std::string &type)
{
    return type.ends_with('*') ? type : "const " + type + "*";
}

std::string to_upper(std::string text)
{
    for (char &each : text)
        if (each >= 'a' && each <= 'z')
            each = static_cast<char>(each - 'a' + 'A');
    return text;
}

/// The two Fortran spellings of a C name: vdexp_64_, and VDEXP_64_ with the same body.
void add_fortran(std::vector<vml_entry> &entries, const vml_entry &c, const std::string &body)
{
    const std::string lower = to_lower(c.name) + "_";
    for (const std::string &name : {lower, to_upper(lower)})
        entries.push_back({name, body.empty() ? lower : body, true, c.in_mode, c.wide});
}

/// What a kind of setting is in C: as an argument by value, as a 32-bit result, widened.
struct setting_type {
    std::string argument, narrow, wide;
    bool is_value() const { return narrow != wide; }
};

const setting_type &type_of(const std::string &kind)
{
    static const std::map<std::string, setting_type> all = {
        {"status", {"int64_t ", "int32_t ", "int64_t "}},
        {"mode", {"uint64_t ", "uint32_t ", "uint64_t "}},
        {"callback", {"xkl_vml_error_callback ", "xkl_vml_error_callback ", "xkl_vml_error_callback "}}};
    return all.at(kind);
}

bool is_kind(const std::string &word)
{
    return word == "status" || word == "mode" || word == "callback";
}

} // namespace

std::string vml_reported_name(const vml_form &form)
{
    return "v" + form.name();
}

std::vector<vml_entry> vml_entries(const vml_form &form)
{
    std::vector<vml_entry> entries;
    for (const bool in_mode : {false, true})
        for (const bool wide : {false, true}) {
            const std::string name = (in_mode ? "vm" : "v") + form.name() + (wide ? "_64" : "");
            const vml_entry c{name, name, false, in_mode, wide};
            entries.push_back(c);
            add_fortran(entries, c, "");
        }
    return entries;
}

std::vector<vml_argument> vml_public_arguments(const vml_form &form)
{
    std::vector<vml_argument> list = vml_kernel_arguments(form);
    const std::size_t vector = form.strided ? 2 : 1; // arguments of one
    switch (form.function->kind) {
    case vml_class::scalar: // stands behind the first vector
        std::rotate(list.begin() + vector, list.end() - 1, list.end());
        list[vector].name = "b";
        break;
    case vml_class::linear_frac: // stand ahead of the result
        std::rotate(list.begin() + 2 * vector, list.end() - 4, list.end());
        break;
    case vml_class::pack:
        list[0].name = "a";
        list[2].name = "y";
        if (form.function->name.starts_with("Unpack"))
            std::swap(list[1], list[2]);
        break;
    default:
        break;
    }
    list.insert(list.begin(), {"int64_t ", "n"});
    return list;
}

std::vector<vml_argument> vml_entry_arguments(const vml_form &form, const vml_entry &entry)
{
    std::vector<vml_argument> list = vml_public_arguments(form);
    if (entry.in_mode)
        list.push_back({"uint64_t ", "mode"});
    if (entry.fortran)
        for (vml_argument &each : list)
            each.type = by_address(each.type);
    return list;
}

std::string vml_class_name(vml_class kind)
{
    using enum vml_class;
    switch (kind) {
    case one_in_one_out:
        return "1i_1o";
    case two_in_one_out:
        return "2i_1o";
    case one_in_two_out:
        return "1i_2o";
    case scalar:
        return "scalar";
    case linear_frac:
        return "linear_frac";
    case to_real:
        return "to_real";
    case to_complex:
        return "to_complex";
    default:
        return "pack";
    }
}

std::string vml_frame_class(const vml_form &form)
{
    using enum vml_class;
    static const std::map<vml_class, std::string> templates = {
        {one_in_one_out, "one_in_one_out"}, {to_real, "one_in_one_out"},
        {to_complex, "one_in_one_out"},     {two_in_one_out, "two_in_one_out"},
        {one_in_two_out, "one_in_two_out"}, {scalar, "scalar"},
        {linear_frac, "linear_frac"}};
    const vml_function &function = *form.function;
    if (function.kind != pack)
        return templates.at(function.kind) + (form.strided ? "_strided<" : "<") + vml_threader(form) + ">";
    const std::string places = function.name.ends_with('I') ? "int64_t" : "const int64_t *";
    return (function.name.starts_with("Unpack") ? "unpack<" : "pack<") + places + ">";
}

std::vector<vml_setting> read_vml_settings(const std::string &file)
{
    std::vector<vml_setting> settings;
    for (const table_line &row : read_lines(file)) {
        const auto &columns = row.columns;
        if (columns.size() != 3 || !(columns[1] == "-" || is_kind(columns[1])) || !is_kind(columns[2]))
            row.fail("a row has the columns name, argument and result; an argument is status, mode, "
                     "callback or -, a result one of the first three");
        settings.push_back({columns[0], columns[1] == "-" ? "" : columns[1], columns[2], row.about});
    }
    return settings;
}

std::vector<vml_entry> vml_setting_entries(const vml_setting &setting)
{
    const bool widened = type_of(setting.result).is_value();
    const bool read = !setting.argument.empty() && type_of(setting.argument).is_value();
    std::vector<vml_entry> entries;
    for (const bool wide : {false, true}) {
        const std::string name = "vml" + setting.name + (wide ? "_64" : "");
        const std::string body = wide && !widened ? "vml" + setting.name : name;
        const vml_entry c{name, body, false, false, wide};
        entries.push_back(c);
        add_fortran(entries, c, read ? "" : body);
    }
    return entries;
}

std::string vml_setting_operation(const vml_setting &setting)
{
    const std::string argument = setting.argument.empty() ? "" : type_of(setting.argument).narrow;
    return type_of(setting.result).narrow + "(" + argument + ")";
}

std::string vml_setting_parameter(const vml_setting &setting, const vml_entry &entry)
{
    if (setting.argument.empty())
        return "void";
    const setting_type &type = type_of(setting.argument);
    if (entry.fortran && type.is_value())
        return by_address(type.narrow) + setting.argument;
    return type.argument + setting.argument;
}

std::string vml_setting_result(const vml_setting &setting, const vml_entry &entry)
{
    const setting_type &type = type_of(setting.result);
    return entry.wide ? type.wide : type.narrow;
}

} // namespace tablegen
