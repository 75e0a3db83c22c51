// The computations: every pointer that the descriptor asks for must be there, then its routine is called.
#include "dfti/descriptor.h"
#include "dfti/trace.h"
#include "frame/verbose.h"

#include <cstdarg>

using namespace xkl::dfti;

namespace {

/// What a call has besides its first pointer; what a descriptor does not take is null.
struct further_data {
    void *second = nullptr, *third = nullptr, *fourth = nullptr;
};

template <direction Way>
xkl_dft_compute *routine_of(const DFTI_DESCRIPTOR &descriptor)
{
    return Way == direction::forward ? descriptor.forward : descriptor.backward;
}

/// Why a call cannot be made, before further data are looked at. The tag is left unread: the routine is null
/// wherever it must not be called.
template <direction Way>
int32_t refusal(DFTI_DESCRIPTOR_HANDLE handle, const void *x)
{
    if (!handle)
        return DFTI_BAD_DESCRIPTOR;
    if (!routine_of<Way>(*handle))
        return DFTI_INVALID_CONFIGURATION;
    return x ? DFTI_NO_ERROR : DFTI_INCONSISTENT_CONFIGURATION;
}

template <direction Way>
[[gnu::cold, gnu::noinline]] int32_t compute_traced(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *second,
                                                    void *third, void *fourth)
{
    const xkl::stopwatch watch;
    const int32_t status = routine_of<Way>(*handle)(handle, x, second, third, fourth, nullptr);
    print_trace_line(watch.elapsed(), Way, handle, x, second);
    return status;
}

template <direction Way>
[[gnu::always_inline]] inline int32_t compute(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *second,
                                              void *third, void *fourth)
{
    if (__atomic_load_n(xkl_serv_verbose_mode(), __ATOMIC_RELAXED)) [[unlikely]]
        return compute_traced<Way>(handle, x, second, third, fourth);
    return routine_of<Way>(*handle)(handle, x, second, third, fourth, nullptr);
}

/// Takes as many further pointers from the list as the descriptor says; false if one of them is null.
bool read_further(int32_t count, va_list tail, further_data &data)
{
    if (count >= 2 && !(data.second = va_arg(tail, void *)))
        return false;
    if (count > 2 && !(data.third = va_arg(tail, void *)))
        return false;
    return count < 4 || (data.fourth = va_arg(tail, void *));
}

template <direction Way>
int32_t compute_listed(DFTI_DESCRIPTOR_HANDLE handle, void *x, va_list tail)
{
    if (const int32_t status = refusal<Way>(handle, x); status != DFTI_NO_ERROR)
        return status;
    further_data data;
    if (!read_further(handle->array_count, tail, data))
        return DFTI_INCONSISTENT_CONFIGURATION;
    return compute<Way>(handle, x, data.second, data.third, data.fourth);
}

template <direction Way>
int32_t compute_fixed(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *y)
{
    if (const int32_t status = refusal<Way>(handle, x); status != DFTI_NO_ERROR)
        return status;
    return compute<Way>(handle, x, y, nullptr, nullptr);
}

} // namespace

extern "C" {

long DftiComputeForward(DFTI_DESCRIPTOR_HANDLE handle, void *x, ...)
{
    va_list tail;
    va_start(tail, x);
    const int32_t status = compute_listed<direction::forward>(handle, x, tail);
    va_end(tail);
    return status;
}
decltype(DftiComputeForward) xkl_dft_dfticomputeforward __attribute__((alias("DftiComputeForward")));

long DftiComputeBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x, ...)
{
    va_list tail;
    va_start(tail, x);
    const int32_t status = compute_listed<direction::backward>(handle, x, tail);
    va_end(tail);
    return status;
}
decltype(DftiComputeBackward) xkl_dft_dfticomputebackward __attribute__((alias("DftiComputeBackward")));

long DftiComputeInPlaceForward(DFTI_DESCRIPTOR_HANDLE handle, void *x)
{
    return compute_fixed<direction::forward>(handle, x, nullptr);
}
decltype(DftiComputeInPlaceForward) xkl_dft_dfticomputeinplaceforward
    __attribute__((alias("DftiComputeInPlaceForward")));

long DftiComputeInPlaceBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x)
{
    return compute_fixed<direction::backward>(handle, x, nullptr);
}
decltype(DftiComputeInPlaceBackward) xkl_dft_dfticomputeinplacebackward
    __attribute__((alias("DftiComputeInPlaceBackward")));

long DftiComputeOutOfPlaceForward(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *y)
{
    return compute_fixed<direction::forward>(handle, x, y);
}
decltype(DftiComputeOutOfPlaceForward) xkl_dft_dfticomputeoutofplaceforward
    __attribute__((alias("DftiComputeOutOfPlaceForward")));

long DftiComputeOutOfPlaceBackward(DFTI_DESCRIPTOR_HANDLE handle, void *x, void *y)
{
    return compute_fixed<direction::backward>(handle, x, y);
}
decltype(DftiComputeOutOfPlaceBackward) xkl_dft_dfticomputeoutofplacebackward
    __attribute__((alias("DftiComputeOutOfPlaceBackward")));
}
