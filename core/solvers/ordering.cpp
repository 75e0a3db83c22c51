// Orders of elimination from libraries that are good at it.
#include "solvers/ordering.h"

#include <Eigen/OrderingMethods>
#include <Eigen/SparseCore>

#include <cstdarg>
#include <cstdio>
#include <mutex>
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

// SCOTCH draws its random numbers from one generator: who else drew meanwhile would change the order.
std::mutex scotch_turn;

} // namespace

std::vector<int64_t> minimum_degree(const pattern &a)
{
    const graph edges = graph_of(a);
    permutation result;
    Eigen::AMDOrdering<int64_t>()(places_of(a.n, edges.start, edges.neighbour), result);
    return indices_of(result);
}

std::vector<int64_t> nested_dissection(const pattern &a)
{
    graph edges = graph_of(a);
    std::vector<int64_t> order(a.n);
    const std::lock_guard<std::mutex> turn(scotch_turn);
    SCOTCH_randomReset();
    owned<SCOTCH_Graph, SCOTCH_graphExit> of_matrix;
    owned<SCOTCH_Strat, SCOTCH_stratExit> strategy;
    of_matrix.made = SCOTCH_graphInit(&of_matrix.object) == 0;
    strategy.made = SCOTCH_stratInit(&strategy.object) == 0;
    const bool done = of_matrix.made && strategy.made &&
                      SCOTCH_graphBuild(&of_matrix.object, 0, a.n, edges.start.data(), nullptr, nullptr,
                                        nullptr, static_cast<SCOTCH_Num>(edges.neighbour.size()),
                                        edges.neighbour.data(), nullptr) == 0 &&
                      SCOTCH_graphOrder(&of_matrix.object, &strategy.object, nullptr, order.data(), nullptr,
                                        nullptr, nullptr) == 0;
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
