// The entries that create descriptors: any number of dimensions or one, with the precision, and for the C
// interface the domain, that the entry's name says.
#pragma once

#include "fft/descriptor.h"

namespace xkl::core {

template <int32_t precision, int32_t domain>
int32_t create_any(DFTI_DESCRIPTOR **handle, int32_t rank, const int64_t *lengths, int64_t)
{
    return fft::create(handle, precision, domain, rank, lengths);
}

template <int32_t precision, int32_t domain>
int32_t create_line(DFTI_DESCRIPTOR **handle, int64_t length, int64_t)
{
    return fft::create(handle, precision, domain, 1, &length);
}

// The Fortran forms, everything by reference.
inline int32_t create_by_reference(DFTI_DESCRIPTOR **handle, const int32_t *precision,
                                   const int32_t *domain, const int64_t *dimension, const int64_t *lengths)
{
    if (handle)
        *handle = nullptr;
    if (!handle || !precision || !domain || !dimension)
        return DFTI_INCONSISTENT_CONFIGURATION;
    return fft::create(handle, *precision, *domain, *dimension, lengths);
}

// What stands in the place of the precision is not read, nor is a dimension that the name says.
template <int32_t precision>
int32_t create_any_by_reference(DFTI_DESCRIPTOR **handle, const void *, const int32_t *domain,
                                const int64_t *dimension, const int64_t *lengths)
{
    const int32_t own = precision;
    return create_by_reference(handle, &own, domain, dimension, lengths);
}

template <int32_t precision>
int32_t create_line_by_reference(DFTI_DESCRIPTOR **handle, const void *unread, const int32_t *domain,
                                 const int64_t *, const int64_t *lengths)
{
    const int64_t one = 1;
    return create_any_by_reference<precision>(handle, unread, domain, &one, lengths);
}

} // namespace xkl::core
