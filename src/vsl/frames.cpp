// The rare steps of random streams' frames, and what tells a stream from other memory.
#include "vsl/frames.h"

#include "core_service.h"
#include "xkl_service.h"

namespace xkl::vsl {

[[gnu::cold]] int32_t refuse(const char *name, int32_t place, int32_t status)
{
    constexpr size_t longest_name = 50;
    const int64_t position = place; // as wide as a reader may take it for
    xkl_serv_set_xerbla_interface(cdecl_xerbla);
    xkl_serv_xerbla(name, &position, static_cast<int64_t>(xkl_serv_strnlen_s(name, longest_name)));
    return status;
}

[[gnu::cold]] void fetch(fetched<void> &kernel, const char *name)
{
    xkl_vml_serv_load_vml_dll();
    kernel.store(xkl_vml_serv_load_vml_func(name), std::memory_order_relaxed);
}

} // namespace xkl::vsl

// The kernel library marks its streams, and takes the mark away from those that it ends.
extern "C" int32_t xkl_vml_service_IsStreamValid(VSLStreamStatePtr stream)
{
    constexpr std::size_t mark_at = 4;
    constexpr unsigned char mark = 1;
    if (!stream)
        return VSL_ERROR_NULL_PTR;
    return static_cast<const unsigned char *>(stream)[mark_at] == mark ? VSL_STATUS_OK
                                                                       : VSL_RNG_ERROR_BAD_STREAM;
}
