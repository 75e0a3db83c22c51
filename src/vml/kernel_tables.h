// The kernel tables of one function: fetched by name at the first use of any of its twelve entry points,
// and kept for the life of the process.
#pragma once

#include "vml/loader.h"

#include <atomic>

namespace xkl::vml {

/// An address in the kernel library, null until it is fetched. Racing first callers store the same value,
/// so nothing is guarded.
template <class T>
using fetched = std::atomic<T *>;

using kernel_code = const void *;
using index_of_class = int32_t(int32_t processor_class);

/// One call's kernel. Threaders take its three parts apart.
struct kernel {
    kernel_code code;
    void *library;
    float cost;
};

/// What the entry points of one function share.
struct kernel_tables {
    fetched<const kernel_code> &ttab;   // xkl_vml_kernel_dExp_ttab
    fetched<const float> &ctab;         // xkl_vml_kernel_dExp_ctab
    fetched<index_of_class> &func_adr1; // xkl_vml_kernel_GetTTableIndex, of this table alone
    char name[16];                      // vdExp: what is reported
    char name_64[19];                   // vdExp_64: what a bad size is reported with behind a _64 spelling

    [[gnu::always_inline]] void fetch() const
    {
        if (!ttab.load(std::memory_order_relaxed) || !ctab.load(std::memory_order_relaxed)) [[unlikely]]
            fetch_tables();
    }

    /// The index of the running processor's kernels in all tables.
    [[gnu::always_inline]] int64_t index() const
    {
        index_of_class *entry = func_adr1.load(std::memory_order_relaxed);
        if (!entry) [[unlikely]]
            entry = fetch_index();
        return entry(xkl_vml_serv_cpu_detect());
    }

    [[gnu::always_inline]] kernel at(int64_t index) const
    {
        void *const library = xkl_vml_serv_get_dll_handle();
        return {ttab.load(std::memory_order_relaxed)[index], library,
                ctab.load(std::memory_order_relaxed)[index]};
    }

  private:
    void fetch_tables() const;
    index_of_class *fetch_index() const;
};

} // namespace xkl::vml
