// What lies behind a stream's head, and what can be done with a stream besides drawing from it.
//
// Basic generators have their state state_offset bytes into the object, registered ones right behind
// the head, and abstract streams a description of the caller's buffer.
#pragma once

#include "vsl/engine.h"
#include "vsl/stream.h"

#include <cstdlib>
#include <memory>
#include <span>

namespace xkl::vsl {

inline void *state_of(stream &s) noexcept
{
    return reinterpret_cast<char *>(&s) + state_offset;
}

/// A stream over numbers of the caller
struct caller_buffer {
    void *numbers;
    void (*update)(); // one of the three callbacks, by the stream's brng
    int32_t count;    // elements of the buffer
    int32_t next;     // index of the next one
    int32_t fresh;    // elements from there on, round the circle, that were not given out yet
    double a, b;      // bounds of real numbers
};

inline bool is_abstract(const stream &s) noexcept
{
    return s.brng == VSL_BRNG_IABSTRACT || s.brng == VSL_BRNG_DABSTRACT || s.brng == VSL_BRNG_SABSTRACT;
}

struct end_of_stream {
    void operator()(stream *s) const noexcept;
};
using owned_stream = std::unique_ptr<stream, end_of_stream>;

/// A live stream with a state of zeroes; null if there is no memory
owned_stream allocate(int32_t brng, size_t bytes) noexcept;

/// What is copied and saved of a stream: all of a basic or registered generator's state
std::span<char> state_bytes(stream &s) noexcept;

/// Streams of basic and registered generators. Abstract ones can do none of these.
int32_t reseed(stream &s, seed_words seeds) noexcept;
int32_t skip(stream &s, step_count count) noexcept;
int32_t leapfrog(stream &s, uint32_t k, uint32_t step) noexcept;

/// The next n numbers of an abstract stream's buffer, whose elements are of type T
template <class T>
int32_t take(stream &s, int32_t n, T *r) noexcept;

} // namespace xkl::vsl
