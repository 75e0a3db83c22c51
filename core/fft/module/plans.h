// FFTW's plans, shared by all transforms that want the same one.
//
// Planning takes longer than most transforms, and FFTW's planner is not re-entrant: one lock guards it and
// the plans that were made. A plan that nobody uses any more is kept for the next descriptor like the last
// one, up to a number of plans; the one that has waited longest goes first.
#pragma once

#include "fft/transform_module.h"

#include <atomic>
#include <memory>

namespace xkl::fft {

// The services of the core. Written once, when the core opens the module, before anything else runs.
extern const core_services *host;

// All that a plan depends on; compared byte by byte, so that unused fields stay zero.
struct plan_request {
    operation what;
    int32_t single;
    int32_t in_place;
    int32_t aligned; // arrays at addresses that FFTW's vector instructions can load at once
    int32_t preserve_input;
    int32_t threads;
    int32_t rank;
    int32_t batch_rank;
    int32_t kinds[most_dimensions + 1];
    dimension sides[most_dimensions];
    dimension batches[most_dimensions];
};

struct shared_plan {
    void *plan;       // for FFTW's functions of its precision
    int users;        // guarded by the planner's lock, as the next one
    int64_t last_use; // a count of the times that a plan lost its last user
};

// Takes a plan or makes it; null when FFTW cannot plan the request. Throws std::bad_alloc.
const shared_plan *take_plan(const plan_request &wanted);
void give_back(const shared_plan *plan) noexcept;

// The bits of an address that are zero when arrays are aligned.
uintptr_t alignment_mask() noexcept;

int64_t plans_kept() noexcept;
int64_t plannings_done() noexcept;

// Called once, before the first plan.
void start_library();

// The plan for aligned arrays, made at once, and the plan for all others, made when they first come.
class plan_pair {
  public:
    plan_pair() = default;
    plan_pair(const plan_pair &) = delete;
    plan_pair &operator=(const plan_pair &) = delete;
    ~plan_pair();

    // False when FFTW cannot plan the request.
    bool plan(const plan_request &wanted);

    // Null when there is no memory for a second plan.
    void *for_arrays(const void *in, const void *out) const noexcept
    {
        const auto bits = reinterpret_cast<uintptr_t>(in) | reinterpret_cast<uintptr_t>(out);
        if ((bits & mask_) == 0) [[likely]]
            return aligned_->plan;
        const shared_plan *made = unaligned_.load(std::memory_order_acquire);
        if (!made)
            made = plan_unaligned();
        return made ? made->plan : nullptr;
    }

  private:
    [[gnu::cold]] const shared_plan *plan_unaligned() const noexcept;

    uintptr_t mask_ = 0;
    const shared_plan *aligned_ = nullptr;
    mutable std::atomic<const shared_plan *> unaligned_{
        nullptr};                           // written by the first thread that needs it
    std::unique_ptr<plan_request> request_; // for unaligned arrays
};

} // namespace xkl::fft
