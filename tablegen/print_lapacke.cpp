// The bodies of LAPACKE: for each routine a high-level function and a _work function. They are lists of
// calls; what the calls do stands in src/lapacke.
#include "print_lapacke.h"

#include "kinds.h"
#include "lapacke_body.h"

namespace tablegen {

void add_names(const condition &value, std::set<std::string> &names)
{
    if (value)
        add_names(*value, names);
}

void add_names(const storage &value, std::set<std::string> &names)
{
    for (const expression &each : value.sizes)
        add_names(each, names);
    add_names(value.offset, names);
}

void add_names(const std::vector<helper_use> &uses, std::set<std::string> &names)
{
    for (const helper_use &each : uses) {
        add_names(each.scheme, names);
        add_names(each.when, names);
    }
}

std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &each : parts)
        text += (text.empty() ? "" : ", ") + each;
    return text;
}

void body_printer::line(const std::string &text, int depth)
{
    out_ << std::string(static_cast<std::size_t>(4 * depth), ' ') << text << "\n";
}

void body_printer::line_if(const condition &when, const std::string &text)
{
    if (when)
        line("if (" + printed(*when) + ")");
    line(text, when ? 2 : 1);
}

void body_printer::print_head(const std::string &name, const std::vector<c_parameter> &parameters)
{
    out_ << "\nextern \"C\" " << (is_value() ? c_result(*row_.base) : "lapack_int") << " " << name
         << suffix_ << "(" << c_parameter_list(row_, parameters) << ")\n{\n";
}

void body_printer::print_lets(std::set<std::string> names)
{
    std::set<std::string> letters;
    for (const argument &each : row_.base->arguments)
        if (each.kind == "c" && !each.written)
            letters.insert(each.name);
    for (auto let = row_.lets.rbegin(); let != row_.lets.rend(); ++let)
        if (names.contains(let->first))
            add_names(let->second, names);
    for (const auto &[name, value] : row_.lets) {
        if (!names.contains(name))
            continue;
        const value_type_of type = type_of(value, letters);
        const std::string text = type == value_type_of::letter  ? "char"
                                 : type == value_type_of::truth ? "bool"
                                                                : "lapack_int";
        line("const " + text + " " + name + " = " + printed(value) + ";");
    }
}

std::string body_printer::helper(const argument &arg, const std::string &scheme,
                                 const std::string &what) const
{
    return std::string("LAPACKE_") + helper_letter(arg, element_) + (scheme == "vec" ? "" : scheme) + "_" +
           what + suffix_;
}

std::string c_parameter_list(const lapacke_routine &row, const std::vector<c_parameter> &parameters)
{
    std::vector<std::string> parts;
    if (row.has_layout)
        parts.push_back("int layout");
    for (const c_parameter &each : parameters)
        parts.push_back(each.type + each.name);
    return joined(parts);
}

void print_lapacke(std::ostream &out, const std::vector<lapacke_routine> &rows, bool twins)
{
    out << "#include \"blas_frames.h\"\n#include \"lapack_frames.h\"\n#include \"lapacke/complex.h\"\n"
        << "#include \"lapacke/frame.h\"\n#include \"xkl_lapacke.h\"\n\nusing namespace xkl::lapacke;\n";
    for (const lapacke_routine &row : rows) {
        if (twins && !row.has_twin)
            continue;
        out << "\n// " << row.name() << ": " << row.place << " over " << row.base->place << "\n";
        if (twins && row.base->family == "lapack")
            out << "extern \"C\" decltype(" << row.base->lower() << ") xkl_lapack__" << row.base->lower()
                << "_64_;\n";
        print_work(out, row, twins);
        print_high_level(out, row, twins);
    }
}

} // namespace tablegen
