// The core's descriptor: what users set, and the transforms made of it.
#pragma once

#include "dft/descriptor.h"
#include "fft/transform_module.h"

#include <array>
#include <atomic>
#include <new>
#include <string>

namespace xkl::fft {

// The module, opened by the first descriptor and never closed; null when it cannot be opened.
const module_functions *transform_module();

// Holds a transform of the module. The first thread that needs one may make it.
class transform_holder {
  public:
    explicit transform_holder(const module_functions *module) : module_(module) {}
    transform_holder(const transform_holder &) = delete;
    transform_holder &operator=(const transform_holder &) = delete;
    ~transform_holder() { reset(nullptr); }

    const transform *get() const { return made_.load(std::memory_order_acquire); }

    // Of several threads' transforms the first one stays.
    const transform *offer(transform *made)
    {
        transform *first = nullptr;
        if (made_.compare_exchange_strong(first, made, std::memory_order_acq_rel))
            return made;
        module_->release(made);
        return first;
    }

    // Called by nobody while another thread computes.
    void reset(transform *made)
    {
        if (transform *old = made_.exchange(made))
            module_->release(old);
    }

  private:
    const module_functions *module_;
    std::atomic<transform *> made_{nullptr};
};

using strides = std::array<int64_t, most_dimensions + 1>; // an offset, then one a dimension

struct descriptor : DFTI_DESCRIPTOR {
    descriptor(const module_functions *opened, int32_t of_precision, int32_t of_domain, int32_t dimensions,
               const int64_t *of_lengths);
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;
    ~descriptor();

    // Descriptors count among the library's blocks of memory; null instead of an exception.
    static void *operator new(size_t size, const std::nothrow_t &) noexcept;
    static void operator delete(void *block) noexcept;

    bool destroys_input() const { return flags & xkl_dft_destroys_input; }
    // The conjugate-even side holds reals in a packed format.
    bool packed() const
    {
        return forward_domain == DFTI_REAL && conjugate_even_storage == DFTI_COMPLEX_REAL;
    }
    bool split() const { return forward_domain == DFTI_COMPLEX && complex_storage == DFTI_REAL_REAL; }

    // A change of settings: what was committed no longer holds.
    void uncommit();

    const module_functions *module;
    std::array<int64_t, most_dimensions> lengths{};  // the first dimension fastest, as all vectors here
    strides input_strides{}, output_strides{};       // all zero behind the offset while not set
    int64_t input_distance = 0, output_distance = 0; // 0 while not set
    int64_t transforms = 1;
    int64_t thread_limit = 0;                     // 0 for none
    bool storage_set = false, format_set = false; // by the user; of the two, what is not set follows
    std::string name;
    int32_t threads = 1; // as the thread settings were at the last commit
    transform_holder forward_transform, backward_transform; // as last committed
};

// Null for anything that is not a live descriptor.
inline descriptor *live_descriptor(DFTI_DESCRIPTOR *handle)
{
    return handle && handle->tag == xkl_dft_tag ? static_cast<descriptor *>(handle) : nullptr;
}

// Makes a descriptor with its defaults, or answers a status and leaves the handle null.
int32_t create(DFTI_DESCRIPTOR **handle, int32_t precision, int32_t domain, int64_t dimensions,
               const int64_t *lengths);
int32_t copy(const descriptor &from, DFTI_DESCRIPTOR **handle);

// Layouts that hold where the user has set none: of the forward domain and of the backward domain.
strides default_strides(const descriptor &of, bool forward_side);
int64_t default_distance(const descriptor &of, bool forward_side);

// Plans forward, and leaves backward to its first use: many descriptors serve one direction only, and
// planning takes longer than a transform. On any other status than 0 the descriptor stays uncommitted.
int32_t commit(descriptor &what);

int32_t set_integer(descriptor &of, int32_t parameter, int64_t value);
int32_t get_integer(const descriptor &of, int32_t parameter, int64_t &value);

extern const xkl_dft_operations descriptor_operations;

} // namespace xkl::fft
