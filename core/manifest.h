// Who serves each core entry: what `xkl info` counts. Filled from the tables by the build.
#pragma once

#include <cstddef>

namespace xkl::core {

enum class provider {
    none,     // a stand-in that names itself and ends the process
    openblas, // forwarded to OpenBLAS
    tmglib,   // forwarded to the test-matrix generators of the reference LAPACK
    own       // written in core/
};

struct manifest_entry {
    const char *family;
    const char *entry;
    provider by;
};

struct manifest_part {
    const manifest_entry *entries;
    std::size_t count;
};

extern const manifest_part blas_manifest;
extern const manifest_part conv_manifest;
extern const manifest_part dfti_manifest;
extern const manifest_part lapack_manifest;
extern const manifest_part matcopy_manifest;
extern const manifest_part service_manifest;
extern const manifest_part spblas_manifest;
extern const manifest_part inspector_manifest;
extern const manifest_part solvers_manifest;
extern const manifest_part rci_manifest;

} // namespace xkl::core
