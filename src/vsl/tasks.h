// Convolution and correlation tasks: the core's entries take integers of 32 bits, so every integer, and
// every array of integers, is narrowed for the length of a call. Nothing is checked here; the core
// validates what arrives, and its status goes back unchanged.
#pragma once

#include "core_conv.h"
#include "xkl_vsl_types.h"

#include <cstddef>
#include <cstdint>

extern "C" {
void *xkl_serv_iface_malloc(size_t size, int align);
void xkl_serv_iface_free(void *block);
}

namespace xkl::vsl {

enum class task_kind : int32_t { convolution = 1, correlation = 2 };
enum class edit_code : int32_t { mode = 3, start = 5, decimation = 6, internal_precision = 9 };

/// An array narrowed to 32 bits; null where the caller's is. Memory is asked for whatever the count is, and
/// where there is none the core receives null.
class narrowed {
  public:
    narrowed(const int64_t *wide, int64_t count)
    {
        constexpr int32_t alignment = 128;
        if (!wide)
            return;
        copy_ = static_cast<int32_t *>(
            xkl_serv_iface_malloc(static_cast<std::size_t>(count) * sizeof(int32_t), alignment));
        for (int64_t i = 0; copy_ && i < count; ++i)
            copy_[i] = static_cast<int32_t>(wide[i]);
    }
    ~narrowed()
    {
        if (copy_)
            xkl_serv_iface_free(copy_);
    }
    narrowed(const narrowed &) = delete;
    narrowed &operator=(const narrowed &) = delete;

    operator const int32_t *() const { return copy_; }

  private:
    int32_t *copy_ = nullptr;
};

/// One integer, by address.
class narrowed_one {
  public:
    explicit narrowed_one(int64_t wide) : value_(static_cast<int32_t>(wide)) {}
    operator const int32_t *() const { return &value_; }

  private:
    int32_t value_;
};

/// The core keeps a task's number of dimensions in the task. Without a task there is none.
inline int64_t dimensions_of(VSLConvTaskPtr task)
{
    constexpr std::size_t dimensions_at = 68;
    if (!task)
        return 0;
    int32_t dimensions = 0;
    __builtin_memcpy(&dimensions, static_cast<const char *>(task) + dimensions_at, sizeof dimensions);
    return dimensions;
}

constexpr int32_t domain_of(char element)
{
    return element == 'c' || element == 'z' ? 2 : 1;
}
constexpr int32_t precision_of(char element)
{
    return element == 'd' || element == 'z' ? 2 : 1;
}

/// What the core's NewTask entries take ahead of the shapes: `entry(task, kind, 1, mode, domain, precision,
/// dims, ...)`.
template <auto entry, task_kind kind, char element, class... Rest>
int32_t create(VSLConvTaskPtr *task, int64_t mode, int64_t dims, Rest... rest)
{
    return entry(task, static_cast<int32_t>(kind), 1, static_cast<int32_t>(mode), domain_of(element),
                 precision_of(element), static_cast<int32_t>(dims), rest...);
}

template <task_kind kind, char element>
int32_t new_task(VSLConvTaskPtr *task, int64_t mode, int64_t dims, const int64_t *xshape,
                 const int64_t *yshape, const int64_t *zshape)
{
    const narrowed x(xshape, dims), y(yshape, dims), z(zshape, dims);
    return create<xkl_conv_newtask, kind, element, const int32_t *, const int32_t *, const int32_t *>(
        task, mode, dims, x, y, z);
}

template <task_kind kind, char element>
int32_t new_task_x(VSLConvTaskPtr *task, int64_t mode, int64_t dims, const int64_t *xshape,
                   const int64_t *yshape, const int64_t *zshape, const void *x, const int64_t *xstride)
{
    const narrowed x32(xshape, dims), y32(yshape, dims), z32(zshape, dims), stride(xstride, dims);
    return create<xkl_conv_newtaskx, kind, element, const int32_t *, const int32_t *, const int32_t *,
                  const void *, const int32_t *>(task, mode, dims, x32, y32, z32, x, stride);
}

template <task_kind kind, char element>
int32_t new_task_1d(VSLConvTaskPtr *task, int64_t mode, int64_t xshape, int64_t yshape, int64_t zshape)
{
    const narrowed_one x(xshape), y(yshape), z(zshape);
    return create<xkl_conv_newtask, kind, element, const int32_t *, const int32_t *, const int32_t *>(
        task, mode, 1, x, y, z);
}

template <task_kind kind, char element>
int32_t new_task_x_1d(VSLConvTaskPtr *task, int64_t mode, int64_t xshape, int64_t yshape, int64_t zshape,
                      const void *x, int64_t xstride)
{
    const narrowed_one x32(xshape), y32(yshape), z32(zshape), stride(xstride);
    return create<xkl_conv_newtaskx, kind, element, const int32_t *, const int32_t *, const int32_t *,
                  const void *, const int32_t *>(task, mode, 1, x32, y32, z32, x, stride);
}

template <task_kind, char>
int32_t exec(VSLConvTaskPtr task, const void *x, const int64_t *xstride, const void *y,
             const int64_t *ystride, void *z, const int64_t *zstride)
{
    const int64_t dims = dimensions_of(task);
    const narrowed sx(xstride, dims), sy(ystride, dims), sz(zstride, dims);
    return xkl_conv_exec(task, x, sx, y, sy, z, sz);
}

template <task_kind, char>
int32_t exec_x(VSLConvTaskPtr task, const void *y, const int64_t *ystride, void *z, const int64_t *zstride)
{
    const int64_t dims = dimensions_of(task);
    const narrowed sy(ystride, dims), sz(zstride, dims);
    return xkl_conv_execx(task, y, sy, z, sz);
}

template <task_kind, char>
int32_t exec_1d(VSLConvTaskPtr task, const void *x, int64_t xstride, const void *y, int64_t ystride,
                void *z, int64_t zstride)
{
    const narrowed_one sx(xstride), sy(ystride), sz(zstride);
    return xkl_conv_exec(task, x, sx, y, sy, z, sz);
}

template <task_kind, char>
int32_t exec_x_1d(VSLConvTaskPtr task, const void *y, int64_t ystride, void *z, int64_t zstride)
{
    const narrowed_one sy(ystride), sz(zstride);
    return xkl_conv_execx(task, y, sy, z, sz);
}

template <edit_code code>
int32_t edit(VSLConvTaskPtr task, int64_t value)
{
    return xkl_conv_edittask(task, static_cast<int32_t>(code), narrowed_one(value));
}

template <edit_code code>
int32_t edit_array(VSLConvTaskPtr task, const int64_t *values)
{
    return xkl_conv_edittask(task, static_cast<int32_t>(code), narrowed(values, dimensions_of(task)));
}

inline int32_t copy_task(VSLConvTaskPtr *newtask, VSLConvTaskPtr source)
{
    return xkl_conv_copytask(newtask, source);
}

inline int32_t delete_task(VSLConvTaskPtr *task)
{
    return xkl_conv_deletetask(task);
}

} // namespace xkl::vsl
