// Elements sorted by the line they lie on: what makes compressed rows of elements in any order, and compressed
// columns of compressed rows.
#pragma once

#include <algorithm>
#include <cstdint>

namespace xkl::core::sparse {

/// Makes the starts of the lines, from 0, and calls put(element, place) for every element; line(element) is
/// its line, from 0. Elements of one line keep their order.
template <class Line, class Put>
void sort_into_lines(int64_t lines, int64_t elements, int64_t *starts, const Line &line, const Put &put)
{
    std::fill(starts, starts + lines + 1, 0);
    for (int64_t i = 0; i < elements; ++i)
        ++starts[line(i) + 1];
    for (int64_t i = 0; i < lines; ++i)
        starts[i + 1] += starts[i];
    for (int64_t i = 0; i < elements; ++i)
        put(i, starts[line(i)]++);
    std::copy_backward(starts, starts + lines, starts + lines + 1); // each is now where the next one starts
    starts[0] = 0;
}

} // namespace xkl::core::sparse
