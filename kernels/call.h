// One call of a kernel as seen by the code that is compiled once for all instruction sets: the mode in
// force, the errors found, who is told of them.
#pragma once

#include "xkl_vml_types.h"

#include <cerrno>
#include <immintrin.h>

namespace xkl::kernels {

enum class accuracy { high, low, enhanced_performance };

/// What an element's `settle` answers
enum status : int32_t {
    fine = VML_STATUS_OK,
    domain_error = VML_STATUS_ERRDOM,
    singularity = VML_STATUS_SING,
    overflow = VML_STATUS_OVERFLOW,
    underflow = VML_STATUS_UNDERFLOW
};

/// The settings of a thread, set by the mode entries alone.
struct thread_settings {
    uint32_t mode;
    int32_t status;
    xkl_vml_error_callback callback; // null: none
};

[[gnu::const]] thread_settings &settings_of_thread() noexcept;

class call {
  public:
    explicit call(const char *name) noexcept
        : name_(name), settings_(settings_of_thread()), errno_before_(errno)
    {
        if (settings_.mode & VML_FTZDAZ_MASK) [[unlikely]]
            set_denormals();
    }
    ~call()
    {
        errno = errno_before_; // the C library's functions may have set it, in any mode
        if (worst_ != fine) [[unlikely]]
            conclude();
        if (denormals_set_) [[unlikely]]
            _mm_setcsr(control_before_);
    }
    call(const call &) = delete;
    call &operator=(const call &) = delete;

    accuracy wanted() const noexcept
    {
        switch (settings_.mode & VML_ACCURACY_MASK) {
        case VML_LA:
            return accuracy::low;
        case VML_EP:
            return accuracy::enhanced_performance;
        default:
            return accuracy::high;
        }
    }

    /// The place of the element that the caller's block starts with; strided kernels move it.
    void start_block_at(int64_t first) noexcept { block_ = first; }

    /// Notes an error of the block's element `index`. The callback may change the error's results.
    void report(status found, int64_t index, xkl_vml_error &error) noexcept;

  private:
    void set_denormals() noexcept;
    void conclude() noexcept;

    const char *name_;
    thread_settings &settings_;
    int errno_before_;
    int64_t block_ = 0;
    int64_t worst_index_ = 0; // the first element of that status
    status worst_ = fine;     // the smallest status found
    unsigned control_before_ = 0;
    bool denormals_set_ = false;
};

} // namespace xkl::kernels
