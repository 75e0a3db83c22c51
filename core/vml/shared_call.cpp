#include "vml/shared_call.h"

#include "xkl_vml_types.h"

#include <cerrno>
#include <dlfcn.h>
#include <immintrin.h>

namespace xkl::core {
namespace {

template <class Entry>
void fetch(void *library, const char *name, Entry &entry) noexcept
{
    entry = reinterpret_cast<Entry>(dlsym(library, name));
}

// The entries of the library that was used first are kept: it stays the only one outside of tests.
kernel_settings settings_of(void *library) noexcept
{
    static const kernel_settings first(library);
    return first.library == library ? first : kernel_settings(library);
}

} // namespace

kernel_settings::kernel_settings(void *from) noexcept : library(from)
{
    fetch(library, "xkl_vml_kernel_SetMode", set_mode);
    fetch(library, "xkl_vml_kernel_GetMode", get_mode);
    fetch(library, "xkl_vml_kernel_SetErrStatus", set_status);
    fetch(library, "xkl_vml_kernel_GetErrStatus", get_status);
    fetch(library, "xkl_vml_kernel_GetErrorCallBack", get_callback);
}

shared_call::shared_call(void *library) noexcept : entries_(settings_of(library))
{
    if (!entries_.complete())
        return;
    mode_ = entries_.get_mode();
    control_ = _mm_getcsr();
    shareable_ = !entries_.get_callback() && !(mode_ & VML_ERRMODE_STDERR);
}

shared_call::part::part(shared_call &call) noexcept
    : call_(call), mode_before_(call.entries_.set_mode(call.mode_)),
      status_before_(call.entries_.set_status(VML_STATUS_OK)), control_before_(_mm_getcsr())
{
    _mm_setcsr(call.control_);
}

shared_call::part::~part()
{
    _mm_setcsr(control_before_);
    call_.note(call_.entries_.set_status(status_before_));
    call_.entries_.set_mode(mode_before_);
}

void shared_call::note(int32_t status) noexcept
{
    int32_t worst = worst_.load(std::memory_order_relaxed);
    while (status > 0 && (worst == 0 || status < worst) &&
           !worst_.compare_exchange_weak(worst, status, std::memory_order_relaxed)) {
    }
}

void shared_call::conclude() const noexcept
{
    const int32_t worst = worst_.load(std::memory_order_relaxed);
    if (worst == 0)
        return;
    entries_.set_status(worst);
    if (mode_ & VML_ERRMODE_ERRNO)
        errno = worst == VML_STATUS_ERRDOM ? EDOM : ERANGE;
}

} // namespace xkl::core
