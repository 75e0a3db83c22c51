// Flexible generalized minimal residuals by reverse communication: the preconditioner may change from step
// to step, since the preconditioned vectors are kept.
//
// tmp holds restart + 1 basis vectors, restart preconditioned ones, and behind these, by columns, the
// triangle R of the least-squares problem, the rotations that made it, and its right-hand side.
#pragma once

#include "control.h"

namespace xkl::core {
namespace iss {

/// Where a solution goes on
enum fgmres_stage : int64_t {
    fgmres_start = 1,
    has_residual,
    was_tested,
    is_preconditioned,
    has_product,
    norm_was_tested
};

template <class T>
struct fgmres_system {
    int64_t n;
    T *x;
    const T *b;
    int64_t *ipar;
    T *dpar, *tmp;

    /// What the caller must do before the next step
    int64_t step();
    /// to := x + the correction that the basis so far allows
    void solution(T *to) const;

  private:
    int64_t size() const { return ipar[restart]; }
    T *basis(int64_t j) const { return tmp + j * n; }
    T *preconditioned_vector(int64_t j) const
    {
        return ipar[preconditioned] != 0 ? tmp + (size() + 1 + j) * n : basis(j);
    }
    T *triangle(int64_t column) const { return tmp + (2 * size() + 1) * n + column * (column + 1) / 2; }
    T *cosines() const { return triangle(size()); }
    T *sines() const { return cosines() + size(); }
    T *right_side() const { return sines() + size(); }

    int64_t ask(int64_t request, fgmres_stage next, const T *from, const T *to)
    {
        ipar[stage] = next;
        ipar[source] = from - tmp + 1;
        ipar[destination] = to - tmp + 1;
        return request;
    }
    int64_t begin();
    int64_t with_first_residual();
    int64_t test();
    int64_t next_vector();
    int64_t with_product();
    int64_t extend_basis();
    void orthogonalize(T *w, T *column) const;
    void rotate(T *column, int64_t j);
};

template <class T>
int64_t fgmres_system<T>::step()
{
    if (ipar[solution_taken] != 0) { // x has moved on: the basis belongs to where it was
        ipar[solution_taken] = 0;
        return begin();
    }
    switch (ipar[stage]) {
    case fgmres_start:
        ipar[iterations] = 0;
        dpar[initial_residual] = -1;
        return begin();
    case has_residual:
        return with_first_residual();
    case was_tested:
        return next_vector();
    case is_preconditioned: {
        const int64_t j = ipar[inner_iterations];
        return ask(XKL_ISS_MULTIPLY, has_product, preconditioned_vector(j), basis(j + 1));
    }
    case has_product:
        return with_product();
    case norm_was_tested:
        return extend_basis();
    default:
        return XKL_ISS_INFINITE_CYCLE;
    }
}

template <class T>
int64_t fgmres_system<T>::begin()
{
    if (n <= 0 || size() <= 0)
        return XKL_ISS_BAD_PARAMETERS;
    ipar[inner_iterations] = 0;
    std::copy(x, x + n, basis(0));
    return ask(XKL_ISS_MULTIPLY, has_residual, basis(0), basis(1));
}

template <class T>
int64_t fgmres_system<T>::with_first_residual()
{
    T *const r = basis(0);
    for (int64_t i = 0; i < n; ++i)
        r[i] = b[i] - basis(1)[i];
    const T norm = std::sqrt(inner_product(n, r, r));
    if (dpar[initial_residual] < 0) { // not a restart
        dpar[initial_residual] = norm;
        dpar[tolerance] = dpar[relative_tolerance] * norm + dpar[absolute_tolerance];
    }
    dpar[residual] = norm;
    if (std::isnan(norm))
        return XKL_ISS_INVALID_NORM;
    if (norm != 0)
        for (int64_t i = 0; i < n; ++i)
            r[i] /= norm;
    right_side()[0] = norm;
    return test();
}

template <class T>
int64_t fgmres_system<T>::test()
{
    ipar[stage] = was_tested;
    if (dpar[residual] == 0 || (ipar[test_residual] != 0 && dpar[residual] <= dpar[tolerance]))
        return XKL_ISS_DONE;
    if (ipar[test_iterations] != 0 && ipar[iterations] >= ipar[most_iterations])
        return XKL_ISS_TOO_MANY_STEPS;
    return ipar[ask_caller] != 0 ? static_cast<int64_t>(XKL_ISS_TEST) : step();
}

template <class T>
int64_t fgmres_system<T>::next_vector()
{
    if (ipar[inner_iterations] == size()) {
        solution(x);
        return begin();
    }
    const int64_t j = ipar[inner_iterations];
    if (ipar[preconditioned] != 0)
        return ask(XKL_ISS_PRECONDITION, is_preconditioned, basis(j), preconditioned_vector(j));
    return ask(XKL_ISS_MULTIPLY, has_product, basis(j), basis(j + 1));
}

/// Takes the parts along the basis out of w, twice: what rounding left of them in the first turn would
/// grow.
template <class T>
void fgmres_system<T>::orthogonalize(T *w, T *column) const
{
    const int64_t j = ipar[inner_iterations];
    std::fill(column, column + j + 1, T(0));
    for (int turn = 0; turn < 2; ++turn)
        for (int64_t k = 0; k <= j; ++k) {
            const T part = inner_product(n, basis(k), w);
            column[k] += part;
            for (int64_t i = 0; i < n; ++i)
                w[i] -= part * basis(k)[i];
        }
}

template <class T>
int64_t fgmres_system<T>::with_product()
{
    const int64_t j = ipar[inner_iterations];
    T *const w = basis(j + 1), *const column = triangle(j);
    orthogonalize(w, column);
    dpar[next_norm] = std::sqrt(inner_product(n, w, w));
    if (std::isnan(dpar[next_norm]))
        return XKL_ISS_INVALID_NORM;
    rotate(column, j);
    ++ipar[iterations];
    ++ipar[inner_iterations];
    dpar[last_residual] = dpar[residual];
    dpar[residual] = std::abs(right_side()[j + 1]);
    ipar[stage] = norm_was_tested;
    if (ipar[test_norm] == 0)
        return XKL_ISS_TEST_NORM;
    return dpar[next_norm] <= dpar[zero_norm] ? static_cast<int64_t>(XKL_ISS_DONE) : step();
}

/// The rotations so far, and one more that takes the new vector's norm into the triangle
template <class T>
void fgmres_system<T>::rotate(T *column, int64_t j)
{
    T *const c = cosines(), *const s = sines(), *const g = right_side();
    for (int64_t k = 0; k < j; ++k) {
        const T upper = column[k], lower = column[k + 1];
        column[k] = c[k] * upper + s[k] * lower;
        column[k + 1] = c[k] * lower - s[k] * upper;
    }
    const T length = std::hypot(column[j], dpar[next_norm]);
    c[j] = length == 0 ? T(1) : column[j] / length;
    s[j] = length == 0 ? T(0) : dpar[next_norm] / length;
    column[j] = length;
    g[j + 1] = -s[j] * g[j];
    g[j] *= c[j];
}

template <class T>
int64_t fgmres_system<T>::extend_basis()
{
    T *const w = basis(ipar[inner_iterations]);
    if (dpar[next_norm] == 0)
        return XKL_ISS_DONE; // nothing lies outside of the basis
    for (int64_t i = 0; i < n; ++i)
        w[i] /= dpar[next_norm];
    return test();
}

template <class T>
void fgmres_system<T>::solution(T *to) const
{
    const int64_t count = ipar[inner_iterations];
    if (to != x)
        std::copy(x, x + n, to);
    // R is solved for one weight at a time, from the last: each is found from those behind it.
    T *const weights = right_side() + size() + 1; // what is left of tmp
    for (int64_t k = count - 1; k >= 0; --k) {
        T sum = right_side()[k];
        for (int64_t later = k + 1; later < count; ++later)
            sum -= triangle(later)[k] * weights[later];
        weights[k] = triangle(k)[k] == 0 ? T(0) : sum / triangle(k)[k];
        for (int64_t i = 0; i < n; ++i)
            to[i] += weights[k] * preconditioned_vector(k)[i];
    }
}

} // namespace iss

/// tmp may be as short as the default restart asks for; only the first step writes to it.
template <class T>
void fgmres_init(const int64_t *n, T *, T *, int64_t *request, int64_t *ipar, T *dpar, T *)
{
    if (*n <= 0) {
        *request = XKL_ISS_INIT_FAILED;
        return;
    }
    iss::set_defaults(*n, ipar, dpar);
    ipar[iss::restart] = ipar[iss::most_iterations];
    dpar[iss::zero_norm] = T(1e-12);
    *request = XKL_ISS_DONE;
}

template <class T>
void fgmres_check(const int64_t *n, T *, T *, int64_t *request, int64_t *ipar, T *dpar, T *)
{
    iss::findings found("DFGMRES_CHECK", ipar);
    iss::look_for_mistakes(found, *n, ipar, dpar);
    if (ipar[iss::restart] <= 0)
        found.error("ipar(15), the number of steps before a restart, must be positive");
    if (!(dpar[iss::zero_norm] >= 0))
        found.error("dpar(8), the norm that counts as zero, must not be negative");
    *request = found.request();
}

template <class T>
void fgmres(const int64_t *n, T *x, T *b, int64_t *request, int64_t *ipar, T *dpar, T *tmp)
{
    *request = iss::fgmres_system<T>{*n, x, b, ipar, dpar, tmp}.step();
}

/// After a solution went into x the basis counts as used: a further step begins a new one there.
template <class T>
void fgmres_get(const int64_t *n, T *x, T *b, int64_t *request, int64_t *ipar, T *dpar, T *tmp,
                int64_t *iterations)
{
    *iterations = ipar[iss::iterations];
    *request = XKL_ISS_DONE;
    if (ipar[iss::solution_to] < 0 || ipar[iss::solution_taken] != 0)
        return;
    const iss::fgmres_system<T> system{*n, x, b, ipar, dpar, tmp};
    if (ipar[iss::stage] <= iss::has_residual) // no basis yet
        return;
    system.solution(ipar[iss::solution_to] == 0 ? x : b);
    if (ipar[iss::solution_to] == 0)
        ipar[iss::solution_taken] = 1;
}

} // namespace xkl::core
