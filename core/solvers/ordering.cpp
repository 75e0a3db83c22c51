// Orders of elimination from libraries that are good at it.
#include "solvers/ordering.h"

#include <Eigen/OrderingMethods>
#include <Eigen/SparseCore>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <scotch.h>

namespace xkl::core::solvers {
namespace {

using places = Eigen::SparseMatrix<float, Eigen::ColMajor, int64_t>;
using permutation = Eigen::PermutationMatrix<Eigen::Dynamic, Eigen::Dynamic, int64_t>;

places places_of(int64_t n, const std::vector<int64_t> &start, const std::vector<int64_t> &index)
{
    places result(n, n);
    result.resizeNonZeros(static_cast<int64_t>(index.size()));
    std::copy(start.begin(), start.end(), result.outerIndexPtr());
    std::copy(index.begin(), index.end(), result.innerIndexPtr());
    std::fill_n(result.valuePtr(), index.size(), 1.0f);
    return result;
}

std::vector<int64_t> indices_of(const permutation &from)
{
    return {from.indices().data(), from.indices().data() + from.size()};
}

static_assert(sizeof(SCOTCH_Num) == sizeof(int64_t));

// Ends with its SCOTCH_ object.
template <class Object, auto Exit>
struct owned {
    Object object;
    bool made = false;
    ~owned()
    {
        if (made)
            Exit(&object);
    }
};

} // namespace

std::vector<int64_t> minimum_degree(const pattern &a)
{
    // A row without its diagonal element would be put off as if it were full.
    const graph edges = graph_of(a);
    std::vector<int64_t> start{0}, index;
    index.reserve(edges.neighbour.size() + a.n);
    for (int64_t row = 0; row < a.n; ++row) {
        const auto first = edges.neighbour.begin() + edges.start[row];
        const auto last = edges.neighbour.begin() + edges.start[row + 1];
        const auto above = std::lower_bound(first, last, row);
        index.insert(index.end(), first, above);
        index.push_back(row);
        index.insert(index.end(), above, last);
        start.push_back(static_cast<int64_t>(index.size()));
    }
    permutation result;
    Eigen::AMDOrdering<int64_t>()(places_of(a.n, start, index), result);
    return indices_of(result);
}

std::vector<int64_t> nested_dissection(const pattern &a)
{
    graph edges = graph_of(a);
    std::vector<int64_t> order(a.n);
    owned<SCOTCH_Context, SCOTCH_contextExit> context;
    owned<SCOTCH_Graph, SCOTCH_graphExit> of_matrix, in_context;
    owned<SCOTCH_Strat, SCOTCH_stratExit> strategy;
    context.made = SCOTCH_contextInit(&context.object) == 0;
    of_matrix.made = SCOTCH_graphInit(&of_matrix.object) == 0;
    in_context.made = SCOTCH_graphInit(&in_context.object) == 0;
    strategy.made = SCOTCH_stratInit(&strategy.object) == 0;
    if (!context.made || !of_matrix.made || !in_context.made || !strategy.made)
        return {};
    // Its quick strategy: hardly more elements in the factors, for half the time.
    constexpr double imbalance = 0.2;
    // One thread and random numbers of its own: the order is the same every time.
    SCOTCH_contextOptionSetNum(&context.object, SCOTCH_OPTIONNUMDETERMINISTIC, 1);
    SCOTCH_contextOptionSetNum(&context.object, SCOTCH_OPTIONNUMRANDOMFIXEDSEED, 1);
    const bool done =
        SCOTCH_contextRandomClone(&context.object) == 0 &&
        SCOTCH_contextThreadSpawn(&context.object, 1, nullptr) == 0 &&
        SCOTCH_graphBuild(&of_matrix.object, 0, a.n, edges.start.data(), nullptr, nullptr, nullptr,
                          static_cast<SCOTCH_Num>(edges.neighbour.size()), edges.neighbour.data(),
                          nullptr) == 0 &&
        SCOTCH_contextBindGraph(&context.object, &of_matrix.object, &in_context.object) == 0 &&
        (SCOTCH_contextRandomReset(&context.object), true) &&
        SCOTCH_stratGraphOrderBuild(&strategy.object, SCOTCH_STRATSPEED, 0, imbalance) == 0 &&
        SCOTCH_graphOrder(&in_context.object, &strategy.object, nullptr, order.data(), nullptr, nullptr,
                          nullptr) == 0;
    return done ? order : std::vector<int64_t>{};
}

std::vector<int64_t> column_degree(const pattern &a)
{
    // The rows as columns of the transposed matrix, turned round.
    const places by_columns = places_of(a.n, a.start, a.column).transpose();
    permutation position;
    Eigen::COLAMDOrdering<int64_t>()(by_columns, position);
    return inverse(indices_of(position));
}

std::vector<int64_t> as_they_stand(int64_t n)
{
    std::vector<int64_t> order(n);
    std::iota(order.begin(), order.end(), int64_t{0});
    return order;
}

std::vector<int64_t> inverse(const std::vector<int64_t> &order)
{
    std::vector<int64_t> position(order.size());
    for (size_t i = 0; i < order.size(); ++i)
        position[order[i]] = static_cast<int64_t>(i);
    return position;
}

bool is_permutation(const std::vector<int64_t> &order)
{
    std::vector<bool> met(order.size(), false);
    for (const int64_t i : order) {
        if (i < 0 || i >= static_cast<int64_t>(order.size()) || met[i])
            return false;
        met[i] = true;
    }
    return true;
}

} // namespace xkl::core::solvers

// SCOTCH's reports of its errors: the routine that failed says so, the caller gets an error code.
extern "C" {
void SCOTCH_errorProg(const char *) {}
void SCOTCH_errorPrint(const char *, ...) {}
void SCOTCH_errorPrintW(const char *, ...) {}
}
