// The parts of the four element types, as numbers of the type that sums are computed in.
#pragma once

#include <complex>
#include <cstdint>

namespace xkl::core::conv {

template <class T>
struct parts_of {
    using real = T;
    static constexpr int count = 1;
};
template <class R>
struct parts_of<std::complex<R>> {
    using real = R;
    static constexpr int count = 2;
};

template <class T>
inline constexpr bool is_complex = parts_of<T>::count == 2;

/// Memory of the core's allocator, freed at the end of its scope. Null when there is none.
class scratch {
  public:
    explicit scratch(double bytes) noexcept; // beyond any address space it is null, too
    ~scratch();
    scratch(const scratch &) = delete;
    scratch &operator=(const scratch &) = delete;

    template <class R>
    R *as() const noexcept
    {
        return static_cast<R *>(block_);
    }
    /// Leaves the block to the caller.
    void *release() noexcept;

  private:
    void *block_;
};

} // namespace xkl::core::conv
