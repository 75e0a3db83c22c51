// Copies of matrices as the kernels see them: lines of neighbouring elements (columns or rows, whichever the
// ordering stores together), that stay lines or are turned: the lines of the copy then run across those of
// the source. Each kernel does one block on the calling thread; the drivers cut matrices into blocks.
#pragma once

#include "blas/elements.h"

#include <cstddef>

namespace xkl::core {

/// What happens to each element (x, y) on its way: it becomes (straight0 x + crossed0 y, straight1 y +
/// crossed1 x). Complex factors, conjugates and both at once have this one form; real elements know x only.
/// The numbers are repeated to the length of the widest register.
template <class T>
struct factor {
    using real = real_of<T>;
    static constexpr size_t lanes = 64 / sizeof(real), parts = sizeof(T) / sizeof(real);

    bool keeps;   // elements go unchanged, bit by bit
    bool crosses; // crossed is not zero, and is to be looked at
    alignas(64) real straight[lanes];
    alignas(64) real crossed[lanes];

    factor(T alpha, bool conjugated)
    {
        const real re = std::real(alpha), im = std::imag(alpha), sign = conjugated ? -1 : 1;
        keeps = alpha == T(1) && !conjugated;
        crosses = im != 0;
        for (size_t i = 0; i < lanes; i += parts) {
            straight[i] = re;
            if constexpr (parts == 2) {
                straight[i + 1] = sign * re;
                crossed[i] = -sign * im;
                crossed[i + 1] = im;
            }
        }
    }
};

/// lines lines of length elements each, ld elements from one to the next
template <class T>
struct block {
    T *first;
    size_t ld;

    /// Inlined always: the kernels' files are for different instruction sets, and must share no function.
    [[gnu::always_inline]] block at(size_t line, size_t place) const
    {
        return {first + line * ld + place, ld};
    }
};

/// How a block is written: through the caches, or past them when they can't hold the copy.
enum class writing { cached, streamed };

/// The lines that are turned together: a cache line of a turned line.
template <class T>
inline constexpr size_t tile = 64 / sizeof(T);

/// Elements before the first that stands at the start of a cache line, when that is so in every line;
/// none when no such place exists.
template <class T>
[[gnu::always_inline]] inline size_t before_cache_line(const T *first, size_t ld)
{
    const size_t address = reinterpret_cast<size_t>(first);
    if (ld * sizeof(T) % 64 != 0 || address % sizeof(T) != 0)
        return 0;
    return (64 - address % 64) % 64 / sizeof(T);
}

/// The kernels for one element type. What is called b or c is written; lines and length are those of a, but
/// for the sum, where they are those of c.
template <class T>
struct copy_routines {
    using source = block<const T>;
    using target = block<T>;

    void (*move)(source a, target b, size_t lines, size_t length, const factor<T> &, writing);
    void (*turn)(source a, target b, size_t lines, size_t length, const factor<T> &, writing);
    /// Exchanges lines i to last_i, places j to last_j of a square with their mirror images, or turns the
    /// square itself where i is j.
    void (*exchange)(target a, size_t i, size_t last_i, size_t j, size_t last_j, const factor<T> &);
    void (*sum[2][2])(source a, const factor<T> &, source b, const factor<T> &, target c, size_t lines,
                      size_t length); // by whether a and b are turned
};

/// The kernels for one instruction set
struct copy_kernels {
    copy_routines<float> s;
    copy_routines<double> d;
    copy_routines<complex8> c;
    copy_routines<complex16> z;

    template <class T>
    const copy_routines<T> &of() const
    {
        if constexpr (element<T>::is_complex) {
            if constexpr (sizeof(T) == sizeof(complex8))
                return c;
            else
                return z;
        } else if constexpr (sizeof(T) == sizeof(float))
            return s;
        else
            return d;
    }
};

extern const copy_kernels copy_baseline, copy_avx2, copy_avx512;

/// Those that the processor can run and the settings allow.
const copy_kernels &copy_kernels_in_force() noexcept;

} // namespace xkl::core
