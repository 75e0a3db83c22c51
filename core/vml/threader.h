// The threaders: a vector in parts on several threads, where it is long enough to pay. Short ones go
// straight to the kernel.
#pragma once

#include "service/kernel_threads.h"
#include "vml/shared_call.h"

#include <algorithm>
#include <tuple>

namespace xkl::core {

// A kernel's arguments for the part of its vectors that starts at element `first`.
template <class T>
struct plain_vector {
    T *elements;
    std::tuple<T *> from(int64_t first) const { return {elements + first}; }
};
template <class T>
struct strided_vector {
    T *elements;
    int64_t increment;
    std::tuple<T *, int64_t> from(int64_t first) const { return {elements + first * increment, increment}; }
};
template <class T>
struct one_scalar {
    T value; // of complex types the address
    std::tuple<T> from(int64_t) const { return {value}; }
};

// Parts start where registers of all kernels start, so that every element has the neighbours that it has
// on one thread.
constexpr int64_t vector_part_unit = 64;
constexpr int64_t vector_parts = 64;

// What loops count their work in
constexpr double operations_of_a_nanosecond = 4;

template <class... Types>
void run_kernel(const void *kernel, int64_t count, const std::tuple<Types...> &arguments)
{
    const auto code = reinterpret_cast<void (*)(int32_t, Types...)>(const_cast<void *>(kernel));
    std::apply(code, std::tuple_cat(std::make_tuple(static_cast<int32_t>(count)), arguments));
}

/// `cost` is the kernel's time for an element in nanoseconds.
template <class... Arguments>
void thread_vector(const void *kernel, int32_t count, void *library, float cost, Arguments... arguments)
{
    const auto run = [&](int64_t first, int64_t length) {
        run_kernel(kernel, length, std::tuple_cat(arguments.from(first)...));
    };
    const double work = operations_of_a_nanosecond * static_cast<double>(cost) * count;
    if (work < loop_work_that_pays || threads_for(XKL_DOMAIN_VML) == 1)
        return run(0, count);
    shared_call call(library);
    if (!call.may_be_shared())
        return run(0, count);
    const int64_t units = (count - 1) / vector_part_unit + 1;
    const int64_t length = ((units - 1) / vector_parts + 1) * vector_part_unit;
    const int64_t parts = (count - 1) / length + 1;
    parallel_for(parts, XKL_DOMAIN_VML, work / static_cast<double>(parts), [&](int64_t part) {
        const shared_call::part settings(call);
        run(part * length, std::min(length, count - part * length));
    });
    call.conclude();
}

} // namespace xkl::core
