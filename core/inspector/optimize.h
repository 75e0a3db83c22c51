// How optimize chooses: one plan for each operation and description that was announced often enough for a
// plan to pay.
#pragma once

#include "changes.h"
#include "plan.h"

#include <cinttypes>
#include <cstdio>

namespace xkl::core::inspector {

// Written by xkl_sparse_set_verbose_mode, a verbose_mode_t; read by optimize. A racing optimize tells or
// does not.
inline std::atomic<int32_t> told_of_plans{SPARSE_VERBOSE_OFF};

/// Writing a plan out costs about ten products. What it replaces is some tens of percent slower where rows
/// could be read as they are, and several times slower otherwise.
constexpr int64_t calls_that_pay = 4, calls_that_pay_for_rows = 20;
/// Rows a group, on average, from which threads share a group
constexpr int64_t rows_worth_sharing = 512;

/// Places of slices over elements, up to which they are read faster than rows
constexpr double filling_that_pays = 1.15;

inline bool is_solve(purpose what)
{
    return what == purpose::solve || what == purpose::many_solves;
}

/// Whether a written copy would be read faster than the matrix itself.
inline bool plan_pays(const sparse_matrix &a, const hint &said, const action &how)
{
    if (!a.copies_allowed)
        return false;
    const bool square = a.total_rows() == a.total_cols();
    if (is_solve(said.what) && (how.of.block > 1 || !how.of.triangular() || !square))
        return false;
    const bool own_rows = a.form == storage::csr || a.form == storage::csc;
    const bool by_rows = own_rows && how.of.whole() && !how.transposed && !how.conjugated;
    const bool blocks = a.form == storage::bsr && a.block > 1 && how.of.whole() && !how.transposed;
    const bool narrower = std::max(a.total_rows(), a.total_cols()) <= INT32_MAX;
    return !blocks && (!by_rows || narrower) &&
           said.expected_calls >= (by_rows ? calls_that_pay_for_rows : calls_that_pay);
}

/// Groups the rows of a triangle by how long the chain of rows before them is.
template <class T>
bool group_rows(plan<T> &made, bool lower)
{
    const int64_t n = made.wide.rows;
    const written_rows<T> &a = made.wide;
    array<int64_t> depth, starts;
    if (!depth.make(n) || !starts.make(n + 1, 0))
        return false;
    int64_t groups = 0;
    for (int64_t step = 0; step < n; ++step) {
        const int64_t i = lower ? step : n - 1 - step;
        int64_t deepest = 0;
        for (int64_t k = a.starts[i]; k < a.starts[i + 1]; ++k)
            if (a.columns[k] != i)
                deepest = std::max(deepest, depth[a.columns[k]] + 1);
        depth[i] = deepest;
        groups = std::max(groups, deepest + 1);
        ++starts[deepest + 1];
    }
    if (groups == 0 || n / groups < rows_worth_sharing)
        return true;
    for (int64_t g = 0; g < groups; ++g)
        starts[g + 1] += starts[g];
    array<int64_t> next, order;
    if (!next.make(groups) || !order.make(n))
        return false;
    std::copy_n(starts.data(), groups, next.data());
    for (int64_t i = 0; i < n; ++i)
        order[next[depth[i]]++] = i;
    made.order = std::move(order);
    made.groups = std::move(starts);
    made.group_count = groups;
    return true;
}

/// Writes rows in slices unless they would be filled up too much.
template <class T>
sparse_status_t make_slices(const row_view<T> &a, plan<T> &made)
{
    constexpr int64_t height = slice_height<T>;
    const int64_t count = (a.rows + height - 1) / height;
    array<int64_t> starts;
    if (!starts.make(count + 1, 0))
        return SPARSE_STATUS_ALLOC_FAILED;
    int64_t elements = 0;
    for (int64_t slice = 0; slice < count; ++slice) {
        int64_t longest = 0;
        for (int64_t i = slice * height; i < std::min(a.rows, (slice + 1) * height); ++i) {
            longest = std::max(longest, a.last(i) - a.first(i));
            elements += a.last(i) - a.first(i);
        }
        starts[slice + 1] = starts[slice] + longest * height;
    }
    const int64_t places = starts[count];
    if (places == 0 || static_cast<double>(places) > filling_that_pays * static_cast<double>(elements))
        return SPARSE_STATUS_SUCCESS;
    if (!made.slice_columns.make(places) || !made.slice_values.make(places))
        return SPARSE_STATUS_ALLOC_FAILED;
    std::atomic<bool> inside{true};
    parallel_for(count, XKL_DOMAIN_SPARSE, 4. * static_cast<double>(places / count), [&](int64_t slice) {
        for (int64_t row = 0; row < height; ++row) {
            const int64_t i = slice * height + row;
            int64_t from = i < a.rows ? a.first(i) : 0;
            const int64_t end = i < a.rows ? a.last(i) : 0;
            for (int64_t k = starts[slice] + row; k < starts[slice + 1]; k += height, ++from) {
                const int64_t column = from < end ? a.column(from) : -1;
                if (from < end && (column < 0 || column >= a.cols))
                    inside.store(false, std::memory_order_relaxed);
                made.slice_columns[k] = static_cast<int32_t>(column);
                made.slice_values[k] = from < end ? a.values[from] : T(0);
            }
        }
    });
    made.slice_starts = std::move(starts);
    made.slice_count = count;
    made.slice_rows = a.rows;
    return inside.load(std::memory_order_relaxed) ? SPARSE_STATUS_SUCCESS : SPARSE_STATUS_INVALID_VALUE;
}

/// What the announcements for one operation and description ask for
struct wanted {
    bool rows = false, slices = false, groups = false;
    bool anything() const { return rows || slices; }
};

template <class T>
sparse_status_t fill_plan(const sparse_matrix &a, const wanted &parts, const action &how, plan<T> &made)
{
    written_rows<T> &rows = made.wide;
    const bool sliceable =
        parts.slices && !element<T>::is_complex && std::max(a.total_rows(), a.total_cols()) <= INT32_MAX;
    if constexpr (!element<T>::is_complex)
        if (sliceable && !parts.rows && has_stored_rows(a) && how.of.whole() && !how.transposed)
            if (const auto bad = make_slices(stored_rows<T>(a), made); bad || made.slice_count > 0)
                return bad;
    if (const auto bad = write_out(a, how, rows))
        return bad;
    if (!sort_rows(rows))
        return SPARSE_STATUS_ALLOC_FAILED;
    if (parts.groups && !group_rows(made, how.of.below != how.transposed))
        return SPARSE_STATUS_ALLOC_FAILED;
    if constexpr (!element<T>::is_complex)
        if (sliceable)
            if (const auto bad = make_slices(rows.view(), made))
                return bad;
    if (made.slice_count > 0 && !parts.rows)
        rows = written_rows<T>();
    if (rows.cols > INT32_MAX || !made.has_rows())
        return SPARSE_STATUS_SUCCESS;
    if (!made.narrow.make(rows.places()))
        return SPARSE_STATUS_ALLOC_FAILED;
    std::copy_n(rows.columns.data(), rows.places(), made.narrow.data());
    rows.columns = array<int64_t>();
    return SPARSE_STATUS_SUCCESS;
}

/// One line about a plan, or about the matrix that is read as it is
template <class T>
void tell_of_plan(const sparse_matrix &a, const hint &said, const plan<T> *made, double seconds)
{
    const int32_t mode = told_of_plans.load(std::memory_order_relaxed);
    if (mode == SPARSE_VERBOSE_OFF)
        return;
    const char *const form = !made                   ? "as stored"
                             : made->slice_count > 0 ? "slices of rows"
                             : made->narrow.data()   ? "rows with 32-bit columns"
                                                     : "rows with 64-bit columns";
    char line[256], why[96] = "";
    if (mode == SPARSE_VERBOSE_EXTENDED)
        std::snprintf(why, sizeof why, ", %" PRId64 " calls expected, copies %s, %" PRId64 " groups",
                      said.expected_calls, a.copies_allowed ? "allowed" : "not allowed",
                      made ? made->group_count : 0);
    std::snprintf(line, sizeof line,
                  "sparse optimize: %" PRId64 " x %" PRId64 ", %" PRId64
                  " places, operation %d, kind %d: %s%s",
                  a.rows, a.cols, a.places(), static_cast<int>(said.operation),
                  static_cast<int>(said.descr.type), form, why);
    xkl_serv_print_verbose_info(seconds, 2, line); // 2: not the Fourier transforms
}

/// What all announcements that are like the given one, itself included, make worth its while
inline wanted asked_for(const sparse_matrix &a, const hint *hints, int count, const hint &like,
                        const action &how)
{
    wanted parts;
    for (const hint *each = hints; each < hints + count; ++each)
        if (each->operation == like.operation && alike(each->descr, like.descr) &&
            plan_pays(a, *each, how)) {
            parts.slices |= each->what == purpose::product;
            parts.rows |= each->what != purpose::product;
            parts.groups |= is_solve(each->what);
        }
    return parts;
}

/// Plans for what was announced, or for products where nothing was. The old ones stay where one fails.
template <class T>
sparse_status_t optimize(sparse_matrix &a)
{
    const hint usual{purpose::product, SPARSE_OPERATION_NON_TRANSPOSE, general_descr,
                     calls_that_pay_for_rows};
    const hint *const hints = a.hint_count > 0 ? a.hints : &usual;
    const int count = std::max(a.hint_count, 1);
    prepared *made = nullptr;
    if (a.in_place)
        if (const auto bad = sort<T>(a))
            return bad;
    for (const hint *said = hints; said < hints + count; ++said) {
        const auto same = [&](const hint &each) {
            return each.operation == said->operation && alike(each.descr, said->descr);
        };
        if (std::any_of(hints, said, same))
            continue;
        const double start = xkl_serv_dsecnd();
        action how;
        sparse_status_t bad = action_of(a, said->operation, said->descr, how);
        const wanted parts = bad ? wanted() : asked_for(a, hints, count, *said, how);
        plan<T> *one = nullptr;
        if (parts.anything()) {
            one = make<plan<T>>(said->operation, said->descr);
            bad = one ? fill_plan(a, parts, how, *one) : SPARSE_STATUS_ALLOC_FAILED;
            if (one) {
                one->next = made;
                made = one;
            }
        }
        if (bad) {
            release_all(made);
            return bad;
        }
        tell_of_plan<T>(a, *said, one, xkl_serv_dsecnd() - start);
    }
    release_all(a.plans);
    a.plans = made;
    return SPARSE_STATUS_SUCCESS;
}

} // namespace xkl::core::inspector
