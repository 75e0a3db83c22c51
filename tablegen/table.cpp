// Reads tables. Every row is checked here, whole, so that the printers below can trust it.
#include "table.h"

#include "kinds.h"
#include "table_lines.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace tablegen {

std::string to_lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::string routine::lower() const
{
    return to_lower(name);
}

namespace {

using words = std::vector<std::string>;

/// Hands out a table's rows with their directives and documentation applied.
class reader {
  public:
    explicit reader(const std::string &file) : file_(file), in_(file)
    {
        if (!in_)
            throw table_error(file + ": can't be opened; check the list of tables in cmake/tables.cmake");
    }

    /// The columns of the next row, or nothing at the end of the file.
    words next()
    {
        std::string line;
        while (std::getline(in_, line)) {
            ++line_;
            if (line.starts_with("#:")) {
                const auto start = line.find_first_not_of(' ', 2);
                about_ = start == std::string::npos ? "" : line.substr(start);
            } else if (line.starts_with("@")) {
                directive(words_of(line));
            } else if (!line.starts_with("#")) {
                if (words columns = words_of(line); !columns.empty())
                    return columns;
            }
        }
        return {};
    }

    const std::string &file() const { return file_; }
    std::string place() const { return file_ + ":" + std::to_string(line_); }
    const std::string &about() const { return about_; }

    bool has_setting(const std::string &name) const { return settings_.contains(name); }

    const std::string &setting(const std::string &name) const
    {
        const auto found = settings_.find(name);
        if (found == settings_.end())
            fail("no @" + name + " stands above this row");
        return found->second;
    }

    [[noreturn]] void fail(const std::string &what) const { throw table_error(place() + ": " + what); }

  private:
    void directive(const words &columns)
    {
        static const std::set<std::string> known = {"@family", "@entries", "@spellings", "@arrays"};
        if (columns.size() != 2 || !known.contains(columns[0]))
            fail(
                "a directive is `@family NAME`, `@entries PREFIX`, `@spellings RULE` or `@arrays written`");
        if (columns[0] == "@spellings" && !spelling_rule_exists(columns[1]))
            fail("there is no spelling rule `" + columns[1] + "` (tablegen/names.cpp has them)");
        settings_[columns[0].substr(1)] = columns[1];
    }

    std::string file_;
    std::ifstream in_;
    int line_ = 0;
    std::string about_;
    std::map<std::string, std::string> settings_;
};

frame_spec parse_frame(const reader &at, std::string text)
{
    frame_spec frame;
    if (const auto slash = text.find('/'); slash != std::string::npos) {
        frame.option = text.substr(slash + 1);
        text.resize(slash);
    }
    if (const auto colon = text.find(':'); colon != std::string::npos) {
        frame.rule = text.substr(colon + 1);
        text.resize(colon);
    }
    frame.group = text.ends_with("-group");
    frame.kind = frame.group ? text.substr(0, text.size() - 6) : text;
    static const std::set<std::string> known = {
        "checked", "guarded", "registered", "traced", "through", "solver", "cluster",      "appending",
        "reading", "valued",  "forward",    "helper", "own",     "entry",  "forward-mixed"};
    if (!known.contains(frame.kind))
        at.fail("unknown frame `" + text +
                "`; frames are checked, guarded, registered, traced, through, solver, cluster, appending, "
                "reading, valued, forward, forward-mixed, helper, own, entry");
    static const std::set<std::string> ruled = {"checked", "guarded", "valued", "helper"};
    if (ruled.contains(frame.kind) != !frame.rule.empty() && frame.kind != "forward")
        at.fail(
            "a checked, guarded or valued frame names its checks (`checked:gemm`), a helper its template "
            "(`helper:tr_trans`), and no other frame has a rule");
    if (frame.option == "here" && frame.kind != "through")
        at.fail("only what a through frame calls can be `/here`, in this library");
    if (frame.group && frame.kind != "checked" && frame.kind != "traced")
        at.fail("only checked and traced frames have a group form");
    return frame;
}

argument parse_argument(const reader &at, const std::string &text)
{
    const auto colon = text.find(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size())
        at.fail("`" + text + "` is not an argument; write name:kind, with ! behind it if it is written");
    argument result{text.substr(0, colon), text.substr(colon + 1), text.ends_with("!")};
    if (result.written)
        result.kind.pop_back();
    if (!kind_exists(result.kind))
        at.fail("argument `" + result.name + "` has the unknown kind `" + result.kind + "`");
    return result;
}

std::vector<argument> parse_arguments(const reader &at, words::const_iterator begin,
                                      words::const_iterator end)
{
    std::vector<argument> arguments;
    std::set<std::string> seen;
    for (; begin != end; ++begin) {
        arguments.push_back(parse_argument(at, *begin));
        if (!seen.insert(arguments.back().name).second)
            at.fail("two arguments are called `" + arguments.back().name + "`");
    }
    return arguments;
}

/// A type's letter is the letter of its elements: CS and SC are complex with a real companion, so C. Tables
/// of C names have it in lower case.
char element_of(const reader &at, const std::string &prefix)
{
    for (const char letter : {'Z', 'C', 'D', 'S'})
        if (prefix.find(letter) != std::string::npos ||
            prefix.find(letter - 'A' + 'a') != std::string::npos)
            return letter;
    at.fail("type `" + prefix + "` has none of the letters S, D, C, Z");
}

struct instance {
    std::string name;
    char element;
    std::string untyped;
};

/// `xkl_csrmv` for XKL_?CSRMV, `xkl_sparse_mv` for xkl_sparse_?_mv.
std::string untyped_name(const std::string &pattern)
{
    std::string name = to_lower(pattern);
    if (const auto mark = name.find("_?_"); mark != std::string::npos)
        name.erase(mark, 2);
    std::erase(name, '?');
    return name;
}

std::vector<instance> expand(const reader &at, const std::string &pattern, const std::string &types)
{
    const auto mark = pattern.find('?');
    if ((mark == std::string::npos) != (types == "-"))
        at.fail("a name with ? lists its types, a name without has the types `-`");
    if (mark == std::string::npos)
        return {{pattern, 0, ""}};
    const std::string untyped = untyped_name(pattern);
    std::vector<instance> result;
    for (const std::string &prefix : parts_of(types, ',')) {
        std::string name = pattern;
        result.push_back({name.replace(mark, 1, prefix), element_of(at, prefix), untyped});
    }
    return result;
}

void parse_result(const reader &at, const std::string &text, routine &row)
{
    const auto colon = text.find(':');
    row.result = text.substr(0, colon);
    if (colon != std::string::npos)
        row.failed_result = std::stoi(text.substr(colon + 1));
    if (!result_exists(row.result))
        at.fail("unknown result `" + row.result + "`");
}

/// Service rows have no types column: they exist once.
bool is_service(const std::string &family)
{
    return family == "service";
}

void read_table(const std::string &file, std::vector<routine> &routines)
{
    reader at(file);
    for (words columns = at.next(); !columns.empty(); columns = at.next()) {
        const std::string family = at.setting("family");
        if (is_service(family))
            columns.insert(columns.begin() + 1, "-");
        if (columns.size() < 4)
            at.fail("a row has the columns name, types, frame, result and then its arguments");
        routine row;
        row.frame = parse_frame(at, columns[2]);
        parse_result(at, columns[3], row);
        row.arguments = parse_arguments(at, columns.begin() + 4, columns.end());
        if (at.has_setting("arrays")) // no table tells which arrays these routines only read
            for (argument &each : row.arguments)
                each.written = each.written || is_array(each);
        row.family = family;
        row.entries = at.has_setting("entries") ? at.setting("entries") : family;
        row.spellings = at.setting("spellings");
        row.about = at.about();
        row.place = at.place();
        for (const instance &one : expand(at, columns[0], columns[1])) {
            routine typed = row;
            typed.name = one.name;
            typed.element = one.element;
            typed.untyped = one.untyped;
            for (const argument &each : typed.arguments)
                if (!kind_fits(each.kind, one.element))
                    at.fail("argument `" + each.name + "`: kind " + each.kind +
                            " needs a routine with a type");
                else if (row.frame.kind == "valued" && !kind_has_value(each.kind))
                    at.fail("argument `" + each.name + "`: a valued frame takes no kind " + each.kind);
            routines.push_back(typed);
        }
    }
}

const routine &find(const reader &at, const std::vector<routine> &base, const std::string &name)
{
    const auto found =
        std::find_if(base.begin(), base.end(), [&](const routine &each) { return each.name == name; });
    if (found == base.end())
        at.fail("no table has the routine `" + name + "`");
    return *found;
}

/// The providers of a row's routines, one a type. All types have one template, called as the routine if the row
/// does not name it.
void add_providers(const reader &at, const std::vector<routine> &base, const words &columns,
                   std::vector<provider> &to)
{
    if (columns.size() != 3)
        at.fail("a row has the columns name, types and provider");
    const auto colon = columns[2].find(':');
    const std::string by = columns[2].substr(0, colon);
    const std::string detail = colon == std::string::npos ? "" : columns[2].substr(colon + 1);
    static const std::set<std::string> known = {"openblas", "tmglib", "own"};
    const bool own = by == "own", detailed = colon != std::string::npos;
    if (!known.contains(by) || detailed == detail.empty() || detail.starts_with('/') ||
        detail.ends_with('/'))
        at.fail("`" + columns[2] +
                "` is no provider; they are `openblas`, `openblas:ROUTINE`, `tmglib`, `own:HEADER`, "
                "`own:HEADER/FUNCTION` and `own`");
    const auto slash = detail.find('/');
    const std::string called =
        slash == std::string::npos ? untyped_name(columns[0]) : detail.substr(slash + 1);
    const std::string folder = std::filesystem::path(at.file()).parent_path().filename();
    const auto callees = expand(at, own || detail.empty() ? columns[0] : detail, columns[1]);
    auto callee = callees.begin();
    for (const instance &one : expand(at, columns[0], columns[1])) {
        const std::string name = find(at, base, one.name).name;
        to.push_back(
            {name, by, own ? called : to_lower(callee->name), own ? detail.substr(0, slash) : "", folder});
        ++callee;
    }
}

} // namespace

std::vector<routine> read_tables(const std::vector<std::string> &files)
{
    std::vector<routine> routines;
    for (const std::string &file : files)
        read_table(file, routines);
    refuse_doubles(routines, [](const routine &each) { return each.name; });
    return routines;
}

std::vector<shaped> read_shapes(const std::string &file, const std::vector<routine> &base)
{
    reader at(file);
    std::vector<shaped> result;
    for (words columns = at.next(); !columns.empty(); columns = at.next()) {
        if (columns.size() != 3)
            at.fail("a row has the columns name, types, shape");
        for (const instance &one : expand(at, columns[0], columns[1]))
            result.push_back({columns[2], &find(at, base, one.name), at.place()});
    }
    return result;
}

std::vector<provider> read_providers(const std::vector<std::string> &files,
                                     const std::vector<routine> &base)
{
    std::vector<provider> result;
    for (const std::string &file : files) {
        reader at(file);
        for (words columns = at.next(); !columns.empty(); columns = at.next())
            add_providers(at, base, columns, result);
    }
    return result;
}

} // namespace tablegen
