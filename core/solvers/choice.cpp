// The choice of engine and order.
#include "solvers/choice.h"

#include <algorithm>
#include <limits>

namespace xkl::core::solvers {

way choice::engine() const
{
    constexpr int64_t largest = std::numeric_limits<int32_t>::max() / 2;
    const bool small = places.n <= small_order || places.n > largest;
    if (!schur.empty())
        return way::fronts;
    if (form.iparm[keep_diagonal] == 1)
        return way::fixed;
    // Many programs leave iparm(21) at 0 by chance: above this order they would wait for its sake.
    if (small && (form.kind.positive_definite || (form.iparm[pivots] == 0 && !unsymmetric())))
        return way::fixed;
    if (unsymmetric() && small)
        return way::rows;
    return places.n > largest ? way::fixed : way::fronts;
}

// Up to this order the dissection that fronts brings along is the quicker one, and has the better factors.
own_ordering choice::ordering_of_fronts() const
{
    constexpr int64_t largest_dissected = 200'000;
    if (engine() != way::fronts || !schur.empty() || form.kind.form == symmetry::conjugated ||
        form.iparm[user_order] != 0 || places.n <= small_order || form.iparm[ordering] == 3)
        return own_ordering::none;
    if (form.iparm[ordering] == 0)
        return own_ordering::minimum_fill;
    return places.n <= largest_dissected ? own_ordering::dissection : own_ordering::none;
}

int64_t choice::find_order(const request &call, std::vector<int64_t> &order) const
{
    const int64_t n = places.n;
    order.clear();
    if (form.iparm[user_order] == 1) {
        order.resize(n);
        for (int64_t i = 0; i < n; ++i)
            order[i] = call.perm[i] - form.base;
        return is_permutation(order) ? XKL_PARDISO_SUCCESS : XKL_PARDISO_INPUT_ERROR;
    }
    if (engine() == way::rows)
        order = column_degree(places);
    else if (ordering_of_fronts() != own_ordering::none)
        order = as_they_stand(n); // fronts find their own
    else if (form.iparm[ordering] != 0 && n > small_order)
        order = nested_dissection(places);
    if (order.empty())
        order = minimum_degree(places);
    if (!is_permutation(order))
        return XKL_PARDISO_REORDERING_ERROR;
    if (form.iparm[user_order] == 2)
        for (int64_t i = 0; i < n; ++i)
            call.perm[i] = order[i] + form.base;
    std::stable_partition(order.begin(), order.end(), [this](int64_t unknown) {
        return !std::binary_search(schur.begin(), schur.end(), unknown);
    });
    return XKL_PARDISO_SUCCESS;
}

std::vector<int64_t> choice::order_of_fixed(const std::vector<int64_t> &order) const
{
    return ordering_of_fronts() == own_ordering::none ? order : minimum_degree(places);
}

} // namespace xkl::core::solvers
