// The packed formats of conjugate-even data: what a transform of real data has, as reals.
//
// In one dimension of length n, element k of the half spectrum (0 to n/2) has its real and its imaginary
// part at these places; element 0, and n/2 of an even length, are real.
//
//     ccs:   2k and 2k + 1, with zeros for the missing imaginary parts; 2 (n/2 + 1) reals
//     pack:  0; 2k - 1 and 2k; n/2 last; n reals
//     perm:  0 and, at place 1, n/2; 2k and 2k + 1; n reals; odd lengths as pack
//
// In two dimensions the places of the first dimension are those of one dimension. The two columns that
// belong to its real elements are conjugate-even in the second dimension and packed along it likewise; all
// others hold every element of the second dimension. The column of ccs beside a real one is zero.
#pragma once

#include "fft/transform_module.h"

namespace xkl::fft {

class packed_places {
  public:
    packed_places(layout format, int64_t length) : format_(format), length_(length) {}

    int64_t half() const { return length_ / 2 + 1; }
    int64_t size() const { return format_ == layout::ccs ? 2 * half() : length_; }
    bool is_real(int64_t k) const { return k == 0 || 2 * k == length_; }

    int64_t real(int64_t k) const
    {
        if (format_ == layout::ccs || k == 0)
            return 2 * k;
        if (!permuted())
            return 2 * k - 1;
        return 2 * k == length_ ? 1 : 2 * k;
    }
    // Not for real elements, but in ccs.
    int64_t imaginary(int64_t k) const { return real(k) + 1; }

  private:
    bool permuted() const { return format_ == layout::perm && length_ % 2 == 0; }

    layout format_;
    int64_t length_;
};

// A spectrum of one or two dimensions: the packed side, with strides in reals, and the half spectrum as
// compact complex elements, dimension 0 halved.
template <class T>
class packed_spectrum {
  public:
    packed_spectrum(const problem &of, bool input)
        : format_(of.storage), rank_(of.rank), first_(format_, of.sides[0].length),
          second_(format_, of.sides[1].length), columns_(of.sides[1].length),
          stride0_(input ? of.sides[0].in_stride : of.sides[0].out_stride),
          stride1_(input ? of.sides[1].in_stride : of.sides[1].out_stride)
    {
    }

    void write(const T *half, T *packed, T factor) const
    {
        if (rank_ == 1)
            return write_line(first_, half, 1, packed, stride0_, factor);
        for (int64_t j = 0; j < first_.half(); ++j) {
            const T *element = half + 2 * j;
            T *real = packed + first_.real(j) * stride0_;
            T *imaginary = packed + first_.imaginary(j) * stride0_;
            if (!first_.is_real(j)) {
                for (int64_t k = 0; k < columns_; ++k) {
                    real[k * stride1_] = factor * element[2 * k * first_.half()];
                    imaginary[k * stride1_] = factor * element[2 * k * first_.half() + 1];
                }
                continue;
            }
            write_line(second_, element, first_.half(), real, stride1_, factor);
            for (int64_t k = 0; format_ == layout::ccs && k < second_.size(); ++k)
                imaginary[k * stride1_] = 0;
        }
    }

    void read(const T *packed, T *half) const
    {
        if (rank_ == 1)
            return read_line(first_, packed, stride0_, half, 1);
        for (int64_t j = 0; j < first_.half(); ++j) {
            T *element = half + 2 * j;
            const T *real = packed + first_.real(j) * stride0_;
            const T *imaginary = packed + first_.imaginary(j) * stride0_;
            if (!first_.is_real(j)) {
                for (int64_t k = 0; k < columns_; ++k) {
                    element[2 * k * first_.half()] = real[k * stride1_];
                    element[2 * k * first_.half() + 1] = imaginary[k * stride1_];
                }
                continue;
            }
            read_line(second_, real, stride1_, element, first_.half());
            for (int64_t k = 1; 2 * k < columns_; ++k) {
                T *mirrored = element + 2 * (columns_ - k) * first_.half();
                mirrored[0] = element[2 * k * first_.half()];
                mirrored[1] = -element[2 * k * first_.half() + 1];
            }
        }
    }

  private:
    // The step is between complex elements.
    void write_line(const packed_places &places, const T *half, int64_t step, T *packed, int64_t stride,
                    T factor) const
    {
        for (int64_t k = 0; k < places.half(); ++k) {
            packed[places.real(k) * stride] = factor * half[2 * k * step];
            if (!places.is_real(k))
                packed[places.imaginary(k) * stride] = factor * half[2 * k * step + 1];
            else if (format_ == layout::ccs)
                packed[places.imaginary(k) * stride] = 0;
        }
    }

    static void read_line(const packed_places &places, const T *packed, int64_t stride, T *half,
                          int64_t step)
    {
        for (int64_t k = 0; k < places.half(); ++k) {
            half[2 * k * step] = packed[places.real(k) * stride];
            half[2 * k * step + 1] = places.is_real(k) ? T(0) : packed[places.imaginary(k) * stride];
        }
    }

    layout format_;
    int rank_;
    packed_places first_, second_;
    int64_t columns_;
    int64_t stride0_, stride1_;
};

} // namespace xkl::fft
