// Saved streams, in files and in memory: a header, and the bytes of the state behind it. The header has
// a sum of its own, so that foreign memory is refused before anything behind the header is read.
#include "vsl/generators.h"
#include "vsl/stream_object.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

namespace xkl::vsl {

namespace {

struct saved_header {
    char magic[8];
    uint32_t version;
    int32_t brng;
    uint64_t state_bytes;
    uint64_t state_sum;
    uint64_t header_sum; // of all fields before this one
};

constexpr char magic[8] = {'X', 'K', 'L', 's', 't', 'r', 'm', '\n'};
constexpr uint32_t newest_version = 1;

/// FNV-1a
uint64_t sum_of(std::span<const char> bytes) noexcept
{
    uint64_t sum = 0xcbf29ce484222325;
    for (const char byte : bytes)
        sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
    return sum;
}

uint64_t sum_of(const saved_header &header) noexcept
{
    return sum_of({reinterpret_cast<const char *>(&header), offsetof(saved_header, header_sum)});
}

saved_header header_for(stream &s) noexcept
{
    const std::span<char> state = state_bytes(s);
    saved_header header{.magic = {},
                        .version = newest_version,
                        .brng = s.brng,
                        .state_bytes = state.size(),
                        .state_sum = sum_of(state),
                        .header_sum = 0};
    std::memcpy(header.magic, magic, sizeof magic);
    header.header_sum = sum_of(header);
    return header;
}

/// What can be told from the header alone; `bad` is the status of what is no saved stream.
int32_t fault_of(const saved_header &header, int32_t bad) noexcept
{
    if (std::memcmp(header.magic, magic, sizeof magic) != 0 || header.header_sum != sum_of(header))
        return bad;
    if (header.version > newest_version)
        return VSL_RNG_ERROR_UNSUPPORTED_FILE_VER;
    if (!basic_generator(header.brng) && !registered_generator(header.brng))
        return why_missing(header.brng);
    return VSL_STATUS_OK;
}

/// A stream whose state `read(span)` brings: 0, or why it could not
template <class Read>
int32_t load(VSLStreamStatePtr *out, const saved_header &header, int32_t bad, const Read &read) noexcept
{
    if (const int32_t fault = fault_of(header, bad); fault < 0)
        return fault;
    const engine *const row = basic_generator(header.brng);
    const VSLBRngProperties *const registered = registered_generator(header.brng);
    const size_t head = row ? state_offset : sizeof(stream);
    if (header.state_bytes > INT_MAX - head ||
        (registered && head + header.state_bytes != static_cast<size_t>(registered->StreamStateSize)))
        return bad;
    owned_stream made = allocate(header.brng, head + header.state_bytes);
    if (!made)
        return VSL_ERROR_MEM_FAILURE;
    const std::span<char> state = state_bytes(*made);
    if (const int32_t status = read(state); status < 0)
        return status;
    if (sum_of(state) != header.state_sum || (row && !row->plausible(state_of(*made), state.size())))
        return bad;
    *out = made.release();
    return VSL_STATUS_OK;
}

struct closed_file {
    void operator()(std::FILE *file) const noexcept { std::fclose(file); }
};
using open_file = std::unique_ptr<std::FILE, closed_file>;

/// `length` is -1 for names that end with a NUL.
open_file opened(const char *name, int32_t length, const char *how) noexcept
{
    if (length < 0)
        return open_file(std::fopen(name, how));
    char terminated[PATH_MAX];
    if (length >= PATH_MAX)
        return nullptr;
    std::memcpy(terminated, name, static_cast<size_t>(length));
    terminated[length] = '\0';
    return open_file(std::fopen(terminated, how));
}

int32_t read_exactly(std::FILE *file, std::span<char> to) noexcept
{
    if (std::fread(to.data(), 1, to.size(), file) == to.size())
        return VSL_STATUS_OK;
    return std::ferror(file) ? VSL_RNG_ERROR_FILE_READ : VSL_RNG_ERROR_BAD_FILE_FORMAT;
}

/// Whether the stream can be saved
int32_t check_savable(VSLStreamStatePtr pointer) noexcept
{
    const auto *const s = static_cast<const stream *>(pointer);
    const int32_t status = check(s);
    return status == VSL_STATUS_OK && is_abstract(*s) ? VSL_RNG_ERROR_INVALID_ABSTRACT_STREAM : status;
}

} // namespace

} // namespace xkl::vsl

using namespace xkl::vsl;

#pragma GCC visibility push(default)
extern "C" {

int32_t __vslGetStreamSize(VSLStreamStatePtr pointer)
{
    if (const int32_t status = check_savable(pointer); status < 0)
        return status;
    return static_cast<int32_t>(sizeof(saved_header) + state_bytes(*static_cast<stream *>(pointer)).size());
}

int32_t __vslSaveStreamM(VSLStreamStatePtr pointer, char *memory)
{
    if (const int32_t status = check_savable(pointer); status < 0)
        return status;
    if (!memory)
        return VSL_ERROR_BADARGS;
    stream &s = *static_cast<stream *>(pointer);
    const saved_header header = header_for(s);
    const std::span<char> state = state_bytes(s);
    std::memcpy(memory, &header, sizeof header);
    std::memcpy(memory + sizeof header, state.data(), state.size());
    return VSL_STATUS_OK;
}

int32_t __vslLoadStreamM(VSLStreamStatePtr *out, const char *memory)
{
    if (!out)
        return VSL_ERROR_NULL_PTR;
    if (!memory)
        return VSL_ERROR_BADARGS;
    saved_header header;
    std::memcpy(&header, memory, sizeof header);
    return load(out, header, VSL_RNG_ERROR_BAD_MEM_FORMAT, [&](std::span<char> state) {
        std::memcpy(state.data(), memory + sizeof header, state.size());
        return VSL_STATUS_OK;
    });
}

int32_t __vslSaveStreamF(VSLStreamStatePtr pointer, const char *name, int32_t length)
{
    if (const int32_t status = check_savable(pointer); status < 0)
        return status;
    if (!name)
        return VSL_ERROR_BADARGS;
    open_file file = opened(name, length, "wb");
    if (!file)
        return VSL_RNG_ERROR_FILE_OPEN;
    stream &s = *static_cast<stream *>(pointer);
    const saved_header header = header_for(s);
    const std::span<char> state = state_bytes(s);
    if (std::fwrite(&header, sizeof header, 1, file.get()) != 1 ||
        std::fwrite(state.data(), 1, state.size(), file.get()) != state.size() ||
        std::fflush(file.get()) != 0)
        return VSL_RNG_ERROR_FILE_WRITE;
    return std::fclose(file.release()) == 0 ? VSL_STATUS_OK : VSL_RNG_ERROR_FILE_CLOSE;
}

int32_t __vslLoadStreamF(VSLStreamStatePtr *out, const char *name, int32_t length)
{
    if (!out)
        return VSL_ERROR_NULL_PTR;
    if (!name)
        return VSL_ERROR_BADARGS;
    const open_file file = opened(name, length, "rb");
    if (!file)
        return VSL_RNG_ERROR_FILE_OPEN;
    saved_header header;
    if (const int32_t status = read_exactly(file.get(), {reinterpret_cast<char *>(&header), sizeof header});
        status < 0)
        return status;
    return load(out, header, VSL_RNG_ERROR_BAD_FILE_FORMAT, [&](std::span<char> state) {
        const int32_t status = read_exactly(file.get(), state);
        const bool more = status == VSL_STATUS_OK && std::fgetc(file.get()) != EOF;
        return more ? VSL_RNG_ERROR_BAD_FILE_FORMAT : status;
    });
}

} // extern "C"
#pragma GCC visibility pop
