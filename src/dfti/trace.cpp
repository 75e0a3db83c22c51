// The trace line of a computation: what is transformed, then whatever differs from the plainest transform.
#include "dfti/trace.h"

#include "core_service.h"
#include "dfti/core_services.h"
#include "dfti/descriptor.h"

#include <algorithm>
#include <cstddef>

namespace xkl::dfti {
namespace {

constexpr int fourier_domain = 0; // domain code of this family's lines

/// Text of bounded length; what does not fit is cut.
class bounded_line {
  public:
    template <class... V>
    void add(const char *format, V... values)
    {
        const int added = xkl_serv_sprintf_char_s(text_ + used_, size - used_, format, values...);
        if (added > 0)
            used_ = std::min(used_ + static_cast<std::size_t>(added), size - 1);
    }

    const char *text() const { return text_; }

  private:
    static constexpr std::size_t size = 511;
    char text_[size] = {};
    std::size_t used_ = 0;
};

/// One side of a transform, in the core's order.
struct data_side {
    stride_vector strides = {};
    int64_t distance = 0;
    bool has_strides(int64_t rank) const
    {
        return std::any_of(strides + 1, strides + 1 + rank, [](int64_t each) { return each != 0; });
    }
};

/// What a descriptor transforms, fetched whole.
struct transform {
    DFTI_DESCRIPTOR_HANDLE handle;
    direction way;
    int64_t rank = handle->rank;
    int64_t lengths[most_dimensions] = {};
    int64_t count = 0;
    data_side sides[2];                  // as they are shown
    bool strides_by_direction = false;   // those of forward and backward, where no input or output has any
    bool distances_by_direction = false; // the same

    transform(DFTI_DESCRIPTOR_HANDLE handle, direction way);

    bool is_in_place() const { return handle->placement == DFTI_INPLACE; }
    bool is_complex() const { return handle->forward_domain == DFTI_COMPLEX; }

    /// The strides and distance of what the computation reads (0) or writes (1). The forward side is what
    /// backward writes.
    const int64_t *strides_of(int role) const { return sides[shown(role, strides_by_direction)].strides; }
    int64_t distance_of(int role) const { return sides[shown(role, distances_by_direction)].distance; }

    /// Elements that a row along the fastest dimension takes: as many as it has, but that half of a
    /// conjugate-even row is enough, and that a real row in place must have room for that half.
    int64_t row_of(int role) const
    {
        const int64_t half = lengths[0] / 2 + 1;
        const bool is_real_side = role == (way == direction::forward ? 0 : 1);
        if (is_complex())
            return lengths[0];
        return !is_real_side ? half : is_in_place() ? 2 * half : lengths[0];
    }

  private:
    int shown(int role, bool by_direction) const
    {
        return by_direction && way == direction::backward ? 1 - role : role;
    }
};

transform::transform(DFTI_DESCRIPTOR_HANDLE of, direction to) : handle(of), way(to)
{
    const xkl_dft_operations &operations = *handle->operations;
    operations.get_lengths(handle, lengths);
    operations.get_number_of_transforms(handle, &count);
    operations.get_input_strides(handle, sides[0].strides);
    operations.get_output_strides(handle, sides[1].strides);
    strides_by_direction = !sides[0].has_strides(rank) && !sides[1].has_strides(rank);
    if (strides_by_direction) {
        operations.get_forward_strides(handle, sides[0].strides);
        operations.get_backward_strides(handle, sides[1].strides);
    }
    operations.get_input_distance(handle, &sides[0].distance);
    operations.get_output_distance(handle, &sides[1].distance);
    distances_by_direction = sides[0].distance == 0 && sides[1].distance == 0 && count > 1;
    if (distances_by_direction) {
        operations.get_forward_distance(handle, &sides[0].distance);
        operations.get_backward_distance(handle, &sides[1].distance);
    }
}

/// Whether rows, planes and so on follow each other without gaps, if the innermost stride and the elements of
/// a row are as given.
bool is_nested(const transform &of, const int64_t *strides, int64_t innermost, int64_t row)
{
    if (strides[1] != innermost)
        return false;
    for (int64_t i = 1; i < of.rank; ++i)
        if (strides[i + 1] != strides[i] * (i == 1 ? row : of.lengths[i - 1]))
            return false;
    return true;
}

bool has_default_strides(const transform &of)
{
    const int sides = of.is_in_place() ? 1 : 2;
    for (int role = 0; role < sides; ++role)
        if (!is_nested(of, of.strides_of(role), 1, of.row_of(role)))
            return false;
    return true;
}

bool has_default_distances(const transform &of)
{
    for (int role = 0; role < 2; ++role) {
        int64_t elements = of.row_of(role);
        for (int64_t i = 1; i < of.rank; ++i)
            elements *= of.lengths[i];
        if (of.distance_of(role) != elements)
            return false;
    }
    return true;
}

/// A batch of complex transforms whose elements lie side by side.
bool is_interleaved(const transform &of)
{
    if (!of.is_complex())
        return false;
    const int sides = of.is_in_place() ? 1 : 2;
    for (int role = 0; role < sides; ++role)
        if (of.distance_of(role) != 1 || !is_nested(of, of.strides_of(role), of.count, of.lengths[0]))
            return false;
    return true;
}

std::size_t as_size(int64_t value)
{
    return static_cast<std::size_t>(value);
}

std::ptrdiff_t as_difference(int64_t value)
{
    return value;
}

void add_kind(bounded_line &line, const transform &of)
{
    const DFTI_DESCRIPTOR &descriptor = *of.handle;
    line.add("FFT(%s%s%s%s", descriptor.precision == DFTI_SINGLE ? "s" : "d", of.is_complex() ? "c" : "r",
             of.way == direction::forward ? "f" : "b", of.is_in_place() ? "i" : "o");
    if (of.is_complex() && descriptor.complex_storage == DFTI_REAL_REAL)
        line.add("/");
}

void add_lengths(bounded_line &line, const transform &of)
{
    const bool plain = has_default_strides(of);
    for (int64_t i = of.rank; i > 0; --i) {
        line.add(i == of.rank ? "%zu" : "x%zu", as_size(of.lengths[i - 1]));
        if (!plain)
            line.add(":%ti:%ti", as_difference(of.strides_of(0)[i]), as_difference(of.strides_of(1)[i]));
    }
    if (of.count <= 1)
        return;
    if (is_interleaved(of)) {
        line.add("v%zu", as_size(of.count));
        return;
    }
    line.add("*%zu", as_size(of.count));
    if (!has_default_distances(of))
        line.add(":%ti:%ti", as_difference(of.distance_of(0)), as_difference(of.distance_of(1)));
}

void add_strides(bounded_line &line, const transform &of)
{
    static constexpr const char *names[2][2] = {{"input", "output"}, {"fwd", "bwd"}};
    for (int side = 0; side < 2; ++side) {
        const int64_t *const strides = of.sides[side].strides;
        line.add("%s_strides:{%ti", names[of.strides_by_direction][side], as_difference(strides[0]));
        for (int64_t i = of.rank; i > 0; --i)
            line.add(",%ti", as_difference(strides[i]));
        line.add("},");
    }
    if (of.count <= 1 && of.sides[0].distance == 0 && of.sides[1].distance == 0)
        return;
    for (int side = 0; side < 2; ++side)
        line.add("%s_distance:%ti,", names[of.distances_by_direction][side],
                 as_difference(of.sides[side].distance));
}

void add_scale(bounded_line &line, const char *format, double scale)
{
    if (scale != 1.0) // a NaN too
        line.add(format, scale);
}

void add_packed_format(bounded_line &line, const transform &of)
{
    const DFTI_DESCRIPTOR &descriptor = *of.handle;
    if (descriptor.forward_domain != DFTI_REAL || descriptor.conjugate_even_storage != DFTI_COMPLEX_REAL)
        return;
    const int format = descriptor.packed_format;
    line.add("pack:%s,", format == DFTI_CCS_FORMAT ? "ccs" : format == DFTI_PACK_FORMAT ? "pack" : "perm");
}

void add_resources(bounded_line &line, const transform &of)
{
    const DFTI_DESCRIPTOR &descriptor = *of.handle;
    if (descriptor.workspace != DFTI_ALLOW)
        line.add("wSpace:%s,", descriptor.workspace == DFTI_AVOID ? "avoid" : "none");
    if (descriptor.flags & xkl_dft_destroys_input)
        line.add("destroy_input:allow,");
    int64_t limit = 0;
    descriptor.operations->get_thread_limit(of.handle, &limit);
    line.add("tLim:%lli,", static_cast<long long>(limit));
}

/// Whether vector instructions of any width can load from the address.
bool is_aligned(const void *address)
{
    return reinterpret_cast<std::uintptr_t>(address) % 64 == 0;
}

} // namespace

void print_trace_line(double elapsed, direction way, DFTI_DESCRIPTOR_HANDLE handle, const void *input,
                      const void *output)
{
    const transform of(handle, way);
    bounded_line line;
    add_kind(line, of);
    add_lengths(line, of);
    line.add(",");
    add_strides(line, of);
    add_scale(line, "fScale:%lg,", handle->forward_scale);
    add_scale(line, "bScale:%lg,", handle->backward_scale);
    add_packed_format(line, of);
    add_resources(line, of);
    if (!is_aligned(input))
        line.add("unaligned_input,");
    if (!is_aligned(output))
        line.add("unaligned_output,");
    line.add("desc:%p)", static_cast<const void *>(handle));
    xkl_serv_print_verbose_info(elapsed, fourier_domain, line.text());
}

} // namespace xkl::dfti
