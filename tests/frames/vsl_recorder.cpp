#include "vsl_recorder.h"

#include "core_conv.h"
#include "recorder.h"
#include "vml_recorder.h"

#include <cstdarg>
#include <cstdio>

vsl_recording vsl_recorded;

int32_t next_status()
{
    if (vsl_recorded.statuses.empty())
        return 0;
    const int32_t status = vsl_recorded.statuses.front();
    vsl_recorded.statuses.erase(vsl_recorded.statuses.begin());
    return status;
}

namespace {

void keep(std::initializer_list<const int32_t *> arrays, int32_t count)
{
    vsl_recorded.arrays.clear();
    for (const int32_t *each : arrays)
        vsl_recorded.arrays.push_back(each ? narrowed_array({each, each + (count > 0 ? count : 0)})
                                           : std::nullopt);
}

int32_t dimensions_of(const void *task)
{
    return task ? static_cast<const recorded_task *>(task)->dimensions : 1;
}

} // namespace

extern "C" {

int xkl_serv_sprintf_s(char *buffer, size_t size, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(buffer, size, format, values);
    va_end(values);
    return length;
}

int32_t xkl_conv_newtask(void **task, int32_t kind, int32_t one, int32_t mode, int32_t domain,
                         int32_t precision, int32_t dims, const int32_t *x, const int32_t *y,
                         const int32_t *z)
{
    record("xkl_conv_newtask", {word(task), kind, one, mode, domain, precision, dims});
    keep({x, y, z}, dims);
    return next_status();
}

int32_t xkl_conv_newtaskx(void **task, int32_t kind, int32_t one, int32_t mode, int32_t domain,
                          int32_t precision, int32_t dims, const int32_t *x, const int32_t *y,
                          const int32_t *z, const void *data, const int32_t *stride)
{
    record("xkl_conv_newtaskx", {word(task), kind, one, mode, domain, precision, dims, word(data)});
    keep({x, y, z, stride}, dims);
    return next_status();
}

// The dimensions of a routine for vectors are not in its task, which tests make with one dimension.
int32_t xkl_conv_exec(void *task, const void *x, const int32_t *xstride, const void *y,
                      const int32_t *ystride, void *z, const int32_t *zstride)
{
    record("xkl_conv_exec", {word(task), word(x), word(y), word(z)});
    keep({xstride, ystride, zstride}, dimensions_of(task));
    return next_status();
}

int32_t xkl_conv_execx(void *task, const void *y, const int32_t *ystride, void *z, const int32_t *zstride)
{
    record("xkl_conv_execx", {word(task), word(y), word(z)});
    keep({ystride, zstride}, dimensions_of(task));
    return next_status();
}

int32_t xkl_conv_edittask(void *task, int32_t code, const int32_t *values)
{
    constexpr int32_t mode = 3, internal_precision = 9;
    record("xkl_conv_edittask", {word(task), code});
    keep({values}, code == mode || code == internal_precision ? 1 : dimensions_of(task));
    return next_status();
}

int32_t xkl_conv_copytask(void **newtask, void *task)
{
    record("xkl_conv_copytask", {word(newtask), word(task)});
    return next_status();
}

int32_t xkl_conv_deletetask(void **task)
{
    record("xkl_conv_deletetask", {word(task)});
    return next_status();
}
}
