// Memory of the handles: arrays from the library's allocator that give themselves back. There are no
// exceptions here: an array that could not be made says so.
#pragma once

#include "blas/elements.h"
#include "service/service_entries.h"

#include <new>
#include <type_traits>
#include <utility>

namespace xkl::core::inspector {

template <class T>
class array {
    static_assert(std::is_trivially_destructible_v<T>);

  public:
    array() = default;
    array(array &&other) noexcept : first_(other.release()) {}
    array &operator=(array &&other) noexcept
    {
        std::swap(first_, other.first_);
        return *this;
    }
    ~array() { xkl_serv_free(first_); }

    /// False when there is no memory for count elements; they are not set.
    [[nodiscard]] bool make(int64_t count)
    {
        size_t bytes;
        if (__builtin_mul_overflow(count < 1 ? 1 : count, sizeof(T), &bytes))
            return false;
        xkl_serv_free(std::exchange(first_, static_cast<T *>(xkl_serv_malloc(bytes, 64))));
        return first_ != nullptr;
    }
    /// The same, all elements set
    [[nodiscard]] bool make(int64_t count, T value)
    {
        if (!make(count))
            return false;
        for (int64_t i = 0; i < count; ++i)
            first_[i] = value;
        return true;
    }
    T *data() const { return first_; }
    T &operator[](int64_t i) const { return first_[i]; }
    T *release() { return std::exchange(first_, nullptr); }

  private:
    T *first_ = nullptr;
};

/// A single object from the library's allocator, null when there is no memory; released by unmake.
template <class Object, class... Arguments>
Object *make(Arguments &&...arguments)
{
    void *const memory = xkl_serv_malloc(sizeof(Object), 64);
    return memory ? new (memory) Object(std::forward<Arguments>(arguments)...) : nullptr;
}

template <class Object>
void unmake(Object *object)
{
    if (!object)
        return;
    object->~Object();
    xkl_serv_free(object);
}

} // namespace xkl::core::inspector
