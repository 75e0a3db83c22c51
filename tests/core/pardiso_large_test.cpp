// A million unknowns.
#include "pardiso_problems.h"

namespace {

// Laplace on m by m points, upper triangle in rows, without the detour over single elements.
rows<double> grid(int64_t m)
{
    rows<double> a({}, true, 0);
    a.ia.clear();
    for (int64_t i = 0; i < m * m; ++i) {
        a.ia.push_back(static_cast<int64_t>(a.ja.size()));
        const auto add = [&a](int64_t column, double value) {
            a.ja.push_back(column);
            a.a.push_back(value);
        };
        add(i, 4.0);
        if (i % m + 1 < m)
            add(i + 1, -1.0);
        if (i + m < m * m)
            add(i + m, -1.0);
    }
    a.ia.push_back(static_cast<int64_t>(a.ja.size()));
    return a;
}

TEST(large, a_million_unknowns)
{
    constexpr int64_t m = 1000;
    solver<double> s(m * m, grid(m), 2, 0);
    s.b = random_vector<double>(m * m);
    ASSERT_EQ(s.run(13), 0);
    EXPECT_EQ(s.iparm[22], 0);
    double worst = 0;
    for (int64_t i = 0; i < m * m; ++i) {
        const auto at = [&s](int64_t k, bool inside) { return inside ? s.x[k] : 0.0; };
        const double neighbours =
            at(i + 1, i % m + 1 < m) + at(i - 1, i % m > 0) + at(i + m, i + m < m * m) + at(i - m, i >= m);
        worst = std::max(worst, std::abs(4 * s.x[i] - neighbours - s.b[i]));
    }
    EXPECT_LT(worst, 1e-12 * (4 * norm(s.x) + norm(s.b)));
}

} // namespace
