// One call of a LAPACKE function over the recording core: its arguments made from their names and C types,
// and a core that answers size queries and can fill in results.
#pragma once

#include "recorder.h"
#include "test_rows.h"

#include <complex>
#include <cstdint>
#include <deque>
#include <functional>
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
    double make(const std::string &suffix = "");

    /// All memory that the caller gave.
    std::vector<std::vector<char>> contents() const;
};

/// What the core of a test does when the Fortran routine is called.
class core {
  public:
    explicit core(const lapacke_row &row);
    ~core() { recorded.on_call = nullptr; }
    core(const core &) = delete;

    int64_t info = 0;
    /// Called with the arguments' addresses as the core receives them, for calls that are no size queries.
    std::function<void(const words &)> compute;

    int calls = 0, queries = 0;
    words last; // addresses of the last call's arguments: valid while it runs
    const std::vector<std::string> names, types; // of the Fortran list, but for info

    std::size_t place(const std::string &name) const;
    int64_t integer(const words &arguments, const std::string &name) const;
    bool is_workspace(const std::string &name) const;
    /// Large enough for every checker.
    static int64_t answer(std::size_t place) { return 200 + static_cast<int64_t>(place); }

  private:
    void called(const core_call &seen);
    bool is_query(const words &arguments) const;
    void answer_query(const words &arguments) const;

    const lapacke_row &row_;
    const std::vector<std::string> given_; // names of the high-level list
};

/// The message that was printed last, or "".
std::string message();

} // namespace lapacke
