// The solutions that programs hold handles of. A handle is looked up before it is used, so that an array
// which was not cleared, or a handle that is gone already, is an error and no crash; and a solution lives
// until the last call that works with it has ended.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

namespace xkl::core::solvers {

template <class Solution>
class registry {
  public:
    void *add(std::shared_ptr<Solution> solution)
    {
        void *const name = solution.get();
        const std::lock_guard<std::mutex> guard(lock_);
        live_.emplace(name, std::move(solution));
        return name;
    }
    std::shared_ptr<Solution> find(void *name)
    {
        const std::lock_guard<std::mutex> guard(lock_);
        const auto found = live_.find(name);
        return found == live_.end() ? nullptr : found->second;
    }
    std::shared_ptr<Solution> remove(void *name)
    {
        const std::lock_guard<std::mutex> guard(lock_);
        const auto found = live_.find(name);
        if (found == live_.end())
            return nullptr;
        std::shared_ptr<Solution> removed = std::move(found->second);
        live_.erase(found);
        return removed;
    }

  private:
    std::mutex lock_; // guards live_
    std::unordered_map<void *, std::shared_ptr<Solution>> live_;
};

} // namespace xkl::core::solvers
