// What the thread settings, the turns and the loops tell each other about the calling thread.
#pragma once

namespace xkl::core {

// True while the calling thread runs the body of a loop that several threads share.
bool in_loop_body() noexcept;

// True while the calling thread has a count of its own.
bool has_own_count() noexcept;

// The count of a domain for threads that have none of their own.
int process_threads_for(int domain) noexcept;

// Counts the calling thread into a turn that another thread holds.
class turn_member {
  public:
    turn_member() noexcept;
    ~turn_member();
    turn_member(const turn_member &) = delete;
    turn_member &operator=(const turn_member &) = delete;
};

} // namespace xkl::core
