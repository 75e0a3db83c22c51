// Options of dss_ routines: which bits mean what.
#include "solvers/dss_options.h"

namespace xkl::core::solvers {
namespace {

constexpr uint32_t message_mark = 0x80000000, term_mark = 0x40000000, group_marks = 0x38000000;
constexpr uint32_t message_bits = 7, term_bits = 7 << 3, kind_bits = 15 << 6;

} // namespace

dss_options take_apart(const int64_t *opt, uint32_t flags, int64_t first_kind, int64_t last_kind)
{
    dss_options result;
    if (!opt)
        return result;
    const auto bits = static_cast<uint32_t>(*opt);
    const bool fits = *opt == static_cast<int32_t>(bits) || *opt == static_cast<int64_t>(bits);
    const auto level = [bits](uint32_t mark, uint32_t mask, int shift, int otherwise) {
        const int number = static_cast<int>((bits & mask) >> shift);
        return bits & mark ? number : number == 0 ? otherwise : 0;
    };
    result.flags = bits & ~(message_mark | term_mark | group_marks | message_bits | term_bits | kind_bits);
    result.message_level = level(message_mark, message_bits, 0, result.message_level);
    result.term_level = level(term_mark, term_bits, 3, result.term_level);
    if (bits & (group_marks | kind_bits))
        result.kind = bits & (group_marks | kind_bits);
    if (result.message_level < 1 || result.message_level > 6)
        result.error = XKL_DSS_MSG_LVL_ERR;
    else if (result.term_level < 1 || result.term_level > 6)
        result.error = XKL_DSS_TERM_LVL_ERR;
    else if (!fits || (result.flags & ~flags) ||
             (result.kind != 0 && (result.kind < first_kind || result.kind > last_kind)))
        result.error = XKL_DSS_INVALID_OPTION;
    return result;
}

} // namespace xkl::core::solvers
