// Handing out diagonals and Schur complements.
#include "solvers/factors.h"

namespace xkl::core {
namespace {

using namespace solvers;

bool made_of(const any_system &system, elements form)
{
    if (form == elements::by_control)
        return true;
    const bool is_complex = form == elements::c || form == elements::z;
    const bool single = form == elements::s || form == elements::c;
    return system.form.kind.is_complex == is_complex && system.form.single == single;
}

int32_t diagonals(void *const *pt, void *df, void *da, const int64_t *mnum, int64_t *error, elements form)
{
    const int64_t result = within_memory([&]() -> int64_t {
        const auto found = pt ? handles().find(pt[0]) : nullptr;
        if (!found || !df || !da || !mnum || *mnum < 1)
            return XKL_PARDISO_INPUT_ERROR;
        const turn_at turn(found->calls);
        if (!turn.taken() || *mnum > static_cast<int64_t>(found->systems.size()))
            return XKL_PARDISO_INPUT_ERROR;
        const auto &system = found->systems[*mnum - 1];
        return system && made_of(*system, form) ? system->diagonals(df, da) : XKL_PARDISO_INPUT_ERROR;
    });
    if (error)
        *error = result;
    return static_cast<int32_t>(result);
}

void set_export(void *const *pt, void *values, int64_t *ia, int64_t *ja, const int64_t *step,
                int64_t *error, elements form)
{
    const int64_t result = within_memory([&]() -> int64_t {
        const auto found = pt ? handles().find(pt[0]) : nullptr;
        if (!found || !step || (*step != 1 && *step != -1))
            return XKL_PARDISO_INPUT_ERROR;
        const turn_at turn(found->calls);
        if (!turn.taken())
            return XKL_PARDISO_INPUT_ERROR;
        if (*step == -1) {
            found->exported = {};
            return XKL_PARDISO_SUCCESS;
        }
        for (const auto &system : found->systems)
            if (system && !made_of(*system, form))
                return XKL_PARDISO_INPUT_ERROR;
        if (!values || !ia || !ja)
            return XKL_PARDISO_INPUT_ERROR;
        found->exported = {values, ia, ja};
        return XKL_PARDISO_SUCCESS;
    });
    if (error)
        *error = result;
}

} // namespace

int32_t pardiso_getdiag(void *const *pt, void *df, void *da, const int64_t *mnum, int64_t *error)
{
    return diagonals(pt, df, da, mnum, error, elements::by_control);
}

int32_t pardiso_getdiag_d(void *const *pt, double *df, double *da, const int64_t *mnum, int64_t *error)
{
    return diagonals(pt, df, da, mnum, error, elements::d);
}

int32_t pardiso_getdiag_z(void *const *pt, std::complex<double> *df, std::complex<double> *da,
                          const int64_t *mnum, int64_t *error)
{
    return diagonals(pt, df, da, mnum, error, elements::z);
}

void pardiso_export(void *const *pt, void *values, int64_t *ia, int64_t *ja, const int64_t *step,
                    const int64_t *, int64_t *error)
{
    set_export(pt, values, ia, ja, step, error, elements::by_control);
}

void pardiso_export_s(void *const *pt, float *values, int64_t *ia, int64_t *ja, const int64_t *step,
                      const int64_t *, int64_t *error)
{
    set_export(pt, values, ia, ja, step, error, elements::s);
}

void pardiso_export_d(void *const *pt, double *values, int64_t *ia, int64_t *ja, const int64_t *step,
                      const int64_t *, int64_t *error)
{
    set_export(pt, values, ia, ja, step, error, elements::d);
}

void pardiso_export_c(void *const *pt, std::complex<float> *values, int64_t *ia, int64_t *ja,
                      const int64_t *step, const int64_t *, int64_t *error)
{
    set_export(pt, values, ia, ja, step, error, elements::c);
}

void pardiso_export_z(void *const *pt, std::complex<double> *values, int64_t *ia, int64_t *ja,
                      const int64_t *step, const int64_t *, int64_t *error)
{
    set_export(pt, values, ia, ja, step, error, elements::z);
}

} // namespace xkl::core
