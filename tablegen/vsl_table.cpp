// Reads the tables of random streams and tasks.
#include "vsl_table.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace tablegen {
namespace {

using words = std::vector<std::string>;

words split(const std::string &text, char separator)
{
    words parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        parts.push_back(part);
    return parts;
}

struct bad_row {
    std::string place;
    [[noreturn]] void operator()(const std::string &what) const { throw table_error(place + ": " + what); }
};

/// `above(a)` becomes `above<0>`: rules know other arguments by their index.
std::string parse_check(const bad_row &fail, const std::string &text,
                        const std::vector<vsl_argument> &ahead)
{
    const auto open = text.find('(');
    if (open == std::string::npos)
        return text;
    const std::string name = text.substr(open + 1, text.size() - open - 2);
    const auto found = std::ranges::find(ahead, name, &vsl_argument::name);
    if (!text.ends_with(')') || found == ahead.end())
        fail("check `" + text + "` names no argument ahead of it");
    return text.substr(0, open) + "<" + std::to_string(found - ahead.begin()) + ">";
}

std::vector<vsl_argument> parse_arguments(const bad_row &fail, words::const_iterator begin,
                                          words::const_iterator end)
{
    std::vector<vsl_argument> list;
    for (; begin != end; ++begin) {
        const bool width = begin->starts_with('*');
        const words parts = split(begin->substr(width), ':');
        if (parts.size() < 2 || parts.size() > 3)
            fail("`" + *begin + "` is not an argument; write name:kind or name:kind:check");
        if (!vsl_kind_exists(parts[1]))
            fail("argument `" + parts[0] + "` has the unknown kind `" + parts[1] + "`");
        if (std::ranges::find(list, parts[0], &vsl_argument::name) != list.end())
            fail("two arguments are called `" + parts[0] + "`");
        list.push_back(
            {parts[0], parts[1], parts.size() == 3 ? parse_check(fail, parts[2], list) : "", width});
    }
    return list;
}

/// The third column.
void parse_frame(const bad_row &fail, const std::string &text, vsl_routine &row)
{
    using enum vsl_routine::frame;
    static const std::map<std::string, vsl_routine::frame> frames = {
        {"generate", generate}, {"stream", stream}, {"task", task}, {"own", own}};
    const auto end = text.find_first_of(":/");
    const auto found = frames.find(text.substr(0, end));
    const std::string detail = end == std::string::npos ? "" : text.substr(end + 1);
    const bool ruled = found != frames.end() && (found->second == generate || found->second == task);
    if (found == frames.end() || (ruled && detail.empty()))
        fail(
            "`" + text +
            "` is no frame; they are `generate:METHODS`, `stream`, `stream/KERNEL`, `task:RULE` and `own`");
    row.is = found->second;
    if (row.is == generate) {
        row.methods = std::atoi(detail.c_str());
        row.accurate = detail.ends_with('+');
        if (row.methods < 1)
            fail("`" + text + "` has no methods; write how many there are");
    } else if (row.is == task) {
        row.rule = detail;
    } else if (row.is == stream) {
        row.kernel = detail;
    }
}

/// The names of a row in all its types and kinds of tasks.
void add_routines(const bad_row &fail, const words &columns, const vsl_routine &row,
                  std::vector<vsl_routine> &to)
{
    const words names = split(columns[0], ','), types = split(columns[1], ',');
    const bool typed = columns[0].find('?') != std::string::npos;
    const std::map<std::string, std::string> both = {{"Conv", "convolution"}, {"Corr", "correlation"}},
                                             none = {{"", ""}};
    for (const auto &[mark, kind] : columns[0].find('*') == std::string::npos ? none : both)
        for (const std::string &type : types) {
            if (type.size() != 1 || std::string("sdcziul-").find(type) == std::string::npos)
                fail("`" + type + "` is no type; types are s, d, c, z, i, u, l, or - for none");
            if (typed && type == "-")
                fail("a name with ? lists its types");
            const auto named = [&, &mark = mark](std::string name) {
                if (const auto at = name.find('?'); at != std::string::npos)
                    name.replace(at, 1, type);
                if (const auto at = name.find('*'); at != std::string::npos)
                    name.replace(at, 1, mark);
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

void read_table(const std::string &file, std::vector<vsl_routine> &routines)
{
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened");
    std::string line, about;
    bool goes_on = false; // a description
    for (int number = 1; std::getline(in, line); ++number) {
        const bool describes = line.starts_with("#: ");
        if (describes)
            about = (goes_on ? about + "\n" : "") + line.substr(3);
        goes_on = describes;
        std::istringstream text(line.starts_with("#") ? "" : line);
        words columns;
        for (std::string word; text >> word;)
            columns.push_back(word);
        if (columns.empty())
            continue;
        const bad_row fail{file + ":" + std::to_string(number)};
        if (columns.size() < 3)
            fail("a row has the columns name, types, frame and then its arguments");
        vsl_routine row;
        row.about = about;
        row.place = fail.place;
        parse_frame(fail, columns[2], row);
        row.arguments = parse_arguments(fail, columns.begin() + 3, columns.end());
        add_routines(fail, columns, row, routines);
    }
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
        read_table(file, routines);
    std::map<std::string, std::string> first;
    for (const vsl_routine &each : routines)
        if (const auto [other, fresh] = first.emplace(each.name, each.place); !fresh)
            throw table_error(each.place + ": " + each.name + " stands in " + other->second + " already");
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
