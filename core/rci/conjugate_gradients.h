// One system by conjugate gradients, as steps between which the caller multiplies, preconditions and tests.
// The vectors lie in the caller's workspace, the numbers in its control arrays.
#pragma once

#include "control.h"

namespace xkl::core::iss {

/// Where a solution goes on
enum cg_stage : int64_t {
    cg_start = 1,
    cg_has_residual,
    cg_was_tested,
    cg_is_preconditioned,
    cg_has_product
};

template <class T>
struct cg_system {
    int64_t n;
    T *x;
    const T *b;
    T *direction, *product, *preconditioned_residual, *residual_vector;
    int64_t *ipar; // stage, iterations and the tests
    T *dpar;

    /// What the caller must do before the next step
    int64_t step();

  private:
    int64_t begin();
    int64_t with_first_residual();
    int64_t test();
    int64_t next_direction();
    int64_t with_product();
    int64_t ask(int64_t request, cg_stage next)
    {
        ipar[stage] = next;
        return request;
    }
    /// The answer to a division by `value`, or 0 when that is possible
    static int64_t refusal(T value)
    {
        return std::isnan(value) ? XKL_ISS_INVALID_NORM : value == 0 ? XKL_ISS_BREAKDOWN : 0;
    }
};

template <class T>
int64_t cg_system<T>::step()
{
    switch (ipar[stage]) {
    case cg_start:
        return begin();
    case cg_has_residual:
        return with_first_residual();
    case cg_was_tested:
        return ipar[preconditioned] != 0 ? ask(XKL_ISS_PRECONDITION, cg_is_preconditioned)
                                         : next_direction();
    case cg_is_preconditioned:
        return next_direction();
    case cg_has_product:
        return with_product();
    default:
        return XKL_ISS_INFINITE_CYCLE;
    }
}

template <class T>
int64_t cg_system<T>::begin()
{
    ipar[iterations] = 0;
    for (int64_t i = 0; i < n; ++i)
        direction[i] = x[i];
    return ask(XKL_ISS_MULTIPLY, cg_has_residual);
}

template <class T>
int64_t cg_system<T>::with_first_residual()
{
    for (int64_t i = 0; i < n; ++i)
        residual_vector[i] = b[i] - product[i];
    dpar[residual] = dpar[initial_residual] = inner_product(n, residual_vector, residual_vector);
    dpar[tolerance] = dpar[relative_tolerance] * dpar[initial_residual] + dpar[absolute_tolerance];
    dpar[beta] = 0;
    return test();
}

template <class T>
int64_t cg_system<T>::test()
{
    ipar[stage] = cg_was_tested;
    if (std::isnan(dpar[residual]))
        return XKL_ISS_INVALID_NORM;
    if (dpar[residual] == 0 || (ipar[test_residual] != 0 && dpar[residual] <= dpar[tolerance]))
        return XKL_ISS_DONE;
    if (ipar[test_iterations] != 0 && ipar[iterations] >= ipar[most_iterations])
        return XKL_ISS_TOO_MANY_STEPS;
    return ipar[ask_caller] != 0 ? static_cast<int64_t>(XKL_ISS_TEST) : step();
}

template <class T>
int64_t cg_system<T>::next_direction()
{
    const T *const z = ipar[preconditioned] != 0 ? preconditioned_residual : residual_vector;
    const T last_rho = dpar[rho];
    dpar[rho] = inner_product(n, residual_vector, z);
    if (const int64_t refused = refusal(dpar[rho]))
        return refused;
    dpar[beta] = ipar[iterations] == 0 ? T(0) : dpar[rho] / last_rho;
    for (int64_t i = 0; i < n; ++i)
        direction[i] = ipar[iterations] == 0 ? z[i] : z[i] + dpar[beta] * direction[i];
    return ask(XKL_ISS_MULTIPLY, cg_has_product);
}

template <class T>
int64_t cg_system<T>::with_product()
{
    const T curvature = inner_product(n, direction, product);
    if (const int64_t refused = refusal(curvature))
        return refused;
    dpar[alpha] = dpar[rho] / curvature;
    for (int64_t i = 0; i < n; ++i) {
        x[i] += dpar[alpha] * direction[i];
        residual_vector[i] -= dpar[alpha] * product[i];
    }
    ++ipar[iterations];
    dpar[last_residual] = dpar[residual];
    dpar[residual] = inner_product(n, residual_vector, residual_vector);
    return test();
}

} // namespace xkl::core::iss
