// LAPACKE's _work functions: the call of the Fortran frame, with copies of row-major matrices around it.
#include "kinds.h"
#include "lapacke_body.h"
#include "names.h"
#include "printers.h"

#include <algorithm>

namespace tablegen {
namespace {

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
        for (const c_parameter &each :
             row_.work_parameters) // the caller's, where the high level has a `let`
            names.erase(each.name);
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
                line("const lapack_int " + each.ld + "_query = most(" + each.ld + ", " + each.ld + "_t);",
                     2);
        print_call(call(&work_printer::asked), 2);
        line("}");
    }

    /// Memory for a column-major copy.
    std::string copy_memory(const lapacke_array &each) const
    {
        const std::string type = lapacke_element(each.arg, element_);
        const expression columns = at_least_one(each.scheme->columns());
        if (!each.ld.empty())
            return "memory.matrix<" + type + ">(" + copy_ld(each) + ", " + printed(columns) + ")";
        const expression pairs = {
            "call", "max", {{"number", "2", {}}, infix("+", each.scheme->columns(), {"number", "1", {}})}};
        const expression count = infix("/", infix("*", columns, pairs), {"number", "2", {}});
        return "memory.get<" + type + ">(" + printed(count) + ")";
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
            const std::string get = copy_memory(each);
            line(type + " *" + each.arg.name +
                 "_t = " + (each.when ? printed(*each.when) + " ? " + get + " : nullptr" : get) + ";");
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

void print_work(std::ostream &out, const lapacke_routine &row, bool twin)
{
    work_printer(out, row, twin).print();
}

} // namespace tablegen
