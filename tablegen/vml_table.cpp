// Reads the table of vector math functions and knows the argument lists of its classes.
#include "vml_table.h"

#include "table_lines.h"

#include <map>

namespace tablegen {
namespace {

const std::map<std::string, vml_class> &classes()
{
    using enum vml_class;
    static const std::map<std::string, vml_class> all = {
        {"1i_1o", one_in_one_out},    {"2i_1o", two_in_one_out},
        {"1i_2o", one_in_two_out},    {"scalar", scalar},
        {"linear_frac", linear_frac}, {"to_real", to_real},
        {"to_complex", to_complex},   {"pack", pack}};
    return all;
}

/// A class that fixes whether its functions are real or complex.
bool fits(vml_class kind, char element)
{
    const bool complex = element == 'c' || element == 'z';
    if (kind == vml_class::to_real || kind == vml_class::to_complex)
        return complex;
    if (kind == vml_class::one_in_two_out || kind == vml_class::linear_frac)
        return !complex;
    return true;
}

std::string letter(char element)
{
    return std::string(1, element);
}

/// One row in all its types.
void add_row(const table_line &row, std::vector<vml_function> &to)
{
    if (row.columns.size() != 3)
        row.fail("a row has the columns name, types and class");
    const auto kind = classes().find(row.columns[2]);
    if (kind == classes().end())
        row.fail("unknown class `" + row.columns[2] + "`; tablegen/README.md lists them");
    for (const std::string &type : parts_of(row.columns[1], ',')) {
        if (type.size() != 1 || std::string("sdcz").find(type) == std::string::npos)
            row.fail("`" + type + "` is no type; types are s, d, c, z");
        if (!fits(kind->second, type[0]))
            row.fail("class " + row.columns[2] + " has no functions of type " + type);
        to.push_back({row.columns[0], type[0], kind->second, row.about, row.place});
    }
}

/// Adds a vector, and its increment in strided forms.
void add_vector(std::vector<vml_argument> &list, bool strided, const std::string &type,
                const std::string &name, const std::string &increment)
{
    list.push_back({type, name});
    if (strided)
        list.push_back({"int64_t ", increment, vml_argument::role::increment});
}

/// The third argument of the pack kernels, which says what it is in its last letter.
vml_argument places(const std::string &function)
{
    switch (function.back()) {
    case 'I':
        return {"int64_t ", "increment", vml_argument::role::other};
    case 'V':
        return {"const int64_t *", "index", vml_argument::role::other};
    default:
        return {"const int64_t *", "mask", vml_argument::role::other};
    }
}

} // namespace

std::string vml_form::name() const
{
    return letter(function->element) + function->name + (strided ? "I" : "");
}

std::vector<vml_function> read_vml_table(const std::string &file)
{
    std::vector<vml_function> functions;
    for (const table_line &row : read_lines(file))
        add_row(row, functions);
    refuse_doubles(functions, [](const vml_function &each) { return vml_form{&each}.name(); });
    return functions;
}

std::vector<vml_form> vml_forms(const std::vector<vml_function> &functions)
{
    std::vector<vml_form> forms;
    for (const vml_function &each : functions) {
        forms.push_back({&each, false});
        if (each.has_strided_form())
            forms.push_back({&each, true});
    }
    return forms;
}

char vml_real_letter(char element)
{
    return element == 's' || element == 'c' ? 's' : 'd';
}

std::string vml_type(char element)
{
    switch (element) {
    case 's':
        return "float";
    case 'd':
        return "double";
    case 'c':
        return "XKL_Complex8";
    default:
        return "XKL_Complex16";
    }
}

std::string vml_threader(const vml_form &form)
{
    using enum vml_class;
    const std::string own = letter(form.function->element), in = form.strided ? "iI_" : "i_",
                      out = form.strided ? "oI" : "o",
                      real = letter(vml_real_letter(form.function->element)),
                      start = "xkl_vml_serv_threader_";
    switch (form.function->kind) {
    case one_in_one_out:
        return start + own + "_1" + in + "1" + out;
    case two_in_one_out:
        return start + own + "_2" + in + "1" + out;
    case one_in_two_out:
        return start + own + "_1" + in + "2" + out;
    case scalar:
        return start + own + "_c" + own + "_2" + in + own + "_1" + out;
    case linear_frac:
        return start + own + "_6" + in + "1" + out;
    case to_real:
        return start + own + "_1" + in + real + "_1" + out;
    case to_complex: // the letter is that of the input
        return start + real + "_1" + in + own + "_1" + out;
    default:
        return "";
    }
}

std::vector<vml_argument> vml_kernel_arguments(const vml_form &form)
{
    using enum vml_class;
    const vml_function &function = *form.function;
    const std::string own = vml_type(function.element), real = vml_type(vml_real_letter(function.element));
    const std::string in = "const " + (function.kind == to_complex ? real : own) + " *";
    const std::string out = (function.kind == to_real ? real : own) + " *";
    std::vector<vml_argument> list;
    if (function.kind == pack)
        return {{in, "source"}, places(function.name), {out, "destination"}};
    add_vector(list, form.strided, in, "a", "inca");
    if (function.kind == two_in_one_out || function.kind == linear_frac)
        add_vector(list, form.strided, in, "b", "incb");
    if (function.kind == one_in_two_out) {
        add_vector(list, form.strided, out, "r1", "inc1");
        add_vector(list, form.strided, out, "r2", "inc2");
    } else {
        add_vector(list, form.strided, out, "r", "incr");
    }
    if (function.kind == scalar) // complex scalars go by address
        list.push_back({function.is_complex() ? in : own + " ", "scalar", vml_argument::role::scalar});
    if (function.kind == linear_frac)
        for (const char *name : {"scalea", "shifta", "scaleb", "shiftb"})
            list.push_back({own + " ", name, vml_argument::role::scalar});
    return list;
}

std::string vml_declared(const std::vector<vml_argument> &arguments)
{
    std::string text;
    for (const vml_argument &each : arguments)
        text += (text.empty() ? "" : ", ") + each.type + each.name;
    return text;
}

std::string vml_passed(const std::vector<vml_argument> &arguments)
{
    std::string text;
    for (const vml_argument &each : arguments)
        text += (text.empty() ? "" : ", ") + each.name;
    return text;
}

} // namespace tablegen
