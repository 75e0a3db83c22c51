// The notation in which tables of argument tests say when an argument is bad. It is read and evaluated here
// by a road of its own, with integers wide enough for every sum and product, so that it can judge the
// library's checks. The grammar stands at the top of the tables in data/.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace conditions {

__extension__ using number = __int128;
using numbers = std::vector<number>;

/// A part of a condition. Comparisons that are not listed are others turned around.
struct term {
    enum kind {
        constant, // value
        name,     // the argument with the number `argument`
        among,    // that argument is one of `letters`
        equal,
        less,
        both,
        either,
        inverted,
        choice, // the second part if the first holds, the third if not
        sum,
        product,
        negated,
        max,
        min,
        absolute
    };
    kind what;
    std::vector<term> parts = {};
    number value = 0;
    std::size_t argument = 0;
    std::string letters = {};
};

/// Reads a condition on the arguments `names`; throws std::invalid_argument with the text and what is wrong
/// with it.
term parse(std::string_view text, const std::vector<std::string> &names);

/// The value for one call's arguments: letters and addresses count as numbers, truth as 1.
number evaluate(const term &part, const numbers &arguments);

/// One test of a routine: the 1-based place of an argument, and when it is bad.
struct argument_test {
    std::size_t position;
    bool each_group; // bad if the condition holds in any group
    std::string condition;
};

struct tested_routine {
    std::string name;
    std::string reported_name;
    std::vector<argument_test> tests; // in the order in which they are made
};

/// Reads a table; throws std::invalid_argument with file, line and what is wrong.
std::vector<tested_routine> read_table(const std::string &path);

} // namespace conditions
