// Registers of the instruction set that this file is compiled for, as the compiler's own vector types.
//
// Everything below and in the functions' headers is compiled once per instruction set, in a namespace of
// its name: a function outside of it that the linker takes from one object for all of them would end the
// process on an older processor. So these headers use nothing of the standard library but types and
// traits, and a test looks at the objects.
#pragma once

#include <cstdint>
#include <immintrin.h>
#include <type_traits>

#define XKL_HOT [[gnu::always_inline]] inline

namespace xkl::kernels {
inline namespace XKL_ISA {

#if defined(__AVX512F__)
constexpr int register_bytes = 64;
#elif defined(__AVX2__)
constexpr int register_bytes = 32;
#else
constexpr int register_bytes = 16;
#endif

template <class R>
requires std::is_arithmetic_v<R>
struct vector_of {
    using type [[gnu::vector_size(register_bytes)]] = R;
};
/// A register of floats, doubles or integers
template <class R>
using vec = typename vector_of<R>::type;

template <class R>
using integer_of = std::conditional_t<sizeof(R) == 8, int64_t, int32_t>;
template <class R>
using unsigned_of = std::conditional_t<sizeof(R) == 8, uint64_t, uint32_t>;
/// What a comparison of registers gives: all bits of a lane, or none
template <class R>
using mask = vec<integer_of<R>>;

/// The type of a register's elements
template <class V>
using element = std::remove_cvref_t<decltype(V{}[0])>;

template <class R>
constexpr int lanes = register_bytes / int{sizeof(R)};

template <class R>
XKL_HOT vec<R> broadcast(R value)
{
    return value - vec<R>{};
}

template <class To, class From>
XKL_HOT To bits_as(From value)
{
    return __builtin_bit_cast(To, value);
}

template <class R>
struct limits; // what the functions need of std::numeric_limits, as plain numbers
template <>
struct limits<double> {
    static constexpr double smallest = 0x1p-1022, largest = 0x1.fffffffffffffp1023, epsilon = 0x1p-52;
    static constexpr double infinity = __builtin_inf(), nan = __builtin_nan("");
};
template <>
struct limits<float> {
    static constexpr float smallest = 0x1p-126f, largest = 0x1.fffffep127f, epsilon = 0x1p-23f;
    static constexpr float infinity = __builtin_inff(), nan = __builtin_nanf("");
};

template <class V>
XKL_HOT V absolute(V x)
{
    using U = vec<unsigned_of<element<V>>>;
    return bits_as<V>((bits_as<U>(x) << 1) >> 1);
}

/// The sign bit of each lane
template <class V>
XKL_HOT auto sign_of(V x)
{
    using R = element<V>;
    using U = vec<unsigned_of<R>>;
    return bits_as<U>(x) & (U{} + (unsigned_of<R>{1} << (8 * sizeof(R) - 1)));
}

template <class V>
XKL_HOT V with_sign_of(V magnitude, V sign)
{
    using U = vec<unsigned_of<element<V>>>;
    return bits_as<V>(bits_as<U>(absolute(magnitude)) | sign_of(sign));
}

template <class V>
XKL_HOT V square_root(V x)
{
    using R = element<V>;
#if defined(__AVX512F__)
    if constexpr (sizeof(R) == 8)
        return _mm512_sqrt_pd(x);
    else
        return _mm512_sqrt_ps(x);
#elif defined(__AVX2__)
    if constexpr (sizeof(R) == 8)
        return _mm256_sqrt_pd(x);
    else
        return _mm256_sqrt_ps(x);
#else
    if constexpr (sizeof(R) == 8)
        return _mm_sqrt_pd(x);
    else
        return _mm_sqrt_ps(x);
#endif
}

/// a*b + c, rounded once where the instruction set has that (has_fma)
#if defined(__FMA__)
constexpr bool has_fma = true;
#else
constexpr bool has_fma = false;
#endif
template <class V>
XKL_HOT V multiply_add(V a, V b, V c)
{
    [[maybe_unused]] constexpr bool wide = sizeof(element<V>) == 8;
#if defined(__AVX512F__)
    if constexpr (wide)
        return _mm512_fmadd_pd(a, b, c);
    else
        return _mm512_fmadd_ps(a, b, c);
#elif defined(__FMA__)
    if constexpr (wide)
        return _mm256_fmadd_pd(a, b, c);
    else
        return _mm256_fmadd_ps(a, b, c);
#else
    return a * b + c;
#endif
}

/// The nearest integer, ties to even
template <class V>
XKL_HOT V nearest(V x)
{
    [[maybe_unused]] constexpr bool wide = sizeof(element<V>) == 8;
    [[maybe_unused]] constexpr int how = _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC;
#if defined(__AVX512F__)
    if constexpr (wide)
        return _mm512_roundscale_pd(x, how);
    else
        return _mm512_roundscale_ps(x, how);
#elif defined(__AVX2__)
    if constexpr (wide)
        return _mm256_round_pd(x, how);
    else
        return _mm256_round_ps(x, how);
#else
    // Adding the power of two at which numbers have no fraction rounds it away; larger numbers are
    // integers.
    constexpr element<V> no_fraction = 1 / limits<element<V>>::epsilon;
    const V rounded = (absolute(x) + no_fraction) - no_fraction;
    return absolute(x) < no_fraction ? with_sign_of(rounded, x) : x;
#endif
}

/// One bit for each lane
XKL_HOT unsigned lane_bits(unsigned bits)
{
    return bits;
}
template <class M>
XKL_HOT unsigned lane_bits(M m)
{
    [[maybe_unused]] constexpr bool wide = sizeof(element<M>) == 8;
#if defined(__AVX512F__)
    if constexpr (wide)
        return _mm512_movepi64_mask(bits_as<__m512i>(m));
    else
        return _mm512_movepi32_mask(bits_as<__m512i>(m));
#elif defined(__AVX2__)
    if constexpr (wide)
        return static_cast<unsigned>(_mm256_movemask_pd(bits_as<__m256d>(m)));
    else
        return static_cast<unsigned>(_mm256_movemask_ps(bits_as<__m256>(m)));
#else
    if constexpr (wide)
        return static_cast<unsigned>(_mm_movemask_pd(bits_as<__m128d>(m)));
    else
        return static_cast<unsigned>(_mm_movemask_ps(bits_as<__m128>(m)));
#endif
}

template <class M>
XKL_HOT bool any(M m)
{
    return lane_bits(m) != 0;
}

template <class V>
XKL_HOT auto is_nan(V x)
{
    return x != x;
}

template <class V>
XKL_HOT auto is_infinite(V x)
{
    return absolute(x) == limits<element<V>>::infinity;
}

/// NaN or infinite
template <class V>
XKL_HOT auto is_not_finite(V x)
{
    return ~(absolute(x) <= limits<element<V>>::largest);
}

/// Zero or denormal
template <class V>
XKL_HOT auto is_tiny(V x)
{
    return absolute(x) < limits<element<V>>::smallest;
}

/// How a number is to a bound; no NaN is anything.
enum relation {
    equal = _CMP_EQ_OQ,
    below = _CMP_LT_OQ,
    at_most = _CMP_LE_OQ,
    at_least = _CMP_GE_OQ,
    above = _CMP_GT_OQ
};

/// One bit for each lane that is so: what lane_bits gives of a comparison, without the mask between, for
/// which the compiler needs instructions of its own with AVX-512.
template <relation Is, class V>
XKL_HOT unsigned which_are(V a, element<V> bound)
{
#if defined(__AVX512F__)
    if constexpr (sizeof bound == 8)
        return _mm512_cmp_pd_mask(a, broadcast(bound), Is);
    else
        return _mm512_cmp_ps_mask(a, broadcast(bound), Is);
#else
    if constexpr (Is == equal)
        return lane_bits(a == bound);
    else if constexpr (Is == below)
        return lane_bits(a < bound);
    else if constexpr (Is == at_most)
        return lane_bits(a <= bound);
    else if constexpr (Is == at_least)
        return lane_bits(a >= bound);
    else
        return lane_bits(a > bound);
#endif
}

/// Kinds of numbers, as the instruction that tells them apart has them
enum kind : int { nans = 0x81, zeros = 0x06, infinities = 0x18, denormals = 0x20 };
constexpr int not_finite = nans | infinities, not_normal = not_finite | zeros | denormals;

/// One bit for each lane that is of one of the kinds: infinities, not_finite or not_normal
template <int Kinds, class V>
XKL_HOT unsigned which_are_of(V a)
{
#if defined(__AVX512F__)
    if constexpr (sizeof(element<V>) == 8)
        return _mm512_fpclass_pd_mask(a, Kinds);
    else
        return _mm512_fpclass_ps_mask(a, Kinds);
#else
    if constexpr (Kinds == infinities)
        return lane_bits(is_infinite(a));
    else if constexpr (Kinds == not_finite)
        return lane_bits(is_not_finite(a));
    else
        return lane_bits(is_not_finite(a) | is_tiny(a));
#endif
}

/// Results that are infinite, no number, or tiny, but for the tiny ones of some lanes: those of arguments
/// that are zeros, say
template <class V>
XKL_HOT unsigned abnormal(V y, unsigned lanes_rightly_tiny)
{
    const unsigned bits = which_are_of<not_normal>(y);
    return bits == 0 ? 0 : bits & (which_are_of<not_finite>(y) | ~lanes_rightly_tiny);
}

/// Whether a lane of a or b has a magnitude beyond a bound. NaN may count as beyond.
template <class V>
XKL_HOT bool any_beyond(V a, V b, element<V> bound)
{
#if defined(__AVX512F__)
    // The larger magnitude in one instruction. Of a number and a NaN it gives the number, unless the NaN
    // signals.
    constexpr int larger_magnitude = 0b1011;
    if constexpr (sizeof bound == 8)
        return _mm512_cmp_pd_mask(_mm512_range_pd(a, b, larger_magnitude), broadcast(bound), _CMP_NLE_UQ);
    else
        return _mm512_cmp_ps_mask(_mm512_range_ps(a, b, larger_magnitude), broadcast(bound), _CMP_NLE_UQ);
#else
    return any((absolute(a) > bound) | (absolute(b) > bound));
#endif
}

/// f of floats as doubles: twice the registers, but a function of 4 ULP then gives floats that are
/// rounded right but for one in a hundred million.
template <class F, class... Vs>
XKL_HOT vec<float> in_double(const F &f, Vs... x)
{
    struct halves {
        using half [[gnu::vector_size(register_bytes / 2)]] = float;
        half low, high;
    };
    const auto low = f(__builtin_convertvector(bits_as<halves>(x).low, vec<double>)...);
    const auto high = f(__builtin_convertvector(bits_as<halves>(x).high, vec<double>)...);
    return bits_as<vec<float>>(halves{__builtin_convertvector(low, typename halves::half),
                                      __builtin_convertvector(high, typename halves::half)});
}

} // namespace XKL_ISA
} // namespace xkl::kernels
