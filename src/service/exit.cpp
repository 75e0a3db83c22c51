// How this library ends the process: through the program's handler when it has set one.
#include "service/exit.h"

#include "xkl_service.h"

#include <atomic>
#include <cstdlib>

namespace xkl {
namespace {

/// Written by XKL_SET_EXIT_HANDLER, null until then. A handler set while another thread exits is not
/// ordered.
constinit std::atomic<xkl_exit_handler> exit_handler{nullptr};

} // namespace

void remember_exit_handler(xkl_exit_handler handler)
{
    exit_handler.store(handler, std::memory_order_relaxed);
}

} // namespace xkl

extern "C" void xkl_serv_iface_exit(int code)
{
    if (const xkl_exit_handler handler = xkl::exit_handler.load(std::memory_order_relaxed))
        return handler(code);
    std::exit(code);
}
