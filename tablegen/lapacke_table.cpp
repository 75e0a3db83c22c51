// From a row's statements to everything that its functions do. What a row leaves out is filled in here.
#include "lapacke_table.h"

#include "kinds.h"
#include "lapacke_rows.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace tablegen {
namespace {

const std::string layout_name = "layout";

bool is_by_value(const argument &arg)
{
    static const std::set<std::string> kinds = {"c", "i", "l", "t", "r", "z"};
    return kinds.contains(arg.kind) && !arg.written;
}

/// The storage schemes: how many sizes they have, and which of them are rows and columns of the memory.
struct scheme_rule {
    std::size_t sizes;
    bool leading_dimension;
    int rows, columns;
};
const std::map<std::string, scheme_rule> schemes = {
    {"vec", {2, false, 0, 0}}, {"ge", {2, true, 0, 1}},  {"gg", {2, true, 0, 1}},  {"gb", {4, true, 0, 1}},
    {"hs", {1, true, 0, 0}},   {"tr", {3, true, 2, 2}},  {"po", {2, true, 1, 1}},  {"sy", {2, true, 1, 1}},
    {"he", {2, true, 1, 1}},   {"tz", {5, true, 3, 4}},  {"tb", {4, true, 3, 2}},  {"pb", {3, true, 2, 1}},
    {"sb", {3, true, 2, 1}},   {"hb", {3, true, 2, 1}},  {"tp", {3, false, 0, 2}}, {"pp", {2, false, 0, 1}},
    {"sp", {2, false, 0, 1}},  {"hp", {2, false, 0, 1}}, {"tf", {4, false, 0, 3}}, {"pf", {3, false, 0, 2}},
};

expression number(int value)
{
    return {"number", std::to_string(value), {}};
}

/// Builds one function record out of the statements that concern its type.
class builder {
  public:
    builder(const lapacke_row &row, const routine &base) : row_(row)
    {
        made_.base = &base;
        made_.place = row.place;
        made_.queried_before = -1;
        made_.has_layout = !flag("nolayout");
        made_.has_twin = !flag("untwinned");
        made_.transposed = flag("transposed");
        made_.uncopied = flag("uncopied");
        for (const std::string &each : row.flags)
            if (each != "nolayout" && each != "untwinned" && each != "transposed" && each != "uncopied")
                fail("there is no flag `" + each + "`");
    }

    lapacke_routine build()
    {
        const std::string type = complex() ? "complex" : "real";
        for (const statement &each : row_.statements)
            if (each.types.empty() || each.types == type)
                read(each);
        list_parameters();
        for (lapacke_array &each : made_.arrays)
            place_array(each);
        for (auto &[check, argument] : checks_) {
            check.position = position(made_.work_parameters, argument);
            made_.checks.push_back(check);
        }
        if (!size_query_ && has_size_query())
            made_.size_query = every_size();
        else
            made_.size_query = size_query_;
        std::stable_sort(made_.arrays.begin(), made_.arrays.end(),
                         [](const auto &a, const auto &b) { return a.position < b.position; });
        return made_;
    }

  private:
    bool flag(const std::string &name) const
    {
        return std::find(row_.flags.begin(), row_.flags.end(), name) != row_.flags.end();
    }
    bool complex() const { return made_.base->element == 'C' || made_.base->element == 'Z'; }
    [[noreturn]] void fail(const std::string &what) const { throw table_error(place_ + ": " + what); }

    expression parse(const std::string &text) const
    {
        try {
            return parse_expression(text);
        } catch (const std::invalid_argument &error) {
            fail(error.what());
        }
    }
    condition parse_condition(const std::string &text) const
    {
        return text.empty() ? condition{} : condition{parse(text)};
    }

    const argument &find(const std::string &name) const
    {
        for (const argument &each : made_.base->arguments)
            if (each.name == name)
                return each;
        fail(made_.base->name + " has no argument `" + name + "`");
    }

    void read(const statement &each)
    {
        place_ = each.place;
        std::string text = each.clauses[0];
        const std::string first = take_word(text);
        if (first == "let")
            return read_let(text);
        if (first == "check")
            return read_check(each, text);
        if (first == "query")
            return make_query();
        if (first == "stop")
            made_.stop = parse_condition(take_condition(text));
        else if (first == "size")
            size_query_ = parse_condition(take_condition(text));
        else if (first == "before" || first == "after")
            read_handed(first == "before", each, text);
        else if (first == "row")
            read_row_path(each, text);
        else
            read_argument(first, each, text);
    }

    void read_let(std::string text)
    {
        const std::string name = take_word(text);
        if (take_word(text) != "=")
            fail("write `let NAME = VALUE`");
        made_.lets.emplace_back(name, parse(text));
    }

    void read_check(const statement &each, std::string text)
    {
        const condition when = parse_condition(take_condition(text));
        if (!when)
            fail("write `check ARGUMENT if CONDITION`");
        checks_.push_back({{0, *when, each.clauses.size() > 1 && each.clauses[1] == "nan"}, text});
    }

    void make_query()
    {
        if (made_.queried_before < 0)
            made_.queried_before = static_cast<int>(made_.workspaces.size());
    }

    /// `after stat = work, 6`, `after superb = work+1, n-1`, `before work = stat, 1`.
    void read_handed(bool before, const statement &each, std::string text)
    {
        if (each.clauses.size() != 2)
            fail("write `after ARGUMENT = WORKSPACE, COUNT` or `before WORKSPACE = ARGUMENT, COUNT`");
        std::string target = take_word(text);
        take_word(text); // =
        const auto plus = text.find('+');
        const int offset = plus == std::string::npos ? 0 : std::stoi(text.substr(plus + 1));
        std::string source = text.substr(0, plus);
        if (before)
            std::swap(target, source);
        made_.handed.push_back({before, target, source, offset, parse(each.clauses[1])});
    }

    void read_row_path(const statement &each, std::string text)
    {
        const std::string what = take_word(text);
        if (what == "call") {
            made_.row_call = each.clauses;
            made_.row_call[0] = text;
        } else if (what == "space") {
            const condition when = parse_condition(take_condition(text));
            const std::string name = take_word(text);
            made_.row_spaces.push_back({name, "R", "", false, parse(text), when});
        } else {
            fail("write `row call ARGUMENTS` or `row space NAME COUNT`");
        }
    }

    void read_argument(const std::string &name, const statement &each, std::string text)
    {
        const std::string word = take_word(text);
        const argument &arg = find(name);
        if (word == "space" || word == "query")
            return read_workspace(arg, word == "query", each, text);
        lapacke_array made{};
        made.arg = arg;
        made.by_value = word == "value";
        const bool in = word == "in" || word == "inout", out = word == "out" || word == "inout";
        if (!in && !out && !made.by_value)
            fail("`" + word + "` is none of in, out, inout, value, space, query");
        made.arg.written = out;
        made.when = parse_condition(take_condition(text));
        if (made.by_value)
            made.nan = {{vector_of(number(1)), made.when}};
        else if (!text.empty())
            read_scheme(made, in, out, each, text);
        made_.arrays.push_back(made);
    }

    storage vector_of(expression count) const { return {"vec", {std::move(count), number(1)}, {}}; }

    storage parse_storage(std::string text) const
    {
        storage result;
        const auto at = text.find(" at ");
        if (at != std::string::npos) {
            result.offset = parse(text.substr(at + 4));
            text.resize(at);
        }
        const auto open = text.find('(');
        if (open == std::string::npos || !text.ends_with(")"))
            fail("`" + text + "` is no storage scheme; write scheme(sizes)");
        result.name = text.substr(0, open);
        for (const std::string &each : cut(text.substr(open + 1, text.size() - open - 2), ','))
            result.sizes.push_back(parse(each));
        const auto rule = schemes.find(result.name);
        if (rule == schemes.end())
            fail("there is no storage scheme `" + result.name + "`");
        if (result.name == "vec" && result.sizes.size() == 1)
            result.sizes.push_back(number(1));
        if (result.sizes.size() != rule->second.sizes)
            fail("scheme " + result.name + " has " + std::to_string(rule->second.sizes) + " sizes");
        return result;
    }

    void read_scheme(lapacke_array &made, bool in, bool out, const statement &each, const std::string &text)
    {
        const storage scheme = parse_storage(text);
        const helper_use use = {scheme, made.when};
        if (in)
            made.nan = {use};
        if (scheme.name == "vec" || !made_.has_layout)
            return;
        made.scheme = scheme;
        if (in)
            made.in = {use};
        if (out)
            made.out = {use};
        bool nan_said = false, out_said = false;
        for (std::size_t i = 1; i < each.clauses.size(); ++i)
            read_clause(made, each.clauses[i], nan_said, out_said);
    }

    /// `nan ge(1, n) if m > 0`, `in always`, `out never`, `bound ncols`, `refused if CONDITION`, `ld NAME`.
    void read_clause(lapacke_array &made, std::string text, bool &nan_said, bool &out_said)
    {
        const condition when = parse_condition(take_condition(text));
        const std::string word = take_word(text);
        if (word == "bound") {
            bound_[made.arg.name] = parse(text);
        } else if (word == "refused") {
            made.refused = when;
        } else if (word == "ld") {
            made.ld = text;
        } else if (word == "in") {
            set_use(made.in, text, when, made);
            if (!nan_said)
                made.nan = made.in;
        } else if (word == "nan") {
            add_use(made.nan, nan_said, text, when, made);
        } else if (word == "out") {
            add_use(made.out, out_said, text, when, made);
        } else {
            fail("`" + word + "` is none of nan, in, out, bound, refused, ld");
        }
    }

    void set_use(std::vector<helper_use> &uses, const std::string &text, condition when,
                 const lapacke_array &made) const
    {
        if (text == "never")
            uses.clear();
        else
            uses = {{text.empty() || text == "always" ? *made.scheme : parse_storage(text), when}};
    }

    /// The first clause replaces what follows from the rules, the next ones come beside it.
    void add_use(std::vector<helper_use> &uses, bool &said, const std::string &text, condition when,
                 const lapacke_array &made) const
    {
        std::vector<helper_use> added;
        set_use(added, text, when, made);
        if (!said)
            uses.clear();
        uses.insert(uses.end(), added.begin(), added.end());
        said = true;
    }

    void read_workspace(const argument &arg, bool query, const statement &each, std::string text)
    {
        workspace made{arg.name, arg.kind, "", false, {}, parse_condition(take_condition(text))};
        if (query) {
            make_query();
            made.size = take_word(text);
            made.twice = text == "twice";
            made.count = each.clauses.size() > 1 ? parse(each.clauses[1]) : name_of(made.size);
        } else {
            made.count = parse(text);
        }
        made_.workspaces.push_back(made);
    }

    bool is_workspace(const std::string &name) const
    {
        return std::any_of(made_.workspaces.begin(), made_.workspaces.end(),
                           [&](const workspace &each) { return each.name == name; });
    }
    /// A size that the high-level function knows: the answer of a query, or a value of its own.
    bool is_size(const std::string &name) const
    {
        const auto named = [&](const auto &let) { return let.first == name; };
        return std::any_of(made_.workspaces.begin(), made_.workspaces.end(),
                           [&](const workspace &each) { return each.size == name; }) ||
               std::any_of(made_.lets.begin(), made_.lets.end(), named);
    }

    bool is_written(const std::string &name) const
    {
        for (const lapacke_array &each : made_.arrays)
            if (each.arg.name == name)
                return each.arg.written;
        return true;
    }

    std::string type_of_parameter(const argument &arg) const
    {
        const std::string element = lapacke_element(arg, made_.base->element);
        if (arg.kind == "p") // pairs of matrices have one number more
            return std::string("LAPACK_") + made_.base->element + "_SELECT" +
                   std::to_string((complex() ? 1 : 2) + (arg.name == "selctg" ? 1 : 0)) + " ";
        if (is_by_value(arg) || is_size(arg.name))
            return element + " ";
        return (is_written(arg.name) ? "" : "const ") + element + " *";
    }

    void list_parameters()
    {
        for (const argument &each : made_.base->arguments) {
            if (each.kind == "info")
                continue;
            const c_parameter made = {type_of_parameter(each), each.name};
            made_.work_parameters.push_back(made);
            if (!is_workspace(each.name) && !is_size(each.name))
                made_.parameters.push_back(made);
        }
        for (const handed_over &each : made_.handed)
            if (!made_.is_parameter(each.argument))
                made_.parameters.push_back(
                    {lapacke_element(find(each.workspace), made_.base->element) + " *", each.argument});
    }

    int position(const std::vector<c_parameter> &list, const std::string &name) const
    {
        for (std::size_t i = 0; i < list.size(); ++i)
            if (list[i].name == name)
                return static_cast<int>(i) + (made_.has_layout ? 2 : 1);
        fail("`" + name + "` is not in the list of " + made_.name());
    }

    /// Positions, and the leading dimension: the argument behind the array.
    void place_array(lapacke_array &made)
    {
        made.position = position(made_.parameters, made.arg.name);
        if (!made.ld.empty() || made.by_value)
            return;
        const bool needed =
            std::any_of(made.nan.begin(), made.nan.end(),
                        [](const auto &use) { return use.scheme.has_leading_dimension(); }) ||
            (made.scheme && made.scheme->has_leading_dimension());
        if (!needed)
            return;
        const auto &list = made_.work_parameters;
        made.ld_position = position(list, made.arg.name) + 1;
        made.ld = list.at(static_cast<std::size_t>(made.ld_position - (made_.has_layout ? 2 : 1))).name;
        made.ld_is_argument = true;
        if (!made.ld.starts_with("ld"))
            fail("`" + made.arg.name + "` is not followed by its leading dimension");
        if (made.scheme && !made.refused && !made_.transposed) {
            const auto bound = bound_.find(made.arg.name);
            made.refused = infix("<", name_of(made.ld),
                                 bound == bound_.end() ? made.scheme->columns() : bound->second);
        }
    }

    bool has_size_query() const { return !made_.transposed && !made_.uncopied && made_.has_layout; }

    /// A size query is any size of -1.
    condition every_size() const
    {
        condition all;
        for (const workspace &each : made_.workspaces) {
            if (each.size.empty() || !made_.is_work_parameter(each.size))
                continue;
            expression asked = infix("==", name_of(each.size), number(-1));
            all = all ? infix("or", *all, asked) : asked;
        }
        return all;
    }

    const lapacke_row &row_;
    lapacke_routine made_{};
    std::string place_ = row_.place;
    condition size_query_;
    std::map<std::string, expression> bound_;
    std::vector<std::pair<lapacke_check, std::string>> checks_;
};

const routine &find_base(const lapacke_row &row, const std::vector<routine> &base, const std::string &name)
{
    for (const routine &each : base)
        if (each.name == name)
            return each;
    throw table_error(row.place + ": no table has the routine `" + name + "`");
}

} // namespace

bool storage::has_leading_dimension() const
{
    return schemes.at(name).leading_dimension;
}

expression storage::rows() const
{
    const auto size = [&](int i) { return sizes[static_cast<std::size_t>(i)]; };
    if (name == "gb")
        return infix("+", infix("+", size(2), size(3)), number(1));
    const expression rows = size(schemes.at(name).rows);
    return name == "tb" || name == "pb" || name == "sb" || name == "hb" ? infix("+", rows, number(1))
                                                                        : rows;
}

expression storage::columns() const
{
    return sizes[static_cast<std::size_t>(schemes.at(name).columns)];
}

bool lapacke_routine::is_parameter(const std::string &parameter) const
{
    return std::any_of(parameters.begin(), parameters.end(),
                       [&](const c_parameter &each) { return each.name == parameter; });
}

bool lapacke_routine::is_work_parameter(const std::string &parameter) const
{
    return std::any_of(work_parameters.begin(), work_parameters.end(),
                       [&](const c_parameter &each) { return each.name == parameter; });
}

char helper_letter(const argument &arg, char element)
{
    static const std::map<std::string, char> letters = {
        {"float", 's'}, {"double", 'd'}, {"XKL_Complex8", 'c'}, {"XKL_Complex16", 'z'}};
    return letters.at(c_element(arg.kind, element));
}

std::string lapacke_element(const argument &arg, char element)
{
    static const std::map<std::string, std::string> names = {{"int64_t", "lapack_int"},
                                                             {"XKL_Complex8", "lapack_complex_float"},
                                                             {"XKL_Complex16", "lapack_complex_double"}};
    if (arg.kind == "l" || arg.kind == "L")
        return "lapack_logical";
    const std::string type = c_element(arg.kind, element);
    const auto found = names.find(type);
    return found == names.end() ? type : found->second;
}

std::vector<lapacke_routine> read_lapacke(const std::vector<std::string> &files,
                                          const std::vector<routine> &base)
{
    std::vector<lapacke_routine> result;
    for (const std::string &file : files)
        for (const lapacke_row &row : read_lapacke_rows(file))
            for (const std::string &type : cut(row.types, ',')) {
                std::string name = row.name;
                if (const auto mark = name.find('?'); mark != std::string::npos)
                    name.replace(mark, 1, type);
                result.push_back(builder(row, find_base(row, base, name)).build());
                check(result.back());
            }
    return result;
}

} // namespace tablegen
