// An array between two pages that can't be touched, so that a read or write outside of it ends the test. Its
// elements touch one of these pages: by turns the one before and the one behind.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <span>

template <class T>
class guarded_array {
  public:
    explicit guarded_array(int64_t count) : count_(static_cast<std::size_t>(count))
    {
        static bool at_end = false;
        at_end = !at_end;
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inside = (count_ * sizeof(T) + page - 1) / page * page;
        whole_ = inside + 2 * page;
        start_ = static_cast<char *>(mmap(nullptr, whole_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (start_ == MAP_FAILED ||
            (inside > 0 && mprotect(start_ + page, inside, PROT_READ | PROT_WRITE) != 0))
            throw std::bad_alloc();
        data_ = reinterpret_cast<T *>(start_ + page + (at_end ? inside - count_ * sizeof(T) : 0));
    }
    ~guarded_array() { munmap(start_, whole_); }
    guarded_array(const guarded_array &) = delete;
    guarded_array &operator=(const guarded_array &) = delete;

    T *data() { return data_; }
    T &operator[](int64_t i) { return data_[i]; }
    std::span<T> all() { return {data_, count_}; }

  private:
    std::size_t count_, whole_ = 0;
    char *start_ = nullptr;
    T *data_ = nullptr;
};
