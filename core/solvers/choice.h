// Which engine takes a matrix, and in which order of elimination: by its order, its kind, and what iparm
// asks for.
#pragma once

#include "solvers/ordering.h"
#include "solvers/system.h"

namespace xkl::core::solvers {

// Up to this order the systems with the least overhead win, and run on many threads at once.
inline constexpr int64_t small_order = 1000;

enum class way { fixed, rows, fronts };

// A look at a matrix whose places are known.
struct choice {
    const analysed_form &form;
    const pattern &places;
    const std::vector<int64_t> &schur; // the unknowns of its Schur complement

    way engine() const;
    own_ordering ordering_of_fronts() const;
    // Reads or tells the caller's perm where iparm(5) says so.
    int64_t find_order(const request &call, std::vector<int64_t> &order) const;
    // For fixed factors beside those of the engine in force, whose order is given.
    std::vector<int64_t> order_of_fixed(const std::vector<int64_t> &order) const;

  private:
    bool unsymmetric() const { return form.kind.form == symmetry::none; }
};

} // namespace xkl::core::solvers
