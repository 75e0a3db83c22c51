// Making, copying, moving and ending streams.
#include "vsl/generators.h"
#include "vsl/stream_object.h"

#include <cstring>
#include <new>

namespace xkl::vsl {

namespace {

// Bytes before a stream's head. Allocators write into freed memory, at its start: there the mark of a
// dead stream could turn into that of a live one, and the caller's mistake would go on unseen.
constexpr size_t margin = 64;

} // namespace

void end_of_stream::operator()(stream *s) const noexcept
{
    s->live = 0; // for whoever still holds the pointer, as long as the memory is not used again
    s->tag = 0;
    std::free(reinterpret_cast<char *>(s) - margin);
}

owned_stream allocate(int32_t brng, size_t bytes) noexcept
{
    const size_t rounded = (bytes + state_offset - 1) / state_offset * state_offset;
    static_assert(margin % state_offset == 0);
    void *const memory = std::aligned_alloc(state_offset, margin + rounded);
    if (!memory)
        return nullptr;
    std::memset(memory, 0, margin + rounded);
    return owned_stream(new (static_cast<char *>(memory) + margin) stream{
        .tag = stream_tag, .live = 1, .zero = {}, .brng = brng, .bytes = static_cast<uint32_t>(bytes)});
}

std::span<char> state_bytes(stream &s) noexcept
{
    const size_t head = basic_generator(s.brng) ? state_offset : sizeof(stream);
    return {reinterpret_cast<char *>(&s) + head, s.bytes - head};
}

int32_t reseed(stream &s, seed_words seeds) noexcept
{
    if (const VSLBRngProperties *const generator = registered_generator(s.brng))
        return generator->InitStream(VSL_INIT_METHOD_STANDARD, &s, static_cast<int>(seeds.size()),
                                     seeds.data());
    const engine *const row = basic_generator(s.brng);
    if (!row)
        return VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM;
    if (row->state_bytes(seeds) != state_bytes(s).size())
        return VSL_ERROR_BADARGS;
    return row->seed(state_of(s), seeds);
}

int32_t skip(stream &s, step_count count) noexcept
{
    if (const VSLBRngProperties *const generator = registered_generator(s.brng)) {
        if (bit_length(count) > 64)
            return VSL_RNG_ERROR_SKIPAHEADEX_UNSUPPORTED;
        const uint64_t low = word_of(count, 0);
        const unsigned params[2] = {static_cast<unsigned>(low), static_cast<unsigned>(low >> 32)};
        return generator->InitStream(VSL_INIT_METHOD_SKIPAHEAD, &s, params[1] == 0 ? 1 : 2, params);
    }
    const engine *const row = basic_generator(s.brng);
    return row && row->skip ? row->skip(state_of(s), count) : VSL_RNG_ERROR_SKIPAHEAD_UNSUPPORTED;
}

int32_t leapfrog(stream &s, uint32_t k, uint32_t step) noexcept
{
    if (const VSLBRngProperties *const generator = registered_generator(s.brng)) {
        const unsigned params[2] = {k, step};
        return generator->InitStream(VSL_INIT_METHOD_LEAPFROG, &s, 2, params);
    }
    const engine *const row = basic_generator(s.brng);
    return row && row->leapfrog ? row->leapfrog(state_of(s), k, step) : VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED;
}

namespace {

/// Bytes of a new stream's object; 0 for seeds that the generator refuses
size_t bytes_of_new(int32_t brng, seed_words seeds) noexcept
{
    if (const VSLBRngProperties *const generator = registered_generator(brng))
        return static_cast<size_t>(generator->StreamStateSize);
    const size_t state = basic_generator(brng)->state_bytes(seeds);
    return state == 0 ? 0 : state_offset + state;
}

stream &object(VSLStreamStatePtr pointer) noexcept
{
    return *static_cast<stream *>(pointer);
}

int32_t check_live(VSLStreamStatePtr pointer) noexcept
{
    return check(static_cast<const stream *>(pointer));
}

} // namespace

} // namespace xkl::vsl

using namespace xkl::vsl;

#pragma GCC visibility push(default)
extern "C" {

int32_t __vslNewStreamEx(VSLStreamStatePtr *out, int32_t brng, int32_t n, const uint32_t *seeds)
{
    if (!out)
        return VSL_ERROR_NULL_PTR;
    if (n < 0 || (n > 0 && !seeds))
        return VSL_ERROR_BADARGS;
    if (!basic_generator(brng) && !registered_generator(brng))
        return why_missing(brng);
    const seed_words words(seeds, static_cast<size_t>(n));
    const size_t bytes = bytes_of_new(brng, words);
    if (bytes == 0)
        return VSL_ERROR_BADARGS;
    owned_stream made = allocate(brng, bytes);
    if (!made)
        return VSL_ERROR_MEM_FAILURE;
    if (const int32_t status = reseed(*made, words); status < 0)
        return status;
    *out = made.release();
    return VSL_STATUS_OK;
}

int32_t __vslDeleteStream(VSLStreamStatePtr *pointer)
{
    if (!pointer)
        return VSL_ERROR_NULL_PTR;
    if (const int32_t status = check_live(*pointer); status < 0)
        return status;
    end_of_stream{}(&object(*pointer));
    *pointer = nullptr;
    return VSL_STATUS_OK;
}

int32_t __vslCopyStream(VSLStreamStatePtr *out, VSLStreamStatePtr source)
{
    if (!out)
        return VSL_ERROR_NULL_PTR;
    if (const int32_t status = check_live(source); status < 0)
        return status;
    stream &original = object(source);
    if (is_abstract(original)) // two streams would use up one buffer
        return VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM;
    owned_stream made = allocate(original.brng, original.bytes);
    if (!made)
        return VSL_ERROR_MEM_FAILURE;
    std::memcpy(made.get(), &original, original.bytes);
    *out = made.release();
    return VSL_STATUS_OK;
}

int32_t __vslCopyStreamState(VSLStreamStatePtr destination, VSLStreamStatePtr source)
{
    for (const VSLStreamStatePtr each : {destination, source})
        if (const int32_t status = check_live(each); status < 0)
            return status;
    stream &to = object(destination), &from = object(source);
    if (to.brng != from.brng || to.bytes != from.bytes)
        return VSL_RNG_ERROR_BRNGS_INCOMPATIBLE;
    if (is_abstract(from))
        return VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM;
    std::memmove(&to, &from, from.bytes);
    return VSL_STATUS_OK;
}

int32_t __vslLeapfrogStream(VSLStreamStatePtr s, int32_t k, int32_t streams)
{
    if (const int32_t status = check_live(s); status < 0)
        return status;
    if (k < 0 || k >= streams)
        return VSL_ERROR_BADARGS;
    return leapfrog(object(s), static_cast<uint32_t>(k), static_cast<uint32_t>(streams));
}

int32_t __vslSkipAheadStream(VSLStreamStatePtr s, int64_t count)
{
    if (const int32_t status = check_live(s); status < 0)
        return status;
    if (count < 0)
        return VSL_ERROR_BADARGS;
    const auto words = static_cast<uint64_t>(count);
    return skip(object(s), {&words, 1});
}

int32_t __vslSkipAheadStreamEx(VSLStreamStatePtr s, int32_t n, const uint64_t *count)
{
    if (const int32_t status = check_live(s); status < 0)
        return status;
    if (n < 1 || !count)
        return VSL_ERROR_BADARGS;
    const int32_t status = skip(object(s), {count, static_cast<size_t>(n)});
    return status == VSL_RNG_ERROR_SKIPAHEAD_UNSUPPORTED ? VSL_RNG_ERROR_SKIPAHEADEX_UNSUPPORTED : status;
}

int32_t __vslGetStreamStateBrng(VSLStreamStatePtr s)
{
    const int32_t status = check_live(s);
    return status < 0 ? status : object(s).brng;
}

} // extern "C"
#pragma GCC visibility pop
