// How elements of any stream become the numbers that a distribution draws.
#include "vsl/generators.h"
#include "vsl/loops_of_set.h"
#include "vsl/stream_object.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace xkl::vsl {

namespace {

constexpr int32_t block = 1024; // elements between a generator and the loop that makes numbers of them

template <class R>
constexpr int digits = std::numeric_limits<R>::digits;

template <class R>
R below(R b) noexcept
{
    return std::nextafter(b, -std::numeric_limits<R>::infinity());
}

/// `get(count, words)` blocks of elements and `use(count, words)` them.
template <class Word, class Get, class Use>
int32_t by_blocks(int32_t n, const Get &get, const Use &use) noexcept
{
    alignas(64) Word words[block];
    while (n > 0) {
        const int32_t count = std::min(n, block);
        if (const int32_t status = get(count, words); status < 0)
            return status;
        use(count, words);
        n -= count;
    }
    return VSL_STATUS_OK;
}

/// Elements of 4 bytes below 2^bits that count `unit` each, of which an open interval takes the middles
void set_places(mapping<double> &how, const elements &e, bool open) noexcept
{
    how.shift = e.word_bytes == 4 ? 0 : e.bits - digits<double> + open;
    how.unit = e.word_bytes == 4 ? e.unit : open ? 0x1p-52 : 0x1p-53;
}
void set_places(mapping<float> &how, const elements &e, bool open) noexcept
{
    how.shift = e.bits - digits<float> + open;
    how.unit = open ? 0x1p-23f : 0x1p-24f;
}

void convert(int32_t n, const uint32_t *words, double *r, const mapping<double> &how) noexcept
{
    simd().doubles(n, words, r, how);
}
void convert(int32_t n, const uint32_t *words, float *r, const mapping<float> &how) noexcept
{
    simd().floats(n, words, r, how);
}
void convert(int32_t n, const uint64_t *words, double *r, const mapping<double> &how) noexcept
{
    simd().doubles_of_long(n, words, r, how);
}
void convert(int32_t n, const uint64_t *words, float *r, const mapping<float> &how) noexcept
{
    simd().floats_of_long(n, words, r, how);
}

/// Numbers of [a, b), or of the open unit interval if `open`
template <class R>
struct request {
    int32_t n;
    R *r;
    R a, b;
    bool open;
};

template <class R, class Word, class Get>
int32_t of_elements(request<R> want, const elements &e, const Get &get) noexcept
{
    mapping<R> how{.shift = 0, .unit = 0, .a = want.a, .width = want.b - want.a, .last = below(want.b)};
    set_places(how, e, want.open);
    if (want.open)
        how.a = how.unit / 2;
    return by_blocks<Word>(want.n, get, [&](int32_t count, const Word *words) {
        convert(count, words, want.r, how);
        want.r += count;
    });
}

constexpr elements callers_integers = {
    .word_bytes = 4, .bits = 32, .uniform_bits = true, .includes_zero = true, .unit = 0x1p-32};

/// Real numbers of somebody else: kept inside the bounds, whatever they are
template <class R>
R inside(R x, const request<R> &want) noexcept
{
    const R first = want.open ? std::numeric_limits<R>::epsilon() / 2 : want.a;
    return x > first ? std::min(x, below(want.b)) : first;
}

template <class T, class R>
int32_t of_callers_reals(stream &s, request<R> want) noexcept
{
    const auto &buffer = *static_cast<const caller_buffer *>(state_of(s));
    return by_blocks<T>(
        want.n, [&](int32_t count, T *x) { return take(s, count, x); },
        [&](int32_t count, const T *x) {
            for (int32_t i = 0; i < count; ++i) {
                const double u = (x[i] - buffer.a) / (buffer.b - buffer.a);
                *want.r++ = inside(static_cast<R>(want.a + (want.b - want.a) * u), want);
            }
        });
}

int32_t ask(const VSLBRngProperties &generator, stream &s, int32_t n, double *r, double a,
            double b) noexcept
{
    return generator.dBRng(&s, n, r, a, b);
}
int32_t ask(const VSLBRngProperties &generator, stream &s, int32_t n, float *r, float a, float b) noexcept
{
    return generator.sBRng(&s, n, r, a, b);
}

template <class R>
int32_t of_registered(stream &s, const request<R> &want) noexcept
{
    const VSLBRngProperties *const generator = registered_generator(s.brng);
    if (!generator)
        return VSL_RNG_ERROR_BAD_STREAM;
    const int32_t status = ask(*generator, s, want.n, want.r, want.a, want.b);
    for (int32_t i = 0; status >= 0 && i < want.n; ++i)
        want.r[i] = inside(want.r[i], want);
    return status;
}

template <class R>
int32_t draw(stream &s, const request<R> &want) noexcept
{
    if (const engine *const row = basic_generator(s.brng)) {
        const auto get = [&](int32_t count, auto *words) {
            return row->generate(state_of(s), count, words);
        };
        return row->sequence.word_bytes == 4 ? of_elements<R, uint32_t>(want, row->sequence, get)
                                             : of_elements<R, uint64_t>(want, row->sequence, get);
    }
    switch (s.brng) {
    case VSL_BRNG_IABSTRACT:
        return of_elements<R, uint32_t>(
            want, callers_integers, [&](int32_t count, uint32_t *words) { return take(s, count, words); });
    case VSL_BRNG_DABSTRACT:
        return of_callers_reals<double>(s, want);
    case VSL_BRNG_SABSTRACT:
        return of_callers_reals<float>(s, want);
    default:
        return of_registered(s, want);
    }
}

template <class R>
int32_t uniform_in(stream &s, int32_t n, R *r, R a, R b) noexcept
{
    if (std::isfinite(b - a) || !std::isfinite(a) || !std::isfinite(b))
        return draw<R>(s, {n, r, a, b, false});
    const int32_t status = draw<R>(s, {n, r, a / 2, b / 2, false}); // their difference overflows
    for (int32_t i = 0; i < n; ++i)
        r[i] *= 2;
    return status;
}

/// A caller's array of 32-bit words may begin where longer words must not.
int32_t bits_of_basic(const engine &row, stream &s, int32_t n, uint32_t *r) noexcept
{
    if (row.sequence.word_bytes == 4 || reinterpret_cast<uintptr_t>(r) % alignof(uint64_t) == 0)
        return row.generate(state_of(s), n, r);
    return by_blocks<uint64_t>(
        n, [&](int32_t count, uint64_t *words) { return row.generate(state_of(s), count, words); },
        [&](int32_t count, const uint64_t *words) {
            std::memcpy(r, words, static_cast<size_t>(count) * sizeof *words);
            r += 2 * static_cast<ptrdiff_t>(count);
        });
}

/// Elements with as many random bits as their words have
bool has_uniform_bits(const stream &s) noexcept
{
    if (const engine *const row = basic_generator(s.brng))
        return row->sequence.uniform_bits;
    if (const VSLBRngProperties *const generator = registered_generator(s.brng))
        return generator->WordSize <= 8 && generator->NBits == 8 * generator->WordSize;
    return s.brng == VSL_BRNG_IABSTRACT;
}

} // namespace

int32_t check(const stream *s) noexcept
{
    return !s                                     ? VSL_ERROR_NULL_PTR
           : s->live != 1 || s->tag != stream_tag ? VSL_RNG_ERROR_BAD_STREAM
                                                  : VSL_STATUS_OK;
}

int32_t uniform(stream &s, int32_t n, double *r, double a, double b) noexcept
{
    return uniform_in(s, n, r, a, b);
}

int32_t uniform(stream &s, int32_t n, float *r, float a, float b) noexcept
{
    return uniform_in(s, n, r, a, b);
}

int32_t open_uniform(stream &s, int32_t n, double *r) noexcept
{
    return draw<double>(s, {n, r, 0, 1, true});
}

int32_t open_uniform(stream &s, int32_t n, float *r) noexcept
{
    return draw<float>(s, {n, r, 0, 1, true});
}

int32_t native_bits(stream &s, int32_t n, uint32_t *r) noexcept
{
    if (n <= 0)
        return VSL_STATUS_OK;
    if (const engine *const row = basic_generator(s.brng))
        return bits_of_basic(*row, s, n, r);
    if (const VSLBRngProperties *const generator = registered_generator(s.brng))
        return generator->iBRng(&s, n, r);
    return s.brng == VSL_BRNG_IABSTRACT ? take(s, n, r) : VSL_ERROR_FEATURE_NOT_IMPLEMENTED;
}

int32_t words_of(const stream &s) noexcept
{
    if (const engine *const row = basic_generator(s.brng))
        return row->sequence.word_bytes / 4;
    const VSLBRngProperties *const generator = registered_generator(s.brng);
    return generator ? generator->WordSize / 4 : 1;
}

int32_t bits32(stream &s, int32_t n, uint32_t *r) noexcept
{
    const bool offered = has_uniform_bits(s) && words_of(s) == 1;
    return offered ? native_bits(s, n, r) : VSL_ERROR_FEATURE_NOT_IMPLEMENTED;
}

int32_t bits64(stream &s, int32_t n, uint64_t *r) noexcept
{
    if (!has_uniform_bits(s))
        return VSL_ERROR_FEATURE_NOT_IMPLEMENTED;
    auto *words = reinterpret_cast<uint32_t *>(r);
    if (words_of(s) == 2)
        return native_bits(s, n, words);
    const int32_t status = native_bits(s, n, words); // 2*n words may be more than a count can say
    return status < 0 ? status : native_bits(s, n, words + n);
}

} // namespace xkl::vsl
