// Calls a routine of the table with arguments that suit their names: the storage, and the call by address
// of any list.
#pragma once

#include "test_rows.h"

#include <array>
#include <complex>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

std::vector<std::string> split(const char *text);

/// The rows of the families whose routines are called alike.
std::span<const routine_row> blas_routines();
std::span<const routine_row> lapack_routines();

/// The row of a routine of either family; throws std::out_of_range if there is none.
const routine_row &row_of(const std::string &name);

/// Addresses for one call of a row. All arguments are good until a test spoils one.
class arguments_of {
  public:
    explicit arguments_of(const routine_row &row);

    const std::vector<int64_t> &addresses() const { return addresses_; }
    /// Whether the argument itself, and no address of it, goes to the routine.
    bool by_value(std::size_t i) const { return kinds[i].starts_with("="); }
    void *at(std::size_t i) const { return reinterpret_cast<void *>(addresses_[i]); }
    int64_t integer(std::size_t i) const { return *static_cast<const int64_t *>(at(i)); }
    void set_integer(std::size_t i, int64_t value) { *static_cast<int64_t *>(at(i)) = value; }
    void set_letter(std::size_t i, char value) { *static_cast<char *>(at(i)) = value; }
    void replace_address(std::size_t i, void *address)
    {
        addresses_[i] = reinterpret_cast<int64_t>(address);
    }

    const std::vector<std::string> names;
    const std::vector<std::string> kinds;

    /// Whether the list ends with info, which tells what was bad.
    bool has_info() const { return !kinds.empty() && kinds.back() == "info"; }
    std::size_t last() const { return kinds.size() - 1; }

    /// Spoils one argument so that the row's checker refuses the call; the place of the spoiled argument.
    int64_t spoil();

  private:
    std::deque<std::vector<int64_t>> storage_;
    std::vector<int64_t> addresses_;
};

/// The address of an exported name; a failed test if there is none.
void *exported(const std::string &name);

int64_t call_integer(void *routine, const std::vector<int64_t> &arguments);
double call_real(void *routine, const std::vector<int64_t> &arguments);
float call_single(void *routine, const std::vector<int64_t> &arguments);

/// Calls a routine that takes some of its arguments as reals by value, in single or double precision. They
/// travel apart from the words, so their places in the list do not matter.
void call_with_reals(void *routine, const std::vector<int64_t> &arguments, std::array<double, 2> reals,
                     bool single);

/// The value that a routine of the row returns, whatever its type; 0 if it returns none.
std::complex<double> call_for_value(const routine_row &row, void *routine,
                                    const std::vector<int64_t> &arguments);
