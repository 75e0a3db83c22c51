// Sobol's and Niederreiter's sequences (base 2) in Gray code order, with the direction numbers of
// Boost.Random: those of Joe and Kuo (2008) for Sobol's, up to 3667 dimensions, and 4720 dimensions for
// Niederreiter's. Point j, for j from 1 to 2^32 - 1, is the sum (exclusive or) of the directions at the
// bits of j's Gray code; the origin, point 0, is left out. The elements are the coordinates, point
// after point.
//
// Seeds: the first word is the dimension, 1 when it is missing. A dimension of 0, or more than there
// are, is VSL_ERROR_BADARGS, and so is a second word that isn't 0: direction numbers of the caller's
// own are not offered.
//
// Leapfrog with one stream for each dimension gives stream k the k-th coordinates of all points.
#include "vsl/engine.h"

#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/sobol.hpp>

#include <algorithm>
#include <new>

namespace xkl::vsl {

namespace {

constexpr uint64_t last_point = 0xffffffff;
constexpr int directions = 32;

template <class Engine, uint32_t MostDimensions>
struct quasi {
    using word = uint32_t;

    uint64_t point; // the one that is being given out, from 1 on; behind last_point: at the end
    uint32_t dimension;
    uint32_t coordinate; // the next one, or with leapfrog the only one
    uint32_t alone;      // 1: coordinate is the only one that is given out
    uint32_t unused;
    // Behind this: dimension coordinates of the point, then dimension directions for each of 32 bits.

    uint32_t *current() noexcept { return reinterpret_cast<uint32_t *>(this + 1); }
    const uint32_t *direction(int bit) noexcept
    {
        return current() + static_cast<size_t>(bit + 1) * dimension;
    }
    static size_t bytes_of(size_t dimension) noexcept
    {
        return sizeof(quasi) + (directions + 1) * dimension * sizeof(uint32_t);
    }

    static size_t state_bytes(seed_words seeds) noexcept
    {
        const uint32_t wanted = seed_word(seeds, 0);
        const bool offered = wanted > 0 && wanted <= MostDimensions && seed_word(seeds, 1) == 0;
        return offered ? bytes_of(wanted) : 0;
    }

    // Point 2^j is direction j plus direction j - 1; Boost's engine counts its points from 0 on.
    int32_t seed(seed_words seeds) noexcept
    try {
        dimension = seed_word(seeds, 0);
        Engine engine(dimension);
        uint32_t *direction = current() + dimension;
        for (int j = 0; j < directions; ++j, direction += dimension) {
            engine.seed((uint32_t{1} << j) - 1);
            for (uint32_t i = 0; i < dimension; ++i)
                direction[i] = engine() ^ (j == 0 ? 0 : (direction - dimension)[i]);
        }
        coordinate = alone = unused = 0;
        go_to(1);
        return VSL_STATUS_OK;
    } catch (const std::bad_alloc &) {
        return VSL_ERROR_MEM_FAILURE;
    } catch (...) {
        return VSL_ERROR_BADARGS;
    }

    int32_t generate(int32_t n, uint32_t *r) noexcept
    {
        while (n > 0) {
            if (point > last_point)
                return VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED;
            const auto count =
                alone ? 1
                      : static_cast<int32_t>(std::min(dimension - coordinate, static_cast<uint32_t>(n)));
            std::copy_n(current() + coordinate, count, r);
            r += count;
            n -= count;
            if (alone) {
                next_point(coordinate, coordinate + 1);
            } else if ((coordinate += static_cast<uint32_t>(count)) == dimension) {
                next_point(0, dimension);
                coordinate = 0;
            }
        }
        return VSL_STATUS_OK;
    }

    int32_t skip(step_count count) noexcept
    {
        if (bit_length(count) > 64)
            return VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED;
        const uint128 along =
            alone ? word_of(count, 0) : static_cast<uint128>(word_of(count, 0)) + coordinate;
        const uint128 target = point + (alone ? along : along / dimension);
        const auto target_coordinate = static_cast<uint32_t>(alone ? coordinate : along % dimension);
        if (target > last_point + 1 || (target == last_point + 1 && !alone && target_coordinate > 0))
            return VSL_RNG_ERROR_QRNG_PERIOD_ELAPSED;
        coordinate = target_coordinate;
        go_to(static_cast<uint64_t>(target));
        return VSL_STATUS_OK;
    }

    int32_t leapfrog(uint32_t k, uint32_t step) noexcept
    {
        if (step > dimension)
            return VSL_RNG_ERROR_LEAPFROG_NSTREAMS_TOO_BIG;
        if (step != dimension || alone || coordinate != 0)
            return VSL_RNG_ERROR_LEAPFROG_UNSUPPORTED;
        coordinate = k;
        alone = 1;
        return VSL_STATUS_OK;
    }

    bool plausible(size_t bytes) const noexcept
    {
        return dimension > 0 && dimension <= MostDimensions && bytes == bytes_of(dimension) &&
               coordinate < dimension && alone <= 1 && point > 0 && point <= last_point + 1;
    }

  private:
    void next_point(uint32_t from, uint32_t to) noexcept
    {
        if (++point > last_point)
            return;
        const uint32_t *const change = direction(std::countr_zero(static_cast<uint32_t>(point)));
        for (uint32_t i = from; i < to; ++i)
            current()[i] ^= change[i];
    }

    void go_to(uint64_t target) noexcept
    {
        point = target;
        std::fill_n(current(), dimension, 0);
        const uint64_t gray = target ^ target >> 1;
        for (int bit = 0; bit < directions; ++bit)
            for (uint32_t i = 0; gray >> bit & 1 && i < dimension; ++i)
                current()[i] ^= direction(bit)[i];
    }
};

constexpr elements coordinates = {
    .word_bytes = 4, .bits = 32, .uniform_bits = false, .includes_zero = true, .unit = 0x1p-32};

} // namespace

const engine sobol_engine = engine_of<
    quasi<boost::random::sobol_engine<uint32_t, 32>, boost::random::default_sobol_table::max_dimension>>(
    VSL_BRNG_SOBOL, 1, coordinates);
const engine niederreiter_engine =
    engine_of<quasi<boost::random::niederreiter_base2_engine<uint32_t, 32>,
                    boost::random::default_niederreiter_base2_table::max_dimension>>(VSL_BRNG_NIEDERR, 1,
                                                                                     coordinates);

} // namespace xkl::vsl
