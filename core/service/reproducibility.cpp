// The branch of reproducible results, and the limit on instruction sets: both choose the kernel set.
#include "service/reproducibility.h"

#include "openblas/kernel_set.h"
#include "service/environment.h"
#include "service/kernel_threads.h"
#include "service/messages.h"
#include "service/service_entries.h"
#include "xkl_service_types.h"

#include <algorithm>
#include <atomic>
#include <string_view>

namespace xkl::core {
namespace {

using enum instruction_level;
constexpr auto no_limit = static_cast<instruction_level>(99);

struct branch_row {
    int number;
    std::string_view name; // as XKL_CBWR writes it
    instruction_level level;
};

// In rising order of level from the fourth row on.
constexpr branch_row branches[] = {
    {XKL_CBWR_UNSET_ALL, "UNSET_ALL", no_limit},
    {XKL_CBWR_BRANCH_OFF, "OFF", no_limit},
    {XKL_CBWR_AUTO, "AUTO", no_limit},
    {XKL_CBWR_COMPATIBLE, "COMPATIBLE", sse2},
    {XKL_CBWR_SSE2, "SSE2", sse2},
    {XKL_CBWR_SSSE3, "SSSE3", ssse3},
    {XKL_CBWR_SSE4_1, "SSE4_1", sse4_1},
    {XKL_CBWR_SSE4_2, "SSE4_2", sse4_2},
    {XKL_CBWR_AVX, "AVX", avx},
    {XKL_CBWR_AVX2, "AVX2", avx2},
    {XKL_CBWR_AVX512, "AVX512", avx512},
    {XKL_CBWR_AVX512_E1, "AVX512_E1", avx512_bf16},
};

struct instructions_row {
    int code;
    std::string_view name; // as XKL_ENABLE_INSTRUCTIONS writes it
    instruction_level level;
};

constexpr instructions_row instruction_sets[] = {
    {XKL_ENABLE_SSE4_2, "SSE4_2", sse4_2},
    {XKL_ENABLE_AVX, "AVX", avx},
    {XKL_ENABLE_AVX2, "AVX2", avx2},
    {XKL_ENABLE_AVX512, "AVX512", avx512},
    {XKL_ENABLE_AVX512_E1, "AVX512_E1", avx512_bf16},
};

bool runs_here(const branch_row &row)
{
    return row.level == no_limit || row.level <= processor_level();
}

// Written when first used, from the environment, and then only before the first computation, by
// xkl_serv_cbwr_set and xkl_serv_enable_instructions. Each member is whole by itself; a reader may see one
// changed before the other.
struct reproducibility_settings {
    std::atomic<const branch_row *> branch{&branches[XKL_CBWR_BRANCH_OFF]};
    std::atomic<bool> strict{false};
    std::atomic<instruction_level> enabled{no_limit};

    reproducibility_settings();
};

reproducibility_settings::reproducibility_settings()
{
    if (const char *value = environment_value("XKL_CBWR")) {
        std::string_view name = value;
        constexpr std::string_view strict_suffix = ",STRICT";
        const bool asks_strict = name.ends_with(strict_suffix);
        if (asks_strict)
            name.remove_suffix(strict_suffix.size());
        const auto *row = std::ranges::find(branches, name, &branch_row::name);
        if (row != std::end(branches) && runs_here(*row) && !(asks_strict && row->number < XKL_CBWR_AUTO)) {
            branch = row;
            strict = asks_strict;
        } else {
            xkl_serv_print(1, message_bad_branch, 1, value);
        }
    }
    if (const char *value = environment_value("XKL_ENABLE_INSTRUCTIONS")) {
        const auto *row =
            std::ranges::find(instruction_sets, std::string_view(value), &instructions_row::name);
        if (row != std::end(instruction_sets))
            enabled = row->level;
    }
}

reproducibility_settings &settings() noexcept
{
    static reproducibility_settings state;
    return state;
}

} // namespace

std::optional<instruction_level> level_limit() noexcept
{
    const instruction_level limit = std::min(settings().branch.load()->level, settings().enabled.load());
    return limit == no_limit ? std::nullopt : std::optional(limit);
}

instruction_level level_in_force() noexcept
{
    return std::min(processor_level(), level_limit().value_or(no_limit));
}

bool strict_reproducibility() noexcept
{
    return settings().strict.load(std::memory_order_relaxed);
}

} // namespace xkl::core

using namespace xkl::core;

extern "C" {

int xkl_serv_cbwr_set(int branch)
{
    const bool strict = (branch & XKL_CBWR_STRICT) != 0;
    const auto *row = std::ranges::find(branches, branch & ~XKL_CBWR_STRICT, &branch_row::number);
    if (row == std::end(branches))
        return XKL_CBWR_ERR_UNKNOWN_BRANCH;
    if (row->number == XKL_CBWR_UNSET_ALL)
        row = &branches[XKL_CBWR_BRANCH_OFF];
    if (strict && row->number < XKL_CBWR_AUTO)
        return XKL_CBWR_ERR_INVALID_SETTINGS;
    if (!runs_here(*row))
        return XKL_CBWR_ERR_UNSUPPORTED_BRANCH;
    const bool changed = before_first_kernel([&] {
        settings().branch = row;
        settings().strict = strict;
        select_kernel_set_again();
    });
    const bool in_force = settings().branch.load() == row && strict_reproducibility() == strict;
    return changed || in_force ? XKL_CBWR_SUCCESS : XKL_CBWR_ERR_MODE_CHANGE_FAILURE;
}

int xkl_serv_cbwr_get(int option)
{
    const int branch = settings().branch.load()->number;
    if (option == XKL_CBWR_BRANCH)
        return branch;
    if (option == XKL_CBWR_ALL)
        return strict_reproducibility() ? branch | XKL_CBWR_STRICT : branch;
    return XKL_CBWR_ERR_INVALID_INPUT;
}

int xkl_serv_cbwr_get_auto_branch(void)
{
    int best = XKL_CBWR_COMPATIBLE;
    for (const branch_row &row : branches)
        if (row.level != no_limit && row.number != XKL_CBWR_SSE2 && runs_here(row))
            best = row.number;
    return best;
}

int xkl_serv_enable_instructions(int code)
{
    const auto *row = std::ranges::find(instruction_sets, code, &instructions_row::code);
    if (row == std::end(instruction_sets))
        return 0;
    return before_first_kernel([&] {
        settings().enabled = row->level;
        select_kernel_set_again();
    });
}
}
