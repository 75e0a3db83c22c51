// The error reporter: where a report goes that a frame, a checker or a kernel makes.
#include "service/messages.h"
#include "service/scoped_mark.h"
#include "service/service_entries.h"

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace {

// Written by xkl_serv_set_xerbla: the user's handler at the end of the chain, null for the printed line.
std::atomic<xkl_xerbla_handler> user_handler{nullptr};

// True while the user's handler runs on this thread. A handler that passes its report on through the chain
// comes back here, and would come back for ever.
thread_local bool in_user_handler = false;

// The position by which a C routine says that it got no memory for a temporary copy.
constexpr int64_t memory_position = 1000;
constexpr int64_t longest_name = 128;

void print_report(const char *name, const int64_t *position, int64_t length)
{
    char text[longest_name + 1] = "?";
    if (name && length > 0) {
        const size_t bound = static_cast<size_t>(std::min(length, longest_name));
        size_t count = strnlen(name, bound);
        while (count > 0 && name[count - 1] == ' ')
            --count;
        std::memcpy(text, name, count);
        text[count] = '\0';
    }
    using namespace xkl::core;
    if (position && *position == memory_position) {
        xkl_serv_print(1, message_no_memory_for_copy, 1, text);
        return;
    }
    char number[24] = "?";
    if (position)
        std::snprintf(number, sizeof number, "%" PRId64, *position);
    xkl_serv_print(1, message_bad_argument, 2, number, text);
}

} // namespace

extern "C" {

static void store_handler(xkl_xerbla_handler handler);

// The handler is written by frames and by xkl_serv_set_xerbla_interface on every checked call: the first
// link of the caller's reporter chain. Null until the first such call. Not ordered with anything, as all
// callers of one interface library store the same address.
xkl_xerbla_registration xkl_serv_xerbla_registration = {nullptr, store_handler};

static void store_handler(xkl_xerbla_handler handler)
{
    __atomic_store_n(&xkl_serv_xerbla_registration.handler, handler, __ATOMIC_RELAXED);
}

// The record names the setter by another name: this one leads to another library's setter where a program has
// put one in front, and by the difference frames know that they must call it.
[[gnu::alias("store_handler")]] void xkl_serv_set_xerbla_interface(xkl_xerbla_handler handler);

void xkl_serv_xerbla(const char *name, const int64_t *position, int64_t length)
{
    const xkl_xerbla_handler handler =
        __atomic_load_n(&xkl_serv_xerbla_registration.handler, __ATOMIC_RELAXED);
    (handler ? handler : xkl_serv_default_xerbla)(name, position, length);
}

xkl_xerbla_handler xkl_serv_set_xerbla(xkl_xerbla_handler handler)
{
    return user_handler.exchange(handler, std::memory_order_acq_rel);
}

void xkl_serv_default_xerbla(const char *name, const int64_t *position, int64_t length)
{
    const xkl_xerbla_handler handler = user_handler.load(std::memory_order_acquire);
    if (!handler || in_user_handler) {
        print_report(name, position, length);
        return;
    }
    const xkl::core::scoped_mark mark(in_user_handler);
    handler(name, position, length);
}
}
