// The manifest as the `xkl` tool reads it, through one entry.
#include "manifest.h"

#include <cstdint>
#include <initializer_list>

using namespace xkl::core;

/// Fills in entry `index`, from 0; returns 0 past the end.
extern "C" int64_t xkl_core_manifest(int64_t index, const char **family, const char **entry, const char **provider)
{
    static constexpr const char *names[] = {"none", "openblas", "own"};
    for (const manifest_part &part : {blas_manifest, service_manifest}) {
        const auto count = static_cast<int64_t>(part.count);
        if (index < count) {
            const manifest_entry &found = part.entries[index];
            *family = found.family;
            *entry = found.entry;
            *provider = names[static_cast<int>(found.by)];
            return 1;
        }
        index -= count;
    }
    return 0;
}
