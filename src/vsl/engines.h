// Names of the basic generators, for trace lines alone: which generators there are is the kernel library's
// business.
#pragma once

#include <cstdint>

namespace xkl::vsl {

class engine_name {
  public:
    explicit engine_name(int32_t identifier);
    const char *text() const { return text_; }

  private:
    char text_[40];
};

} // namespace xkl::vsl
