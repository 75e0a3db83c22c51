#include "lapacke_rows.h"

#include "table.h"

#include <fstream>

namespace tablegen {
namespace {

std::string trimmed(const std::string &text)
{
    const auto first = text.find_first_not_of(' ');
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Reads a line together with those that its trailing backslashes add.
bool read_whole_line(std::istream &in, std::string &line, int &number)
{
    if (!std::getline(in, line))
        return false;
    ++number;
    for (std::string more; line.ends_with('\\') && std::getline(in, more); ++number)
        line.replace(line.size() - 1, 1, trimmed(more));
    return true;
}

statement parse_statement(const std::string &place, std::string text)
{
    statement result{place, "", {}};
    for (const char *types : {"real", "complex"})
        if (const std::string prefix = std::string(types) + ": "; text.starts_with(prefix)) {
            result.types = types;
            text.erase(0, prefix.size());
        }
    result.clauses = cut(text, ',');
    return result;
}

} // namespace

std::vector<std::string> cut(const std::string &text, char separator)
{
    std::vector<std::string> parts(1);
    int depth = 0;
    for (const char letter : text) {
        depth += letter == '(' ? 1 : letter == ')' ? -1 : 0;
        if (letter == separator && depth == 0)
            parts.emplace_back();
        else
            parts.back() += letter;
    }
    for (std::string &each : parts)
        each = trimmed(each);
    return parts;
}

std::string take_word(std::string &text)
{
    const auto end = text.find(' ');
    const std::string word = text.substr(0, end);
    text = end == std::string::npos ? "" : trimmed(text.substr(end));
    return word;
}

std::string take_condition(std::string &text)
{
    const std::string spaced = " " + text;
    const auto at = spaced.find(" if ");
    if (at == std::string::npos)
        return "";
    const std::string condition = spaced.substr(at + 4);
    text = trimmed(spaced.substr(0, at));
    return condition;
}

std::vector<lapacke_row> read_lapacke_rows(const std::string &file)
{
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened; check the list of tables in cmake/tables.cmake");
    std::vector<lapacke_row> rows;
    int number = 0;
    for (std::string line; read_whole_line(in, line, number);) {
        const std::string place = file + ":" + std::to_string(number);
        if (line.starts_with("#") || trimmed(line).empty())
            continue;
        if (line.starts_with(" ")) {
            if (rows.empty())
                throw table_error(place + ": a statement stands below the name of its routine");
            rows.back().statements.push_back(parse_statement(place, trimmed(line)));
            continue;
        }
        lapacke_row row{place, take_word(line), take_word(line), {}, {}};
        while (!line.empty())
            row.flags.push_back(take_word(line));
        rows.push_back(row);
    }
    return rows;
}

} // namespace tablegen
