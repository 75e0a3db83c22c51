// Which instruction sets the kernels may use, and whether their results may depend on the number of
// threads.
#pragma once

#include "service/processor.h"

#include <optional>

namespace xkl::core {

// The highest level that the reproducibility branch and XKL_Enable_Instructions leave; none when neither
// limits it.
std::optional<instruction_level> level_limit() noexcept;

// The level to compute with: the processor's, or less where that is limited.
instruction_level level_in_force() noexcept;

// True when results must not depend on the number of threads.
bool strict_reproducibility() noexcept;

} // namespace xkl::core
