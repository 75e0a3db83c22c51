// What the program announces, and optimize, which prepares for it.
#pragma once

#include "optimize.h"

namespace xkl::core {

namespace inspector {

inline sparse_status_t announce(sparse_matrix *a, purpose what, sparse_operation_t operation,
                                const matrix_descr &descr, int64_t expected_calls)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    action how;
    if (const auto bad = action_of(*a, operation, descr, how))
        return bad;
    if (expected_calls < 0)
        return SPARSE_STATUS_INVALID_VALUE;
    const hint said{what, operation, descr, expected_calls};
    hint *const first = a->hints, *const last = first + a->hint_count;
    hint *place = std::find_if(first, last, [&](const hint &each) {
        return each.what == what && each.operation == operation && alike(each.descr, descr);
    });
    if (place == last && a->hint_count == sparse_matrix::most_hints)
        place = std::min_element(
            first, last, [](const hint &x, const hint &y) { return x.expected_calls < y.expected_calls; });
    else if (place == last)
        ++a->hint_count;
    *place = said;
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t announce_many(sparse_matrix *a, purpose what, sparse_operation_t operation,
                                     const matrix_descr &descr, sparse_layout_t layout, int64_t size,
                                     int64_t calls)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (!is_layout(layout) || size < 0)
        return SPARSE_STATUS_INVALID_VALUE;
    return announce(a, what, operation, descr, calls);
}

} // namespace inspector

inline sparse_status_t xkl_sparse_set_mv_hint(sparse_matrix *a, sparse_operation_t operation,
                                              matrix_descr descr, int64_t calls)
{
    return inspector::announce(a, inspector::purpose::product, operation, descr, calls);
}

inline sparse_status_t xkl_sparse_set_dotmv_hint(sparse_matrix *a, sparse_operation_t operation,
                                                 matrix_descr descr, int64_t calls)
{
    return inspector::announce(a, inspector::purpose::product, operation, descr, calls);
}

inline sparse_status_t xkl_sparse_set_mm_hint(sparse_matrix *a, sparse_operation_t operation,
                                              matrix_descr descr, sparse_layout_t layout, int64_t size,
                                              int64_t calls)
{
    return inspector::announce_many(a, inspector::purpose::many_products, operation, descr, layout, size,
                                    calls);
}

inline sparse_status_t xkl_sparse_set_sv_hint(sparse_matrix *a, sparse_operation_t operation,
                                              matrix_descr descr, int64_t calls)
{
    return inspector::announce(a, inspector::purpose::solve, operation, descr, calls);
}

inline sparse_status_t xkl_sparse_set_sm_hint(sparse_matrix *a, sparse_operation_t operation,
                                              matrix_descr descr, sparse_layout_t layout, int64_t size,
                                              int64_t calls)
{
    return inspector::announce_many(a, inspector::purpose::many_solves, operation, descr, layout, size,
                                    calls);
}

inline sparse_status_t xkl_sparse_set_symgs_hint(sparse_matrix *a, sparse_operation_t operation,
                                                 matrix_descr descr, int64_t calls)
{
    return inspector::announce(a, inspector::purpose::sweep, operation, descr, calls);
}

inline sparse_status_t xkl_sparse_set_lu_smoother_hint(sparse_matrix *a, sparse_operation_t operation,
                                                       matrix_descr descr, int64_t calls)
{
    return inspector::announce(a, inspector::purpose::sweep, operation, descr, calls);
}

inline sparse_status_t xkl_sparse_set_sorv_hint(sparse_sor_type_t type, sparse_matrix *a,
                                                matrix_descr descr, int64_t calls)
{
    using namespace inspector;
    if (a && (type < SPARSE_SOR_FORWARD || type > SPARSE_SOR_SYMMETRIC))
        return SPARSE_STATUS_INVALID_VALUE;
    return announce(a, purpose::sweep, SPARSE_OPERATION_NON_TRANSPOSE, descr, calls);
}

inline sparse_status_t xkl_sparse_set_memory_hint(sparse_matrix *a, sparse_memory_usage_t policy)
{
    if (!a)
        return SPARSE_STATUS_NOT_INITIALIZED;
    if (policy != SPARSE_MEMORY_NONE && policy != SPARSE_MEMORY_AGGRESSIVE)
        return SPARSE_STATUS_INVALID_VALUE;
    a->copies_allowed = policy == SPARSE_MEMORY_AGGRESSIVE;
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_set_verbose_mode(verbose_mode_t mode)
{
    if (mode < SPARSE_VERBOSE_OFF || mode > SPARSE_VERBOSE_EXTENDED)
        return SPARSE_STATUS_INVALID_VALUE;
    inspector::told_of_plans.store(mode, std::memory_order_relaxed);
    return SPARSE_STATUS_SUCCESS;
}

inline sparse_status_t xkl_sparse_optimize(sparse_matrix *a)
{
    using namespace inspector;
    if (const auto bad = usable(a))
        return bad;
    return by_type(*a, [&]<class T>() { return optimize<T>(*a); });
}

} // namespace xkl::core
