// Small blocks of the C library that wait for their thread's next request: the workspaces of small problems
// come and go with every call, and the C library's way is a longer one. Part of memory.cpp, which has them
// inlined.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace xkl::core {

class small_blocks {
  public:
    static constexpr size_t size = 512; // of each of them, in bytes

    // Null when there is no memory.
    void *get() { return count_ > 0 ? block_[--count_] : std::malloc(size); }
    void put(void *freed)
    {
        if (count_ < places_ || provides_for_end())
            block_[count_++] = freed;
        else
            std::free(freed);
    }
    void release()
    {
        while (count_ > 0)
            std::free(block_[--count_]);
    }

  private:
    static constexpr int most = 8;
    void *block_[most];
    int count_;
    int places_; // 0 until the thread's end is provided for, and when it has come

    bool provides_for_end();
};

namespace {
// Used by its thread alone.
constinit thread_local small_blocks waiting{};
} // namespace

// Not inlined, so that a call looks its thread's variable up once.
[[gnu::noinline]] static small_blocks &small_blocks_of_thread()
{
    return waiting;
}

inline bool small_blocks::provides_for_end()
{
    struct end_of_thread {
        bool provided = false;
        ~end_of_thread()
        {
            waiting.release();
            waiting.places_ = 0;
        }
    };
    static thread_local end_of_thread end;
    if (!end.provided)
        places_ = most;
    end.provided = true;
    return count_ < places_;
}

} // namespace xkl::core
