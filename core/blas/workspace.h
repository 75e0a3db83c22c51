// Space for vectors of one length, as many of them as are to be had: on the stack when it suffices, from
// the library's allocator otherwise, and fewer on the stack when that has none left. Only when not even one
// vector fits is the call given up, with a report and with its outputs untouched.
#pragma once

#include "elements.h"
#include "report.h"
#include "service/service_entries.h"

#include <cstddef>

namespace xkl::core {

template <class T>
class workspace {
  public:
    workspace(int64_t length, int64_t wanted, const char *routine) : width_(wanted)
    {
        const int64_t fitting = stack_elements / length;
        if (wanted <= fitting)
            return;
        outside_ = static_cast<T *>(xkl_serv_malloc(sizeof(T) * length * wanted, 64));
        if (outside_)
            return;
        width_ = fitting;
        if (fitting == 0)
            report(routine, letter_of<T>, no_memory);
    }
    ~workspace()
    {
        if (outside_)
            xkl_serv_free(outside_);
    }
    workspace(const workspace &) = delete;
    workspace &operator=(const workspace &) = delete;

    T *data() { return outside_ ? outside_ : reinterpret_cast<T *>(inside_); }
    /// How many vectors there is space for; 0 when the call must be given up
    int64_t width() const { return width_; }

  private:
    static constexpr int64_t stack_elements = 32 * 1024 / sizeof(T);
    int64_t width_;
    T *outside_ = nullptr;
    alignas(64) std::byte inside_[stack_elements * sizeof(T)];
};

} // namespace xkl::core
