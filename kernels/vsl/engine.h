// What a basic generator offers to the streams: one row of operations on its state, a plain block of
// memory without addresses, so that copying and saving a stream is copying bytes.
//
// A generator is a trivially copyable class with
//     int32_t seed(std::span<const uint32_t> seeds)   the start; no seed is the seed 1
//     int32_t generate(int32_t n, word *r)            the next n elements; 0, or why there are no more
//     bool plausible(size_t bytes) const              false for loaded states that would leave their memory
// and, where its algebra allows them in logarithmic time,
//     int32_t skip(step_count)                        as if that many elements were drawn
//     int32_t leapfrog(uint32_t k, uint32_t step)     elements k, k + step, k + 2*step... from now on
#pragma once

#include "vsl/step_count.h"
#include "xkl_vsl_types.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace xkl::vsl {

using seed_words = std::span<const uint32_t>;

/// The seed's word i, zero where there is none; without any seed, the seed is 1.
inline uint32_t seed_word(seed_words seeds, size_t i) noexcept
{
    return i < seeds.size() ? seeds[i] : seeds.empty() && i == 0 ? 1 : 0;
}

/// The elements of a generator's sequence
struct elements {
    int32_t word_bytes; // 4 or 8
    int32_t bits;       // the elements are below 2^bits
    bool uniform_bits;  // all of these bits are random and of equal weight
    bool includes_zero;
    double unit; // element * unit is uniform in [0, 1); only for words of 4 bytes
};

struct engine {
    int32_t brng;
    int32_t seeds; // words of seed that make a difference
    elements sequence;
    size_t (*state_bytes)(seed_words seeds) noexcept; // 0: no generator for these seeds
    int32_t (*seed)(void *state, seed_words seeds) noexcept;
    int32_t (*generate)(void *state, int32_t n, void *r) noexcept;
    bool (*plausible)(const void *state, size_t bytes) noexcept;
    int32_t (*skip)(void *state, step_count count) noexcept;              // null: can't
    int32_t (*leapfrog)(void *state, uint32_t k, uint32_t step) noexcept; // null: can't
};

/// A state begins this far into its stream.
constexpr size_t state_offset = 64;

/// The row of generator G
template <class G>
constexpr engine engine_of(int32_t brng, int32_t seeds, elements sequence) noexcept
{
    static_assert(std::is_trivially_copyable_v<G> && alignof(G) <= state_offset);
    engine row{};
    row.brng = brng;
    row.seeds = seeds;
    row.sequence = sequence;
    if constexpr (requires { G::state_bytes(seed_words{}); })
        row.state_bytes = [](seed_words s) noexcept { return G::state_bytes(s); };
    else
        row.state_bytes = [](seed_words) noexcept { return sizeof(G); };
    row.seed = [](void *state, seed_words s) noexcept { return static_cast<G *>(state)->seed(s); };
    row.generate = [](void *state, int32_t n, void *r) noexcept {
        return static_cast<G *>(state)->generate(n, static_cast<typename G::word *>(r));
    };
    row.plausible = [](const void *state, size_t bytes) noexcept {
        constexpr bool varies = requires
        {
            G::state_bytes(seed_words{});
        };
        const bool whole = varies ? bytes >= sizeof(G) : bytes == sizeof(G);
        return whole && static_cast<const G *>(state)->plausible(bytes);
    };
    if constexpr (requires(G g) { g.skip(step_count{}); })
        row.skip = [](void *state, step_count n) noexcept { return static_cast<G *>(state)->skip(n); };
    if constexpr (requires(G g) { g.leapfrog(0u, 1u); })
        row.leapfrog = [](void *state, uint32_t k, uint32_t step) noexcept {
            return static_cast<G *>(state)->leapfrog(k, step);
        };
    return row;
}

// The rows, each beside its generator
extern const engine mcg31_engine, r250_engine, mrg32k3a_engine, mcg59_engine, sobol_engine,
    niederreiter_engine, mt19937_engine, sfmt19937_engine, nondeterministic_engine, ars5_engine,
    philox_engine;

} // namespace xkl::vsl
