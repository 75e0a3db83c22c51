// Calls a helper of the table with the arguments that its row names.
#pragma once

#include "frames/test_rows.h"
#include "storage_model.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

inline std::span<const routine_row> helper_rows()
{
    return {lapacke_helper_rows, static_cast<std::size_t>(lapacke_helper_row_count)};
}

inline bool has_argument(const routine_row &row, const std::string &name)
{
    return (" " + std::string(row.names) + " ").find(" " + name + " ") != std::string::npos;
}

/// A helper under both of its names
class helper {
  public:
    explicit helper(const routine_row &row) : row_(row)
    {
        std::string names = row.names, name;
        for (const char letter : names + " ")
            if (letter != ' ')
                name += letter;
            else
                names_.push_back(std::exchange(name, ""));
        for (const char *each : {row.body, row.spellings})
            addresses_.push_back(dlsym(RTLD_DEFAULT, each));
        EXPECT_TRUE(addresses_[0] && addresses_[1] && addresses_[0] != addresses_[1]) << row.body;
    }

    /// The result under the plain name, or that with _64.
    int64_t operator()(bool twin, const stored_matrix &a, const void *in, void *out = nullptr,
                       int64_t ldout = 0) const
    {
        std::array<int64_t, most> words{};
        for (std::size_t i = 0; i < names_.size(); ++i)
            words[i] = value(names_[i], a, in, out, ldout);
        return call(addresses_[twin], words, std::make_index_sequence<most>{});
    }

  private:
    static constexpr std::size_t most = 10;
    template <std::size_t>
    using word = int64_t;

    template <std::size_t... I>
    static int64_t call(void *address, const std::array<int64_t, most> &words, std::index_sequence<I...>)
    {
        return reinterpret_cast<int64_t (*)(word<I>...)>(address)(words[I]...);
    }

    static int64_t value(const std::string &name, const stored_matrix &a, const void *in, void *out,
                         int64_t ldout)
    {
        if (name == "kd")
            return (a.uplo | 32) == 'u' ? a.ku : a.kl;
        if (name == "out")
            return reinterpret_cast<int64_t>(out);
        if (name == "ldout")
            return ldout;
        if (name.starts_with("ld"))
            return a.ld;
        const std::pair<const char *, int64_t> values[] = {
            {"layout", a.layout}, {"direct", a.direct}, {"transr", a.transr},
            {"uplo", a.uplo},     {"diag", a.diag},     {"m", a.m},
            {"n", a.n},           {"kl", a.kl},         {"ku", a.ku}};
        for (const auto &[known, value] : values)
            if (name == known)
                return value;
        return reinterpret_cast<int64_t>(in);
    }

    const routine_row &row_;
    std::vector<std::string> names_;
    std::vector<void *> addresses_;
};

/// Every matrix that a helper is tried with: both layouts, all its letters, leading dimensions with and
/// without a gap.
std::vector<stored_matrix> matrices_for(const routine_row &row);
