// Creation of descriptors. Lengths are refused here only where no core could serve them; whatever else is
// wrong with them, the core says.
#include "dfti/descriptor.h"

#include <cstdarg>

using namespace xkl::dfti;

namespace {

using creator = int32_t(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t reserved);
using line_creator = int32_t(DFTI_DESCRIPTOR **handle, int64_t length, int64_t reserved);

template <class Creator>
struct creators_of_precision {
    Creator *for_complex, *for_real;

    /// Null for a domain that is none.
    Creator *of(int domain) const
    {
        return domain == DFTI_COMPLEX ? for_complex : domain == DFTI_REAL ? for_real : nullptr;
    }
};

using creators = creators_of_precision<creator>;
using line_creators = creators_of_precision<line_creator>;

constexpr creators in_single = {xkl_dft_dfti_create_scmd, xkl_dft_dfti_create_srmd};
constexpr creators in_double = {xkl_dft_dfti_create_dcmd, xkl_dft_dfti_create_drmd};
constexpr creators in_none = {nullptr, nullptr};
constexpr line_creators line_in_single = {xkl_dft_dfti_create_sc1d, xkl_dft_dfti_create_sr1d};
constexpr line_creators line_in_double = {xkl_dft_dfti_create_dc1d, xkl_dft_dfti_create_dr1d};

constexpr const creators &creators_for(int precision)
{
    return precision == DFTI_SINGLE ? in_single : precision == DFTI_DOUBLE ? in_double : in_none;
}

/// What a creator has left behind goes through the core's hands once more.
long blessed(int32_t status, const DFTI_DESCRIPTOR_HANDLE *handle)
{
    if (status == DFTI_NO_ERROR)
        xkl_dft_bless_node_thr(*handle);
    return status;
}

/// The lengths are in the core's order.
long create(DFTI_DESCRIPTOR_HANDLE *handle, const creators &by, int domain, int64_t dimension,
            const int64_t *lengths)
{
    for (int64_t i = 0; i < dimension; ++i)
        if (lengths[i] == 0)
            return DFTI_INVALID_CONFIGURATION;
    creator *const make = by.of(domain);
    if (!make)
        return DFTI_INVALID_CONFIGURATION;
    return blessed(make(handle, static_cast<int32_t>(dimension), lengths, 0), handle);
}

long create_from_vector(DFTI_DESCRIPTOR_HANDLE *handle, const creators &by, int domain, int64_t dimension,
                        const int64_t *lengths)
{
    if (!lengths)
        return DFTI_INCONSISTENT_CONFIGURATION;
    int64_t reversed[most_dimensions];
    copy_reversed(lengths, dimension, reversed);
    return create(handle, by, domain, dimension, reversed);
}

long create_line(DFTI_DESCRIPTOR_HANDLE *handle, const line_creators &by, int domain, int64_t length)
{
    line_creator *const make = by.of(domain);
    if (length <= 0 || !make)
        return DFTI_INVALID_CONFIGURATION;
    return blessed(make(handle, length, 0), handle);
}

/// What comes first in every creation: a place for the handle, which no refusal leaves as it was.
bool clear(DFTI_DESCRIPTOR_HANDLE *handle)
{
    if (handle)
        *handle = nullptr;
    return handle;
}

bool is_dimension(int64_t dimension)
{
    return dimension >= 1 && dimension <= most_dimensions;
}

} // namespace

extern "C" {

long DftiCreateDescriptor(DFTI_DESCRIPTOR_HANDLE *handle, int precision, int domain, int64_t dimension, ...)
{
    if (!clear(handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    if (!is_dimension(dimension))
        return DFTI_INVALID_CONFIGURATION;
    va_list tail;
    va_start(tail, dimension);
    long status = DFTI_INVALID_CONFIGURATION;
    if (dimension == 1) {
        if (const auto length = va_arg(tail, int64_t); length > 0)
            status = create(handle, creators_for(precision), domain, 1, &length);
    } else {
        const auto *const lengths = va_arg(tail, const int64_t *);
        status = create_from_vector(handle, creators_for(precision), domain, dimension, lengths);
    }
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor) xkl_dft_dfticreatedescriptor __attribute__((alias("DftiCreateDescriptor")));

long DftiCreateDescriptor_s_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...)
{
    if (!clear(handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    va_list tail;
    va_start(tail, domain);
    const auto length = va_arg(tail, int64_t);
    va_end(tail);
    return create_line(handle, line_in_single, domain, length);
}
decltype(DftiCreateDescriptor_s_1d) xkl_dft_dfticreatedescriptor_s_1d
    __attribute__((alias("DftiCreateDescriptor_s_1d")));

long DftiCreateDescriptor_d_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...)
{
    if (!clear(handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    va_list tail;
    va_start(tail, domain);
    const auto length = va_arg(tail, int64_t);
    va_end(tail);
    return create_line(handle, line_in_double, domain, length);
}
decltype(DftiCreateDescriptor_d_1d) xkl_dft_dfticreatedescriptor_d_1d
    __attribute__((alias("DftiCreateDescriptor_d_1d")));

long DftiCreateDescriptor_s_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...)
{
    if (!clear(handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    if (!is_dimension(dimension))
        return DFTI_INVALID_CONFIGURATION;
    va_list tail;
    va_start(tail, dimension);
    const auto *const lengths = va_arg(tail, const int64_t *);
    va_end(tail);
    return create_from_vector(handle, in_single, domain, dimension, lengths);
}
decltype(DftiCreateDescriptor_s_md) xkl_dft_dfticreatedescriptor_s_md
    __attribute__((alias("DftiCreateDescriptor_s_md")));

long DftiCreateDescriptor_d_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...)
{
    if (!clear(handle))
        return DFTI_INCONSISTENT_CONFIGURATION;
    if (!is_dimension(dimension))
        return DFTI_INVALID_CONFIGURATION;
    va_list tail;
    va_start(tail, dimension);
    const auto *const lengths = va_arg(tail, const int64_t *);
    va_end(tail);
    return create_from_vector(handle, in_double, domain, dimension, lengths);
}
decltype(DftiCreateDescriptor_d_md) xkl_dft_dfticreatedescriptor_d_md
    __attribute__((alias("DftiCreateDescriptor_d_md")));
}
