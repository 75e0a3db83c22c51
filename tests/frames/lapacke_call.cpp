#include "lapacke_call.h"

#include <algorithm>
#include <array>
#include <bit>
#include <dlfcn.h>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace lapacke {
namespace {

constexpr std::size_t elements = leading_dimension * leading_dimension; // of every array
constexpr std::size_t most_words = 48;
constexpr std::size_t most_reals = 8; // the registers that pass them

/// Letters by the arguments' names, for two sets of calls.
char good_letter(const std::string &name, const std::string &routine, int set)
{
    static const std::map<std::string, std::string> letters = {
        {"uplo", "UL"},   {"side", "LR"},   {"trans", "NT"},  {"diag", "NU"},   {"transr", "NT"},
        {"jobz", "VN"},   {"jobu", "AS"},   {"jobvt", "AS"},  {"jobv", "VN"},   {"jobq", "QN"},
        {"jobvl", "VN"},  {"jobvr", "VN"},  {"jobvs", "VN"},  {"jobvsl", "VN"}, {"jobvsr", "VN"},
        {"range", "AI"},  {"compq", "VI"},  {"compz", "VI"},  {"vect", "QP"},   {"fact", "FE"},
        {"job", "BE"},    {"norm", "I1"},   {"howmny", "BS"}, {"storev", "CR"}, {"direct", "FB"},
        {"type", "GL"},   {"sort", "SN"},   {"sense", "BN"},  {"jobu1", "YN"},  {"jobu2", "YN"},
        {"jobv1t", "YN"}, {"jobv2t", "YN"}, {"joba", "CG"},   {"initv", "VN"},  {"signs", "OD"},
        {"eigsrc", "QN"}, {"balanc", "BN"}, {"way", "CR"},    {"cmach", "EB"}};
    const auto at = static_cast<std::size_t>(set);
    const bool pairs = routine.substr(1).starts_with("ggsv") || routine.substr(1) == "tgsja";
    if (name == "jobu" && (pairs || routine.substr(1) == "gejsv"))
        return "UN"[at];
    if (name == "equed") // both sides of general matrices can be scaled, others have one factor
        return routine.substr(1).starts_with("g") ? "BY"[at] : 'Y';
    if (name == "trans" && routine.substr(1).starts_with("un"))
        return "NC"[at];
    if (name == "vect" && routine.substr(1, 2) != "or" && routine.substr(1, 2) != "un")
        return "VN"[at];
    const auto found = letters.find(name);
    return found == letters.end() ? 'N' : found->second[at];
}

/// Numbers that tell where they stand.
void fill(argument &each)
{
    for (std::size_t i = 0; i < elements; ++i) {
        const auto at = static_cast<int64_t>(i);
        if (each.element == 'i')
            reinterpret_cast<int64_t *>(each.memory.data())[i] = 1;
        else if (each.element == 'a')
            each.memory[i] = 'B';
        else
            write(each.memory.data(), each.element, at, number(double(at + 1), double(at % 17) + 0.5));
    }
}

template <std::size_t>
using word = int64_t;
template <std::size_t>
using real = double;

template <class Result, std::size_t... I, std::size_t... J>
Result invoke(void *routine, const std::vector<int64_t> &w, const std::array<double, most_reals> &d,
              std::index_sequence<I...>, std::index_sequence<J...>)
{
    return reinterpret_cast<Result (*)(word<I>..., real<J>...)>(routine)(w[I]..., d[J]...);
}

template <class Result>
Result invoke(void *routine, const std::vector<int64_t> &w, const std::array<double, most_reals> &d)
{
    return invoke<Result>(routine, w, d, std::make_index_sequence<most_words>{},
                          std::make_index_sequence<most_reals>{});
}

/// How registers hold single precision: in their lower half, both parts of a complex number side by side.
double packed(float low, float high = 0)
{
    return std::bit_cast<double>(std::array<float, 2>{low, high});
}

} // namespace

std::span<const lapacke_row> rows()
{
    return {lapacke_rows, static_cast<std::size_t>(lapacke_row_count)};
}

const lapacke_row &row_of(const std::string &routine)
{
    for (const lapacke_row &row : rows())
        if (routine == row.routine)
            return row;
    throw std::out_of_range("no table has " + routine);
}

std::vector<std::string> cut(const char *list)
{
    std::istringstream in(list);
    std::vector<std::string> parts;
    for (std::string part; std::getline(in, part, ',');)
        parts.push_back(part);
    return parts;
}

char element_of(const std::string &type)
{
    const auto has = [&](const char *text) { return type.find(text) != std::string::npos; };
    if (has("SELECT"))
        return 'p';
    if (has("char"))
        return 'a';
    if (has("lapack_complex_float"))
        return 'c';
    if (has("lapack_complex_double"))
        return 'z';
    return has("float") ? 's' : has("double") ? 'd' : 'i';
}

std::size_t size_of(char element)
{
    static const std::map<char, std::size_t> sizes = {{'s', 4},  {'d', 8}, {'c', 8},
                                                      {'z', 16}, {'i', 8}, {'a', 1}};
    return sizes.at(element);
}

number read(const void *memory, char element, int64_t i)
{
    const auto single = static_cast<const float *>(memory);
    const auto wide = static_cast<const double *>(memory);
    switch (element) {
    case 's':
        return single[i];
    case 'd':
        return wide[i];
    case 'c':
        return {single[2 * i], single[2 * i + 1]};
    case 'z':
        return {wide[2 * i], wide[2 * i + 1]};
    default:
        return static_cast<double>(static_cast<const int64_t *>(memory)[i]);
    }
}

void write(void *memory, char element, int64_t i, number value)
{
    const auto single = static_cast<float *>(memory);
    const auto wide = static_cast<double *>(memory);
    switch (element) {
    case 's':
        single[i] = static_cast<float>(value.real());
        break;
    case 'd':
        wide[i] = value.real();
        break;
    case 'c':
        single[2 * i] = static_cast<float>(value.real());
        single[2 * i + 1] = static_cast<float>(value.imag());
        break;
    case 'z':
        wide[2 * i] = value.real();
        wide[2 * i + 1] = value.imag();
        break;
    default:
        static_cast<int64_t *>(memory)[i] = static_cast<int64_t>(value.real());
    }
}

int64_t good_integer(const std::string &name)
{
    static const std::map<std::string, int64_t> values = {{"m", 7},
                                                          {"n", 5},
                                                          {"k", 3},
                                                          {"l", 2},
                                                          {"p", 4},
                                                          {"q", 2},
                                                          {"nrhs", 3},
                                                          {"kl", 1},
                                                          {"ku", 2},
                                                          {"kd", 2},
                                                          {"ka", 2},
                                                          {"kb", 1},
                                                          {"nb", 2},
                                                          {"mb", 2},
                                                          {"nb1", 2},
                                                          {"nb2", 2},
                                                          {"mb1", 8},
                                                          {"ilo", 1},
                                                          {"ihi", 5},
                                                          {"il", 1},
                                                          {"iu", 3},
                                                          {"mm", 4},
                                                          {"k1", 1},
                                                          {"k2", 4},
                                                          {"ncvt", 2},
                                                          {"nru", 3},
                                                          {"ncc", 4},
                                                          {"mv", 3},
                                                          {"rows", 2},
                                                          {"cols", 3},
                                                          {"tsize", 64},
                                                          {"ltb", 64},
                                                          {"nfact", 2},
                                                          {"nparams", 0},
                                                          {"n_err_bnds", 3},
                                                          {"ifst", 1},
                                                          {"ilst", 2},
                                                          {"lwork", 4096},
                                                          {"liwork", 4096},
                                                          {"lrwork", 4096},
                                                          {"lcwork", 4096},
                                                          {"ldwork", leading_dimension},
                                                          {"ldswork", leading_dimension}};
    const auto found = values.find(name);
    return found != values.end() ? found->second : name.starts_with("ld") ? leading_dimension : 1;
}

call::call(const lapacke_row &row, bool work, int set) : row(row), work(work)
{
    const auto names = cut(work ? row.work_names : row.names),
               types = cut(work ? row.work_types : row.types);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string &type = types[i];
        argument made{names[i], type, element_of(type), type.ends_with("*"), type.starts_with("const "), 0,
                      0,        {}};
        const char letter = good_letter(names[i], row.routine, set);
        if (made.is_array) {
            made.memory.resize(elements * size_of(made.element));
            fill(made);
            if (made.element == 'a')
                made.memory[0] = letter;
        } else if (made.element == 'a') {
            made.integer = letter;
        } else if (made.element == 'i') {
            made.integer = good_integer(names[i]);
        } else {
            made.real = {2.5, 1.5};
        }
        arguments.push_back(std::move(made));
    }
}

bool call::has(const std::string &name) const
{
    return std::any_of(arguments.begin(), arguments.end(),
                       [&](const argument &each) { return each.name == name; });
}

argument &call::at(const std::string &name)
{
    return arguments.at(static_cast<std::size_t>(place(name) - (row.has_layout ? 2 : 1)));
}

int64_t call::place(const std::string &name) const
{
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (arguments[i].name == name)
            return static_cast<int64_t>(i) + (row.has_layout ? 2 : 1);
    throw std::out_of_range(this->name() + " has no argument " + name);
}

double call::make(const std::string &suffix, void *library)
{
    std::vector<int64_t> w;
    std::array<double, most_reals> d{};
    std::size_t reals = 0;
    if (row.has_layout)
        w.push_back(layout);
    for (argument &each : arguments)
        if (each.is_array)
            w.push_back(reinterpret_cast<int64_t>(each.memory.data()));
        else if (!each.is_number())
            w.push_back(each.integer);
        else if (each.element == 's' || each.element == 'c')
            d[reals++] = packed(static_cast<float>(each.real.real()),
                                each.element == 'c' ? static_cast<float>(each.real.imag()) : 0);
        else {
            d[reals++] = each.real.real();
            if (each.element == 'z')
                d[reals++] = each.real.imag();
        }
    w.resize(most_words);
    const std::string symbol = name() + suffix;
    void *routine = dlsym(library ? library : RTLD_DEFAULT, symbol.c_str());
    if (!routine)
        throw std::runtime_error(symbol + " is not exported");
    const std::string result = row.result;
    return result == "float"    ? static_cast<double>(invoke<float>(routine, w, d))
           : result == "double" ? invoke<double>(routine, w, d)
                                : static_cast<double>(invoke<int64_t>(routine, w, d));
}

std::vector<std::vector<char>> call::contents() const
{
    std::vector<std::vector<char>> all;
    for (const argument &each : arguments)
        all.push_back(each.memory);
    return all;
}

} // namespace lapacke
