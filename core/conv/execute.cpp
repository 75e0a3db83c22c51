// An execution: the arrays and the task's settings become a problem, and a problem is given to the sums or
// the transforms.
#include "conv/direct.h"
#include "conv/elements.h"
#include "conv/task.h"
#include "conv/transform.h"

#include "xkl_vsl_types.h"

#include <algorithm>

namespace xkl::core::conv {
namespace {

/// The elements of z before, in and behind the full result
struct extent {
    int64_t all, first, count, stride;
};

/// Zeros where the full result has no elements.
template <class T>
void clear_outside(T *z, const extent *e, int dimensions, bool outside) noexcept
{
    if (dimensions == 0) {
        if (outside)
            *z = T();
        return;
    }
    const int64_t end = e->first + e->count;
    for (int64_t i = 0; i < e->all; ++i) {
        const bool inside = i >= e->first && i < end;
        if (inside && dimensions == 1 && !outside) {
            i = end - 1;
            continue;
        }
        clear_outside(z + i * e->stride, e + 1, dimensions - 1, outside || !inside);
    }
}

/// What strides say: where the first element lies, and the steps in elements
struct layout {
    int64_t first = 0;
    int64_t strides[max_rank];

    layout(int32_t rank, const int32_t *shape, const int32_t *given) noexcept
    {
        int64_t dense = 1;
        for (int d = rank - 1; d >= 0; --d) {
            strides[d] = given ? given[d] : dense;
            dense *= shape[d];
            if (strides[d] < 0)
                first -= (shape[d] - 1) * strides[d];
        }
    }
    /// From the far end of a dimension backwards
    void turn(int d, int64_t length) noexcept
    {
        first += (length - 1) * strides[d];
        strides[d] = -strides[d];
    }
};

template <class T>
class execution {
  public:
    execution(task &t, const array &x, const array &y, void *z, const int32_t *z_strides) noexcept
        : task_(t), fixed_(!x.strides)
    {
        const settings &set = t.set;
        layout of_x(set.rank, set.x_shape, x.strides);
        const layout of_y(set.rank, set.y_shape, y.strides), of_z(set.rank, set.z_shape, z_strides);
        const bool correlates = set.kind == kind_correlation;
        for (int d = 0; d < set.rank && correlates; ++d)
            of_x.turn(d, set.x_shape[d]);
        p_ = {set.rank,
              {},
              static_cast<const T *>(x.elements) + of_x.first,
              static_cast<const T *>(y.elements) + of_y.first,
              static_cast<T *>(z) + of_z.first,
              correlates && is_complex<T>,
              false};
        z_ = p_.z;
        for (int d = 0; d < set.rank; ++d) {
            dimension &here = p_.dimensions[d];
            const int64_t origin = correlates ? set.x_shape[d] - 1 : 0; // index 0 in the full result
            here = {set.x_shape[d],    set.y_shape[d], set.start_is_set ? set.start[d] + origin : 0,
                    set.decimation[d], set.z_shape[d], of_x.strides[d],
                    of_y.strides[d],   of_z.strides[d]};
            T *const before = p_.z;
            p_.trim(d);
            const int64_t skipped = here.count > 0 ? (p_.z - before) / here.z_stride : 0;
            extents_[d] = {set.z_shape[d], skipped, here.count, here.z_stride};
            empty_ |= here.count == 0;
        }
    }

    int32_t run() noexcept
    {
        if (!empty_) {
            const bool widens = task_.set.internal_precision == VSL_CONV_PRECISION_DOUBLE;
            const outcome result = widens ? compute<double>() : compute<typename parts_of<T>::real>();
            if (result != outcome::done)
                return status_of(result);
        }
        const bool covered = std::all_of(extents_, extents_ + task_.set.rank,
                                         [](const extent &e) { return e.all == e.count; });
        if (!covered)
            clear_outside(z_, extents_, task_.set.rank, false);
        return VSL_CC_STATUS_OK;
    }

  private:
    static int32_t status_of(outcome result) noexcept
    {
        switch (result) {
        case outcome::no_memory:
            return VSL_CC_ERROR_ALLOCATION_FAILURE;
        case outcome::no_transforms:
            return VSL_CC_ERROR_METHOD;
        default:
            return VSL_CC_ERROR_SERVICE_FAILURE;
        }
    }

    template <class R>
    outcome compute_directly() const noexcept
    {
        return convolve_directly<R>(p_) ? outcome::done : outcome::no_memory;
    }

    // Sums that are over before a transform would have been chosen are not compared with one.
    template <class R>
    outcome compute() noexcept
    {
        constexpr double not_worth_a_thought = 3000;
        const double sums = direct_cost<R>(p_);
        const bool automatic = task_.set.mode == VSL_CONV_MODE_AUTO;
        if (task_.set.mode == VSL_CONV_MODE_DIRECT || (automatic && sums < not_worth_a_thought))
            return compute_directly<R>();
        problem<T> for_transform = p_;
        if (!fixed_)
            for_transform.put_smaller_first();
        const transform_shape shape = choose_transform<R>(for_transform, fixed_);
        if (automatic && sums < shape.cost)
            return compute_directly<R>();
        const outcome result = convolve_by_transform<R>(for_transform, shape, fixed_, task_.plan);
        return result != outcome::done && automatic ? compute_directly<R>() : result;
    }

    task &task_;
    bool fixed_, empty_ = false;
    problem<T> p_;
    T *z_;
    extent extents_[max_rank];
};

} // namespace

int32_t execute(task &t, const array &x, const array &y, void *z, const int32_t *z_strides) noexcept
{
    const bool is_single = t.set.precision == VSL_CONV_PRECISION_SINGLE;
    if (t.set.is_complex())
        return is_single ? execution<std::complex<float>>(t, x, y, z, z_strides).run()
                         : execution<std::complex<double>>(t, x, y, z, z_strides).run();
    return is_single ? execution<float>(t, x, y, z, z_strides).run()
                     : execution<double>(t, x, y, z, z_strides).run();
}

} // namespace xkl::core::conv
