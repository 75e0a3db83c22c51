// What all LAPACKE functions do alike, in the words of the generated bodies: the layout's test, reports, the
// NaN-check switch, and memory that is released whichever way a body ends.
#pragma once

#include "lapacke/sizes.h"
#include "xkl_types.h"

#include <atomic>
#include <cstddef>

namespace xkl::lapacke {

constexpr int row_major = 101;
constexpr int column_major = 102;

constexpr int64_t work_memory_error = -1010;
constexpr int64_t transpose_memory_error = -1011;

constexpr bool is_layout(int layout)
{
    return layout == column_major || layout == row_major;
}

/// Prints the message of `info`, and returns it.
[[gnu::cold, gnu::noinline]] int64_t reported(const char *name, int64_t info);

/// The end of a high-level function: one that could not get its workspaces says so.
inline int64_t finished(const char *name, int64_t info)
{
    return info == work_memory_error ? reported(name, info) : info;
}

/// The Fortran routine counts its arguments without the layout.
constexpr int64_t counting_layout(int64_t info)
{
    return info < 0 ? info - 1 : info;
}

/// -1 until the environment has been read, then 0 or 1. Written by LAPACKE_set_nancheck, and by whoever
/// finds it at -1; threads that find it so at once store the same value.
extern constinit std::atomic<int> nan_check;
[[gnu::cold, gnu::noinline]] int resolve_nan_check();

inline bool checks_nan()
{
    const int flag = nan_check.load(std::memory_order_relaxed);
    return (flag < 0 ? resolve_nan_check() : flag) != 0;
}

/// An array that the Fortran routine only reads, though its prototype doesn't tell.
template <class T>
constexpr T *as_fortran(const T *array)
{
    return const_cast<T *>(array);
}

/// A procedure that selects eigenvalues, whatever it looks at: the Fortran routine knows what to give it.
template <class Function>
xkl_select_function as_selection(Function *select)
{
    return reinterpret_cast<xkl_select_function>(reinterpret_cast<void (*)()>(select));
}

/// Memory of one call. After a failure nothing more is obtained, so that one test behind several requests is
/// enough.
class blocks {
  public:
    static constexpr int most_blocks = 8; // tablegen looks that no routine needs more

    ~blocks()
    {
        if (used_ != 0)
            release();
    }
    blocks() = default;
    blocks(const blocks &) = delete;
    blocks &operator=(const blocks &) = delete;

    template <class T>
    T *get(extent count)
    {
        return static_cast<T *>(obtain(count.value, sizeof(T)));
    }
    template <class T>
    T *get(int64_t count)
    {
        return static_cast<T *>(obtain(count, sizeof(T)));
    }
    bool failed() const { return failed_; }

  private:
    [[gnu::noinline]] void *obtain(int64_t count, size_t element);
    [[gnu::noinline]] void release();

    int used_ = 0;
    bool failed_ = false;
    void *blocks_[most_blocks];
};

/// Between a workspace and an argument of the caller.
template <class To, class From>
void hand_over(To *to, const From *from, int64_t count)
{
    for (int64_t i = 0; i < count; ++i)
        to[i] = static_cast<To>(from[i]);
}

} // namespace xkl::lapacke
