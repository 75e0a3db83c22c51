// Names of the basic generators.
#include "vsl/engines.h"

#include "vsl/core_entries.h"
#include "xkl_vsl_types.h"

namespace xkl::vsl {
namespace {

struct engine {
    int32_t identifier;
    int32_t members; // of a family; 0 for a generator that is none
    const char *name;
};

// clang-format off
constexpr engine engines[] = {
    {VSL_BRNG_MCG31,         0,                  "VSL_BRNG_MCG31"},
    {VSL_BRNG_R250,          0,                  "VSL_BRNG_R250"},
    {VSL_BRNG_MRG32K3A,      0,                  "VSL_BRNG_MRG32K3A"},
    {VSL_BRNG_MCG59,         0,                  "VSL_BRNG_MCG59"},
    {VSL_BRNG_WH,            VSL_WH_MEMBERS,     "VSL_BRNG_WH"},
    {VSL_BRNG_SOBOL,         0,                  "VSL_BRNG_SOBOL"},
    {VSL_BRNG_NIEDERR,       0,                  "VSL_BRNG_NIEDERR"},
    {VSL_BRNG_MT19937,       0,                  "VSL_BRNG_MT19937"},
    {VSL_BRNG_MT2203,        VSL_MT2203_MEMBERS, "VSL_BRNG_MT2203"},
    {VSL_BRNG_SFMT19937,     0,                  "VSL_BRNG_SFMT19937"},
    {VSL_BRNG_NONDETERM,     0,                  "VSL_BRNG_NONDETERM"},
    {VSL_BRNG_ARS5,          0,                  "VSL_BRNG_ARS5"},
    {VSL_BRNG_PHILOX4X32X10, 0,                  "VSL_BRNG_PHILOX4X32X10"},
};
// clang-format on

} // namespace

engine_name::engine_name(int32_t identifier)
{
    for (const engine &each : engines) {
        const int32_t member = identifier - each.identifier;
        if (member >= 0 && member < each.members) {
            xkl_serv_sprintf_s(text_, sizeof text_, "%s_substream%d", each.name, member);
            return;
        }
        if (member == 0) {
            xkl_serv_sprintf_s(text_, sizeof text_, "%s", each.name);
            return;
        }
    }
    xkl_serv_sprintf_s(text_, sizeof text_, "%s", "Unknown engine");
}

} // namespace xkl::vsl
