#include "constants.h"

#include "table.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>
#include <vector>

namespace tablegen {
namespace {

/// An expression of literals, names, `+`, `|`, `<<` from left to right, as the header's constants are.
class constant_reader {
  public:
    /// Whether the line is a constant; its name and value are then kept.
    bool read(const std::string &text)
    {
        std::istringstream words(text);
        std::string define;
        name_.clear();
        if (!(words >> define >> name_) || define != "#define")
            return false;
        std::string operation = "+", word;
        long long value = 0;
        bool any = false;
        while (words >> word) {
            if (word == "+" || word == "|" || word == "<<") {
                operation = word;
                continue;
            }
            const bool literal = std::isdigit(static_cast<unsigned char>(word[0])) || word[0] == '-';
            if (!literal && !values_.contains(word))
                return false;
            const long long right = literal ? std::stoll(word, nullptr, 0) : values_.at(word);
            value = operation == "<<" ? value << right : operation == "|" ? value | right : value + right;
            any = true;
        }
        if (any)
            values_[name_] = value;
        return any;
    }

    const std::string &name() const { return name_; }
    long long value() const { return values_.at(name_); }

  private:
    std::string name_;
    std::map<std::string, long long> values_;
};

/// The lines of a header, continued ones joined, without comments and parentheses.
std::vector<std::string> definitions(const std::string &file)
{
    std::ifstream in(file);
    if (!in)
        throw table_error(file + ": can't be opened");
    std::vector<std::string> lines;
    bool continued = false;
    for (std::string line; std::getline(in, line);) {
        line.resize(std::min(line.size(), line.find("/*")));
        std::erase_if(line, [](char c) { return c == '(' || c == ')'; });
        const bool goes_on = line.ends_with('\\');
        if (goes_on)
            line.pop_back();
        if (continued)
            lines.back() += line;
        else
            lines.push_back(line);
        continued = goes_on;
    }
    return lines;
}

} // namespace

void print_header_constants(std::ostream &out, const std::string &header)
{
    constant_reader reader;
    for (const std::string &line : definitions(header))
        if (reader.read(line))
            out << "  integer(c_int64_t), parameter :: " << reader.name() << " = " << reader.value()
                << "_c_int64_t\n";
}

} // namespace tablegen
