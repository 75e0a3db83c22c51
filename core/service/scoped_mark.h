// A mark that a thread sets while it runs a user's callback, and that is taken back even when the
// callback throws.
#pragma once

namespace xkl::core {

class scoped_mark {
  public:
    explicit scoped_mark(bool &mark) : mark_(mark) { mark_ = true; }
    ~scoped_mark() { mark_ = false; }
    scoped_mark(const scoped_mark &) = delete;
    scoped_mark &operator=(const scoped_mark &) = delete;

  private:
    bool &mark_;
};

} // namespace xkl::core
