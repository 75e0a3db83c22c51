// Real-to-real plans own no descriptor but a transform of the core's. Words 5 to 7 of a plan go through
// fftw_free, so the transform is in word 3, and the plan has a destroy routine of its own: it releases the
// transform and ends in the routine that the constructor put into word 9, kept in word 4. That is the default
// one, or that of a program with a constructor of its own.
#pragma once

#include "fftw/guru.h"

namespace xkl::fftw {

constexpr int64_t most_kinds = 11;

inline void destroy_real_to_real(plan_record *plan)
{
    if (!plan)
        return;
    xkl_dft_r2r_free(&plan->second_in);
    plan->destroy = reinterpret_cast<execution>(plan->second_out);
    plan->second_out = nullptr;
    destroy(plan);
}

/// Kinds as the core takes them, from C's enumeration or Fortran's integers; false if one is none.
template <class Kind>
bool copy_kinds(int64_t rank, const Kind *kinds, int32_t *to)
{
    for (int64_t i = 0; i < rank; ++i) {
        const auto kind = static_cast<int64_t>(kinds[i]);
        if (kind < 0 || kind >= most_kinds)
            return false;
        to[i] = static_cast<int32_t>(kind);
    }
    return true;
}

/// (n, is, os) as the core reads them.
inline const int64_t *triples(const fftw_iodim64 *dims)
{
    static_assert(sizeof(fftw_iodim64) == 3 * sizeof(int64_t) && std::is_same_v<ptrdiff_t, int64_t>);
    return reinterpret_cast<const int64_t *>(dims);
}

template <class Real, class Kind>
void *plan_guru64_r2r(int64_t rank, const fftw_iodim64 *dims, int64_t howmany_rank,
                      const fftw_iodim64 *howmany_dims, void *in, void *out, const Kind *kinds,
                      int64_t flags)
{
    const problem asked{rank, dims, howmany_rank, howmany_dims, flags};
    int32_t core_kinds[most_dimensions];
    if (!asked.can_be_planned() || rank < 1 || !kinds || !copy_kinds(rank, kinds, core_kinds))
        return nullptr;
    const bool in_place = in == out;
    unfinished_plan plan;
    if (!plan || (in_place && !asked.has_equal_strides()))
        return nullptr;
    const int32_t precision = std::is_same_v<Real, float> ? DFTI_SINGLE : DFTI_DOUBLE;
    if (!succeeded(xkl_dft_r2r_create(&plan->second_in, precision, static_cast<int32_t>(rank),
                                      triples(dims), asked.batch() ? 1 : 0, triples(asked.batch()),
                                      core_kinds, in_place, fftw3_xkl.thread_count)))
        return nullptr;
    plan->in = in;
    if (!in_place)
        plan->out = out;
    plan->execute = in_place ? execute_real_to_real<true> : execute_real_to_real<false>;
    plan->second_out = reinterpret_cast<void *>(plan->destroy);
    plan->destroy = destroy_real_to_real;
    return plan.keep();
}

} // namespace xkl::fftw
