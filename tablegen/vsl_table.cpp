// Reads the tables of random streams and tasks.
#include "vsl_table.h"

#include "table_lines.h"

#include <algorithm>
#include <map>
#include <set>

namespace tablegen {
namespace {

using words = std::vector<std::string>;

/// `above(a)` becomes `above<0>`: rules know other arguments by their index.
std::string parse_check(const table_line &at, const std::string &text,
                        const std::vector<vsl_argument> &ahead)
{
    const auto open = text.find('(');
    if (open == std::string::npos)
        return text;
    const std::string name = text.substr(open + 1, text.size() - open - 2);
    const auto found = std::ranges::find(ahead, name, &vsl_argument::name);
    if (!text.ends_with(')') || found == ahead.end())
        at.fail("check `" + text + "` names no argument ahead of it");
    return text.substr(0, open) + "<" + std::to_string(found - ahead.begin()) + ">";
}

/// The columns behind the third.
std::vector<vsl_argument> parse_arguments(const table_line &at)
{
    std::vector<vsl_argument> list;
    for (std::size_t i = 3; i < at.columns.size(); ++i) {
        const std::string &text = at.columns[i];
        const bool width = text.starts_with('*');
        const words parts = parts_of(text.substr(width), ':');
        if (parts.size() < 2 || parts.size() > 3)
            at.fail("`" + text + "` is not an argument; write name:kind or name:kind:check");
        if (!vsl_kind_exists(parts[1]))
            at.fail("argument `" + parts[0] + "` has the unknown kind `" + parts[1] + "`");
        if (std::ranges::find(list, parts[0], &vsl_argument::name) != list.end())
            at.fail("two arguments are called `" + parts[0] + "`");
        list.push_back(
            {parts[0], parts[1], parts.size() == 3 ? parse_check(at, parts[2], list) : "", width});
    }
    return list;
}

/// The third column.
void parse_frame(const table_line &at, const std::string &text, vsl_routine &row)
{
    using enum vsl_routine::frame;
    static const std::map<std::string, vsl_routine::frame> frames = {
        {"generate", generate}, {"stream", stream}, {"task", task}, {"own", own}};
    const auto end = text.find_first_of(":/");
    const auto found = frames.find(text.substr(0, end));
    const std::string detail = end == std::string::npos ? "" : text.substr(end + 1);
    const bool ruled = found != frames.end() && (found->second == generate || found->second == task);
    if (found == frames.end() || (ruled && detail.empty()))
        at.fail(
            "`" + text +
            "` is no frame; they are `generate:METHODS`, `stream`, `stream/KERNEL`, `task:RULE` and `own`");
    row.is = found->second;
    if (row.is == generate) {
        row.methods = std::atoi(detail.c_str());
        row.accurate = detail.ends_with('+');
        if (row.methods < 1)
            at.fail("`" + text + "` has no methods; write how many there are");
    } else if (row.is == task) {
        row.rule = detail;
    } else if (row.is == stream) {
        row.kernel = detail;
    }
}

/// The names of a row in all its types and kinds of tasks.
void add_routines(const table_line &at, const vsl_routine &row, std::vector<vsl_routine> &to)
{
    const words &columns = at.columns;
    const words names = parts_of(columns[0], ','), types = parts_of(columns[1], ',');
    const bool typed = columns[0].find('?') != std::string::npos;
    const std::map<std::string, std::string> both = {{"Conv", "convolution"}, {"Corr", "correlation"}},
                                             none = {{"", ""}};
    for (const auto &[mark, kind] : columns[0].find('*') == std::string::npos ? none : both)
        for (const std::string &type : types) {
            if (type.size() != 1 || std::string("sdcziul-").find(type) == std::string::npos)
                at.fail("`" + type + "` is no type; types are s, d, c, z, i, u, l, or - for none");
            if (typed && type == "-")
                at.fail("a name with ? lists its types");
            const auto named = [&, &mark = mark](std::string name) {
                if (const auto place = name.find('?'); place != std::string::npos)
                    name.replace(place, 1, type);
                if (const auto place = name.find('*'); place != std::string::npos)
                    name.replace(place, 1, mark);
                return name;
            };
            vsl_routine routine = row;
            routine.name = named(names[0]);
            routine.other = names.size() > 1 ? named(names[1]) : "";
            routine.element = type == "-" ? '\0' : type[0];
            routine.task_kind = kind;
            if (row.is == vsl_routine::frame::generate)
                routine.kernel = "_vsl" + routine.name.substr(1);
            else if (row.is == vsl_routine::frame::stream)
                routine.kernel = "__" + (row.kernel.empty() ? routine.name : row.kernel);
            to.push_back(routine);
        }
}

void add_row(const table_line &at, std::vector<vsl_routine> &routines)
{
    if (at.columns.size() < 3)
        at.fail("a row has the columns name, types, frame and then its arguments");
    vsl_routine row;
    row.about = at.about;
    row.place = at.place;
    parse_frame(at, at.columns[2], row);
    row.arguments = parse_arguments(at);
    add_routines(at, row, routines);
}

} // namespace

std::vector<vsl_argument> vsl_routine::list() const
{
    std::vector<vsl_argument> all;
    if (is == frame::generate)
        all = {{"method", "int", ""}, {"stream", "stream", ""}, {"n", "int", ""}, {"r", "elements", ""}};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

std::vector<vsl_routine> read_vsl_tables(const std::vector<std::string> &files)
{
    std::vector<vsl_routine> routines;
    for (const std::string &file : files)
        for (const table_line &row : read_lines(file))
            add_row(row, routines);
    refuse_doubles(routines, [](const vsl_routine &each) { return each.name; });
    return routines;
}

std::vector<vsl_routine> vsl_kernels(const std::vector<vsl_routine> &routines)
{
    std::vector<vsl_routine> chosen;
    std::set<std::string> seen;
    for (const vsl_routine &each : routines)
        if (!each.kernel.empty() && seen.insert(each.kernel).second)
            chosen.push_back(each);
    return chosen;
}

std::vector<std::string> vsl_fortran_names(const vsl_routine &row)
{
    if (row.is != vsl_routine::frame::task)
        return {};
    const std::string lower = to_lower(row.name);
    std::string upper = row.name;
    std::ranges::transform(upper, upper.begin(), [](unsigned char c) { return std::toupper(c); });
    return {lower, lower + "_", upper + "_"};
}

} // namespace tablegen
