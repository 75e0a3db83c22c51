// Which generators there are: the basic ones of this library and those that the program registered.
#pragma once

#include "vsl/engine.h"

namespace xkl::vsl {

/// The basic generator with this identifier, or null
const engine *basic_generator(int32_t brng) noexcept;

/// The registered generator with this identifier, or null. It stays where it is and as it is.
const VSLBRngProperties *registered_generator(int32_t brng) noexcept;

/// What a stream of a generator that there isn't gets: VSL_RNG_ERROR_BRNG_NOT_SUPPORTED for members of the
/// families that are not offered, VSL_RNG_ERROR_INVALID_BRNG_INDEX for other identifiers
int32_t why_missing(int32_t brng) noexcept;

} // namespace xkl::vsl
