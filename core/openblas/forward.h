// Calls of the kernel library with the number of threads that the calling thread wants.
#pragma once

#include "service/kernel_threads.h"

#include <type_traits>

namespace xkl::core {

// Where calls go while turns are needed. It takes the arguments as the kernel does.
template <auto Kernel, class... Arguments>
[[gnu::cold, gnu::noinline]] auto in_a_turn(Arguments... arguments)
{
    const kernel_turn turn;
    return Kernel(arguments...);
}

template <class Result, class... Parameters>
[[gnu::cold, gnu::noinline]] Result in_a_turn(Result (*kernel)(Parameters...), Parameters... arguments)
{
    const kernel_turn turn;
    return kernel(arguments...);
}

// Calls a kernel that is known by name, as in `return on_openblas<dgemm_>(transa, transb, ...)`, where the
// arguments have the kernel's own types. The way is looked up and not branched to: with a single call at
// the end the compiler leaves all arguments where they are, and the whole is three instructions; with a
// branch it copies every argument that is on the stack.
template <auto Kernel, class... Arguments>
[[gnu::always_inline]] inline auto on_openblas(Arguments... arguments)
{
    static_assert(std::is_same_v<decltype(Kernel), decltype(Kernel(arguments...)) (*)(Arguments...)>);
    static constinit decltype(Kernel) const ways[2] = {Kernel, in_a_turn<Kernel, Arguments...>};
    return ways[kernel_turns_needed.load(std::memory_order_relaxed)](arguments...);
}

// Calls a kernel by its address. Arguments that pass on the stack are copied here.
template <class Result, class... Parameters>
[[gnu::always_inline]] inline Result on_openblas(Result (*kernel)(Parameters...),
                                                 std::type_identity_t<Parameters>... arguments)
{
    if (kernel_turns_needed.load(std::memory_order_relaxed) == 0) [[likely]]
        return kernel(arguments...);
    return in_a_turn(kernel, arguments...);
}

} // namespace xkl::core
