#include "service/beside_core.h"

#include <climits>
#include <dlfcn.h>
#include <link.h>

namespace xkl::core {

// The loader notes a folder when it loads a library from it: the library's own name, as it was found, may be
// relative to a working directory that is no longer the program's. A program has neither name nor folder.
std::string beside_core(const std::string &file)
{
    Dl_info core;
    link_map *loaded = nullptr;
    char folder[PATH_MAX];
    if (!dladdr1(reinterpret_cast<const void *>(&beside_core), &core, reinterpret_cast<void **>(&loaded),
                 RTLD_DL_LINKMAP) ||
        !*loaded->l_name || dlinfo(loaded, RTLD_DI_ORIGIN, folder) != 0)
        return file;
    return folder + ("/" + file);
}

} // namespace xkl::core
