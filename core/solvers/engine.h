// What factorizes and solves: the three engines behind the direct solvers.
//
// | engine | header         | takes       | is used for                                                |
// |--------|----------------|-------------|------------------------------------------------------------|
// | fixed  | fixed_pivots.h | all kinds   | small positive definite systems; pivots without exchanges  |
// |        |                |             | on request; solves by parts, diagonals                     |
// | rows   | row_pivots.h   | unsymmetric | small unsymmetric systems (Eigen)                          |
// | fronts | mumps/fronts.h | all kinds   | all else, where its 32-bit orders suffice (MUMPS)          |
//
// The first two run in as many threads as call; the third holds a lock.
#pragma once

#include "solvers/matrix.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace xkl::core::solvers {

// An order that the engine finds itself: of minimum fill, which is found quickly, or by nested dissection,
// which makes large factors cheaper.
enum class own_ordering { none, minimum_fill, dissection };

struct engine_options {
    matrix_kind kind;
    double pivot_threshold = 0; // relative to the largest element, where small pivots are changed
    bool change_pivots = true;
    bool scaling = false;
    bool own_order = false; // the engine had better choose the order itself, by the values
    own_ordering ordering = own_ordering::none; // none: the one that is given
    std::vector<int64_t> schur = {};            // the unknowns of the Schur complement, ascending
};

// What is known after a factorization.
struct factor_facts {
    int64_t nonzeros = 0; // of the factors
    int64_t elements_of_memory = 0;
    double operations = 0;
    int64_t positive = -1, negative = -1; // eigenvalues, where known
    int64_t changed_pivots = 0;
    int64_t bad_row = -1;                 // where it failed, from 0
    std::complex<double> determinant = 0; // times 2 to the exponent
    int64_t exponent = 0;

    // The determinant is a product of pivots, which would soon be too large or too small.
    void begin_determinant(double sign)
    {
        determinant = sign;
        exponent = 0;
    }
    void multiply_determinant(std::complex<double> pivot)
    {
        determinant *= pivot;
        const double size = std::max(std::abs(determinant.real()), std::abs(determinant.imag()));
        if (size == 0 || !std::isfinite(size))
            return;
        const int by = std::ilogb(size);
        determinant = {std::scalbn(determinant.real(), -by), std::scalbn(determinant.imag(), -by)};
        exponent += by;
    }
};

enum class solve_part { all, lower, diagonal, upper };

// Errors are XKL_PARDISO_ values; memory that runs out may also be thrown as std::bad_alloc.
template <class T>
class engine {
  public:
    virtual ~engine() = default;

    // values may be null: they are not known yet.
    virtual int64_t analyse(const pattern &a, const T *values, const std::vector<int64_t> &order) = 0;
    virtual int64_t factor(const pattern &a, const T *values) = 0;
    // Overwrites nrhs right-hand sides, one behind the other, by solutions with A or A^T.
    virtual int64_t solve(bool transposed, T *x, int64_t nrhs) = 0;

    // What not every engine does.
    virtual int64_t solve_by_parts(solve_part, bool, T *, int64_t) { return XKL_PARDISO_NOT_SUPPORTED; }
    // The diagonal of D, or of U, by rows of the matrix.
    virtual bool diagonal(T *) { return false; }
    // The dense Schur complement by rows, and solutions of systems with it as the last block.
    virtual const T *schur() { return nullptr; }
    virtual int64_t condense(T *, T *, int64_t) { return XKL_PARDISO_NOT_SUPPORTED; }
    virtual int64_t expand(T *, T *, int64_t) { return XKL_PARDISO_NOT_SUPPORTED; }

    factor_facts facts;
};

template <class T>
std::unique_ptr<engine<T>> make_fixed_engine(const engine_options &options);
template <class T>
std::unique_ptr<engine<T>> make_row_engine(const engine_options &options);
template <class T>
std::unique_ptr<engine<T>> make_front_engine(const engine_options &options);

} // namespace xkl::core::solvers
