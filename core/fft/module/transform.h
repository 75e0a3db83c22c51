// A transform: what a committed descriptor computes with, in one direction.
#pragma once

#include "fft/module/plans.h"
#include "fft/transform_module.h"

#include <memory>

namespace xkl::fft {

// Statuses of the descriptors, as far as transforms have them.
enum status : int32_t {
    status_done = 0,
    status_no_memory = 1,
    status_inconsistent = 3,
    status_unimplemented = 6,
    status_fault = 7,
};

struct transform {
    virtual int32_t run(void *x, void *second, void *third, void *fourth) const = 0;
    virtual ~transform() = default;
};

// The problem with what differs between its two sides.
struct shaped_problem : problem {
    explicit shaped_problem(const problem &given);

    bool real_data() const { return what == operation::real_forward || what == operation::real_backward; }
    bool packed() const { return storage >= layout::ccs; }
    int64_t count() const; // of transforms in the batch
    int64_t points() const;

    // Reals in an element of a side, and of the workspace.
    int64_t in_parts() const;
    int64_t out_parts() const;
    int64_t work_parts() const;
    // Elements of a dimension in the workspace.
    int64_t compact_length(int index) const;
    // The workspace's strides, in reals; that of index `rank` leads to the next transform. Real data has rows
    // as long as those of its spectrum, to be transformed in place.
    int64_t work_stride(int index, int64_t side_parts) const;

    // Reals in the unit of the user's strides on a side.
    int64_t in_unit() const;
    int64_t out_unit() const;

    double operations() const; // of one transform, about
};

// How a problem is cut: batches go through in chunks when something is to be done beside FFTW's work while
// the data is still in the cache, or by several threads.
struct cut {
    bool through_in = false;  // the input is brought into a workspace first
    bool through_out = false; // the output comes from a workspace
    int64_t chunk = 1;        // transforms that FFTW computes at once
    int32_t plan_threads = 1; // threads within a plan
    bool share_chunks = false;
};

// What the user's layouts ask for, before FFTW has been asked.
cut first_cut(const shaped_problem &problem);
// The same when FFTW cannot work on the user's arrays. For real data it can, as soon as one of them is its
// own, unless strides run backwards.
void go_through_workspace(const shaped_problem &problem, cut &chosen);
// Chooses the chunks and the threads.
void cut_batch(const shaped_problem &problem, cut &chosen);

// FFTW's request for so many transforms.
plan_request request_for(const shaped_problem &problem, const cut &chosen, int64_t transforms);

// Null with a status. Throws std::bad_alloc.
template <class T>
std::unique_ptr<transform> make_transform(const problem &wanted, int32_t &status);

extern template std::unique_ptr<transform> make_transform<float>(const problem &, int32_t &);
extern template std::unique_ptr<transform> make_transform<double>(const problem &, int32_t &);

} // namespace xkl::fft
