// Compressed rows to diagonals, with a remainder in compressed rows, and back.
#pragma once

#include "blas/report.h"
#include "spblas/conversion.h"

#include <numeric>

namespace xkl::core {
namespace spblas {

inline constexpr int64_t no_memory_for_diagonals = -100;

/// The wanted diagonals with most elements, by ascending distance from the main one. `counts` and `order`
/// have room for all 2n - 1. Tells how many there are.
template <class T>
int64_t fullest_diagonals(const compressed<T> &a, int64_t wanted, int64_t *counts, int64_t *order,
                          int64_t *distance)
{
    const int64_t n = a.count, all = 2 * n - 1;
    std::fill(counts, counts + all, 0);
    for (int64_t i = 0; i < n; ++i)
        a.visit(i, [&](int64_t j, T) { ++counts[j - i + n - 1]; });
    std::iota(order, order + all, 0);
    int64_t *const end = std::remove_if(order, order + all, [&](int64_t d) { return counts[d] == 0; });
    const int64_t found = std::min<int64_t>(end - order, std::max<int64_t>(wanted, 0));
    std::sort(order, end,
              [&](int64_t d, int64_t e) { return counts[d] != counts[e] ? counts[d] > counts[e] : d < e; });
    std::sort(order, order + found);
    std::transform(order, order + found, distance, [&](int64_t d) { return d - (n - 1); });
    return found;
}

template <class T>
struct diagonal_arrays {
    T *values;
    int64_t lead, *distance, *count;
};

template <class T>
int64_t rows_to_diagonals(const job_list &job, const compressed<T> &a, const diagonal_arrays<T> &to,
                          T *rest, int64_t *rest_across, int64_t *rest_starts)
{
    const int64_t n = a.count, all = std::max<int64_t>(2 * n - 1, 0);
    const bool choose = job(6) >= 10, with_rest = job(6) % 10 == 1;
    if (job(6) != 0 && job(6) != 1 && job(6) != 10 && job(6) != 11)
        return bad_choice(6);
    if (to.lead < n)
        return no_room;
    const buffer<int64_t> slot(all), order(choose ? all : 0);
    if (!slot.enough() || !order.enough()) {
        report("XKL_?CSRDIA", letter_of<T>, no_memory);
        return no_memory_for_diagonals;
    }
    if (choose)
        *to.count = n == 0 ? 0 : fullest_diagonals(a, *to.count, slot.data(), order.data(), to.distance);
    std::fill(slot.data(), slot.data() + all, -1);
    for (int64_t d = 0; d < *to.count; ++d) {
        std::fill(to.values + d * to.lead, to.values + d * to.lead + n, T(0));
        if (std::abs(to.distance[d]) < n)
            slot[to.distance[d] + n - 1] = d;
    }
    int64_t left = 0;
    for (int64_t i = 0; i < n; ++i) {
        if (with_rest)
            rest_starts[i] = left + a.base;
        a.visit(i, [&](int64_t j, T v) {
            const int64_t d = slot[j - i + n - 1];
            if (d >= 0) {
                to.values[i + d * to.lead] += v;
            } else if (with_rest) {
                rest[left] = v;
                rest_across[left++] = j + a.base;
            }
        });
    }
    if (with_rest)
        rest_starts[n] = left + a.base;
    return converted;
}

/// Columns come out ascending, whatever the order of the diagonals is.
template <class T>
int64_t diagonals_to_rows(const job_list &job, int64_t n, const diagonal_arrays<T> &from, T *acsr,
                          int64_t *ja, int64_t *ia)
{
    if (from.lead < n)
        return no_room;
    int64_t next = 0;
    for (int64_t i = 0; i < n; ++i) {
        const int64_t start = next;
        ia[i] = start + job(2);
        for (int64_t d = 0; d < *from.count; ++d) {
            const int64_t j = i + from.distance[d];
            const bool inside = j >= 0 && j < n;
            if (!inside || (job(6) == 0 && from.values[i + d * from.lead] == T(0)))
                continue;
            ja[next] = j + job(2);
            acsr[next++] = from.values[i + d * from.lead];
        }
        line_sorter<T>(next - start, ja + start, acsr + start);
    }
    ia[n] = next + job(2);
    return converted;
}

} // namespace spblas

template <class T>
int64_t xkl_csrdia(const int64_t *job, const int64_t *n, T *acsr, int64_t *ja, int64_t *ia, T *adia,
                   int64_t *ndiag, int64_t *distance, int64_t *idiag, T *acsr_rem, int64_t *ja_rem,
                   int64_t *ia_rem, int64_t *info)
{
    const spblas::job_list is{job};
    const spblas::diagonal_arrays<T> diagonals = {adia, *ndiag, distance, idiag};
    *info = is.backwards()
                ? spblas::diagonals_to_rows(is, *n, diagonals, acsr, ja, ia)
                : spblas::rows_to_diagonals(is, spblas::rows_with_starts<T>(*n, is(2), acsr, ja, ia),
                                            diagonals, acsr_rem, ja_rem, ia_rem);
    return 0;
}

} // namespace xkl::core
