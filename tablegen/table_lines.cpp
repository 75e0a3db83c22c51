// Reads rows of words.
#include "table_lines.h"

#include <fstream>
#include <sstream>

namespace tablegen {

std::vector<table_line> read_lines(const std::string &file)
{
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened; check the list of tables in cmake/tables.cmake");
    std::vector<table_line> rows;
    std::string line, about;
    bool goes_on = false; // a description
    for (int number = 1; std::getline(in, line); ++number) {
        const bool describes = line.starts_with("#: ");
        if (describes)
            about = (goes_on ? about + "\n" : "") + line.substr(3);
        goes_on = describes;
        if (const auto columns = words_of(line.starts_with("#") ? "" : line); !columns.empty())
            rows.push_back({file + ":" + std::to_string(number), columns, about});
    }
    return rows;
}

std::vector<std::string> words_of(const std::string &text)
{
    std::istringstream in(text);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

std::vector<std::string> parts_of(const std::string &text, char separator)
{
    std::istringstream in(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(in, part, separator);)
        parts.push_back(part);
    return parts;
}

std::string comment(const std::string &about, const std::string &start, const std::string &next,
                    const std::string &end)
{
    std::string text;
    for (const std::string &line : parts_of(about, '\n'))
        text += (text.empty() ? start : next) + line;
    return (text.empty() ? start : text) + end;
}

} // namespace tablegen
