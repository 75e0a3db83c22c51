#include "promises.h"

#include <cfloat>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

double value_of(const std::string &word, bool single)
{
    if (word == "max")
        return single ? FLT_MAX : DBL_MAX;
    if (word == "min")
        return single ? FLT_MIN : DBL_MIN;
    if (word == "tiny")
        return single ? FLT_TRUE_MIN : DBL_TRUE_MIN;
    if (word == "pi/2")
        return M_PI_2;
    size_t read = 0;
    const double value = std::stod(word, &read);
    if (read != word.size())
        throw std::runtime_error("'" + word + "' is not a number");
    return value;
}

double uniform(std::mt19937_64 &generator, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(generator);
}

std::vector<std::string> split(const std::string &text, char at)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, at);)
        parts.push_back(part);
    return parts;
}

region region_of(const std::string &text, const promise &whose)
{
    region r;
    for (const std::string &argument : split(text, '|')) {
        const std::vector<std::string> parts = split(argument, '&');
        r.parts.emplace_back(parts.front(), whose.single());
        if (whose.complex())
            r.parts.emplace_back(parts.back(), whose.single());
    }
    return r;
}

promise promise_of(std::istringstream words, char type)
{
    promise p;
    std::string word;
    words >> p.function >> word;
    p.type = type;
    for (double &ulps : p.ulps) {
        words >> word;
        ulps = word == "half" ? half_the_digits(p.single()) : std::stod(word);
    }
    words >> p.floor;
    while (words >> word)
        p.regions.push_back(region_of(word, p));
    if (p.regions.empty())
        throw std::runtime_error("no arguments");
    return p;
}

} // namespace

double half_the_digits(bool single)
{
    return single ? 0x1p12 : 0x1p26;
}

range::range(const std::string &text, bool single) : single_(single)
{
    std::string rest = text;
    if (rest.starts_with("+-")) {
        both_signs_ = true;
        rest.erase(0, 2);
    }
    const size_t between = rest.find_first_of("~:");
    kind_ = rest[0] == '@'                 ? kind::near
            : rest[0] == '*'               ? kind::multiples
            : rest[0] == '#'               ? kind::integers
            : between == std::string::npos ? throw std::runtime_error("'" + text + "' is no range")
            : rest[between] == '~'         ? kind::exponents
                                           : kind::uniform;
    if (kind_ == kind::near || kind_ == kind::multiples) {
        low_ = value_of(rest.substr(1), single);
        return;
    }
    const size_t start = kind_ == kind::integers ? 1 : 0;
    low_ = value_of(rest.substr(start, between - start), single);
    high_ = value_of(rest.substr(between + 1), single);
}

double range::random(std::mt19937_64 &generator) const
{
    double x = low_;
    switch (kind_) {
    case kind::uniform:
        // The difference of the largest numbers is none: halves don't overflow.
        x = 2 * uniform(generator, low_ / 2, high_ / 2);
        break;
    case kind::exponents:
        x = std::exp2(uniform(generator, std::log2(low_), std::log2(high_)));
        break;
    case kind::near: {
        const double away = std::exp2(-uniform(generator, 0, single_ ? 26 : 55));
        x += (generator() & 1 ? away : -away) * (x != 0 ? std::abs(x) : 1);
        break;
    }
    case kind::multiples:
        x *= std::floor(std::exp2(uniform(generator, 0, 22)));
        break;
    case kind::integers:
        x = std::floor(uniform(generator, low_, high_ + 1));
        break;
    }
    if (single_)
        x = static_cast<double>(static_cast<float>(x));
    return both_signs_ && generator() & 1 ? -x : x;
}

std::vector<promise> read_promises(const std::string &path)
{
    std::ifstream in(path);
    if (!in)
        throw std::runtime_error(path + " can't be read");
    std::vector<promise> promises;
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream words(line);
        std::string function, types;
        words >> function >> types;
        try {
            for (const std::string &type : split(types, ','))
                promises.push_back(promise_of(std::istringstream(line), type.at(0)));
        } catch (const std::exception &error) {
            throw std::runtime_error(path + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    return promises;
}
