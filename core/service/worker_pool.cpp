// The threads that share the loops of the core. They are made when a loop first needs them, wait in
// between, and are left waiting when the process ends: nothing joins them, so that nothing can hang. The
// library is never unloaded.
#include "service/kernel_threads.h"
#include "service/thread_state.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <new>
#include <optional>
#include <pthread.h>

namespace xkl::core {
namespace {

struct shared_loop {
    loop_body body;
    const void *context;
    int64_t count;
    int64_t chunk;
    std::atomic<int64_t> next{0};
};

struct worker_pool {
    std::atomic<bool> busy{false}; // one loop at a time; who comes meanwhile runs its loop alone
    std::mutex lock;               // guards what follows
    std::condition_variable wanted;
    std::condition_variable done;
    shared_loop *loop = nullptr; // the loop that still takes threads in
    int places = 0;              // how many more it takes
    int active = 0;              // how many are in it
    int workers = 0;             // threads made
};

thread_local bool in_body = false;

// Chunks keep the threads off the counter, eight for each thread so that unequal items even out.
void take_part(shared_loop &loop)
{
    const turn_member member;
    in_body = true;
    for (;;) {
        const int64_t first = loop.next.fetch_add(loop.chunk, std::memory_order_relaxed);
        if (first >= loop.count)
            break;
        const int64_t last = std::min(first + loop.chunk, loop.count);
        for (int64_t index = first; index < last; ++index)
            loop.body(loop.context, index);
    }
    in_body = false;
}

// Never destroyed, and made anew in a child, which has none of the threads.
worker_pool &pool()
{
    static worker_pool &only = []() -> worker_pool & {
        static worker_pool &made = *new worker_pool;
        pthread_atfork([] { made.lock.lock(); }, [] { made.lock.unlock(); },
                       [] {
                           made.lock.unlock();
                           new (&made) worker_pool;
                       });
        return made;
    }();
    return only;
}

void *work(void *argument)
{
    worker_pool &team = *static_cast<worker_pool *>(argument);
    std::unique_lock guard(team.lock);
    for (;;) {
        team.wanted.wait(guard, [&] { return team.loop && team.places > 0; });
        --team.places;
        ++team.active;
        shared_loop &loop = *team.loop;
        guard.unlock();
        take_part(loop);
        guard.lock();
        if (--team.active == 0)
            team.done.notify_one();
    }
}

// Signals stay with the program's own threads. A thread that cannot be made is done without.
bool make_worker(worker_pool &team)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t detached;
    pthread_attr_init(&detached);
    pthread_attr_setdetachstate(&detached, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const bool made = pthread_create(&thread, &detached, work, &team) == 0;
    pthread_attr_destroy(&detached);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return made;
}

// False when another thread's loop has the pool.
bool share_loop(int threads, shared_loop &loop)
{
    worker_pool &team = pool();
    if (team.busy.exchange(true, std::memory_order_acquire))
        return false;
    {
        const std::lock_guard guard(team.lock);
        while (team.workers < threads - 1 && make_worker(team))
            ++team.workers;
        team.loop = &loop;
        team.places = threads - 1;
        team.wanted.notify_all();
    }
    take_part(loop);
    {
        std::unique_lock guard(team.lock);
        team.loop = nullptr;
        team.done.wait(guard, [&] { return team.active == 0; });
    }
    team.busy.store(false, std::memory_order_release);
    return true;
}

void run_alone(int64_t count, loop_body body, const void *context)
{
    for (int64_t index = 0; index < count; ++index)
        body(context, index);
}

// An item of this much work keeps all threads busy inside its kernel.
constexpr double work_for_all_threads = 1e8;

} // namespace

bool in_loop_body() noexcept
{
    return in_body;
}

void run_loop(int64_t count, int domain, double work_each, loop_body body, const void *context)
{
    const int threads = static_cast<int>(std::min<int64_t>(threads_for(domain), count));
    const bool calls_kernels = domain == XKL_DOMAIN_BLAS;
    const bool few_large =
        calls_kernels && count < threads_for(domain) && work_each >= work_for_all_threads;
    if (threads > 1 && !few_large && static_cast<double>(count) * work_each >= loop_work_that_pays) {
        std::optional<serial_kernels> one_thread_each;
        if (calls_kernels)
            one_thread_each.emplace();
        shared_loop loop{body, context, count, std::max<int64_t>(count / (int64_t{threads} * 8), 1)};
        if (share_loop(threads, loop))
            return;
    }
    std::optional<kernel_turn> turn;
    if (calls_kernels)
        turn.emplace();
    run_alone(count, body, context);
}

} // namespace xkl::core
