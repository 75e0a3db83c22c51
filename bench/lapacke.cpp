// What LAPACKE adds: nanoseconds around the smallest factorization, with NaN checks on, and the share of a
// large row-major solution that goes into copies.
#include "xkl_lapacke.h"

#include "xkl_lapack.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

double seconds_of(const std::function<void()> &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void print_cost(const char *what, double nanoseconds, double budget)
{
    std::printf("%-34s %6.1f ns (budget %.0f)%s\n", what, nanoseconds, budget,
                nanoseconds <= budget ? "" : "  OVER BUDGET");
}

/// Factors stay as they are when they are factored again: an upper triangle with a large diagonal.
void small_factorizations()
{
    constexpr int calls = 200000, rounds = 15;
    const int64_t n = 2;
    double a[] = {4, 0, 0, 4};
    int64_t ipiv[2], info = 0;
    const auto times = [](const auto &call) {
        return [call] {
            for (int i = 0; i < calls; ++i)
                call();
        };
    };
    const auto fortran = times([&] { DGETRF(&n, &n, a, &n, ipiv, &info); });
    const auto columns = times([&] { LAPACKE_dgetrf(LAPACK_COL_MAJOR, n, n, a, n, ipiv); });
    const auto rows = times([&] { LAPACKE_dgetrf(LAPACK_ROW_MAJOR, n, n, a, n, ipiv); });
    std::vector<double> alone, by_columns, by_rows;
    for (int round = 0; round < rounds; ++round) {
        alone.push_back(seconds_of(fortran));
        by_columns.push_back(seconds_of(columns));
        by_rows.push_back(seconds_of(rows));
    }
    const double base = median(alone) / calls * 1e9;
    std::printf("%-34s %6.1f ns\n", "DGETRF 2x2", base);
    print_cost("LAPACKE_dgetrf over it, by columns", median(by_columns) / calls * 1e9 - base, 10);
    print_cost("LAPACKE_dgetrf over it, by rows", median(by_rows) / calls * 1e9 - base, 35);
}

void large_solution()
{
    constexpr int rounds = 9;
    const int64_t n = 1000;
    std::vector<double> matrix(static_cast<std::size_t>(n * n)), a, b;
    for (std::size_t i = 0; i < matrix.size(); ++i)
        matrix[i] = static_cast<double>(i * 7919 % 10007) / 10007 +
                    (i % static_cast<std::size_t>(n + 1) == 0 ? 50 : 0);
    std::vector<int64_t> ipiv(static_cast<std::size_t>(n));
    std::vector<double> times[2];
    for (int round = 0; round < rounds; ++round)
        for (const int layout : {LAPACK_ROW_MAJOR, LAPACK_COL_MAJOR}) {
            a = matrix;
            b.assign(static_cast<std::size_t>(n), 1);
            times[layout == LAPACK_ROW_MAJOR].push_back(seconds_of([&] {
                const int64_t ldb = layout == LAPACK_ROW_MAJOR ? 1 : n;
                LAPACKE_dgesv(layout, n, 1, a.data(), n, ipiv.data(), b.data(), ldb);
            }));
        }
    const double columns = median(times[0]), rows = median(times[1]);
    std::printf("%-34s %6.1f ms by columns, %.1f ms by rows: %+.1f %% (budget 3)%s\n",
                "LAPACKE_dgesv, n = 1000", columns * 1e3, rows * 1e3, (rows / columns - 1) * 100,
                rows <= 1.03 * columns ? "" : "  OVER BUDGET");
}

} // namespace

int main()
{
    small_factorizations();
    large_solution();
}
