#include "recorder.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" void xkl_serv_set_xerbla_interface(xkl_xerbla_handler handler);

recording recorded;
xkl_xerbla_registration xkl_serv_xerbla_registration = {
    nullptr, std::getenv("XKL_RECORD_IN_PLACE") ? xkl_serv_set_xerbla_interface : nullptr};

namespace {

double ticks = 0;

} // namespace

void reset()
{
    for (const memory_block &each : recorded.blocks)
        std::free(each.place);
    recorded.~recording();
    // The live flag's address must not move: frames keep it.
    new (&recorded) recording;
    xkl_serv_xerbla_registration.handler = nullptr;
    ticks = 0;
}

void record(const char *entry, std::initializer_list<int64_t> arguments)
{
    recorded.calls.push_back({entry, arguments});
    recorded.order.push_back(entry);
    if (recorded.on_call)
        recorded.on_call(recorded.calls.back());
}

xkl_xerbla_handler registered_handler()
{
    return xkl_serv_xerbla_registration.handler;
}
int64_t recorded_integer()
{
    return recorded.integer_result;
}
double recorded_real()
{
    return recorded.real_result;
}

extern "C" {

void xkl_serv_set_xerbla_interface(xkl_xerbla_handler handler)
{
    xkl_serv_xerbla_registration.handler = handler;
    recorded.order.push_back("register");
}

void xkl_serv_xerbla(const char *name, const int64_t *position, int64_t length)
{
    recorded.reports.push_back({std::string(name, static_cast<std::size_t>(length)), *position, length});
    recorded.order.push_back("report");
    if (recorded.forward_reports && xkl_serv_xerbla_registration.handler)
        xkl_serv_xerbla_registration.handler(name, position, length);
}

void xkl_serv_default_xerbla(const char *, const int64_t *, int64_t)
{
    ++recorded.default_reports;
}
void xkl_serv_set_progress_interface(xkl_progress_handler handler)
{
    record("xkl_serv_set_progress_interface", {reinterpret_cast<int64_t>(handler)});
}
int32_t xkl_serv_default_progress(const int64_t *, const int64_t *, const char *, int64_t)
{
    return 71;
}
int32_t xkl_serv_default_pardiso_pivot(const double *, double *, const double *)
{
    return 72;
}

int32_t *xkl_serv_verbose_mode(void)
{
    recorded.order.push_back("verbose_mode");
    return &recorded.verbose;
}

double xkl_serv_dsecnd(void)
{
    recorded.order.push_back("clock");
    if (recorded.clock.empty())
        return ++ticks;
    const double reading = recorded.clock.front();
    recorded.clock.erase(recorded.clock.begin());
    return reading;
}

void xkl_serv_print_verbose_info(double seconds, int domain, const char *line)
{
    recorded.order.push_back("line");
    recorded.lines.push_back({seconds, domain, line});
}

int64_t xkl_serv_lsame(const char *a, const char *b, int64_t, int64_t)
{
    return (*a & 0xdf) == (*b & 0xdf) && ((*a | 0x20) >= 'a' && (*a | 0x20) <= 'z');
}

int xkl_serv_snprintf_s(char *buffer, size_t size, size_t most, const char *format, ...)
{
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(buffer, most + 1 < size ? most + 1 : size, format, values);
    va_end(values);
    return length;
}

size_t xkl_serv_strnlen_s(const char *text, size_t most)
{
    return strnlen(text, most);
}

int xkl_serv_printf_s(const char *format, ...)
{
    char line[512];
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(line, sizeof line, format, values);
    va_end(values);
    recorded.lines.push_back({0, -1, line});
    return length;
}

void *xkl_serv_allocate(size_t size, int align)
{
    recorded.order.push_back("allocate");
    if (recorded.failing_allocations > 0 && recorded.good_allocations-- <= 0) {
        --recorded.failing_allocations;
        return nullptr;
    }
    ++recorded.allocated;
    const auto alignment = static_cast<size_t>(align);
    return std::aligned_alloc(alignment, (size / alignment + 1) * alignment);
}

// Memory that nobody has written to has a value of its own: copies show what was not copied.
void *xkl_serv_malloc(size_t size, int align)
{
    record("xkl_serv_malloc", {static_cast<int64_t>(size), align});
    if (!recorded.serves_memory)
        return reinterpret_cast<void *>(recorded.integer_result);
    auto *block = static_cast<char *>(xkl_serv_allocate(size, align));
    if (!block)
        return nullptr;
    std::memset(block, unwritten, size);
    recorded.blocks.push_back({block, size, align, true});
    return block;
}

void xkl_serv_free(void *block)
{
    record("xkl_serv_free", {reinterpret_cast<int64_t>(block)});
    for (memory_block &each : recorded.blocks)
        if (each.live && each.place == block) {
            each.live = false;
            --recorded.allocated; // kept until the test is over, which may look into it
        }
}

/// What a test put there, or else the process's own environment.
int xkl_serv_getenv(const char *name, char *value, int size)
{
    const auto found = recorded.environment.find(name);
    const char *text = found != recorded.environment.end() ? found->second.c_str() : std::getenv(name);
    if (!text)
        return 0;
    std::snprintf(value, static_cast<size_t>(size), "%s", text);
    return static_cast<int>(std::strlen(text));
}

void xkl_serv_deallocate(void *block)
{
    recorded.order.push_back("deallocate");
    --recorded.allocated;
    std::free(block);
}
}
