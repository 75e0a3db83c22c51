#include "vsl/generators.h"
#include "vsl/stream_object.h"

#include <atomic>
#include <mutex>

namespace xkl::vsl {

namespace {

constexpr int32_t first_registered = VSL_BRNG_PHILOX4X32X10 + VSL_BRNG_INC;
constexpr int32_t basic_count = VSL_BRNG_PHILOX4X32X10 >> VSL_BRNG_SHIFT;
constexpr int32_t most_registered = VSL_MAX_REG_BRNGS - basic_count;

// Written by __vslRegisterBrng alone, which holds the lock: an entry first, then the count. So entries
// below the count can be read without the lock. Nothing is ever taken away.
VSLBRngProperties registered[most_registered];
std::atomic<int32_t> registered_count{0};
std::mutex registration;

bool is_family_member(int32_t brng) noexcept
{
    const auto within = [&](int32_t base, int32_t members) {
        return brng >= base && brng - base < members;
    };
    return within(VSL_BRNG_WH, VSL_WH_MEMBERS) || within(VSL_BRNG_MT2203, VSL_MT2203_MEMBERS);
}

int32_t fault_of(const VSLBRngProperties &p) noexcept
{
    if (!p.InitStream || !p.sBRng || !p.dBRng || !p.iBRng)
        return VSL_ERROR_BADARGS;
    if (p.StreamStateSize < static_cast<int>(sizeof(stream)))
        return VSL_RNG_ERROR_BAD_STREAM_STATE_SIZE;
    if (p.WordSize != 4 && p.WordSize != 8 && p.WordSize != 16)
        return VSL_RNG_ERROR_BAD_WORD_SIZE;
    if (p.NSeeds < 0)
        return VSL_RNG_ERROR_BAD_NSEEDS;
    if (p.NBits < 1 || p.NBits > 8 * p.WordSize)
        return VSL_RNG_ERROR_BAD_NBITS;
    return VSL_STATUS_OK;
}

// The functions of a basic generator in the form in which a registered one has them.
int init_basic(int method, VSLStreamStatePtr pointer, int n, const unsigned int params[])
{
    auto *const s = static_cast<stream *>(pointer);
    const auto has = [&](int words) { return n >= words && params != nullptr; };
    if (method == VSL_INIT_METHOD_STANDARD && (n == 0 || has(0)))
        return reseed(*s, {params, static_cast<size_t>(n)});
    if (method == VSL_INIT_METHOD_LEAPFROG && has(2))
        return leapfrog(*s, params[0], params[1]);
    if (method == VSL_INIT_METHOD_SKIPAHEAD && has(1)) {
        const uint64_t count = static_cast<uint64_t>(n > 1 ? params[1] : 0) << 32 | params[0];
        return skip(*s, {&count, 1});
    }
    return VSL_ERROR_BADARGS;
}
int floats_of_basic(VSLStreamStatePtr s, int n, float r[], float a, float b)
{
    return uniform(*static_cast<stream *>(s), n, r, a, b);
}
int doubles_of_basic(VSLStreamStatePtr s, int n, double r[], double a, double b)
{
    return uniform(*static_cast<stream *>(s), n, r, a, b);
}
int bits_of_basic(VSLStreamStatePtr s, int n, unsigned int r[])
{
    return native_bits(*static_cast<stream *>(s), n, r);
}

} // namespace

const engine *basic_generator(int32_t brng) noexcept
{
    static constexpr const engine *rows[] = {&mcg31_engine,
                                             &r250_engine,
                                             &mrg32k3a_engine,
                                             &mcg59_engine,
                                             nullptr,
                                             &sobol_engine,
                                             &niederreiter_engine,
                                             &mt19937_engine,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             nullptr,
                                             &sfmt19937_engine,
                                             &nondeterministic_engine,
                                             &ars5_engine,
                                             &philox_engine};
    static_assert(std::size(rows) == basic_count);
    const int32_t index = (brng >> VSL_BRNG_SHIFT) - 1;
    const bool is_base = brng % VSL_BRNG_INC == 0 && index >= 0 && index < basic_count;
    return is_base ? rows[index] : nullptr;
}

const VSLBRngProperties *registered_generator(int32_t brng) noexcept
{
    if (brng < first_registered || brng % VSL_BRNG_INC != 0)
        return nullptr;
    const int32_t index = (brng - first_registered) >> VSL_BRNG_SHIFT;
    return index < registered_count.load(std::memory_order_acquire) ? &registered[index] : nullptr;
}

int32_t why_missing(int32_t brng) noexcept
{
    return is_family_member(brng) ? VSL_RNG_ERROR_BRNG_NOT_SUPPORTED : VSL_RNG_ERROR_INVALID_BRNG_INDEX;
}

} // namespace xkl::vsl

using namespace xkl::vsl;

#pragma GCC visibility push(default)
extern "C" {

// Basic generators count whether this library offers them or not: the next identifier is the count plus
// one, shifted.
int32_t __vslGetNumRegBrngs(void)
{
    return basic_count + registered_count.load(std::memory_order_acquire);
}

int32_t __vslRegisterBrng(const VSLBRngProperties *properties)
{
    if (!properties)
        return VSL_ERROR_BADARGS;
    if (const int32_t fault = fault_of(*properties); fault < 0)
        return fault;
    const std::lock_guard lock(registration);
    const int32_t index = registered_count.load(std::memory_order_relaxed);
    if (index == most_registered)
        return VSL_RNG_ERROR_BRNG_TABLE_FULL;
    registered[index] = *properties;
    registered_count.store(index + 1, std::memory_order_release);
    return first_registered + index * VSL_BRNG_INC;
}

int32_t __vslGetBrngProperties(int32_t brng, VSLBRngProperties *properties)
{
    if (!properties)
        return VSL_ERROR_BADARGS;
    if (const VSLBRngProperties *const known = registered_generator(brng)) {
        *properties = *known;
        return VSL_STATUS_OK;
    }
    const engine *const row = basic_generator(brng);
    if (!row)
        return why_missing(brng);
    const uint32_t one_dimension = 1;
    *properties = {.StreamStateSize =
                       static_cast<int>(state_offset + row->state_bytes({&one_dimension, 1})),
                   .NSeeds = row->seeds,
                   .IncludesZero = row->sequence.includes_zero,
                   .WordSize = row->sequence.word_bytes,
                   .NBits = row->sequence.bits,
                   .InitStream = init_basic,
                   .sBRng = floats_of_basic,
                   .dBRng = doubles_of_basic,
                   .iBRng = bits_of_basic};
    return VSL_STATUS_OK;
}

} // extern "C"
#pragma GCC visibility pop
