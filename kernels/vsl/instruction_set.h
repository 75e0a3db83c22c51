// Which copy of the loops under simd/ a call runs. They are compiled once per instruction set, each
// into a table of its own namespace (sse2, avx2, avx512); all copies give the same numbers to the last
// bit.
#pragma once

namespace xkl::vsl {

/// 0 SSE2, 1 AVX2 with FMA, 2 AVX-512: the best of this processor, or what xkl_vsl_kernel_LimitSet allows
int instruction_set() noexcept;

/// The table of the current set, of the three that are named alike in the namespaces of the sets
template <class Table>
const Table &of_set(const Table &sse2, const Table &avx2, const Table &avx512) noexcept
{
    const int set = instruction_set();
    return set == 0 ? sse2 : set == 1 ? avx2 : avx512;
}

} // namespace xkl::vsl
