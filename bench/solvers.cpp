// The phases of pardiso on the Poisson problem with 40 by 40 by 40 points.
// usage: bench_solvers [POINTS_A_SIDE]
#include "poisson.h"

#include "xkl_solvers.h"

#include <cstdlib>

namespace {

void run_pardiso(const poisson &a, const char *what, int64_t ordering)
{
    const int64_t one = 1, silent = 0, positive_definite = 2;
    void *pt[64];
    int64_t iparm[64], error = 0;
    pardisoinit(pt, &positive_definite, iparm);
    iparm[1] = ordering;
    iparm[34] = 1; // indices from 0
    std::vector<double> b(a.n, 1.0), x(a.n);
    const auto run = [&](int64_t phase) {
        pardiso(pt, &one, &one, &positive_definite, &phase, &a.n, a.value.data(), a.start.data(),
                a.column.data(), nullptr, &one, iparm, &silent, b.data(), x.data(), &error);
        if (error != 0) {
            std::printf("pardiso: error %lld in phase %lld\n", static_cast<long long>(error),
                        static_cast<long long>(phase));
            std::exit(1);
        }
    };
    const double analysis = seconds_of([&] { run(11); });
    const double factorization = seconds_of([&] { run(22); });
    const double solution = seconds_of([&] { run(33); });
    tell(what, analysis, factorization, solution, a.residual(x, b));
    run(-1);
}

} // namespace

int main(int argc, char **argv)
{
    const poisson a(argc > 1 ? std::atoll(argv[1]) : 40);
    run_pardiso(a, "pardiso, iparm(2) = 0: minimum fill", 0);
    run_pardiso(a, "pardiso, iparm(2) = 2: nested dissection", 2);
}
