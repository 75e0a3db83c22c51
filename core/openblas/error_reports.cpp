// Errors that the static libraries find themselves. They call xerbla_, which the link resolves to this one.
#include "service/service_entries.h"

#include <algorithm>
#include <cstring>

// Names arrive with their length counted with or without the terminator, and padded or not. They leave as
// frames report them: without what stands behind the name, padded with blanks to six.
extern "C" int xerbla_(const char *name, const int64_t *position, int64_t length)
{
    constexpr size_t shortest = 6, longest = 32;
    char padded[longest];
    std::memset(padded, ' ', sizeof padded);
    size_t count = strnlen(name, std::min(static_cast<size_t>(std::max<int64_t>(length, 0)), longest));
    while (count > 0 && name[count - 1] == ' ')
        --count;
    std::memcpy(padded, name, count);
    xkl_serv_xerbla(padded, position, static_cast<int64_t>(std::max(count, shortest)));
    return 0;
}
