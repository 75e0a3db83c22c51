// Nonlinear least squares: the least |f(x)| for m functions of n variables, m >= n, within bounds or
// without, by steps of Levenberg and Marquardt in a trust region.
//
// Each Jacobi matrix is taken apart into singular values, with its columns scaled by the largest norm that
// they have had; every step of that iteration then costs a few products, whatever the radius. Variables
// that rest on a bound, and would be pushed out of it, stay where they are for that iteration.
#pragma once

#include "incomplete_rows.h"
#include "lapack/call.h"
#include "xkl_solver_types.h"

#include <limits>

namespace xkl::core {

/// What a caller computes before the next step
enum trust_request : int64_t { trust_accepted = 0, trust_functions = 1, trust_jacobian = 2 };

/// Why the iteration ends: the place of the tolerance, and minus rci_request
enum trust_stop : int64_t {
    running = 0,
    out_of_iterations = 1,
    small_radius = 2,    // the radius is below eps(1)
    small_residual = 3,  // |f| is below eps(2)
    singular_matrix = 4, // a column of the Jacobi matrix has a norm below eps(3)
    small_step = 5,      // the step is below eps(4)
    small_gain = 6       // |f| - |f + J s| is below eps(5)
};

inline constexpr int tolerances = 6;

template <class T>
class trust_region {
  public:
    static size_t bytes(int64_t n, int64_t m) { return sizeof(trust_region) + numbers(n, m) * sizeof(T); }

    trust_region(int64_t n, int64_t m, T *x, const T *lower, const T *upper, const T *eps,
                 int64_t iterations, int64_t trials, T factor);

    int64_t advance(const T *f, const T *jacobian);
    int64_t iterations() const { return iterations_; }
    int64_t criterion() const { return stop_; }
    T first_norm() const { return first_norm_; }
    T last_norm() const { return norm_; }

  private:
    enum class stage { start, has_trial, has_jacobian, ended };

    static int64_t space_for_svd(int64_t n, int64_t m) { return 8 * n + 2 * m + 64; }
    static size_t numbers(int64_t n, int64_t m)
    {
        return static_cast<size_t>(8 * n + 2 * m + m * n + n * n + space_for_svd(n, m));
    }

    int64_t end(trust_stop why)
    {
        stop_ = why;
        stage_ = stage::ended;
        return -why;
    }
    int64_t decompose(const T *jacobian);
    void choose_free(const T *jacobian);
    bool propose();
    int64_t try_step();
    int64_t judge(const T *f);
    T step_of_length(T lambda);
    void find_step();
    T predicted_norm(const T *jacobian) const;
    T norm_of(const T *v, int64_t count) const { return std::sqrt(sum_of_squares(v, count)); }
    static T sum_of_squares(const T *v, int64_t count)
    {
        T sum = 0;
        for (int64_t i = 0; i < count; ++i)
            sum += v[i] * v[i];
        return sum;
    }

    int64_t n_, m_;
    T *x_;
    const T *lower_, *upper_; // null without bounds
    T eps_[tolerances];
    int64_t most_iterations_, most_trials_;
    T factor_;
    stage stage_ = stage::start;
    trust_stop stop_ = running;
    int64_t iterations_ = 0, trials_ = 0;
    T radius_ = 0, norm_ = 0, first_norm_ = 0, predicted_ = 0, step_norm_ = 0;
    const T *jacobian_ = nullptr;
    // n each: where x was, the step, the columns' scales, singular values, f along the left singular
    // vectors, those times the filter, which variables are free; m: f; then the two matrices and LAPACK's
    // workspace
    T *base_, *step_, *scale_, *sigma_, *along_, *filtered_, *free_, *f_, *u_, *vt_, *work_;
};

template <class T>
trust_region<T>::trust_region(int64_t n, int64_t m, T *x, const T *lower, const T *upper, const T *eps,
                              int64_t iterations, int64_t trials, T factor)
    : n_(n), m_(m), x_(x), lower_(lower), upper_(upper), most_iterations_(iterations), most_trials_(trials),
      factor_(factor)
{
    std::copy(eps, eps + tolerances, eps_);
    T *next = reinterpret_cast<T *>(this + 1);
    const auto take = [&next](int64_t count) { return std::exchange(next, next + count); };
    for (T **vector : {&base_, &step_, &scale_, &sigma_, &along_, &filtered_, &free_})
        *vector = take(n);
    f_ = take(2 * m);
    u_ = take(m * n);
    vt_ = take(n * n);
    work_ = take(space_for_svd(n, m));
    std::fill(scale_, scale_ + n, T(0));
}

template <class T>
int64_t trust_region<T>::advance(const T *f, const T *jacobian)
{
    jacobian_ = jacobian;
    switch (stage_) {
    case stage::start:
        std::copy(f, f + m_, f_);
        first_norm_ = norm_ = norm_of(f, m_);
        return decompose(jacobian);
    case stage::has_trial:
        return judge(f);
    case stage::has_jacobian:
        return decompose(jacobian);
    case stage::ended:
        break;
    }
    return -stop_;
}

/// A variable on its bound is free if the way down leads inside.
template <class T>
void trust_region<T>::choose_free(const T *jacobian)
{
    for (int64_t j = 0; j < n_; ++j) {
        T slope = 0;
        for (int64_t i = 0; i < m_; ++i)
            slope += jacobian[j * m_ + i] * f_[i];
        const bool held =
            lower_ && ((x_[j] <= lower_[j] && slope > 0) || (x_[j] >= upper_[j] && slope < 0));
        free_[j] = held ? T(0) : T(1);
    }
}

/// The start of an iteration at x_, where f_ is known
template <class T>
int64_t trust_region<T>::decompose(const T *jacobian)
{
    if (!(norm_ > eps_[1]))
        return end(small_residual);
    choose_free(jacobian);
    bool vanished = false;
    for (int64_t j = 0; j < n_; ++j) {
        const T length = norm_of(jacobian + j * m_, m_);
        vanished = vanished || !(length >= eps_[2]);
        scale_[j] = std::max(scale_[j], length);
        const T unit = scale_[j] > 0 ? free_[j] / scale_[j] : T(0);
        for (int64_t i = 0; i < m_; ++i)
            u_[j * m_ + i] = jacobian[j * m_ + i] * unit;
    }
    if (vanished)
        return end(singular_matrix);
    int64_t info = 0;
    call(entries::gesvd<T>, 'O', 'S', m_, n_, u_, m_, sigma_, u_, m_, vt_, n_, work_, space_for_svd(n_, m_),
         &info);
    if (info != 0)
        return end(singular_matrix);
    for (int64_t k = 0; k < n_; ++k) {
        along_[k] = 0;
        for (int64_t i = 0; i < m_; ++i)
            along_[k] += u_[k * m_ + i] * f_[i];
    }
    if (iterations_ == 0) {
        T length = 0;
        for (int64_t j = 0; j < n_; ++j)
            length += scale_[j] * x_[j] * scale_[j] * x_[j];
        radius_ = length > 0 ? factor_ * std::sqrt(length) : factor_;
    }
    std::copy(x_, x_ + n_, base_);
    trials_ = 0;
    return try_step();
}

/// The scaled step for a parameter lambda, as weights of the right singular vectors; its length
template <class T>
T trust_region<T>::step_of_length(T lambda)
{
    const T floor = sigma_[0] * std::numeric_limits<T>::epsilon() * static_cast<T>(n_);
    for (int64_t k = 0; k < n_; ++k) {
        const T damped = sigma_[k] * sigma_[k] + lambda;
        filtered_[k] = sigma_[k] > floor ? -along_[k] * sigma_[k] / damped : T(0);
    }
    return norm_of(filtered_, n_);
}

/// The lambda, 0 or more, for which the step ends near the radius: by Newton's method on the reciprocal
/// length, which is nearly linear in lambda.
template <class T>
void trust_region<T>::find_step()
{
    const T near = 1 + (eps_[5] > 0 ? eps_[5] : T(0.1));
    T lambda = 0, length = step_of_length(0);
    for (int turn = 0; turn < 50 && length > near * radius_; ++turn) {
        T slope = 0;
        for (int64_t k = 0; k < n_; ++k)
            if (filtered_[k] != 0) // where a variable is held sigma is 0, and so is lambda at first
                slope += filtered_[k] * filtered_[k] / (sigma_[k] * sigma_[k] + lambda);
        if (!(slope > 0))
            break;
        lambda += (length / radius_ - 1) * length * length / slope;
        length = step_of_length(lambda);
    }
    for (int64_t j = 0; j < n_; ++j) {
        T sum = 0;
        for (int64_t k = 0; k < n_; ++k)
            sum += vt_[j * n_ + k] * filtered_[k];
        step_[j] = scale_[j] > 0 && free_[j] != 0 ? sum / scale_[j] : T(0);
    }
}

/// |f + J s| for the step as it is, cut by the bounds
template <class T>
T trust_region<T>::predicted_norm(const T *jacobian) const
{
    T *const model = f_ + m_;
    std::copy(f_, f_ + m_, model);
    for (int64_t j = 0; j < n_; ++j)
        for (int64_t i = 0; i < m_; ++i)
            model[i] += jacobian[j * m_ + i] * step_[j];
    return norm_of(model, m_);
}

/// Puts x at the end of a step; true if a bound cut it.
template <class T>
bool trust_region<T>::propose()
{
    find_step();
    bool cut = false;
    step_norm_ = 0;
    for (int64_t j = 0; j < n_; ++j) {
        const T wanted = base_[j] + step_[j];
        x_[j] = lower_ ? std::clamp(wanted, lower_[j], upper_[j]) : wanted;
        cut = cut || x_[j] != wanted;
        step_[j] = x_[j] - base_[j];
        step_norm_ += scale_[j] * step_[j] * scale_[j] * step_[j];
    }
    step_norm_ = std::sqrt(step_norm_);
    predicted_ = predicted_norm(jacobian_);
    return cut;
}

/// A step that the bounds have bent may lead up; a shorter one leads down in every variable.
template <class T>
int64_t trust_region<T>::try_step()
{
    if (iterations_ >= most_iterations_)
        return end(out_of_iterations);
    if (!(radius_ > eps_[0]))
        return end(small_radius);
    while (propose() && !(norm_ - predicted_ > eps_[4]) && radius_ > eps_[0])
        radius_ = std::min(radius_, step_norm_) / 4;
    const trust_stop why = !(norm_of(step_, n_) > eps_[3])   ? small_step
                           : !(norm_ - predicted_ > eps_[4]) ? small_gain
                                                             : running;
    if (why != running) {
        std::copy(base_, base_ + n_, x_);
        return end(why);
    }
    stage_ = stage::has_trial;
    return trust_functions;
}

/// f at the trial point: the step is taken if it brings a part of what the model promised.
template <class T>
int64_t trust_region<T>::judge(const T *f)
{
    const T norm = norm_of(f, m_);
    const T gain = (norm_ - norm) * (norm_ + norm), promised = (norm_ - predicted_) * (norm_ + predicted_);
    const T ratio = promised > 0 && std::isfinite(norm) ? gain / promised : T(-1);
    if (ratio < T(0.25))
        radius_ = T(0.25) * std::min(radius_, step_norm_);
    else if (ratio > T(0.75))
        radius_ = std::max(radius_, 2 * step_norm_);
    if (ratio > T(1e-4)) {
        std::copy(f, f + m_, f_);
        norm_ = norm;
        ++iterations_;
        stage_ = stage::has_jacobian;
        return trust_jacobian;
    }
    std::copy(base_, base_ + n_, x_);
    if (++trials_ >= most_trials_)
        return end(small_radius);
    return try_step();
}

} // namespace xkl::core
