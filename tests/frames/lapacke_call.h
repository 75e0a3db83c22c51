// One call of a LAPACKE function, its arguments made from their names and C types.
#pragma once

#include "test_rows.h"

#include <complex>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

namespace lapacke {

constexpr int row_major = 101, column_major = 102;
constexpr int layouts[] = {row_major, column_major};

std::span<const lapacke_row> rows();
const lapacke_row &row_of(const std::string &routine); // dgesv

std::vector<std::string> cut(const char *list);

/// s, d, c, z for numbers, i for integers, a for letters, p for procedures.
char element_of(const std::string &type);
std::size_t size_of(char element);

using number = std::complex<double>;
number read(const void *memory, char element, int64_t i);
void write(void *memory, char element, int64_t i, number value);

struct argument {
    std::string name, type;
    char element;
    bool is_array, is_constant;
    int64_t integer = 0; // by value: an integer or a letter
    number real = 0;     // by value: a number
    std::vector<char> memory;

    bool is_number() const { return element != 'i' && element != 'a' && element != 'p'; }
    bool is_leading_dimension() const
    {
        return !is_array && name.starts_with("ld") && name != "ldwork" && name != "ldswork";
    }
};

/// The sizes of a call: small, different, and such that every routine could work with them.
int64_t good_integer(const std::string &name);
constexpr int64_t leading_dimension = 24; // wider than any matrix of these sizes

class call {
  public:
    /// `set` of the option letters: two are made.
    call(const lapacke_row &row, bool work, int set = 0);
    call(const call &) = delete;

    const lapacke_row &row;
    const bool work;
    int layout = column_major;
    std::deque<argument> arguments;

    std::string name() const { return row.name + std::string(work ? "_work" : ""); }
    argument &at(const std::string &name);
    bool has(const std::string &name) const;
    /// As the functions count it, the layout first.
    int64_t place(const std::string &name) const;

    /// The result, also of a function that returns a real one.
    /// The function comes from the given library, or else from any that is loaded.
    double make(const std::string &suffix = "", void *library = nullptr);

    /// All memory that the caller gave.
    std::vector<std::vector<char>> contents() const;
};

} // namespace lapacke
