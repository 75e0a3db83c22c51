// The non-deterministic generator: words from the operating system's pool, which the processor's noise
// feeds. There is no seed and no state; two streams never give the same numbers, and none can be moved.
#include "vsl/engine.h"

#include <cerrno>
#include <sys/random.h>

namespace xkl::vsl {

namespace {

struct nondeterministic {
    using word = uint32_t;
    uint32_t unused;

    int32_t seed(seed_words) noexcept
    {
        unused = 0;
        return generate(1, &unused);
    }

    int32_t generate(int32_t n, uint32_t *r) noexcept
    {
        auto *at = reinterpret_cast<char *>(r);
        auto left = static_cast<size_t>(n) * sizeof *r;
        for (int interrupted = 0; left > 0;) {
            const ssize_t got = getrandom(at, left, 0);
            if (got > 0) {
                at += got;
                left -= static_cast<size_t>(got);
            } else if (errno != EINTR) {
                return VSL_RNG_ERROR_NONDETERM_NOT_SUPPORTED;
            } else if (constexpr int patience = 1000; ++interrupted > patience) {
                return VSL_RNG_ERROR_NONDETERM_NRETRIES_EXCEEDED;
            }
        }
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept { return true; }
};

} // namespace

const engine nondeterministic_engine = engine_of<nondeterministic>(
    VSL_BRNG_NONDETERM, 0,
    {.word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32});

} // namespace xkl::vsl
