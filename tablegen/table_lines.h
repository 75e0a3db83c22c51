// Rows of words, which most tables consist of: what stands in a line, where it stands, and what is said
// about it.
#pragma once

#include "table.h"

#include <map>

namespace tablegen {

/// One row, cut into its columns.
struct table_line {
    std::string place; // file:line
    std::vector<std::string> columns;
    std::string about; // the description above it, in lines

    [[noreturn]] void fail(const std::string &what) const { throw table_error(place + ": " + what); }
};

/// The rows of a file. Lines of `#:` that follow each other make one description, which holds up to the
/// next one.
std::vector<table_line> read_lines(const std::string &file);

std::vector<std::string> words_of(const std::string &text);
/// `s,d,c` at its commas; empty parts count.
std::vector<std::string> parts_of(const std::string &text, char separator);

/// A description as a comment: `start`, its lines with `next` ahead of all but the first, `end`.
std::string comment(const std::string &about, const std::string &start, const std::string &next,
                    const std::string &end);

/// A name may stand in one row only. Rows have a `place`.
template <class Row, class Name>
void refuse_doubles(const std::vector<Row> &rows, Name name_of)
{
    std::map<std::string, std::string> first;
    for (const Row &each : rows)
        if (const auto [other, fresh] = first.emplace(name_of(each), each.place); !fresh)
            throw table_error(each.place + ": " + other->first + " stands in " + other->second +
                              " already");
}

} // namespace tablegen
