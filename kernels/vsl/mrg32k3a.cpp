// MRG32k3a (L'Ecuyer, 1999): two recurrences of order 3,
//     x[j+3] = 1403580*x[j+1] - 810728*x[j]     modulo m1 = 2^32 - 209
//     y[j+3] =  527612*y[j+2] - 1370589*y[j]    modulo m2 = 2^32 - 22853
// whose difference modulo m1, counted from 1 to m1, is the element; divided by m1 + 1 it is uniform.
//
// Seeds: up to six words, x[0] to x[2] modulo m1 and y[0] to y[2] modulo m2; missing ones are 1, and so
// is the first one of a component that would be all zero. The first element is that of x[3] and y[3],
// as the author publishes it.
//
// Elements that are s steps apart follow a recurrence of order 3, too: its coefficients are those of
// the characteristic polynomial of multiplication by t^s in the ring of polynomials modulo the
// recurrence's own. Leapfrog streams and the eight lanes of fast generation live on that.
#include "vsl/engine.h"
#include "vsl/loops_of_set.h"

namespace xkl::vsl {

namespace {

struct triple {
    uint64_t v[3];
};

/// Arithmetic modulo 2^32 - D, and modulo a polynomial of degree 3 over it
template <uint64_t D>
struct component {
    static constexpr uint64_t m = (uint64_t{1} << 32) - D;

    // Much faster than a division: what is above 32 bits counts D times.
    static uint64_t reduced(uint64_t x) noexcept
    {
        for (int fold = 0; fold < 2; ++fold)
            x = (x & 0xffffffff) + (x >> 32) * D;
        return x >= m ? x - m : x;
    }
    static uint64_t minus(uint64_t a, uint64_t b) noexcept { return a >= b ? a - b : a + m - b; }
    static uint64_t times(uint64_t a, uint64_t b) noexcept { return reduced(a * b); }
    static uint64_t product_sum(const triple &a, const triple &b) noexcept
    {
        return reduced(times(a.v[0], b.v[0]) + times(a.v[1], b.v[1]) + times(a.v[2], b.v[2]));
    }

    /// t*p for t^3 = c[2]*t^2 + c[1]*t + c[0]
    static triple times_t(const triple &p, const triple &c) noexcept
    {
        const uint64_t top = p.v[2];
        return {times(top, c.v[0]), reduced(p.v[0] + times(top, c.v[1])),
                reduced(p.v[1] + times(top, c.v[2]))};
    }
    static triple product(const triple &p, const triple &q, const triple &c) noexcept
    {
        triple sum{}, shifted = p;
        for (const uint64_t coefficient : q.v) {
            for (int i = 0; i < 3; ++i)
                sum.v[i] = reduced(sum.v[i] + times(coefficient, shifted.v[i]));
            shifted = times_t(shifted, c);
        }
        return sum;
    }
    static triple power_of_t(step_count count, const triple &c) noexcept
    {
        return power(triple{0, 1, 0}, count, triple{1, 0, 0},
                     [&](const triple &p, const triple &q) { return product(p, q, c); });
    }

    /// Coefficients of the recurrence of every count-th element
    static triple of_every(step_count count, const triple &c) noexcept
    {
        const triple c0 = power_of_t(count, c), c1 = times_t(c0, c), c2 = times_t(c1, c);
        const auto minor = [](const triple &a, const triple &b, int i, int j) {
            return minus(times(a.v[i], b.v[j]), times(a.v[j], b.v[i]));
        };
        const uint64_t trace = reduced(c0.v[0] + c1.v[1] + c2.v[2]);
        const uint64_t minors = reduced(minor(c0, c1, 0, 1) + minor(c0, c2, 0, 2) + minor(c1, c2, 1, 2));
        const uint64_t determinant =
            reduced(times(c0.v[0], minor(c1, c2, 1, 2)) + times(c1.v[0], minor(c2, c0, 1, 2)) +
                    times(c2.v[0], minor(c0, c1, 1, 2)));
        return {determinant, minus(0, minors), trace};
    }

    static triple advanced(const triple &y, const triple &c) noexcept
    {
        return {y.v[1], y.v[2], product_sum(c, y)};
    }
    /// y[count], y[count + 1]...
    static triple skipped(triple y, step_count count, const triple &c) noexcept
    {
        const triple p = power_of_t(count, c);
        triple result;
        for (uint64_t &value : result.v) {
            value = product_sum(p, y);
            y = advanced(y, c);
        }
        return result;
    }
    /// y[k], y[k + step], y[k + 2*step]
    static triple every(triple y, step_count k, step_count step, const triple &c) noexcept
    {
        y = skipped(y, k, c);
        triple result;
        for (uint64_t &value : result.v) {
            value = y.v[0];
            y = skipped(y, step, c);
        }
        return result;
    }
};
using first_component = component<209>;
using second_component = component<22853>;

constexpr int lanes = 8;

struct mrg32k3a {
    using word = uint32_t;

    triple x, y; // those of the next three elements
    triple x_recurrence, y_recurrence;
    triple x_of_lane, y_of_lane; // recurrences of every eighth element

    int32_t seed(seed_words seeds) noexcept
    {
        for (size_t i = 0; i < 3; ++i) {
            x.v[i] = (i < seeds.size() ? seeds[i] : 1) % first_component::m;
            y.v[i] = (i + 3 < seeds.size() ? seeds[i + 3] : 1) % second_component::m;
        }
        for (triple *component : {&x, &y})
            if ((component->v[0] | component->v[1] | component->v[2]) == 0)
                component->v[0] = 1;
        x_recurrence = {first_component::m - 810728, 1403580, 0};
        y_recurrence = {second_component::m - 1370589, 0, 527612};
        set_lanes();
        const uint64_t behind_seed = 3;
        return skip({&behind_seed, 1});
    }

    int32_t generate(int32_t n, uint32_t *r) noexcept
    {
        constexpr int32_t worth_lanes = 8 * lanes;
        if (n >= worth_lanes) {
            const int32_t whole = n / lanes * lanes;
            generate_in_lanes(whole, r);
            n -= whole;
            r += whole;
        }
        for (; n > 0; --n, ++r) {
            *r = static_cast<uint32_t>(x.v[0] > y.v[0] ? x.v[0] - y.v[0]
                                                       : x.v[0] + first_component::m - y.v[0]);
            x = first_component::advanced(x, x_recurrence);
            y = second_component::advanced(y, y_recurrence);
        }
        return VSL_STATUS_OK;
    }

    int32_t skip(step_count count) noexcept
    {
        x = first_component::skipped(x, count, x_recurrence);
        y = second_component::skipped(y, count, y_recurrence);
        return VSL_STATUS_OK;
    }

    int32_t leapfrog(uint32_t k, uint32_t step) noexcept
    {
        const uint64_t to_first = k, stride = step;
        x = first_component::every(x, {&to_first, 1}, {&stride, 1}, x_recurrence);
        y = second_component::every(y, {&to_first, 1}, {&stride, 1}, y_recurrence);
        x_recurrence = first_component::of_every({&stride, 1}, x_recurrence);
        y_recurrence = second_component::of_every({&stride, 1}, y_recurrence);
        set_lanes();
        return VSL_STATUS_OK;
    }

    bool plausible(size_t) const noexcept
    {
        uint64_t largest = 0;
        for (const triple &each : {x, y, x_recurrence, y_recurrence, x_of_lane, y_of_lane})
            for (const uint64_t value : each.v)
                largest = largest < value ? value : largest;
        return largest < first_component::m;
    }

  private:
    void set_lanes() noexcept
    {
        const uint64_t count = lanes;
        x_of_lane = first_component::of_every({&count, 1}, x_recurrence);
        y_of_lane = second_component::of_every({&count, 1}, y_recurrence);
    }

    /// n elements, a multiple of the lanes. The first 24 values of each component are made one by one.
    void generate_in_lanes(int32_t n, uint32_t *r) noexcept
    {
        mrg_lanes all;
        for (int i = 0; i < 3 * lanes; ++i) {
            all.y[0][i / lanes][i % lanes] = x.v[0];
            all.y[1][i / lanes][i % lanes] = y.v[0];
            x = first_component::advanced(x, x_recurrence);
            y = second_component::advanced(y, y_recurrence);
        }
        for (int i = 0; i < 3; ++i) {
            all.c[0][i] = x_of_lane.v[i];
            all.c[1][i] = y_of_lane.v[i];
        }
        simd().mrg32k3a(all, n / lanes, r);
        for (int i = 0; i < 3; ++i) {
            x.v[i] = all.y[0][0][i];
            y.v[i] = all.y[1][0][i];
        }
    }
};

} // namespace

const engine mrg32k3a_engine = engine_of<mrg32k3a>(VSL_BRNG_MRG32K3A, 6,
                                                   {.word_bytes = 4,
                                                    .bits = 32,
                                                    .uniform_bits = false,
                                                    .includes_zero = false,
                                                    .unit = 1.0 / (first_component::m + 1)});

} // namespace xkl::vsl
