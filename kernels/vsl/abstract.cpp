// Abstract streams: their numbers are those of a buffer of the caller, who refills it when it runs empty.
#include "vsl/stream_object.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <type_traits>

namespace xkl::vsl {

namespace {

template <class T>
using update_function = int (*)(VSLStreamStatePtr, int *, T[], int *, int *, int *);

/// Asks for at least one number, which may be written from `next` on.
template <class T>
int32_t refill(stream &s, caller_buffer &buffer) noexcept
{
    int count = buffer.count, least = 1, most = buffer.count, from = buffer.next;
    const auto update = reinterpret_cast<update_function<T>>(buffer.update);
    const int got = update(&s, &count, static_cast<T *>(buffer.numbers), &least, &most, &from);
    if (got == 0)
        return VSL_RNG_ERROR_NO_NUMBERS;
    if (got < 0 || got > buffer.count)
        return VSL_RNG_ERROR_BAD_UPDATE;
    buffer.fresh = got;
    return VSL_STATUS_OK;
}

template <class T>
int32_t new_abstract(VSLStreamStatePtr *out, int32_t brng, int32_t n, const T *numbers, double a, double b,
                     update_function<std::type_identity_t<T>> update) noexcept
{
    if (!out)
        return VSL_ERROR_NULL_PTR;
    if (n <= 0 || !numbers || !update || !(a < b))
        return VSL_ERROR_BADARGS;
    owned_stream made = allocate(brng, state_offset + sizeof(caller_buffer));
    if (!made)
        return VSL_ERROR_MEM_FAILURE;
    // The callback gets the buffer to write into, as the caller who passed it may.
    new (state_of(*made)) caller_buffer{.numbers = const_cast<T *>(numbers),
                                        .update = reinterpret_cast<void (*)()>(update),
                                        .count = n,
                                        .next = 0,
                                        .fresh = n,
                                        .a = a,
                                        .b = b};
    *out = made.release();
    return VSL_STATUS_OK;
}

} // namespace

template <class T>
int32_t take(stream &s, int32_t n, T *r) noexcept
{
    auto &buffer = *static_cast<caller_buffer *>(state_of(s));
    while (n > 0) {
        if (buffer.fresh == 0)
            if (const int32_t status = refill<T>(s, buffer); status < 0)
                return status;
        const int32_t count = std::min({n, buffer.fresh, buffer.count - buffer.next});
        std::copy_n(static_cast<const T *>(buffer.numbers) + buffer.next, count, r);
        r += count;
        n -= count;
        buffer.fresh -= count;
        buffer.next = (buffer.next + count) % buffer.count;
    }
    return VSL_STATUS_OK;
}
template int32_t take(stream &, int32_t, uint32_t *) noexcept;
template int32_t take(stream &, int32_t, double *) noexcept;
template int32_t take(stream &, int32_t, float *) noexcept;

} // namespace xkl::vsl

using namespace xkl::vsl;

#pragma GCC visibility push(default)
extern "C" {

int32_t __vsliNewAbstractStream(VSLStreamStatePtr *out, int32_t n, const uint32_t *numbers,
                                iUpdateFuncPtr update)
{
    return new_abstract(out, VSL_BRNG_IABSTRACT, n, numbers, 0, 1, update);
}

int32_t __vsldNewAbstractStream(VSLStreamStatePtr *out, int32_t n, const double *numbers, double a,
                                double b, dUpdateFuncPtr update)
{
    return new_abstract(out, VSL_BRNG_DABSTRACT, n, numbers, a, b, update);
}

int32_t __vslsNewAbstractStream(VSLStreamStatePtr *out, int32_t n, const float *numbers, float a, float b,
                                sUpdateFuncPtr update)
{
    return new_abstract(out, VSL_BRNG_SABSTRACT, n, numbers, a, b, update);
}

} // extern "C"
#pragma GCC visibility pop
