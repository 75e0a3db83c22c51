// The rare steps of vector math frames: reports, and fetching tables by name.
#include "vml/frames.h"

#include "core_service.h"
#include "vml/core_entries.h"
#include "xkl_service.h"

#include <cstdint>

namespace xkl::vml {
namespace {

constexpr size_t longest_name = 25; // of a routine
constexpr size_t longest_symbol = 40;

/// A symbol of the kernel library, from its pieces.
class symbol {
  public:
    symbol(const char *function, const char *suffix)
    {
        append("xkl_vml_kernel_");
        append(function);
        append(suffix);
    }

    void *address() const { return xkl_vml_serv_load_vml_func(text_); }

  private:
    void append(const char *piece)
    {
        while (*piece && length_ < longest_symbol - 1)
            text_[length_++] = *piece++;
    }

    char text_[longest_symbol]{};
    size_t length_ = 0;
};

} // namespace

[[gnu::cold]] void report(const char *name, int32_t place, int32_t status)
{
    const int64_t position = place; // as wide as a reader may take it for
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    xkl_serv_xerbla(name, &position, static_cast<int64_t>(xkl_serv_strnlen_s(name, longest_name)));
    VMLSETERRSTATUS_(&status);
}

[[gnu::cold]] void kernel_tables::fetch_tables() const
{
    const char *const function = name + 1; // dExp
    if (!ttab.load(std::memory_order_relaxed))
        ttab.store(static_cast<const kernel_code *>(symbol(function, "_ttab").address()),
                   std::memory_order_relaxed);
    if (!ctab.load(std::memory_order_relaxed))
        ctab.store(static_cast<const float *>(symbol(function, "_ctab").address()),
                   std::memory_order_relaxed);
}

[[gnu::cold]] index_of_class *kernel_tables::fetch_index() const
{
    auto *const entry =
        reinterpret_cast<index_of_class *>(xkl_vml_serv_load_vml_func("xkl_vml_kernel_GetTTableIndex"));
    func_adr1.store(entry, std::memory_order_relaxed);
    return entry;
}

} // namespace xkl::vml
