// A parser by recursive descent, one function a level of precedence, and the printer.
#include "lapacke_expression.h"

#include <cctype>
#include <map>
#include <stdexcept>

namespace tablegen {
namespace {

/// Cuts the text into words: names and numbers, 'x' letters, and operators.
std::vector<std::string> words_of(const std::string &text)
{
    std::vector<std::string> words;
    const auto is_name = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    for (std::size_t i = 0; i < text.size();) {
        std::size_t length = 1;
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        if (is_name(text[i]))
            while (i + length < text.size() && is_name(text[i + length]))
                ++length;
        else if (text[i] == '\'')
            length = 3;
        else if (i + 1 < text.size() && text[i + 1] == '=' && std::string("<>=!").find(text[i]) < 4)
            length = 2;
        words.push_back(text.substr(i, length));
        i += length;
    }
    return words;
}

class parser {
  public:
    explicit parser(const std::string &text) : text_(text), words_(words_of(text)) {}

    expression whole()
    {
        expression value = choice();
        if (at_ != words_.size())
            fail("`" + words_[at_] + "` is not understood");
        return value;
    }

  private:
    [[noreturn]] void fail(const std::string &what) const
    {
        throw std::invalid_argument("expression `" + text_ + "`: " + what);
    }

    bool take(const std::string &word)
    {
        if (at_ == words_.size() || words_[at_] != word)
            return false;
        ++at_;
        return true;
    }
    void need(const std::string &word)
    {
        if (!take(word))
            fail("`" + word + "` is missing");
    }
    std::string next()
    {
        if (at_ == words_.size())
            fail("it ends too early");
        return words_[at_++];
    }

    expression choice()
    {
        expression condition = either();
        if (!take("?"))
            return condition;
        expression yes = choice();
        need(":");
        return {"?", "", {condition, yes, choice()}};
    }
    expression either()
    {
        expression value = both();
        while (take("or"))
            value = infix("or", value, both());
        return value;
    }
    expression both()
    {
        expression value = negation();
        while (take("and"))
            value = infix("and", value, negation());
        return value;
    }
    expression negation() { return take("not") ? expression{"not", "", {negation()}} : comparison(); }
    expression comparison()
    {
        const expression value = sum();
        if (take("in"))
            return {"in", next(), {value}};
        for (const char *op : {"<", ">", "<=", ">=", "==", "!="})
            if (take(op))
                return infix(op, value, sum());
        return value;
    }
    expression sum()
    {
        expression value = product();
        for (;;)
            if (take("+"))
                value = infix("+", value, product());
            else if (take("-"))
                value = infix("-", value, product());
            else
                return value;
    }
    expression product()
    {
        expression value = unary();
        for (;;)
            if (take("*"))
                value = infix("*", value, unary());
            else if (take("/"))
                value = infix("/", value, unary());
            else
                return value;
    }
    expression unary()
    {
        if (take("-")) {
            const expression value = unary();
            return value.op == "number" ? expression{"number", "-" + value.text, {}}
                                        : infix("-", {"number", "0", {}}, value);
        }
        if (take("*"))
            return {"first", "", {unary()}};
        return primary();
    }
    expression primary()
    {
        if (take("(")) {
            expression value = choice();
            need(")");
            return value;
        }
        const std::string word = next();
        const auto first = static_cast<unsigned char>(word[0]);
        if (std::isdigit(first))
            return {"number", word, {}};
        if (first == '\'')
            return {"letter", word, {}};
        if (!std::isalpha(first))
            fail("`" + word + "` is no value");
        return take("(") ? call(word) : name_of(word);
    }
    expression call(const std::string &function)
    {
        static const std::set<std::string> known = {"max", "min", "nonzero", "rows_exchanged"};
        if (!known.contains(function))
            fail("there is no function `" + function + "`");
        expression value = {"call", function, {}};
        do
            value.parts.push_back(choice());
        while (take(","));
        need(")");
        return value;
    }

    const std::string text_;
    const std::vector<std::string> words_;
    std::size_t at_ = 0;
};

bool is_arithmetic(const std::string &op)
{
    return op == "+" || op == "-" || op == "*" || op == "/";
}

/// How tightly an operator binds, as C++ has it.
int rank(const expression &value)
{
    static const std::map<std::string, int> ranks = {
        {"?", 0},  {"or", 1}, {"and", 2}, {"==", 3}, {"!=", 3}, {"<", 4},   {">", 4},    {"<=", 4},
        {">=", 4}, {"+", 5},  {"-", 5},   {"*", 6},  {"/", 6},  {"not", 7}, {"first", 7}};
    const auto found = ranks.find(value.op);
    return found == ranks.end() ? 8 : found->second;
}

/// In parentheses where the operator around it binds more tightly, and around `and` within `or`.
std::string inner(const expression &value, int outer)
{
    const bool mixed = value.op == "and" && outer == 1;
    const std::string text = printed(value);
    return mixed || rank(value) < outer ? "(" + text + ")" : text;
}

/// Whether a value is an extent rather than an integer.
bool is_extent(const expression &value)
{
    if (value.op == "?")
        return is_extent(value.parts[1]) || is_extent(value.parts[2]);
    return is_arithmetic(value.op);
}

/// The first operand of arithmetic: an extent, whose operators are safe.
std::string extent_of(const expression &value, int outer)
{
    return is_extent(value) ? inner(value, outer) : "extent(" + printed(value) + ")";
}

std::string printed_arithmetic(const expression &value)
{
    const int outer = rank(value);
    return extent_of(value.parts[0], outer) + " " + value.op + " " + inner(value.parts[1], outer + 1);
}

std::string printed_call(const expression &value)
{
    static const std::map<std::string, std::string> names = {{"max", "most"}, {"min", "least"}};
    const auto found = names.find(value.text);
    std::string text = (found == names.end() ? value.text : found->second) + "(";
    for (const expression &each : value.parts)
        text += (text.ends_with('(') ? "" : ", ") + printed(each);
    return text + ")";
}

/// Both sides of a choice have one type.
std::string printed_choice(const expression &value, bool extents)
{
    const auto side = [&](const expression &each, int outer) {
        if (each.op == "?")
            return outer ? "(" + printed_choice(each, extents) + ")" : printed_choice(each, extents);
        return extents && !is_extent(each) ? "extent(" + printed(each) + ")" : inner(each, outer);
    };
    return inner(value.parts[0], 1) + " ? " + side(value.parts[1], 1) + " : " + side(value.parts[2], 0);
}

std::string printed_comparison(const expression &value)
{
    const auto side = [&](const expression &each) {
        return is_extent(each) ? "(" + printed(each) + ").value" : inner(each, rank(value));
    };
    return side(value.parts[0]) + " " + value.op + " " + side(value.parts[1]);
}

std::string printed_in(const expression &value)
{
    std::string text = "one_of(" + printed(value.parts[0]);
    for (const char letter : value.text)
        text += std::string(", '") + letter + "'";
    return text + ")";
}

} // namespace

expression parse_expression(const std::string &text)
{
    return parser(text).whole();
}

expression name_of(const std::string &name)
{
    return {"name", name, {}};
}

expression infix(const std::string &op, expression left, expression right)
{
    return {op, "", {std::move(left), std::move(right)}};
}

expression at_least_one(expression value)
{
    return {"call", "max", {{"number", "1", {}}, std::move(value)}};
}

std::string printed(const expression &value)
{
    static const std::map<std::string, std::string> constants = {{"COL", "column_major"},
                                                                 {"ROW", "row_major"}};
    static const std::map<std::string, std::string> operators = {{"or", "||"}, {"and", "&&"}};
    const std::string &op = value.op;
    if (op == "name" && constants.contains(value.text))
        return constants.at(value.text);
    if (op == "name" || op == "number" || op == "letter")
        return value.text;
    if (op == "call")
        return printed_call(value);
    if (op == "in")
        return printed_in(value);
    if (op == "?")
        return printed_choice(value, is_extent(value));
    if (op == "not")
        return "!" + inner(value.parts[0], 7);
    if (op == "first")
        return "*" + inner(value.parts[0], 7);
    if (is_arithmetic(op))
        return printed_arithmetic(value);
    const auto found = operators.find(op);
    if (found == operators.end())
        return printed_comparison(value);
    const int outer = rank(value);
    return inner(value.parts[0], outer) + " " + found->second + " " + inner(value.parts[1], outer);
}

void add_names(const expression &value, std::set<std::string> &names)
{
    if (value.op == "name")
        names.insert(value.text);
    for (const expression &each : value.parts)
        add_names(each, names);
}

value_type_of type_of(const expression &value, const std::set<std::string> &letters)
{
    static const std::set<std::string> truths = {"in", "and", "or", "not", "<",
                                                 ">",  "<=",  ">=", "==",  "!="};
    if (value.op == "?")
        return type_of(value.parts[1], letters);
    if (value.op == "letter" || (value.op == "name" && letters.contains(value.text)))
        return value_type_of::letter;
    return truths.contains(value.op) ? value_type_of::truth : value_type_of::integer;
}

} // namespace tablegen
