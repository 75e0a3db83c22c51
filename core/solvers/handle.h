// What a handle pt stands for, and the one road that all routines with pardiso's list take.
#pragma once

#include "solvers/registry.h"
#include "solvers/system.h"

#include <atomic>
#include <new>
#include <stdexcept>
#include <thread>

namespace xkl::core::solvers {

struct handle {
    std::mutex turn;                                  // one call at a time
    std::atomic<std::thread::id> at_work;             // who has the turn
    std::vector<std::unique_ptr<any_system>> systems; // by matrix number
    export_arrays exported;
};

// Never destroyed: a thread may still solve while the process ends.
registry<handle> &handles();

// The turn at a handle. A callback that comes back to the handle whose call it interrupts gets none.
class handle_turn {
  public:
    explicit handle_turn(handle &of) : handle_(of), taken_(of.at_work.load() != std::this_thread::get_id())
    {
        if (taken_) {
            handle_.turn.lock();
            handle_.at_work.store(std::this_thread::get_id());
        }
    }
    ~handle_turn()
    {
        if (taken_) {
            handle_.at_work.store({});
            handle_.turn.unlock();
        }
    }
    handle_turn(const handle_turn &) = delete;
    handle_turn &operator=(const handle_turn &) = delete;
    bool taken() const { return taken_; }

  private:
    handle &handle_;
    bool taken_;
};

// What the name of the routine says about elements.
enum class elements { by_control, s, d, c, z };

struct argument_list {
    void **pt;
    const int64_t *maxfct, *mnum, *mtype, *phase, *n;
    const void *a;
    const int64_t *ia, *ja;
    int64_t *perm;
    const int64_t *nrhs;
    int64_t *iparm;
    const int64_t *msglvl;
    void *b, *x;
};

int64_t run_phases(const argument_list &arguments, elements form);

// Runs work and gives its error code, or the one of memory that ran out. What a program's callback throws
// passes.
template <class Work>
int64_t within_memory(const Work &work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        return XKL_PARDISO_OUT_OF_MEMORY;
    } catch (const std::length_error &) {
        return XKL_PARDISO_OUT_OF_MEMORY;
    }
}

} // namespace xkl::core::solvers
