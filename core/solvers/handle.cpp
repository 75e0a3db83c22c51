// Phases: which steps a call takes, on which matrix of the handle.
#include "solvers/handle.h"

#include "service/callbacks.h"
#include "service/service_entries.h"

#include <chrono>
#include <optional>

namespace xkl::core::solvers {

registry<handle> &handles()
{
    static auto *all = new registry<handle>;
    return *all;
}

namespace {

enum step { analysis = 1, factorization = 2, solution = 3 };

struct steps {
    int first, last;
    solve_part part = solve_part::all;
};

std::optional<steps> steps_of(int64_t phase)
{
    switch (phase) {
    case XKL_PARDISO_ANALYSIS:
        return steps{analysis, analysis};
    case XKL_PARDISO_ANALYSIS_FACTORIZATION:
        return steps{analysis, factorization};
    case XKL_PARDISO_ANALYSIS_FACTORIZATION_SOLVE:
        return steps{analysis, solution};
    case XKL_PARDISO_FACTORIZATION:
        return steps{factorization, factorization};
    case XKL_PARDISO_FACTORIZATION_SOLVE:
        return steps{factorization, solution};
    case XKL_PARDISO_SOLVE:
        return steps{solution, solution};
    case XKL_PARDISO_FORWARD_SOLVE:
        return steps{solution, solution, solve_part::lower};
    case XKL_PARDISO_DIAGONAL_SOLVE:
        return steps{solution, solution, solve_part::diagonal};
    case XKL_PARDISO_BACKWARD_SOLVE:
        return steps{solution, solution, solve_part::upper};
    default:
        return std::nullopt;
    }
}

const char *const step_names[] = {"", "analysis", "factorization", "solution"};

void tell(const char *what, double seconds, const any_system &system)
{
    xkl_serv_printf_s("XKL: %s in %.6f s: order %lld, %lld elements in the factors, %.3g operations\n",
                      what, seconds, static_cast<long long>(system.order.size()),
                      static_cast<long long>(system.facts.nonzeros), system.facts.operations);
}

int64_t run_step(int which, any_system &system, const handle &owner, const request &call,
                 const steps &wanted)
{
    if (which == analysis) {
        call.iparm[bad_row] = 0;
        return call.ia && call.ja ? system.analyse(call) : XKL_PARDISO_INPUT_ERROR;
    }
    if (!system.analysed || (which == solution && !system.factored) || call.n != system.form.rows ||
        call.mtype != system.form.mtype || call.single != system.form.single)
        return XKL_PARDISO_INPUT_ERROR;
    if (which == factorization)
        return call.a ? system.factor(call, owner.exported) : XKL_PARDISO_INPUT_ERROR;
    return system.solve(call, wanted.part);
}

int64_t run_steps(any_system &system, const handle &owner, const request &call, const steps &wanted)
{
    for (int which = wanted.first; which <= wanted.last; ++which) {
        if (report_progress(0, 0, step_names[which]))
            return XKL_PARDISO_INTERRUPTED;
        const auto begin = std::chrono::steady_clock::now();
        if (const int64_t error = run_step(which, system, owner, call, wanted))
            return error;
        if (call.msglvl == 1)
            tell(step_names[which],
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count(), system);
        if (report_progress(0, 100, step_names[which]))
            return XKL_PARDISO_INTERRUPTED;
    }
    return XKL_PARDISO_SUCCESS;
}

// A number of the handle that has had no analysis takes that of this call.
int64_t run_on_handle(handle &owner, const argument_list &arguments, const request &call, steps wanted)
{
    auto &systems = owner.systems;
    if (static_cast<int64_t>(systems.size()) < *arguments.maxfct)
        systems.resize(*arguments.maxfct);
    auto &system = systems[*arguments.mnum - 1];
    const bool another_analysed =
        std::any_of(systems.begin(), systems.end(), [](const auto &s) { return s && s->analysed; });
    if (!system && wanted.first == factorization && another_analysed)
        wanted.first = analysis;
    if (wanted.first == analysis)
        system = make_system(call.kind, call.single);
    if (!system)
        return XKL_PARDISO_INPUT_ERROR;
    return run_steps(*system, owner, call, wanted);
}

int64_t release(const argument_list &arguments)
{
    if (!arguments.pt[0])
        return XKL_PARDISO_SUCCESS;
    if (*arguments.phase == XKL_PARDISO_RELEASE_EVERYTHING) {
        const auto found = handles().find(arguments.pt[0]);
        if (!found)
            return XKL_PARDISO_INPUT_ERROR;
        const turn_at turn(found->calls);
        if (!turn.taken())
            return XKL_PARDISO_INPUT_ERROR;
        handles().remove(arguments.pt[0]);
        std::fill_n(arguments.pt, 64, nullptr);
        return XKL_PARDISO_SUCCESS;
    }
    const auto found = handles().find(arguments.pt[0]);
    if (!found || !arguments.mnum || *arguments.mnum < 1)
        return XKL_PARDISO_INPUT_ERROR;
    const turn_at turn(found->calls);
    if (!turn.taken() || *arguments.mnum > static_cast<int64_t>(found->systems.size()))
        return XKL_PARDISO_INPUT_ERROR;
    if (const auto &system = found->systems[*arguments.mnum - 1])
        system->release_factors();
    return XKL_PARDISO_SUCCESS;
}

// Arguments that every step needs, and what the name of the routine promised.
int64_t read_arguments(const argument_list &from, elements form, request &call)
{
    if (!from.maxfct || !from.mnum || !from.mtype || !from.n || !from.nrhs || !from.iparm || !from.msglvl ||
        *from.maxfct < 1 || *from.mnum < 1 || *from.mnum > *from.maxfct || *from.n < 1 || *from.nrhs < 0)
        return XKL_PARDISO_INPUT_ERROR;
    const auto kind = kind_of(*from.mtype);
    if (!kind)
        return XKL_PARDISO_INPUT_ERROR;
    if (from.iparm[use_values] == 0) {
        set_defaults(*kind, from.iparm);
        from.iparm[use_values] = 0;
    }
    const bool asked_single = from.iparm[single_precision] == 1;
    const bool named_complex = form == elements::c || form == elements::z;
    const bool named_double = form == elements::d || form == elements::z;
    if (form != elements::by_control &&
        (named_complex != kind->is_complex || (named_double && asked_single)))
        return XKL_PARDISO_INPUT_ERROR;
    call = {*from.mtype, *kind,        form == elements::by_control ? asked_single : !named_double,
            *from.n,     from.a,       from.ia,
            from.ja,     from.perm,    *from.nrhs,
            from.iparm,  *from.msglvl, from.b,
            from.x};
    return XKL_PARDISO_SUCCESS;
}

} // namespace

int64_t run_phases(const argument_list &arguments, elements form)
{
    if (!arguments.pt || !arguments.phase)
        return XKL_PARDISO_INPUT_ERROR;
    if (*arguments.phase == XKL_PARDISO_RELEASE_EVERYTHING ||
        *arguments.phase == XKL_PARDISO_RELEASE_FACTORS)
        return release(arguments);
    const auto wanted = steps_of(*arguments.phase);
    request call;
    if (!wanted)
        return XKL_PARDISO_INPUT_ERROR;
    if (const int64_t error = read_arguments(arguments, form, call))
        return error;

    const bool begins = !arguments.pt[0] && wanted->first == analysis;
    const auto found = begins ? std::make_shared<handle>() : handles().find(arguments.pt[0]);
    if (!found)
        return XKL_PARDISO_INPUT_ERROR;
    const turn_at turn(found->calls);
    if (!turn.taken())
        return XKL_PARDISO_INPUT_ERROR;
    const int64_t error = run_on_handle(*found, arguments, call, *wanted);
    const auto &system = found->systems[*arguments.mnum - 1];
    if (begins && system && system->analysed)
        arguments.pt[0] = handles().add(found);
    return error;
}

} // namespace xkl::core::solvers
