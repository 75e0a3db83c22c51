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

/// What comes first in every creation: a place for the handle, which no refusal leaves as it was, and as many
/// dimensions as there may be.
int32_t refusal(DFTI_DESCRIPTOR_HANDLE *handle, int64_t dimension = 1)
{
    if (!handle)
        return DFTI_INCONSISTENT_CONFIGURATION;
    *handle = nullptr;
    return dimension >= 1 && dimension <= most_dimensions ? DFTI_NO_ERROR : DFTI_INVALID_CONFIGURATION;
}

long create_one_dimensional(DFTI_DESCRIPTOR_HANDLE *handle, const line_creators &by, int domain,
                            va_list tail)
{
    if (const int32_t status = refusal(handle); status != DFTI_NO_ERROR)
        return status;
    const auto length = va_arg(tail, int64_t);
    line_creator *const make = by.of(domain);
    if (length <= 0 || !make)
        return DFTI_INVALID_CONFIGURATION;
    return blessed(make(handle, length, 0), handle);
}

long create_multi_dimensional(DFTI_DESCRIPTOR_HANDLE *handle, const creators &by, int domain,
                              int64_t dimension, va_list tail)
{
    if (const int32_t status = refusal(handle, dimension); status != DFTI_NO_ERROR)
        return status;
    const auto *const lengths = va_arg(tail, const int64_t *);
    if (!lengths)
        return DFTI_INCONSISTENT_CONFIGURATION;
    int64_t reversed[most_dimensions];
    copy_reversed(lengths, dimension, reversed);
    return create(handle, by, domain, dimension, reversed);
}

/// The length itself stands in the list if there is one dimension.
long create_listed(DFTI_DESCRIPTOR_HANDLE *handle, const creators &by, int domain, int64_t dimension,
                   va_list tail)
{
    if (dimension != 1)
        return create_multi_dimensional(handle, by, domain, dimension, tail);
    if (const int32_t status = refusal(handle); status != DFTI_NO_ERROR)
        return status;
    const auto length = va_arg(tail, int64_t);
    return length > 0 ? create(handle, by, domain, 1, &length) : long{DFTI_INVALID_CONFIGURATION};
}

} // namespace

extern "C" {

long DftiCreateDescriptor(DFTI_DESCRIPTOR_HANDLE *handle, int precision, int domain, int64_t dimension, ...)
{
    va_list tail;
    va_start(tail, dimension);
    const long status = create_listed(handle, creators_for(precision), domain, dimension, tail);
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor) xkl_dft_dfticreatedescriptor __attribute__((alias("DftiCreateDescriptor")));

long DftiCreateDescriptor_s_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...)
{
    va_list tail;
    va_start(tail, domain);
    const long status = create_one_dimensional(handle, line_in_single, domain, tail);
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor_s_1d) xkl_dft_dfticreatedescriptor_s_1d
    __attribute__((alias("DftiCreateDescriptor_s_1d")));

long DftiCreateDescriptor_d_1d(DFTI_DESCRIPTOR_HANDLE *handle, int domain, ...)
{
    va_list tail;
    va_start(tail, domain);
    const long status = create_one_dimensional(handle, line_in_double, domain, tail);
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor_d_1d) xkl_dft_dfticreatedescriptor_d_1d
    __attribute__((alias("DftiCreateDescriptor_d_1d")));

long DftiCreateDescriptor_s_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...)
{
    va_list tail;
    va_start(tail, dimension);
    const long status = create_multi_dimensional(handle, in_single, domain, dimension, tail);
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor_s_md) xkl_dft_dfticreatedescriptor_s_md
    __attribute__((alias("DftiCreateDescriptor_s_md")));

long DftiCreateDescriptor_d_md(DFTI_DESCRIPTOR_HANDLE *handle, int domain, int64_t dimension, ...)
{
    va_list tail;
    va_start(tail, dimension);
    const long status = create_multi_dimensional(handle, in_double, domain, dimension, tail);
    va_end(tail);
    return status;
}
decltype(DftiCreateDescriptor_d_md) xkl_dft_dfticreatedescriptor_d_md
    __attribute__((alias("DftiCreateDescriptor_d_md")));
}
