// One call of a C routine, its arguments made from the row's names and kinds: distinct sizes, leading
// dimensions and strides as small as they may be, memory filled with distinct values.
#pragma once

#include "cblas_rules.h"
#include "test_rows.h"

#include <dlfcn.h>

#include <complex>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using number = std::complex<double>;

inline std::vector<std::string> parts_of(const std::string &text, char separator = ' ')
{
    std::istringstream in(text);
    std::vector<std::string> parts;
    for (std::string part; std::getline(in, part, separator);)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

inline bool is_complex(char element)
{
    return element == 'C' || element == 'Z';
}
inline bool is_single(char element)
{
    return element == 'S' || element == 'C';
}

inline number read(const void *memory, char element, int64_t i)
{
    const int64_t parts = is_complex(element) ? 2 : 1;
    const auto part = [=](int64_t at) {
        return is_single(element) ? static_cast<double>(static_cast<const float *>(memory)[at])
                                  : static_cast<const double *>(memory)[at];
    };
    return {part(parts * i), parts == 2 ? part(2 * i + 1) : 0};
}

inline void write(void *memory, char element, int64_t i, number value)
{
    const int64_t parts = is_complex(element) ? 2 : 1;
    const double values[] = {value.real(), value.imag()};
    for (int64_t part = 0; part < parts; ++part)
        if (is_single(element))
            static_cast<float *>(memory)[parts * i + part] = static_cast<float>(values[part]);
        else
            static_cast<double *>(memory)[parts * i + part] = values[part];
}

/// The first value of an enumeration, and how many it has.
struct option_range {
    int64_t first, count;
};
inline option_range options_of(const std::string &name)
{
    static const std::map<std::string, option_range> ranges = {
        {"layout", {101, 2}}, {"uplo", {121, 2}}, {"diag", {131, 2}}, {"side", {141, 2}}};
    const auto found = ranges.find(name);
    return found == ranges.end() ? option_range{111, 3} : found->second;
}

struct c_argument {
    std::string name, kind;
    bool written;
    char element;                  // of the data, or - without any
    std::vector<int64_t> numbers;  // integers and options, one a group
    std::vector<int32_t> options;  // the same as an array of enumerations
    std::vector<char> memory;      // scalars, vectors, matrices
    std::vector<void *> addresses; // one a matrix
    bool missing = false;          // a null address is passed

    bool is_option() const { return kind == "c" || kind == "C" || name == "layout"; }
    bool is_array_of_groups() const { return kind == "C" || kind == "I"; }
    bool is_real_value() const
    {
        return !written && !is_complex(element) && (kind[0] == 't' || kind[0] == 'r');
    }
    void *data() { return memory.data(); }
    int64_t word()
    {
        if (missing)
            return 0;
        if (kind == "i" || kind == "c" || name == "layout")
            return numbers[0];
        void *address = kind == "C"   ? static_cast<void *>(options.data())
                        : kind == "I" ? static_cast<void *>(numbers.data())
                        : kind == "P" ? static_cast<void *>(addresses.data())
                                      : data();
        return reinterpret_cast<int64_t>(address);
    }
};

class c_call {
  public:
    static constexpr int64_t matrix_elements = 128; // between the matrices of a group batch
    static constexpr int64_t bytes = 16 << 10;      // of every memory

    explicit c_call(const cblas_row &row, int64_t groups = 1)
        : row(row), rule(rule_of(row.shape)), has_layout(std::string(row.names).starts_with("layout")),
          grouped(std::string(row.kinds).find('I') != std::string::npos), groups(groups)
    {
        const auto names = parts_of(row.names), kinds = parts_of(row.kinds);
        for (std::size_t i = 0; i < names.size(); ++i)
            add(names[i], kinds[i]);
        fit();
    }

    const cblas_row &row;
    const cblas_rule &rule;
    const bool has_layout, grouped;
    const int64_t groups;
    std::deque<c_argument> arguments;

    bool has(const std::string &name) const
    {
        return (" " + std::string(row.names) + " ").find(" " + name + " ") != std::string::npos;
    }
    int place(const std::string &name) const
    {
        for (std::size_t i = 0; i < arguments.size(); ++i)
            if (arguments[i].name == name)
                return static_cast<int>(i) + 1;
        throw std::invalid_argument(std::string(row.name) + " has no argument " + name);
    }
    c_argument &at(const std::string &name) { return arguments[static_cast<std::size_t>(place(name)) - 1]; }
    int64_t value(const std::string &name, int64_t g = 0)
    {
        return at(name).numbers[static_cast<std::size_t>(g)];
    }
    void set(const std::string &name, int64_t value, int64_t g = 0)
    {
        at(name).numbers[static_cast<std::size_t>(g)] = value;
        at(name).options[static_cast<std::size_t>(g)] = static_cast<int32_t>(value);
    }
    void set_layout(int64_t layout)
    {
        if (has_layout)
            set("layout", layout);
        fit();
    }
    bool by_rows() { return has_layout && value("layout") == 101; }

    /// A matrix that is its own conjugate has nothing to conjugate: those of the mixed products are real.
    bool has_complex_matrix() { return is_complex(at(has("ap") ? "ap" : has("a") ? "a" : "x").element); }

    /// Letters that the frame refuses: symmetric updates have no conjugate form, Hermitian ones no plain
    /// transpose.
    bool is_refused(int64_t g = 0)
    {
        const std::string shape = row.shape;
        if (shape.starts_with("herk") || shape.starts_with("her2k"))
            return value("trans", g) == 112;
        return shape.starts_with("syr") && has("trans") && is_complex(row.element) &&
               value("trans", g) == 113;
    }

    /// Sets leading dimensions and results' strides to their least values.
    void fit()
    {
        for (const std::string &extent : parts_of(rule.extents))
            for (int64_t g = 0; g < (grouped ? groups : 1); ++g)
                set(parts_of(extent, ':')[0], least(parts_of(extent, ':')[1], g), g);
    }

    /// Runs over all values of the options, with least extents for each.
    void for_each_option(const std::function<void()> &body, std::size_t from = 0)
    {
        while (from < arguments.size() && arguments[from].kind != "c")
            ++from;
        if (from == arguments.size()) {
            fit();
            return body();
        }
        const option_range range = options_of(arguments[from].name);
        for (int64_t i = 0; i < range.count; ++i) {
            set(arguments[from].name, range.first + i);
            for_each_option(body, from + 1);
        }
    }

    /// Integers and reals travel in registers of their own, so that their order among each other does not
    /// matter.
    template <class Result = void>
    Result make(const std::string &suffix = "")
    {
        std::vector<int64_t> w;
        double d[2] = {};
        int reals = 0;
        for (c_argument &each : arguments)
            if (each.is_real_value())
                std::memcpy(&d[reals++], each.data(), is_single(each.element) ? 4 : 8);
            else
                w.push_back(each.word());
        w.resize(20);
        using i = int64_t;
        using function =
            Result (*)(i, i, i, i, i, i, double, double, i, i, i, i, i, i, i, i, i, i, i, i, i, i);
        const auto routine = reinterpret_cast<function>(dlsym(RTLD_DEFAULT, (row.name + suffix).c_str()));
        if (!routine)
            throw std::runtime_error(row.name + suffix + " is not exported");
        return routine(w[0], w[1], w[2], w[3], w[4], w[5], d[0], d[1], w[6], w[7], w[8], w[9], w[10], w[11],
                       w[12], w[13], w[14], w[15], w[16], w[17], w[18], w[19]);
    }

  private:
    void add(const std::string &name, std::string kind)
    {
        const bool written = kind.ends_with("!");
        if (written)
            kind.pop_back();
        c_argument made{name, kind, written, element_of(kind), {}, {}, std::vector<char>(bytes), {}};
        for (int64_t g = 0; g < (made.is_array_of_groups() ? groups : 1); ++g)
            made.numbers.push_back(good_value(name, kind, g));
        made.options.assign(made.numbers.begin(), made.numbers.end());
        for (int64_t i = 0; made.element != '-' && i < bytes / 16; ++i)
            write(made.data(), made.element, i, number(double(i % 61 + 2), double(i % 7 + 1)));
        const int64_t size = is_complex(made.element) ? 16 : 8;
        for (int64_t p = 0; kind == "P" && p < 3 * groups; ++p)
            made.addresses.push_back(made.memory.data() + p * matrix_elements * size % bytes);
        arguments.push_back(std::move(made));
    }

    char element_of(const std::string &kind) const
    {
        if (kind.size() == 2)
            return "SDCZ"[(kind[0] == 'z' ? 2 : 0) + (kind[1] == '8' ? 1 : 0)];
        if (kind == "r" || kind == "R")
            return is_single(row.element) ? 'S' : 'D';
        return kind == "t" || kind == "T" || kind == "P" ? row.element : '-';
    }

    /// Group parameters change from group to group. Letters that need a call of their own are left out of
    /// groups.
    int64_t good_value(const std::string &name, const std::string &kind, int64_t g) const
    {
        static const std::map<std::string, int64_t> values = {
            {"layout", 102},  {"m", 5},         {"n", 7},        {"k", 4},
            {"kl", 2},        {"ku", 1},        {"incx", 2},     {"incy", -3},
            {"incx1", -2},    {"incx2", 3},     {"incy1", 1},    {"incy2", -2},
            {"stridea", 100}, {"strideb", 110}, {"stridex", 50}, {"batch_size", 2}};
        if (kind == "c" || kind == "C")
            return options_of(name).first + (kind == "C" ? (g + name.back()) % 2 : 0);
        if (name == "group_count")
            return groups;
        if (name == "group_size")
            return g % 3;
        const auto found = values.find(name);
        const int64_t value = found == values.end() ? 100 : found->second;
        return kind == "I" && !name.starts_with("inc") ? value + g % 5 : value;
    }

    /// The least value of an extent, as cblas_rules.h writes it.
    int64_t least(const std::string &text, int64_t g)
    {
        const auto sizes = parts_of(text.substr(text.find_first_of("*^") + 1), ',');
        const bool turned = sizes.size() == 3 && value(sizes[0], g) != 111;
        if (text.find('*') != std::string::npos)
            return value(parts_of(text, '*')[0], g) * value(sizes[by_rows() ? 0 : 1], g);
        if (text.find('^') != std::string::npos)
            return (value(sizes[sizes.size() == 1 ? 0
                                : turned          ? 2
                                                  : 1],
                          g) -
                    1) *
                       std::abs(value(parts_of(text, '^')[0], g)) +
                   1;
        if (text == "side")
            return value(value("side", g) == 141 ? "m" : "n", g);
        if (sizes.size() > 1)
            return value(sizes[sizes.size() - (by_rows() == turned ? 2 : 1)], g);
        int64_t sum = 0;
        for (const std::string &part : parts_of(text, '+'))
            sum += part == "1" ? 1 : value(part, g);
        return sum;
    }
};

/// The rows of the C interface that a test is about.
inline std::vector<const cblas_row *> rows_with(const std::function<bool(c_call &)> &wanted)
{
    std::vector<const cblas_row *> rows;
    for (int i = 0; i < cblas_row_count; ++i)
        if (c_call call(cblas_rows[i]); wanted(call))
            rows.push_back(&cblas_rows[i]);
    return rows;
}
