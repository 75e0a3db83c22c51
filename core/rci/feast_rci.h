// FEAST by reverse communication: subspace iteration with the projector that a contour integral of the
// resolvent gives. The caller solves, multiplies and factors; each call of a step goes on where the last
// one stopped.
//
// Between steps work holds B*q (at first anything), from which each pass over the contour makes a new q.
// While q is projected workc holds A*q.
#pragma once

#include "feast_subspace.h"
#include "lapack/call.h"

#include <cstdint>

namespace xkl::core {
namespace feast {

/// Where a computation goes on, after what it asked for
enum step_stage : int64_t {
    begins,
    has_start,
    has_factors,
    has_solution,
    has_adjoint_factors,
    has_adjoint_solution,
    has_a_product,
    has_b_product
};

/// Directions to begin with: far from each other whatever the matrix, and the same in every run
template <class T>
void fill_start(T *work, int64_t count)
{
    uint64_t state = 88172645463325252u;
    const auto next = [&state] {
        state ^= state << 13, state ^= state >> 7, state ^= state << 17;
        return static_cast<real_of<T>>(static_cast<double>(state >> 11) * 0x1p-53 - 0.5);
    };
    for (int64_t i = 0; i < count; ++i) {
        if constexpr (element<T>::is_complex) {
            const auto re = next();
            work[i] = {re, next()};
        } else
            work[i] = next();
    }
}

template <class T>
struct iteration {
    using real = real_of<T>;
    using complex = std::complex<real>;

    int64_t *ijob, n;
    complex *ze;
    T *work;
    complex *workc;
    T *aq, *bq;
    int64_t *fpm;
    real *epsout;
    int64_t *loop;
    real emin, emax;
    int64_t *m0;
    real *lambda;
    T *q;
    int64_t *m;
    real *res;
    int64_t *info;

    void step();

  protected:
    T *a_product() const { return reinterpret_cast<T *>(workc); }
    int64_t size() const { return fpm[columns]; }
    real largest() const { return std::max(std::abs(emin), std::abs(emax)); }
    contour path() const
    {
        const double low = emin, high = emax;
        return {(low + high) / 2, (high - low) / 2, static_cast<double>(fpm[flatness_percent]) / 100,
                fpm[contour_points], fpm[trapezoidal_rule] != 0};
    }

    void ask(job what, step_stage next)
    {
        fpm[stage] = next;
        *ijob = what;
    }
    void ask_product(job what, step_stage next)
    {
        fpm[first_column] = 1;
        fpm[column_count] = size();
        ask(what, next);
    }
    void finish(int64_t why)
    {
        *info = why;
        *ijob = done;
    }
    bool begin();
    void begin_pass();
    void ask_factors();
    void load_right_sides();
    void add_solution(complex weight);
    void next_point();
    bool project();
    bool ended();
    void find_residuals();
    bool converged(real change) const;
};

template <class T>
void iteration<T>::step()
{
    if (*ijob == start) {
        if (begin())
            fpm[start_given] != 0 ? ask_product(multiply_b, has_start) : begin_pass();
        return;
    }
    switch (fpm[stage]) {
    case has_start: // work is B*q
        return begin_pass();
    case has_factors:
        load_right_sides();
        return ask(solve, has_solution);
    case has_solution:
        add_solution(complex(path().weight(fpm[point])));
        if constexpr (element<T>::is_complex)
            return ask(factor_adjoint, has_adjoint_factors);
        return next_point();
    case has_adjoint_factors:
        load_right_sides();
        return ask(solve_adjoint, has_adjoint_solution);
    case has_adjoint_solution:
        add_solution(std::conj(complex(path().weight(fpm[point]))));
        return next_point();
    case has_a_product:
        std::copy(work, work + n * size(), a_product());
        return ask_product(multiply_b, has_b_product);
    case has_b_product:
        if (project())
            begin_pass();
        return;
    default:
        return finish(reduced_failed);
    }
}

/// False if there is nothing to compute
template <class T>
bool iteration<T>::begin()
{
    if (const int64_t why = refusal(n, emin, emax, *m0, fpm)) {
        finish(why);
        return false;
    }
    *info = success;
    *loop = 0;
    *epsout = 1;
    *m = 0;
    fpm[columns] = *m0;
    fpm[dropped] = 0;
    if (fpm[start_given] == 0)
        fill_start(work, n * *m0);
    return true;
}

template <class T>
void iteration<T>::begin_pass()
{
    std::fill(q, q + n * size(), T(0));
    fpm[point] = 0;
    ask_factors();
}

template <class T>
void iteration<T>::ask_factors()
{
    *ze = complex(path().place(fpm[point]));
    ask(factor, has_factors);
}

template <class T>
void iteration<T>::load_right_sides()
{
    std::copy(work, work + n * size(), workc);
}

/// The mirror image of a point takes part by the adjoint; for real matrices that is the conjugate.
template <class T>
void iteration<T>::add_solution(complex weight)
{
    for (int64_t i = 0; i < n * size(); ++i) {
        if constexpr (element<T>::is_complex)
            q[i] += product(weight, workc[i]);
        else
            q[i] += 2 * product(weight, workc[i]).real();
    }
}

template <class T>
void iteration<T>::next_point()
{
    if (++fpm[point] < fpm[contour_points])
        return ask_factors();
    if (fpm[subspace_only] != 0) {
        *m = size();
        return finish(subspace_returned);
    }
    ask_product(multiply_a, has_a_product);
}

/// True if another pass is needed
template <class T>
bool iteration<T>::project()
{
    subspace<T> space{n, size(), q, a_product(), work, aq, bq, lambda};
    space.reduce(a_product(), aq);
    space.reduce(work, bq);
    real before = 0, trace = 0;
    for (int64_t k = 0; k < *m; ++k)
        before += lambda[k];
    const int64_t inside_before = *m;
    if (const int64_t why = space.project(emin, emax, *m)) {
        finish(why);
        return false;
    }
    fpm[dropped] |= space.size < size();
    fpm[columns] = *m0 = space.size;
    for (int64_t k = 0; k < *m; ++k)
        trace += lambda[k];
    find_residuals();
    const bool known = *loop > 0 && inside_before == *m;
    *epsout = known ? std::abs(trace - before) / largest() : real(1);
    if (fpm[print] != 0)
        xkl_serv_printf_s("FEAST: loop %lld, %lld eigenvalues, trace %.15e, change %.1e\n",
                          static_cast<long long>(*loop), static_cast<long long>(*m),
                          static_cast<double>(trace), static_cast<double>(*epsout));
    return !ended();
}

/// Whether the iteration is over, and why
template <class T>
bool iteration<T>::ended()
{
    const bool crowded = *m == size() && n > size() && fpm[dropped] == 0;
    const bool good = *m != 0 && converged(*epsout);
    if (*m == 0 && (*loop > 0 || size() == 0))
        finish(none_found);
    else if (good || *loop >= fpm[most_loops])
        finish(crowded ? subspace_too_small : good ? success : not_converged);
    else {
        ++*loop;
        return false;
    }
    return true;
}

/// |A x - lambda B x| / (max(|emin|, |emax|) |B x|), sums of absolute values
template <class T>
void iteration<T>::find_residuals()
{
    for (int64_t k = 0; k < size(); ++k) {
        real off = 0, length = 0;
        for (int64_t i = k * n; i < (k + 1) * n; ++i) {
            off += std::abs(a_product()[i] - lambda[k] * work[i]);
            length += std::abs(work[i]);
        }
        res[k] = off / (largest() * length);
    }
}

template <class T>
bool iteration<T>::converged(real change) const
{
    const int64_t digits = fpm[sizeof(real) == 4 ? single_digits : double_digits];
    const real tolerance = std::pow(real(10), static_cast<real>(-digits));
    return fpm[residual_decides] == 0 ? change <= tolerance
                                      : std::all_of(res, res + *m, [=](real r) { return r <= tolerance; });
}

} // namespace feast

template <class T>
void feast_srci(int64_t *ijob, const int64_t *n, std::complex<real_of<T>> *ze, T *work,
                std::complex<real_of<T>> *workc, T *aq, T *sq, int64_t *fpm, real_of<T> *epsout,
                int64_t *loop, const real_of<T> *emin, const real_of<T> *emax, int64_t *m0,
                real_of<T> *lambda, T *q, int64_t *m, real_of<T> *res, int64_t *info)
{
    feast::iteration<T>{ijob, *n,    ze,    work, workc,  aq, sq, fpm, epsout,
                        loop, *emin, *emax, m0,   lambda, q,  m,  res, info}
        .step();
}

template <class T>
void feast_hrci(int64_t *ijob, const int64_t *n, T *ze, T *work, T *workc, T *aq, T *sq, int64_t *fpm,
                real_of<T> *epsout, int64_t *loop, const real_of<T> *emin, const real_of<T> *emax,
                int64_t *m0, real_of<T> *lambda, T *q, int64_t *m, real_of<T> *res, int64_t *info)
{
    feast_srci<T>(ijob, n, ze, work, workc, aq, sq, fpm, epsout, loop, emin, emax, m0, lambda, q, m, res,
                  info);
}

} // namespace xkl::core
