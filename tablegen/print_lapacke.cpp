// The bodies of LAPACKE: for each routine a high-level function and a _work function. They are lists of
// calls; what the calls do stands in src/lapacke.
#include "kinds.h"
#include "names.h"
#include "print_lapacke.h"
#include "printers.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace tablegen {
namespace {

const std::string indent = "    ";

std::string joined(const std::vector<std::string> &parts)
{
    std::string text;
    for (const std::string &each : parts)
        text += (text.empty() ? "" : ", ") + each;
    return text;
}

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

/// What both printers share: where they print to, and the spelling set that they print.
class body_printer {
  public:
    body_printer(std::ostream &out, const lapacke_routine &row, bool twin)
        : out_(out), row_(row), suffix_(twin ? "_64" : ""), element_(row.base->element)
    {
    }

  protected:
    bool is_value() const { return row_.base->has_result(); }
    std::string result() const { return is_value() ? c_result(*row_.base) : "lapack_int"; }

    void line(const std::string &text, int depth = 1)
    {
        for (int i = 0; i < depth; ++i)
            out_ << indent;
        out_ << text << "\n";
    }

    void line_if(const condition &when, const std::string &text)
    {
        if (when)
            line("if (" + printed(*when) + ")");
        line(text, when ? 2 : 1);
    }

    /// The values of the row's own that the given names need, each ahead of those that look at it.
    void print_lets(std::set<std::string> names)
    {
        std::set<std::string> letters;
        for (const argument &each : row_.base->arguments)
            if (each.kind == "c" && !each.written)
                letters.insert(each.name);
        for (auto let = row_.lets.rbegin(); let != row_.lets.rend(); ++let)
            if (names.contains(let->first))
                add_names(let->second, names);
        for (const auto &[name, value] : row_.lets)
            if (names.contains(name)) {
                const value_type_of type = type_of(value, letters);
                line(std::string("const ") +
                     (type == value_type_of::letter   ? "char "
                      : type == value_type_of::truth ? "bool "
                                                      : "lapack_int ") +
                     name + " = " + printed(value) + ";");
            }
    }

    std::string helper(const argument &arg, const std::string &scheme, const std::string &what) const
    {
        return std::string("LAPACKE_") + helper_letter(arg, element_) + (scheme == "vec" ? "" : scheme) +
               "_" + what + suffix_;
    }

    std::string work_name() const { return row_.name() + "_work" + suffix_; }

    void print_head(const std::string &name, const std::vector<c_parameter> &parameters)
    {
        out_ << "\nextern \"C\" " << result() << " " << name << suffix_ << "("
             << c_parameter_list(row_, parameters) << ")\n{\n";
    }

    std::ostream &out_;
    const lapacke_routine &row_;
    const std::string suffix_;
    const char element_;
};

/// The function that checks for NaN and obtains the workspaces.
class high_level_printer : body_printer {
  public:
    using body_printer::body_printer;

    void print()
    {
        print_head(row_.name(), row_.parameters);
        if (row_.has_layout || !row_.workspaces.empty())
            line("constexpr const char *name = " + quoted(row_.name()) + ";");
        if (row_.has_layout) {
            line("if (!is_layout(layout)) [[unlikely]]");
            line("return reported(name, -1);", 2);
        }
        print_lets(used_names());
        print_nan_checks();
        if (row_.workspaces.empty())
            line("return " + work_call({}) + ";");
        else
            print_workspaces();
        out_ << "}\n";
    }

  private:
    std::set<std::string> used_names() const
    {
        std::set<std::string> names;
        for (const lapacke_array &each : row_.arrays)
            add_names(each.nan, names);
        for (const lapacke_check &each : row_.checks)
            if (each.with_nan)
                add_names(each.when, names);
        for (const workspace &each : row_.workspaces) {
            add_names(each.count, names);
            add_names(each.when, names);
        }
        for (const handed_over &each : row_.handed)
            add_names(each.count, names);
        for (const c_parameter &each : row_.work_parameters)
            names.insert(each.name);
        return names;
    }

    void print_nan_checks()
    {
        const bool any = std::any_of(row_.arrays.begin(), row_.arrays.end(),
                                     [](const lapacke_array &each) { return !each.nan.empty(); });
        if (!any)
            return;
        if (row_.transposed)
            line("const int stored = layout == column_major && one_of(trans, 'N') ? column_major : row_major;");
        line("if (checks_nan()) {");
        int done = 0;
        for (const lapacke_array &each : row_.arrays) {
            print_checks(done, each.position);
            done = each.position;
            for (const helper_use &use : each.nan)
                print_nan_check(each, use);
        }
        print_checks(done, 1000);
        line("}");
    }

    /// The other checks that stand between two positions.
    void print_checks(int after, int before)
    {
        for (const lapacke_check &each : row_.checks)
            if (each.with_nan && each.position > after && each.position < before) {
                line("if (" + printed(each.when) + ")", 2);
                line("return reported(name, -" + std::to_string(each.position) + ");", 3);
            }
    }

    void print_nan_check(const lapacke_array &each, const helper_use &use)
    {
        const std::string call = nan_call(each, use.scheme) + " != 0";
        const bool mixed = use.when && (use.when->op == "or" || use.when->op == "?");
        line("if (" +
                 (use.when ? (mixed ? "(" + printed(*use.when) + ")" : printed(*use.when)) + " && " : "") +
                 call + ")",
             2);
        line("return -" + std::to_string(each.position) + ";", 3);
    }

    std::string nan_call(const lapacke_array &each, const storage &scheme) const
    {
        static const std::set<std::string> without_layout = {"vec", "pp", "sp", "hp", "pf"};
        std::vector<std::string> parts;
        if (!without_layout.contains(scheme.name))
            parts.push_back(row_.transposed ? "stored" : "layout");
        // Packed arrays are looked at whole, whatever the triangle.
        const std::size_t first = scheme.name == "pf"                                               ? 2
                                  : scheme.name == "pp" || scheme.name == "sp" || scheme.name == "hp" ? 1
                                                                                                      : 0;
        for (std::size_t i = first; i < scheme.sizes.size(); ++i)
            parts.push_back(printed(scheme.sizes[i]));
        const std::string place = (each.by_value ? "&" : "") + each.arg.name +
                                  (scheme.offset ? " + (" + printed(*scheme.offset) + ")" : "");
        parts.insert(scheme.name == "vec" ? parts.end() - 1 : parts.end(), place);
        if (scheme.has_leading_dimension())
            parts.push_back(each.ld);
        return helper(each.arg, scheme.name, "nancheck") + "(" + joined(parts) + ")";
    }

    /// The call of the _work function: -1 for sizes and one element for workspaces in a query.
    std::string work_call(const std::set<std::string> &obtained, bool query = false) const
    {
        std::vector<std::string> parts;
        if (row_.has_layout)
            parts.push_back("layout");
        for (const c_parameter &each : row_.work_parameters) {
            const workspace *queried = queried_as(each.name);
            const workspace *sized = sized_by(each.name);
            if (query && queried)
                parts.push_back((queried->twice ? "" : "&") + each.name + "_query");
            else if (query && sized)
                parts.push_back("-1");
            else if (row_.is_parameter(each.name) || obtained.contains(each.name) || !is_space(each.name))
                parts.push_back(each.name);
            else
                parts.push_back("nullptr");
        }
        return work_name() + "(" + joined(parts) + ")";
    }

    const workspace *queried_as(const std::string &name) const
    {
        for (const workspace &each : row_.workspaces)
            if (each.name == name && !each.size.empty())
                return &each;
        return nullptr;
    }
    const workspace *sized_by(const std::string &name) const
    {
        for (const workspace &each : row_.workspaces)
            if (each.size == name)
                return &each;
        return nullptr;
    }
    bool is_space(const std::string &name) const
    {
        return std::any_of(row_.workspaces.begin(), row_.workspaces.end(),
                           [&](const workspace &each) { return each.name == name; });
    }

    std::string element_of(const workspace &each) const
    {
        return lapacke_element({each.name, each.kind, true}, element_);
    }

    void print_workspaces()
    {
        std::set<std::string> obtained;
        line("blocks memory;");
        for (std::size_t i = 0; i <= row_.workspaces.size(); ++i) {
            if (static_cast<int>(i) == row_.queried_before)
                print_query(obtained);
            if (i < row_.workspaces.size())
                print_workspace(row_.workspaces[i], obtained);
        }
        stop_without_memory();
        print_handed(true);
        const bool after = std::any_of(row_.handed.begin(), row_.handed.end(),
                                       [](const handed_over &each) { return !each.before; });
        const std::string call = work_call(obtained);
        if (is_value() || (!after && !row_.has_layout)) {
            line("return " + call + ";");
        } else if (!after) {
            line("return finished(name, " + call + ");");
        } else {
            line((row_.queried_before < 0 ? "const lapack_int info = " : "info = ") + call + ";");
            print_handed(false);
            line("return finished(name, info);");
        }
    }

    void stop_without_memory()
    {
        line("if (memory.failed()) [[unlikely]]");
        line(is_value() ? "return reported(name, work_memory_error), 0;"
                        : "return reported(name, work_memory_error);",
             2);
    }

    void print_query(const std::set<std::string> &obtained)
    {
        if (!obtained.empty())
            stop_without_memory();
        for (const workspace &each : row_.workspaces)
            if (!each.size.empty())
                line(element_of(each) + " " + each.name + "_query" + (each.twice ? "[2]" : "") + "{};");
        const bool kept = std::any_of(row_.handed.begin(), row_.handed.end(),
                                      [](const handed_over &each) { return !each.before; });
        line(std::string(kept ? "" : "const ") + "lapack_int info = " + work_call(obtained, true) + ";");
        line("if (info != 0)");
        line("return finished(name, info);", 2);
        if (row_.stop) {
            line("if (" + printed(*row_.stop) + ")");
            line("return info;", 2);
        }
        for (const workspace &each : row_.workspaces)
            if (!each.size.empty())
                line("const lapack_int " + each.size + " = queried(" + each.name + "_query" +
                     (each.twice ? "[0]" : "") + ");");
    }

    void print_workspace(const workspace &each, std::set<std::string> &obtained)
    {
        const std::string type = element_of(each);
        const std::string count = each.twice
                                      ? "extent(" + each.size + ") * queried(" + each.name + "_query[1])"
                                      : printed(*each.count);
        const std::string get = "memory.get<" + type + ">(" + count + ")";
        line(type + " *" + each.name + " = " +
             (each.when ? printed_condition(*each.when) + " ? " + get + " : nullptr" : get) + ";");
        obtained.insert(each.name);
    }

    void print_handed(bool before)
    {
        for (const handed_over &each : row_.handed) {
            if (each.before != before)
                continue;
            const std::string space =
                each.workspace + (each.offset ? " + " + std::to_string(each.offset) : "");
            line("hand_over(" + (before ? space + ", " + each.argument : each.argument + ", " + space) +
                 ", " + printed(each.count) + ");");
        }
    }

    static std::string printed_condition(const expression &value)
    {
        return value.op == "?" ? "(" + printed(value) + ")" : printed(value);
    }
};

/// The function that copies row-major matrices.
class work_printer : body_printer {
  public:
    using body_printer::body_printer;

    void print()
    {
        print_head(row_.name() + "_work", row_.work_parameters);
        if (!row_.has_layout) {
            print_plain();
        } else {
            line("constexpr const char *name = " + quoted(row_.name() + "_work") + ";");
            if (row_.has_info())
                line("lapack_int info = 0;");
            if (row_.transposed)
                print_transposed();
            else
                print_layouts();
        }
        out_ << "}\n";
    }

  private:
    using spelling = std::string (work_printer::*)(const argument &) const;

    std::string entry() const
    {
        const std::string body = body_symbol(*row_.base);
        if (suffix_.empty())
            return body;
        return row_.base->family == "lapack" ? "xkl_lapack__" + row_.base->lower() + "_64_"
                                             : row_.base->lower() + "_64";
    }

    /// An argument as the caller gave it, in the convention of Fortran.
    std::string given(const argument &arg) const
    {
        const c_parameter *parameter = nullptr;
        for (const c_parameter &each : row_.work_parameters)
            if (each.name == arg.name)
                parameter = &each;
        if (arg.kind == "p")
            return "as_selection(" + arg.name + ")";
        if (!parameter->type.ends_with('*'))
            return "&" + arg.name;
        const bool only_read = parameter->type.starts_with("const ");
        return only_read && arg.written ? "as_fortran(" + arg.name + ")" : arg.name;
    }

    bool is_leading(const argument &arg) const
    {
        return std::any_of(row_.arrays.begin(), row_.arrays.end(), [&](const lapacke_array &each) {
            return each.scheme && each.ld_is_argument && each.ld == arg.name;
        });
    }

    /// In a size query: the leading dimension as it would be refused neither by the caller's layout nor by
    /// the Fortran routine.
    std::string asked(const argument &arg) const
    {
        return is_leading(arg) ? "&" + arg.name + "_query" : given(arg);
    }

    std::string copied(const argument &arg) const
    {
        for (const lapacke_array &each : row_.arrays)
            if (each.scheme && each.arg.name == arg.name)
                return arg.name + "_t";
        return is_leading(arg) ? "&" + arg.name + "_t" : given(arg);
    }

    std::string call(spelling how) const
    {
        std::vector<std::string> parts;
        for (const argument &each : row_.base->arguments)
            parts.push_back(each.kind == "info" ? "&info" : (this->*how)(each));
        return entry() + "(" + joined(parts) + ")";
    }

    /// Calls and returns.
    void print_call(const std::string &text, int depth)
    {
        if (is_value()) {
            line("return " + text + ";", depth);
            return;
        }
        line(text + ";", depth);
        line(row_.has_info() ? "return counting_layout(info);" : "return 0;", depth);
    }

    void print_plain()
    {
        if (is_value()) {
            line("return " + call(&work_printer::given) + ";");
            return;
        }
        if (row_.has_info())
            line("lapack_int info = 0;");
        line(call(&work_printer::given) + ";");
        line(row_.has_info() ? "return info;" : "return 0;");
    }

    void refuse_layout()
    {
        line("if (layout != row_major) [[unlikely]]");
        line(is_value() ? "return reported(name, -1), 0;" : "return reported(name, -1);", 2);
    }

    void print_transposed()
    {
        line("if (!is_layout(layout)) [[unlikely]]");
        line("return reported(name, -1);", 2);
        line("const char stored_as = layout == column_major && !one_of(trans, 'T') ? 'n' : 't';");
        std::string text = call(&work_printer::given);
        const std::string own = "&trans,";
        text.replace(text.find(own), own.size(), "&stored_as,");
        print_call(text, 1);
    }

    void print_layouts()
    {
        line("if (layout == column_major) {");
        print_call(call(&work_printer::given), 2);
        line("}");
        refuse_layout();
        print_lets(used_names());
        print_checks();
        if (row_.uncopied) {
            print_uncopied();
            return;
        }
        print_leading_dimensions("_t");
        print_size_query();
        print_copies();
    }

    std::set<std::string> used_names() const
    {
        std::set<std::string> names;
        for (const lapacke_array &each : row_.arrays) {
            add_names(each.refused, names);
            if (!each.scheme || row_.uncopied)
                continue;
            add_names(*each.scheme, names);
            add_names(each.when, names);
            add_names(each.in, names);
            add_names(each.out, names);
        }
        for (const lapacke_check &each : row_.checks)
            add_names(each.when, names);
        add_names(row_.size_query, names);
        for (const workspace &each : row_.row_spaces)
            add_names(each.when, names);
        for (const std::string &each : row_.row_call)
            names.insert(each.substr(each.starts_with("&") ? 1 : 0));
        return names;
    }

    void print_checks()
    {
        std::vector<std::pair<int, expression>> checks;
        for (const lapacke_check &each : row_.checks)
            checks.emplace_back(each.position, each.when);
        for (const lapacke_array &each : row_.arrays)
            if (each.refused)
                checks.emplace_back(each.ld_position, *each.refused);
        std::stable_sort(checks.begin(), checks.end(),
                         [](const auto &a, const auto &b) { return a.first < b.first; });
        for (const auto &[position, when] : checks) {
            line("if (" + printed(when) + ")");
            line("return reported(name, -" + std::to_string(position) + ");", 2);
        }
    }

    void print_uncopied()
    {
        for (const workspace &each : row_.row_spaces) {
            const std::string type = c_element(each.kind, element_);
            line("blocks memory;");
            line(type + " *" + each.name + " = " + printed(*each.when) + " ? memory.get<" + type + ">(" +
                 printed(*each.count) + ") : nullptr;");
            line("if (memory.failed()) [[unlikely]]");
            line("return reported(name, work_memory_error), 0;", 2);
        }
        std::vector<std::string> parts;
        for (const std::string &each : row_.row_call)
            parts.push_back(is_read_only(each) ? "as_fortran(" + each + ")" : each);
        print_call(entry() + "(" + joined(parts) + ")", 1);
    }

    bool is_read_only(const std::string &name) const
    {
        return std::any_of(row_.work_parameters.begin(), row_.work_parameters.end(), [&](const auto &each) {
            return each.name == name && each.type.starts_with("const ");
        });
    }

    void print_leading_dimensions(const std::string &suffix)
    {
        for (const lapacke_array &each : row_.arrays)
            if (each.scheme && !each.ld.empty())
                line("const lapack_int " + copy_ld(each, suffix) + " = " +
                     printed(at_least_one(each.scheme->rows())) + ";");
    }

    /// `lda_t`; where there is no such argument, named after the array.
    static std::string copy_ld(const lapacke_array &each, const std::string &suffix = "_t")
    {
        return (each.ld_is_argument ? each.ld : "ld_" + each.arg.name) + suffix;
    }

    void print_size_query()
    {
        if (!row_.size_query)
            return;
        line("if (" + printed(*row_.size_query) + ") {");
        for (const lapacke_array &each : row_.arrays)
            if (each.scheme && each.ld_is_argument)
                line("const lapack_int " + each.ld + "_query = most(" + each.ld + ", " + each.ld + "_t);", 2);
        print_call(call(&work_printer::asked), 2);
        line("}");
    }

    /// The elements of a column-major copy.
    std::string copy_count(const lapacke_array &each) const
    {
        const expression columns = at_least_one(each.scheme->columns());
        if (!each.ld.empty())
            return printed(infix("*", name_of(copy_ld(each)), columns));
        const expression pairs = {
            "call", "max", {{"number", "2", {}}, infix("+", each.scheme->columns(), {"number", "1", {}})}};
        return printed(infix("/", infix("*", columns, pairs), {"number", "2", {}}));
    }

    void print_copies()
    {
        const bool any = std::any_of(row_.arrays.begin(), row_.arrays.end(),
                                     [](const lapacke_array &each) { return each.scheme.has_value(); });
        if (!any) {
            print_call(call(&work_printer::given), 1);
            return;
        }
        line("blocks memory;");
        for (const lapacke_array &each : row_.arrays) {
            if (!each.scheme)
                continue;
            const std::string type = lapacke_element(each.arg, element_);
            const std::string get = "memory.get<" + type + ">(" + copy_count(each) + ")";
            line(type + " *" + each.arg.name + "_t = " +
                 (each.when ? printed(*each.when) + " ? " + get + " : nullptr" : get) + ";");
        }
        line("if (memory.failed()) [[unlikely]]");
        line(is_value() ? "return reported(name, transpose_memory_error), 0;"
                        : "return reported(name, transpose_memory_error);",
             2);
        for (const lapacke_array &each : row_.arrays)
            for (const helper_use &use : each.in)
                line_if(use.when, copy_call(each, use.scheme, true));
        const bool returns = std::any_of(row_.arrays.begin(), row_.arrays.end(),
                                         [](const lapacke_array &each) { return !each.out.empty(); });
        if (!returns) {
            print_call(call(&work_printer::copied), 1);
            return;
        }
        line(call(&work_printer::copied) + ";");
        if (row_.has_info()) { // refused: what was not copied in was not written either
            line("if (info < 0)");
            line("return counting_layout(info);", 2);
        }
        for (const lapacke_array &each : row_.arrays)
            for (const helper_use &use : each.out)
                line_if(use.when, copy_call(each, use.scheme, false));
        line(row_.has_info() ? "return info;" : "return 0;");
    }

    std::string copy_call(const lapacke_array &each, const storage &scheme, bool in) const
    {
        std::vector<std::string> parts = {in ? "row_major" : "column_major"};
        for (const expression &size : scheme.sizes)
            parts.push_back(printed(size));
        std::vector<std::string> places = {each.arg.name, each.arg.name + "_t"};
        std::vector<std::string> leading = {each.ld, copy_ld(each)};
        for (const int which : {in ? 0 : 1, in ? 1 : 0}) {
            parts.push_back(places[static_cast<std::size_t>(which)]);
            if (!each.ld.empty())
                parts.push_back(leading[static_cast<std::size_t>(which)]);
        }
        return helper(each.arg, scheme.name, "trans") + "(" + joined(parts) + ");";
    }
};

} // namespace

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
        work_printer(out, row, twins).print();
        high_level_printer(out, row, twins).print();
    }
}

} // namespace tablegen
