// Calls a routine of the table with arguments that suit their names: the storage, and the call by address of any list.
#pragma once

#include "test_rows.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

std::vector<std::string> split(const char *text);

/// Addresses for one call of a row. All arguments are good until a test spoils one.
class arguments_of {
  public:
    explicit arguments_of(const routine_row &row);

    const std::vector<int64_t> &addresses() const { return addresses_; }
    void *at(std::size_t i) const { return reinterpret_cast<void *>(addresses_[i]); }
    void set_integer(std::size_t i, int64_t value) { *static_cast<int64_t *>(at(i)) = value; }
    void set_letter(std::size_t i, char value) { *static_cast<char *>(at(i)) = value; }
    void replace_address(std::size_t i, void *address)
    {
        addresses_[i] = reinterpret_cast<int64_t>(address);
    }

    const std::vector<std::string> names;
    const std::vector<std::string> kinds;

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
