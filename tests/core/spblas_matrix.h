// What the tests of the classic sparse BLAS share: random matrices with the dense matrix that a description
// makes of them, the same in each storage, and calls of routines by their exported names.
#pragma once

#include "blas_reference.h"

#include <dlfcn.h>

#include <array>
#include <cctype>
#include <initializer_list>
#include <map>

namespace spblas_test {
using namespace blas_test;

/// A routine's arguments, all of them addresses
using addresses = std::vector<const void *>;

/// `XKL_?CSRMV` with the letter of T
template <class T>
std::string name_of(std::string pattern)
{
    pattern[pattern.find('?')] = pick<T>('S', 'D', 'C', 'Z');
    return pattern;
}

template <size_t... Place>
int64_t call_with(void *routine, const addresses &given, std::index_sequence<Place...>)
{
    const auto address = [&](size_t i) { return given[i]; };
    return reinterpret_cast<int64_t (*)(decltype(address(Place))...)>(routine)(address(Place)...);
}

template <size_t Count = 1>
int64_t call(const std::string &name, const addresses &given)
{
    if constexpr (Count < 24) {
        if (given.size() != Count)
            return call<Count + 1>(name, given);
        void *const routine = dlsym(RTLD_DEFAULT, name.c_str());
        if (!routine)
            throw std::runtime_error(name + " is not exported");
        return call_with(routine, given, std::make_index_sequence<Count>());
    }
    throw std::runtime_error(name + ": too many arguments");
}

/// How a routine is to read a matrix
struct description {
    char kind, uplo, diag;
    bool from_one;
    std::string text() const { return {kind, uplo, diag, from_one ? 'F' : 'C', ' ', ' '}; }
    int64_t base() const { return from_one ? 1 : 0; }
    /// Whether the stored element stands for itself
    bool reads(int64_t i, int64_t j) const
    {
        const char letter = static_cast<char>(std::toupper(kind));
        if (letter == 'G')
            return true;
        if (i == j)
            return letter != 'A' && std::toupper(diag) == 'N';
        return letter != 'D' && (std::toupper(uplo) == 'L') == (i > j);
    }
};

/// A random matrix in which about a third of the elements is stored. Those that a description does not read
/// are NaN. Off the diagonal elements are small, so that solves are well-conditioned.
template <class T>
struct sample {
    struct element {
        int64_t row, column;
        T value;
    };
    int64_t rows, columns;
    description is;
    std::vector<element> elements; // by rows

    sample(int64_t m, int64_t k, const description &d, double density = .35) : rows(m), columns(k), is(d)
    {
        std::bernoulli_distribution stored(density);
        for (int64_t i = 0; i < m; ++i)
            for (int64_t j = 0; j < k; ++j)
                if (i == j || stored(random_source()))
                    elements.push_back({i, j, is.reads(i, j) ? value(i, j) : not_a_number<T>()});
    }
    T value(int64_t i, int64_t j) const
    {
        const T random = random_element<T>();
        if (i != j)
            return random / static_cast<real_of<T>>(std::max(rows, columns));
        return std::toupper(is.kind) == 'H' ? T(2 + std::real(random)) : random + T(2);
    }

    /// What the description makes of it
    wide_matrix described() const
    {
        wide_matrix full(rows, columns);
        const char kind = static_cast<char>(std::toupper(is.kind));
        for (const element &e : elements)
            if (is.reads(e.row, e.column)) {
                const wide v = widen(e.value);
                full(e.row, e.column) += v;
                if (e.row != e.column && (kind == 'S' || kind == 'H' || kind == 'A'))
                    full(e.column, e.row) += kind == 'S' ? v : kind == 'H' ? std::conj(v) : -v;
            }
        const bool ones = kind != 'G' && kind != 'A' && std::toupper(is.diag) == 'U';
        for (int64_t i = 0; ones && i < std::min(rows, columns); ++i)
            full(i, i) = 1;
        return full;
    }
};

inline wide_matrix op(const wide_matrix &a, char trans)
{
    const char letter = static_cast<char>(std::toupper(trans));
    wide_matrix result(letter == 'N' ? a.rows : a.columns, letter == 'N' ? a.columns : a.rows);
    for (int64_t i = 0; i < result.rows; ++i)
        for (int64_t j = 0; j < result.columns; ++j) {
            const wide v = letter == 'N' ? a(i, j) : a(j, i);
            result(i, j) = letter == 'C' ? std::conj(v) : v;
        }
    return result;
}

/// A matrix in a storage: its sizes as routines count them, and the arrays in the order of the arguments.
template <class T>
struct stored_matrix {
    std::string storage;
    int64_t m, k;
    size_t used; // of the arrays of integers
    int64_t lb = 0;
    std::vector<T> values{};
    std::array<std::vector<int64_t>, 3> integers{};

    /// What stands for the matrix in an argument list, behind its sizes
    addresses arrays() const
    {
        addresses result{values.data()};
        for (size_t i = 0; i < used; ++i)
            result.push_back(integers[i].data());
        return result;
    }
};

/// Lines with a bogus element between them, in no order along them, numbered from 6 on if starts are apart.
template <class T, class Line>
void compress(const sample<T> &a, int64_t lines, bool apart, const Line &line, stored_matrix<T> &to)
{
    auto &[across, begins, ends] = to.integers;
    const int64_t base = a.is.base(), first = base + (apart ? 5 : 0);
    std::vector<std::vector<std::pair<int64_t, T>>> sorted(static_cast<size_t>(lines));
    for (const auto &e : a.elements)
        sorted[static_cast<size_t>(line(e).first)].emplace_back(line(e).second + base, e.value);
    for (auto &each : sorted) {
        std::shuffle(each.begin(), each.end(), random_source());
        begins.push_back(first + static_cast<int64_t>(to.values.size()));
        ends.push_back(begins.back() + static_cast<int64_t>(each.size()));
        if (apart)
            each.emplace_back(base, not_a_number<T>());
        for (const auto &[place, v] : each) {
            across.push_back(place);
            to.values.push_back(v);
        }
    }
    if (apart)
        return;
    begins.push_back(first + static_cast<int64_t>(to.values.size()));
    std::swap(across, begins); // a, ia, ja
}

template <class T>
stored_matrix<T> in_rows(const sample<T> &a, bool apart)
{
    stored_matrix<T> to{"CSR", a.rows, a.columns, apart ? 3u : 2u};
    compress(
        a, a.rows, apart, [](const auto &e) { return std::pair(e.row, e.column); }, to);
    return to;
}

template <class T>
stored_matrix<T> in_columns(const sample<T> &a)
{
    stored_matrix<T> to{"CSC", a.rows, a.columns, 3};
    compress(
        a, a.columns, true, [](const auto &e) { return std::pair(e.column, e.row); }, to);
    return to;
}

/// In no order, and every third element in two halves
template <class T>
stored_matrix<T> by_elements(const sample<T> &a)
{
    stored_matrix<T> to{"COO", a.rows, a.columns, 3};
    auto parts = a.elements;
    for (size_t i = 0; i < a.elements.size(); i += 3) {
        parts[i].value /= 2;
        parts.push_back(parts[i]);
    }
    std::shuffle(parts.begin(), parts.end(), random_source());
    for (const auto &e : parts) {
        to.values.push_back(e.value);
        to.integers[0].push_back(e.row + a.is.base());
        to.integers[1].push_back(e.column + a.is.base());
    }
    to.integers[2] = {static_cast<int64_t>(parts.size())};
    return to;
}

/// Every diagonal, in no order; beyond the matrix its array has NaN.
template <class T>
stored_matrix<T> by_diagonals(const sample<T> &a)
{
    stored_matrix<T> to{"DIA", a.rows, a.columns, 3};
    std::vector<int64_t> distances;
    for (int64_t d = 1 - a.rows; d < a.columns; ++d)
        distances.push_back(d);
    std::shuffle(distances.begin(), distances.end(), random_source());
    const int64_t lead = a.rows + 2, count = static_cast<int64_t>(distances.size());
    to.values.assign(static_cast<size_t>(lead * count), not_a_number<T>());
    std::map<int64_t, int64_t> number;
    for (int64_t d = 0; d < count; ++d)
        number[distances[static_cast<size_t>(d)]] = d;
    const auto at = [&](int64_t i, int64_t j) -> T & {
        return to.values[static_cast<size_t>(i + number[j - i] * lead)];
    };
    for (int64_t i = 0; i < a.rows; ++i)
        for (int64_t j = 0; j < a.columns; ++j)
            at(i, j) = 0;
    for (const auto &e : a.elements)
        at(e.row, e.column) = e.value;
    to.integers = {std::vector{lead}, distances, std::vector{count}};
    return to;
}

/// Blocks of order lb, which divides the sizes, from right to left; those without elements are left out.
template <class T>
stored_matrix<T> in_blocks(const sample<T> &a, int64_t lb, bool apart)
{
    stored_matrix<T> to{"BSR", a.rows / lb, a.columns / lb, apart ? 3u : 2u, lb};
    std::map<std::pair<int64_t, int64_t>, std::vector<T>> blocks;
    for (const auto &e : a.elements) {
        std::vector<T> &block = blocks[{e.row / lb, -(e.column / lb)}];
        block.resize(static_cast<size_t>(lb * lb));
        const int64_t i = e.row % lb, j = e.column % lb;
        block[static_cast<size_t>(a.is.from_one ? i + j * lb : i * lb + j)] = e.value;
    }
    auto &[across, begins, ends] = to.integers;
    begins.assign(static_cast<size_t>(to.m + 1), a.is.base());
    for (const auto &[place, block] : blocks) {
        to.values.insert(to.values.end(), block.begin(), block.end());
        across.push_back(-place.second + a.is.base());
        for (int64_t row = place.first; row < to.m; ++row)
            ++begins[static_cast<size_t>(row + 1)];
    }
    if (apart) {
        ends.assign(begins.begin() + 1, begins.end());
        begins.pop_back();
    } else {
        std::swap(across, begins);
    }
    return to;
}

/// The triangle of the description, each line from its first element on
template <class T>
stored_matrix<T> in_skyline(const sample<T> &a)
{
    stored_matrix<T> to{"SKY", a.rows, a.columns, 1};
    const bool lower = std::toupper(a.is.uplo) != 'U';
    std::vector<std::vector<T>> profiles(
        static_cast<size_t>(lower ? a.rows : a.columns)); // from the diagonal
    for (const auto &e : a.elements) {
        const int64_t line = lower ? e.row : e.column, place = lower ? e.column : e.row;
        if (place > line)
            continue;
        std::vector<T> &profile = profiles[static_cast<size_t>(line)];
        profile.resize(std::max(profile.size(), static_cast<size_t>(line - place + 1)));
        profile[static_cast<size_t>(line - place)] = e.value;
    }
    to.integers[0] = {a.is.base()};
    for (const std::vector<T> &profile : profiles) {
        to.values.insert(to.values.end(), profile.rbegin(), profile.rend());
        to.integers[0].push_back(static_cast<int64_t>(to.values.size()) + a.is.base());
    }
    return to;
}

/// A dense operand of several columns, by columns or by rows, with canaries around its elements
template <class T>
struct dense_operand {
    bool by_rows;
    matrix<T> elements;
    dense_operand(int64_t rows, int64_t width, bool by_rows)
        : by_rows(by_rows), elements(by_rows ? width : rows, by_rows ? rows : width)
    {
    }
    int64_t rows() const { return by_rows ? elements.columns : elements.rows; }
    int64_t width() const { return by_rows ? elements.rows : elements.columns; }
    const T &operator()(int64_t i, int64_t q) const { return by_rows ? elements(q, i) : elements(i, q); }
    wide_matrix wide_elements() const
    {
        wide_matrix result(rows(), width());
        for (int64_t i = 0; i < rows(); ++i)
            for (int64_t q = 0; q < width(); ++q)
                result(i, q) = widen((*this)(i, q));
        return result;
    }
};

} // namespace spblas_test
