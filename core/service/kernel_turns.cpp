// Turns: calls that want different counts of threads take the kernel library one after the other.
#include "openblas/kernel_set.h"
#include "service/kernel_threads.h"
#include "service/reproducibility.h"
#include "service/thread_state.h"

#include <condition_variable>
#include <mutex>
#include <new>
#include <pthread.h>

namespace xkl::core {

// 1 from the start: the first call finds no count in place.
constinit std::atomic<unsigned> kernel_turns_needed{1};

namespace {

struct turn_state {
    std::mutex entrance; // held by the one thread that waits for its turn; those behind it wait here
    std::mutex lock;     // guards what follows
    std::condition_variable left;
    int installed = 0;    // the kernel library's count, 0 while no kernel has run
    int users = 0;        // turns that run
    int local_counts = 0; // threads with a count of their own
};

// How many turns the calling thread is in.
thread_local int turn_depth = 0;

// A child has the forking thread only: no other thread's turn or count is left in it.
void start_over_in_child(turn_state &state)
{
    const int installed = state.installed;
    state.lock.unlock();
    new (&state) turn_state;
    state.installed = installed;
    state.users = turn_depth > 0;
    state.local_counts = has_own_count();
    kernel_turns_needed.store(1, std::memory_order_release);
}

// Never destroyed: threads may still compute while the process ends.
turn_state &turns()
{
    static turn_state &state = []() -> turn_state & {
        static turn_state &made = *new turn_state;
        pthread_atfork([] { made.lock.lock(); }, [] { made.lock.unlock(); },
                       [] { start_over_in_child(made); });
        return made;
    }();
    return state;
}

int count_for(int threads)
{
    return strict_reproducibility() ? 1 : threads;
}

// With the lock held.
void put_in_place(turn_state &state, int threads)
{
    if (state.installed != threads)
        set_kernel_library_threads(threads);
    state.installed = threads;
}

// With the lock held: puts the process's count back where nobody needs another one, and tells whether turns
// are needed.
void settle(turn_state &state)
{
    const int usual = count_for(process_threads_for(XKL_DOMAIN_BLAS));
    if (state.installed != 0 && state.users == 0 && state.local_counts == 0)
        put_in_place(state, usual);
    const bool direct = state.installed == usual && state.local_counts == 0;
    kernel_turns_needed.store(direct ? 0 : 1, std::memory_order_release);
}

} // namespace

kernel_turn::kernel_turn() : kernel_turn(count_for(threads_for(XKL_DOMAIN_BLAS))) {}

kernel_turn::kernel_turn(int threads)
{
    if (turn_depth++ > 0)
        return;
    turn_state &state = turns();
    const std::lock_guard first_in_line(state.entrance);
    std::unique_lock guard(state.lock);
    state.left.wait(guard, [&] { return state.users == 0 || state.installed == threads; });
    put_in_place(state, threads);
    ++state.users;
    settle(state);
}

kernel_turn::~kernel_turn()
{
    if (--turn_depth > 0)
        return;
    turn_state &state = turns();
    const std::lock_guard guard(state.lock);
    --state.users;
    settle(state);
    if (state.users == 0)
        state.left.notify_one();
}

turn_member::turn_member() noexcept
{
    ++turn_depth;
}

turn_member::~turn_member()
{
    --turn_depth;
}

bool before_first_kernel(void (*change)(const void *), const void *context)
{
    turn_state &state = turns();
    const std::lock_guard guard(state.lock);
    if (state.installed != 0)
        return false;
    change(context);
    return true;
}

void kernel_threads_changed()
{
    turn_state &state = turns();
    const std::lock_guard guard(state.lock);
    settle(state);
}

void local_counts_changed(int by)
{
    turn_state &state = turns();
    const std::lock_guard guard(state.lock);
    state.local_counts += by;
    settle(state);
}

} // namespace xkl::core
