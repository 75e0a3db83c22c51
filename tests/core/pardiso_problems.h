// Sparse systems for the tests of the direct solvers: matrices from files and from well-known
// discretizations, and a call of pardiso that remembers its arguments.
#pragma once

#include "element_types.h"

#include "xkl_solvers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace element_types;

// A whole matrix by its elements.
template <class T>
struct matrix {
    int64_t n = 0;
    std::map<std::pair<int64_t, int64_t>, T> elements;

    T &operator()(int64_t row, int64_t column) { return elements[{row, column}]; }

    // op: 0 A, 1 A^H, 2 A^T
    std::vector<T> times(const std::vector<T> &x, int op = 0) const
    {
        std::vector<T> y(n);
        for (const auto &[place, value] : elements)
            if (op == 0)
                y[place.first] += value * x[place.second];
            else
                y[place.second] += (op == 1 ? conjugate(value) : value) * x[place.first];
        return y;
    }
};

template <class T>
struct rows {
    std::vector<int64_t> ia, ja;
    std::vector<T> a;

    rows(const matrix<T> &from, bool upper, int64_t base)
    {
        ia.assign(from.n + 1, base);
        for (const auto &[place, value] : from.elements) {
            if (upper && place.second < place.first)
                continue;
            ++ia[place.first + 1];
            ja.push_back(place.second + base);
            a.push_back(value);
        }
        for (int64_t i = 0; i < from.n; ++i)
            ia[i + 1] += ia[i] - base;
    }
};

inline bool upper_only(int64_t mtype)
{
    return mtype == 2 || mtype == -2 || mtype == 4 || mtype == -4 || mtype == 6;
}

// Minus Laplace on a grid of m points a side in 2 or 3 dimensions, plus shift; wind makes it unsymmetric.
template <class T>
matrix<T> laplace(int64_t m, int dimensions, T shift = {}, T wind = {})
{
    matrix<T> a;
    a.n = dimensions == 2 ? m * m : m * m * m;
    for (int64_t i = 0; i < a.n; ++i) {
        a(i, i) = T(2.0 * dimensions) + shift;
        int64_t step = 1;
        for (int d = 0; d < dimensions; ++d, step *= m)
            if (i / step % m + 1 < m) {
                a(i, i + step) = T(-1) + wind;
                a(i + step, i) = T(-1) - wind;
            }
    }
    return a;
}

// (K, B; B^T, 0) with K = laplace and as many constraints: K's eigenvalues stay positive, each constraint
// adds a negative one.
inline matrix<double> saddle_point(int64_t m, int64_t constraints)
{
    matrix<double> a = laplace<double>(m, 2);
    const int64_t n = a.n;
    a.n += constraints;
    for (int64_t c = 0; c < constraints; ++c)
        for (int64_t k = 0; k < 3; ++k) {
            const int64_t column = (c * 7 + k * 5) % n;
            a(n + c, column) += 1.0 + 0.1 * static_cast<double>(k + c % 3);
            a(column, n + c) = a(n + c, column);
        }
    return a;
}

// A Hermitian one: Laplace in a magnetic field.
template <class T>
matrix<T> magnetic(int64_t m, double shift)
{
    using real = real_of<T>;
    matrix<T> a = laplace<T>(m, 2, T(static_cast<real>(shift)));
    for (auto &[place, value] : a.elements)
        if (place.second > place.first)
            value =
                std::polar<real>(1, static_cast<real>(0.3 * static_cast<double>(place.first % m) + 2.5));
    for (auto &[place, value] : a.elements)
        if (place.second < place.first)
            value = std::conj(a(place.second, place.first));
    return a;
}

// A matrix in Matrix Market form; one that has places only gets the value 1 everywhere.
inline matrix<double> from_file(const std::string &name)
{
    std::ifstream file(XKL_TEST_DATA "/" + name);
    if (!file)
        file.open(XKL_EXAMPLE_DATA "/" + name);
    EXPECT_TRUE(file) << name;
    std::string line, banner;
    std::getline(file, banner);
    while (std::getline(file, line) && line[0] == '%') {
    }
    matrix<double> a;
    std::istringstream(line) >> a.n;
    int64_t row, column;
    while (std::getline(file, line)) {
        double value = 1;
        std::istringstream(line) >> row >> column >> value;
        a(row - 1, column - 1) = value;
        if (banner.find("symmetric") != std::string::npos)
            a(column - 1, row - 1) = value;
    }
    return a;
}

template <class T>
std::vector<T> random_vector(int64_t n, unsigned seed = 1)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<real_of<T>> uniform(-1, 1);
    std::vector<T> x(n);
    for (T &value : x)
        if constexpr (is_complex<T>)
            value = {uniform(random), uniform(random)};
        else
            value = uniform(random);
    return x;
}

template <class T>
double norm(const std::vector<T> &x)
{
    double largest = 0;
    for (const T &value : x)
        largest = std::max<double>(largest, std::abs(value));
    return largest;
}

template <class T>
double distance(const std::vector<T> &x, const std::vector<T> &y)
{
    double largest = 0;
    for (size_t i = 0; i < x.size(); ++i)
        largest = std::max<double>(largest, std::abs(x[i] - y[i]));
    return largest;
}

// |b - op(A) x| / (|A| |x| + |b|) in multiples of the rounding unit.
template <class T>
double backward_error(const matrix<T> &a, const std::vector<T> &x, const std::vector<T> &b, int op = 0)
{
    double largest = 0;
    for (const auto &[place, value] : a.elements)
        largest = std::max<double>(largest, std::abs(value));
    return distance(a.times(x, op), b) / (largest * norm(x) + norm(b)) /
           std::numeric_limits<real_of<T>>::epsilon();
}

// A handle with the arrays of its matrix. Releases itself.
template <class T>
class solver {
  public:
    solver(const matrix<T> &a, int64_t mtype, int64_t base = 1)
        : solver(a.n, rows<T>(a, upper_only(mtype), base), mtype, base)
    {
    }
    solver(int64_t order, rows<T> arrays, int64_t type, int64_t base)
        : n(order), mtype(type), in(std::move(arrays))
    {
        pardisoinit(pt, &mtype, iparm);
        iparm[34] = base == 0;
        iparm[27] = sizeof(real_of<T>) == 4;
    }
    ~solver() { EXPECT_EQ(run(-1), 0); }
    solver(const solver &) = delete;
    solver &operator=(const solver &) = delete;

    int64_t run(int64_t phase)
    {
        const int64_t nrhs = n > 0 && !b.empty() ? static_cast<int64_t>(b.size()) / n : 1;
        int64_t error = 77;
        x.resize(std::max(b.size(), x.size()));
        pardiso(pt, &maxfct, &mnum, &mtype, &phase, &n, in.a.data(), in.ia.data(), in.ja.data(),
                perm.data(), &nrhs, iparm, &msglvl, b.data(), x.data(), &error);
        return error;
    }

    int64_t n, mtype;
    rows<T> in;
    void *pt[64] = {};
    int64_t iparm[64] = {};
    int64_t maxfct = 1, mnum = 1, msglvl = 0;
    std::vector<int64_t> perm;
    std::vector<T> b, x;
};
