// The guru64 planners, on which all others stand: an empty plan from the settings' constructor, a descriptor
// for it, its settings one by one, and the commit. The first step that fails destroys the plan.
#pragma once

#include "fftw/execution.h"

#include <type_traits>

namespace xkl::fftw {

constexpr int64_t most_dimensions = 7; // of a descriptor
constexpr int64_t forward_sign = -1;   // every other sign is backward

/// What a planner is asked for: transforms of `rank` dimensions, one, or as many as `batch` says. Ranks are
/// 64-bit here, so that those that come from Fortran are judged whole.
struct problem {
    int64_t rank;
    const fftw_iodim64 *dims;
    int64_t howmany_rank;
    const fftw_iodim64 *howmany_dims;
    int64_t flags;

    bool can_be_planned() const
    {
        return rank <= most_dimensions && howmany_rank <= 1 && dims && (howmany_rank <= 0 || howmany_dims);
    }
    const fftw_iodim64 *batch() const { return howmany_rank == 1 ? howmany_dims : nullptr; }

    /// Whether the result of every element has the element's own place.
    bool has_equal_strides() const
    {
        for (int64_t i = 0; i < rank; ++i)
            if (dims[i].is != dims[i].os)
                return false;
        return !batch() || batch()->is == batch()->os;
    }
};

/// Releases a plan that is not returned: `destroy` unless `keep` is called.
class unfinished_plan {
  public:
    unfinished_plan() : plan_(fftw3_xkl.plan_constructor ? fftw3_xkl.plan_constructor() : nullptr) {}
    ~unfinished_plan() { destroy(plan_); }
    unfinished_plan(const unfinished_plan &) = delete;
    unfinished_plan &operator=(const unfinished_plan &) = delete;

    explicit operator bool() const { return plan_; }
    plan_record *operator->() const { return plan_; }
    plan_record *keep()
    {
        plan_record *plan = plan_;
        plan_ = nullptr;
        return plan;
    }

  private:
    plan_record *plan_;
};

inline bool succeeded(long status)
{
    return status == DFTI_NO_ERROR || DftiErrorClass(status, DFTI_NO_ERROR);
}

/// The variadic argument must have the width that the parameter reads, so the type is named at every call.
template <class Value>
bool set(const unfinished_plan &plan, int parameter, std::type_identity_t<Value> value)
{
    static_assert(std::is_same_v<Value, int> || std::is_same_v<Value, int64_t> || std::is_pointer_v<Value>);
    return succeeded(DftiSetValue(plan->descriptor, parameter, value));
}

template <class Real>
bool create(const unfinished_plan &plan, int domain, int64_t rank, const int64_t *lengths)
{
    constexpr bool single = std::is_same_v<Real, float>;
    DFTI_DESCRIPTOR **place = &plan->descriptor;
    if (rank == 1)
        return succeeded(single ? DftiCreateDescriptor_s_1d(place, domain, lengths[0])
                                : DftiCreateDescriptor_d_1d(place, domain, lengths[0]));
    return succeeded(single ? DftiCreateDescriptor_s_md(place, domain, rank, lengths)
                            : DftiCreateDescriptor_d_md(place, domain, rank, lengths));
}

/// The problem's dimensions as a descriptor takes them; strides start with the offset 0.
struct descriptor_vectors {
    int64_t lengths[most_dimensions];
    int64_t in[1 + most_dimensions];
    int64_t out[1 + most_dimensions];

    explicit descriptor_vectors(const problem &asked)
    {
        in[0] = out[0] = 0;
        for (int64_t i = 0; i < asked.rank; ++i) {
            lengths[i] = asked.dims[i].n;
            in[i + 1] = asked.dims[i].is;
            out[i + 1] = asked.dims[i].os;
        }
    }
};

/// What the kinds of planners with a descriptor differ in.
struct storage {
    int domain = DFTI_COMPLEX;
    bool split = false; // real and imaginary parts apart

    bool is_real() const { return domain == DFTI_REAL; }

    /// Real data: n/2 + 1 complex numbers, not packed, on the other side. They are what the descriptor starts
    /// with in some cores only.
    bool set_up(const unfinished_plan &plan) const
    {
        if (is_real())
            return set<int>(plan, DFTI_CONJUGATE_EVEN_STORAGE, DFTI_COMPLEX_COMPLEX) &&
                   set<int>(plan, DFTI_PACKED_FORMAT, DFTI_CCE_FORMAT);
        return !split || set<int>(plan, DFTI_COMPLEX_STORAGE, DFTI_REAL_REAL);
    }
};

/// Placement and output strides. In place, complex results must have the places of the data. Real data and
/// its complex counterpart have strides of their own even there, and the core knows which fit.
inline bool place(const unfinished_plan &plan, const problem &asked, const storage &kept, bool in_place,
                  const int64_t *out_strides)
{
    if (in_place && !kept.is_real())
        return asked.has_equal_strides();
    return (in_place || set<int>(plan, DFTI_PLACEMENT, DFTI_NOT_INPLACE)) &&
           set<const int64_t *>(plan, DFTI_OUTPUT_STRIDES, out_strides);
}

inline bool repeat(const unfinished_plan &plan, const fftw_iodim64 *batch)
{
    return !batch || (set<int64_t>(plan, DFTI_NUMBER_OF_TRANSFORMS, batch->n) &&
                      set<int64_t>(plan, DFTI_INPUT_DISTANCE, batch->is) &&
                      set<int64_t>(plan, DFTI_OUTPUT_DISTANCE, batch->os));
}

inline bool limit_threads(const unfinished_plan &plan)
{
    const int64_t threads = fftw3_xkl.thread_count;
    return threads < 0 || set<int64_t>(plan, DFTI_THREAD_LIMIT, threads);
}

/// Makes the descriptor of a plan whose arrays and execute routine are set.
template <class Real>
bool configure(const unfinished_plan &plan, const problem &asked, const storage &kept, bool in_place)
{
    const descriptor_vectors vectors(asked);
    return create<Real>(plan, kept.domain, asked.rank, vectors.lengths) && kept.set_up(plan) &&
           (!(asked.flags & FFTW_CONSERVE_MEMORY) || set<int>(plan, DFTI_WORKSPACE, DFTI_AVOID)) &&
           set<const int64_t *>(plan, DFTI_INPUT_STRIDES, vectors.in) &&
           place(plan, asked, kept, in_place, vectors.out) && repeat(plan, asked.batch()) &&
           limit_threads(plan) && succeeded(DftiCommitDescriptor(plan->descriptor));
}

template <class Real>
void *plan_with_descriptor(const problem &asked, const storage &kept, void *in, void *out, bool forward)
{
    if (!asked.can_be_planned())
        return nullptr;
    unfinished_plan plan;
    if (!plan)
        return nullptr;
    const bool in_place = in == out;
    plan->in = in;
    if (!in_place)
        plan->out = out;
    plan->execute = descriptor_execution(forward, in_place);
    return configure<Real>(plan, asked, kept, in_place) ? plan.keep() : nullptr;
}

template <class Real>
void *plan_guru64_dft(int64_t rank, const fftw_iodim64 *dims, int64_t howmany_rank,
                      const fftw_iodim64 *howmany_dims, void *in, void *out, int64_t sign, int64_t flags)
{
    return plan_with_descriptor<Real>({rank, dims, howmany_rank, howmany_dims, flags}, {}, in, out,
                                      sign == forward_sign);
}

template <class Real>
void *plan_guru64_dft_r2c(int64_t rank, const fftw_iodim64 *dims, int64_t howmany_rank,
                          const fftw_iodim64 *howmany_dims, void *in, void *out, int64_t flags)
{
    return plan_with_descriptor<Real>({rank, dims, howmany_rank, howmany_dims, flags},
                                      {.domain = DFTI_REAL}, in, out, true);
}

template <class Real>
void *plan_guru64_dft_c2r(int64_t rank, const fftw_iodim64 *dims, int64_t howmany_rank,
                          const fftw_iodim64 *howmany_dims, void *in, void *out, int64_t flags)
{
    return plan_with_descriptor<Real>({rank, dims, howmany_rank, howmany_dims, flags},
                                      {.domain = DFTI_REAL}, in, out, false);
}

/// In place if both pairs are; with one array shared and the other not, results would overwrite data.
template <class Real>
void *plan_guru64_split_dft(int64_t rank, const fftw_iodim64 *dims, int64_t howmany_rank,
                            const fftw_iodim64 *howmany_dims, void *ri, void *ii, void *ro, void *io,
                            int64_t flags)
{
    const problem asked{rank, dims, howmany_rank, howmany_dims, flags};
    const bool in_place = ri == ro && ii == io;
    if (!asked.can_be_planned() || (!in_place && (ri == ro || ii == io)))
        return nullptr;
    unfinished_plan plan;
    if (!plan)
        return nullptr;
    plan->in = ri;
    plan->second_in = ii;
    if (!in_place) {
        plan->out = ro;
        plan->second_out = io;
    }
    plan->execute = descriptor_execution<true>(true, in_place);
    return configure<Real>(plan, asked, {.split = true}, in_place) ? plan.keep() : nullptr;
}

template <class>
void *plan_guru64_split_dft_r2c(int64_t, const fftw_iodim64 *, int64_t, const fftw_iodim64 *, void *,
                                void *, void *, int64_t)
{
    return nullptr;
}

template <class>
void *plan_guru64_split_dft_c2r(int64_t, const fftw_iodim64 *, int64_t, const fftw_iodim64 *, void *,
                                void *, void *, int64_t)
{
    return nullptr;
}

} // namespace xkl::fftw
