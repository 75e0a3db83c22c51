// A random stream, and the ways in which distributions draw from it. A stream is the state of one
// generator: a basic one, a quasi-random one, a caller's buffer (abstract stream) or a generator that
// the caller registered. Whoever draws need not know which.
//
// Every draw takes elements of the generator's sequence in their order, and each number says how many
// it takes; so skipping n elements is drawing n numbers, and calls may be cut at any place. A stream is
// used by one thread at a time. A negative status says why a draw stopped; what r holds is then not to
// be used.
#pragma once

#include <cstddef>
#include <cstdint>

namespace xkl::vsl {

/// The head of every stream. Interface libraries read `live`; registered generators keep their own
/// state right behind these 16 bytes, so they are fixed.
struct stream {
    uint32_t tag;    // stream_tag while the object exists
    uint8_t live;    // 1 while the object exists
    uint8_t zero[3]; // unused
    int32_t brng;    // identifier of the generator
    uint32_t bytes;  // of the whole object
};
static_assert(sizeof(stream) == 16 && offsetof(stream, live) == 4);

constexpr uint32_t stream_tag = 0x6d727473;

/// VSL_STATUS_OK, VSL_ERROR_NULL_PTR, or VSL_RNG_ERROR_BAD_STREAM if that is no stream of this library
int32_t check(const stream *s) noexcept;

/// Numbers in [a, b), uniform, one element each. They carry at most as many bits as the generator's
/// element: 32 for most. b itself never occurs, however narrow the interval; a < b is the caller's
/// duty, their difference may overflow.
int32_t uniform(stream &s, int32_t n, double *r, double a, double b) noexcept;
int32_t uniform(stream &s, int32_t n, float *r, float a, float b) noexcept;

/// Numbers in the open interval (0, 1), one element each: what a logarithm or an inverse distribution
/// function takes. None is closer to an end than half an element's last bit (doubles) or 2^-24 (floats).
int32_t open_uniform(stream &s, int32_t n, double *r) noexcept;
int32_t open_uniform(stream &s, int32_t n, float *r) noexcept;

/// Elements as the generator makes them, each in words_of(s) 32-bit words, the lowest first.
/// VSL_ERROR_FEATURE_NOT_IMPLEMENTED where there are none (abstract streams of real numbers).
int32_t native_bits(stream &s, int32_t n, uint32_t *r) noexcept;
int32_t words_of(const stream &s) noexcept;

/// Uniform 32-bit words, one element each, and 64-bit ones, of two elements, the first one low.
/// VSL_ERROR_FEATURE_NOT_IMPLEMENTED where an element's bits are not all random and of equal weight.
int32_t bits32(stream &s, int32_t n, uint32_t *r) noexcept;
int32_t bits64(stream &s, int32_t n, uint64_t *r) noexcept;

} // namespace xkl::vsl
