// MCG31m1 and MCG59: x[j+1] = multiplier * x[j] modulo m.
//
// MCG31m1 has m = 2^31 - 1 and the multiplier 1132489760 of L'Ecuyer's tables (1999), MCG59 m = 2^59
// and 13^13. The state is x[1], the first element a step behind the seed x[0]; so the sequences are
// those of C++'s linear_congruential_engine with these constants.
//
// Seeds: MCG31m1 takes the first word modulo m, and 1 for 0; MCG59 the first two words modulo m, and 1
// for 0. (An even seed of MCG59 has a shorter period.) Further words are not looked at.
#include "vsl/engine.h"
#include "vsl/loops_of_set.h"

namespace xkl::vsl {

namespace {

struct mersenne_31 {
    using word = uint32_t;
    static constexpr uint64_t multiplier = 1132489760;
    static constexpr uint64_t modulus = 0x7fffffff;
    static uint64_t times(uint64_t a, uint64_t b) noexcept { return a * b % modulus; }
    static uint64_t seed(seed_words seeds) noexcept { return seed_word(seeds, 0) % modulus; }
    static constexpr auto generate = &loops::mcg31;
};

struct power_59 {
    using word = uint64_t;
    static constexpr uint64_t multiplier = 302875106592253;
    static constexpr uint64_t modulus = uint64_t{1} << 59;
    static uint64_t times(uint64_t a, uint64_t b) noexcept { return a * b % modulus; }
    static uint64_t seed(seed_words seeds) noexcept
    {
        return (seed_word(seeds, 1) * uint64_t{0x100000000} + seed_word(seeds, 0)) % modulus;
    }
    static constexpr auto generate = &loops::mcg59;
};

template <class Field>
struct congruential {
    using word = typename Field::word;

    uint64_t x;         // the next element
    uint64_t powers[9]; // of the multiplier between elements, from 0 on

    int32_t seed(seed_words seeds) noexcept
    {
        const uint64_t start = Field::seed(seeds);
        x = Field::times(start == 0 ? 1 : start, Field::multiplier);
        set_multiplier(Field::multiplier);
        return VSL_STATUS_OK;
    }

    int32_t generate(int32_t n, word *r) noexcept
    {
        (simd().*Field::generate)(x, powers, n, r);
        x = Field::times(r[n - 1], powers[1]);
        return VSL_STATUS_OK;
    }

    int32_t skip(step_count count) noexcept
    {
        x = Field::times(x, power(powers[1], count, uint64_t{1}, Field::times));
        return VSL_STATUS_OK;
    }

    int32_t leapfrog(uint32_t k, uint32_t step) noexcept
    {
        const uint64_t to_first = k, stride = step;
        skip({&to_first, 1});
        set_multiplier(power(powers[1], {&stride, 1}, uint64_t{1}, Field::times));
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept
    {
        uint64_t largest = x;
        for (const uint64_t each : powers)
            largest = largest < each ? each : largest;
        return largest < Field::modulus;
    }

    void set_multiplier(uint64_t multiplier) noexcept
    {
        powers[0] = 1;
        for (int i = 1; i < 9; ++i)
            powers[i] = Field::times(powers[i - 1], multiplier);
    }
};

} // namespace

const engine mcg31_engine = engine_of<congruential<mersenne_31>>(
    VSL_BRNG_MCG31, 1,
    {.word_bytes = 4, .bits = 31, .uniform_bits = false, .includes_zero = false, .unit = 1.0 / 0x7fffffff});
const engine mcg59_engine = engine_of<congruential<power_59>>(
    VSL_BRNG_MCG59, 2,
    {.word_bytes = 8, .bits = 59, .uniform_bits = false, .includes_zero = false, .unit = 0});

} // namespace xkl::vsl
