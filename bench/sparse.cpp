// Products of a sparse matrix with a vector: seconds, GB/s of what must be read and written at least,
// beside sums over a vector of as many bytes, which is what the memory can do, and beside Eigen's product.
// The matrix is the seven-point stencil on a cube: 10^6 rows, about 7 elements each. usage: bench_sparse
#include "xkl.h"
#include "xkl_spblas.h"

#include <Eigen/SparseCore>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <thread>
#include <vector>

namespace {

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

struct stencil {
    int64_t n;
    std::vector<int64_t> starts{0}, columns;
    std::vector<double> values;

    explicit stencil(int64_t side) : n(side * side * side)
    {
        for (int64_t i = 0; i < n; ++i) {
            const int64_t x = i % side, y = i / side % side, z = i / side / side;
            put(z > 0, i - side * side);
            put(y > 0, i - side);
            put(x > 0, i - 1);
            put(true, i, 6);
            put(x + 1 < side, i + 1);
            put(y + 1 < side, i + side);
            put(z + 1 < side, i + side * side);
            starts.push_back(static_cast<int64_t>(columns.size()));
        }
    }
    void put(bool inside, int64_t column, double value = -1)
    {
        if (!inside)
            return;
        columns.push_back(column);
        values.push_back(value);
    }
    /// What any product must read and write: values, 32-bit columns and row starts, and two vectors
    double bytes() const { return 12. * static_cast<double>(values.size()) + 20. * static_cast<double>(n); }
};

// Written by sum_all's threads, read by nobody: the sums must not be dropped.
volatile double kept;

/// Reads the numbers, each thread its part.
void sum_all(const std::vector<double> &numbers, int threads)
{
    std::vector<std::thread> team;
    const auto part = [&](int which) {
        const size_t each = numbers.size() / static_cast<size_t>(threads),
                     first = each * static_cast<size_t>(which);
        double sums[16] = {};
        for (size_t i = first; i + 16 <= first + each; i += 16)
            for (size_t k = 0; k < 16; ++k)
                sums[k] += numbers[i + k];
        double sum = 0;
        for (const double each_sum : sums)
            sum += each_sum;
        kept = sum;
    };
    for (int i = 1; i < threads; ++i)
        team.emplace_back(part, i);
    part(0);
    for (std::thread &each : team)
        each.join();
}

using work = std::function<void()>;

/// The least time of each, all in turn: a noisy machine disturbs all alike.
std::vector<double> best_of(const std::vector<work> &all, int rounds)
{
    std::vector<double> best(all.size(), 1e9);
    for (int round = 0; round < rounds; ++round)
        for (size_t i = 0; i < all.size(); ++i) {
            const double start = seconds();
            all[i]();
            best[i] = std::min(best[i], seconds() - start);
        }
    return best;
}

void compare(const stencil &a, int threads)
{
    using matrix = Eigen::SparseMatrix<double, Eigen::RowMajor, int32_t>;
    const std::vector<int32_t> starts(a.starts.begin(), a.starts.end()),
        columns(a.columns.begin(), a.columns.end());
    const Eigen::Map<const matrix> theirs(a.n, a.n, static_cast<int64_t>(columns.size()), starts.data(),
                                          columns.data(), a.values.data());
    auto mine = a;
    sparse_matrix_t plain = nullptr, ready = nullptr;
    for (sparse_matrix_t *each : {&plain, &ready})
        xkl_sparse_d_create_csr(each, SPARSE_INDEX_BASE_ZERO, a.n, a.n, mine.starts.data(),
                                mine.starts.data() + 1, mine.columns.data(), mine.values.data());
    const matrix_descr general{SPARSE_MATRIX_TYPE_GENERAL, SPARSE_FILL_MODE_FULL, SPARSE_DIAG_NON_UNIT};
    const auto op = SPARSE_OPERATION_NON_TRANSPOSE;
    xkl_sparse_set_mv_hint(ready, op, general, 1000);
    XKL_Set_Num_Threads(threads);
    const double start = seconds();
    xkl_sparse_optimize(ready);
    const double optimizing = seconds() - start;

    const Eigen::VectorXd x = Eigen::VectorXd::Random(a.n);
    Eigen::VectorXd y(a.n), z(a.n), w(a.n);
    const std::vector<double> numbers(static_cast<size_t>(a.bytes() / 8), 1);
    const auto best = best_of({[&] { sum_all(numbers, threads); },
                               [&] { xkl_sparse_d_mv(op, 1, plain, general, x.data(), 0, y.data()); },
                               [&] { xkl_sparse_d_mv(op, 1, ready, general, x.data(), 0, z.data()); },
                               [&] { w.noalias() = theirs * x; }},
                              40);
    const char *const names[] = {"reading as many bytes", "mv, arrays as created", "mv, optimized",
                                 "Eigen, 32-bit indices, 1 thread"};
    for (size_t i = 0; i < best.size(); ++i)
        std::printf("%d %-34s %8.2f ms %8.1f GB/s %5.0f %%\n", threads, names[i], 1e3 * best[i],
                    1e-9 * a.bytes() / best[i], 100 * best[0] / best[i]);
    std::printf("%d %-34s %8.2f ms, %.1f products\n", threads, "optimize", 1e3 * optimizing,
                optimizing / best[2]);
    if ((y - w).lpNorm<Eigen::Infinity>() > 1e-13 || (z - w).lpNorm<Eigen::Infinity>() > 1e-13)
        std::printf("THE PRODUCTS DIFFER\n");
    xkl_sparse_destroy(plain);
    xkl_sparse_destroy(ready);
}

} // namespace

int main()
{
    const stencil a(100);
    std::printf("threads, 10^6 rows\n");
    const int most = XKL_Get_Max_Threads();
    for (int threads = 1; threads <= most; ++threads)
        compare(a, threads);
    return 0;
}
