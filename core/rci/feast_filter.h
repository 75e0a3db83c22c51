// FEAST without linear systems, for standard problems: in the place of the contour integral stands a
// polynomial in A that is near 1 in the interval and near 0 in the rest of the spectrum, whose ends some
// steps of Lanczos' method find first. The caller multiplies by A, nothing else.
//
// The polynomial is the series of Chebyshev for the step function, with Jackson's factors against
// overshoot. q holds the term to be multiplied, workc the one before and the sum so far.
#pragma once

#include "control.h"
#include "feast_rci.h"

#include <bit>
#include <numbers>

namespace xkl::core {
namespace feast {

/// Where fpm keeps numbers between steps, from 0: bits of doubles
enum filter_place : int { low_end = 64, high_end, alphas = 70, betas = 98 };
inline constexpr int64_t lanczos_steps = 25;

template <class T>
struct filter_iteration : iteration<T> {
    using base = iteration<T>;
    using base::fpm;
    using base::n;
    using base::q;
    using base::work;

    int64_t wanted_degree = 0; // 0: chosen here

    void step();

  private:
    enum filter_stage : int64_t { has_lanczos_product = 100, has_term, has_projection };

    T *before() const { return base::a_product(); }
    T *sum() const { return before() + n * *base::m0; }
    double kept(int place) const { return std::bit_cast<double>(fpm[place]); }
    void keep(int place, double value) { fpm[place] = std::bit_cast<int64_t>(value); }
    double middle() const { return (kept(high_end) + kept(low_end)) / 2; }
    double half_width() const { return (kept(high_end) - kept(low_end)) / 2; }

    void ask_products(int64_t count, int64_t next)
    {
        fpm[first_column] = 1;
        fpm[column_count] = count;
        fpm[stage] = next;
        *base::ijob = multiply_a;
    }
    void lanczos_step();
    void set_ends(int64_t steps, double last);
    int64_t degree() const;
    double coefficient(int64_t k) const;
    void begin_filter(const T *from);
    void next_term();
};

template <class T>
void filter_iteration<T>::step()
{
    if (*base::ijob == start) {
        if (!base::begin())
            return;
        fpm[step_of_filter] = 0;
        if (fpm[start_given] == 0)
            std::copy(work, work + n * *base::m0, q);
        std::copy(q, q + n * *base::m0, sum()); // where the first pass begins
        const T length = std::sqrt(iss::inner_product(n, q, q));
        for (int64_t i = 0; i < n; ++i)
            q[i] /= length;
        return ask_products(1, has_lanczos_product);
    }
    switch (fpm[stage]) {
    case has_lanczos_product:
        return lanczos_step();
    case has_term:
        return next_term();
    default: // has_projection
        std::copy(work, work + n * base::size(), base::a_product());
        std::copy(q, q + n * base::size(), work);
        if (base::project())
            begin_filter(q);
    }
}

template <class T>
void filter_iteration<T>::lanczos_step()
{
    const int64_t k = fpm[step_of_filter]++;
    T *const next = work, *const last = before();
    const T alpha = iss::inner_product(n, q, next);
    const T beta_before = k == 0 ? T(0) : static_cast<T>(kept(betas + static_cast<int>(k) - 1));
    for (int64_t i = 0; i < n; ++i)
        next[i] -= alpha * q[i] + (k == 0 ? T(0) : beta_before * last[i]);
    const T beta = std::sqrt(iss::inner_product(n, next, next));
    keep(alphas + static_cast<int>(k), alpha);
    keep(betas + static_cast<int>(k), beta);
    const bool spans = !(beta > std::numeric_limits<T>::epsilon() * std::abs(alpha) * 16);
    if (spans || k + 1 == std::min(lanczos_steps, n)) {
        set_ends(k + 1, beta);
        return begin_filter(sum());
    }
    for (int64_t i = 0; i < n; ++i) {
        last[i] = q[i];
        q[i] = next[i] / beta;
    }
    ask_products(1, has_lanczos_product);
}

/// The spectrum, with what the last direction may add to it
template <class T>
void filter_iteration<T>::set_ends(int64_t steps, double last)
{
    double diagonal[lanczos_steps], beside[lanczos_steps];
    for (int k = 0; k < steps; ++k) {
        diagonal[k] = kept(alphas + k);
        beside[k] = kept(betas + k);
    }
    int64_t info = 0;
    call(entries::sterf<double>, steps, diagonal, beside, &info);
    const double margin = last + 0.01 * (diagonal[steps - 1] - diagonal[0]);
    keep(low_end, std::min(diagonal[0] - margin, static_cast<double>(base::emin)));
    keep(high_end, std::max(diagonal[steps - 1] + margin, static_cast<double>(base::emax)));
}

template <class T>
int64_t filter_iteration<T>::degree() const
{
    constexpr double least = 20, most = 2000, steepness = 10;
    if (wanted_degree > 0)
        return wanted_degree;
    const double width = static_cast<double>(base::emax - base::emin) / half_width();
    return static_cast<int64_t>(std::clamp(steepness / width, least, most));
}

template <class T>
double filter_iteration<T>::coefficient(int64_t k) const
{
    const auto angle = [&](double x) {
        return std::acos(std::clamp((x - middle()) / half_width(), -1.0, 1.0));
    };
    const double from = angle(base::emax), to = angle(base::emin), order = static_cast<double>(k);
    if (k == 0)
        return (to - from) / std::numbers::pi;
    const double terms = static_cast<double>(degree() + 1), turn = std::numbers::pi / terms;
    const double damping =
        ((terms - order) * std::cos(order * turn) + std::sin(order * turn) / std::tan(turn)) / terms;
    return damping * 2 * (std::sin(order * to) - std::sin(order * from)) / (order * std::numbers::pi);
}

template <class T>
void filter_iteration<T>::begin_filter(const T *from)
{
    const T factor = static_cast<T>(coefficient(0));
    for (int64_t i = 0; i < n * base::size(); ++i) {
        q[i] = from[i];
        sum()[i] = factor * q[i];
    }
    fpm[step_of_filter] = 1;
    ask_products(base::size(), has_term);
}

/// work is A times the term in q
template <class T>
void filter_iteration<T>::next_term()
{
    const int64_t k = fpm[step_of_filter]++;
    const T by = static_cast<T>((k == 1 ? 1 : 2) / half_width()), shift = static_cast<T>(middle());
    const T factor = static_cast<T>(coefficient(k));
    for (int64_t i = 0; i < n * base::size(); ++i) {
        const T term = by * (work[i] - shift * q[i]) - (k == 1 ? T(0) : before()[i]);
        before()[i] = q[i];
        q[i] = term;
        sum()[i] += factor * term;
    }
    if (k < degree())
        return ask_products(base::size(), has_term);
    std::copy(sum(), sum() + n * base::size(), q);
    ask_products(base::size(), has_projection);
}

} // namespace feast

template <class T>
void feast_srci_pfilter(int64_t *ijob, const int64_t *n, std::complex<T> *ze, T *work,
                        std::complex<T> *workc, T *aq, T *sq, int64_t *fpm, T *epsout, int64_t *loop,
                        const T *emin, const T *emax, int64_t *m0, T *lambda, T *q, int64_t *m, T *res,
                        const int64_t *degree, int64_t *info)
{
    feast::filter_iteration<T> next{
        {ijob, *n, ze, work, workc, aq, sq, fpm, epsout, loop, *emin, *emax, m0, lambda, q, m, res, info},
        *degree};
    next.step();
}

} // namespace xkl::core
