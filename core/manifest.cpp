// What the core tells about itself, for the `xkl` tool.
#include "manifest.h"

#include "openblas/kernel_set.h"

#include <cstdint>
#include <initializer_list>

using namespace xkl::core;

#pragma GCC visibility push(default)
extern "C" {

/// Fills in entry `index`, from 0; returns 0 past the end.
int64_t xkl_core_manifest(int64_t index, const char **family, const char **entry, const char **provider)
{
    static constexpr const char *names[] = {"none", "openblas", "tmglib", "own"};
    for (const manifest_part &part :
         {blas_manifest, dfti_manifest, lapack_manifest, matcopy_manifest, conv_manifest, spblas_manifest,
          inspector_manifest, solvers_manifest, rci_manifest, service_manifest}) {
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

/// The kernel set in use, by the name that OPENBLAS_CORETYPE takes.
const char *xkl_core_kernel_set()
{
    return kernel_set_name();
}
}
#pragma GCC visibility pop
