// Calls of checked routines with random arguments, good and bad, drawn from the table of argument tests
// alone: what the table says of each, and its arguments as a caller holds them.
#pragma once

#include "conditions.h"
#include "recorder.h"
#include "routine_call.h"

#include <algorithm>
#include <array>
#include <limits>
#include <random>
#include <stdexcept>

namespace random_calls {

using conditions::number;
using conditions::numbers;
using conditions::term;

constexpr int64_t largest = std::numeric_limits<int64_t>::max();
constexpr int64_t smallest = std::numeric_limits<int64_t>::min();

/// A routine, its tests ready to be evaluated.
struct model {
    model(const conditions::tested_routine &tested, const routine_row &row)
        : routine(tested), row(row), names(split(row.names)), kinds(split(row.kinds)),
          checker(exported(row.checker)), frame(exported(row.body))
    {
        for (const conditions::argument_test &test : tested.tests)
            bad.push_back(conditions::parse(test.condition, names));
        const auto found = std::find(names.begin(), names.end(), "group_count");
        group_count = static_cast<std::size_t>(found - names.begin());
    }

    bool is_letter(std::size_t i) const { return kinds[i] == "c" || kinds[i] == "C"; }
    bool is_integer(std::size_t i) const { return kinds[i] == "i" || kinds[i] == "I"; }
    bool has_info() const { return kinds.back() == "info"; }
    bool is_array(std::size_t i) const { return kinds[i] == "C" || kinds[i] == "I"; }
    std::size_t target(std::size_t test) const { return routine.tests[test].position - 1; }

    const conditions::tested_routine &routine;
    const routine_row &row;
    const std::vector<std::string> names, kinds;
    void *const checker, *const frame;
    std::vector<term> bad;   // one a test: when the argument is bad
    std::size_t group_count; // its number, or that of the arguments if there is none
};

/// The arguments of one call: an entry each, or one for each group. Arrays and handles have only an
/// address.
struct drawn_call {
    std::vector<std::vector<int64_t>> entries;
    std::size_t groups;

    numbers of_group(std::size_t group) const
    {
        numbers values;
        for (const auto &entry : entries)
            values.push_back(entry.empty() ? number{0} : entry[std::min(group, entry.size() - 1)]);
        return values;
    }

    /// The number of the first test that fails, or that of all tests.
    std::size_t first_failure(const model &of) const
    {
        std::vector<numbers> values;
        for (std::size_t group = 0; group < std::max(groups, std::size_t{1}); ++group)
            values.push_back(of_group(group));
        const auto fails = [&](std::size_t test) {
            const std::size_t read = of.routine.tests[test].each_group ? groups : 1;
            return std::any_of(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(read),
                               [&](const numbers &of_one) { return evaluate(of.bad[test], of_one) != 0; });
        };
        std::size_t test = 0;
        while (test < of.bad.size() && !fails(test))
            ++test;
        return test;
    }
};

/// An address for the argument with the number i, behind which nothing may be read.
inline int64_t unreadable(std::size_t i)
{
    return static_cast<int64_t>(64 * (i + 1));
}

/// Draws calls. Good ones are made so by the table's conditions alone, test after test.
class dice {
  public:
    explicit dice(unsigned start) : bits_(start) {}

    std::size_t below(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(bits_); }
    bool chance(std::size_t percent) { return below(100) < percent; }

    drawn_call draw(const model &of)
    {
        static const std::string letters = "NnTtCcUuLlRrAaBbFfPpVvSsOo";
        drawn_call call;
        const bool grouped = of.group_count < of.names.size();
        call.groups = grouped ? below(5) : 1;
        for (std::size_t i = 0; i < of.names.size(); ++i) {
            call.entries.emplace_back(of.is_array(i) ? call.groups : 1);
            for (int64_t &entry : call.entries.back())
                entry = of.is_letter(i)    ? letters[below(letters.size())]
                        : of.is_integer(i) ? size()
                                           : unreadable(i);
        }
        if (grouped)
            call.entries[of.group_count][0] = static_cast<int64_t>(call.groups);
        return call;
    }

    /// Makes every argument good that can be; bounds beyond all integers stay broken.
    void mend(const model &of, drawn_call &call)
    {
        for (std::size_t test = 0; test < of.bad.size(); ++test) {
            std::vector<int64_t> &entries = call.entries[of.target(test)];
            if (of.target(test) == of.group_count) // drawn good
                continue;
            for (std::size_t group = 0; group < entries.size(); ++group)
                if (chance(20) || conditions::evaluate(of.bad[test], call.of_group(group)) != 0)
                    set(entries[group], of, test, call.of_group(group), true);
        }
    }

    /// Makes the argument of one test bad, in one group where it has several.
    void spoil(const model &of, drawn_call &call, std::size_t test)
    {
        const std::size_t target = of.target(test);
        std::vector<int64_t> &entries = call.entries[target];
        if (entries.empty())
            return;
        const std::size_t group = below(entries.size());
        set(entries[group], of, test, call.of_group(group), false);
        if (target == of.group_count)
            call.groups = 0;
    }

    /// Gives an integer a value of any size.
    void upset(const model &of, drawn_call &call)
    {
        const std::size_t i = below(of.names.size());
        std::vector<int64_t> &entries = call.entries[i];
        if (of.is_integer(i) && i != of.group_count && !entries.empty())
            entries[below(entries.size())] = anything();
    }

    /// Any integer, of any magnitude.
    int64_t anything()
    {
        static constexpr int64_t corners[] = {smallest,         smallest + 1,     -1,          0,      1,
                                              int64_t{1} << 31, int64_t{1} << 62, largest - 1, largest};
        if (chance(40))
            return corners[below(std::size(corners))];
        return static_cast<int64_t>(bits_()) >> below(64);
    }

  private:
    /// Mostly small enough to fit everywhere.
    int64_t size() { return static_cast<int64_t>(chance(95) ? below(20) : bits_() >> (1 + below(62))); }

    void set(int64_t &argument, const model &of, std::size_t test, const numbers &values, bool good)
    {
        argument = chosen(of.bad[test], of.target(test), values, good);
    }

    /// A value of the argument that a condition is about for which the condition does not hold, or one for
    /// which it does.
    int64_t chosen(const term &condition, std::size_t target, const numbers &values, bool good)
    {
        const auto is_target = [&](const term &part) {
            return part.what == term::name && part.argument == target;
        };
        switch (condition.what) {
        case term::among:
            return letter(condition.letters, !good);
        case term::inverted:
            return letter(condition.parts[0].letters, good);
        case term::both:
            return chosen(condition.parts[0], target, values, good);
        case term::either:
            return chosen_of_several(condition, target, values, good);
        case term::equal:
            return !good ? 0 : chance(50) ? 1 : anything() | 1;
        case term::less: {
            const bool below = is_target(condition.parts[0]);
            const number bound = clamped(conditions::evaluate(condition.parts[below ? 1 : 0], values));
            return below ? beside(bound, good) : above(bound, good);
        }
        default:
            throw std::logic_error("no way to choose an argument by this condition is known");
        }
    }

    /// One of several conditions makes the choice, at random: enough to be bad, not always to be good.
    int64_t chosen_of_several(const term &several, std::size_t target, numbers values, bool good)
    {
        int64_t value = 0;
        for (int attempt = 0; attempt < 20; ++attempt) {
            value = chosen(several.parts[below(several.parts.size())], target, values, good);
            values[target] = value;
            if ((conditions::evaluate(several, values) == 0) == good)
                break;
        }
        return value;
    }

    /// A value at the bound or above, or below it: mostly next to it, but also -1, which may ask for a
    /// size.
    int64_t beside(number bound, bool good)
    {
        const auto distance = static_cast<int64_t>(chance(70) ? 0 : below(6));
        if (!good && chance(20))
            return std::array{smallest, int64_t{-1}, int64_t{0}}[below(3)];
        return clamped(good ? bound + distance : bound - 1 - distance);
    }

    /// A value at the bound or below, or above it.
    int64_t above(number bound, bool good)
    {
        const auto distance = static_cast<int64_t>(chance(70) ? 0 : below(6));
        return clamped(good ? bound - distance : bound + 1 + distance);
    }

    static int64_t clamped(number value)
    {
        return static_cast<int64_t>(std::clamp(value, number{smallest}, number{largest}));
    }

    /// A byte that is one of the letters in either case, or none of them.
    int64_t letter(const std::string &letters, bool good)
    {
        if (good)
            return letters[below(letters.size())] | (chance(50) ? 0x20 : 0);
        for (;;) {
            const char byte = chance(50) ? "NTCULRABFPX"[below(11)] : static_cast<char>(below(256));
            if (letters.find(static_cast<char>(byte & 0xdf)) == std::string::npos)
                return byte;
        }
    }

    std::mt19937_64 bits_;
};

/// A drawn call in memory, as a caller holds it: every array has exactly its entries, and is missing if
/// there are no groups.
class caller {
  public:
    caller(const caller &) = delete; // holds addresses of its own members

    caller(const model &of, const drawn_call &call) : of_(of), call_(call)
    {
        for (std::size_t i = 0; i < of.names.size(); ++i) {
            letters_.emplace_back(call.entries[i].begin(), call.entries[i].end());
            integers_.push_back(call.entries[i]);
            const void *address =
                of.is_letter(i) ? static_cast<void *>(letters_[i].data()) : integers_[i].data();
            if (of.is_array(i) && call.groups == 0)
                address = reinterpret_cast<void *>(unreadable(i));
            if (of.kinds[i] == "info")
                address = &info_;
            addresses_.push_back(of.is_letter(i) || of.is_integer(i) || of.kinds[i] == "info"
                                     ? reinterpret_cast<int64_t>(address)
                                     : call.entries[i][0]);
        }
    }

    int64_t call_checker()
    {
        info_ = unset;
        words arguments = addresses_;
        if (of_.row.group)
            arguments.push_back(0);
        for (std::size_t i = 0; i < of_.names.size(); ++i)
            if (of_.is_letter(i))
                arguments.push_back(1);
        return call_integer(of_.checker, arguments);
    }

    int64_t call_frame()
    {
        info_ = unset;
        return call_integer(of_.frame, addresses_);
    }

    /// What the last call left in info.
    int64_t info() const { return info_; }

    bool untouched() const
    {
        for (std::size_t i = 0; i < of_.names.size(); ++i)
            if (integers_[i] != call_.entries[i] ||
                !std::equal(letters_[i].begin(), letters_[i].end(), call_.entries[i].begin(),
                            [](char a, int64_t b) { return a == static_cast<char>(b); }))
                return false;
        return true;
    }

  private:
    const model &of_;
    const drawn_call &call_;
    std::vector<std::vector<char>> letters_;
    std::vector<std::vector<int64_t>> integers_;
    words addresses_;
    static constexpr int64_t unset = 99;
    int64_t info_ = unset;
};

inline std::string described(const model &of, const drawn_call &call)
{
    std::string text = of.routine.name;
    for (std::size_t i = 0; i < of.names.size(); ++i) {
        text += " " + of.names[i] + "=";
        for (const int64_t entry : call.entries[i])
            text += std::to_string(entry) + (of.is_array(i) ? "," : "");
    }
    return text;
}

} // namespace random_calls
