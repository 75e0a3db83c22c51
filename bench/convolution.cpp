// Convolution on one thread beside the plain loop, which sums each element of the result by itself: the
// library by its direct sums, and as it chooses. New tasks are made for each measurement, not for each call.
#include "xkl_service.h"
#include "xkl_vsl.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

__attribute__((noinline)) void plain_loop(const std::vector<double> &x, const std::vector<double> &y,
                                          std::vector<double> &z)
{
    for (std::size_t n = 0; n < z.size(); ++n) {
        double sum = 0;
        const std::size_t first = n < y.size() ? 0 : n - y.size() + 1;
        for (std::size_t j = first; j < std::min(x.size(), n + 1); ++j)
            sum += x[j] * y[n - j];
        z[n] = sum;
    }
}

double milliseconds_of(const std::function<void()> &call)
{
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const auto start = std::chrono::steady_clock::now();
        call();
        const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
        best = std::min(best, spent.count());
    }
    return best;
}

double library_milliseconds(int64_t mode, const std::vector<double> &x, const std::vector<double> &y,
                            std::vector<double> &z)
{
    VSLConvTaskPtr task = nullptr;
    if (vsldConvNewTask1D(&task, mode, std::ssize(x), std::ssize(y), std::ssize(z)) != VSL_CC_STATUS_OK)
        std::exit(1);
    const double spent = milliseconds_of([&] {
        if (vsldConvExec1D(task, x.data(), 1, y.data(), 1, z.data(), 1) != VSL_CC_STATUS_OK)
            std::exit(1);
    });
    vslConvDeleteTask(&task);
    return spent;
}

void compare(std::size_t x_length, std::size_t y_length)
{
    const std::vector<double> x(x_length, 0.5), y(y_length, 0.25);
    std::vector<double> z(x_length + y_length - 1);
    const double plain = milliseconds_of([&] { plain_loop(x, y, z); });
    const double direct = library_milliseconds(VSL_CONV_MODE_DIRECT, x, y, z);
    const double chosen = library_milliseconds(VSL_CONV_MODE_AUTO, x, y, z);
    std::printf(
        "%7zu by %5zu  plain %9.3f ms   direct %9.3f ms (%6.1f times)   chosen %9.3f ms (%6.1f times)\n",
        y_length, x_length, plain, direct, plain / direct, chosen, plain / chosen);
}

} // namespace

int main()
{
    XKL_Set_Num_Threads(1);
    compare(16, 1 << 16);
    compare(128, 1 << 16);
    compare(1 << 10, 1 << 16);
    compare(1 << 12, 1 << 12);
    return 0;
}
