// Registration: tells the core, on every call, who takes the reports of that call.
//
// A call may change every argument register, so each of the frame's arguments costs a store and a load around
// it. A core that offers its registration as a record (xkl_types.h) is spared the call: the frame stores the
// handler itself. The record counts only if its setter is the one that a call would reach, so that a program
// that puts its own setter in front of the core's is still asked.
#pragma once

#include "core_service.h"

#include <atomic>

/// Where the reporter chain begins; a program may define it, so its address comes from the dynamic linker.
extern "C" void cdecl_xerbla(const char *name, const int64_t *position, int64_t length);

/// Absent from a core that wants to be called.
extern "C" [[gnu::weak]] xkl_xerbla_registration xkl_serv_xerbla_registration;

namespace xkl {

/// Where frames store the handler: null until the first call of a process, and over a core that wants to be
/// called. Racing threads store the same address.
inline constinit std::atomic<xkl_xerbla_handler *> handler_place{nullptr};

/// Registers by call, and finds out whether the next one is needed.
inline void register_by_call()
{
    xkl_xerbla_registration *const record = &xkl_serv_xerbla_registration;
    if (record && record->setter == xkl_serv_set_xerbla_interface)
        handler_place.store(&record->handler, std::memory_order_relaxed);
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
}

/// False if the core has to be called.
[[gnu::always_inline]] inline bool registered_in_place()
{
    xkl_xerbla_handler *const place = handler_place.load(std::memory_order_relaxed);
    if (!place) [[unlikely]]
        return false;
    __atomic_store_n(place, &cdecl_xerbla, __ATOMIC_RELAXED);
    return true;
}

[[gnu::always_inline]] inline void register_reporter()
{
    if (!registered_in_place()) [[unlikely]]
        register_by_call();
}

} // namespace xkl
