// A transform of the core as convolution uses it: in place, forth and back, of several dimensions. Rows of
// real numbers are followed by the space that their spectrum needs beyond them.
#pragma once

#include "conv/elements.h"
#include "conv/transform.h"

struct DFTI_DESCRIPTOR;

namespace xkl::core::conv {

class spectra {
  public:
    spectra() = default;
    ~spectra();
    spectra(const spectra &) = delete;
    spectra &operator=(const spectra &) = delete;

    outcome prepare(const transform_shape &, bool single, bool complex) noexcept;
    /// One transform may run on several threads at once.
    outcome forward(void *buffer) const noexcept;
    outcome backward(void *buffer) const noexcept;

    int64_t row_size() const noexcept { return row_size_; } // in numbers, the space behind included
    int64_t size() const noexcept { return size_; }         // of a buffer, in numbers

  private:
    DFTI_DESCRIPTOR *descriptor_ = nullptr;
    int64_t row_size_ = 0, size_ = 0;
};

} // namespace xkl::core::conv
