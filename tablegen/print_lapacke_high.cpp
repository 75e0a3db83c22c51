// LAPACKE's high-level functions: NaN checks, workspaces, and the call of the _work function.
#include "lapacke_body.h"
#include "printers.h"

#include <algorithm>

namespace tablegen {
namespace {

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
            line("const int stored = layout == column_major && one_of(trans, 'N') ? column_major : "
                 "row_major;");
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
        const std::size_t first = scheme.name == "pf"                                                 ? 2
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
                parts.push_back(each.name + "_query");
            else if (query && sized)
                parts.push_back("-1");
            else if (row_.is_parameter(each.name) || obtained.contains(each.name) || !is_space(each.name))
                parts.push_back(each.name);
            else
                parts.push_back("nullptr");
        }
        return row_.name() + "_work" + suffix_ + "(" + joined(parts) + ")";
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
            line("if (info >= 0) {"); // without it the workspaces hold nothing
            print_handed(false);
            line("}");
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
        // Two elements: some routines answer with the least size too.
        for (const workspace &each : row_.workspaces)
            if (!each.size.empty())
                line(element_of(each) + " " + each.name + "_query[2]{};");
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
                line("const lapack_int " + each.size + " = queried(" + each.name + "_query[0]);");
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
                     ", " + printed(each.count) + ");",
                 before ? 1 : 2);
        }
    }

    static std::string printed_condition(const expression &value)
    {
        return value.op == "?" ? "(" + printed(value) + ")" : printed(value);
    }
};

} // namespace

void print_high_level(std::ostream &out, const lapacke_routine &row, bool twin)
{
    high_level_printer(out, row, twin).print();
}

} // namespace tablegen
