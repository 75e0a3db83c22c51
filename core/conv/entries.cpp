// The entries: they check everything, since nobody before them does, and write nothing unless all is well.
#include "conv/task.h"
#include "conv/transform.h"

#include "core_conv.h"
#include "service/service_entries.h"
#include "xkl_vsl_types.h"

#include <algorithm>
#include <cstring>
#include <new>

using namespace xkl::core;
using namespace xkl::core::conv;

namespace {

/// What edits change, by the codes of the interface library
enum : int32_t { edit_mode = 3, edit_start = 5, edit_decimation = 6, edit_internal_precision = 9 };

bool is_mode(int32_t mode) noexcept
{
    return mode == VSL_CONV_MODE_AUTO || mode == VSL_CONV_MODE_DIRECT || mode == VSL_CONV_MODE_FFT;
}

bool is_precision(int32_t precision) noexcept
{
    return precision == VSL_CONV_PRECISION_SINGLE || precision == VSL_CONV_PRECISION_DOUBLE;
}

task *live(void *handle) noexcept
{
    auto *const found = static_cast<task *>(handle);
    return found && found->mark == live_task ? found : nullptr;
}

task *allocate_task() noexcept
{
    void *const memory = xkl_serv_malloc(sizeof(task), 64);
    return memory ? new (memory) task() : nullptr;
}

bool allocate_input(task &t) noexcept
{
    t.x = xkl_serv_malloc(static_cast<size_t>(bytes_of(t.set, t.set.x_shape)), 64);
    return t.x != nullptr;
}

void release(task *t) noexcept
{
    t->mark = 0;
    discard(t->plan.load(std::memory_order_relaxed));
    if (t->x)
        xkl_serv_free(t->x);
    t->~task();
    xkl_serv_free(t);
}

int32_t take_shape(const settings &t, const int32_t *given, int32_t *taken, int32_t status) noexcept
{
    if (!given || std::any_of(given, given + t.rank, [](int32_t length) { return length < 1; }))
        return status;
    std::copy_n(given, t.rank, taken);
    return bytes_of(t, taken) < 0 ? status : VSL_CC_STATUS_OK;
}

int32_t settle(settings &t, int32_t kind, int32_t one, int32_t mode, int32_t domain, int32_t precision,
               int32_t dims, const int32_t *const (&shapes)[3]) noexcept
{
    if (kind != kind_convolution && kind != kind_correlation)
        return VSL_CC_ERROR_KIND;
    if (one != 1)
        return VSL_CC_ERROR_JOB;
    if (!is_mode(mode))
        return VSL_CC_ERROR_MODE;
    if (domain != domain_real && domain != domain_complex)
        return VSL_CC_ERROR_TYPE;
    if (!is_precision(precision))
        return VSL_CC_ERROR_EXTERNAL_PRECISION;
    if (dims < 1 || dims > max_rank)
        return VSL_CC_ERROR_DIMS;
    t.kind = kind;
    t.mode = mode;
    t.domain = domain;
    t.precision = t.internal_precision = precision;
    t.rank = dims;
    std::fill_n(t.decimation, dims, 1);
    int32_t status = take_shape(t, shapes[0], t.x_shape, VSL_CC_ERROR_XSHAPE);
    if (status == VSL_CC_STATUS_OK)
        status = take_shape(t, shapes[1], t.y_shape, VSL_CC_ERROR_YSHAPE);
    if (status == VSL_CC_STATUS_OK)
        status = take_shape(t, shapes[2], t.z_shape, VSL_CC_ERROR_ZSHAPE);
    return status;
}

/// Checks an array's address and strides; the statuses are those for either.
int32_t check_array(const settings &t, const void *elements, const int32_t *shape, const int32_t *strides,
                    int32_t no_elements, int32_t bad_strides) noexcept
{
    if (!elements)
        return no_elements;
    if (!strides || std::any_of(strides, strides + t.rank, [](int32_t stride) { return stride == 0; }))
        return bad_strides;
    return addressable(t, shape, strides) ? VSL_CC_STATUS_OK : bad_strides;
}

int32_t check_x(const settings &t, const void *x, const int32_t *xstride) noexcept
{
    return check_array(t, x, t.x_shape, xstride, VSL_CC_ERROR_X, VSL_CC_ERROR_XSTRIDE);
}

int32_t run(task &t, const array &x, const void *y, const int32_t *ystride, void *z,
            const int32_t *zstride) noexcept
{
    int32_t status = check_array(t.set, y, t.set.y_shape, ystride, VSL_CC_ERROR_Y, VSL_CC_ERROR_YSTRIDE);
    if (status == VSL_CC_STATUS_OK)
        status = check_array(t.set, z, t.set.z_shape, zstride, VSL_CC_ERROR_Z, VSL_CC_ERROR_ZSTRIDE);
    return status == VSL_CC_STATUS_OK ? execute(t, x, {y, ystride}, z, zstride) : status;
}

/// A task that is given to the caller only when it is complete
class new_task {
  public:
    new_task() noexcept : made_(allocate_task()) {}
    ~new_task()
    {
        if (made_)
            release(made_);
    }
    new_task(const new_task &) = delete;
    new_task &operator=(const new_task &) = delete;

    explicit operator bool() const noexcept { return made_ != nullptr; }
    task *operator->() const noexcept { return made_; }
    task &operator*() const noexcept { return *made_; }
    int32_t hand_to(void **caller) noexcept
    {
        made_->mark = live_task;
        *caller = made_;
        made_ = nullptr;
        return VSL_CC_STATUS_OK;
    }

  private:
    task *made_;
};

} // namespace

extern "C" {

int32_t xkl_conv_newtask(void **handle, int32_t kind, int32_t one, int32_t mode, int32_t domain,
                         int32_t precision, int32_t dims, const int32_t *xshape, const int32_t *yshape,
                         const int32_t *zshape)
{
    if (!handle)
        return VSL_CC_ERROR_BAD_ARGUMENT;
    new_task made;
    if (!made)
        return VSL_CC_ERROR_ALLOCATION_FAILURE;
    const int32_t status =
        settle(made->set, kind, one, mode, domain, precision, dims, {xshape, yshape, zshape});
    return status == VSL_CC_STATUS_OK ? made.hand_to(handle) : status;
}

int32_t xkl_conv_newtaskx(void **handle, int32_t kind, int32_t one, int32_t mode, int32_t domain,
                          int32_t precision, int32_t dims, const int32_t *xshape, const int32_t *yshape,
                          const int32_t *zshape, const void *x, const int32_t *xstride)
{
    if (!handle)
        return VSL_CC_ERROR_BAD_ARGUMENT;
    new_task made;
    if (!made)
        return VSL_CC_ERROR_ALLOCATION_FAILURE;
    int32_t status = settle(made->set, kind, one, mode, domain, precision, dims, {xshape, yshape, zshape});
    if (status == VSL_CC_STATUS_OK)
        status = check_x(made->set, x, xstride);
    if (status != VSL_CC_STATUS_OK)
        return status;
    if (!allocate_input(*made))
        return VSL_CC_ERROR_ALLOCATION_FAILURE;
    copy_fixed_input(*made, {x, xstride});
    return made.hand_to(handle);
}

int32_t xkl_conv_exec(void *handle, const void *x, const int32_t *xstride, const void *y,
                      const int32_t *ystride, void *z, const int32_t *zstride)
{
    task *const found = live(handle);
    if (!found)
        return VSL_CC_ERROR_BAD_DESCRIPTOR;
    if (found->x)
        return VSL_CC_ERROR_JOB;
    const int32_t status = check_x(found->set, x, xstride);
    return status == VSL_CC_STATUS_OK ? run(*found, {x, xstride}, y, ystride, z, zstride) : status;
}

int32_t xkl_conv_execx(void *handle, const void *y, const int32_t *ystride, void *z, const int32_t *zstride)
{
    task *const found = live(handle);
    if (!found)
        return VSL_CC_ERROR_BAD_DESCRIPTOR;
    if (!found->x)
        return VSL_CC_ERROR_JOB;
    return run(*found, {found->x, nullptr}, y, ystride, z, zstride);
}

// A plan is for the settings that it was made with.
int32_t xkl_conv_edittask(void *handle, int32_t code, const int32_t *values)
{
    task *const found = live(handle);
    if (!found)
        return VSL_CC_ERROR_BAD_DESCRIPTOR;
    switch (code) {
    case edit_mode:
        if (!values || !is_mode(*values))
            return VSL_CC_ERROR_MODE;
        found->set.mode = *values;
        break;
    case edit_start:
        if (!values)
            return VSL_CC_ERROR_START;
        std::copy_n(values, found->set.rank, found->set.start);
        found->set.start_is_set = 1;
        break;
    case edit_decimation:
        if (!values || std::any_of(values, values + found->set.rank, [](int32_t step) { return step < 1; }))
            return VSL_CC_ERROR_DECIMATION;
        std::copy_n(values, found->set.rank, found->set.decimation);
        break;
    case edit_internal_precision:
        if (!values || !is_precision(*values))
            return VSL_CC_ERROR_INTERNAL_PRECISION;
        found->set.internal_precision = *values;
        break;
    default:
        return VSL_CC_ERROR_BAD_ARGUMENT;
    }
    discard(found->plan.exchange(nullptr, std::memory_order_relaxed));
    return VSL_CC_STATUS_OK;
}

// The copy makes a plan of its own when it is executed.
int32_t xkl_conv_copytask(void **copy, void *handle)
{
    if (!copy)
        return VSL_CC_ERROR_BAD_ARGUMENT;
    const task *const source = live(handle);
    if (!source)
        return VSL_CC_ERROR_BAD_DESCRIPTOR;
    new_task made;
    if (!made)
        return VSL_CC_ERROR_ALLOCATION_FAILURE;
    made->set = source->set;
    if (source->x) {
        if (!allocate_input(*made))
            return VSL_CC_ERROR_ALLOCATION_FAILURE;
        std::memcpy(made->x, source->x, static_cast<size_t>(bytes_of(source->set, source->set.x_shape)));
    }
    return made.hand_to(copy);
}

int32_t xkl_conv_deletetask(void **handle)
{
    task *const found = handle ? live(*handle) : nullptr;
    if (!found)
        return VSL_CC_ERROR_BAD_DESCRIPTOR;
    release(found);
    *handle = nullptr;
    return VSL_CC_STATUS_OK;
}
}
