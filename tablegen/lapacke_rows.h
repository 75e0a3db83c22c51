// The text of a LAPACKE table, cut into rows and statements.
#pragma once

#include <string>
#include <vector>

namespace tablegen {

/// One statement: an argument or keyword, a word that tells what it is about, the rest, and clauses behind
/// commas.
struct statement {
    std::string place;                // file:line
    std::string types;                // real, complex, or "" for both
    std::vector<std::string> clauses; // `a inout ge(m, n) if m > 0`, `out never`
};

struct lapacke_row {
    std::string place, name, types;
    std::vector<std::string> flags;
    std::vector<statement> statements;
};

std::vector<lapacke_row> read_lapacke_rows(const std::string &file);

/// Cuts at a separator outside of parentheses, and trims the parts.
std::vector<std::string> cut(const std::string &text, char separator);

/// Takes the first word off.
std::string take_word(std::string &text);

/// Cuts ` if CONDITION` off the end; an empty text if there is none.
std::string take_condition(std::string &text);

} // namespace tablegen
