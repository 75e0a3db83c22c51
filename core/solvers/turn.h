// One call at a time works on a solution. A callback that comes back to the solution whose call it
// interrupts gets no turn: waiting for itself it would never end.
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

namespace xkl::core::solvers {

struct turns {
    std::mutex lock;
    std::atomic<std::thread::id> at_work; // who has the turn
};

class turn_at {
  public:
    explicit turn_at(turns &of) : of_(of), taken_(of.at_work.load() != std::this_thread::get_id())
    {
        if (taken_) {
            of_.lock.lock();
            of_.at_work.store(std::this_thread::get_id());
        }
    }
    ~turn_at()
    {
        if (taken_) {
            of_.at_work.store({});
            of_.lock.unlock();
        }
    }
    turn_at(const turn_at &) = delete;
    turn_at &operator=(const turn_at &) = delete;
    bool taken() const { return taken_; }

  private:
    turns &of_;
    bool taken_;
};

} // namespace xkl::core::solvers
