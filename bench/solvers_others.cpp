// The same by the libraries themselves: Eigen with its order of minimum degree, MUMPS with its orders of
// minimum fill and of nested dissection, over the core's kernels. They are in a program of their own, which
// holds the core's objects.
// usage: bench_solvers_others [POINTS_A_SIDE]
#include "poisson.h"

#include <Eigen/SparseCholesky>
#include <dmumps_c.h>

#include <cstdlib>

namespace {

void run_eigen(const poisson &a)
{
    using matrix = Eigen::SparseMatrix<double, Eigen::ColMajor, int64_t>;
    // The upper triangle by rows is the lower one by columns.
    const matrix lower = Eigen::Map<const matrix>(a.n, a.n, static_cast<int64_t>(a.column.size()),
                                                  a.start.data(), a.column.data(), a.value.data());
    Eigen::SimplicialLLT<matrix, Eigen::Lower> solver;
    const Eigen::VectorXd b = Eigen::VectorXd::Ones(a.n);
    Eigen::VectorXd x;
    const double analysis = seconds_of([&] { solver.analyzePattern(lower); });
    const double factorization = seconds_of([&] { solver.factorize(lower); }, 1);
    const double solution = seconds_of([&] { x = solver.solve(b); });
    tell("Eigen, SimplicialLLT", analysis, factorization, solution,
         a.residual({x.data(), x.data() + a.n}, std::vector<double>(a.n, 1.0)));
}

void run_mumps(const poisson &a, const char *who, int ordering)
{
    std::vector<MUMPS_INT> row, column;
    for (int64_t i = 0; i < a.n; ++i)
        for (int64_t k = a.start[i]; k < a.start[i + 1]; ++k) {
            row.push_back(static_cast<MUMPS_INT>(i + 1));
            column.push_back(static_cast<MUMPS_INT>(a.column[k] + 1));
        }
    std::vector<double> values = a.value, x;
    const std::vector<double> b(a.n, 1.0);
    DMUMPS_STRUC_C m{};
    m.par = m.sym = 1;
    m.comm_fortran = -987654;
    const auto step = [&m](int job) {
        m.job = job;
        dmumps_c(&m);
        if (m.infog[0] < 0) {
            std::printf("MUMPS: error %d\n", m.infog[0]);
            std::exit(1);
        }
    };
    step(-1);
    m.icntl[0] = m.icntl[1] = m.icntl[2] = -1;
    m.icntl[3] = 0;
    m.icntl[6] = ordering;
    m.n = static_cast<MUMPS_INT>(a.n);
    m.nnz = static_cast<MUMPS_INT8>(row.size());
    m.irn = row.data();
    m.jcn = column.data();
    m.a = values.data();
    const double analysis = seconds_of([&] { step(1); });
    const double factorization = seconds_of([&] { step(2); });
    const double solution = seconds_of([&] {
        x = b;
        m.rhs = x.data();
        step(3);
    });
    tell(who, analysis, factorization, solution, a.residual(x, b));
    step(-2);
}

} // namespace

int main(int argc, char **argv)
{
    const poisson a(argc > 1 ? std::atoll(argv[1]) : 40);
    run_mumps(a, "MUMPS, order of minimum fill", 2);
    run_mumps(a, "MUMPS, order of its own nested dissection", 4);
    run_eigen(a);
}
