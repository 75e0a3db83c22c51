#include "routine_call.h"

#include "xkl_types.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

std::vector<std::string> split(const char *text)
{
    std::istringstream in(text);
    std::vector<std::string> parts;
    for (std::string part; in >> part;)
        parts.push_back(part);
    return parts;
}

namespace {

/// A good value by the argument's name: letters that every routine takes, sizes of 3, room everywhere.
int64_t good_value(const std::string &name, const std::string &kind)
{
    static const std::map<std::string, char> letters = {
        {"uplo", 'U'}, {"side", 'L'}, {"diag", 'N'}, {"identifier", 'A'}, {"offsetc", 'F'}};
    if (kind == "c" || kind == "C") {
        const auto found = letters.find(name);
        return found == letters.end() ? 'N' : found->second;
    }
    if (kind == "e")
        return 101;
    if (name.starts_with("ld"))
        return 8;
    if (name == "lwork" || name == "lrwork" || name == "liwork")
        return 4096;
    if (name.starts_with("stride"))
        return 4096;
    if (name.starts_with("inc"))
        return 2;
    if (name == "group_count" || name == "kl" || name == "ku")
        return 1;
    return 3;
}

constexpr std::size_t most_words = 48; // LAPACK's longest list has 35 arguments, and hidden lengths

template <std::size_t>
using word = int64_t;

template <class Result, std::size_t... I>
Result call(void *routine, const std::array<int64_t, most_words> &words, std::index_sequence<I...>)
{
    return reinterpret_cast<Result (*)(word<I>...)>(routine)(words[I]...);
}

/// As many words as any list has: a callee never looks beyond its own.
std::array<int64_t, most_words> padded(const std::vector<int64_t> &arguments)
{
    std::array<int64_t, most_words> words{};
    if (arguments.size() > most_words)
        throw std::length_error("a list is longer than most_words");
    std::copy(arguments.begin(), arguments.end(), words.begin());
    return words;
}

template <class Result>
Result call(void *routine, const std::vector<int64_t> &arguments)
{
    return call<Result>(routine, padded(arguments), std::make_index_sequence<most_words>{});
}

template <class Real, std::size_t... I>
void call(void *routine, const std::array<int64_t, most_words> &words, Real first, Real second,
          std::index_sequence<I...>)
{
    reinterpret_cast<void (*)(word<I>..., Real, Real)>(routine)(words[I]..., first, second);
}

template <class Complex>
std::complex<double> call_complex(void *routine, const std::vector<int64_t> &arguments)
{
    const auto value = call<Complex>(routine, arguments);
    return {value.real, value.imag};
}

} // namespace

arguments_of::arguments_of(const routine_row &row) : names(split(row.names)), kinds(split(row.kinds))
{
    for (std::size_t i = 0; i < names.size(); ++i) {
        storage_.push_back(std::vector<int64_t>(4, good_value(names[i], kinds[i])));
        addresses_.push_back(by_value(i) ? storage_.back().front()
                                         : reinterpret_cast<int64_t>(storage_.back().data()));
    }
}

int64_t arguments_of::spoil()
{
    for (std::size_t i = 0; i < kinds.size(); ++i)
        if (kinds[i] == "c" || kinds[i] == "C") {
            set_letter(i, '?');
            return static_cast<int64_t>(i) + 1;
        }
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == "m" || names[i].starts_with("stride")) {
            set_integer(i, -1);
            return static_cast<int64_t>(i) + 1;
        }
    if (names[0] == "n" && kinds[0] == "i") {
        set_integer(0, -1);
        return 1;
    }
    ADD_FAILURE() << "no way to spoil this call is known";
    return 0;
}

std::span<const routine_row> blas_routines()
{
    return {blas_rows, static_cast<std::size_t>(blas_row_count)};
}

std::span<const routine_row> lapack_routines()
{
    return {lapack_rows, static_cast<std::size_t>(lapack_row_count)};
}

const routine_row &row_of(const std::string &name)
{
    for (const auto rows : {blas_routines(), lapack_routines()})
        for (const routine_row &row : rows)
            if (name == row.name)
                return row;
    throw std::out_of_range("no table has the routine " + name);
}

void *exported(const std::string &name)
{
    void *address = dlsym(RTLD_DEFAULT, name.c_str());
    EXPECT_NE(address, nullptr) << name << " is not exported";
    return address;
}

int64_t call_integer(void *routine, const std::vector<int64_t> &arguments)
{
    return call<int64_t>(routine, arguments);
}
double call_real(void *routine, const std::vector<int64_t> &arguments)
{
    return call<double>(routine, arguments);
}
float call_single(void *routine, const std::vector<int64_t> &arguments)
{
    return call<float>(routine, arguments);
}

void call_with_reals(void *routine, const std::vector<int64_t> &arguments, std::array<double, 2> reals,
                     bool single)
{
    constexpr std::make_index_sequence<most_words> places;
    const auto [first, second] = reals;
    if (single)
        call(routine, padded(arguments), static_cast<float>(first), static_cast<float>(second), places);
    else
        call(routine, padded(arguments), first, second, places);
}

std::complex<double> call_for_value(const routine_row &row, void *routine,
                                    const std::vector<int64_t> &arguments)
{
    const std::string result = row.result;
    const bool single = row.name[0] == 'S' || row.name[0] == 'C';
    if (result == "complex")
        return single ? call_complex<xkl_complex8>(routine, arguments)
                      : call_complex<xkl_complex16>(routine, arguments);
    if (result == "r4" || (result == "real" && single))
        return call<float>(routine, arguments);
    if (result == "r8" || result == "real")
        return call<double>(routine, arguments);
    if (result == "char")
        return call<char>(routine, arguments);
    const auto value = static_cast<double>(call<int64_t>(routine, arguments));
    return result == "-" || result == "first" ? 0 : value;
}
