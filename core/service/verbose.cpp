// Call tracing: the live flag, the printer, and where lines go.
#include "service/environment.h"
#include "service/kernel_threads.h"
#include "service/messages.h"
#include "service/service_entries.h"
#include "service/version.h"
#include "xkl_service_types.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <pthread.h>
#include <unistd.h>
#include <utility>

using namespace xkl::core;

namespace {

// The live flag. Frames keep its address and read it with plain loads; it is written at load from
// XKL_VERBOSE and by xkl_serv_verbose, atomically: XKL_VERBOSE_OFF, _CALLS or _DETAILS. Never -1, which
// frames take for "not fetched".
int32_t live_mode = XKL_VERBOSE_OFF;

bool is_mode(int mode)
{
    return mode >= XKL_VERBOSE_OFF && mode <= XKL_VERBOSE_DETAILS;
}

// Where lines go, all guarded by the lock.
struct trace_output {
    std::mutex lock;
    FILE *file = nullptr;   // null for standard output
    bool chosen = false;    // a call has chosen the file, so that the environment no longer does
    bool header_due = true; // nothing was printed there yet
};
constinit trace_output output;

// A child must not inherit the lock from a thread that it does not have.
[[gnu::constructor]] void prepare_tracing()
{
    if (const auto mode = environment_number("XKL_VERBOSE"); mode && is_mode(*mode))
        std::atomic_ref(live_mode).store(*mode, std::memory_order_relaxed);
    pthread_atfork([] { output.lock.lock(); }, [] { output.lock.unlock(); }, [] { output.lock.unlock(); });
}

// Lines are appended: processes that share a file, and a program that comes back to one, lose nothing.
bool open_output(const char *name)
{
    FILE *file = std::fopen(name, "ae");
    if (!file)
        return false;
    if (output.file)
        std::fclose(output.file);
    output.file = file;
    output.header_due = true;
    return true;
}

FILE *current_output()
{
    if (!output.chosen) {
        output.chosen = true;
        const char *name = environment_value("XKL_VERBOSE_OUTPUT_FILE");
        if (name && !open_output(name))
            xkl_serv_print(1, message_trace_file, 1, name);
    }
    return output.file ? output.file : stdout;
}

struct scaled_time {
    double value;
    const char *unit;
};

// A frame may hand over minus zero, or a time that a clock adjustment made negative.
scaled_time readable(double seconds)
{
    if (!(seconds > 0))
        return {0, "ns"};
    if (seconds < 1e-6)
        return {seconds * 1e9, "ns"};
    if (seconds < 1e-3)
        return {seconds * 1e6, "us"};
    if (seconds < 1)
        return {seconds * 1e3, "ms"};
    return {seconds, "s"};
}

// Frames tell the Fourier transforms by 0 and all others by 2.
int thread_domain_of(int domain)
{
    return domain == 0 ? XKL_DOMAIN_FFT : XKL_DOMAIN_BLAS;
}

} // namespace

extern "C" {

int32_t *xkl_serv_verbose_mode(void)
{
    return &live_mode;
}

int xkl_serv_verbose(int mode)
{
    if (!is_mode(mode))
        return -1;
    return std::atomic_ref(live_mode).exchange(mode, std::memory_order_relaxed);
}

// Null or an empty name means standard output. A file that cannot be opened leaves everything as it was.
int xkl_serv_verbose_output_file(const char *name)
{
    const std::lock_guard guard(output.lock);
    if (name && *name) {
        if (!open_output(name))
            return 1;
    } else if (output.file) {
        std::fclose(output.file);
        output.file = nullptr;
    }
    output.chosen = true;
    return 0;
}

// 1 while lines go to a file, else 0.
int xkl_serv_verbose_output_file_mode(void)
{
    const std::lock_guard guard(output.lock);
    return current_output() != stdout;
}

void xkl_serv_print_verbose_info(double seconds, int domain, const char *line)
{
    const int threads = threads_for(thread_domain_of(domain));
    const scaled_time time = readable(seconds);
    char details[64] = "";
    if (std::atomic_ref(live_mode).load(std::memory_order_relaxed) == XKL_VERBOSE_DETAILS)
        std::snprintf(details, sizeof details, " Dom:%d Tid:%d", domain, static_cast<int>(gettid()));

    const std::lock_guard guard(output.lock);
    FILE *file = current_output();
    if (std::exchange(output.header_due, false))
        std::fprintf(file, "XKL_VERBOSE %s, threads %d\n", version_line().c_str(), threads);
    std::fprintf(file, "XKL_VERBOSE %s %.2f%s NThr:%d%s\n", line ? line : "", time.value, time.unit,
                 threads, details);
    std::fflush(file); // the line that tells where a program died must not stay in a buffer
}
}
