// The recording core as a LAPACKE function meets it: it hands out memory, answers size queries, copies
// matrices, and computes whatever a test wants.
#pragma once

#include "lapacke_call.h"
#include "recorder.h"

#include <functional>

namespace lapacke {

/// What the core of a test does when the Fortran routine is called.
class core {
  public:
    explicit core(const lapacke_row &row);
    ~core() { recorded.on_call = nullptr; }
    core(const core &) = delete;

    int64_t info = 0;
    /// Called with the arguments' addresses as the core receives them, for calls that are no size queries.
    std::function<void(const words &)> compute;

    int calls = 0, queries = 0;
    words last; // addresses of the last call's arguments: valid while it runs
    const std::vector<std::string> names, types; // of the Fortran list, but for info

    std::size_t place(const std::string &name) const;
    int64_t integer(const words &arguments, const std::string &name) const;
    bool is_workspace(const std::string &name) const;
    /// Large enough for every checker.
    static int64_t answer(std::size_t place) { return 200 + static_cast<int64_t>(place); }

  private:
    void called(const core_call &seen);
    bool is_query(const words &arguments) const;
    void answer_query(const words &arguments) const;

    const lapacke_row &row_;
    const std::vector<std::string> given_; // names of the high-level list
};

/// The message that was printed last, or "".
std::string message();

} // namespace lapacke
