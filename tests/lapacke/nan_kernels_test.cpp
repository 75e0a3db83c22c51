// The kernels for each instruction set alone: a run picks one of them, and the others wait for another
// processor.
#include "guarded_array.h"
#include "lapacke/nancheck_scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

using namespace xkl::lapacke;

std::vector<const nan_kernels *> usable_kernels()
{
    std::vector<const nan_kernels *> usable = {&nan_kernels_baseline};
    if (__builtin_cpu_supports("avx2"))
        usable.push_back(&nan_kernels_avx2);
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("bmi2"))
        usable.push_back(&nan_kernels_avx512);
    return usable;
}

template <class R>
const nan_kernel<R> &kernel_of(const nan_kernels &set)
{
    if constexpr (std::is_same_v<R, float>)
        return set.floats;
    else
        return set.doubles;
}

template <class R>
class kernels : public testing::Test {
};
using reals = testing::Types<float, double>;
TYPED_TEST_SUITE(kernels, reals);

TYPED_TEST(kernels, runs_of_every_length)
{
    using R = TypeParam;
    for (const nan_kernels *set : usable_kernels())
        for (int64_t count = 1; count < 300; ++count) {
            guarded_array<R> run(count);
            ASSERT_FALSE(kernel_of<R>(*set).run(run.data(), count)) << count;
            for (int64_t k = 0; k < count; ++k) {
                run[k] = std::numeric_limits<R>::quiet_NaN();
                ASSERT_TRUE(kernel_of<R>(*set).run(run.data(), count)) << k << " of " << count;
                run[k] = std::numeric_limits<R>::infinity();
            }
        }
}

/// Long enough to be cut in quarters
TYPED_TEST(kernels, long_runs)
{
    using R = TypeParam;
    std::mt19937_64 random(7);
    for (const nan_kernels *set : usable_kernels())
        for (const int64_t count : {1048576, 1048583, 1100001}) {
            guarded_array<R> run(count);
            ASSERT_FALSE(kernel_of<R>(*set).run(run.data(), count));
            std::vector<int64_t> places = {0, count - 1, count - 3};
            for (const int64_t border : {count / 4, 2 * (count / 4), 3 * (count / 4), 4 * (count / 4)})
                for (const int64_t near : {-2, -1, 0, 1})
                    places.push_back(std::min(border + near, count - 1));
            for (int i = 0; i < 20; ++i)
                places.push_back(static_cast<int64_t>(random() % static_cast<uint64_t>(count)));
            for (const int64_t place : places) {
                run[place] = std::numeric_limits<R>::quiet_NaN();
                ASSERT_TRUE(kernel_of<R>(*set).run(run.data(), count)) << place << " of " << count;
                run[place] = 1;
            }
        }
}

/// Lines whose ends move by up to two reals, up or down, and packed ones; some are walked four at a time.
/// What lies between the lines is NaN.
TYPED_TEST(kernels, lines_of_every_slope)
{
    using R = TypeParam;
    constexpr int64_t n = 530, step = 541, far = 1 << 20;
    const line_parts shapes[] = {
        {n, -far, far, 1, 0, n},  {n, 0, far, 1, 0, n},    {n, -far, 1, 1, 0, n},
        {265, 0, far, 2, 0, n},   {265, -far, 2, 2, 0, n}, {n, n - 1, far, -1, 0, n},
        {265, -far, n, -2, 0, n}, {7, 3, n - 5, 0, 0, n},  {6, 0, n - 12, 1, 2, n}};
    std::mt19937_64 random(11);
    for (const nan_kernels *set : usable_kernels())
        for (const line_parts &parts : shapes)
            for (const line_starts &starts : {line_starts{step}, line_starts{n - 1, -1}}) {
                if (starts.growth && (parts.slope != 1 || parts.first != 0))
                    continue; // only lines that shrink so leave each other alone
                std::vector<R> a(static_cast<std::size_t>(n * step), std::numeric_limits<R>::quiet_NaN());
                std::vector<int64_t> held;
                for (int64_t k = 0; k < parts.count; ++k)
                    for (int64_t p = parts.first_of(k); p < parts.last_of(k); ++p)
                        held.push_back(starts[k] + p);
                for (const int64_t place : held)
                    a[static_cast<std::size_t>(place)] = 1;
                const auto found = [&] { return kernel_of<R>(*set).lines(a.data(), starts, parts); };
                ASSERT_FALSE(found());
                std::vector<int64_t> tried;
                for (int64_t k = 0; k < parts.count; ++k) // the ends of every line, and something between
                    if (const int64_t first = parts.first_of(k), last = parts.last_of(k); first < last)
                        for (const int64_t p : {first, last - 1, (first + last) / 2})
                            tried.push_back(starts[k] + p);
                for (int i = 0; i < 500; ++i)
                    tried.push_back(held[random() % held.size()]);
                for (const int64_t place : tried) {
                    a[static_cast<std::size_t>(place)] = std::numeric_limits<R>::quiet_NaN();
                    ASSERT_TRUE(found()) << "place " << place << " slope " << parts.slope;
                    a[static_cast<std::size_t>(place)] = 1;
                }
            }
}

} // namespace
