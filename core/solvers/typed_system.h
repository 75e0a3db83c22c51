// A matrix of one element type: which engine takes it, and what is done around the engine.
#pragma once

#include "solvers/choice.h"
#include "solvers/refinement.h"
#include "solvers/schur.h"
#include "solvers/stored.h"
#include "solvers/system.h"

#include <cmath>
#include <limits>

namespace xkl::core::solvers {

template <class T>
class typed_system final : public any_system {
  public:
    int64_t analyse(const request &call) override;
    int64_t factor(const request &call, const export_arrays &exported) override;
    int64_t solve(const request &call, solve_part part) override;
    void forget_factors() override;
    void release_factors() override;
    int64_t diagonals(void *of_factors, void *of_matrix) override;
    int64_t store(std::FILE *file) override;
    int64_t restore(std::FILE *file) override;

  private:
    using real = typename refinement<T>::real;

    const int64_t *controls() const { return form.iparm; }
    bool unsymmetric() const { return form.kind.form == symmetry::none; }
    choice choices() const { return {form, pattern_, schur_}; }
    way choose() const { return choices().engine(); }
    int64_t read_places(const request &call);
    int64_t begin_engine(way chosen, const T *values);
    bool weak_diagonal(const T *values) const;
    int64_t fetch_values(const void *from);
    int64_t run_engine();
    void find_bad_row();
    engine<T> *parts_engine();
    void report_facts(int64_t *iparm, int64_t error) const;
    int64_t solve_columns(const request &call, solve_part part, T *x, int64_t nrhs);
    void mark_right_hand_sides(const request &call, T *x) const;
    void take_solution(const request &call, const T *from) const;

    pattern pattern_;
    std::vector<T> values_;
    std::vector<int64_t> schur_; // its unknowns
    bool own_order_ = false;
    std::unique_ptr<engine<T>> engine_;
    std::unique_ptr<engine<T>> parts_; // made when a part of the solution is first asked for
    schur_complement<T> complement_;
};

template <class T>
int64_t typed_system<T>::read_places(const request &call)
{
    const int64_t block = std::max<int64_t>(controls()[storage], 1);
    const input_rows input{call.n, call.ia, call.ja, form.base, block};
    const bool check = controls()[check_matrix] == 1;
    const int64_t structure = form.kind.triangle()                  ? XKL_UPPER_TRIANGULAR
                              : check && form.kind.symmetric_places ? XKL_STRUCTURAL_SYMMETRIC
                                                                    : XKL_GENERAL_STRUCTURE;
    const input_fault fault = find_fault(input, structure, check);
    if (fault.status != XKL_SPARSE_CHECKER_SUCCESS) {
        call.iparm[bad_row] = fault.row + 1;
        return XKL_PARDISO_INPUT_ERROR;
    }
    if (!read_pattern(input, form.kind.triangle(), pattern_)) {
        call.iparm[bad_row] = static_cast<int64_t>(pattern_.start.size());
        return XKL_PARDISO_INPUT_ERROR;
    }
    call.iparm[bad_row] = unpaired_row(pattern_) + 1;
    if (call.iparm[bad_row] == 0)
        return XKL_PARDISO_SUCCESS;
    return pattern_.diagonal_only() ? XKL_PARDISO_SINGULAR_DIAGONAL : XKL_PARDISO_PREORDERING_FAILED;
}

// True when a row's diagonal element is missing, or nothing beside the row's largest.
template <class T>
bool typed_system<T>::weak_diagonal(const T *values) const
{
    constexpr double nothing = 1e-3;
    for (int64_t row = 0; row < pattern_.n; ++row) {
        double largest = 0, diagonal = -1;
        for (int64_t k = pattern_.start[row]; k < pattern_.start[row + 1]; ++k) {
            const double size = values ? std::abs(values[k]) : 1;
            largest = std::max(largest, size);
            if (pattern_.column[k] == row)
                diagonal = size;
        }
        if (diagonal < 0 || diagonal < nothing * largest)
            return true;
    }
    return false;
}

template <class T>
int64_t typed_system<T>::begin_engine(way chosen, const T *values)
{
    engine_options options{.kind = form.kind, .schur = schur_};
    options.pivot_threshold = std::pow(10.0, -static_cast<double>(controls()[pivot_exponent]));
    options.change_pivots = controls()[pivot_exponent] >= 0;
    options.scaling = controls()[scaling] == 1;
    options.own_order = own_order_;
    options.ordering = choices().ordering_of_fronts();
    engine_ = chosen == way::fixed  ? make_fixed_engine<T>(options)
              : chosen == way::rows ? make_row_engine<T>(options)
                                    : make_front_engine<T>(options);
    return engine_->analyse(pattern_, values, order);
}

template <class T>
int64_t typed_system<T>::analyse(const request &call)
{
    analysed = factored = false;
    engine_.reset();
    parts_.reset();
    form = {call.mtype, call.kind, call.single, call.n, call.iparm[zero_based] == 1 ? 0 : 1, {}};
    std::copy_n(call.iparm, control_entries, form.iparm);
    if (const int64_t error = check_for_analysis(call.iparm))
        return error;
    const bool reads_perm =
        controls()[user_order] != 0 || controls()[schur] != 0 || controls()[partial] != 0;
    if (reads_perm && !call.perm)
        return XKL_PARDISO_INPUT_ERROR;
    if (const int64_t error = read_places(call))
        return error;
    schur_.clear();
    if (controls()[schur] != 0)
        for (int64_t i = 0; i < pattern_.n; ++i)
            if (call.perm[i] == 1)
                schur_.push_back(i);
    if (controls()[schur] != 0 && (schur_.empty() || static_cast<int64_t>(schur_.size()) == pattern_.n))
        return XKL_PARDISO_INPUT_ERROR;
    if (const int64_t error = choices().find_order(call, order))
        return error;

    std::vector<T> early; // the values, where they are there already
    if (call.a && controls()[matching] == 1) {
        early.resize(pattern_.elements());
        for (int64_t k = 0; k < pattern_.elements(); ++k)
            early[k] = static_cast<const T *>(call.a)[pattern_.source[k]];
    }
    const T *values = early.empty() ? nullptr : early.data();
    own_order_ = controls()[matching] == 1 && controls()[user_order] == 0 && weak_diagonal(values);
    if (const int64_t error = begin_engine(choose(), own_order_ ? values : nullptr))
        return error;
    facts = engine_->facts;
    analysed = true;
    complement_.announce(schur_, unsymmetric(), form.base, call.iparm + schur);
    report_facts(call.iparm, XKL_PARDISO_SUCCESS);
    return XKL_PARDISO_SUCCESS;
}

template <class T>
int64_t typed_system<T>::fetch_values(const void *from)
{
    const T *a = static_cast<const T *>(from);
    values_.resize(pattern_.elements());
    for (int64_t row = 0; row < pattern_.n; ++row)
        for (int64_t k = pattern_.start[row]; k < pattern_.start[row + 1]; ++k) {
            values_[k] = a[pattern_.source[k]];
            if (!std::isfinite(std::abs(values_[k]))) {
                facts.bad_row = row;
                return XKL_PARDISO_INPUT_ERROR;
            }
        }
    if (pattern_.diagonal_only())
        for (int64_t row = 0; row < pattern_.n; ++row)
            if (values_[pattern_.start[row]] == T{}) {
                facts.bad_row = row;
                return XKL_PARDISO_SINGULAR_DIAGONAL;
            }
    return XKL_PARDISO_SUCCESS;
}

// The library of fronts has the last word on a matrix in which others met a zero pivot.
template <class T>
int64_t typed_system<T>::run_engine()
{
    int64_t error = engine_->factor(pattern_, values_.data());
    if (error == XKL_PARDISO_ZERO_PIVOT && choose() == way::rows && pattern_.n <= small_order) {
        error = begin_engine(way::fronts, values_.data());
        if (error == XKL_PARDISO_SUCCESS)
            error = engine_->factor(pattern_, values_.data());
    }
    facts = engine_->facts;
    if (error == XKL_PARDISO_ZERO_PIVOT && facts.bad_row < 0)
        find_bad_row();
    return error;
}

// An engine without exchanges stops at the row, where repeating the work is affordable.
template <class T>
void typed_system<T>::find_bad_row()
{
    constexpr double affordable = 1e10;
    if (facts.operations > affordable)
        return;
    const auto finder = make_fixed_engine<T>({.kind = form.kind, .change_pivots = false});
    if (finder->analyse(pattern_, nullptr, choices().order_of_fixed(order)) == XKL_PARDISO_SUCCESS &&
        finder->facts.operations <= affordable &&
        finder->factor(pattern_, values_.data()) == XKL_PARDISO_ZERO_PIVOT)
        facts.bad_row = finder->facts.bad_row;
}

template <class T>
int64_t typed_system<T>::factor(const request &call, const export_arrays &exported)
{
    forget_factors();
    int64_t error = fetch_values(call.a);
    if (error == XKL_PARDISO_SUCCESS && !engine_) // released before
        error = begin_engine(choose(), own_order_ ? values_.data() : nullptr);
    if (error == XKL_PARDISO_SUCCESS)
        error = run_engine();
    if (error == XKL_PARDISO_SUCCESS && !schur_.empty()) {
        const bool exports = controls()[schur] < 0;
        if (exports ? !exported.values || !exported.ia || !exported.ja : !call.x)
            error = XKL_PARDISO_INPUT_ERROR;
        else if (exports)
            complement_.write_rows(engine_->schur(), exported.ia, exported.ja,
                                   static_cast<T *>(exported.values));
        else
            std::copy_n(engine_->schur(), schur_.size() * schur_.size(), static_cast<T *>(call.x));
        if (error == XKL_PARDISO_SUCCESS)
            complement_.factor(engine_->schur());
    }
    factored = error == XKL_PARDISO_SUCCESS;
    report_facts(call.iparm, error);
    return error;
}

template <class T>
void typed_system<T>::forget_factors()
{
    factored = false;
    parts_.reset();
}

template <class T>
void typed_system<T>::release_factors()
{
    forget_factors();
    engine_.reset();
    values_ = {};
}

template <class T>
void typed_system<T>::report_facts(int64_t *iparm, int64_t error) const
{
    const auto kilobytes = [](int64_t elements) {
        return elements * static_cast<int64_t>(sizeof(T)) / 1024 + 1;
    };
    const int64_t input = 3 * pattern_.elements() + pattern_.n;
    iparm[analysis_peak] = input * 8 * 3 / 1024 + 1;
    iparm[analysis_kept] = input * 8 / 1024 + 1;
    iparm[factor_memory] = kilobytes(facts.elements_of_memory + static_cast<int64_t>(values_.size()));
    iparm[out_of_core_memory] = iparm[factor_memory];
    if (iparm[nonzeros] < 0 || controls()[nonzeros] < 0)
        iparm[nonzeros] = facts.nonzeros;
    if (iparm[mflops] < 0 || controls()[mflops] < 0)
        iparm[mflops] = static_cast<int64_t>(facts.operations / 1e6) + 1;
    iparm[changed_pivots] = facts.changed_pivots;
    iparm[positive_eigenvalues] = facts.positive;
    iparm[negative_eigenvalues] = facts.negative;
    iparm[bad_row] = error == XKL_PARDISO_SUCCESS ? 0 : facts.bad_row + 1;
}

// Parts of the solution are those of the factors without exchanges. Null when such factors are no good for
// this matrix, since nothing would repair the parts' product.
template <class T>
engine<T> *typed_system<T>::parts_engine()
{
    if (choose() == way::fixed)
        return engine_.get();
    if (!parts_) {
        auto made =
            make_fixed_engine<T>({.kind = form.kind,
                                  .pivot_threshold = std::sqrt(std::numeric_limits<real>::epsilon()),
                                  .change_pivots = true});
        if (made->analyse(pattern_, nullptr, choices().order_of_fixed(order)) == XKL_PARDISO_SUCCESS &&
            made->factor(pattern_, values_.data()) == XKL_PARDISO_SUCCESS &&
            made->facts.changed_pivots == 0)
            parts_ = std::move(made);
    }
    return parts_.get();
}

template <class T>
int64_t typed_system<T>::solve_columns(const request &call, solve_part part, T *x, int64_t nrhs)
{
    const int64_t op = call.iparm[operation];
    const bool conjugate = form.kind.form == symmetry::conjugated ? op == 2 : op == 1;
    const bool transpose = unsymmetric() && op != 0;
    const auto turn = [&] {
        if (form.kind.is_complex && conjugate)
            std::transform(x, x + pattern_.n * nrhs, x, [](T value) { return conjugate_of(value); });
    };
    int64_t error;
    turn();
    if (!schur_.empty())
        error = transpose || conjugate ? XKL_PARDISO_NOT_SUPPORTED
                                       : complement_.solve(*engine_, part, pattern_.n, x, nrhs);
    else if (part == solve_part::all)
        error = engine_->solve(transpose, x, nrhs);
    else if (engine<T> *by_parts = parts_engine())
        error = by_parts->solve_by_parts(part, transpose, x, nrhs);
    else
        error = XKL_PARDISO_NOT_SUPPORTED;
    turn();
    return error;
}

// Values 1 and 2 of iparm(31) promise that the unmarked right-hand sides are zero.
template <class T>
void typed_system<T>::mark_right_hand_sides(const request &call, T *x) const
{
    const int64_t mode = call.iparm[partial];
    if (mode != 1 && mode != 2)
        return;
    for (int64_t k = 0; k < pattern_.n * call.nrhs; ++k)
        if (call.perm[k % pattern_.n] != 1)
            x[k] = T{};
}

// Values 1 and 3 ask for the marked unknowns only.
template <class T>
void typed_system<T>::take_solution(const request &call, const T *from) const
{
    T *to = static_cast<T *>(call.iparm[solution_in_b] == 1 ? call.b : call.x);
    const bool marked_only = call.iparm[partial] == 1 || call.iparm[partial] == 3;
    for (int64_t k = 0; k < pattern_.n * call.nrhs; ++k)
        if (!marked_only || call.perm[k % pattern_.n] == 1)
            to[k] = from[k];
}

template <class T>
int64_t typed_system<T>::solve(const request &call, solve_part part)
{
    if (const int64_t error = check_for_solve(call.iparm))
        return error;
    if (!call.b || (!call.x && call.iparm[solution_in_b] == 0) || (call.iparm[partial] != 0 && !call.perm))
        return XKL_PARDISO_INPUT_ERROR;
    const int64_t n = pattern_.n;
    std::vector<T> right(static_cast<T *>(call.b), static_cast<T *>(call.b) + n * call.nrhs);
    mark_right_hand_sides(call, right.data());
    std::vector<T> solution = right;
    int64_t steps = 0;
    if (call.nrhs > 0)
        if (const int64_t error = solve_columns(call, part, solution.data(), call.nrhs))
            return error;
    // Unasked, what exchanges of pivots cost in accuracy is made good where it shows.
    const int64_t wanted = call.iparm[steps_wanted];
    const int64_t limit = wanted != 0 ? std::abs(wanted) : form.kind.positive_definite ? 0 : 2;
    if (part == solve_part::all && schur_.empty() && limit > 0) {
        const double tolerance = wanted < 0 ? 0.125 : wanted > 0 || facts.changed_pivots > 0 ? 1 : 16;
        refinement<T> improve(pattern_, form.kind, values_, call.iparm[operation], wanted < 0, tolerance);
        for (int64_t column = 0; column < call.nrhs; ++column) {
            int64_t done = 0;
            const int64_t error =
                improve.run(right.data() + column * n, solution.data() + column * n, limit, done,
                            [&](T *x) { return solve_columns(call, part, x, 1); });
            if (error != XKL_PARDISO_SUCCESS)
                return error;
            steps = std::max(steps, done);
        }
    }
    call.iparm[steps_done] = steps;
    take_solution(call, solution.data());
    return XKL_PARDISO_SUCCESS;
}

template <class T>
int64_t typed_system<T>::diagonals(void *of_factors, void *of_matrix)
{
    if (!factored)
        return XKL_PARDISO_INPUT_ERROR;
    if (controls()[keep_diagonal] != 1 || !engine_->diagonal(static_cast<T *>(of_factors)))
        return XKL_PARDISO_NOT_SUPPORTED;
    T *da = static_cast<T *>(of_matrix);
    for (int64_t row = 0; row < pattern_.n; ++row) {
        da[row] = T{};
        for (int64_t k = pattern_.start[row]; k < pattern_.start[row + 1]; ++k)
            if (pattern_.column[k] == row)
                da[row] = values_[k];
    }
    return XKL_PARDISO_SUCCESS;
}

// The matrix and its order are kept; factors are made anew from them, the same ones.
template <class T>
int64_t typed_system<T>::store(std::FILE *file)
{
    const int64_t state[] = {factored, own_order_, pattern_.n, pattern_.triangle};
    const bool written = write(file, form) && write(file, state) && write(file, pattern_.start) &&
                         write(file, pattern_.column) && write(file, pattern_.source) &&
                         write(file, order) && write(file, schur_) && write(file, values_);
    return written ? XKL_PARDISO_SUCCESS : XKL_PARDISO_OUT_OF_CORE_IO;
}

template <class T>
int64_t typed_system<T>::restore(std::FILE *file)
{
    int64_t state[4];
    const bool complete = read(file, form) && read(file, state) && read(file, pattern_.start) &&
                          read(file, pattern_.column) && read(file, pattern_.source) && read(file, order) &&
                          read(file, schur_) && read(file, values_);
    pattern_.n = state[2];
    pattern_.triangle = state[3] != 0;
    own_order_ = state[1] != 0;
    if (!complete || static_cast<int64_t>(order.size()) != pattern_.n || !is_permutation(order) ||
        !consistent(pattern_))
        return XKL_PARDISO_OUT_OF_CORE_IO;
    if (const int64_t error = begin_engine(choose(), values_.empty() ? nullptr : values_.data()))
        return error;
    analysed = true;
    complement_.announce(schur_, unsymmetric(), form.base, nullptr);
    if (state[0] == 0)
        return XKL_PARDISO_SUCCESS;
    const int64_t error = run_engine();
    factored = error == XKL_PARDISO_SUCCESS;
    if (factored && !schur_.empty())
        complement_.factor(engine_->schur());
    return error;
}

} // namespace xkl::core::solvers
