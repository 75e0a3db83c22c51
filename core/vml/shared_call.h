// A call whose vector several threads share, as the kernel library sees it. That keeps mode, status and
// callback for each thread: a worker takes over the mode of the caller for the length of its part, and
// the parts' errors become the caller's, the smallest status of all, as if one thread had gone over the
// whole vector.
#pragma once

#include <atomic>
#include <cstdint>

namespace xkl::core {

// The kernel library's entries for a thread's settings; null where it has none.
struct kernel_settings {
    explicit kernel_settings(void *library) noexcept;
    bool complete() const noexcept
    {
        return set_mode && get_mode && set_status && get_status && get_callback;
    }

    void *library;
    uint32_t (*set_mode)(uint32_t);
    uint32_t (*get_mode)();
    int32_t (*set_status)(int32_t);
    int32_t (*get_status)();
    void *(*get_callback)();
};

class shared_call {
  public:
    explicit shared_call(void *library) noexcept;

    // False where somebody is told of each error: that happens on the caller's thread, element after
    // element.
    bool may_be_shared() const noexcept { return shareable_; }

    // Makes the parts' errors the caller's.
    void conclude() const noexcept;

    // The caller's settings in a thread, while it computes a part.
    class part {
      public:
        explicit part(shared_call &call) noexcept;
        ~part();
        part(const part &) = delete;
        part &operator=(const part &) = delete;

      private:
        shared_call &call_;
        uint32_t mode_before_;
        int32_t status_before_;
        unsigned control_before_;
    };

  private:
    void note(int32_t status) noexcept;

    const kernel_settings entries_;
    uint32_t mode_ = 0;
    unsigned control_ = 0; // the caller's rounding direction and treatment of denormal numbers
    bool shareable_ = false;
    std::atomic<int32_t> worst_{0}; // the smallest status of the parts so far, 0 for none
};

} // namespace xkl::core
