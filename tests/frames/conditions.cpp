#include "conditions.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace conditions {
namespace {

bool is_upper(char c)
{
    return c >= 'A' && c <= 'Z';
}
bool is_lower(char c)
{
    return c >= 'a' && c <= 'z';
}
bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

__extension__ using wide = unsigned __int128;
constexpr number highest = static_cast<number>(~static_cast<wide>(0) >> 1);
constexpr number lowest = -highest - 1;

// What is beyond all numbers stays at the last one: still on the same side of every argument.

number sum_of(number a, number b)
{
    number result = 0;
    return !__builtin_add_overflow(a, b, &result) ? result : b < 0 ? lowest : highest;
}

number product_of(number a, number b)
{
    number result = 0;
    return !__builtin_mul_overflow(a, b, &result) ? result : (a < 0) != (b < 0) ? lowest : highest;
}

class parser {
  public:
    parser(std::string_view text, const std::vector<std::string> &names) : text_(text), names_(names) {}

    term whole()
    {
        term read = condition();
        if (skip_blanks(); next_ != text_.size())
            fail("nothing is expected here");
        return read;
    }

  private:
    term condition()
    {
        term test = chain(term::either, "or",
                          [this] { return chain(term::both, "and", [this] { return this->test(); }); });
        if (!takes("?"))
            return test;
        term yes = condition();
        expect(":");
        return {term::choice, {std::move(test), std::move(yes), condition()}};
    }

    /// One operand, or several of them with the same operator between them.
    template <class Operand>
    term chain(term::kind what, const char *sign, Operand operand)
    {
        std::vector<term> parts{operand()};
        while (takes(sign))
            parts.push_back(operand());
        return parts.size() == 1 ? std::move(parts[0]) : term{what, std::move(parts)};
    }

    term test()
    {
        term left = sum();
        if (takes("not in"))
            return opposite(letters_of(left));
        if (takes("in"))
            return letters_of(left);
        // Longer signs first: each is a beginning of the next.
        for (const std::string sign : {"<=", ">=", "!=", "<", ">", "="})
            if (takes(sign))
                return comparison(sign, std::move(left));
        return left;
    }

    term comparison(const std::string &sign, term left)
    {
        skip_blanks();
        if ((sign == "=" || sign == "!=") && is_upper(peek()))
            return sign == "=" ? letters_of(left) : opposite(letters_of(left));
        term right = sum();
        if (sign == "=" || sign == "!=") {
            term same{term::equal, {std::move(left), std::move(right)}};
            return sign == "=" ? same : opposite(std::move(same));
        }
        if (sign == "<" || sign == ">=") {
            term below{term::less, {std::move(left), std::move(right)}};
            return sign == "<" ? below : opposite(std::move(below));
        }
        term above{term::less, {std::move(right), std::move(left)}};
        return sign == ">" ? above : opposite(std::move(above));
    }

    static term opposite(term test) { return {term::inverted, {std::move(test)}}; }

    term letters_of(const term &left)
    {
        if (left.what != term::name)
            fail("letters are compared with an argument");
        skip_blanks();
        term among{term::among, {}, 0, left.argument};
        while (is_upper(peek()))
            among.letters += text_[next_++];
        if (among.letters.empty())
            fail("upper-case letters are expected here");
        return among;
    }

    term sum()
    {
        std::vector<term> parts{product()};
        for (;;)
            if (takes("+"))
                parts.push_back(product());
            else if (takes("-"))
                parts.push_back({term::negated, {product()}});
            else
                return parts.size() == 1 ? std::move(parts[0]) : term{term::sum, std::move(parts)};
    }

    term product()
    {
        return chain(term::product, "*", [this] { return item(); });
    }

    term item()
    {
        if (takes("-"))
            return {term::negated, {item()}};
        if (takes("(")) {
            term inner = condition();
            expect(")");
            return inner;
        }
        skip_blanks();
        if (is_digit(peek()))
            return constant();
        const std::string word = this->word();
        if (word == "max" || word == "min" || word == "abs")
            return function(word);
        const auto found = std::find(names_.begin(), names_.end(), word);
        if (found == names_.end())
            fail("'" + word + "' is no argument of the routine");
        return {term::name, {}, 0, static_cast<std::size_t>(found - names_.begin())};
    }

    term function(const std::string &name)
    {
        term call{name == "max" ? term::max : name == "min" ? term::min : term::absolute};
        expect("(");
        do
            call.parts.push_back(condition());
        while (takes(","));
        expect(")");
        return call;
    }

    term constant()
    {
        number value = 0;
        while (is_digit(peek()))
            value = value * 10 + (text_[next_++] - '0');
        return {term::constant, {}, value};
    }

    std::string word()
    {
        std::string read;
        while (is_lower(peek()) || is_digit(peek()) || peek() == '_')
            read += text_[next_++];
        if (read.empty())
            fail("a name or a number is expected here");
        return read;
    }

    bool takes(std::string_view sign)
    {
        skip_blanks();
        if (text_.substr(next_, sign.size()) != sign)
            return false;
        const std::size_t after = next_ + sign.size();
        const bool goes_on = after < text_.size() && (is_lower(text_[after]) || text_[after] == '_');
        if (is_lower(sign.back()) && goes_on) // the beginning of a longer name
            return false;
        next_ = after;
        return true;
    }

    void expect(std::string_view sign)
    {
        if (!takes(sign))
            fail("'" + std::string(sign) + "' is expected here");
    }

    void skip_blanks()
    {
        while (peek() == ' ' || peek() == '\t')
            ++next_;
    }

    char peek() const { return next_ < text_.size() ? text_[next_] : '\0'; }

    [[noreturn]] void fail(const std::string &what) const
    {
        throw std::invalid_argument("in `" + std::string(text_) + "`, column " + std::to_string(next_ + 1) +
                                    ": " + what);
    }

    std::string_view text_;
    const std::vector<std::string> &names_;
    std::size_t next_ = 0;
};

/// SGEMM and DGEMM for ?GEMM(S,D).
std::vector<std::string> expanded(const std::string &pattern)
{
    const std::size_t open = pattern.find('('), mark = pattern.find('?');
    if (open == std::string::npos && mark == std::string::npos)
        return {pattern};
    if (open == std::string::npos || mark > open || pattern.back() != ')')
        throw std::invalid_argument("'" + pattern + "': write ?NAME(S,D)");
    std::istringstream types(pattern.substr(open + 1, pattern.size() - open - 2));
    std::vector<std::string> names;
    for (std::string type; std::getline(types, type, ',');)
        names.push_back(pattern.substr(0, mark) + type + pattern.substr(mark + 1, open - mark - 1));
    return names;
}

class table_reader {
  public:
    std::vector<tested_routine> read(const std::string &path)
    {
        std::ifstream file(path);
        if (!file)
            throw std::invalid_argument(path + ": cannot be read");
        std::string line;
        for (int at = 1; std::getline(file, line); ++at)
            try {
                take(line);
            } catch (const std::invalid_argument &wrong) {
                throw std::invalid_argument(path + ":" + std::to_string(at) + ": " + wrong.what());
            }
        for (tested_routine &routine : routines_)
            routine.reported_name = reported(routine.name);
        return std::move(routines_);
    }

  private:
    void take(const std::string &line)
    {
        std::istringstream words(line);
        std::string first;
        if (!(words >> first) || first[0] == '#')
            return;
        if (first == "routines")
            open_block(words);
        else if (first == "unpadded")
            for (std::string name; words >> name;)
                unpadded_.insert(name);
        else if (is_digit(first[0]))
            add_test(std::stoul(first), words);
        else
            throw std::invalid_argument("'" + first + "': write routines, unpadded or a position");
    }

    void open_block(std::istringstream &patterns)
    {
        if (block_ < routines_.size() && !routines_.back().tests.empty())
            block_ = routines_.size();
        for (std::string pattern; patterns >> pattern;)
            for (const std::string &name : expanded(pattern)) {
                if (!names_.insert(name).second)
                    throw std::invalid_argument(name + " has rows already");
                routines_.push_back({name, "", {}});
            }
    }

    void add_test(std::size_t position, std::istringstream &rest)
    {
        std::string condition;
        std::getline(rest >> std::ws, condition);
        const bool each = condition.starts_with("each ");
        for (std::size_t i = block_; i < routines_.size(); ++i)
            routines_[i].tests.push_back({position, each, each ? condition.substr(5) : condition});
    }

    std::string reported(const std::string &name) const
    {
        if (name.size() < 6)
            return name + std::string(6 - name.size(), ' ');
        return name.size() == 6 || unpadded_.contains(name) ? name : name + " ";
    }

    std::vector<tested_routine> routines_;
    std::size_t block_ = 0; // where the routines of the current rows begin
    std::set<std::string> names_, unpadded_;
};

} // namespace

term parse(std::string_view text, const std::vector<std::string> &names)
{
    return parser(text, names).whole();
}

number evaluate(const term &part, const numbers &arguments)
{
    const auto value = [&](std::size_t i) { return evaluate(part.parts[i], arguments); };
    const auto folded = [&](auto fold) {
        number result = value(0);
        for (std::size_t i = 1; i < part.parts.size(); ++i)
            result = fold(result, value(i));
        return result;
    };
    switch (part.what) {
    case term::constant:
        return part.value;
    case term::name:
        return arguments[part.argument];
    case term::among: {
        const number given = arguments[part.argument];
        return given > 0 && given < 128 &&
               part.letters.find(static_cast<char>(std::toupper(static_cast<int>(given)))) !=
                   std::string::npos;
    }
    case term::equal:
        return value(0) == value(1);
    case term::less:
        return value(0) < value(1);
    case term::both:
        return folded([](number a, number b) { return a != 0 && b != 0; });
    case term::either:
        return folded([](number a, number b) { return a != 0 || b != 0; });
    case term::inverted:
        return value(0) == 0;
    case term::choice:
        return value(0) != 0 ? value(1) : value(2);
    case term::sum:
        return folded(sum_of);
    case term::product:
        return folded(product_of);
    case term::negated:
        return product_of(-1, value(0));
    case term::max:
        return folded([](number a, number b) { return std::max(a, b); });
    case term::min:
        return folded([](number a, number b) { return std::min(a, b); });
    case term::absolute:
        return value(0) < 0 ? -value(0) : value(0);
    }
    throw std::logic_error("a kind of term without a value");
}

std::vector<tested_routine> read_table(const std::string &path)
{
    return table_reader().read(path);
}

} // namespace conditions
