// The naming rules, one function a kind of name.
#include "names.h"

#include "kinds.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace tablegen {
namespace {

using name_list = std::vector<std::string>;

name_list with_64(const std::string &upper, const std::string &lower)
{
    return {lower, lower + "_", upper, lower + "_64", lower + "_64_", upper + "_64"};
}

/// Public spellings of a family, the plain lower-case one first. {U} and {L} would hide what these lists
/// show.
const std::map<std::string, name_list (*)(const std::string &, const std::string &)> spelling_rules = {
    {"blas", with_64},
    {"extension", with_64},
    {"lapack", with_64},
    {"timer", with_64},
    {"lsame", with_64},
    {"lapacke",
     [](const std::string &, const std::string &l) {
         return name_list{"LAPACKE_" + l, "LAPACKE_" + l + "_64"};
     }},
    {"direct",
     [](const std::string &u, const std::string &l) {
         return name_list{l, l + "_", u};
     }},
    {"service",
     [](const std::string &u, const std::string &l) {
         return name_list{l, l + "_", u};
     }},
    {"fourier",
     [](const std::string &u, const std::string &l) {
         return name_list{l, l + "_", l + "__", u, u + "_"};
     }},
    {"dfti",
     [](const std::string &u, const std::string &l) {
         return name_list{u, "xkl_dft_" + l};
     }},
    {"solver", [](const std::string &u,
                  const std::string &l) { return name_list{l, l + "_", l + "__", u, u + "_", u + "__"}; }},
    // Their names are written as C has them, some with a capital.
    {"handle",
     [](const std::string &u, const std::string &) {
         return name_list{u, u + "_64"};
     }},
    {"handle-plain", [](const std::string &u, const std::string &) { return name_list{u}; }},
    {"single", [](const std::string &, const std::string &l) { return name_list{l}; }},
    {"internal", [](const std::string &u, const std::string &) { return name_list{u}; }},
};

std::string to_upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

bool is_forward(const routine &row)
{
    return row.frame.kind.starts_with("forward");
}

bool reads_values(const routine &row)
{
    return std::any_of(row.arguments.begin(), row.arguments.end(), is_service_value);
}

std::string mixed_spelling(const routine &row)
{
    return is_forward(row) ? row.frame.option : "";
}

/// XKL_Domatcopy: capitals to the type's letter.
std::string valued_spelling(const routine &row)
{
    const std::size_t head = std::string("XKL_D").size();
    return row.name.substr(0, head) + to_lower(row.name.substr(head));
}

} // namespace

bool spelling_rule_exists(const std::string &rule)
{
    return spelling_rules.contains(rule);
}

std::string mixed_body(const routine &row)
{
    if (row.is_valued())
        return valued_spelling(row);
    if (row.is_reading())
        return to_upper(row.name);
    const bool own_body = row.frame.kind == "forward-mixed" || reads_values(row);
    return own_body ? mixed_spelling(row) : "";
}

name_list public_spellings(const routine &row)
{
    if (row.frame.kind == "forward-mixed")
        return {};
    return spelling_rules.at(row.spellings)(row.name, row.lower());
}

std::string body_symbol(const routine &row)
{
    if (row.spellings == "blas")
        return "xkl_blas__" + row.lower();
    if (row.spellings == "lapack")
        return "xkl_lapack__" + row.lower() + "_";
    if (row.frame.kind == "forward-mixed")
        return mixed_body(row);
    return public_spellings(row).front();
}

name_list other_spellings(const routine &row)
{
    name_list names = public_spellings(row);
    if (row.spellings == "lapack")
        names.push_back("xkl_lapack__" + row.lower() + "_64_");
    if (row.spellings == "lsame")
        names.push_back("xkl_lapack__" + row.lower() + "_");
    if (!mixed_spelling(row).empty() && !reads_values(row))
        names.push_back(mixed_spelling(row));
    std::erase(names, body_symbol(row));
    return names;
}

std::string core_entry(const routine &row)
{
    if (row.is_reading())
        return row.name + "_i8";
    std::string stem = row.lower();
    if (row.spellings == "lapack" && stem.starts_with("xkl_"))
        stem.erase(0, 4);
    if (row.family != "service")
        return "xkl_" + row.entries + "_" + stem;
    for (const std::string prefix : {"xkl_serv_iface_", "xkl_"})
        if (stem.starts_with(prefix)) {
            stem.erase(0, prefix.size());
            break;
        }
    return "xkl_serv_" + stem;
}

std::string checker(const routine &row)
{
    return "xkl_" + row.entries + "_errchk_" + row.lower();
}

std::string reported_name(const routine &row)
{
    if (row.is_valued())
        return row.lower();
    std::string name = row.name;
    if (name.size() < 6)
        name.resize(6, ' ');
    else if (name.size() > 6 && row.frame.option != "bare")
        name += ' ';
    return name;
}

std::vector<argument> all_arguments(const routine &row)
{
    std::vector<argument> arguments = row.arguments;
    if (row.result == "first")
        arguments.insert(arguments.begin(), {"result", "t", true});
    return arguments;
}

std::string trace_kinds(const routine &row)
{
    std::string kinds;
    for (const argument &each : all_arguments(row))
        kinds += row.frame.option == "addresses" ? 'p' : trace_kind(each, row.frame.group);
    return kinds;
}

std::string valued_format(const routine &row, bool by_value)
{
    std::string text = row.name + "(";
    for (const argument &each : row.arguments)
        text += (text.back() == '(' ? "" : ", ") + valued_conversion(each, row.element, by_value);
    return text + ")";
}

std::string trace_format(const routine &row)
{
    if (row.is_valued())
        return valued_format(row, false);
    std::string text = row.name + "(";
    for (const char kind : trace_kinds(row))
        text += (text.back() == '(' ? "" : ",") + trace_conversion(kind);
    return text + ")";
}

int hidden_lengths(const routine &row)
{
    if (row.is_valued())
        return 0;
    return static_cast<int>(std::count_if(row.arguments.begin(), row.arguments.end(), is_character));
}

name_list exported_names(const routine &row)
{
    if (row.frame.kind == "entry")
        return {};
    if (row.frame.kind == "forward-mixed")
        return {mixed_body(row)};
    name_list names = other_spellings(row);
    names.push_back(body_symbol(row));
    if (row.is_reading())
        for (const std::string &name : public_spellings(row))
            names.push_back(to_upper(name));
    else if (!mixed_body(row).empty())
        names.push_back(mixed_body(row));
    if (row.has_checker())
        names.push_back(checker(row));
    if (row.is_here())
        names.push_back(core_entry(row));
    return names;
}

} // namespace tablegen
