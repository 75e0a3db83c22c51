// Expressions of the LAPACKE tables: sizes of matrices and workspaces, and the conditions under which they
// are used. Written for people (`jobz in A or m < n`), and printed as C++. tablegen/LAPACKE.md has the
// grammar.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace tablegen {

struct expression {
    std::string op;   // name, number, letter, in, call, ?, prefix and infix operators
    std::string text; // of a leaf; the letters of `in`; the name of a call
    std::vector<expression> parts;

    bool operator==(const expression &) const = default;
};

/// What a value becomes in C++.
enum class value_type_of { integer, letter, truth };

/// Throws std::invalid_argument, which tells what is wrong.
expression parse_expression(const std::string &text);

expression name_of(const std::string &name);

/// `op`(parts...): an infix operator or a call of max.
expression infix(const std::string &op, expression left, expression right);
expression at_least_one(expression value);

/// Text of C++ with the functions of src/lapacke/sizes.h. Arithmetic is done by extents, which do not
/// overflow.
std::string printed(const expression &value);

/// The names that an expression looks at.
void add_names(const expression &value, std::set<std::string> &names);

/// The type of a value; `letters` are the names that stand for characters.
value_type_of type_of(const expression &value, const std::set<std::string> &letters);

} // namespace tablegen
