// What all drivers of FEAST do: they run the iteration, and serve what it asks for by a pencil A, B of some
// storage.
#pragma once

#include "feast_rci.h"

namespace xkl::core::feast {

/// The arguments that all drivers have, behind their matrices
template <class T>
struct search {
    using real = real_of<T>;

    int64_t *fpm;
    real *epsout;
    int64_t *loop;
    const real *emin, *emax;
    int64_t *m0;
    real *e;
    T *x;
    int64_t *m;
    real *res;
    int64_t *info;
};

/// A pencil offers
///     int64_t factor(complex z)                           z*B - A
///     int64_t solve(complex *b, int64_t columns, bool adjoint)
///     void multiply_a(const T *x, T *y, int64_t columns), multiply_b
/// The first two tell what info is to say, success or the reason to stop.
template <class T, class Pencil>
void drive(int64_t n, Pencil &pencil, const search<T> &in)
{
    using complex = std::complex<real_of<T>>;
    if (const int64_t why = refusal(n, *in.emin, *in.emax, *in.m0, in.fpm)) {
        *in.info = why;
        return;
    }
    const int64_t most = *in.m0;
    const auto work = iss::space_for<T>(n * most + 2 * most * most);
    const auto workc = iss::space_for<complex>(n * most);
    if (!work || !workc) {
        *in.info = no_memory;
        return;
    }
    T *const aq = work.get() + n * most, *const bq = aq + most * most;
    int64_t ijob = start;
    complex ze;
    iteration<T> next{&ijob,   n,        &ze,      work.get(), workc.get(), aq,   bq,   in.fpm, in.epsout,
                      in.loop, *in.emin, *in.emax, in.m0,      in.e,        in.x, in.m, in.res, in.info};
    for (;;) {
        next.step();
        const int64_t columns_now = in.fpm[columns];
        const int64_t at = (in.fpm[first_column] - 1) * n;
        int64_t why = success;
        switch (ijob) {
        case factor:
            why = pencil.factor(ze);
            break;
        case solve:
        case solve_adjoint:
            why = pencil.solve(workc.get(), columns_now, ijob == solve_adjoint);
            break;
        case multiply_a:
            pencil.multiply_a(in.x + at, work.get() + at, in.fpm[column_count]);
            break;
        case multiply_b:
            pencil.multiply_b(in.x + at, work.get() + at, in.fpm[column_count]);
            break;
        case factor_adjoint: // the factors serve both
            break;
        default:
            return;
        }
        if (why != success) {
            *in.info = why;
            return;
        }
    }
}

/// The matrix B of a standard problem
template <class T>
void multiply_by_one(const T *x, T *y, int64_t count)
{
    std::copy(x, x + count, y);
}

/// The place of a driver's first bad argument, or 0: the triangle, the order, and what must hold beside
struct requirement_of {
    int64_t place;
    bool met;
};
inline bool refused(int64_t *info, std::initializer_list<requirement_of> requirements)
{
    for (const requirement_of &each : requirements)
        if (!each.met) {
            *info = -(100 + each.place);
            return true;
        }
    return false;
}
inline bool good_triangle(const char *uplo)
{
    return is(*uplo, 'L') || is(*uplo, 'U') || is(*uplo, 'F');
}

} // namespace xkl::core::feast
