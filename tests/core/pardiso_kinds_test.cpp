// Every kind of matrix in every arithmetic: residuals, eigenvalue counts, transposes, another factorization
// with the same places.
#include "pardiso_problems.h"

#include <array>
#include <thread>

namespace {

// A matrix of the kind, with the number of its negative eigenvalues or -1.
template <class T>
struct problem {
    matrix<T> a;
    int64_t negative;
};

// Laplace on m by m points has eigenvalues 4 - 2 cos(i h) - 2 cos(j h).
int64_t eigenvalues_below(int64_t m, double shift)
{
    int64_t count = 0;
    for (int64_t i = 1; i <= m; ++i)
        for (int64_t j = 1; j <= m; ++j)
            count += 4 - 2 * std::cos(i * M_PI / (m + 1)) - 2 * std::cos(j * M_PI / (m + 1)) < shift;
    return count;
}

template <class T>
problem<T> problem_of(int64_t mtype, int64_t m)
{
    using real = real_of<T>;
    constexpr double shift = 1.37;
    const T lowered = T(static_cast<real>(-shift));
    if constexpr (is_complex<T>) {
        const T damped = lowered + T(0, static_cast<real>(0.2)); // Helmholtz with losses
        switch (mtype) {
        case 4:
            return {magnetic<T>(m, 0.1), 0};
        case -4:
            return {magnetic<T>(m, -2.2), -1};
        case 6:
            return {laplace<T>(m, 2, damped), -1};
        default:
            return {laplace<T>(m, 2, damped, T(real(0.4), real(0.3))), -1};
        }
    } else {
        switch (mtype) {
        case 2:
            return {laplace<T>(m, 2), 0};
        case -2:
            return {laplace<T>(m, 2, lowered), eigenvalues_below(m, shift)};
        default:
            return {laplace<T>(m, 2, T(0), real(0.6)), -1};
        }
    }
}

template <class T>
void solves_with_every_operation(const problem<T> &p, solver<T> &s, const std::vector<T> &right,
                                 double allowed)
{
    const int64_t n = p.a.n;
    for (int op = 0; op <= 2; ++op) {
        s.iparm[11] = op;
        s.b.clear();
        for (int column = 0; column < 3; ++column)
            for (int64_t i = 0; i < n; ++i)
                s.b.push_back(right[i] * T(static_cast<real_of<T>>(column + 1)));
        ASSERT_EQ(s.run(33), 0);
        for (int column = 0; column < 3; ++column) {
            const auto part = [&](const std::vector<T> &v) {
                return std::vector<T>(v.begin() + column * n, v.begin() + (column + 1) * n);
            };
            EXPECT_LT(backward_error(p.a, part(s.x), part(s.b), op), allowed) << "operation " << op;
        }
    }
    s.iparm[11] = 0;
}

template <class T>
void check_kind(int64_t mtype, int64_t m)
{
    SCOPED_TRACE(testing::Message() << "mtype " << mtype << ", " << m << " points a side, " << sizeof(T)
                                    << " bytes an element");
    constexpr double allowed = 200; // rounding units, without refinement
    for (const int64_t base : {0, 1}) {
        problem<T> p = problem_of<T>(mtype, m);
        solver<T> s(p.a, mtype, base);
        s.iparm[26] = 1;
        const std::vector<T> right = random_vector<T>(p.a.n);
        ASSERT_EQ(s.run(12), 0);
        EXPECT_GT(s.iparm[17], p.a.n); // elements in the factors
        if (p.negative >= 0) {
            EXPECT_EQ(s.iparm[22], p.negative);
            EXPECT_EQ(s.iparm[21], p.a.n - p.negative);
        }
        solves_with_every_operation(p, s, right, allowed);

        // Other values at the same places.
        for (T &value : s.in.a)
            value *= 3;
        for (auto &[place, value] : p.a.elements)
            value *= 3;
        s.b = right;
        ASSERT_EQ(s.run(23), 0);
        EXPECT_LT(backward_error(p.a, s.x, s.b), allowed);
    }
}

constexpr int64_t small = 8, large = 34; // on either side of the order where fronts take over

TEST(kinds, real)
{
    for (const int64_t mtype : {1, 2, -2, 11})
        for (const int64_t m : {small, large}) {
            check_kind<double>(mtype, m);
            check_kind<float>(mtype, m);
        }
}

TEST(kinds, complex)
{
    for (const int64_t mtype : {3, 4, -4, 6, 13})
        for (const int64_t m : {small, large}) {
            check_kind<complex16>(mtype, m);
            check_kind<std::complex<float>>(mtype, m);
        }
}

TEST(kinds, hermitian_eigenvalue_counts_agree_between_engines)
{
    for (const int64_t m : {small, large}) {
        const matrix<complex16> a = magnetic<complex16>(m, -2.2);
        solver<complex16> with_exchanges(a, -4), without(a, -4);
        without.iparm[55] = 1; // asks for factors without exchanges
        ASSERT_EQ(with_exchanges.run(12), 0);
        ASSERT_EQ(without.run(12), 0);
        EXPECT_GT(without.iparm[22], 0);
        EXPECT_EQ(with_exchanges.iparm[21], without.iparm[21]);
        EXPECT_EQ(with_exchanges.iparm[22], without.iparm[22]);
    }
}

TEST(kinds, saddle_point)
{
    for (const int64_t constraints : {10, 200}) {
        const matrix<double> a = saddle_point(30, constraints);
        solver<double> s(a, -2);
        for (const int64_t matching : {0, 1}) {
            s.iparm[10] = s.iparm[12] = matching;
            s.b = random_vector<double>(a.n);
            ASSERT_EQ(s.run(13), 0);
            EXPECT_LT(backward_error(a, s.x, s.b), 200);
            EXPECT_EQ(s.iparm[22], constraints);
            EXPECT_EQ(s.iparm[21], a.n - constraints);
        }
        // As an unsymmetric one, whose rows are matched to columns first: with its values, and after a
        // release of the factors.
        solver<double> unsymmetric(a, 11);
        unsymmetric.b = random_vector<double>(a.n);
        ASSERT_EQ(unsymmetric.run(13), 0);
        EXPECT_LT(backward_error(a, unsymmetric.x, unsymmetric.b), 200);
        ASSERT_EQ(unsymmetric.run(0), 0);
        ASSERT_EQ(unsymmetric.run(23), 0);
        EXPECT_LT(backward_error(a, unsymmetric.x, unsymmetric.b), 200);
    }
}

TEST(kinds, three_dimensions_and_every_order_of_elimination)
{
    const matrix<double> a = laplace<double>(12, 3);
    solver<double> s(a, 2);
    s.b = random_vector<double>(a.n);
    int64_t elements[4] = {};
    for (const int64_t ordering : {0, 2, 3}) {
        s.iparm[1] = ordering;
        s.iparm[17] = -1;
        ASSERT_EQ(s.run(13), 0);
        EXPECT_LT(backward_error(a, s.x, s.b), 200);
        elements[ordering] = s.iparm[17];
    }
    // Without an order the band would fill up: n * m^2 elements.
    EXPECT_LT(elements[0], a.n * 144);
    EXPECT_LT(elements[2], a.n * 144);

    // An order can be handed out and in again.
    s.perm.assign(a.n, 0);
    s.iparm[4] = 2;
    ASSERT_EQ(s.run(12), 0);
    std::vector<int64_t> sorted = s.perm;
    std::sort(sorted.begin(), sorted.end());
    for (int64_t i = 0; i < a.n; ++i)
        ASSERT_EQ(sorted[i], i + 1);
    s.iparm[4] = 1;
    s.iparm[17] = -1;
    ASSERT_EQ(s.run(13), 0);
    EXPECT_EQ(s.iparm[17], elements[3]);
    EXPECT_LT(backward_error(a, s.x, s.b), 200);
    s.perm[5] = s.perm[6];
    EXPECT_EQ(s.run(11), XKL_PARDISO_INPUT_ERROR);
}

TEST(kinds, matrices_from_the_field)
{
    struct {
        const char *name;
        int64_t mtype;
    } const cases[] = {
        {"lund_a.mtx", 2}, {"lund_a.mtx", -2}, {"lund_a.mtx", 1}, {"pores_1.mtx", 11}, {"utm300.mtx", 11}};
    for (const auto &[name, mtype] : cases) {
        SCOPED_TRACE(name);
        const matrix<double> a = from_file(name);
        solver<double> s(a, mtype);
        const std::vector<double> wanted(a.n, 1.0);
        s.b = a.times(wanted);
        s.iparm[7] = 2;
        s.iparm[26] = 1;
        ASSERT_EQ(s.run(13), 0);
        EXPECT_LT(backward_error(a, s.x, s.b), 5);
        EXPECT_LT(distance(s.x, wanted), 1e-6);
        if (mtype == -2) {
            EXPECT_EQ(s.iparm[22], 0);
        }
    }
}

// A file of places: four of its rows are alike, so that ones everywhere are singular, as nearly no other
// values are.
TEST(kinds, places_take_any_values)
{
    matrix<double> a = from_file("jgl009.mtx");
    solver<double> s(a, 11);
    ASSERT_EQ(s.run(11), 0);
    EXPECT_EQ(s.run(22), XKL_PARDISO_ZERO_PIVOT);
    for (const unsigned seed : {1u, 2u}) {
        s.in.a = random_vector<double>(static_cast<int64_t>(s.in.a.size()), seed);
        auto value = s.in.a.begin();
        for (auto &element : a.elements)
            element.second = *value++;
        s.b = random_vector<double>(a.n, seed);
        ASSERT_EQ(s.run(23), 0);
        EXPECT_LT(backward_error(a, s.x, s.b), 20);
    }
}

TEST(kinds, blocks)
{
    // Blocks of order 2, stored by columns with indices from 1 and by rows with indices from 0.
    const matrix<double> a = laplace<double>(10, 2, 0.0, 0.3);
    for (const int64_t mtype : {11, 1}) {
        for (const int64_t base : {0, 1}) {
            rows<double> blocks({}, false, base);
            std::map<std::pair<int64_t, int64_t>, std::array<double, 4>> found;
            for (const auto &[place, value] : a.elements) {
                const int64_t i = place.first % 2, j = place.second % 2;
                found[{place.first / 2, place.second / 2}][base == 0 ? i * 2 + j : j * 2 + i] = value;
            }
            blocks.ia.assign(a.n / 2 + 1, 0);
            for (const auto &[place, values] : found) {
                ++blocks.ia[place.first + 1];
                blocks.ja.push_back(place.second + base);
                blocks.a.insert(blocks.a.end(), values.begin(), values.end());
            }
            for (size_t i = 1; i < blocks.ia.size(); ++i)
                blocks.ia[i] += blocks.ia[i - 1];
            for (int64_t &start : blocks.ia)
                start += base;
            solver<double> s(a.n / 2, blocks, mtype, base);
            s.iparm[36] = 2;
            s.b = random_vector<double>(a.n);
            s.x.resize(a.n);
            const std::vector<double> right = s.b;
            const int64_t one = 1, phase = 13;
            int64_t error = 77;
            pardiso_d(s.pt, &s.maxfct, &s.mnum, &s.mtype, &phase, &s.n, s.in.a.data(), s.in.ia.data(),
                      s.in.ja.data(), nullptr, &one, s.iparm, &s.msglvl, s.b.data(), s.x.data(), &error);
            ASSERT_EQ(error, 0);
            EXPECT_LT(backward_error(a, s.x, right), 20);
        }
    }
}

TEST(kinds, threads_with_handles_of_their_own)
{
    const matrix<double> positive = laplace<double>(36, 2), indefinite = laplace<double>(36, 2, -1.37);
    const auto work = [](const matrix<double> &a, int64_t mtype, unsigned seed) {
        for (int round = 0; round < 3; ++round) {
            solver<double> s(a, mtype);
            s.b = random_vector<double>(a.n, seed + round);
            ASSERT_EQ(s.run(13), 0);
            EXPECT_LT(backward_error(a, s.x, s.b), 200);
        }
    };
    std::thread other([&] { work(positive, 2, 10); });
    work(indefinite, -2, 20);
    other.join();
}

} // namespace
