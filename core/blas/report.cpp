// Reports of what only the core can find out: a packed operand of the wrong size, an unknown option.
#include "report.h"

#include "service/service_entries.h"

#include <algorithm>
#include <string_view>

namespace xkl::core {

void report(const char *name, char letter, int64_t position)
{
    char text[32];
    const std::string_view pattern = std::string_view(name).substr(0, sizeof text);
    std::replace_copy(pattern.begin(), pattern.end(), text, '?', letter);
    xkl_serv_xerbla(text, &position, static_cast<int64_t>(pattern.size()));
}

} // namespace xkl::core
