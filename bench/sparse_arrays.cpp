// How fast sparse matrices meet vectors: GB/s of what a product must read and write, on one thread and on
// all, beside what as many threads can read of memory, and beside Eigen on one thread. The matrix is that of
// the seven-point stencil on a cube of 100^3 unknowns.
#include "xkl_service.h"
#include "xkl_spblas.h"

#include <Eigen/SparseCore>

#include <algorithm>
#include <atomic>
#include <chrono>
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

struct rows {
    std::vector<int64_t> starts = {0}, columns;
    std::vector<double> values;
    int64_t count() const { return static_cast<int64_t>(starts.size()) - 1; }
    double bytes() const
    {
        return 16. * static_cast<double>(values.size()) + 24. * static_cast<double>(count());
    }
};

rows stencil(int64_t side)
{
    rows a;
    for (int64_t i = 0; i < side * side * side; ++i) {
        const int64_t places[] = {i / side / side, i / side % side, i % side},
                      steps[] = {side * side, side, 1};
        const auto add = [&](int64_t column, double value) {
            a.columns.push_back(column);
            a.values.push_back(value);
        };
        for (int d = 0; d < 3; ++d)
            if (places[d] > 0)
                add(i - steps[d], -1);
        add(i, 6);
        for (int d = 2; d >= 0; --d)
            if (places[d] < side - 1)
                add(i + steps[d], -1);
        a.starts.push_back(static_cast<int64_t>(a.values.size()));
    }
    return a;
}

double best_of(int rounds, const std::function<void()> &call)
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round) {
        const double start = seconds();
        call();
        best = std::min(best, seconds() - start);
    }
    return best;
}

int64_t sum_of(const int64_t *first, const int64_t *end)
{
    int64_t sums[8] = {};
    for (; end - first >= 8; first += 8) {
        __builtin_prefetch(reinterpret_cast<const char *>(first) + 2560); // beyond the page, which pays
        for (int lane = 0; lane < 8; ++lane)
            sums[lane] += first[lane];
    }
    return sums[0] + sums[1] + sums[2] + sums[3] + sums[4] + sums[5] + sums[6] + sums[7];
}

/// Bytes a second that threads read of memory, each from a part of its own, several times over.
double read_speed(const std::vector<int64_t> &memory, int threads)
{
    constexpr int rounds = 8;
    std::atomic<int64_t> sink{0};
    const auto part = static_cast<int64_t>(memory.size()) / threads;
    const double time = best_of(3, [&] {
        std::vector<std::thread> team;
        for (int i = 0; i < threads; ++i)
            team.emplace_back([&, i] {
                for (int round = 0; round < rounds; ++round)
                    sink += sum_of(memory.data() + i * part, memory.data() + (i + 1) * part);
            });
        for (std::thread &each : team)
            each.join();
    });
    return rounds * 8. * static_cast<double>(part * threads) / time;
}

void measure(const char *what, double bytes, double memory_speed, const std::function<void()> &call)
{
    const double time = best_of(30, call);
    std::printf("  %-28s %8.2f ms %7.1f GB/s   %3.0f %% of memory\n", what, time * 1e3, bytes / time * 1e-9,
                100 * bytes / time / memory_speed);
}

void measure_on(int threads, const rows &a, const std::vector<int64_t> &memory)
{
    XKL_Set_Num_Threads(threads);
    const int64_t n = a.count();
    std::vector<double> x(static_cast<size_t>(n), 1), y(x);
    const double one = 1, zero = 0, speed = read_speed(memory, threads);
    std::printf("sparse products, %ld rows, %.2f elements each, %d threads; memory reads %.1f GB/s\n",
                static_cast<long>(n), static_cast<double>(a.values.size()) / static_cast<double>(n),
                threads, speed * 1e-9);
    const auto multiply = [&](const char *trans, const char *is) {
        xkl_dcsrmv(trans, &n, &n, &one, is, a.values.data(), a.columns.data(), a.starts.data(),
                   a.starts.data() + 1, x.data(), &zero, y.data());
    };
    measure("xkl_dcsrmv", a.bytes(), speed, [&] { multiply("N", "G__C__"); });
    measure("xkl_dcsrmv, transposed", a.bytes(), speed, [&] { multiply("T", "G__C__"); });
    measure("xkl_dcsrmv, symmetric", a.bytes(), speed, [&] { multiply("N", "SLNC__"); });
    measure("xkl_dcsrsv, lower", a.bytes(), speed, [&] {
        xkl_dcsrsv("N", &n, &one, "TLNC__", a.values.data(), a.columns.data(), a.starts.data(),
                   a.starts.data() + 1, x.data(), y.data());
    });
    if (threads > 1)
        return;
    using theirs = Eigen::SparseMatrix<double, Eigen::RowMajor, int64_t>;
    const Eigen::Map<const theirs> matrix(n, n, static_cast<int64_t>(a.values.size()), a.starts.data(),
                                          a.columns.data(), a.values.data());
    const Eigen::Map<const Eigen::VectorXd> from(x.data(), n);
    Eigen::Map<Eigen::VectorXd> to(y.data(), n);
    measure("Eigen", a.bytes(), speed, [&] { to.noalias() = matrix * from; });
}

} // namespace

int main()
{
    const rows a = stencil(100);
    const std::vector<int64_t> memory(size_t{1} << 25, 1);
    const int threads = XKL_Get_Max_Threads();
    measure_on(1, a, memory);
    if (threads > 1)
        measure_on(threads, a, memory);
}
