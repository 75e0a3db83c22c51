// Mode, status and callback, and the entries that read and set them.
#include "call.h"

namespace xkl::kernels {
namespace {
// Each thread starts with the default mode, status 0 and no callback. Written by the entries below, and the
// status by a call that found errors; read by calls of the same thread alone.
constinit thread_local thread_settings settings = {VML_HA | VML_ERRMODE_DEFAULT, VML_STATUS_OK, nullptr};
} // namespace

thread_settings &settings_of_thread() noexcept
{
    return settings;
}

template <class T>
static T exchange(T &place, T value) noexcept
{
    const T before = place;
    place = value;
    return before;
}

} // namespace xkl::kernels

using xkl::kernels::exchange;
using xkl::kernels::settings;

// Setting and clearing give back what was there before. A mode is kept as it was given; what its bits
// leave open stands at the default.
#pragma GCC visibility push(default)
extern "C" {
uint32_t xkl_vml_kernel_SetMode(uint32_t mode)
{
    return exchange(settings.mode, mode);
}

uint32_t xkl_vml_kernel_GetMode(void)
{
    return settings.mode;
}

int32_t xkl_vml_kernel_SetErrStatus(int32_t status)
{
    return exchange(settings.status, status);
}

int32_t xkl_vml_kernel_GetErrStatus(void)
{
    return settings.status;
}

int32_t xkl_vml_kernel_ClearErrStatus(void)
{
    return exchange<int32_t>(settings.status, VML_STATUS_OK);
}

xkl_vml_error_callback xkl_vml_kernel_SetErrorCallBack(xkl_vml_error_callback callback)
{
    return exchange(settings.callback, callback);
}

xkl_vml_error_callback xkl_vml_kernel_GetErrorCallBack(void)
{
    return settings.callback;
}

xkl_vml_error_callback xkl_vml_kernel_ClearErrorCallBack(void)
{
    return exchange<xkl_vml_error_callback>(settings.callback, nullptr);
}
}
#pragma GCC visibility pop
