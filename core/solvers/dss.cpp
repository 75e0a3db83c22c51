// The states of a solution by steps, and what each routine makes of them.
#include "solvers/dss.h"

#include "service/service_entries.h"
#include "solvers/dss_options.h"
#include "solvers/dss_statistics.h"
#include "solvers/handle.h"

#include <chrono>

namespace xkl::core {
namespace solvers {

registry<dss_solution> &dss_solutions()
{
    static auto *all = new registry<dss_solution>;
    return *all;
}

namespace {

int64_t status_of(int64_t error)
{
    switch (error) {
    case XKL_PARDISO_SUCCESS:
        return XKL_DSS_SUCCESS;
    case XKL_PARDISO_OUT_OF_MEMORY:
        return XKL_DSS_OUT_OF_MEMORY;
    case XKL_PARDISO_REORDERING_ERROR:
        return XKL_DSS_REORDER_ERR;
    case XKL_PARDISO_ZERO_PIVOT:
        return XKL_DSS_ZERO_PIVOT;
    case XKL_PARDISO_PREORDERING_FAILED:
        return XKL_DSS_PREORDER_ERR;
    case XKL_PARDISO_SINGULAR_DIAGONAL:
        return XKL_DSS_DIAG_ERR;
    case XKL_PARDISO_INTEGER_OVERFLOW:
        return XKL_DSS_I32BIT_ERR;
    default:
        return XKL_DSS_FAILURE;
    }
}

int64_t memory_status(int64_t error)
{
    return error == XKL_PARDISO_OUT_OF_MEMORY ? XKL_DSS_OUT_OF_MEMORY : error;
}

// Runs a step on the solution of a handle; work gets the options.
template <class Work>
int64_t on_solution(void **handle, const dss_options &options, const Work &work)
{
    return memory_status(within_memory([&]() -> int64_t {
        const auto found = handle ? dss_solutions().find(*handle) : nullptr;
        if (!found)
            return XKL_DSS_STATE_ERR;
        if (options.error != XKL_DSS_SUCCESS)
            return options.error;
        const turn_at turn(found->calls);
        if (!turn.taken())
            return XKL_DSS_STATE_ERR;
        const int64_t status = work(*found);
        constexpr int errors = 5;
        if (status != XKL_DSS_SUCCESS && options.message_level <= errors)
            xkl_serv_printf_s("XKL: direct solution by steps: status %lld\n",
                              static_cast<long long>(status));
        return status;
    }));
}

class stop_watch {
  public:
    explicit stop_watch(double &seconds) : seconds_(seconds), begin_(std::chrono::steady_clock::now()) {}
    ~stop_watch()
    {
        seconds_ = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    }

  private:
    double &seconds_;
    std::chrono::steady_clock::time_point begin_;
};

int64_t check_rows(const dss_solution &s, const int64_t *rowindex, const int64_t *columns, int64_t n,
                   int64_t elements)
{
    if (n < 1 || rowindex[0] != s.base)
        return XKL_DSS_ROW_ERR;
    for (int64_t row = 0; row < n; ++row)
        if (rowindex[row + 1] < rowindex[row])
            return XKL_DSS_ROW_ERR;
    if (elements != rowindex[n] - s.base)
        return elements < rowindex[n] - s.base ? XKL_DSS_TOO_FEW_VALUES : XKL_DSS_TOO_MANY_VALUES;
    const input_fault fault = find_fault({n, rowindex, columns, s.base},
                                         s.triangle ? XKL_UPPER_TRIANGULAR : XKL_GENERAL_STRUCTURE, true);
    return fault.status == XKL_SPARSE_CHECKER_SUCCESS ? XKL_DSS_SUCCESS : XKL_DSS_COL_ERR;
}

// The mtype of a symmetric matrix follows from what is known of the values.
int64_t mtype_of(const dss_solution &s, int64_t values)
{
    if (!s.triangle)
        return s.symmetric_places
                   ? (s.is_complex ? XKL_PARDISO_COMPLEX_STRUCTURALLY_SYMMETRIC
                                   : XKL_PARDISO_REAL_STRUCTURALLY_SYMMETRIC)
                   : (s.is_complex ? XKL_PARDISO_COMPLEX_UNSYMMETRIC : XKL_PARDISO_REAL_UNSYMMETRIC);
    if (!s.is_complex)
        return values == XKL_DSS_INDEFINITE || values == XKL_DSS_HERMITIAN_INDEFINITE
                   ? XKL_PARDISO_REAL_INDEFINITE
                   : XKL_PARDISO_REAL_POSITIVE_DEFINITE;
    return values == XKL_DSS_HERMITIAN_POSITIVE_DEFINITE ? XKL_PARDISO_HERMITIAN_POSITIVE_DEFINITE
           : values == XKL_DSS_HERMITIAN_INDEFINITE      ? XKL_PARDISO_HERMITIAN_INDEFINITE
                                                         : XKL_PARDISO_COMPLEX_SYMMETRIC;
}

request request_of(dss_solution &s, int64_t mtype)
{
    const matrix_kind kind = *kind_of(mtype);
    set_defaults(kind, s.iparm);
    s.iparm[zero_based] = s.base == 0;
    s.iparm[mflops] = -1;
    return {.mtype = mtype,
            .kind = kind,
            .single = s.single,
            .n = s.n,
            .ia = s.rows.data(),
            .ja = s.columns.data(),
            .perm = s.order.data(),
            .iparm = s.iparm};
}

int64_t analyse(dss_solution &s, int64_t mtype, const request &call)
{
    if (!s.system || s.mtype != mtype)
        s.system = make_system(call.kind, s.single);
    s.mtype = mtype;
    const int64_t error = s.system->analyse(call);
    s.peak_memory = s.iparm[analysis_peak];
    return error;
}

bool fits(const dss_solution &s, dss_elements form)
{
    return form.is_complex == s.is_complex && (form.bytes == 0 || form.bytes == (s.single ? 4 : 8));
}

} // namespace

int64_t dss_factor(void **handle, const int64_t *opt, const void *values, dss_elements form)
{
    const dss_options options = take_apart(opt, 0, XKL_DSS_POSITIVE_DEFINITE, XKL_DSS_HERMITIAN_INDEFINITE);
    return on_solution(handle, options, [&](dss_solution &s) -> int64_t {
        if (s.state < dss_solution::ordered)
            return XKL_DSS_STATE_ERR;
        if (!fits(s, form))
            return XKL_DSS_OPTION_CONFLICT;
        if (!values)
            return XKL_DSS_VALUES_ERR;
        const stop_watch watch(s.factor_seconds);
        s.state = dss_solution::ordered;
        const int64_t mtype = mtype_of(s, options.kind);
        request call = request_of(s, mtype);
        call.a = values;
        s.iparm[user_order] = 1;
        if (s.mtype != mtype || !s.system->analysed)
            if (const int64_t error = analyse(s, mtype, call))
                return status_of(error);
        const int64_t error = s.system->factor(call, {});
        s.factor_memory = s.iparm[solvers::factor_memory];
        if (error == XKL_PARDISO_INPUT_ERROR)
            return XKL_DSS_VALUES_ERR;
        if (error != XKL_PARDISO_SUCCESS)
            return status_of(error);
        s.state = dss_solution::factored;
        return XKL_DSS_SUCCESS;
    });
}

int64_t dss_solve(void **handle, const int64_t *opt, const void *rhs, const int64_t *nrhs, void *solution,
                  dss_elements form)
{
    constexpr uint32_t operations = XKL_DSS_TRANSPOSE_SOLVE | XKL_DSS_CONJUGATE_SOLVE;
    constexpr uint32_t parts = XKL_DSS_BACKWARD_SOLVE; // both bits of the three parts
    constexpr uint32_t refinements = XKL_DSS_REFINEMENT_OFF | XKL_DSS_REFINEMENT_ON;
    const dss_options options = take_apart(opt, operations | parts | refinements, 0, 0);
    return on_solution(handle, options, [&](dss_solution &s) -> int64_t {
        if (s.state != dss_solution::factored)
            return XKL_DSS_STATE_ERR;
        if (!fits(s, form))
            return XKL_DSS_OPTION_CONFLICT;
        if ((options.flags & operations) == operations || (options.flags & refinements) == refinements)
            return XKL_DSS_OPTION_CONFLICT;
        if (!rhs || !nrhs || !solution || *nrhs < 0)
            return XKL_DSS_FAILURE;
        const stop_watch watch(s.solve_seconds);
        request call = request_of(s, s.mtype);
        const bool refine = (options.flags & refinements) ? options.has(XKL_DSS_REFINEMENT_ON) : s.refine;
        s.iparm[steps_wanted] = refine ? 2 : 0;
        s.iparm[operation] =
            options.has(XKL_DSS_TRANSPOSE_SOLVE) ? 2 : options.has(XKL_DSS_CONJUGATE_SOLVE);
        call.nrhs = *nrhs;
        call.b = const_cast<void *>(rhs); // only read: the solution goes to x
        call.x = solution;
        const solve_part part[] = {solve_part::all, solve_part::lower, solve_part::diagonal,
                                   solve_part::upper};
        return status_of(s.system->solve(call, part[(options.flags & parts) / XKL_DSS_FORWARD_SOLVE]));
    });
}

} // namespace solvers

using namespace solvers;

int64_t dss_create(void **handle, const int64_t *opt)
{
    const dss_options options =
        take_apart(opt,
                   XKL_DSS_OOC_VARIABLE | XKL_DSS_REFINEMENT_OFF | XKL_DSS_REFINEMENT_ON |
                       XKL_DSS_SINGLE_PRECISION | XKL_DSS_ZERO_BASED_INDEXING,
                   0, 0);
    if (!handle)
        return XKL_DSS_STATE_ERR;
    if (options.error != XKL_DSS_SUCCESS)
        return options.error;
    if (options.has(XKL_DSS_REFINEMENT_OFF) && options.has(XKL_DSS_REFINEMENT_ON))
        return XKL_DSS_OPTION_CONFLICT;
    return memory_status(within_memory([&]() -> int64_t {
        auto created = std::make_shared<dss_solution>();
        created->single = options.has(XKL_DSS_SINGLE_PRECISION);
        created->base = options.has(XKL_DSS_ZERO_BASED_INDEXING) ? 0 : 1;
        created->refine = !options.has(XKL_DSS_REFINEMENT_OFF);
        *handle = dss_solutions().add(std::move(created));
        return XKL_DSS_SUCCESS;
    }));
}

int64_t dss_delete(void **handle, const int64_t *opt)
{
    const dss_options options = take_apart(opt, 0, 0, 0);
    if (options.error != XKL_DSS_SUCCESS)
        return options.error;
    const auto found = handle ? dss_solutions().find(*handle) : nullptr;
    if (!found)
        return XKL_DSS_STATE_ERR;
    const turn_at after_the_last(found->calls);
    if (!after_the_last.taken() || !dss_solutions().remove(*handle))
        return XKL_DSS_STATE_ERR;
    *handle = nullptr;
    return XKL_DSS_SUCCESS;
}

int64_t dss_define_structure(void **handle, const int64_t *opt, const int64_t *rowindex,
                             const int64_t *nrows, const int64_t *ncols, const int64_t *columns,
                             const int64_t *nnonzeros)
{
    const dss_options options = take_apart(opt, 0, XKL_DSS_SYMMETRIC, XKL_DSS_NON_SYMMETRIC_COMPLEX);
    return on_solution(handle, options, [&](dss_solution &s) -> int64_t {
        if (options.kind == 0)
            return XKL_DSS_STRUCTURE_ERR;
        if (!rowindex || !nrows || !ncols || !columns || !nnonzeros)
            return XKL_DSS_ROW_ERR;
        if (*nrows != *ncols)
            return XKL_DSS_NOT_SQUARE;
        s.state = dss_solution::created;
        s.system.reset();
        s.is_complex = options.kind >= XKL_DSS_SYMMETRIC_COMPLEX;
        s.triangle = options.kind == XKL_DSS_SYMMETRIC || options.kind == XKL_DSS_SYMMETRIC_COMPLEX;
        s.symmetric_places = options.kind == XKL_DSS_SYMMETRIC_STRUCTURE ||
                             options.kind == XKL_DSS_SYMMETRIC_STRUCTURE_COMPLEX;
        if (const int64_t status = check_rows(s, rowindex, columns, *nrows, *nnonzeros))
            return status;
        s.n = *nrows;
        s.rows.assign(rowindex, rowindex + s.n + 1);
        s.columns.assign(columns, columns + *nnonzeros);
        s.state = dss_solution::structured;
        return XKL_DSS_SUCCESS;
    });
}

// The order depends on the places alone; what the values are is told at the factorization.
int64_t dss_reorder(void **handle, const int64_t *opt, int64_t *perm)
{
    const dss_options options = take_apart(opt, 0, XKL_DSS_AUTO_ORDER, XKL_DSS_METIS_OPENMP_ORDER);
    return on_solution(handle, options, [&](dss_solution &s) -> int64_t {
        if (s.state < dss_solution::structured)
            return XKL_DSS_STATE_ERR;
        const bool mine = options.kind == XKL_DSS_MY_ORDER, tell = options.kind == XKL_DSS_GET_ORDER;
        if ((mine || tell) && !perm)
            return XKL_DSS_REORDER_ERR;
        const stop_watch watch(s.reorder_seconds);
        s.state = dss_solution::structured;
        s.order.resize(s.n);
        if (mine)
            s.order.assign(perm, perm + s.n);
        const request call = request_of(s, mtype_of(s, XKL_DSS_INDEFINITE));
        s.iparm[user_order] = mine ? 1 : 2;
        s.iparm[ordering] = options.kind == XKL_DSS_OPTION1_ORDER ? 0 : 2;
        const int64_t error = analyse(s, call.mtype, call);
        if (error != XKL_PARDISO_SUCCESS)
            return error == XKL_PARDISO_INPUT_ERROR ? XKL_DSS_REORDER_ERR : status_of(error);
        if (tell)
            std::copy(s.order.begin(), s.order.end(), perm);
        s.state = dss_solution::ordered;
        return XKL_DSS_SUCCESS;
    });
}

int64_t dss_statistics(void **handle, const int64_t *opt, const char *words, double *values)
{
    return on_solution(handle, take_apart(opt, 0, 0, 0), [&](dss_solution &s) -> int64_t {
        return words && values ? tell_statistics(s, words, values) : XKL_DSS_STATISTICS_INVALID_STRING;
    });
}

} // namespace xkl::core
