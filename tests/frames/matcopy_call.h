// The arguments of one call of a matrix copy, as values of the test's own, and what they become: in the
// lists of the two bodies, at the core's entry, and in the trace line.
#pragma once

#include "conditions.h"
#include "recorder.h"
#include "routine_call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <map>

namespace matcopy {

inline std::span<const routine_row> routines()
{
    return {matcopy_rows, static_cast<std::size_t>(matcopy_row_count)};
}

inline const routine_row &row_of(const std::string &name)
{
    for (const routine_row &row : routines())
        if (name == row.name)
            return row;
    throw std::out_of_range("no table has the routine " + name);
}

class call {
  public:
    call(const call &) = delete; // holds addresses of its own members

    /// A good call. Batches have as many groups as given.
    explicit call(const routine_row &row, std::size_t groups = 2) : row(row)
    {
        for (std::size_t i = 0; i < names.size(); ++i) {
            const bool each_group = kinds[i] == "C" || kinds[i] == "Q";
            entries_.emplace_back(std::max<std::size_t>(each_group ? groups : 1, 1), good_value(i, groups));
            letters_.emplace_back();
        }
    }

    const routine_row &row;
    const std::vector<std::string> names = split(row.names), kinds = split(row.kinds);
    const bool is_complex = row.name[4] == 'C' || row.name[4] == 'Z';
    const bool single = row.name[4] == 'S';

    bool is_letter(std::size_t i) const { return kinds[i] == "c" || kinds[i] == "C"; }
    bool is_size(std::size_t i) const { return kinds[i] == "q" || kinds[i] == "Q"; }
    bool is_real(std::size_t i) const { return kinds[i] == "t" && !is_complex; }
    bool is_scalar(std::size_t i) const { return kinds[i] == "c" || kinds[i] == "q" || is_real(i); }
    std::size_t groups() const { return is_batch() ? static_cast<std::size_t>(value("group_count")) : 1; }
    bool is_batch() const { return has("group_count"); }

    bool has(const std::string &name) const { return place(name) < names.size(); }
    int64_t value(const std::string &name) const { return entries_[place(name)][0]; }
    void set(const std::string &name, int64_t value, std::size_t group = 0)
    {
        entries_.at(place(name)).at(group) = value;
    }
    std::size_t entry_count(std::size_t i) const { return entries_[i].size(); }

    /// The arguments of a group as numbers, sizes without sign.
    conditions::numbers numbers_of(std::size_t group) const
    {
        conditions::numbers numbers;
        for (std::size_t i = 0; i < names.size(); ++i) {
            const int64_t value = entries_[i][std::min(group, entries_[i].size() - 1)];
            numbers.push_back(is_size(i) ? conditions::number{static_cast<uint64_t>(value)} : value);
        }
        return numbers;
    }

    void by_address(const std::string &spelling)
    {
        words list;
        for (std::size_t i = 0; i < names.size(); ++i)
            list.push_back(address(i));
        call_integer(exported(spelling), list);
    }

    /// Also for checkers: they take values, too.
    void by_value(const std::string &spelling)
    {
        call_with_reals(exported(spelling), values(), {alpha, beta}, single);
    }

    int64_t checker_verdict()
    {
        // A verdict does not depend on the scalars, which are the only reals.
        return call_integer(exported(row.checker), values());
    }

    /// The list at the core's entry as it is recorded.
    words expected_words()
    {
        words list;
        for (std::size_t i = 0; i < names.size(); ++i)
            list.push_back(is_real(i) ? recorded_bits(real(i)) : word(i));
        return list;
    }

    std::string expected_line(bool by_value)
    {
        std::string text = std::string(row.name) + "(";
        for (std::size_t i = 0; i < names.size(); ++i) {
            char value[32];
            if (kinds[i] == "c")
                std::snprintf(value, sizeof value, "%c", static_cast<int>(entries_[i][0]));
            else if (is_real(i))
                std::snprintf(value, sizeof value, "%f", real(i));
            else if (kinds[i] != "q")
                std::snprintf(value, sizeof value, "%p", reinterpret_cast<void *>(address(i)));
            else if (by_value)
                std::snprintf(value, sizeof value, "%zu", static_cast<std::size_t>(entries_[i][0]));
            else
                std::snprintf(value, sizeof value, "%d", static_cast<int>(entries_[i][0]));
            text += (i ? ", " : "") + std::string(value);
        }
        return text + ")";
    }

    std::string described() const
    {
        std::string text = row.name;
        for (std::size_t i = 0; i < names.size(); ++i) {
            text += " " + names[i] + "=";
            for (const int64_t entry : entries_[i])
                text += std::to_string(entry) + (kinds[i] == "C" || kinds[i] == "Q" ? "," : "");
        }
        return text;
    }

  private:
    static constexpr double alpha = 1.5, beta = -0.25;

    std::size_t place(const std::string &name) const
    {
        return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
    }

    /// Lines of 3 or 4 elements, by columns; arrays are addresses behind which nothing may be read.
    int64_t good_value(std::size_t i, std::size_t groups) const
    {
        static const std::map<std::string, int64_t> values = {
            {"ordering", 'C'}, {"rows", 3}, {"cols", 4}, {"batch_size", 5}, {"group_size", 2}};
        if (const auto found = values.find(names[i]); found != values.end())
            return found->second;
        if (names[i] == "group_count")
            return static_cast<int64_t>(groups);
        return is_letter(i)                    ? 'N'
               : names[i].starts_with("ld")    ? 12
               : names[i].starts_with("strid") ? 2
                                               : static_cast<int64_t>(64 * (i + 1));
    }

    double real(std::size_t i) const { return names[i] == "alpha" ? alpha : beta; }

    /// An argument as its address, and an array as the address that it has in both bodies.
    int64_t address(std::size_t i)
    {
        if (is_letter(i)) {
            letters_[i].assign(entries_[i].begin(), entries_[i].end());
            return reinterpret_cast<int64_t>(letters_[i].data());
        }
        if (is_real(i)) {
            static const float single_reals[] = {alpha, beta};
            static const double double_reals[] = {alpha, beta};
            const std::size_t which = names[i] == "alpha" ? 0 : 1;
            return single ? reinterpret_cast<int64_t>(&single_reals[which])
                          : reinterpret_cast<int64_t>(&double_reals[which]);
        }
        return is_size(i) ? reinterpret_cast<int64_t>(entries_[i].data()) : entries_[i][0];
    }

    int64_t word(std::size_t i) { return is_scalar(i) ? entries_[i][0] : address(i); }

    words values()
    {
        words list;
        for (std::size_t i = 0; i < names.size(); ++i)
            if (!is_real(i))
                list.push_back(word(i));
        return list;
    }

    std::deque<std::vector<int64_t>> entries_; // one an argument, or one for each group
    std::deque<std::vector<char>> letters_;    // the same of letters, as callers hold them
};

} // namespace matcopy
