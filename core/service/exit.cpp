// The end of the process, which only a missing entry or kernel brings about.
#include "service/exit.h"

#include "service/messages.h"
#include "service/missing_entry.h"
#include "service/service_entries.h"

#include <atomic>
#include <cstdlib>

namespace {
// Written by xkl_serv_set_exit_handler; null for none.
std::atomic<void (*)(int)> exit_handler{nullptr};
} // namespace

namespace xkl::core {

void end_process(int code)
{
    if (auto *handler = exit_handler.load(std::memory_order_acquire))
        handler(code);
    std::exit(code);
}

} // namespace xkl::core

extern "C" {

int xkl_serv_set_exit_handler(void (*handler)(int code))
{
    exit_handler.store(handler, std::memory_order_release);
    return 0;
}

void xkl_core_missing_entry(const char *entry)
{
    xkl_serv_print(1, xkl::core::message_missing_entry, 1, entry);
    xkl::core::end_process(2);
}
}
