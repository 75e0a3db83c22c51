// Mode, status and callback: operations of the kernel library, whose entries are fetched by name at the
// first use. The entry points are printed from settings.tbl; they read the argument and widen the result
// as their spelling asks.
#pragma once

#include "vml/kernel_tables.h"
#include "xkl_vml_types.h"

extern "C" {
int32_t VMLSETERRSTATUS_(const int32_t *status);
uint32_t VMLSETMODE_(const uint32_t *mode);
}

namespace xkl::vml {

/// An operation of the kernel library. All spellings share one.
template <class Operation>
struct setting {
    const char *name;
    fetched<Operation> entry{nullptr};

    template <class... A>
    auto operator()(A... argument)
    {
        xkl_vml_serv_load_vml_dll();
        Operation *operation = entry.load(std::memory_order_relaxed);
        if (!operation) [[unlikely]] {
            operation = reinterpret_cast<Operation *>(xkl_vml_serv_load_vml_func(name));
            entry.store(operation, std::memory_order_relaxed);
        }
        return operation(argument...);
    }
};

inline void set_status(int32_t status)
{
    VMLSETERRSTATUS_(&status);
}

} // namespace xkl::vml
