// The frame of vector math: checks, the kernel library and its tables, the mode for the length of the
// call, and the vector in blocks to the core's threader. What differs between functions is their class
// (classes.h).
//
// A frame is a function of its own for each class, type and way of passing arguments; the entry points only
// name their tables and jump to it.
#pragma once

#include "vml/classes.h"
#include "vml/kernel_tables.h"
#include "vml/settings.h"

namespace xkl::vml {

constexpr int32_t size_place = 1;

/// Reports a bad argument and leaves a status. Rare, so out of line and shared by all frames.
void report(const char *name, int32_t place, int32_t status);

/// Whether there is something to compute; what is bad has then been reported.
template <class Class, class Length, class... A>
[[gnu::always_inline]] inline bool accepted(const kernel_tables &tables, Length n, A... arguments)
{
    if (as<int64_t>(n) < 0) [[unlikely]] {
        report(tables.name, size_place, VML_STATUS_BADSIZE);
        return false;
    }
    if (as<int64_t>(n) == 0)
        return false;
    if (const int32_t place = Class::first_null(arguments...)) [[unlikely]] {
        report(tables.name, place, VML_STATUS_BADMEM);
        return false;
    }
    return true;
}

/// Makes the kernel library and the function's tables ready.
[[gnu::always_inline]] inline void make_ready(const kernel_tables &tables)
{
    xkl_vml_serv_load_vml_dll();
    tables.fetch();
}

/// Kernels count in 32 bits, so longer vectors go in blocks. Pointers advance by a block's elements in
/// all forms: a strided vector's blocks overlap therefore, and that is how callers know it.
template <class Class, class Length, class... A>
[[gnu::always_inline]] inline void run_blocks(const kernel_tables &tables, Length n, A... arguments)
{
    constexpr int32_t longest = INT32_MAX;
    const int64_t index = tables.index();
    if constexpr (requires { Class::full_accuracy_index; })
        if (index != Class::full_accuracy_index)
            set_status(VML_STATUS_ACCURACYWARNING);
    int64_t left = as<int64_t>(n);
    for (int64_t start = 0; left > longest; start += longest, left -= longest)
        [[unlikely]] Class::run(tables.at(index), {as<int64_t>(n), start, longest}, arguments...);
    Class::run(tables.at(index), {as<int64_t>(n), as<int64_t>(n) - left, static_cast<int32_t>(left)},
               arguments...);
}

/// vdExp, vdexp_
template <class Class, class Length, class... A>
[[gnu::noinline]] void frame(const kernel_tables &tables, Length n, A... arguments)
{
    if (!accepted<Class>(tables, n, arguments...))
        return;
    make_ready(tables);
    run_blocks<Class>(tables, n, arguments...);
}

/// vmdExp, vmdexp_: the mode is in force for this call alone. Of its 64 bits the low 32 count.
template <class Class, class Length, class Mode, class... A>
[[gnu::noinline]] void frame_in_mode(const kernel_tables &tables, Mode mode, Length n, A... arguments)
{
    if (!accepted<Class>(tables, n, arguments...))
        return;
    make_ready(tables);
    const auto wanted = static_cast<uint32_t>(as<uint64_t>(mode));
    const uint32_t before = VMLSETMODE_(&wanted);
    run_blocks<Class>(tables, n, arguments...);
    VMLSETMODE_(&before);
}

/// Whether a size may go to the frame. The _64 spellings have a name of their own in this report alone.
template <class Length>
[[gnu::always_inline]] inline bool size_64_accepted(const kernel_tables &tables, Length n)
{
    if (as<int64_t>(n) >= 0)
        return true;
    report(tables.name_64, size_place, VML_STATUS_BADSIZE);
    return false;
}

/// vdExp_64, vdexp_64_
template <class Class, class Length, class... A>
[[gnu::always_inline]] inline void frame_64(const kernel_tables &tables, Length n, A... arguments)
{
    if (size_64_accepted(tables, n)) [[likely]]
        frame<Class>(tables, n, arguments...);
}

/// vmdExp_64, vmdexp_64_
template <class Class, class Length, class Mode, class... A>
[[gnu::always_inline]] inline void frame_64_in_mode(const kernel_tables &tables, Mode mode, Length n,
                                                    A... arguments)
{
    if (size_64_accepted(tables, n)) [[likely]]
        frame_in_mode<Class>(tables, mode, n, arguments...);
}

} // namespace xkl::vml
