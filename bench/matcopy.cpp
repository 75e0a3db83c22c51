// How fast matrices are turned, in GB/s read and written, on one thread and on all, beside copies by memcpy
// on as many threads: of as many bytes, which caches may hold, and of memory; and nanoseconds of small ones.
// usage: bench_matcopy [OPENBLAS_SHARED_LIBRARY]
#include "xkl.h"

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using their_copy = void(int, int, int64_t, int64_t, double, const double *, int64_t, double *, int64_t);

double seconds()
{
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

/// Threads that wait without sleeping, so that memcpy is not charged for waking them.
class team {
  public:
    explicit team(int size)
    {
        for (int i = 1; i < size; ++i)
            threads_.emplace_back([this, i] { work(i); });
    }
    ~team()
    {
        run({});
        for (std::thread &each : threads_)
            each.join();
    }
    int size() const { return static_cast<int>(threads_.size()) + 1; }
    void run(std::function<void(int)> job)
    {
        job_ = std::move(job);
        left_ = size() - 1;
        ++round_;
        if (job_)
            job_(0);
        while (left_ > 0)
            __builtin_ia32_pause();
    }

  private:
    void work(int index)
    {
        for (int seen = 0;; ++seen) {
            while (round_ == seen)
                __builtin_ia32_pause();
            const bool last = !job_;
            if (!last)
                job_(index);
            --left_;
            if (last)
                return;
        }
    }
    std::function<void(int)> job_;
    std::atomic<int> round_{0}, left_{0};
    std::vector<std::thread> threads_;
};

struct matrix_pair {
    explicit matrix_pair(std::size_t elements) : a(make(elements)), b(make(elements)) {}
    std::unique_ptr<double, decltype(&std::free)> a, b;

    static std::unique_ptr<double, decltype(&std::free)> make(std::size_t elements)
    {
        auto *memory = static_cast<double *>(std::aligned_alloc(4096, elements * sizeof(double)));
        std::fill_n(memory, elements, 1.5);
        return {memory, &std::free};
    }
};

double time_of(const std::function<void()> &call)
{
    const double start = seconds();
    call();
    return seconds() - start;
}

/// The team ends with the measurement: threads that go on waiting would hold the processors that ours need.
double best_copy(const matrix_pair &m, std::size_t bytes, int threads, int rounds)
{
    team workers(threads);
    const std::size_t part = bytes / static_cast<std::size_t>(threads);
    double best = 1e9;
    for (int round = 0; round < rounds; ++round)
        best = std::min(best, time_of([&] {
                            workers.run([&](int i) {
                                const std::size_t first = part * static_cast<std::size_t>(i);
                                std::memcpy(reinterpret_cast<char *>(m.b.get()) + first,
                                            reinterpret_cast<const char *>(m.a.get()) + first, part);
                            });
                        }));
    return best;
}

double best_of(int rounds, const std::function<void()> &call)
{
    double best = 1e9;
    for (int round = 0; round < rounds; ++round)
        best = std::min(best, time_of(call));
    return best;
}

/// The machine's copies of memory, in GB/s
double memory_copies(int threads)
{
    constexpr std::size_t elements = std::size_t{1} << 24;
    const matrix_pair m(elements);
    double best = 1e9;
    for (int count = 1; count <= threads; ++count)
        best = std::min(best, best_copy(m, elements * 8, count, 10));
    return 2e-9 * static_cast<double>(elements * 8) / best;
}

/// Theirs runs on one thread, whatever their library's count is.
void compare_turning(int64_t n, int threads, double of_memory, their_copy *theirs)
{
    constexpr int phases = 5;
    const std::size_t elements = static_cast<std::size_t>(n) * static_cast<std::size_t>(n),
                      bytes = elements * 8;
    const int rounds = static_cast<int>(std::clamp<std::size_t>((std::size_t{1} << 28) / bytes, 5, 100));
    const matrix_pair m(elements);
    const auto size = static_cast<std::size_t>(n);
    double copy = 1e9, ours = 1e9, other = 1e9;
    for (int phase = 0; phase < phases; ++phase) { // in turn: other programs disturb both alike
        for (int count = 1; count <= threads; ++count)
            copy = std::min(copy, best_copy(m, bytes, count, rounds));
        ours = std::min(ours, best_of(rounds, [&] {
                            XKL_Domatcopy('R', 'T', size, size, 1.0, m.a.get(), size, m.b.get(), size);
                        }));
        if (theirs)
            other = std::min(other, best_of(rounds / 5 + 1, [&] {
                                 theirs(101, 112, n, n, 1.0, m.a.get(), n, m.b.get(), n);
                             }));
    }
    const double gigabytes = 2e-9 * static_cast<double>(bytes);
    std::printf("turning %5ld x %-5ld on %d %8.1f GB/s   memcpy %8.1f GB/s   %3.0f %%   of memory %3.0f %%",
                static_cast<long>(n), static_cast<long>(n), threads, gigabytes / ours, gigabytes / copy,
                100 * copy / ours, 100 * gigabytes / ours / of_memory);
    if (theirs)
        std::printf("   OpenBLAS %6.1f GB/s", gigabytes / other);
    std::printf("\n");
}

void time_small(int64_t n)
{
    static double a[64], b[64];
    constexpr int calls = 100000;
    const auto size = static_cast<std::size_t>(n);
    const double best = best_of(20, [&] {
        for (int i = 0; i < calls; ++i)
            XKL_Domatcopy('R', 'T', size, size, 1.0, a, size, b, size);
    });
    std::printf("turning %5ld x %-5ld %8.1f ns\n", static_cast<long>(n), static_cast<long>(n),
                best / calls * 1e9);
}

} // namespace

int main(int argc, char **argv)
{
    void *openblas = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    auto *theirs = openblas ? reinterpret_cast<their_copy *>(dlsym(openblas, "cblas_domatcopy")) : nullptr;
    const int threads = XKL_Get_Max_Threads();
    for (const int64_t n : {2, 4, 8})
        time_small(n);
    for (int count = 1;; count = threads) {
        XKL_Set_Num_Threads(count);
        const double of_memory = memory_copies(count);
        std::printf("copies of memory on %d %18.1f GB/s\n", count, of_memory);
        for (const int64_t n : {512, 528, 1000, 1024, 2001, 2048, 4096})
            compare_turning(n, count, of_memory, theirs);
        if (count == threads)
            return 0;
    }
}
