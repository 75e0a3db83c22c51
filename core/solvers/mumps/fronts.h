// Multifrontal factorization by MUMPS: dense fronts for the kernels, pivots of order 1 and 2 that wait
// until they are large enough. Hermitian matrices, which it doesn't know, become real symmetric ones of
// twice the order: each element a block (re, -im; im, re), each unknown its real and imaginary part, so
// that vectors stay as they are and every eigenvalue comes twice.
#pragma once

#include "service/kernel_threads.h"
#include "solvers/engine.h"
#include "solvers/mumps/arithmetic.h"
#include "solvers/mumps/stopped.h"

#include <cmath>
#include <limits>
#include <mutex>

namespace xkl::core::solvers {

// MUMPS keeps the instance at work in variables of its own. Held while one of its routines runs; no routine
// of the program is called then.
inline std::mutex mumps_turn;

// R: what MUMPS computes with, the real type of a Hermitian T.
template <class T, class R>
class fronts final : public engine<T> {
  public:
    explicit fronts(const engine_options &options) : options_(options) {}
    ~fronts() override
    {
        if (begun_)
            run(-2);
    }

    int64_t analyse(const pattern &a, const T *values, const std::vector<int64_t> &order) override;
    int64_t factor(const pattern &a, const T *values) override;
    int64_t solve(bool transposed, T *x, int64_t nrhs) override
    {
        return solve_step(transposed, x, nrhs, 0, nullptr);
    }
    const T *schur() override { return complement_.empty() ? nullptr : complement_.data(); }
    int64_t condense(T *x, T *reduced, int64_t nrhs) override
    {
        return solve_step(false, x, nrhs, 1, reduced);
    }
    int64_t expand(T *x, T *reduced, int64_t nrhs) override
    {
        return solve_step(false, x, nrhs, 2, reduced);
    }

  private:
    static constexpr bool doubled = !std::is_same_v<T, R>;
    static constexpr int64_t parts = doubled ? 2 : 1; // unknowns of MUMPS for one of the matrix

    int64_t run(int job);
    int64_t begin();
    void set_places(const pattern &a);
    void set_schur(const std::vector<int64_t> &order);
    void set_values(const pattern &a, const T *values);
    void set_order(bool with_values);
    void take_complement();
    int64_t judge();
    void halve_determinant();
    int64_t solve_step(bool transposed, T *x, int64_t nrhs, int step, T *reduced);

    engine_options options_;
    typename mumps<R>::record m_{};
    bool begun_ = false;
    std::vector<MUMPS_INT> row_, column_, position_, schur_list_;
    std::vector<R> values_, schur_; // values_ of a Hermitian matrix only
    std::vector<T> complement_;     // schur_ in the elements' own type
};

// The answer as an XKL_PARDISO_ value.
template <class T, class R>
int64_t fronts<T, R>::run(int job)
{
    constexpr int beginning = -1;
    if (!begun_ && job != beginning) // it was stopped
        return XKL_PARDISO_INTERNAL_ERROR;
    // In this order: who waits for a turn at the kernels must not keep another one, which has its turn,
    // waiting.
    const kernel_turn turn;
    const std::lock_guard<std::mutex> one_at_a_time(mumps_turn);
    m_.job = job;
    xkl_mumps_srand();
    try {
        mumps<R>::call(&m_);
    } catch (const mumps_stopped &) {
        begun_ = false; // nothing is known of what it holds
        return XKL_PARDISO_INTERNAL_ERROR;
    }
    switch (m_.infog[0]) {
    case -6:
        return XKL_PARDISO_PREORDERING_FAILED;
    case -10:
        return XKL_PARDISO_ZERO_PIVOT;
    case -5:
    case -7:
    case -13:
        return XKL_PARDISO_OUT_OF_MEMORY;
    case -51:
    case -52:
        return XKL_PARDISO_INTEGER_OVERFLOW;
    default:
        return m_.infog[0] >= 0 ? XKL_PARDISO_SUCCESS : XKL_PARDISO_INTERNAL_ERROR;
    }
}

template <class T, class R>
int64_t fronts<T, R>::begin()
{
    constexpr int sequential = -987654; // the communicator of the one process
    m_.par = 1;
    m_.comm_fortran = sequential;
    m_.sym = options_.kind.form == symmetry::none ? 0 : options_.kind.positive_definite ? 1 : 2;
    const int64_t error = run(-1);
    begun_ = error == XKL_PARDISO_SUCCESS;
    for (int i = 0; i < 4; ++i)
        m_.icntl[i] = i == 3 ? 0 : -1; // no messages
    return error;
}

template <class T, class R>
void fronts<T, R>::set_places(const pattern &a)
{
    const int64_t all = a.elements() * parts * parts;
    row_.clear();
    column_.clear();
    row_.reserve(all);
    column_.reserve(all);
    const auto add = [this](int64_t row, int64_t column) {
        row_.push_back(static_cast<MUMPS_INT>(row + 1));
        column_.push_back(static_cast<MUMPS_INT>(column + 1));
    };
    for (int64_t row = 0; row < a.n; ++row)
        for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k) {
            const int64_t column = a.column[k];
            for (int64_t i = 0; i < parts; ++i)
                for (int64_t j = 0; j < parts; ++j)
                    if (row != column || i == j)
                        add(row * parts + i, column * parts + j);
        }
    m_.n = static_cast<MUMPS_INT>(a.n * parts);
    m_.nnz = static_cast<MUMPS_INT8>(row_.size());
    m_.irn = row_.data();
    m_.jcn = column_.data();
}

template <class T, class R>
void fronts<T, R>::set_schur(const std::vector<int64_t> &order)
{
    position_.resize(order.size() * parts);
    for (size_t k = 0; k < order.size(); ++k)
        for (int64_t i = 0; i < parts; ++i)
            position_[order[k] * parts + i] = static_cast<MUMPS_INT>(k * parts + i + 1);
    m_.perm_in = position_.data();
    if (options_.schur.empty())
        return;
    schur_list_.clear();
    for (const int64_t unknown : options_.schur)
        for (int64_t i = 0; i < parts; ++i)
            schur_list_.push_back(static_cast<MUMPS_INT>(unknown * parts + i + 1));
    m_.icntl[18] = 1; // by rows, in one piece
    m_.size_schur = static_cast<MUMPS_INT>(schur_list_.size());
    m_.listvar_schur = schur_list_.data();
}

// Where the values are to be weighed, the library orders itself: rows are matched to columns first.
template <class T, class R>
void fronts<T, R>::set_order(bool with_values)
{
    constexpr int minimum_degree = 0, given = 1, minimum_fill = 2,
                  nested_dissection = 4; // which is not made for tiny graphs
    constexpr int large = 1000;
    const bool weighs =
        options_.own_order && options_.schur.empty() && options_.kind.form == symmetry::none;
    const bool own = weighs || (options_.ordering != own_ordering::none && options_.schur.empty());
    m_.icntl[6] = !own                                              ? given
                  : options_.ordering == own_ordering::minimum_fill ? minimum_fill
                  : m_.n > large                                    ? nested_dissection
                                                                    : minimum_degree;
    m_.icntl[5] = !weighs ? 0 : with_values ? 7 : 1;
    m_.icntl[11] = 1; // no compression, which reads outside its arrays where diagonal elements are missing
    m_.icntl[7] = options_.scaling ? 77 : 0;
    m_.icntl[32] = 1; // the determinant
    m_.icntl[23] = 1; // tells rows without a pivot instead of giving up
}

template <class T, class R>
void fronts<T, R>::set_values(const pattern &a, const T *values)
{
    if constexpr (!doubled) {
        m_.a = reinterpret_cast<decltype(m_.a)>(const_cast<T *>(values)); // it only reads them
        return;
    } else {
        values_.clear();
        values_.reserve(row_.size());
        for (int64_t row = 0; row < a.n; ++row)
            for (int64_t k = a.start[row]; k < a.start[row + 1]; ++k) {
                const R re = values[k].real(), im = values[k].imag();
                if (a.column[k] == row)
                    values_.insert(values_.end(), {re, re});
                else
                    values_.insert(values_.end(), {re, -im, im, re});
            }
        m_.a = values_.data();
    }
}

template <class T, class R>
int64_t fronts<T, R>::analyse(const pattern &a, const T *values, const std::vector<int64_t> &order)
{
    if (a.n * parts > std::numeric_limits<MUMPS_INT>::max())
        return XKL_PARDISO_INTEGER_OVERFLOW;
    if (const int64_t error = begin())
        return error;
    set_places(a);
    set_schur(order);
    set_order(values != nullptr);
    if (values)
        set_values(a, values);
    const int64_t error = run(1);
    const auto many = [](int64_t count) { return count < 0 ? -count * 1'000'000 : count; };
    this->facts.nonzeros = many(m_.infog[19]);
    this->facts.elements_of_memory = this->facts.nonzeros * 3 / 2;
    this->facts.operations = m_.rinfog[0];
    return error;
}

template <class T, class R>
int64_t fronts<T, R>::factor(const pattern &a, const T *values)
{
    set_values(a, values);
    schur_.resize(schur_list_.size() * schur_list_.size());
    m_.schur = reinterpret_cast<decltype(m_.schur)>(schur_.data());
    int64_t error = XKL_PARDISO_SUCCESS;
    constexpr int too_small = -9, integers_too_small = -8;
    for (int more = 20; more <= 10'000; more *= 3) { // percent above the estimate, for pivots that wait
        m_.icntl[13] = more;
        error = run(2);
        if (m_.infog[0] != too_small && m_.infog[0] != integers_too_small)
            break;
        error = XKL_PARDISO_OUT_OF_MEMORY;
    }
    if (error != XKL_PARDISO_SUCCESS)
        return error;
    take_complement();
    return judge();
}

// Of a symmetric complement only the half below the diagonal is there; a Hermitian one comes in blocks.
template <class T, class R>
void fronts<T, R>::take_complement()
{
    const size_t size = schur_list_.size(), unknowns = options_.schur.size();
    if (options_.kind.form != symmetry::none)
        for (size_t i = 0; i < size; ++i)
            for (size_t j = 0; j < i; ++j)
                schur_[j * size + i] = schur_[i * size + j];
    complement_.resize(unknowns * unknowns);
    for (size_t i = 0; i < unknowns; ++i)
        for (size_t j = 0; j < unknowns; ++j) {
            const R *first = &schur_[i * parts * size + j * parts];
            if constexpr (doubled)
                complement_[i * unknowns + j] = {first[0], -first[1]};
            else
                complement_[i * unknowns + j] = *first;
        }
}

template <class T, class R>
int64_t fronts<T, R>::judge()
{
    auto &facts = this->facts;
    const auto many = [](int64_t count) { return count < 0 ? -count * 1'000'000 : count; };
    facts.nonzeros = many(m_.infog[8]);
    facts.elements_of_memory = facts.nonzeros * 3 / 2;
    facts.operations = m_.rinfog[2];
    facts.bad_row = -1;
    facts.positive = facts.negative = -1;
    if (m_.infog[27] > 0) {
        facts.bad_row = m_.pivnul_list ? (m_.pivnul_list[0] - 1) / parts : -1;
        return XKL_PARDISO_ZERO_PIVOT;
    }
    facts.begin_determinant(1);
    facts.multiply_determinant({m_.rinfog[11], m_.rinfog[12]});
    facts.exponent += m_.infog[33];
    const bool real_eigenvalues = doubled || !options_.kind.is_complex;
    if (options_.kind.form == symmetry::none || !real_eigenvalues)
        return XKL_PARDISO_SUCCESS;
    facts.negative = m_.infog[11] / parts;
    facts.positive = (m_.n - m_.size_schur) / parts - facts.negative;
    if (doubled)
        halve_determinant();
    return options_.kind.positive_definite && facts.negative > 0 ? XKL_PARDISO_ZERO_PIVOT
                                                                 : XKL_PARDISO_SUCCESS;
}

// The doubled matrix has the square of a Hermitian one's.
template <class T, class R>
void fronts<T, R>::halve_determinant()
{
    auto &facts = this->facts;
    const int64_t odd = facts.exponent & 1;
    facts.determinant =
        std::sqrt(std::abs(facts.determinant) * (odd ? 2 : 1)) * (facts.negative % 2 ? -1 : 1);
    facts.exponent = (facts.exponent - odd) / 2;
}

// step: 0 solves, 1 takes the right-hand sides to those of the Schur complement, 2 completes from its
// solutions.
template <class T, class R>
int64_t fronts<T, R>::solve_step(bool transposed, T *x, int64_t nrhs, int step, T *reduced)
{
    m_.icntl[8] = transposed && !doubled ? 0 : 1;
    m_.icntl[25] = step;
    m_.rhs = reinterpret_cast<decltype(m_.rhs)>(x);
    m_.nrhs = static_cast<MUMPS_INT>(nrhs);
    m_.lrhs = m_.n;
    m_.redrhs = reinterpret_cast<decltype(m_.redrhs)>(reduced);
    m_.lredrhs = m_.size_schur;
    return run(3);
}

} // namespace xkl::core::solvers
