#include "lapacke_problem.h"

#include <map>
#include <random>
#include <set>

namespace lapacke {
namespace {

constexpr int64_t side = leading_dimension;

std::string stem_of(const call &made)
{
    const std::string routine = made.row.routine;
    return routine.substr(routine.starts_with("xkl_") ? 5 : 1);
}

/// Letters that not every routine of an argument's name understands.
void set_letters(call &made, int set)
{
    static const std::map<std::string, std::map<std::string, std::string>> letters = {
        {"hseqr", {{"job", "SE"}, {"compz", "VI"}}},
        {"hgeqz", {{"job", "SE"}}},
        {"gebal", {{"job", "BP"}}},
        {"ggbal", {{"job", "BP"}}},
        {"gebak", {{"job", "BP"}}},
        {"ggbak", {{"job", "BP"}}},
        {"bdsdc", {{"compq", "IN"}}},
        {"hsein", {{"side", "BR"}, {"eigsrc", "NN"}, {"initv", "NV"}}},
        {"trevc", {{"side", "BR"}, {"howmny", "BA"}}},
        {"tgevc", {{"side", "BR"}, {"howmny", "BA"}}},
        {"trsna", {{"job", "BV"}, {"howmny", "AA"}}},
        {"tgsna", {{"job", "BV"}, {"howmny", "AA"}}},
        {"disna", {{"job", "EL"}}},
        {"gesdd", {{"jobz", "AS"}}},
        {"gtsvx", {{"fact", "FN"}}},
        {"ptsvx", {{"fact", "FN"}}},
        {"spsvx", {{"fact", "FN"}}},
        {"hpsvx", {{"fact", "FN"}}},
        {"sysvx", {{"fact", "FN"}}},
        {"hesvx", {{"fact", "FN"}}},
        {"gesvdq", {{"jobu", "AS"}, {"jobv", "AN"}, {"joba", "HM"}, {"jobp", "NN"}, {"jobr", "NN"}}},
        {"gesvj", {{"joba", "GG"}, {"jobu", "UN"}, {"jobv", "VN"}}},
        {"gesvdx", {{"jobu", "VV"}, {"jobvt", "VN"}}},
        {"gbbrd", {{"vect", "BN"}}},
        {"syconv", {{"way", "CC"}}},
        {"latms", {{"dist", "US"}, {"sym", "NN"}, {"pack", "NN"}}},
        {"lascl", {{"type", "GU"}}},
        {"larfb", {{"direct", "FB"}, {"storev", "CR"}}},
        {"sbgst", {{"vect", "VN"}}},
        {"hbgst", {{"vect", "VN"}}},
        {"laset", {{"uplo", "UL"}}},
        {"stegr", {{"jobz", "VN"}, {"range", "AI"}}},
        {"pteqr", {{"compz", "IV"}}},
        {"trsen", {{"job", "BN"}, {"compq", "VN"}}},
        {"tfsm", {{"trans", "NC"}}},
        {"ormbr", {{"trans", "NT"}}},
        {"orcsd2by1", {{"jobu1", "YN"}}}};
    const bool complex = made.row.element == 'C' || made.row.element == 'Z';
    const std::set<std::string> real_transposes = {"tfsm", "sfrk"};
    for (argument &each : made.arguments) {
        if (each.element != 'a' || each.is_array)
            continue;
        if (each.name == "sort")
            each.integer = 'N'; // selecting needs a procedure
        if (each.name.starts_with("trans") && each.integer == 'T')
            each.integer = complex ? 'C' : 'T';
        if (each.name.starts_with("trans") && each.integer == 'C' && !complex)
            each.integer = 'T';
        if (const auto found = letters.find(stem_of(made)); found != letters.end())
            if (const auto letter = found->second.find(each.name); letter != found->second.end())
                each.integer = letter->second[static_cast<std::size_t>(set)];
    }
}

void set_numbers(call &made)
{
    static const std::map<std::string, number> values = {
        {"vl", -100},   {"vu", 100},    {"abstol", 0}, {"rcond", -1}, {"tol", -1},
        {"tola", 1e-3}, {"tolb", 1e-3}, {"cond", 10},  {"dmax", 2},   {"anorm", 5},
        {"cfrom", 2},   {"cto", 3},     {"c", 0.6},    {"s", 0.8},    {"r", 1}};
    for (argument &each : made.arguments)
        if (!each.is_array && each.is_number()) {
            const auto found = values.find(each.name);
            each.real = found == values.end() ? number(1.25) : found->second;
        }
}

class numbers {
  public:
    explicit numbers(unsigned seed) : engine_(seed) {}
    number next() { return {spread_(engine_), spread_(engine_)}; }

  private:
    std::minstd_rand engine_;
    std::uniform_real_distribution<double> spread_{-0.5, 0.5};
};

bool is_band(const std::string &name)
{
    return name == "ab" || name == "afb" || name == "bb";
}

/// The row of a band array that holds the diagonal.
int64_t diagonal_row(call &made, const std::string &name)
{
    const bool upper = !made.has("uplo") || made.at("uplo").integer == 'U';
    if (made.has("kl")) {
        static const std::set<std::string> with_fill = {"gbsv", "gbtrf", "gbtrs", "gbcon"};
        const int64_t fill = with_fill.contains(stem_of(made)) || name == "afb" ? made.at("kl").integer : 0;
        return fill + made.at("ku").integer;
    }
    const char *width = name == "bb" ? "kb" : made.has("kd") ? "kd" : "ka";
    return upper && made.has(width) ? made.at(width).integer : 0;
}

/// Symmetric, and so the same in both layouts when it is square; its diagonal is real and large.
void fill_matrix(call &made, argument &each, numbers &random)
{
    std::vector<number> values(static_cast<std::size_t>(side * side));
    const auto at = [](int64_t i, int64_t j) { return static_cast<std::size_t>(i + j * side); };
    const bool band = is_band(each.name);
    const int64_t diagonal = band ? diagonal_row(made, each.name) : 0;
    for (int64_t j = 0; j < side; ++j)
        for (int64_t i = 0; i < side; ++i) {
            const number value = random.next();
            if (band ? i == diagonal : i == j)
                values[at(i, j)] = 4 + 0.25 * static_cast<double>(j);
            else
                values[at(i, j)] = !band && i < j ? values[at(i, j)] : value;
            if (!band && i > j)
                values[at(j, i)] = value;
        }
    for (int64_t j = 0; j < side; ++j)
        for (int64_t i = 0; i < side; ++i)
            write(each.memory.data(), each.element, made.layout == row_major ? i * side + j : i + j * side,
                  values[at(i, j)]);
}

bool is_packed(const std::string &name)
{
    return name == "ap" || name == "afp" || name == "bp";
}

bool is_matrix(const call &made, std::size_t i)
{
    return i + 1 < made.arguments.size() && made.arguments[i + 1].is_leading_dimension();
}

/// Of a packed matrix.
int64_t order(call &made)
{
    static const std::set<std::string> by_side = {"opmtr", "upmtr", "tfsm"};
    const bool rows = by_side.contains(stem_of(made)) && made.at("side").integer == 'L';
    return rows ? made.at("m").integer : made.at("n").integer;
}

/// Packed in a rectangle.
bool is_rectangular_packed(const call &made, std::size_t i)
{
    const argument &each = made.arguments[i];
    const std::string &name = each.name;
    return made.has("transr") && each.is_array && !is_matrix(made, i) &&
           (name == "arf" || name == "a" || name == "c");
}

/// Its place by columns, from that by rows.
int64_t rectangular_place(call &made, int64_t at)
{
    const int64_t n = order(made);
    const int64_t tall = n % 2 ? n : n + 1, narrow = (n + 1) / 2;
    const bool upright = made.at("transr").integer == 'N';
    const int64_t rows = upright ? tall : narrow, columns = upright ? narrow : tall;
    return at < rows * columns ? at / columns + at % columns * rows : at;
}

/// Where (i,j) of the upper triangle is in packed memory, and (j,i) of the lower one.
int64_t packed_place(call &made, int layout, int64_t i, int64_t j)
{
    const int64_t n = order(made);
    const bool upper = !made.has("uplo") || made.at("uplo").integer == 'U';
    return upper == (layout == column_major) ? i + j * (j + 1) / 2 : j + i * (2 * n - i - 1) / 2;
}

/// A packed triangle with a large diagonal, the same one in both layouts.
void fill_packed(call &made, argument &each, numbers &random)
{
    const int64_t n = order(made);
    for (int64_t j = 0; j < n; ++j)
        for (int64_t i = 0; i <= j; ++i)
            write(each.memory.data(), each.element, packed_place(made, made.layout, i, j),
                  i == j ? number(4 + 0.25 * static_cast<double>(j)) : random.next());
}

void fill_vector(argument &each, numbers &random)
{
    static const std::set<std::string> large = {"d",      "df",     "alphar", "scale",
                                                "lscale", "rscale", "w",      "wr"};
    const bool positive = large.contains(each.name);
    for (int64_t i = 0; i < side * side; ++i)
        write(each.memory.data(), each.element, i,
              positive ? number(4 + 0.25 * static_cast<double>(i)) : 0.5 + 0.5 * random.next());
}

void fill_integers(argument &each)
{
    static const std::set<std::string> zeros = {"kase", "isave", "jpvt", "tryrac"};
    for (int64_t i = 0; i < side * side; ++i)
        write(each.memory.data(), 'i', i,
              zeros.contains(each.name) ? 0.0
                                        : static_cast<double>(each.name == "iseed" ? 2 * i + 1 : i + 1));
}

} // namespace

void pose(call &made, int set, unsigned seed)
{
    set_letters(made, set);
    set_numbers(made);
    for (std::size_t i = 0; i < made.arguments.size(); ++i) {
        argument &each = made.arguments[i];
        if (!each.is_array)
            continue;
        numbers random(seed + static_cast<unsigned>(i));
        if (each.element == 'i')
            fill_integers(each);
        else if (each.element == 'a')
            each.memory.assign(each.memory.size(), made.row.routine[1] == 'g' ? 'B' : 'Y');
        else if (is_matrix(made, i))
            fill_matrix(made, each, random);
        else if (is_packed(each.name))
            fill_packed(made, each, random);
        else
            fill_vector(each, random);
        if (is_rectangular_packed(made, i) && made.layout == row_major) {
            const std::vector<char> by_columns = each.memory;
            for (int64_t at = 0; at < side * side; ++at)
                write(each.memory.data(), each.element, at,
                      read(by_columns.data(), each.element, rectangular_place(made, at)));
        }
    }
}

int64_t place_by_columns(call &made, std::size_t argument, int64_t at)
{
    if (made.layout == column_major)
        return at;
    const std::string &name = made.arguments[argument].name;
    if (made.arguments[argument].is_number() && is_matrix(made, argument))
        return at % side * side + at / side;
    if (is_rectangular_packed(made, argument))
        return rectangular_place(made, at);
    if (!is_packed(name))
        return at;
    const int64_t n = order(made);
    if (at < n * (n + 1) / 2)
        for (int64_t j = 0; j < n; ++j)
            for (int64_t i = 0; i <= j; ++i)
                if (packed_place(made, row_major, i, j) == at)
                    return packed_place(made, column_major, i, j);
    return at;
}

} // namespace lapacke
